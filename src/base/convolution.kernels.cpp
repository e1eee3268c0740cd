// Rows of a convolution, a block of neighbouring samples side by side.
//
// Every sample keeps its own sum and adds to it in the order of the kernel: the lanes are samples, never parts of one
// sum. Products and sums are rounded one by one, as a loop over single samples would.
#include "base/convolution.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

// Lanes of doubles and of integers, with what this file needs of them. Max and Min answer their second operand when
// the first is no number.
#if defined(ZLV_TARGET_avx512)

constexpr size_t kLanes = 8;
constexpr size_t kIntLanes = 16;
constexpr __mmask8 kAll = 0xFF;  // GCC 12 takes the forms without a mask for reads of what was never written
using Doubles = __m512d;
using Ints = __m512i;

Doubles Load(const f64* from) { return _mm512_loadu_pd(from); }
Doubles LoadInts(const i32* from)
{
    return _mm512_maskz_cvtepi32_pd(kAll, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)));
}
Doubles Broadcast(f64 value) { return _mm512_set1_pd(value); }
Doubles Add(Doubles a, Doubles b) { return _mm512_add_pd(a, b); }
Doubles Subtract(Doubles a, Doubles b) { return _mm512_sub_pd(a, b); }
Doubles Multiply(Doubles a, Doubles b) { return _mm512_mul_pd(a, b); }
Doubles Max(Doubles a, Doubles b) { return _mm512_maskz_max_pd(kAll, a, b); }
Doubles Min(Doubles a, Doubles b) { return _mm512_maskz_min_pd(kAll, a, b); }
void StoreTruncated(Doubles a, i32* to)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_maskz_cvttpd_epi32(kAll, a));
}
Ints BroadcastInt(u32 value) { return _mm512_set1_epi32(i32(value)); }
Ints AddPairs(Ints sums, const u32* pairs, Ints weights)
{
    return _mm512_add_epi32(sums, _mm512_madd_epi16(_mm512_loadu_si512(pairs), weights));
}
void StoreInts(Ints a, i32* to) { _mm512_storeu_si512(to, a); }

#elif defined(ZLV_TARGET_avx2)

constexpr size_t kLanes = 4;
constexpr size_t kIntLanes = 8;
using Doubles = __m256d;
using Ints = __m256i;

Doubles Load(const f64* from) { return _mm256_loadu_pd(from); }
Doubles LoadInts(const i32* from)
{
    return _mm256_cvtepi32_pd(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}
Doubles Broadcast(f64 value) { return _mm256_set1_pd(value); }
Doubles Add(Doubles a, Doubles b) { return _mm256_add_pd(a, b); }
Doubles Subtract(Doubles a, Doubles b) { return _mm256_sub_pd(a, b); }
Doubles Multiply(Doubles a, Doubles b) { return _mm256_mul_pd(a, b); }
Doubles Max(Doubles a, Doubles b) { return _mm256_max_pd(a, b); }
Doubles Min(Doubles a, Doubles b) { return _mm256_min_pd(a, b); }
void StoreTruncated(Doubles a, i32* to) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm256_cvttpd_epi32(a)); }
Ints BroadcastInt(u32 value) { return _mm256_set1_epi32(i32(value)); }
Ints AddPairs(Ints sums, const u32* pairs, Ints weights)
{
    const __m256i loaded = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pairs));
    return _mm256_add_epi32(sums, _mm256_madd_epi16(loaded, weights));
}
void StoreInts(Ints a, i32* to) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), a); }

#elif !defined(ZLV_PORTABLE)

constexpr size_t kLanes = 2;
constexpr size_t kIntLanes = 4;
using Doubles = __m128d;
using Ints = __m128i;

Doubles Load(const f64* from) { return _mm_loadu_pd(from); }
Doubles LoadInts(const i32* from) { return _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from))); }
Doubles Broadcast(f64 value) { return _mm_set1_pd(value); }
Doubles Add(Doubles a, Doubles b) { return _mm_add_pd(a, b); }
Doubles Subtract(Doubles a, Doubles b) { return _mm_sub_pd(a, b); }
Doubles Multiply(Doubles a, Doubles b) { return _mm_mul_pd(a, b); }
Doubles Max(Doubles a, Doubles b) { return _mm_max_pd(a, b); }
Doubles Min(Doubles a, Doubles b) { return _mm_min_pd(a, b); }
void StoreTruncated(Doubles a, i32* to) { _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_cvttpd_epi32(a)); }
Ints BroadcastInt(u32 value) { return _mm_set1_epi32(i32(value)); }
Ints AddPairs(Ints sums, const u32* pairs, Ints weights)
{
    const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pairs));
    return _mm_add_epi32(sums, _mm_madd_epi16(loaded, weights));
}
void StoreInts(Ints a, i32* to) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), a); }

#else

constexpr size_t kLanes = 1;
constexpr size_t kIntLanes = 1;
using Doubles = f64;
using Ints = u32;

Doubles Load(const f64* from) { return *from; }
Doubles LoadInts(const i32* from) { return *from; }
Doubles Broadcast(f64 value) { return value; }
Doubles Add(Doubles a, Doubles b) { return a + b; }
Doubles Subtract(Doubles a, Doubles b) { return a - b; }
Doubles Multiply(Doubles a, Doubles b) { return a * b; }
Doubles Max(Doubles a, Doubles b) { return a > b ? a : b; }
Doubles Min(Doubles a, Doubles b) { return a < b ? a : b; }
void StoreTruncated(Doubles a, i32* to) { *to = i32(a); }
Ints BroadcastInt(u32 value) { return value; }
Ints AddPairs(Ints sums, const u32* pairs, Ints weights)
{
    const i32 left = i32(i16(*pairs & 0xFFFF)) * i16(weights & 0xFFFF);
    const i32 right = i32(i16(*pairs >> 16)) * i16(weights >> 16);
    return sums + u32(left) + u32(right);
}
void StoreInts(Ints a, i32* to) { *to = i32(a); }

#endif

constexpr size_t kVectors = 8;  // sums under way at once: the additions of one sum wait for each other
constexpr size_t kDoubleBlock = kVectors * kLanes;
constexpr size_t kIntVectors = kIntLanes > 8 ? 4 : 8;
constexpr size_t kIntBlock = kIntVectors * kIntLanes;
static_assert(kDoubleBlock <= kConvolutionBlock && kIntBlock <= kConvolutionBlock);

void StoreResult(Doubles sum, Doubles centre, const ConvolutionResult& result, i32* to)
{
    const Doubles scaled = Multiply(sum, Broadcast(result.scale));
    const Doubles value = result.isDifference ? Subtract(centre, scaled) : scaled;
    StoreTruncated(Min(Max(value, Broadcast(0)), Broadcast(result.top)), to);
}

// The results of samples first to first + kDoubleBlock - 1.
template <class T>
void ComputeBlock(const DoubleWindow& window, size_t first, T* out)
{
    Doubles sums[kVectors];
    for (size_t v = 0; v < kVectors; ++v) sums[v] = Broadcast(0);
    const f64* weight = window.weights;
    for (size_t j = 0; j < window.rowCount; ++j) {
        const f64* from = window.rows[j] + first;
        for (size_t i = 0; i < window.columns; ++i, ++weight, from += window.step) {
            if (*weight == 0) continue;  // samples are finite: it would add nothing
            const Doubles lanes = Broadcast(*weight);
#pragma GCC unroll 8
            for (size_t v = 0; v < kVectors; ++v) {
                sums[v] = Add(sums[v], Multiply(Load(from + v * kLanes), lanes));
            }
        }
    }
    i32 results[kDoubleBlock];
    for (size_t v = 0; v < kVectors; ++v) {
        const size_t at = v * kLanes;
        StoreResult(sums[v], Load(window.centre + first + at), window.result, results + at);
    }
    for (size_t k = 0; k < kDoubleBlock; ++k) out[k] = T(results[k]);
}

template <class T>
void ComputeBlock(const PairWindow& window, size_t first, T* out)
{
    Ints sums[kIntVectors];
    for (size_t v = 0; v < kIntVectors; ++v) sums[v] = BroadcastInt(window.bias);
    const u32* weight = window.weights;
    for (size_t j = 0; j < window.rowCount; ++j) {
        const u32* from = window.rows[j] + first;
        for (size_t i = 0; i < window.pairs; ++i, ++weight, from += window.step) {
            if (*weight == 0) continue;
            const Ints lanes = BroadcastInt(*weight);
#pragma GCC unroll 8
            for (size_t v = 0; v < kIntVectors; ++v) sums[v] = AddPairs(sums[v], from + v * kIntLanes, lanes);
        }
    }
    i32 results[kIntBlock];
    i32 centres[kIntBlock];
    for (size_t v = 0; v < kIntVectors; ++v) StoreInts(sums[v], results + v * kIntLanes);
    for (size_t k = 0; k < kIntBlock; ++k) centres[k] = i32((window.centre[first + k] ^ window.flip) & 0xFFFF);
    for (size_t at = 0; at < kIntBlock; at += kLanes) {
        const Doubles sum = Multiply(LoadInts(results + at), Broadcast(window.unit));
        StoreResult(sum, LoadInts(centres + at), window.result, results + at);
    }
    for (size_t k = 0; k < kIntBlock; ++k) out[k] = T(results[k]);
}

template <size_t kBlock, class T, class Window>
void ComputeRow(const Window& window, size_t count, T* out)
{
    size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) ComputeBlock(window, i, out + i);
    if (i == count) return;
    T rest[kBlock];
    ComputeBlock(window, i, rest);
    for (size_t k = 0; i + k < count; ++k) out[i + k] = rest[k];
}

template <class T>
void DoubleRow(const DoubleWindow& window, size_t count, T* out)
{
    ComputeRow<kDoubleBlock>(window, count, out);
}

template <class T>
void PairRow(const PairWindow& window, size_t count, T* out)
{
    ComputeRow<kIntBlock>(window, count, out);
}

template <class T>
void ToDoubles(const T* samples, size_t count, f64* doubles)
{
    for (size_t i = 0; i < count; ++i) doubles[i] = f64(i32(samples[i]));
}

template <class T>
void ToPairs(const T* samples, size_t count, size_t step, u32* pairs)
{
    constexpr u32 kFlip = sizeof(T) == 1 ? 0 : 0x80008000u;
    for (size_t i = 0; i < count; ++i) pairs[i] = (u32(samples[i]) | u32(samples[i + step]) << 16) ^ kFlip;
}

}  // namespace

extern const ConvolutionKernels kConvolutionKernels;
const ConvolutionKernels kConvolutionKernels = {ToDoubles<u8>, ToDoubles<u16>, ToPairs<u8>, ToPairs<u16>,
                                                DoubleRow<u8>, DoubleRow<u16>, PairRow<u8>, PairRow<u16>};

}  // namespace zlv::ZLV_TARGET
