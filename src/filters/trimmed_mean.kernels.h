// Kernels of the trimmed mean.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// The window whose samples are averaged: the pixels two to the left up to one to the right, and two rows on either
// side. The column two to the right is not part of it.
inline constexpr size_t kTrimmedRows = 5;
inline constexpr size_t kTrimmedColumns = 4;

// Rows can be read this far behind what counts.
inline constexpr size_t kTrimmedSlack = 64;

struct TrimmedMeanKernels {
    // The bands from medians[i] - below to medians[i] + above, within 0..255: where each starts, and how much higher it
    // ends.
    void (*findBands)(const u8* medians, u8 below, u8 above, size_t count, u8* starts, u8* extents);

    // out[i] = the mean, truncated, of the samples rows[j][i + k * step] that lie in the band of i, of which there is
    // one at least. Reads kTrimmedSlack behind the ends of all rows.
    void (*means)(const u8* const* rows, size_t step, const u8* starts, const u8* extents, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(TrimmedMeanKernels, kTrimmedMeanKernels);

}  // namespace zlv
