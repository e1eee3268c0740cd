// Coloured noise: a plane of noise as the value of a colour whose hue and saturation are given.
#include "base/hsv.h"
#include "generators/pixel_words.h"
#include "runtime/array.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

constexpr u32 kChannels = 3;
constexpr u32 kLevels = 256;
constexpr u8 kMiddle = 128;
constexpr u32 kLargestAmount = 100;
constexpr u32 kFirstChannel = 1;  // as a mask
constexpr i32 kHugoOctaves = 4;
constexpr f64 kHugoPersistence = 0.5;

// What a generator answers is not looked at: without memory its plane stays an even gray, and is painted as that.
void MakePlane(u8* plane, u32 width, u32 height, u32 amount, u32 noiseKind)
{
    const f64 noiseScale = 1.0 - (amount / 100.0) * 0.99;
    const f64 variance = amount * 100.0;
    std::memset(plane, kMiddle, size_t(width) * height);
    switch (noiseKind) {
    case ZLV40_NOISE_PERLIN: ZLV40_GeneratePerlinNoise(plane, width, height, i32(width), noiseScale); return;
    case ZLV40_NOISE_HUGO:
        ZLV40_GenerateHugoNoise(plane, width, height, width, kHugoOctaves, kHugoPersistence, noiseScale);
        return;
    case ZLV40_NOISE_GAUSSIAN:
        ZLV40_AddGaussianNoise(plane, width, height, 1, width, variance, 0, 0, kFirstChannel);
        return;
    case ZLV40_NOISE_NEGATIVE_EXPONENTIAL:
        ZLV40_AddNegativeExpNoise(plane, width, height, 1, width, variance, 0, kFirstChannel);
        return;
    case ZLV40_NOISE_RAYLEIGH:
        ZLV40_AddRayleighNoise(plane, width, height, 1, width, variance, 0, kFirstChannel);
        return;
    default: ZLV40_AddUniformNoise(plane, width, height, 1, width, variance, 0, 0, kFirstChannel);
    }
}

// The colour with each value, as words of three bytes.
class ValueTable {
public:
    explicit ValueTable(u32 color)
    {
        const Hsv hsv = RGBToHSV(color & 255, (color >> 8) & 255, (color >> 16) & 255);
        for (u32 v = 0; v < kLevels; ++v) {
            const Rgb rgb = HSVToRGB(hsv.h, hsv.s, v);
            words_[v] = u32(rgb.r) | u32(rgb.g) << 8 | u32(rgb.b) << 16;
        }
    }

    void Paint(const u8* values, u8* out, u32 width) const
    {
        for (u32 x = 0; x < width;) {
            const u32 count = std::min(width - x, kBlock);
            u32 words[kBlock];
            for (u32 i = 0; i < count; ++i) words[i] = words_[values[x + i]];
            StorePixels(words, count, kChannels, out + size_t(x) * kChannels);
            x += count;
        }
    }

private:
    static constexpr u32 kBlock = 256;

    u32 words_[kLevels];
};

}  // namespace

ZLV_EXPORT u32 ZLV40_GenerateColoredNoise(u8* dst, u32 width, u32 height, u32 rowStride, u32 colour, u32 amount,
                                          u32 noiseKind)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!dst || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        if (noiseKind > ZLV40_NOISE_UNIFORM) return frame.Fail(Error::BadArgument);
        MVBuffer<u8> plane;
        if (!plane.Resize(u64(width) * height)) return frame.Fail(Error::OutOfMemory);

        MakePlane(plane.GetData(), width, height, std::min(amount, kLargestAmount), noiseKind);
        frame.SetLastError(Error::None);
        const ValueTable table(colour);
        for (u32 y = 0; y < height; ++y) {
            table.Paint(plane.GetData() + size_t(y) * width, dst + size_t(y) * rowStride, width);
        }
        return 1;
    });
}
