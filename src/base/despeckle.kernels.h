// Kernels of the despeckle filter: the four passes of a direction over a band of rows.
//
// A pass along a direction never looks across it, so the samples of one line through the image go through all four
// passes while they are in registers. A result lags kSpeckleLag samples behind what comes in.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

inline constexpr size_t kSpeckleLag = 6;
inline constexpr size_t kSpeckleStates = 12;  // bytes a line keeps between two bands
inline constexpr size_t kSpeckleLanes = 64;   // lines that are done side by side, at most

// A band of rows with zeros on both sides of them: margin = (rowCount + kSpeckleLag) * step + kSpeckleLanes bytes at
// least. Pointers to rows point to the first byte between the margins.
struct SpeckleBand {
    u8* firstRow;  // kSpeckleLag rows stand before it in memory
    size_t pitch;  // bytes from one row to the next, of the states too
    i64 first;     // the image's row that firstRow is; it may lie outside
    size_t rowCount;
    i64 height;        // of the image; rows outside hold zeros
    size_t width;      // bytes of a row between the margins
    size_t step;       // bytes of a pixel
    i32 direction;     // pixels that a line goes to the right from row to row: -1, 0 or 1
    u8* states;        // kSpeckleStates rows, zeros before the first band
    const u8* inside;  // 255 for bytes between the margins, 0 in them
};

struct DespeckleKernels {
    // Takes rows first to first + rowCount - 1 in and leaves results in the rows kSpeckleLag before them.
    void (*passesAcrossRows)(const SpeckleBand& band);

    // One row of its own, with a pixel of zeros on both sides and room for kSpeckleLanes behind it. `work` likewise;
    // its zeros stay.
    void (*passesAlongRow)(u8* row, u8* work, size_t width, size_t step, const u8* inside);
};

ZLV_DECLARE_KERNELS(DespeckleKernels, kDespeckleKernels);

}  // namespace zlv
