// Kernels that turn medians into what is written.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct MedianBlendKernels {
    // No sample stays above `top`.
    void (*limit)(u8* samples, size_t count, u8 top);
    // What becomes of each source sample: it stays if it differs from its median by at most `threshold`, otherwise it
    // moves towards it by weight / 255 of the way. `out` may be the medians.
    void (*blend)(const u8* medians, const u8* source, size_t count, u32 threshold, u32 weight, u8* out);
};

ZLV_DECLARE_KERNELS(MedianBlendKernels, kMedianBlendKernels);

}  // namespace zlv
