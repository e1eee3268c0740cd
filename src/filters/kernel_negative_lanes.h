// Which numbers of a vector are negative, in two's complement: bits, the first lane in the lowest one. The vectors have
// no sign themselves, as sums wrap on the way.
//
// For kernel files alone, like base/kernel_vectors.h.
#pragma once

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv {
namespace {

#if defined(ZLV_PORTABLE)

template <class Vector>
u32 NegativeLanes(const Vector& vector)
{
    u32 bits = 0;
    for (size_t lane = 0; lane < sizeof(vector) / sizeof(vector[0]); ++lane) {
        bits |= u32(vector[lane] >> (8 * sizeof(vector[0]) - 1)) << lane;
    }
    return bits;
}

#else

template <class Number, size_t kBytes>
using VectorOf __attribute__((vector_size(kBytes))) = Number;

[[maybe_unused]] u32 NegativeLanes(const VectorOf<u16, 16>& vector)
{
    return u32(_mm_movemask_epi8(_mm_packs_epi16(__m128i(vector), _mm_setzero_si128())));
}

[[maybe_unused]] u32 NegativeLanes(const VectorOf<u32, 16>& vector) { return u32(_mm_movemask_ps(__m128(vector))); }

#if defined(ZLV_TARGET_avx2)

[[maybe_unused]] u32 NegativeLanes(const VectorOf<u16, 32>& vector)
{
    const __m128i lower = _mm256_castsi256_si128(__m256i(vector)), upper = _mm256_extracti128_si256(__m256i(vector), 1);
    return u32(_mm_movemask_epi8(_mm_packs_epi16(lower, upper)));
}

[[maybe_unused]] u32 NegativeLanes(const VectorOf<u32, 32>& vector) { return u32(_mm256_movemask_ps(__m256(vector))); }

#elif defined(ZLV_TARGET_avx512)

[[maybe_unused]] u32 NegativeLanes(const VectorOf<u16, 32>& vector) { return _mm256_movepi16_mask(__m256i(vector)); }
[[maybe_unused]] u32 NegativeLanes(const VectorOf<u32, 64>& vector) { return _mm512_movepi32_mask(__m512i(vector)); }

#endif
#endif

}  // namespace
}  // namespace zlv
