// Tables of 256 bytes in the registers of AVX-512.
//
// For kernel files alone. Everything here has internal linkage: what is compiled for one target must not reach another.
#pragma once

#include "platform/types.h"

#if defined(ZLV_TARGET_avx512)

#include <immintrin.h>

namespace zlv {
namespace {

// A table in registers: entries 0 to 127 in the first two, 128 to 255 in the others.
struct WideTable {
    __m512i parts[4];
};

[[maybe_unused]] WideTable LoadTable(const u8* table)
{
    WideTable wide;
    for (size_t i = 0; i < 4; ++i) wide.parts[i] = _mm512_loadu_si512(table + i * 64);
    return wide;
}

[[maybe_unused]] __m512i LookUp(const WideTable& table, __m512i samples)
{
    const __m512i lower = _mm512_permutex2var_epi8(table.parts[0], samples, table.parts[1]);
    const __m512i upper = _mm512_permutex2var_epi8(table.parts[2], samples, table.parts[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(samples), lower, upper);
}

// The lanes of the first `count` bytes; all 64 from there on.
[[maybe_unused]] __mmask64 FirstLanes(size_t count)
{
    return count >= 64 ? ~__mmask64{0} : (__mmask64{1} << count) - 1;
}

}  // namespace
}  // namespace zlv

#endif
