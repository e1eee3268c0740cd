// Four channels of a pixel side by side, as doubles. For kernel files alone.
#pragma once

#include "runtime/vector_bytes.h"

#include <cstring>

#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)
#include <immintrin.h>
#endif

namespace zlv {
namespace {

#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)

struct Quad {
    __m256d lanes;

    static Quad Of(const u8* four)
    {
        i32 bytes;
        std::memcpy(&bytes, four, 4);
        return {_mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(bytes)))};
    }

    // Truncated, and limited to 0..255.
    void Write(u8* to, u32 count) const
    {
        const __m128i words = _mm_packs_epi32(_mm256_cvttpd_epi32(lanes), _mm_setzero_si128());
        const i32 bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        if (count == 4) {
            std::memcpy(to, &bytes, 4);
        } else {
            for (u32 c = 0; c < count; ++c) to[c] = u8(bytes >> (8 * c));
        }
    }

    friend Quad operator+(Quad a, Quad b) { return {_mm256_add_pd(a.lanes, b.lanes)}; }
    friend Quad operator+(Quad a, f64 b) { return {_mm256_add_pd(a.lanes, _mm256_set1_pd(b))}; }
    friend Quad operator*(Quad a, f64 b) { return {_mm256_mul_pd(a.lanes, _mm256_set1_pd(b))}; }
};

#else

struct Quad {
    f64 lanes[4];

    static Quad Of(const u8* four) { return {{f64(four[0]), f64(four[1]), f64(four[2]), f64(four[3])}}; }

    void Write(u8* to, u32 count) const
    {
        for (u32 c = 0; c < count; ++c) {
            const i32 level = i32(lanes[c]);
            to[c] = u8(level > 255 ? 255 : level < 0 ? 0 : level);
        }
    }

    friend Quad operator+(const Quad& a, const Quad& b)
    {
        return {{a.lanes[0] + b.lanes[0], a.lanes[1] + b.lanes[1], a.lanes[2] + b.lanes[2], a.lanes[3] + b.lanes[3]}};
    }
    friend Quad operator+(const Quad& a, f64 b)
    {
        return {{a.lanes[0] + b, a.lanes[1] + b, a.lanes[2] + b, a.lanes[3] + b}};
    }
    friend Quad operator*(const Quad& a, f64 b)
    {
        return {{a.lanes[0] * b, a.lanes[1] * b, a.lanes[2] * b, a.lanes[3] * b}};
    }
};

#endif

// Up to four channels of a pixel in an image of `bytes` bytes; lanes beyond `count` hold something finite.
Quad LoadQuad(const u8* image, u64 bytes, u64 offset, u32 count)
{
    if (offset + 4 <= bytes) return Quad::Of(image + offset);
    u8 four[4] = {};
    for (u32 c = 0; c < count; ++c) four[c] = image[offset + c];
    return Quad::Of(four);
}

// The weights of the cubic convolution with the parameter -1 at t of the way from the second of four samples to the
// third (R. G. Keys, "Cubic convolution interpolation for digital image processing", 1981).
struct CubicWeights {
    f64 first, second, third, fourth;

    CubicWeights(f64 w0, f64 w1, f64 w2, f64 w3) : first(w0), second(w1), third(w2), fourth(w3) {}
    explicit CubicWeights(f64 t)
        : first(-(1 - t) * t * (1 - t)),
          second(1 - 2 * (t * t) + t * t * t),
          third(((t + 1) - t * t) * t),
          fourth(-(t * t) * (1 - t))
    {
    }

    Quad Sum(const Quad& a, const Quad& b, const Quad& c, const Quad& d) const
    {
        return a * first + b * second + c * third + d * fourth;
    }
};

// Those of many places. They are computed together: the compiler makes vectors of that.
template <u32 kMost>
class CubicWeightRows {
public:
    void Set(const f64* fractions, u32 count)
    {
        for (u32 i = 0; i < count; ++i) {
            const CubicWeights cubic(fractions[i]);
            first_[i] = cubic.first;
            second_[i] = cubic.second;
            third_[i] = cubic.third;
            fourth_[i] = cubic.fourth;
        }
    }

    CubicWeights operator[](u32 i) const { return {first_[i], second_[i], third_[i], fourth_[i]}; }

private:
    f64 first_[kMost], second_[kMost], third_[kMost], fourth_[kMost];
};

// What is read at the first of four pixels of a row.
constexpr u32 kCubicRowBytes = 16;

// Where in these bytes the channels of one of the four pixels are, each as the lowest byte of four.
template <u32 kChannels>
struct PixelOrder {
    i8 bytes[kCubicRowBytes] = {};

    explicit constexpr PixelOrder(u32 pixel)
    {
        for (u32 i = 0; i < kCubicRowBytes; ++i) {
            bytes[i] = i % 4 == 0 && i / 4 < kChannels ? i8(pixel * kChannels + i / 4) : i8(-1);
        }
    }
};

// The sum of 4 x 4 pixels of up to four channels.
#if defined(ZLV_TARGET_avx512)

// Of two rows at once.
template <u32 kChannels>
[[gnu::always_inline]] inline __m512d SumOfRows(const CubicWeights& across, const u8* upper, const u8* lower)
{
    const auto load = [](const u8* row) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(row)); };
    const __m256i rows = _mm256_inserti128_si256(_mm256_castsi128_si256(load(upper)), load(lower), 1);
    const auto weighed = [&](u32 pixel, f64 weight) {
        const PixelOrder<kChannels> order(pixel);
        const __m256i channels =
            _mm256_shuffle_epi8(rows, _mm256_broadcastsi128_si256(load(reinterpret_cast<const u8*>(order.bytes))));
        return _mm512_mul_pd(_mm512_maskz_cvtepi32_pd(0xFF, channels), _mm512_set1_pd(weight));
    };
    const __m512d two = _mm512_add_pd(weighed(0, across.first), weighed(1, across.second));
    return _mm512_add_pd(_mm512_add_pd(two, weighed(2, across.third)), weighed(3, across.fourth));
}

template <u32 kChannels>
[[gnu::always_inline]] inline Quad CubicSum(const CubicWeights& across, const CubicWeights& down, const u8* first,
                                            size_t stride)
{
    const __m512d upper = SumOfRows<kChannels>(across, first, first + stride);
    const __m512d lower = SumOfRows<kChannels>(across, first + 2 * stride, first + 3 * stride);
    const auto firstOf = [](__m512d rows) { return Quad{__builtin_shufflevector(rows, rows, 0, 1, 2, 3)}; };
    const auto secondOf = [](__m512d rows) { return Quad{__builtin_shufflevector(rows, rows, 4, 5, 6, 7)}; };
    return down.Sum(firstOf(upper), secondOf(upper), firstOf(lower), secondOf(lower));
}

#elif defined(ZLV_TARGET_avx2)

template <u32 kChannels>
[[gnu::always_inline]] inline Quad CubicSum(const CubicWeights& across, const CubicWeights& down, const u8* first,
                                            size_t stride)
{
    const auto load = [](const void* bytes) { return _mm_loadu_si128(static_cast<const __m128i*>(bytes)); };
    const auto sumOf = [&](size_t row) {
        const __m128i bytes = load(first + row * stride);
        const auto pixel = [&](u32 i) {
            const PixelOrder<kChannels> order(i);
            return Quad{_mm256_cvtepi32_pd(_mm_shuffle_epi8(bytes, load(order.bytes)))};
        };
        return across.Sum(pixel(0), pixel(1), pixel(2), pixel(3));
    };
    return down.Sum(sumOf(0), sumOf(1), sumOf(2), sumOf(3));
}

#else

template <u32 kChannels>
[[gnu::always_inline]] inline Quad CubicSum(const CubicWeights& across, const CubicWeights& down, const u8* first,
                                            size_t stride)
{
    const auto sumOf = [&](size_t row) {
        const u8* const four = first + row * stride;
        return across.Sum(Quad::Of(four), Quad::Of(four + kChannels), Quad::Of(four + 2 * kChannels),
                          Quad::Of(four + 3 * kChannels));
    };
    return down.Sum(sumOf(0), sumOf(1), sumOf(2), sumOf(3));
}

#endif

}  // namespace
}  // namespace zlv
