// Blending with the blurred gray image turned over, a byte a lane: the mask's samples are repeated for each channel
// first.
#include "tone/contrast_mask.kernels.h"

#include "base/kernel_pixel_words.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kBlock = 64;  // pixels

// n / 255, truncated, for n below 65,535.
u16 Over255(u16 n) { return u16(u16(n + 1 + (n >> 8)) >> 8); }

struct SoftLight {
    static u8 Blend(u8 sample, u8 gray)
    {
        const u16 darker = Over255(u16(sample * (255 - gray)));
        const u16 lost = Over255(u16((255 - sample) * gray));
        return u8(darker + Over255(u16(sample * (255 - lost - darker))));
    }
};

struct Overlay {
    static u8 Blend(u8 sample, u8 gray)
    {
        const u8 lighter = u8(255 - (u16((255 - sample) * gray) >> 7));
        const u8 darker = u8(u16(sample * (255 - gray)) >> 7);
        return sample >= 128 ? lighter : darker;
    }
};

void RepeatForChannels(const u8* mask, size_t count, size_t channels, u8* repeated)
{
    u32 words[kBlock] = {};
    for (size_t x = 0; x < count; ++x) words[x] = mask[x] * 0x01010101u;
    StorePixelWords(words, channels, count, repeated);
}

template <class Mode>
void BlendSamples(u8* __restrict samples, const u8* __restrict repeated, size_t count)
{
    for (size_t i = 0; i < count; ++i) samples[i] = Mode::Blend(samples[i], repeated[i]);
}

template <class Mode>
void BlendRow(u8* pixels, const u8* mask, size_t count, size_t channels)
{
    u8 repeated[kBlock * kWordBytes] = {};
    for (size_t x = 0; x < count; x += kBlock) {
        const size_t size = count - x < kBlock ? count - x : kBlock;
        RepeatForChannels(mask + x, size, channels, repeated);
        if (channels == kColourBytes) {
            BlendSamples<Mode>(pixels + x * channels, repeated, size * channels);
            continue;
        }
        u32 before[kBlock] = {}, after[kBlock] = {};
        LoadPixelWords(pixels + x * channels, channels, size, before);
        BlendSamples<Mode>(pixels + x * channels, repeated, size * channels);
        LoadPixelWords(pixels + x * channels, channels, size, after);
        for (size_t k = 0; k < size; ++k) after[k] = (before[k] & ~kColourMask) | (after[k] & kColourMask);
        StorePixelWords(after, channels, size, pixels + x * channels);
    }
}

}  // namespace

extern const ContrastMaskKernels kContrastMaskKernels;
const ContrastMaskKernels kContrastMaskKernels = {BlendRow<SoftLight>, BlendRow<Overlay>};

}  // namespace zlv::ZLV_TARGET
