// Rows of the destination, sample by sample.
//
// Sums keep their written order: the lanes are samples, never parts of a sum.
#include "base/resize_rows.kernels.h"

#include "base/kernel_near_sums.h"

#if defined(ZLV_TARGET_avx512) || defined(ZLV_TARGET_avx2)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

template <class T>
void BilinearExactly(const BilinearRow<T>& row, size_t first, size_t count, T* __restrict out)
{
    const T* __restrict leftUpper = row.leftUpper + first;
    const T* __restrict rightUpper = row.rightUpper + first;
    const T* __restrict leftLower = row.leftLower + first;
    const T* __restrict rightLower = row.rightLower + first;
    const f64* __restrict fxs = row.fx + first;
    const f64 fy = row.fy;
    for (size_t i = 0; i < count; ++i) {
        const f64 fx = fxs[i];
        const f64 sum = i32(rightUpper[i]) * (fx * (1 - fy)) + i32(leftUpper[i]) * ((1 - fx) * (1 - fy)) +
                        i32(rightLower[i]) * (fx * fy) + i32(leftLower[i]) * ((1 - fx) * fy);
        out[i] = T(i32(sum));
    }
}

bool BilinearWords(const BilinearRow<u16>& row, size_t count, u16* out)
{
    BilinearExactly(row, 0, count, out);
    return false;
}

bool BilinearBytes(const BilinearRow<u8>& row, size_t count, u8* out)
{
    const Floats fy = Broadcast(f32(row.fy)), limit = Broadcast(kBilinearTolerance * kBilinearTolerance);
    size_t again = 0;
    size_t at = 0;
    for (; row.nearUpper && at + kUnit <= count; at += kUnit) {
        Floats sums[kUnitVectors];
        for (size_t v = 0; v < kUnitVectors; ++v) {
            const Floats upper = Load<Floats>(row.nearUpper + at + v * kLanes);
            const Floats lower = Load<Floats>(row.nearLower + at + v * kLanes);
            sums[v] = upper + fy * (lower - upper);
        }
        StoreSamples(sums, out + at);
        if (!IsAnySet(LeastFraction(sums) < limit)) continue;
        BilinearExactly(row, at, kUnit, out + at);
        ++again;
    }
    BilinearExactly(row, at, count - at, out + at);
    return 2 * again * kUnit > count;
}

void BlendBytes(const u8* __restrict left, const u8* __restrict right, const f32* __restrict fxs, size_t count,
                f32* __restrict near)
{
    for (size_t i = 0; i < count; ++i) near[i] = f32(left[i]) + fxs[i] * f32(right[i] - left[i]);
}

template <class T>
void CubicAcross(const CubicRow<T>& row, size_t count, f64* __restrict out)
{
    const T* __restrict s0 = row.samples[0];
    const T* __restrict s1 = row.samples[1];
    const T* __restrict s2 = row.samples[2];
    const T* __restrict s3 = row.samples[3];
    const f64* __restrict w0 = row.weights[0];
    const f64* __restrict w1 = row.weights[1];
    const f64* __restrict w2 = row.weights[2];
    const f64* __restrict w3 = row.weights[3];
    for (size_t i = 0; i < count; ++i) {
        out[i] = i32(s1[i]) * w1[i] + i32(s0[i]) * w0[i] + i32(s2[i]) * w2[i] - i32(s3[i]) * w3[i];
    }
}

template <class T>
void CubicDown(const CubicColumn& column, size_t count, T* __restrict out)
{
    constexpr f64 kLargest = sizeof(T) == 1 ? 255 : 65535;
    const f64* __restrict r0 = column.rows[0];
    const f64* __restrict r1 = column.rows[1];
    const f64* __restrict r2 = column.rows[2];
    const f64* __restrict r3 = column.rows[3];
    const f64 w0 = column.weights[0], w1 = column.weights[1], w2 = column.weights[2], w3 = column.weights[3];
    for (size_t i = 0; i < count; ++i) {
        const f64 sum = r1[i] * w1 + r0[i] * w0 + r2[i] * w2 - r3[i] * w3;
        const f64 positive = sum > 0 ? sum : 0;
        out[i] = T(i32(positive < kLargest ? positive : kLargest));
    }
}

template <class T>
void AddArea(const T* __restrict samples, const f64* __restrict weights, f64 rowWeight, size_t count,
             f64* __restrict sums)
{
    for (size_t i = 0; i < count; ++i) sums[i] += i32(samples[i]) * (weights[i] * rowWeight);
}

template <class T>
void DivideArea(const f64* __restrict sums, const f64* __restrict norms, f64 rowWeights, size_t count,
                T* __restrict out)
{
    for (size_t i = 0; i < count; ++i) out[i] = T(i32(sums[i] / (norms[i] * rowWeights)));
}

template <class T>
void AddRow(const T* __restrict samples, size_t count, u32* __restrict sums)
{
    for (size_t i = 0; i < count; ++i) sums[i] += samples[i];
}

template <size_t kBytes>
void PickPixels(const u32* __restrict indexes, size_t count, const u8* __restrict row, u8* __restrict out)
{
    for (size_t i = 0; i < count; ++i) __builtin_memcpy(out + i * kBytes, row + indexes[i] * kBytes, kBytes);
}

// Three bytes go as four where there is room: the next pixel writes over the fourth.
void PickTriples(const PixelPick& pixels, const u8* __restrict row, u8* __restrict out)
{
    const u32* __restrict indexes = pixels.indexes;
    const size_t asFour = pixels.inside < pixels.count ? pixels.inside : pixels.count - 1;
    const auto copy = [&](size_t i) { __builtin_memcpy(out + i * 3, row + indexes[i] * size_t(3), 4); };
    size_t i = 0;
    for (; i + 4 <= asFour; i += 4) {
        copy(i);
        copy(i + 1);
        copy(i + 2);
        copy(i + 3);
    }
    for (; i < asFour; ++i) copy(i);
    PickPixels<3>(indexes + asFour, pixels.count - asFour, row, out + asFour * 3);
}

void Pick(const PixelPick& pixels, const void* row, void* out)
{
    const u8* const from = static_cast<const u8*>(row);
    u8* const to = static_cast<u8*>(out);
    switch (pixels.pixelBytes) {
    case 1: return PickPixels<1>(pixels.indexes, pixels.count, from, to);
    case 2: return PickPixels<2>(pixels.indexes, pixels.count, from, to);
    case 3: return PickTriples(pixels, from, to);
    case 4: return PickPixels<4>(pixels.indexes, pixels.count, from, to);
    case 6: return PickPixels<6>(pixels.indexes, pixels.count, from, to);
    case 8: return PickPixels<8>(pixels.indexes, pixels.count, from, to);
    default: break;
    }
    for (size_t i = 0; i < pixels.count; ++i) {
        __builtin_memcpy(to + i * pixels.pixelBytes, from + pixels.indexes[i] * pixels.pixelBytes, pixels.pixelBytes);
    }
}

#if defined(ZLV_TARGET_avx512) || defined(ZLV_TARGET_avx2)

// Where the samples of a vector stand that are added in pairs: each beside that of the next pixel.
void MakePairs(size_t channels, size_t pairs, u8* places)
{
    for (size_t i = 0; i < pairs; ++i) {
        const size_t left = i / channels * 2 * channels + i % channels;
        places[2 * i] = u8(left);
        places[2 * i + 1] = u8(left + channels);
    }
}

#endif

#if defined(ZLV_TARGET_avx512)

void Halve(const u8* upper, const u8* lower, size_t channels, size_t count, u8* out)
{
    const size_t pairs = 32 / channels * channels;
    alignas(64) u8 places[64] = {};
    MakePairs(channels, pairs, places);
    const __m512i order = _mm512_load_si512(places), ones = _mm512_set1_epi8(1);
    for (size_t at = 0; at < count; at += pairs) {
        const size_t n = count - at < pairs ? count - at : pairs;
        const __mmask64 read = _bzhi_u64(~u64(0), u32(2 * n));
        const auto add = [&](const u8* row) {
            const __m512i samples = _mm512_maskz_loadu_epi8(read, row + 2 * at);
            return _mm512_maddubs_epi16(_mm512_maskz_permutexvar_epi8(~u64(0), order, samples), ones);
        };
        const __m512i means = _mm512_srli_epi16(_mm512_add_epi16(add(upper), add(lower)), 2);
        _mm512_mask_cvtepi16_storeu_epi8(out + at, _bzhi_u32(~u32(0), u32(n)), means);
    }
}

#else

// The mean of four samples, for `count` samples of the destination from `first` on.
void HalveSamples(const u8* upper, const u8* lower, size_t channels, size_t first, size_t count, u8* out)
{
    for (size_t x = first / channels, c = first % channels; first < count; ++first) {
        const size_t left = 2 * x * channels + c, right = left + channels;
        out[first] = u8((upper[left] + upper[right] + lower[left] + lower[right]) >> 2);
        if (++c == channels) c = 0, ++x;
    }
}

#if defined(ZLV_TARGET_avx2)

void Halve(const u8* upper, const u8* lower, size_t channels, size_t count, u8* out)
{
    const size_t pairs = 8 / channels * channels;
    alignas(16) u8 places[16] = {};
    MakePairs(channels, pairs, places);
    const __m256i order = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(places)));
    const __m256i ones = _mm256_set1_epi8(1);
    const auto load = [](const u8* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); };
    size_t at = 0;
    // Eight bytes are written for each half: fewer of them are meant where there are three channels.
    for (; at + pairs + 8 <= count; at += 2 * pairs) {
        const auto add = [&](const u8* row) {
            const __m256i samples =
                _mm256_inserti128_si256(_mm256_castsi128_si256(load(row + 2 * at)), load(row + 2 * (at + pairs)), 1);
            return _mm256_maddubs_epi16(_mm256_shuffle_epi8(samples, order), ones);
        };
        const __m256i means = _mm256_srli_epi16(_mm256_add_epi16(add(upper), add(lower)), 2);
        const __m256i bytes = _mm256_packus_epi16(means, means);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + at), _mm256_castsi256_si128(bytes));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + at + pairs), _mm256_extracti128_si256(bytes, 1));
    }
    HalveSamples(upper, lower, channels, at, count, out);
}

#else

void Halve(const u8* upper, const u8* lower, size_t channels, size_t count, u8* out)
{
    HalveSamples(upper, lower, channels, 0, count, out);
}

#endif
#endif

}  // namespace

extern const ResizeRowKernels kResizeRowKernels;
const ResizeRowKernels kResizeRowKernels = {
    Pick,
    Halve,
    BlendBytes,
    {BilinearBytes, CubicAcross<u8>, CubicDown<u8>, AddArea<u8>, DivideArea<u8>, AddRow<u8>},
    {BilinearWords, CubicAcross<u16>, CubicDown<u16>, AddArea<u16>, DivideArea<u16>, AddRow<u16>},
};

}  // namespace zlv::ZLV_TARGET
