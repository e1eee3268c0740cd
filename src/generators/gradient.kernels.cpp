// The kernels of the gradients. Plain loops, which the compiler turns into vectors of the target.
#include "generators/gradient.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

// Either number, by its bits: GCC makes no vectors of a choice between floating-point numbers.
f64 Select(bool isFirst, f64 first, f64 second)
{
    const u64 mask = 0 - u64(isFirst);
    return __builtin_bit_cast(f64, (__builtin_bit_cast(u64, first) & mask) | (__builtin_bit_cast(u64, second) & ~mask));
}

template <bool kIsOneSided, bool kHasLine>
void LinearPercentsOf(const LinearRow& row, f64 x, f64* percents, size_t count)
{
    const f64 slope = row.slopeX, start = row.startX, shift = row.shift;
    const f64 lineLength = row.lineLength, length = row.length;
    const bool isNegativeSide = row.isNegativeSide;
    for (size_t i = 0; i < count; ++i) {
        const f64 n = slope * (x + f64(i32(i)) - start) - shift;
        const f64 d = kHasLine ? n / lineLength : length;
        const f64 percent = __builtin_fabs(d) / length * 100.0;
        percents[i] = kIsOneSided ? Select((n < 0) == isNegativeSide, percent, -1.0) : percent;
    }
}

void LinearPercents(const LinearRow& row, f64 x, f64* percents, size_t count)
{
    const bool hasLine = row.lineLength != 0;
    const auto run = row.isOneSided ? hasLine ? LinearPercentsOf<true, true> : LinearPercentsOf<true, false>
                     : hasLine ? LinearPercentsOf<false, true>
                                    : LinearPercentsOf<false, false>;
    run(row, x, percents, count);
}

void RadialPercents(u32 dx, u32 dy, f64 length, f64* percents, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        const u32 across = dx + u32(i);
        percents[i] = __builtin_sqrt(f64(i32(across * across + dy * dy))) / length * 100.0;
    }
}

void Fractions(const f64* percents, f64 position, f64 span, f64* fractions, size_t count)
{
    for (size_t i = 0; i < count; ++i) fractions[i] = (percents[i] - position) / span;
}

template <u32 kChannels>
void BlendOf(const f64* fractions, const GradientBlend& blend, u32* colors, size_t count)
{
    const GradientBlend b = blend;
    for (size_t i = 0; i < count; ++i) {
        u32 color = 0;
        for (u32 c = 0; c < kChannels; ++c) color |= u32(i32(b.first[c] + b.change[c] * fractions[i])) << (8 * c);
        colors[i] = color;
    }
}

void Blend(const f64* fractions, const GradientBlend& blend, u32 channels, u32* colors, size_t count)
{
    switch (channels) {
    case 1: BlendOf<1>(fractions, blend, colors, count); return;
    case 2: BlendOf<2>(fractions, blend, colors, count); return;
    case 3: BlendOf<3>(fractions, blend, colors, count); return;
    default: BlendOf<4>(fractions, blend, colors, count); return;
    }
}

}  // namespace

constinit const GradientKernels kGradientKernels = {LinearPercents, RadialPercents, Fractions, Blend};

}  // namespace zlv::ZLV_TARGET
