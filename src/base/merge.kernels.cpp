// Merging of four-byte pixels, one pixel a 32-bit lane.
//
// A pixel is a word with byte 0 lowest. Its bytes are worked on as two pairs, 0 with 2 and 1 with 3, each byte in 16
// bits of its own: a product of two bytes fits there, and so does the division by 255. The loops are plain; the
// compiler makes vectors of them. AVX2 and up blend by the table of products with 16-bit lanes instead: their products
// are cheaper.
//
// The table of products has a * b / 255, truncated, but for twelve of its entries, which the doubles it was computed
// in left one lower. All twelve are where a * b is a multiple of 255 and a ends on the bits 011. The loops use the
// division and watch for such products: a pixel that has one is done again by the table.
#include "base/merge.kernels.h"

#include <cstring>

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr u32 kPairMask = 0x00FF00FF;
constexpr u32 kPairOnes = 0x00010001;
constexpr u32 kColorMask = 0x00FFFFFF;

u32 Load(const u8* pixel)
{
    u32 word;
    std::memcpy(&word, pixel, sizeof word);
    return word;
}

void Store(u8* pixel, u32 word) { std::memcpy(pixel, &word, sizeof word); }

u32 EvenPair(u32 word) { return word & kPairMask; }
u32 OddPair(u32 word) { return (word >> 8) & kPairMask; }
u32 Join(u32 even, u32 odd) { return even | odd << 8; }
u32 AlphaOf(u32 word) { return word >> 24; }
u32 WithAlpha(u32 word, u32 alpha) { return (word & kColorMask) | alpha << 24; }

// 255 * quotient + remainder, of each product of a pair, as 256 * quotient + something: (p + 1 + p / 256). The low
// byte of that is 0 exactly for the multiples of 255 above 0.
u32 Spread(u32 products) { return products + kPairOnes + ((products >> 8) & kPairMask); }
u32 TakeQuotients(u32 spread) { return (spread >> 8) & kPairMask; }
u32 OverMax(u32 products) { return TakeQuotients(Spread(products)); }

// Bits 8 and 24 are clear for the products that are multiples of 255 above 0.
u32 WithoutMultiples(u32 spread) { return (spread & kPairMask) + kPairMask; }

// 1 if the table may deviate in the row of this alpha or of 255 less it: where the larger of the two ends on the bits
// 011. Eleven more rows do; leaving them out would cost more than they do.
u32 HasDeviatingRow(u32 alpha)
{
    const u32 isUpper = alpha >> 7;
    const u32 differing = (alpha ^ (4 + isUpper * 7)) & 7;  // from 011, or from 100 in the lower half
    return u32(differing == 0);
}

constexpr size_t kGroup = 32;

// Pixels blended whole, the fourth byte with the given alpha.
struct BlendedGroup {
    u32 words[kGroup];
};

// Returns the suspects, a bit a pixel: where some entry of the table may be one lower than what was used.
u32 BlendPixels(const u8* base, const u8* overlay, size_t count, u32 given, BlendedGroup& blended)
{
    u32 suspects[kGroup];
    u32 all = 0;
    for (size_t i = 0; i < count; ++i) {
        const u32 under = Load(base + i * 4), pixel = Load(overlay + i * 4);
        const u32 alpha = AlphaOf(pixel), rest = 255 - alpha, over = WithAlpha(pixel, given);
        const u32 evenOver = Spread(EvenPair(over) * alpha), evenUnder = Spread(EvenPair(under) * rest);
        const u32 oddOver = Spread(OddPair(over) * alpha), oddUnder = Spread(OddPair(under) * rest);
        const u32 clean = WithoutMultiples(evenOver) & WithoutMultiples(evenUnder) & WithoutMultiples(oddOver) &
                          WithoutMultiples(oddUnder);
        const u32 suspect = ~clean & (HasDeviatingRow(alpha) << 8 | HasDeviatingRow(alpha) << 24);
        suspects[i] = suspect;
        all |= suspect;
        blended.words[i] =
            Join(TakeQuotients(evenOver) + TakeQuotients(evenUnder), TakeQuotients(oddOver) + TakeQuotients(oddUnder));
    }
    u32 bits = 0;
    for (size_t i = 0; all != 0 && i < count; ++i) bits |= u32(suspects[i] != 0) << i;
    return bits;
}

#if defined(ZLV_TARGET_avx512)

using Vector = __m512i;
Vector LoadVector(const u8* bytes) { return _mm512_loadu_si512(bytes); }
void StoreVector(u32* words, Vector v) { _mm512_storeu_si512(words, v); }
Vector Zero() { return _mm512_setzero_si512(); }
Vector EachByte(i8 value) { return _mm512_set1_epi8(value); }
Vector EachHalf(i16 value) { return _mm512_set1_epi16(value); }
Vector EachWord(u32 value) { return _mm512_set1_epi32(i32(value)); }
Vector And(Vector a, Vector b) { return _mm512_and_si512(a, b); }
Vector Or(Vector a, Vector b) { return _mm512_or_si512(a, b); }
Vector Xor(Vector a, Vector b) { return _mm512_xor_si512(a, b); }
Vector Add(Vector a, Vector b) { return _mm512_add_epi16(a, b); }
Vector Smaller(Vector a, Vector b) { return _mm512_min_epi16(a, b); }
Vector Multiply(Vector a, Vector b) { return _mm512_mullo_epi16(a, b); }
Vector UpperBytes(Vector halves) { return _mm512_srli_epi16(halves, 8); }
Vector LowHalves(Vector bytes) { return _mm512_unpacklo_epi8(bytes, Zero()); }
Vector HighHalves(Vector bytes) { return _mm512_unpackhi_epi8(bytes, Zero()); }
Vector Pack(Vector low, Vector high) { return _mm512_packus_epi16(low, high); }
Vector IsZero(Vector bytes) { return _mm512_movm_epi8(_mm512_testn_epi8_mask(bytes, bytes)); }
Vector IsUpper(Vector bytes) { return _mm512_movm_epi8(_mm512_movepi8_mask(bytes)); }
u32 WordsNotZero(Vector v) { return _mm512_test_epi32_mask(v, v); }
Vector Shuffle(Vector bytes, __m128i order)
{
    return _mm512_shuffle_epi8(bytes, _mm512_maskz_broadcast_i32x4(0xFFFF, order));
}

#elif defined(ZLV_TARGET_avx2)

using Vector = __m256i;
Vector LoadVector(const u8* bytes) { return _mm256_loadu_si256(reinterpret_cast<const Vector*>(bytes)); }
void StoreVector(u32* words, Vector v) { _mm256_storeu_si256(reinterpret_cast<Vector*>(words), v); }
Vector Zero() { return _mm256_setzero_si256(); }
Vector EachByte(i8 value) { return _mm256_set1_epi8(value); }
Vector EachHalf(i16 value) { return _mm256_set1_epi16(value); }
Vector EachWord(u32 value) { return _mm256_set1_epi32(i32(value)); }
Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
Vector Xor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }
Vector Add(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
Vector Smaller(Vector a, Vector b) { return _mm256_min_epi16(a, b); }
Vector Multiply(Vector a, Vector b) { return _mm256_mullo_epi16(a, b); }
Vector UpperBytes(Vector halves) { return _mm256_srli_epi16(halves, 8); }
Vector LowHalves(Vector bytes) { return _mm256_unpacklo_epi8(bytes, Zero()); }
Vector HighHalves(Vector bytes) { return _mm256_unpackhi_epi8(bytes, Zero()); }
Vector Pack(Vector low, Vector high) { return _mm256_packus_epi16(low, high); }
Vector IsZero(Vector bytes) { return _mm256_cmpeq_epi8(bytes, Zero()); }
Vector IsUpper(Vector bytes) { return _mm256_cmpgt_epi8(Zero(), bytes); }
u32 WordsNotZero(Vector v) { return u32(_mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(v, Zero())))) ^ 255; }
Vector Shuffle(Vector bytes, __m128i order) { return _mm256_shuffle_epi8(bytes, _mm256_broadcastsi128_si256(order)); }

#endif

#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)

Vector SpreadHalves(Vector products) { return Add(Add(products, EachHalf(1)), UpperBytes(products)); }

// Pixels with a byte in each 16 bits.
struct SpreadPixels {
    Vector over, under;

    Vector Blended() const { return Add(UpperBytes(over), UpperBytes(under)); }
    // 0 where one of the products is a multiple of 255 above 0.
    Vector Multiples() const { return Smaller(And(over, EachHalf(255)), And(under, EachHalf(255))); }
};

SpreadPixels SpreadBoth(Vector base, Vector overlay, Vector alphas)
{
    const Vector rest = Xor(alphas, EachHalf(255));
    return {SpreadHalves(Multiply(overlay, alphas)), SpreadHalves(Multiply(base, rest))};
}

// As HasDeviatingRow, for bytes: all bits or none.
Vector HaveDeviatingRows(Vector alphas)
{
    const Vector wanted = Xor(IsUpper(alphas), EachByte(4));  // ends on 011 or 100
    return IsZero(And(Xor(alphas, wanted), EachByte(7)));
}

// A group at once. Every 16 bytes of a vector hold whole pixels, so unpacking and packing within them keep the order.
u32 BlendGroup(const u8* base, const u8* overlay, u32 given, BlendedGroup& blended)
{
    const __m128i alphaOfEach = _mm_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
    u32 suspects = 0;
    for (size_t i = 0; i < kGroup; i += sizeof(Vector) / 4) {
        const Vector under = LoadVector(base + i * 4), pixels = LoadVector(overlay + i * 4);
        const Vector alphas = Shuffle(pixels, alphaOfEach);
        const Vector over = Or(And(pixels, EachWord(kColorMask)), EachWord(given << 24));
        const SpreadPixels low = SpreadBoth(LowHalves(under), LowHalves(over), LowHalves(alphas));
        const SpreadPixels high = SpreadBoth(HighHalves(under), HighHalves(over), HighHalves(alphas));
        const Vector multiples = IsZero(Pack(low.Multiples(), high.Multiples()));
        suspects |= WordsNotZero(And(multiples, HaveDeviatingRows(alphas))) << i;
        StoreVector(blended.words + i, Pack(low.Blended(), high.Blended()));
    }
    return suspects;
}

u32 BlendByDivision(const u8* base, const u8* overlay, size_t count, u32 given, BlendedGroup& blended)
{
    if (count == kGroup) return BlendGroup(base, overlay, given, blended);
    return BlendPixels(base, overlay, count, given, blended);
}

#else

u32 BlendByDivision(const u8* base, const u8* overlay, size_t count, u32 given, BlendedGroup& blended)
{
    return BlendPixels(base, overlay, count, given, blended);
}

#endif

u32 BlendByTable(const u8* base, const u8* overlay, const MergeTerms& terms)
{
    const u8 *const ofOver = terms.product[overlay[3]], *const ofUnder = terms.product[255 - overlay[3]];
    u32 word = u32(ofOver[terms.givenAlpha] + ofUnder[base[3]]) << 24;
    for (u32 c = 0; c < 3; ++c) word |= u32(ofOver[overlay[c]] + ofUnder[base[c]]) << (8 * c);
    return word;
}

void BlendSuspects(const u8* base, const u8* overlay, u32 suspects, const MergeTerms& terms, BlendedGroup& blended)
{
    for (; suspects != 0; suspects &= suspects - 1) {
        const u32 i = u32(__builtin_ctz(suspects));
        blended.words[i] = BlendByTable(base + i * 4, overlay + i * 4, terms);
    }
}

// What a rule makes of the blended colours. `blended` holds in its alpha what blending it with the given one gives.
struct KeepAlpha {
    static u32 Of(u32 base, u32, u32 blended, u32) { return WithAlpha(blended, AlphaOf(base)); }
};

struct ReplaceAlpha {
    static u32 Of(u32 base, u32 alpha, u32 blended, u32) { return WithAlpha(blended, alpha ? alpha : AlphaOf(base)); }
};

struct LargerAlpha {
    static u32 Of(u32 base, u32 alpha, u32 blended, u32)
    {
        return WithAlpha(blended, AlphaOf(base) > alpha ? AlphaOf(base) : alpha);
    }
};

struct AddAlpha {
    static u32 Of(u32 base, u32 alpha, u32 blended, u32)
    {
        const u32 sum = AlphaOf(base) + alpha;
        return WithAlpha(blended, sum < 255 ? sum : 255);
    }
};

struct BlendAlpha {
    static u32 Of(u32, u32, u32 blended, u32) { return blended; }
};

struct GivenAlpha {
    static u32 Of(u32 base, u32 alpha, u32 blended, u32 given)
    {
        return WithAlpha(blended, alpha ? given : AlphaOf(base));
    }
};

template <class Rule>
void BlendRow(u8* base, const u8* overlay, size_t count, const MergeTerms& terms)
{
    const u32 given = terms.givenAlpha;
    while (count > 0) {
        const size_t pixels = count < kGroup ? count : kGroup;
        BlendedGroup blended;
        const u32 suspects = BlendByDivision(base, overlay, pixels, given, blended);
        BlendSuspects(base, overlay, suspects, terms, blended);
        for (size_t i = 0; i < pixels; ++i) {
            const u32 alpha = AlphaOf(Load(overlay + i * 4));
            Store(base + i * 4, Rule::Of(Load(base + i * 4), alpha, blended.words[i], given));
        }
        base += pixels * 4;
        overlay += pixels * 4;
        count -= pixels;
    }
}

// The alpha of both together, and the colours by the overlay's share of it. Quotients of numbers below 2^24 as floats
// truncate to the right integer: one that is not whole is further from the next than its rounding error.
u32 CompositeOver(u32 base, u32 overlay)
{
    const u32 alpha = AlphaOf(overlay);
    const u32 sum = OverMax((255 - alpha) * AlphaOf(base)) + alpha;
    const u32 divisor = sum ? sum : 1;  // without any alpha the share is 0, too
    const u32 share = u32(i32(f32(i32(alpha * 255)) / f32(i32(divisor))));
    const u32 rest = 255 - share;
    const u32 even = OverMax(EvenPair(base) * rest + EvenPair(overlay) * share);
    const u32 odd = OverMax(OddPair(base) * rest + OddPair(overlay) * share);
    return WithAlpha(Join(even, odd), sum);
}

void OverRow(u8* base, const u8* overlay, size_t count, const MergeTerms&)
{
    for (size_t i = 0; i < count; ++i) {
        Store(base + i * 4, CompositeOver(Load(base + i * 4), Load(overlay + i * 4)));
    }
}

// No bits for an alpha above 0, all of them for 0.
u32 NoneIfAny(u32 alpha) { return u32(i32(alpha - 1) >> 31); }

void OverKeepAlphaRow(u8* base, const u8* overlay, size_t count, const MergeTerms&)
{
    for (size_t i = 0; i < count; ++i) {
        const u32 under = Load(base + i * 4), pixel = Load(overlay + i * 4);
        // Without alpha here the overlay loses its own, and changes nothing. As a mask: a branch would keep the loop
        // from becoming vectors.
        const u32 over = pixel & ~NoneIfAny(AlphaOf(under));
        Store(base + i * 4, WithAlpha(CompositeOver(under, over), AlphaOf(under)));
    }
}

void ReplaceRow(u8* base, const u8* overlay, size_t count, const MergeTerms&)
{
    std::memmove(base, overlay, count * 4);
}

}  // namespace

extern const MergeKernels kMergeKernels;
const MergeKernels kMergeKernels = {{
    BlendRow<KeepAlpha>,
    BlendRow<ReplaceAlpha>,
    BlendRow<LargerAlpha>,
    BlendRow<AddAlpha>,
    BlendRow<BlendAlpha>,
    BlendRow<GivenAlpha>,
    OverRow,
    OverKeepAlphaRow,
    ReplaceRow,
}};

}  // namespace zlv::ZLV_TARGET
