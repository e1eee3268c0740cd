// Samples of window sums. What the compiler turns into good vectors by itself is plain loops.
#include "filters/sum_filters.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

// Lanes of 16 bits, with the upper half of products, which compilers make of three instructions instead of one.
#if defined(ZLV_TARGET_avx512)

using Words = __m512i;
Words Load(const u16* from) { return _mm512_loadu_si512(from); }
Words LoadBytes(const u8* from)
{
    return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)));
}
void StoreBytes(Words a, u8* to)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_maskz_cvtepi16_epi8(0xFFFFFFFF, a));
}
Words Broadcast(u16 value) { return _mm512_set1_epi16(i16(value)); }
Words UpperProduct(Words a, Words b) { return _mm512_mulhi_epu16(a, b); }
Words Add(Words a, Words b) { return _mm512_add_epi16(a, b); }
Words And(Words a, Words b) { return _mm512_and_si512(a, b); }
Words ShiftRight(Words a, u32 bits) { return _mm512_srl_epi16(a, _mm_cvtsi32_si128(i32(bits))); }

#elif defined(ZLV_TARGET_avx2)

using Words = __m256i;
Words Load(const u16* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
Words LoadBytes(const u8* from)
{
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}
void StoreBytes(Words a, u8* to)
{
    const __m128i packed = _mm_packus_epi16(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), packed);
}
Words Broadcast(u16 value) { return _mm256_set1_epi16(i16(value)); }
Words UpperProduct(Words a, Words b) { return _mm256_mulhi_epu16(a, b); }
Words Add(Words a, Words b) { return _mm256_add_epi16(a, b); }
Words And(Words a, Words b) { return _mm256_and_si256(a, b); }
Words ShiftRight(Words a, u32 bits) { return _mm256_srl_epi16(a, _mm_cvtsi32_si128(i32(bits))); }

#elif !defined(ZLV_PORTABLE)

using Words = __m128i;
Words Load(const u16* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
Words LoadBytes(const u8* from)
{
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)), _mm_setzero_si128());
}
void StoreBytes(Words a, u8* to) { _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(a, a)); }
Words Broadcast(u16 value) { return _mm_set1_epi16(i16(value)); }
Words UpperProduct(Words a, Words b) { return _mm_mulhi_epu16(a, b); }
Words Add(Words a, Words b) { return _mm_add_epi16(a, b); }
Words And(Words a, Words b) { return _mm_and_si128(a, b); }
Words ShiftRight(Words a, u32 bits) { return _mm_srl_epi16(a, _mm_cvtsi32_si128(i32(bits))); }

#else

using Words = u16;
Words Load(const u16* from) { return *from; }
Words LoadBytes(const u8* from) { return *from; }
void StoreBytes(Words a, u8* to) { *to = u8(a); }

#endif

// The same for what is left behind the last whole vector.
u16 UpperProduct(u16 a, u16 b) { return u16((u32(a) * b) >> 16); }
u16 Add(u16 a, u16 b) { return u16(a + b); }
u16 And(u16 a, u16 b) { return a & b; }
u16 ShiftRight(u16 a, u32 bits) { return u16(a >> bits); }

// A number for both.
struct Constant {
    Words words;
    u16 one;

#if defined(ZLV_PORTABLE)
    explicit Constant(u32 value) : words(u16(value)), one(u16(value)) {}
#else
    explicit Constant(u32 value) : words(Broadcast(u16(value))), one(u16(value)) {}
    operator Words() const { return words; }
#endif
    operator u16() const { return one; }
};

constexpr size_t kWords = sizeof(Words) / sizeof(u16);

// sum / area as a product: the multiplier is 2^k / area rounded up, k = 16 + shift. If it is e / area too large, the
// quotient is too large by sum * e / (area * 2^k). That does not reach the next integer as long as sum * e < 2^k, which
// holds for every sum of the seven odd areas from 9 to 225.
void NarrowMean(const u16* sums, u32 area, size_t count, u8* out)
{
    u32 shift = 0;
    while ((2u << shift) < area) ++shift;
    const Constant multiplier(((0x10000u << shift) + area - 1) / area);
    size_t i = 0;
    for (; i + kWords <= count; i += kWords) {
        StoreBytes(ShiftRight(UpperProduct(Load(sums + i), Words(multiplier)), shift), out + i);
    }
    for (; i < count; ++i) out[i] = u8(ShiftRight(UpperProduct(sums[i], u16(multiplier)), shift));
}

// Sums below 2^23 have a sign to spare, which makes the conversion one instruction.
f32 RealOf(u32 sum, f32) { return f32(i32(sum)); }
f64 RealOf(u32 sum, f64) { return sum; }

// With half a unit added, the quotient is at least 0.5 / area away from any integer. Reals of 24 bits are off by 256 *
// 2^-23 at most, less than that up to an area of 10201; up to there a sum with its half is such a number. Of 53 bits
// they are good for any area.
template <class Real>
void WideMeanIn(const u32* __restrict sums, u32 area, size_t count, u8* __restrict out)
{
    const Real reciprocal = Real(1) / Real(area);
    for (size_t i = 0; i < count; ++i) out[i] = u8(i32((RealOf(sums[i], Real()) + Real(0.5)) * reciprocal));
}

constexpr u32 kLargestSinglePrecisionArea = 101 * 101;

void WideMean(const u32* sums, u32 area, size_t count, u8* out)
{
    if (area <= kLargestSinglePrecisionArea) WideMeanIn<f32>(sums, area, count, out);
    else WideMeanIn<f64>(sums, area, count, out);
}

template <class Sum>
void Sharpen(const Sum* __restrict sums, const u8* __restrict own, u32 area, f64 amount, size_t count,
             u8* __restrict out)
{
    const i32 ownWeight = i32(area);
    for (size_t i = 0; i < count; ++i) {
        const i32 excess = i32(sums[i]) - ownWeight * own[i];
        const f64 sharpened = own[i] - amount * excess;
        const f64 notNegative = sharpened > 0 ? sharpened : 0;
        out[i] = u8(i32(notNegative < 255 ? notNegative : 255));
    }
}

// A weight of 65536 is the sample itself.
struct Weight {
    Constant fraction, whole;

    explicit Weight(u32 weight) : fraction(weight), whole(weight >> 16 ? 0xFFFF : 0) {}
    template <class W>
    W Times(W sample) const
    {
        return Add(UpperProduct(sample, W(fraction)), And(sample, W(whole)));
    }
};

void Blend(u8* means, const u8* own, BlendWeights weights, size_t count)
{
    const Weight meanWeight(weights.mean), ownWeight(weights.own);
    size_t i = 0;
    for (; i + kWords <= count; i += kWords) {
        StoreBytes(Add(meanWeight.Times(LoadBytes(means + i)), ownWeight.Times(LoadBytes(own + i))), means + i);
    }
    for (; i < count; ++i) means[i] = u8(Add(meanWeight.Times(u16(means[i])), ownWeight.Times(u16(own[i]))));
}

}  // namespace

extern const AllSumFilterKernels kSumFilterKernels;
const AllSumFilterKernels kSumFilterKernels = {{NarrowMean, Sharpen<u16>}, {WideMean, Sharpen<u32>}, Blend};

}  // namespace zlv::ZLV_TARGET
