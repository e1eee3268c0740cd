// Kernel of the frequency filters.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct FourierFilterKernels {
    // Multiplies each of `count` complex values by its real factor.
    void (*multiply)(f64* values, const f64* factors, size_t count);
};

ZLV_DECLARE_KERNELS(FourierFilterKernels, kFourierFilterKernels);

}  // namespace zlv
