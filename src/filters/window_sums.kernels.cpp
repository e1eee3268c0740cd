// Sums over windows: columns first, which go down the image row by row, then neighbouring columns.
#include "filters/window_sums.kernels.h"

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

struct Sample {
    static u32 Of(u32 sample) { return sample; }
};

struct Square {
    static u32 Of(u32 sample) { return sample * sample; }
};

template <class Value, class Sum>
void AddRow(Sum* __restrict columns, const u8* __restrict row, Sum times, size_t count)
{
    for (size_t i = 0; i < count; ++i) columns[i] = Sum(columns[i] + times * Value::Of(row[i]));
}

template <class Value, class Sum>
void MoveRow(Sum* __restrict columns, const u8* __restrict entering, const u8* __restrict leaving, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        columns[i] = Sum(columns[i] + Value::Of(entering[i]) - Value::Of(leaving[i]));
    }
}

template <size_t kSide>
void NeighbourSums(const u16* __restrict columns, size_t count, size_t step, u16* __restrict out)
{
    for (size_t i = 0; i < count; ++i) {
        u32 sum = columns[i];
#pragma GCC unroll 16
        for (size_t k = 1; k < kSide; ++k) sum += columns[i + k * step];
        out[i] = u16(sum);
    }
}

// Up to this side, adding all of them in vectors is faster than a sum that moves along the row (bench:
// ArithmeticMeanFilter/rgb8).
void NarrowWindows(const u16* columns, size_t pixels, size_t step, size_t radius, u16* out)
{
    const u16* const first = columns - radius * step;
    const size_t count = pixels * step;
    switch (radius) {
    case 1: return NeighbourSums<3>(first, count, step, out);
    case 2: return NeighbourSums<5>(first, count, step, out);
    case 3: return NeighbourSums<7>(first, count, step, out);
    case 4: return NeighbourSums<9>(first, count, step, out);
    case 5: return NeighbourSums<11>(first, count, step, out);
    case 6: return NeighbourSums<13>(first, count, step, out);
    default: return NeighbourSums<15>(first, count, step, out);
    }
}

// The sums of a pixel, and what lies behind them: kCount sums in vectors as wide as the target has them. What is stored
// behind a pixel is overwritten by the next one.
template <class Sum, size_t kCount>
struct PixelSums {
    static constexpr size_t kBytes = kCount * sizeof(Sum) < kVectorBytes ? kCount * sizeof(Sum) : kVectorBytes;
    static constexpr size_t kLanes = kBytes / sizeof(Sum);
    static constexpr size_t kParts = kCount / kLanes;
    using Part __attribute__((vector_size(kBytes))) = Sum;

    Part parts[kParts];

    void Read(const Sum* from)
    {
        for (size_t p = 0; p < kParts; ++p) parts[p] = Load<Part>(from + p * kLanes);
    }
    void Add(const Sum* from, Sum times)
    {
        for (size_t p = 0; p < kParts; ++p) parts[p] += Load<Part>(from + p * kLanes) * times;
    }
    void Move(const Sum* entering, const Sum* leaving)
    {
        for (size_t p = 0; p < kParts; ++p) {
            parts[p] += Load<Part>(entering + p * kLanes) - Load<Part>(leaving + p * kLanes);
        }
    }
    void StoreTo(Sum* to) const
    {
        for (size_t p = 0; p < kParts; ++p) Store(to + p * kLanes, parts[p]);
    }
};

template <class Sum>
struct PixelSums<Sum, 1> {
    Sum sum;

    void Read(const Sum* from) { sum = *from; }
    void Add(const Sum* from, Sum times) { sum += *from * times; }
    void Move(const Sum* entering, const Sum* leaving) { sum += *entering - *leaving; }
    void StoreTo(Sum* to) const { *to = sum; }
};

#if defined(ZLV_TARGET_avx512) || defined(ZLV_TARGET_avx2)

// Lanes that move to other places, or become 0.
#if defined(ZLV_TARGET_avx512)

using Group = __m512i;
Group LoadGroup(const u32* from) { return _mm512_loadu_si512(from); }
void StoreGroup(Group a, u32* to) { _mm512_storeu_si512(to, a); }
Group Add(Group a, Group b) { return _mm512_add_epi32(a, b); }
Group Subtract(Group a, Group b) { return _mm512_sub_epi32(a, b); }

struct Places {
    Group from;
    __mmask16 isKept = 0;

    explicit Places(const u32* places) : from(LoadGroup(places))
    {
        for (u32 lane = 0; lane < 16; ++lane) isKept = __mmask16(isKept | (places[lane] < 16) << lane);
    }
    Group Of(Group a) const { return _mm512_maskz_permutexvar_epi32(isKept, from, a); }
};

#else

using Group = __m256i;
Group LoadGroup(const u32* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
void StoreGroup(Group a, u32* to) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), a); }
Group Add(Group a, Group b) { return _mm256_add_epi32(a, b); }
Group Subtract(Group a, Group b) { return _mm256_sub_epi32(a, b); }

struct Places {
    Group from, kept;

    explicit Places(const u32* places) : from(LoadGroup(places)), kept(_mm256_cmpgt_epi32(_mm256_set1_epi32(8), from))
    {
    }
    Group Of(Group a) const { return _mm256_and_si256(_mm256_permutevar8x32_epi32(a, from), kept); }
};

#endif

constexpr size_t kGroup = sizeof(Group) / sizeof(u32);
constexpr u32 kNowhere = 0x7FFFFFFF;

// Each lane takes the one `distance` lanes before it.
Places Behind(size_t distance)
{
    u32 places[kGroup];
    for (size_t lane = 0; lane < kGroup; ++lane) places[lane] = lane < distance ? kNowhere : u32(lane - distance);
    return Places(places);
}

// The sums of as many pixels as a group has, kShifts = log2 of them, rounded up: the changes from pixel to pixel are
// added up in so many steps. The last pixel's sums are what the next group goes on from. What is stored behind the last
// pixel is nothing yet.
template <size_t kShifts>
size_t MoveGroups(const u32* entering, const u32* leaving, size_t pixels, size_t step, u32* out)
{
    const size_t groupPixels = kGroup / step;
    u32 lastPlaces[kGroup], before[kGroup];
    for (size_t lane = 0; lane < kGroup; ++lane) {
        lastPlaces[lane] = u32((groupPixels - 1) * step + lane % step);
        before[lane] = *(out - step + lane % step);
    }
    const Places last(lastPlaces);
    const Places behind[] = {Behind(step), Behind(2 * step), Behind(4 * step), Behind(8 * step)};
    Group moved = LoadGroup(before);
    size_t x = 0;
    for (; x + groupPixels <= pixels; x += groupPixels) {
        Group sums = Subtract(LoadGroup(entering + x * step), LoadGroup(leaving + x * step));
#pragma GCC unroll 4
        for (size_t i = 0; i < kShifts; ++i) sums = Add(sums, behind[i].Of(sums));
        sums = Add(sums, moved);
        StoreGroup(sums, out + x * step);
        moved = last.Of(sums);
    }
    return x;
}

// How many of the pixels have been done.
size_t MoveInGroups(const u32* entering, const u32* leaving, size_t pixels, size_t step, u32* out)
{
    const size_t groupPixels = kGroup / step;
    if (groupPixels > 8) return MoveGroups<4>(entering, leaving, pixels, step, out);
    if (groupPixels > 4) return MoveGroups<3>(entering, leaving, pixels, step, out);
    if (groupPixels > 2) return MoveGroups<2>(entering, leaving, pixels, step, out);
    if (groupPixels > 1) return MoveGroups<1>(entering, leaving, pixels, step, out);
    return 0;
}

#else

size_t MoveInGroups(const u32*, const u32*, size_t, size_t, u32*) { return 0; }

#endif

size_t MoveInGroups(const u64*, const u64*, size_t, size_t, u64*) { return 0; }

// Sums that move along the row.
template <size_t kCount, class Sum>
void MovingSums(const Sum* __restrict columns, size_t pixels, size_t step, size_t radius, Sum* __restrict out)
{
    const size_t last = pixels - 1;
    PixelSums<Sum, kCount> sums = {};
    sums.Add(columns, Sum(radius + 1));
    for (size_t x = 1; x <= (radius < last ? radius : last); ++x) sums.Add(columns + x * step, 1);
    if (radius > last) sums.Add(columns + last * step, Sum(radius - last));
    sums.StoreTo(out);

    // Until the left edge of the window is inside the image, its first pixel leaves; from where the right edge is
    // outside, its last one enters.
    size_t x = 1;
    while (x < pixels) {
        const bool isLeftInside = x > radius, isRightInside = radius <= last && x <= last - radius;
        const size_t leftEnd = isLeftInside ? pixels : radius + 1;
        const size_t rightEnd = isRightInside ? last - radius + 1 : pixels;
        const size_t end = leftEnd < rightEnd ? (leftEnd < pixels ? leftEnd : pixels) : rightEnd;
        const Sum* leaving = columns + (isLeftInside ? x - radius - 1 : 0) * step;
        const Sum* entering = columns + (isRightInside ? x + radius : last) * step;
        const size_t leavingStep = isLeftInside ? step : 0, enteringStep = isRightInside ? step : 0;
        if (isLeftInside && isRightInside) {
            const size_t done = MoveInGroups(entering, leaving, end - x, step, out + x * step);
            x += done;
            entering += done * step;
            leaving += done * step;
            sums.Read(out + (x - 1) * step);
        }
        for (; x < end; ++x, leaving += leavingStep, entering += enteringStep) {
            sums.Move(entering, leaving);
            sums.StoreTo(out + x * step);
        }
    }
}

template <class Sum>
void MovingWindows(const Sum* columns, size_t pixels, size_t step, size_t radius, Sum* out)
{
    if (step == 1) MovingSums<1>(columns, pixels, step, radius, out);
    else if (step <= 4) MovingSums<4>(columns, pixels, step, radius, out);
    else MovingSums<8>(columns, pixels, step, radius, out);
}

}  // namespace

extern const WindowSumKernels kWindowSumKernels;
const WindowSumKernels kWindowSumKernels = {{AddRow<Sample, u16>, MoveRow<Sample, u16>},
                                            {AddRow<Sample, u32>, MoveRow<Sample, u32>},
                                            {AddRow<Square, u32>, MoveRow<Square, u32>},
                                            NarrowWindows,
                                            MovingWindows<u32>,
                                            MovingWindows<u64>};

}  // namespace zlv::ZLV_TARGET
