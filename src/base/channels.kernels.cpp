// Gray values from the samples of a row.
//
// AVX2 and up: bytes of four pixels a lane are spread to words, two multiply-adds weigh them, and four vectors of
// sums are packed back into bytes.
#include "base/channels.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr u32 kWeightBits = 10;

template <class T>
T GrayOf(const T* pixel, const u32* weights)
{
    return T((pixel[0] * weights[0] + pixel[1] * weights[1] + pixel[2] * weights[2]) >> kWeightBits);
}

template <class T, size_t kChannels>
void GrayRowPlain(const T* pixels, T* gray, size_t count, const u32* weights)
{
    for (size_t x = 0; x < count; ++x) gray[x] = GrayOf(pixels + x * kChannels, weights);
}

void GrayRow16(const u16* pixels, u16* gray, size_t count, size_t channels, const u32* weights)
{
    if (channels == 3) GrayRowPlain<u16, 3>(pixels, gray, count, weights);
    else GrayRowPlain<u16, 4>(pixels, gray, count, weights);
}

#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)

struct GrayShuffles {
    __m256i firstTwo, third;  // bytes of a pixel to the words of a 32-bit lane
    __m256i weightsOfTwo, weightOfThird;
};

template <size_t kChannels>
GrayShuffles MakeGrayShuffles(const u32* weights)
{
    alignas(32) i8 firstTwo[32], third[32];
    for (size_t i = 0; i < 32; ++i) {
        const i8 pixel = i8(i % 16 / 4 * kChannels);
        const size_t byte = i % 4;
        firstTwo[i] = byte == 0 ? pixel : byte == 2 ? i8(pixel + 1) : i8(-1);
        third[i] = byte == 0 ? i8(pixel + 2) : i8(-1);
    }
    return {_mm256_load_si256(reinterpret_cast<const __m256i*>(firstTwo)),
            _mm256_load_si256(reinterpret_cast<const __m256i*>(third)),
            _mm256_set1_epi32(i32(weights[0] | weights[1] << 16)), _mm256_set1_epi32(i32(weights[2]))};
}

// Gray values of eight pixels, one a 32-bit lane. Reads 16 bytes at `pixels` and 16 at its fifth pixel.
template <size_t kChannels>
__m256i GrayOfEight(const u8* pixels, const GrayShuffles& shuffles)
{
    const __m128i lower = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i upper = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + 4 * kChannels));
    const __m256i bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(lower), upper, 1);
    const __m256i two = _mm256_madd_epi16(_mm256_shuffle_epi8(bytes, shuffles.firstTwo), shuffles.weightsOfTwo);
    const __m256i one = _mm256_madd_epi16(_mm256_shuffle_epi8(bytes, shuffles.third), shuffles.weightOfThird);
    return _mm256_srli_epi32(_mm256_add_epi32(two, one), kWeightBits);
}

template <size_t kChannels>
void GrayRowWide(const u8* pixels, u8* gray, size_t count, const u32* weights)
{
    constexpr size_t kStep = 32;
    constexpr size_t kReadAhead = 2;  // pixels that the last load of a step may touch behind it
    const GrayShuffles shuffles = MakeGrayShuffles<kChannels>(weights);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);  // undoes the interleaving of the packs
    size_t x = 0;
    for (; x + kStep + kReadAhead <= count; x += kStep) {
        const u8* const from = pixels + x * kChannels;
        const __m256i a = GrayOfEight<kChannels>(from, shuffles);
        const __m256i b = GrayOfEight<kChannels>(from + 8 * kChannels, shuffles);
        const __m256i c = GrayOfEight<kChannels>(from + 16 * kChannels, shuffles);
        const __m256i d = GrayOfEight<kChannels>(from + 24 * kChannels, shuffles);
        const __m256i bytes = _mm256_packus_epi16(_mm256_packus_epi32(a, b), _mm256_packus_epi32(c, d));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(gray + x), _mm256_permutevar8x32_epi32(bytes, order));
    }
    GrayRowPlain<u8, kChannels>(pixels + x * kChannels, gray + x, count - x, weights);
}

void GrayRow8(const u8* pixels, u8* gray, size_t count, size_t channels, const u32* weights)
{
    if (channels == 3) GrayRowWide<3>(pixels, gray, count, weights);
    else GrayRowWide<4>(pixels, gray, count, weights);
}

#else

void GrayRow8(const u8* pixels, u8* gray, size_t count, size_t channels, const u32* weights)
{
    if (channels == 3) GrayRowPlain<u8, 3>(pixels, gray, count, weights);
    else GrayRowPlain<u8, 4>(pixels, gray, count, weights);
}

#endif

}  // namespace

extern const ChannelKernels kChannelKernels;
const ChannelKernels kChannelKernels = {GrayRow8, GrayRow16};

}  // namespace zlv::ZLV_TARGET
