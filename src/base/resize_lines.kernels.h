// Kernels of the filter engine: weighted sums of lines of samples.
//
// Both passes are this one thing. In the first, a line is a pixel of the source with as many rows as are done together,
// so the picture is turned on its side before and after it; in the second, a line is a row.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

// One tap of a filter.
struct ResizeContributor {
    u32 sourceIndex;
    f32 nearWeight;  // the weight, rounded
    f64 weight;
};

struct ResizeContribList {
    const ResizeContributor* taps;
    u64 count;
    f32 tolerance;  // the most that a sum of rounded weights is off, whatever the samples are
    bool isExact;   // take no sum of rounded weights: it would not decide enough
};

// Samples as numbers. Reads go up to kResizeLineRoom numbers beyond what they are for.
struct ResizeLines {
    const f32* data;
    size_t pitch;
    u32 first;  // the source index of the first line
};

inline constexpr size_t kResizeLineRoom = 128;
inline constexpr size_t kResizeBlock = 16;  // the sides of what is turned at once

struct ResizeLineKernels {
    // to[s * toPitch + r] = from[r * fromPitch + s]. Lines of `to` are written up to a multiple of kResizeBlock
    // numbers, and so is their count.
    void (*turn)(const u8* from, size_t fromPitch, size_t rows, size_t samples, f32* to, size_t toPitch);

    // Weighs `count` neighbouring samples of the lines. Where a list has one tap, or all of a sample's taps have the
    // same value, the result is that value; otherwise the sum, truncated and limited. Returns whether most of it had to
    // be summed twice.
    bool (*weigh)(const ResizeContribList& list, const ResizeLines& lines, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(ResizeLineKernels, kResizeLineKernels);

}  // namespace zlv
