// Kernels of the convolution: a row of results from the rows around it.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Results are computed in blocks of at most this many samples. Rows can be read this far behind their last sample.
inline constexpr size_t kConvolutionBlock = 64;

// What is made of a sum.
struct ConvolutionResult {
    f64 scale;
    f64 top;            // the largest sample
    bool isDifference;  // the centre less the sum
};

// A window over rows of doubles.
struct DoubleWindow {
    const f64* const* rows;  // for each row of the kernel, where its first column lies for sample 0
    const f64* weights;      // rowCount * columns
    size_t rowCount, columns;
    size_t step;        // samples from one column to the next
    const f64* centre;  // the samples themselves
    ConvolutionResult result;
};

// A window over rows of pairs: a sample in the lower 16 bits, the sample of the next column in the upper ones. All
// arithmetic is in integers of 32 bits, and no sum leaves them.
struct PairWindow {
    const u32* const* rows;
    const u32* weights;  // rowCount * pairs: the weights of two columns
    size_t rowCount, pairs;
    size_t step;  // samples from one pair of columns to the next
    const u32* centre;
    u32 flip;  // samples are stored as sample ^ flip, so that 16 bits with a sign hold them
    u32 bias;  // what the flip takes from every sum
    f64 unit;  // what 1 in a sum stands for: a power of two
    ConvolutionResult result;
};

struct ConvolutionKernels {
    // doubles[i] = samples[i].
    void (*toDoubles8)(const u8* samples, size_t count, f64* doubles);
    void (*toDoubles16)(const u16* samples, size_t count, f64* doubles);

    // pairs[i] = (samples[i] ^ flip) | (samples[i + step] ^ flip) << 16.
    void (*toPairs8)(const u8* samples, size_t count, size_t step, u32* pairs);
    void (*toPairs16)(const u16* samples, size_t count, size_t step, u32* pairs);

    // Writes exactly count results.
    void (*doubleRow8)(const DoubleWindow& window, size_t count, u8* out);
    void (*doubleRow16)(const DoubleWindow& window, size_t count, u16* out);
    void (*pairRow8)(const PairWindow& window, size_t count, u8* out);
    void (*pairRow16)(const PairWindow& window, size_t count, u16* out);
};

ZLV_DECLARE_KERNELS(ConvolutionKernels, kConvolutionKernels);

}  // namespace zlv
