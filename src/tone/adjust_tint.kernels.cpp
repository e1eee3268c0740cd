// The tint rotation, one lane a pixel: whole numbers in vectors of 32-bit lanes, with products of their 16-bit halves,
// which cost least; and the rotation in doubles, a loop that compilers make vectors of.
#include "tone/adjust_tint.kernels.h"

#include "base/kernel_pixel_words.h"
#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kBlock = 64;  // pixels

using Ints = Lanes<f32>::Ints;
constexpr size_t kLanes = Lanes<f32>::kCount;

Ints InEachLane(i32 value) { return Ints{} + value; }
i32 Halves(i32 low, i32 high) { return low | high << 16; }

// Signed: low half * low half + high half * high half.
Ints SumOfProducts(const Ints& a, const Ints& b)
{
#if defined(ZLV_PORTABLE)
    return ((a << 16) >> 16) * ((b << 16) >> 16) + (a >> 16) * (b >> 16);
#elif defined(ZLV_TARGET_avx512)
    return Ints(_mm512_madd_epi16(__m512i(a), __m512i(b)));
#elif defined(ZLV_TARGET_avx2)
    return Ints(_mm256_madd_epi16(__m256i(a), __m256i(b)));
#else
    return Ints(_mm_madd_epi16(__m128i(a), __m128i(b)));
#endif
}

// The upper 16 bits of the product of two numbers of 16 bits without a sign.
Ints UpperProduct(const Ints& a, const Ints& b)
{
#if defined(ZLV_PORTABLE)
    using Unsigned __attribute__((vector_size(sizeof(Ints)))) = u32;
    return Ints((Unsigned(a) * Unsigned(b)) >> 16);
#elif defined(ZLV_TARGET_avx512)
    return Ints(_mm512_mulhi_epu16(__m512i(a), __m512i(b)));
#elif defined(ZLV_TARGET_avx2)
    return Ints(_mm256_mulhi_epu16(__m256i(a), __m256i(b)));
#else
    return Ints(_mm_mulhi_epu16(__m128i(a), __m128i(b)));
#endif
}

// n / 100, truncated, for n from 0 up to 43,698.
Ints Hundredths(const Ints& n) { return UpperProduct(n, InEachLane(41944)) >> 6; }

// n / 100, truncated towards zero, for n from -20,200 up to 23,400. (The green part below stays within 12,500: a turned
// difference is no longer than the difference was, and none is longer than 229.)
Ints SignedHundredths(const Ints& n)
{
    constexpr i32 kRaise = 202;
    return Hundredths(n + ((n >> 31) & 99) + kRaise * 100) - kRaise;
}

Ints ToBytes(const Ints& values)
{
    const Ints raised = values < 0 ? Ints{} : values;
    return raised > 255 ? InEachLane(255) : raised;
}

// Where the components stand in a word.
struct Order {
    i32 red, blue;  // shifts
    Ints shares;    // of bytes 0 and 2 in the brightness, in percent

    explicit Order(bool isBgr)
        : red(isBgr ? 16 : 0), blue(16 - red), shares(InEachLane(isBgr ? Halves(11, 30) : Halves(30, 11)))
    {
    }
};

// Pixels from `count` on are worked on too, up to a whole vector.
struct Block {
    u32 words[kBlock];
    i32 y[kBlock];  // brightness
    i32 i[kBlock];  // distance of red from it
    i32 q[kBlock];  // distance of blue

    void Split(size_t count, const Order& order)
    {
        const Ints greenShare = InEachLane(59), hundred = InEachLane(100);
        for (size_t x = 0; x < count; x += kLanes) {
            const Ints word = Load<Ints>(words + x);
            const Ints red = (word >> order.red) & 255, blue = (word >> order.blue) & 255;
            const Ints sum =
                SumOfProducts(word & Halves(255, 255), order.shares) + SumOfProducts((word >> 8) & 255, greenShare);
            const Ints bright = Hundredths(sum);
            const Ints hasRest = SumOfProducts(bright, hundred) != sum;
            // The distances are (100 * component - sum) / 100, truncated towards zero: one less than the difference
            // if that is above zero and the sum is no whole hundred. (A comparison that holds is -1.)
            Store(y + x, bright);
            Store(i + x, red - bright + ((red > bright) & hasRest));
            Store(q + x, blue - bright + ((blue > bright) & hasRest));
        }
    }

    // The products are made with 256 times the cosine and sine and divided by 256 again: a power of two, which no
    // rounding notices.
    void Turn(size_t count, f64 cosine, f64 sine)
    {
        for (size_t x = 0; x < count; ++x) {
            const f64 fromI = i[x], fromQ = q[x];
            i[x] = i32(fromI * cosine + fromQ * sine);
            q[x] = i32(fromQ * cosine - fromI * sine);
        }
    }

    void Join(size_t count, const Order& order)
    {
        const Ints partsOfGreen = InEachLane(Halves(51, 19));
        for (size_t x = 0; x < count; x += kLanes) {
            const Ints word = Load<Ints>(words + x), bright = Load<Ints>(y + x);
            const Ints turnedI = Load<Ints>(i + x), turnedQ = Load<Ints>(q + x);
            const Ints both = (turnedI & 0xFFFF) | (turnedQ << 16);
            const Ints green = ToBytes(bright - SignedHundredths(SumOfProducts(both, partsOfGreen)));
            Store(words + x, (word & i32(~kColourMask)) | ToBytes(turnedI + bright) << order.red | green << 8 |
                                 ToBytes(turnedQ + bright) << order.blue);
        }
    }
};

void TurnRow(u8* pixels, size_t step, size_t count, const TintRotation& rotation)
{
    const Order order(rotation.isBgr);
    const f64 cosine = rotation.cosine, sine = rotation.sine;
    Block block = {};
    for (size_t x = 0; x < count; x += kBlock) {
        const size_t size = count - x < kBlock ? count - x : kBlock;
        LoadPixelWords(pixels + x * step, step, size, block.words);
        block.Split(size, order);
        block.Turn(size, cosine, sine);
        block.Join(size, order);
        StorePixelWords(block.words, step, size, pixels + x * step);
    }
}

}  // namespace

extern const AdjustTintKernels kAdjustTintKernels;
const AdjustTintKernels kAdjustTintKernels = {TurnRow};

}  // namespace zlv::ZLV_TARGET
