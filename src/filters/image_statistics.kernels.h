// Kernels of the statistics of a whole image.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// So many samples can be added up in a lane of 16 bits, and at least as many squares in one of 32 bits.
inline constexpr u32 kMostAdditions = 65535 / 255;

// Lines of samples that follow each other, a lane for each place in a line.
struct SampleLines {
    const u8* samples;
    size_t lanes, lines;
};

struct ImageStatisticsKernels {
    // sums[i] += the sample in lane i of each line.
    void (*addSamples)(const SampleLines& from, u16* sums);

    // squares[i] += its square, and sums[i] as above.
    void (*addSquares)(const SampleLines& from, u16* sums, u32* squares);
};

ZLV_DECLARE_KERNELS(ImageStatisticsKernels, kImageStatisticsKernels);

}  // namespace zlv
