// Kernel of the midpoint filter.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct MidpointKernels {
    // into[i] = (into[i] + other[i]) / 2, rounded down.
    void (*averageDown)(u8* into, const u8* other, size_t count);
};

ZLV_DECLARE_KERNELS(MidpointKernels, kMidpointKernels);

}  // namespace zlv
