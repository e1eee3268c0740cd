// The kernels of the motion blur. Plain loops, which the compiler turns into vectors of the target.
#include "filters/motion.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

template <class Sum>
void Add(Sum* __restrict sums, const u8* __restrict samples, size_t count, Sum weight)
{
    if (weight == 1) {
        for (size_t i = 0; i < count; ++i) sums[i] = Sum(sums[i] + samples[i]);
    } else {
        for (size_t i = 0; i < count; ++i) sums[i] = Sum(sums[i] + samples[i] * weight);
    }
}

// The factor is 2^16 / total and up to 1 more, the quotient therefore at most 1 too large.
void Mean(const u16* __restrict sums, u8* __restrict means, size_t count, u16 total)
{
    if (total == 1) {
        for (size_t i = 0; i < count; ++i) means[i] = u8(sums[i]);
        return;
    }
    const u16 factor = u16(65536 / total + 1);
    for (size_t i = 0; i < count; ++i) {
        const u16 quotient = u16((u32(sums[i]) * factor) >> 16);
        const i16 rest = i16(sums[i] - quotient * total);
        means[i] = u8(quotient + (rest >> 15));
    }
}

// Half a unit keeps the quotient away from whole numbers: by 1 / (2 * total), which is more than 2^-25, where the
// roundings of doubles below 256 are less than 2^-43.
void Mean(const u32* __restrict sums, u8* __restrict means, size_t count, u32 total)
{
    const f64 factor = 1.0 / total;
    for (size_t i = 0; i < count; ++i) means[i] = u8(i32((i32(sums[i]) + 0.5) * factor));
}

void Mean(const u64* __restrict sums, u8* __restrict means, size_t count, u64 total)
{
    for (size_t i = 0; i < count; ++i) means[i] = u8(sums[i] / total);
}

template <class Sum>
void AddGrayPixels(Sum* __restrict sums, const u8* first, const size_t* __restrict offsets, size_t steps, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        Sum sum = sums[i];
        for (size_t k = 0; k < steps; ++k) sum = Sum(sum + first[offsets[k * kMotionPixels + i]]);
        sums[i] = sum;
    }
}

template <class Sum>
void AddAnyPixels(Sum* sums, const PixelSource& source, const size_t* offsets, size_t steps, size_t count)
{
    for (size_t k = 0; k < steps; ++k, offsets += kMotionPixels) {
        Sum* sum = sums;
        for (size_t i = 0; i < count; ++i) {
            const u8* const pixel = source.first + offsets[i];
            for (size_t c = 0; c < source.channels; ++c, ++sum) *sum = Sum(*sum + pixel[c]);
        }
    }
}

// Samples as one number, and every second of them with 16 bits each.
constexpr u32 kEverySecond = 0x00FF00FF;

u32 ThreeSamples(const u8* pixel) { return u32(pixel[0]) | u32(pixel[1]) << 8 | u32(pixel[2]) << 16; }
u32 FourSamples(const u8* pixel) { return ThreeSamples(pixel) | u32(pixel[3]) << 24; }

// Three channels, or four. All steps of a pixel before the next one: sums of up to kMotionSteps samples stay within 16
// bits. A fourth sample is read with three in one go, unless the image ends before it.
template <size_t channels, class Sum>
void AddNarrowPixels(Sum* __restrict sums, const PixelSource& source, const size_t* __restrict offsets, size_t steps,
                     size_t count)
{
    const u8* const first = source.first;
    const size_t lastWhole = source.bytes - 4;
    for (size_t i = 0; i < count; ++i, sums += channels) {
        u64 all = 0, even = 0;
        for (size_t k = 0; k < steps; ++k) {
            const size_t offset = offsets[k * kMotionPixels + i];
            const bool hasFour = channels == 4 || offset <= lastWhole;
            const u32 samples = hasFour ? FourSamples(first + offset) : ThreeSamples(first + offset);
            all += samples;
            even += samples & kEverySecond;
        }
        const u64 odd = (all - even) >> 8;
        sums[0] = Sum(sums[0] + u16(even));
        sums[1] = Sum(sums[1] + u16(odd));
        sums[2] = Sum(sums[2] + u16(even >> 16));
        if constexpr (channels == 4) sums[3] = Sum(sums[3] + u16(odd >> 16));
    }
}

template <class Sum>
void AddPixels(Sum* sums, const PixelSource& source, const size_t* offsets, size_t steps, size_t count)
{
    if (source.channels == 1) AddGrayPixels(sums, source.first, offsets, steps, count);
    else if (source.channels == 3 && source.bytes >= 4) AddNarrowPixels<3>(sums, source, offsets, steps, count);
    else if (source.channels == 4) AddNarrowPixels<4>(sums, source, offsets, steps, count);
    else AddAnyPixels(sums, source, offsets, steps, count);
}

void Zoom(const ZoomedColumns& columns, size_t* __restrict offsets)
{
    const f64 start = columns.start, factor = columns.factor, centre = columns.centre;
    const size_t row = columns.row;
    const u32 step = u32(columns.step);
    for (i32 i = 0; i < i32(columns.count); ++i) {
        offsets[i] = row + size_t(u32(i32((start + i) * factor + centre)) * step);
    }
}

// Whether a coordinate lies in the image or, with first = -1, so little before it that it is truncated to 0.
i32 IsOutside(i32 whole, i32 first, i32 size) { return i32(whole < first) | i32(whole >= size); }

// Products of 32 bits: vectors have no longer ones.
size_t OffsetOf(i32 column, i32 row, u32 step, u32 stride) { return u32(row) * stride + u32(column) * step; }

u32 Turn(const TurnedPixels& pixels, size_t* __restrict offsets)
{
    const i32 x0 = pixels.x, y0 = pixels.y, cosine = pixels.cosine, sine = pixels.sine;
    const u32 bits = pixels.fractionBits;
    const i32 fraction = (1 << bits) - 1, margin = pixels.margin, inDoubt = 2 * margin;
    const i32 width = pixels.width, height = pixels.height;
    const u32 step = u32(pixels.step), stride = u32(pixels.stride);
    i32 someOutside = 0, someInDoubt = 0;
    for (i32 i = 0; i < i32(pixels.count); ++i) {
        const i32 x = x0 + i * cosine, y = y0 + i * sine;
        someInDoubt |= i32(((x + margin) & fraction) <= inDoubt) | i32(((y + margin) & fraction) <= inDoubt);
        const i32 wholeX = x >> bits, wholeY = y >> bits;
        someOutside |= IsOutside(wholeX, -1, width) | IsOutside(wholeY, -1, height);
        offsets[i] = OffsetOf(wholeX < 0 ? 0 : wholeX, wholeY < 0 ? 0 : wholeY, step, stride);
    }
    return (someOutside ? kSomeOutside : 0U) | (someInDoubt ? kSomeInDoubt : 0U);
}

u32 Place(const PolarPixels& pixels, size_t* __restrict offsets)
{
    const f64 *const cosines = pixels.cosines, *const sines = pixels.sines, *const radii = pixels.radii;
    const f64 x0 = pixels.x, y0 = pixels.y;
    const i32 width = pixels.width, height = pixels.height;
    const u32 step = u32(pixels.step), stride = u32(pixels.stride);
    i32 someOutside = 0;
    for (i32 i = 0; i < i32(pixels.count); ++i) {
        const i32 x = i32(cosines[i] * radii[i] + x0), y = i32(sines[i] * radii[i] + y0);
        someOutside |= IsOutside(x, 0, width) | IsOutside(y, 0, height);
        offsets[i] = OffsetOf(x, y, step, stride);
    }
    return someOutside ? kSomeOutside : 0U;
}

template <class Sum>
constexpr MotionSums<Sum> kSums = {Add<Sum>, AddPixels<Sum>, Mean};

}  // namespace

extern const MotionKernels kMotionKernels;
const MotionKernels kMotionKernels = {kSums<u16>, kSums<u32>, kSums<u64>, Zoom, Turn, Place};

}  // namespace zlv::ZLV_TARGET
