// Kernels of the seam carver.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct SeamKernels {
    // cost[x] = min(above[x - 1], above[x], above[x + 1]) + energy[x] + bias[x] for `count` cells; sums wrap. Without a
    // bias (null) it is 0. Reads above[-1] to above[count] and writes no other row.
    void (*costs)(const i32* above, const u16* energy, const i32* bias, i32* cost, size_t count);
};

ZLV_DECLARE_KERNELS(SeamKernels, kSeamKernels);

}  // namespace zlv
