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

}  // namespace
}  // namespace zlv
