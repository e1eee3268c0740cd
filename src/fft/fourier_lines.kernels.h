// Kernels of the Fourier transform: some lines of a grid from end to end, side by side.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// What all lines of one length and direction share.
struct FourierStages {
    u32 count;
    size_t length;        // of the lines: 2 to the power `count`
    const u32* places;    // where each value of a line stands after the reordering by reversed bits
    const f64* twiddles;  // pairs; the half-span's own begin at pair half-span - 1
    f64 scale;            // of the results; a power of two
};

// Neighbouring lines of a grid: rows, or columns. One of the two distances is that of neighbouring values, 2.
struct FourierLines {
    f64* first;        // real part of the first line's first value; the imaginary part stands behind it
    size_t valueStep;  // doubles from one value of a line to the next
    size_t lineStep;   // doubles from one line to the next
    size_t count;
};

struct FourierKernels {
    size_t lanes;  // lines that go side by side

    // In place. `work` is at a multiple of 64 bytes and has room for 2 doubles a value of all lines, and of `lanes`
    // lines at least.
    void (*transform)(const FourierLines& lines, const FourierStages& stages, f64* work);
};

ZLV_DECLARE_KERNELS(FourierKernels, kFourierKernels);

}  // namespace zlv
