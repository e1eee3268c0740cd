// Colour pixels as 32-bit words, byte 0 lowest: formulas over three components then run on one lane a pixel, whatever
// the size of a pixel in memory is.
//
// For kernel files alone. Everything here has internal linkage: what is compiled for one target must not reach another.
#pragma once

#include "platform/types.h"

#include <cstring>

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv {
namespace {

constexpr size_t kColourBytes = 3;
constexpr size_t kWordBytes = 4;
constexpr u32 kColourMask = 0x00FFFFFF;

[[maybe_unused]] u32 ByteOf(u32 word, u32 shift) { return (word >> shift) & 255; }

[[maybe_unused]] u32 LoadColour(const u8* pixel) { return pixel[0] | u32(pixel[1]) << 8 | u32(pixel[2]) << 16; }

[[maybe_unused]] void StoreColour(u8* pixel, u32 word)
{
    pixel[0] = u8(word);
    pixel[1] = u8(word >> 8);
    pixel[2] = u8(word >> 16);
}

// How many of `count` packed three-byte pixels vectors have taken; the rest goes one by one.
#if defined(ZLV_TARGET_avx512)

constexpr __mmask64 kPackedSixteen = (__mmask64{1} << 48) - 1;
constexpr __mmask64 kAllBytes = ~__mmask64{0};

// Where the bytes of sixteen pixels come from, on the way to words and back.
struct PackedPlaces {
    alignas(64) u8 spread[64] = {};
    alignas(64) u8 pack[64] = {};

    constexpr PackedPlaces()
    {
        for (u8 i = 0; i < 64; ++i) spread[i] = u8(i / 4 * 3 + i % 4 % 3);
        for (u8 i = 0; i < 48; ++i) pack[i] = u8(i / 3 * 4 + i % 3);
    }
};
constexpr PackedPlaces kPackedPlaces;

[[maybe_unused]] size_t SpreadPacked(const u8* pixels, size_t count, u32* words)
{
    const __m512i order = _mm512_load_si512(kPackedPlaces.spread);
    size_t x = 0;
    for (; x + 16 <= count; x += 16) {
        const __m512i bytes = _mm512_maskz_loadu_epi8(kPackedSixteen, pixels + x * kColourBytes);
        _mm512_storeu_si512(words + x, _mm512_maskz_permutexvar_epi8(kAllBytes, order, bytes));
    }
    return x;
}

[[maybe_unused]] size_t PackSpread(const u32* words, size_t count, u8* pixels)
{
    const __m512i order = _mm512_load_si512(kPackedPlaces.pack);
    size_t x = 0;
    for (; x + 16 <= count; x += 16) {
        const __m512i sixteen = _mm512_loadu_si512(words + x);
        const __m512i bytes = _mm512_maskz_permutexvar_epi8(kAllBytes, order, sixteen);
        _mm512_mask_storeu_epi8(pixels + x * kColourBytes, kPackedSixteen, bytes);
    }
    return x;
}

#elif defined(ZLV_TARGET_avx2)

// Vectors of 16 bytes hold four pixels and a third of the fifth and sixth: two pixels must follow.
constexpr size_t kAhead = 2;

[[maybe_unused]] size_t SpreadPacked(const u8* pixels, size_t count, u32* words)
{
    const __m128i order = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
    size_t x = 0;
    for (; x + 4 + kAhead <= count; x += 4) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + x * kColourBytes));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + x), _mm_shuffle_epi8(bytes, order));
    }
    return x;
}

// What is written behind the four pixels of a step, later steps write again.
[[maybe_unused]] size_t PackSpread(const u32* words, size_t count, u8* pixels)
{
    const __m128i order = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    size_t x = 0;
    for (; x + 4 + kAhead <= count; x += 4) {
        const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(words + x));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels + x * kColourBytes), _mm_shuffle_epi8(four, order));
    }
    return x;
}

#else

// A word at a time: the fourth byte belongs to the next pixel, which is written afterwards.
[[maybe_unused]] size_t SpreadPacked(const u8* pixels, size_t count, u32* words)
{
    size_t x = 0;
    for (; x + 2 <= count; ++x) std::memcpy(words + x, pixels + x * kColourBytes, kWordBytes);
    return x;
}

[[maybe_unused]] size_t PackSpread(const u32* words, size_t count, u8* pixels)
{
    size_t x = 0;
    for (; x + 2 <= count; ++x) std::memcpy(pixels + x * kColourBytes, words + x, kWordBytes);
    return x;
}

#endif

// Pixels of `step` bytes, three at least. Byte 3 of a word is that of its pixel when `step` is 4, and anything else
// otherwise.
[[maybe_unused]] void LoadPixelWords(const u8* pixels, size_t step, size_t count, u32* words)
{
    if (step == kWordBytes) {
        std::memcpy(words, pixels, count * kWordBytes);
        return;
    }
    size_t x = step == kColourBytes ? SpreadPacked(pixels, count, words) : 0;
    for (; x < count; ++x) words[x] = LoadColour(pixels + x * step);
}

// The three lowest bytes of each word; with a step of 4 all of them.
[[maybe_unused]] void StorePixelWords(const u32* words, size_t step, size_t count, u8* pixels)
{
    if (step == kWordBytes) {
        std::memcpy(pixels, words, count * kWordBytes);
        return;
    }
    size_t x = step == kColourBytes ? PackSpread(words, count, pixels) : 0;
    for (; x < count; ++x) StoreColour(pixels + x * step, words[x]);
}

}  // namespace
}  // namespace zlv
