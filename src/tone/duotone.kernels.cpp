// The duotone, one lane a pixel.
#include "tone/duotone.kernels.h"

#include "base/kernel_pixel_words.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kBlock = 64;  // pixels
constexpr f64 kScale = 0.00390625;

// Of the component 256 * value * (1 - weight * saturation). A hue just before red (-1, of black) makes some slightly
// negative, by less than a level.
u32 Level(f64 weight, f64 saturation, f64 level) { return u32(i32((1 - weight * saturation) * level)); }

u32 Paint(u32 word, const HueWeights& hue)
{
    const f64 level = 0.587 * i32(ByteOf(word, 8)) + 0.299 * i32(ByteOf(word, 0)) + 0.114 * i32(ByteOf(word, 16));
    // Value and saturation are of 256 levels; a division by a power of two rounds nothing, wherever it stands.
    const f64 saturation = 1 - level * kScale;
    return (word & ~kColourMask) | Level(hue.r, saturation, level) | Level(hue.g, saturation, level) << 8 |
           Level(hue.b, saturation, level) << 16;
}

void PaintRow(u8* pixels, size_t step, size_t count, const HueWeights& hue)
{
    const HueWeights weights = hue;
    u32 words[kBlock] = {};
    for (size_t x = 0; x < count; x += kBlock) {
        const size_t size = count - x < kBlock ? count - x : kBlock;
        LoadPixelWords(pixels + x * step, step, size, words);
        for (size_t k = 0; k < size; ++k) words[k] = Paint(words[k], weights);
        StorePixelWords(words, step, size, pixels + x * step);
    }
}

}  // namespace

extern const DuotoneKernels kDuotoneKernels;
const DuotoneKernels kDuotoneKernels = {PaintRow};

}  // namespace zlv::ZLV_TARGET
