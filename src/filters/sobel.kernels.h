// Kernels of the Sobel filter.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// The row of a sample and those above and below it, at the same sample of each.
struct SobelRows {
    const u8* above;
    const u8* middle;
    const u8* below;
};

struct SobelKernels {
    // magnitudes[i] is |gx| + |gy| at sample i, whose neighbours to the left and to the right stand `step` samples off.
    void (*magnitudes)(const SobelRows& rows, size_t step, u16* magnitudes, size_t count);

    // means[x] is a third of the sum of magnitudes[x * step] and the two after it, truncated; `step` is 3 or 4.
    void (*means)(const u16* magnitudes, size_t step, u16* means, size_t count);
};

ZLV_DECLARE_KERNELS(SobelKernels, kSobelKernels);

}  // namespace zlv
