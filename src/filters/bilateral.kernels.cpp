// Weighted means in single precision: a lane a pixel, so that every pixel has its own sums. Who calls knows how far
// they may be off, and computes again what could be rounded wrongly.
#include "filters/bilateral.kernels.h"

#include "base/kernel_vectors.h"

#include <cstddef>

#if !defined(ZLV_PORTABLE) && (defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512))
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

using Floats = RealsOf<f32>;
using Ints = Lanes<f32>::Ints;

// A group of pixels: their samples as bytes, and numbers of theirs in kVectors vectors. Which pixel has which lane is
// each target's own affair.
#if defined(ZLV_TARGET_avx512)

constexpr size_t kVectors = 4;
constexpr size_t kGroup = kVectors * Lanes<f32>::kCount;
using Samples = __m512i;

Samples LoadSamples(const u8* from) { return _mm512_loadu_si512(from); }

// The bytes of 64 weights, the lowest first, become 64 weights: a lane of 16 pixels fills a lane of each vector.
void Join(__m512i first, __m512i second, __m512i third, Floats (&joined)[kVectors])
{
    const __m512i zero = _mm512_setzero_si512();
    const __m512i low[2] = {_mm512_unpacklo_epi8(zero, first), _mm512_unpackhi_epi8(zero, first)};
    const __m512i high[2] = {_mm512_unpacklo_epi8(second, third), _mm512_unpackhi_epi8(second, third)};
    for (size_t half = 0; half < 2; ++half) {
        joined[2 * half] = Floats(_mm512_unpacklo_epi16(low[half], high[half]));
        joined[2 * half + 1] = Floats(_mm512_unpackhi_epi16(low[half], high[half]));
    }
}

void Widen(Samples samples, Floats (&wide)[kVectors])
{
    const __m512i zero = _mm512_setzero_si512();
    const __m512i words[2] = {_mm512_unpacklo_epi8(samples, zero), _mm512_unpackhi_epi8(samples, zero)};
    for (size_t half = 0; half < 2; ++half) {
        wide[2 * half] = __builtin_convertvector(Ints(_mm512_unpacklo_epi16(words[half], zero)), Floats);
        wide[2 * half + 1] = __builtin_convertvector(Ints(_mm512_unpackhi_epi16(words[half], zero)), Floats);
    }
}

// Bytes of the vectors' numbers, back in the order of the pixels.
void StoreBytes(const Ints (&numbers)[kVectors], u8* to)
{
    const __m512i low = _mm512_packus_epi32(__m512i(numbers[0]), __m512i(numbers[1]));
    const __m512i high = _mm512_packus_epi32(__m512i(numbers[2]), __m512i(numbers[3]));
    _mm512_storeu_si512(to, _mm512_packus_epi16(low, high));
}

// Tables of 256 bytes in registers.
class RangeTable {
public:
    explicit RangeTable(const BilateralRange& range)
    {
        for (size_t byte = 0; byte < 3; ++byte) {
            for (size_t part = 0; part < 4; ++part) {
                tables_[byte][part] = _mm512_loadu_si512(range.bytes[byte] + part * sizeof(__m512i));
            }
        }
    }

    template <bool kIsAtSide>
    void Weigh(Samples a, Samples b, const u8* inside, Floats (&weights)[kVectors]) const
    {
        const __m512i difference = _mm512_or_si512(_mm512_subs_epu8(a, b), _mm512_subs_epu8(b, a));
        const __mmask64 isLarge = _mm512_movepi8_mask(difference);
        __m512i bytes[3];
        for (size_t byte = 0; byte < 3; ++byte) {
            const __m512i small = _mm512_permutex2var_epi8(tables_[byte][0], difference, tables_[byte][1]);
            const __m512i large = _mm512_permutex2var_epi8(tables_[byte][2], difference, tables_[byte][3]);
            bytes[byte] = _mm512_mask_blend_epi8(isLarge, small, large);
            if constexpr (kIsAtSide) bytes[byte] = _mm512_and_si512(bytes[byte], _mm512_loadu_si512(inside));
        }
        Join(bytes[0], bytes[1], bytes[2], weights);
    }

private:
    __m512i tables_[3][4];
};

#elif defined(ZLV_TARGET_avx2)

constexpr size_t kVectors = 2;
constexpr size_t kLanes = Lanes<f32>::kCount;
constexpr size_t kGroup = kVectors * kLanes;

struct Samples {
    Ints wide[kVectors];
};

Samples LoadSamples(const u8* from)
{
    Samples samples;
    for (size_t v = 0; v < kVectors; ++v) {
        samples.wide[v] = Ints(_mm256_cvtepu8_epi32(Load<__m128i_u>(from + v * kLanes)));
    }
    return samples;
}

void Widen(const Samples& samples, Floats (&wide)[kVectors])
{
    for (size_t v = 0; v < kVectors; ++v) wide[v] = __builtin_convertvector(samples.wide[v], Floats);
}

void StoreBytes(const Ints (&numbers)[kVectors], u8* to)
{
    const __m256i words = _mm256_packus_epi32(__m256i(numbers[0]), __m256i(numbers[1]));
    const __m256i ordered = _mm256_permute4x64_epi64(words, 0xD8);
    const __m128i low = _mm256_castsi256_si128(ordered), high = _mm256_extracti128_si256(ordered, 1);
    Store(to, _mm_packus_epi16(low, high));
}

class RangeTable {
public:
    explicit RangeTable(const BilateralRange& range) : middle_(range.weights + kRangeMiddle) {}

    template <bool kIsAtSide>
    void Weigh(const Samples& a, const Samples& b, const u8* inside, Floats (&weights)[kVectors]) const
    {
        for (size_t v = 0; v < kVectors; ++v) {
            weights[v] = LookUp(b.wide[v] - a.wide[v]);
            if constexpr (kIsAtSide) {
                // 255 is -1 in a signed byte, and all bits when it is widened.
                const __m256i mask = _mm256_cvtepi8_epi32(Load<__m128i_u>(inside + v * kLanes));
                weights[v] = Floats(_mm256_and_ps(__m256(weights[v]), _mm256_castsi256_ps(mask)));
            }
        }
    }

private:
    // With a source of its own: otherwise a compiler lets the gather wait for whatever its register held before.
    Floats LookUp(Ints at) const
    {
        const __m256 all = _mm256_castsi256_ps(_mm256_set1_epi32(-1));
        return Floats(_mm256_mask_i32gather_ps(_mm256_setzero_ps(), middle_, __m256i(at), all, sizeof(f32)));
    }

    const f32* middle_;
};

#else

constexpr size_t kVectors = 2;
constexpr size_t kLanes = 4;
constexpr size_t kGroup = kVectors * kLanes;
using Samples = const u8*;

// A vector of number(lane) for the lanes from `first` on.
template <class Number>
Floats MakeFloats(size_t first, Number number)
{
    return Floats{number(first), number(first + 1), number(first + 2), number(first + 3)};
}

Samples LoadSamples(const u8* from) { return from; }

void Widen(Samples samples, Floats (&wide)[kVectors])
{
    for (size_t v = 0; v < kVectors; ++v) {
        wide[v] = MakeFloats(v * kLanes, [=](size_t lane) { return f32(samples[lane]); });
    }
}

void StoreBytes(const Ints (&numbers)[kVectors], u8* to)
{
    for (size_t i = 0; i < kGroup; ++i) to[i] = u8(numbers[i / kLanes][i % kLanes]);
}

class RangeTable {
public:
    explicit RangeTable(const BilateralRange& range) : middle_(range.weights + kRangeMiddle) {}

    template <bool kIsAtSide>
    void Weigh(Samples a, Samples b, const u8* inside, Floats (&weights)[kVectors]) const
    {
        for (size_t v = 0; v < kVectors; ++v) {
            weights[v] = MakeFloats(v * kLanes, [=, this](size_t lane) {
                if (kIsAtSide && inside[lane] == 0) return 0.0f;
                return middle_[std::ptrdiff_t(b[lane]) - std::ptrdiff_t(a[lane])];
            });
        }
    }

private:
    const f32* middle_;
};

#endif

static_assert(kBilateralGroup % kGroup == 0);

// Rows are summed on their own first: rounding errors grow with the sides of the window, and not with its area.
template <bool kIsAtSide>
void AverageGroup(const BilateralWindow& window, const RangeTable& range, const u8* middle, size_t x, u8* averages,
                  u8* doubts)
{
    const Samples centre = LoadSamples(middle + x);
    Floats sums[kVectors] = {}, weights[kVectors] = {};
    for (size_t j = 0; j < window.rowCount; ++j) {
        const f32* const spatial = window.spatial + j * window.spatialStride;
        Floats rowSums[kVectors] = {}, rowWeights[kVectors] = {};
        for (size_t i = 0; i < window.columns; ++i) {
            const size_t at = x + i * window.step;
            const Samples samples = LoadSamples(window.rows[j] + at);
            Floats weight[kVectors], value[kVectors];
            range.template Weigh<kIsAtSide>(centre, samples, window.inside + at, weight);
            Widen(samples, value);
            for (size_t v = 0; v < kVectors; ++v) {
                weight[v] *= spatial[i];
                rowSums[v] += weight[v] * value[v];
                rowWeights[v] += weight[v];
            }
        }
        for (size_t v = 0; v < kVectors; ++v) {
            sums[v] += rowSums[v];
            weights[v] += rowWeights[v];
        }
    }
    Ints low[kVectors], change[kVectors];
    for (size_t v = 0; v < kVectors; ++v) {
        const Floats rounded = sums[v] / weights[v] + 0.5f;
        low[v] = __builtin_convertvector(rounded - window.doubt, Ints);
        change[v] = low[v] ^ __builtin_convertvector(rounded + window.doubt, Ints);
    }
    StoreBytes(low, averages + x);
    StoreBytes(change, doubts + x);
}

void Average(const BilateralWindow& window, const u8* middle, size_t count, u8* averages, u8* doubts)
{
    const RangeTable range(*window.range);
    for (size_t x = 0; x < count; x += kGroup) {
        const bool isWhole = x >= window.wholeStart && x + kGroup <= window.wholeEnd;
        if (isWhole) AverageGroup<false>(window, range, middle, x, averages, doubts);
        else AverageGroup<true>(window, range, middle, x, averages, doubts);
    }
}

}  // namespace

extern const BilateralKernels kBilateralKernels;
const BilateralKernels kBilateralKernels = {Average};

}  // namespace zlv::ZLV_TARGET
