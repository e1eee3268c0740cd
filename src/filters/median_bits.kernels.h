// Kernels of the median of 1-bit images: majorities.
//
// A row is an array of words of 64 pixels, the leftmost in the highest bit.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr size_t kPixelsPerWord = 64;

struct MedianBitKernels {
    // The majorities of the 3 x 3 or 5 x 5 pixels around each pixel. rows are the window's from top to bottom, each
    // with one more word at either end.
    void (*majorities3)(const u64* const* rows, size_t words, u64* majorities);
    void (*majorities5)(const u64* const* rows, size_t words, u64* majorities);

    // Adds `times` to the counts of the columns whose pixel is set.
    void (*addRow)(const u64* row, size_t words, u16 times, u16* counts);
    // Bit x is set when start + the sum of entering[i] - leaving[i] over all i up to x is not negative. These sums are
    // numbers of 16 or of 32 bits.
    void (*narrowMajorities)(const u16* leaving, const u16* entering, i32 start, size_t words, u64* majorities);
    void (*wideMajorities)(const u16* leaving, const u16* entering, i32 start, size_t words, u64* majorities);
};

ZLV_DECLARE_KERNELS(MedianBitKernels, kMedianBitKernels);

}  // namespace zlv
