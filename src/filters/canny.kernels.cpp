// Rows of the Canny edge detector: a lane a pixel.
#include "filters/canny.kernels.h"

#include "base/kernel_vectors.h"

#ifndef ZLV_PORTABLE
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

using Floats = RealsOf<f32>;
using Ints = Lanes<f32>::Ints;
using Words = Lanes<f32>::SignedWords;
constexpr size_t kLanes = Lanes<f32>::kCount;

void Divide(const f32* __restrict sums, const f32* __restrict weights, f32* __restrict means, size_t count)
{
    for (size_t i = 0; i < count; ++i) means[i] = sums[i] / weights[i];
}

void DivideAndBoost(const f32* __restrict sums, f32 weight, i16* __restrict boosted, size_t count)
{
    constexpr f64 kBoost = 90.0;  // keeps fractions of levels in 16 bits, and magnitudes below 32768
    constexpr f64 kRounding = 0.5;
    for (size_t i = 0; i < count; ++i) {
        const f32 mean = sums[i] / weight;
        boosted[i] = i16(i32(f64(mean) * kBoost + kRounding));
    }
}

void Subtract(const i16* __restrict ahead, const i16* __restrict behind, i16* __restrict differences, size_t count)
{
    for (size_t i = 0; i < count; ++i) differences[i] = i16(ahead[i] - behind[i]);
}

// Adding one half in single precision gives the same whole number as in double precision: a root is 0 or at least 1, so
// it loses at most one digit, and only where the sum reaches a power of two; the fraction is below one half there.
void Measure(const i16* __restrict gx, const i16* __restrict gy, i16* __restrict magnitudes, size_t count)
{
    constexpr f32 kRounding = 0.5;
    for (size_t i = 0; i < count; ++i) {
        const i32 x = gx[i], y = gy[i];
        magnitudes[i] = i16(i32(__builtin_sqrtf(f32(x * x) + f32(y * y)) + kRounding));
    }
}

// How the magnitudes rise from a pixel to where its gradient leads on one side. `near` is the neighbour there in the
// direction of the gradient's larger part, `diagonal` the one beside that to which the smaller part leans.
Floats Rise(Ints own, Ints near, Ints diagonal, Floats larger, Floats smaller)
{
    return __builtin_convertvector(diagonal - near, Floats) * smaller +
           __builtin_convertvector(near - own, Floats) * larger;
}

Ints LoadWide(const i16* from) { return __builtin_convertvector(Load<Words>(from), Ints); }
Floats ToFloats(Ints value) { return __builtin_convertvector(value, Floats); }
Ints Absolute(Ints value) { return value < 0 ? -value : value; }
Ints Choose(Ints condition, Ints yes, Ints no) { return (yes & condition) | (no & ~condition); }
Floats Choose(Ints condition, Floats yes, Floats no) { return Floats(Choose(condition, Ints(yes), Ints(no))); }

// All bits where the pixels from x on may be edges.
//
// A pixel without a magnitude takes part with the gradient of the last pixel that had one, and still can't be an edge:
// both of its rises are then near * larger + (diagonal - near) * smaller, which is never below 0, so that one of them
// is above 0 or the second one is 0, whatever that gradient was. Here its parts are 0 / 0, and every comparison is
// false.
Ints IsPossibleEdge(const ThinningRows& rows, size_t x)
{
    const i16 *const above = rows.above + x, *const row = rows.magnitudes + x, *const below = rows.below + x;
    const Ints own = LoadWide(row), gx = LoadWide(rows.gx + x), gy = LoadWide(rows.gy + x);
    const Ints sizeX = Absolute(gx), sizeY = Absolute(gy);
    const Floats partX = ToFloats(sizeX) / ToFloats(own), partY = ToFloats(sizeY) / ToFloats(own);

    // Equal parts count as horizontal, but for two negative ones.
    const Ints isVertical = (sizeX < sizeY) | ((sizeX == sizeY) & (gx < 0) & (gy < 0));
    const Floats larger = Choose(isVertical, partY, partX), smaller = Choose(isVertical, partX, partY);

    // Side A is up or to the right, side B down or to the left. Parts of different signs lean to the diagonal from the
    // lower left to the upper right, others to the other one.
    const Ints isRising = (gx < 0) ^ (gy < 0);
    const Ints upperLeft = LoadWide(above - 1), lowerRight = LoadWide(below + 1);
    const Ints nearA = Choose(isVertical, LoadWide(above), LoadWide(row + 1));
    const Ints nearB = Choose(isVertical, LoadWide(below), LoadWide(row - 1));
    const Ints fallingA = Choose(isVertical, upperLeft, lowerRight);
    const Ints fallingB = Choose(isVertical, lowerRight, upperLeft);
    const Ints diagonalA = Choose(isRising, LoadWide(above + 1), fallingA);
    const Ints diagonalB = Choose(isRising, LoadWide(below - 1), fallingB);
    const Floats riseA = Rise(own, nearA, diagonalA, larger, smaller);
    const Floats riseB = Rise(own, nearB, diagonalB, larger, smaller);

    // No side may rise, and the second one must fall: a plateau has its edge on one side only.
    const Ints isSecondB = Choose(isVertical, gy >= 0, gx < 0);
    const Floats second = Choose(isSecondB, riseB, riseA);
    return (riseA <= 0.0f) & (riseB <= 0.0f) & (second != 0.0f);
}

void Thin(const ThinningRows& rows, i16* ridges, size_t count)
{
    static_assert(kThinningGroup % kLanes == 0);
    for (size_t x = 0; x < count; x += kLanes) {
        const Words isPossible = __builtin_convertvector(IsPossibleEdge(rows, x), Words);
        Store(ridges + x, Load<Words>(rows.magnitudes + x) & isPossible);
    }
}

#ifdef ZLV_PORTABLE

constexpr size_t kTested = 1;
constexpr u32 kBitsALane = 1;
u32 MaskOfHigher(const i16* ridges, i16 than) { return *ridges > than; }

#elif defined(ZLV_TARGET_avx512)

constexpr size_t kTested = 32;
constexpr u32 kBitsALane = 1;
u32 MaskOfHigher(const i16* ridges, i16 than)
{
    return _mm512_cmpgt_epi16_mask(_mm512_loadu_si512(ridges), _mm512_set1_epi16(than));
}

#elif defined(ZLV_TARGET_avx2)

constexpr size_t kTested = 16;
constexpr u32 kBitsALane = 2;
u32 MaskOfHigher(const i16* ridges, i16 than)
{
    const __m256i isHigher = _mm256_cmpgt_epi16(Load<__m256i_u>(ridges), _mm256_set1_epi16(than));
    return u32(_mm256_movemask_epi8(isHigher)) & 0x55555555u;
}

#else

constexpr size_t kTested = 8;
constexpr u32 kBitsALane = 2;
u32 MaskOfHigher(const i16* ridges, i16 than)
{
    const __m128i isHigher = _mm_cmpgt_epi16(Load<__m128i_u>(ridges), _mm_set1_epi16(than));
    return u32(_mm_movemask_epi8(isHigher)) & 0x5555u;
}

#endif

size_t FindRidges(const i16* ridges, size_t count, i16 least, u32* found)
{
    const i16 than = i16(least - 1);
    size_t x = 0, foundCount = 0;
    for (; x + kTested <= count; x += kTested) {
        for (u32 mask = MaskOfHigher(ridges + x, than); mask; mask &= mask - 1) {
            found[foundCount++] = u32(x) + u32(__builtin_ctz(mask)) / kBitsALane;
        }
    }
    for (; x < count; ++x) {
        if (ridges[x] > than) found[foundCount++] = u32(x);
    }
    return foundCount;
}

void Draw(const i16* __restrict ridges, u8 edge, u8 other, u8* __restrict pixels, size_t count)
{
    for (size_t x = 0; x < count; ++x) pixels[x] = ridges[x] == kEdge ? edge : other;
}

}  // namespace

extern const CannyKernels kCannyKernels;
const CannyKernels kCannyKernels = {Divide, DivideAndBoost, Subtract, Measure, Thin, FindRidges, Draw};

}  // namespace zlv::ZLV_TARGET
