// Kernels of the gray compositions. Each writes exactly `count` bytes.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct GrayCompositionKernels {
    // out[i] = a[i] - b[i], modulo 256.
    void (*subtract)(const u8* a, const u8* b, size_t count, u8* out);

    // out[i] = a[i] - b[i], at least 0. The output may be an input.
    void (*takeOff)(const u8* a, const u8* b, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(GrayCompositionKernels, kGrayCompositionKernels);

}  // namespace zlv
