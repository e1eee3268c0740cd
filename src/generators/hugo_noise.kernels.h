// Kernels of the Hugo noise.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

struct HugoKernels {
    // total += amplitude * ((1 - weight) * upper + weight * lower).
    void (*addOctave)(const f64* upper, const f64* lower, f64 weight, f64 amplitude, f64* total, size_t count);

    // total, limited to -1..1, as 127 - trunc(total * -128), limited to 0..255; 0 for NaN.
    void (*toBytes)(const f64* total, u8* out, size_t count);
};

ZLV_DECLARE_KERNELS(HugoKernels, kHugoKernels);

}  // namespace zlv
