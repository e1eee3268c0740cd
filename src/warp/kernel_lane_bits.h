// Comparisons of vectors of doubles as bits, the first lane in the lowest one. For kernel files alone.
#pragma once

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv {
namespace {

using Reals = RealsOf<f64>;
using RealLanes __attribute__((vector_size(kVectorBytes))) = i64;  // what comparing Reals gives
constexpr u32 kRealLanes = Lanes<f64>::kCount;
constexpr u32 kAllLanes = (1u << kRealLanes) - 1;

#if defined(ZLV_PORTABLE)
u32 BitsOf(RealLanes lanes)
{
    u32 bits = 0;
    for (u32 lane = 0; lane < kRealLanes; ++lane) bits |= u32(lanes[lane] & 1) << lane;
    return bits;
}
#elif defined(ZLV_TARGET_avx512)
u32 BitsOf(RealLanes lanes) { return _mm512_movepi64_mask(reinterpret_cast<__m512i>(lanes)); }
#elif defined(ZLV_TARGET_avx2)
u32 BitsOf(RealLanes lanes) { return u32(_mm256_movemask_pd(reinterpret_cast<__m256d>(lanes))); }
#else
u32 BitsOf(RealLanes lanes) { return u32(_mm_movemask_pd(reinterpret_cast<__m128d>(lanes))); }
#endif

}  // namespace
}  // namespace zlv
