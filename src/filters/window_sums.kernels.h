// Kernels of sums over square windows, by the width of a sum.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Rows of sums can be read and written this far behind their last one.
inline constexpr size_t kSumSlack = 16;

inline constexpr u32 kLargestNarrowSide = 15;

// Sums down the columns of what samples count.
template <class Sum>
struct ColumnSumKernels {
    // columns[i] += times * what row[i] counts.
    void (*addRow)(Sum* columns, const u8* row, Sum times, size_t count);

    // columns[i] += what entering[i] counts less what leaving[i] counts.
    void (*moveRow)(Sum* columns, const u8* entering, const u8* leaving, size_t count);
};

struct WindowSumKernels {
    // The samples themselves, for windows up to kLargestNarrowSide and for others.
    ColumnSumKernels<u16> narrowSamples;
    ColumnSumKernels<u32> samples;
    // Their squares.
    ColumnSumKernels<u32> squares;

    // The sums of the columns within `radius` pixels of each, `step` sums a pixel, at most 8. u16: there are `radius`
    // more pixels on either side of columns. Otherwise the first and the last pixel stand for those beyond them.
    void (*narrowWindows)(const u16* columns, size_t pixels, size_t step, size_t radius, u16* out);
    void (*windows)(const u32* columns, size_t pixels, size_t step, size_t radius, u32* out);
    void (*longWindows)(const u64* columns, size_t pixels, size_t step, size_t radius, u64* out);
};

ZLV_DECLARE_KERNELS(WindowSumKernels, kWindowSumKernels);

}  // namespace zlv
