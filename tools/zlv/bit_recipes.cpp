// Bitwise operations and the median of 1-bit pictures: the light parts of a gray picture, and a disc in its middle.
#include "bitmap.h"
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>

namespace zlv {

// Named by the catalogue.
uint32_t CallInvertBits(const EffectCall& call);
uint32_t CallIntersectBits(const EffectCall& call);
uint32_t CallUniteBits(const EffectCall& call);
uint32_t CallXorBits(const EffectCall& call);
uint32_t CallMedianBits(const EffectCall& call);

namespace {

// Everything nearer to the picture's middle than so many percent of half its shorter side.
Bitmap Disc(uint32_t width, uint32_t height, double percent)
{
    constexpr double kPercentOfHalf = 200;
    Bitmap disc(width, height);
    const double radius = std::min(width, height) * percent / kPercentOfHalf;
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const double fromMiddleX = x - (width - 1) / 2.0, fromMiddleY = y - (height - 1) / 2.0;
            if (fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY < radius * radius) disc.Set(x, y);
        }
    }
    return disc;
}

using Combination = uint32_t(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t size);

uint32_t Combine(const EffectCall& call, Combination* combination)
{
    Bitmap light(call.source, call.values[0]);
    const Bitmap disc = Disc(light.Width(), light.Height(), call.values[1]);
    const uint32_t result = combination(light.Bytes(), disc.Bytes(), light.Bytes(), light.Size());
    light.Draw(call.target);
    return result;
}

}  // namespace

uint32_t CallInvertBits(const EffectCall& call)
{
    Bitmap light(call.source, call.values[0]);
    const uint32_t result = ZLV40_InvertBuffer(light.Bytes(), light.Size());
    light.Draw(call.target);
    return result;
}

uint32_t CallIntersectBits(const EffectCall& call) { return Combine(call, ZLV40_IntersectBuffers); }

uint32_t CallUniteBits(const EffectCall& call) { return Combine(call, ZLV40_UnionBuffers); }

uint32_t CallXorBits(const EffectCall& call) { return Combine(call, ZLV40_XORBuffers); }

uint32_t CallMedianBits(const EffectCall& call)
{
    const Bitmap light(call.source, call.values[0]);
    Bitmap median(light.Width(), light.Height());
    const uint32_t result =
        ZLV40_MedianFilter1Bit(light.Bytes(), light.Width(), light.Height(), light.Stride(), median.Bytes(),
                               median.Stride(), static_cast<uint32_t>(call.values[1]));
    median.Draw(call.target);
    return result;
}

}  // namespace zlv
