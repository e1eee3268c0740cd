// The gray tint: a look-up for each gray sample.
#include "tone/tint_grayscale.kernels.h"

#include "base/kernel_pixel_words.h"
#include "base/kernel_wide_table.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kBlock = 64;  // pixels

#if defined(ZLV_TARGET_avx512)

// Which bytes of three vectors, one a channel, make up three vectors of interleaved pixels.
struct Interleaving {
    alignas(64) u8 ofFirstTwo[3][64] = {};  // places in the first, plus 64 in the second
    alignas(64) u8 ofThird[3][64] = {};
    u64 isThird[3] = {};

    constexpr Interleaving()
    {
        for (u32 i = 0; i < 192; ++i) {
            const u32 pixel = i / 3, channel = i % 3;
            ofFirstTwo[i / 64][i % 64] = u8(pixel + (channel == 1 ? 64 : 0));
            ofThird[i / 64][i % 64] = u8(pixel);
            if (channel == 2) isThird[i / 64] |= u64{1} << (i % 64);
        }
    }
};
constexpr Interleaving kInterleaving;

// How many pixels have been done.
size_t TintPacked(const u8* gray, u8* pixels, size_t count, const GrayRamp& ramp)
{
    const WideTable first = LoadTable(ramp.channels[0]), second = LoadTable(ramp.channels[1]);
    const WideTable third = LoadTable(ramp.channels[2]);
    size_t x = 0;
    for (; x + 64 <= count; x += 64) {
        const __m512i samples = _mm512_loadu_si512(gray + x);
        const __m512i a = LookUp(first, samples), b = LookUp(second, samples), c = LookUp(third, samples);
        for (u32 vector = 0; vector < 3; ++vector) {
            const __m512i ofFirstTwo = _mm512_load_si512(kInterleaving.ofFirstTwo[vector]);
            const __m512i ofThird = _mm512_load_si512(kInterleaving.ofThird[vector]);
            const __m512i two = _mm512_permutex2var_epi8(a, ofFirstTwo, b);
            const __m512i three = _mm512_mask_permutexvar_epi8(two, kInterleaving.isThird[vector], ofThird, c);
            _mm512_storeu_si512(pixels + x * kColourBytes + vector * 64, three);
        }
    }
    return x;
}

#else

// A word at a time: its fourth byte belongs to the next pixel, which is written afterwards.
size_t TintPacked(const u8* gray, u8* pixels, size_t count, const GrayRamp& ramp)
{
    size_t x = 0;
    for (; x + 2 <= count; ++x) std::memcpy(pixels + x * kColourBytes, &ramp.colours[gray[x]], kWordBytes);
    return x;
}

#endif

void TintRow(const u8* gray, u8* pixels, size_t step, size_t count, const GrayRamp& ramp)
{
    size_t x = step == kColourBytes ? TintPacked(gray, pixels, count, ramp) : 0;
    u32 words[kBlock] = {};
    for (; x < count; x += kBlock) {
        const size_t size = count - x < kBlock ? count - x : kBlock;
        LoadPixelWords(pixels + x * step, step, size, words);
        for (size_t k = 0; k < size; ++k) words[k] = (words[k] & ~kColourMask) | ramp.colours[gray[x + k]];
        StorePixelWords(words, step, size, pixels + x * step);
    }
}

}  // namespace

extern const TintGrayscaleKernels kTintGrayscaleKernels;
const TintGrayscaleKernels kTintGrayscaleKernels = {TintRow};

}  // namespace zlv::ZLV_TARGET
