// Kernels of the statistics of a whole image.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// So many samples can be added up in a lane of 16 bits, and at least as many squares in one of 32 bits.
inline constexpr u32 kMostAdditions = 65535 / 255;

struct ImageStatisticsKernels {
    // sums[i] += samples[i].
    void (*addSamples)(const u8* samples, size_t count, u16* sums);

    // squares[i] += samples[i] * samples[i], and sums[i] as above.
    void (*addSquares)(const u8* samples, size_t count, u16* sums, u32* squares);
};

ZLV_DECLARE_KERNELS(ImageStatisticsKernels, kImageStatisticsKernels);

}  // namespace zlv
