// The kernel of the oil paint: one row of windows, which lose a column and gain one from pixel to pixel.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

inline constexpr u32 kLargestOilRadius = 10;
inline constexpr u32 kLargestOilSide = 2 * kLargestOilRadius + 1;

// A pixel of the source, or the sum of some: their number and their three channels, in one word. The channels of the
// largest window add up to 112455, below 2^17.
using OilSum = u64;
inline constexpr u32 kOilSumBits = 17;
inline constexpr u32 kOilCountShift = 3 * kOilSumBits;
static_assert(kLargestOilSide * kLargestOilSide * 255 < 1u << kOilSumBits);

// The level of what lies above or below the image: it is counted where nobody looks.
inline constexpr u16 kOutsideLevel = 256;

// Column after column, `side` pixels each in any order.
struct OilColumns {
    const OilSum* pixels;
    const u16* levels;
    u32 side;
    u32 width;
};

struct OilPaintKernels {
    // Writes the colours of a row. With `blends` the two most frequent levels are mixed.
    void (*paintRow)(const OilColumns& columns, u32 levels, bool blends, u8* out);
};

ZLV_DECLARE_KERNELS(OilPaintKernels, kOilPaintKernels);

}  // namespace zlv
