#include "filters/median_blend.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

void Limit(u8* samples, size_t count, u8 top)
{
    for (size_t i = 0; i < count; ++i) samples[i] = samples[i] < top ? samples[i] : top;
}

// Exact for all 16-bit numbers.
u16 Over255(u16 number) { return u16(u16((u32(number) * 0x8081u) >> 16) >> 7); }

void Blend(const u8* medians, const u8* source, size_t count, u32 threshold, u32 weight, u8* out)
{
    const u16 limit = u16(threshold), share = u16(weight);
    for (size_t i = 0; i < count; ++i) {
        const u16 v = source[i], m = medians[i];
        const bool isUp = m > v;
        const u16 distance = u16(isUp ? m - v : v - m);
        // The half of 255 that rounds is added whatever the direction, and then the quotient loses its fraction: on
        // the way down a sample moves less far than on the way up. Clients compare bytes: it stays so.
        const u16 product = u16(distance * share);
        const u16 up = u16(v + Over255(u16(product + 128)));
        const u16 down = u16(v - Over255(u16(product > 128 ? product - 128 : 0)));
        out[i] = u8(distance <= limit ? v : isUp ? up : down);
    }
}

}  // namespace

extern const MedianBlendKernels kMedianBlendKernels;
const MedianBlendKernels kMedianBlendKernels = {Limit, Blend};

}  // namespace zlv::ZLV_TARGET
