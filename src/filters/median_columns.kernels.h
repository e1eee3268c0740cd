// Kernels of the medians over histograms: columns of the image, and a window that moves over them.
//
// A histogram of 256 levels has two tiers: 16 counts by a sample's upper four bits, and for each of these another 16 by
// its lower four. Both tiers are cumulative: lane i counts the samples below i. A sample is one vector addition then,
// and the lane in which the median lies is the last one whose count does not exceed the median's rank.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr size_t kMedianBins = 16;

// The histograms of neighbouring columns, each over as many samples as the window is high. Windows that reach beyond
// the first or the last column repeat it.
struct MedianColumns {
    u16* coarse;   // count histograms of kMedianBins lanes
    u16* fine;     // for each upper half of a sample: count histograms
    size_t count;  // of columns

    size_t Lanes() const { return count * kMedianBins; }
};

// Windows side by side in one row.
struct MedianRun {
    i64 left;      // the column in which the first window begins; negative before the first column
    i64 side;      // of a window
    size_t count;  // of windows
    u8* medians;   // count of them
};

struct MedianColumnKernels {
    // A row of samples, `step` bytes apart, counts `times` in each column.
    void (*addRow)(const MedianColumns& columns, const u8* samples, size_t step, u32 times);
    // One row leaves and another comes in.
    void (*moveRow)(const MedianColumns& columns, const u8* leaving, const u8* entering, size_t step);
    // Counts of 16 bits: for windows of less than 65,536 samples.
    void (*narrowMedians)(const MedianColumns& columns, const MedianRun& run);
    // Counts of 32 bits: for windows of less than 2^31 samples.
    void (*wideMedians)(const MedianColumns& columns, const MedianRun& run);
};

ZLV_DECLARE_KERNELS(MedianColumnKernels, kMedianColumnKernels);

}  // namespace zlv
