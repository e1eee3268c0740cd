// Kernels of the bilateral filter.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// A table of ranges has an entry for every difference of two samples: entry kRangeMiddle + d is the weight of d and -d.
inline constexpr size_t kRangeMiddle = 255;
inline constexpr size_t kRangeEntries = 2 * kRangeMiddle + 1;

// Averages are made in groups of this many at most.
inline constexpr size_t kBilateralGroup = 64;

// The weights of differences between samples, short enough for three bytes each.
struct BilateralRange {
    f32 weights[kRangeEntries];     // the lowest byte of each is 0
    u8 bytes[3][kRangeMiddle + 1];  // the others, the lowest first, of the differences 0 to 255
};

// rows[j] + x is the first sample of the window's row j when its middle is at x. Its `columns` samples stand `step`
// apart.
struct BilateralWindow {
    const u8* const* rows;
    size_t rowCount, columns, step;
    const f32* spatial;  // the weight of column i in row j is spatial[j * spatialStride + i]
    size_t spatialStride;
    const BilateralRange* range;
    const u8* inside;             // 255 in the places of rows[j] that are samples, 0 beside them
    size_t wholeStart, wholeEnd;  // from here to there the window has only samples
    f32 doubt;                    // how far a weighted mean may be off
};

struct BilateralKernels {
    // averages[x] is the weighted mean around middle[x], rounded; doubts[x] is 0 where the rounding is certain. Works
    // on `count` rounded up to a multiple of kBilateralGroup: everything is that long.
    void (*average)(const BilateralWindow& window, const u8* middle, size_t count, u8* averages, u8* doubts);
};

ZLV_DECLARE_KERNELS(BilateralKernels, kBilateralKernels);

}  // namespace zlv
