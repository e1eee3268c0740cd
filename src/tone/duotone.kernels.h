// Kernel of the duotone.
#pragma once

#include "base/hsv.h"
#include "runtime/targets.h"

namespace zlv {

struct DuotoneKernels {
    // Paints `count` pixels of 3 or 4 bytes; the fourth byte is left alone.
    void (*paintRow)(u8* pixels, size_t step, size_t count, const HueWeights& hue);
};

ZLV_DECLARE_KERNELS(DuotoneKernels, kDuotoneKernels);

}  // namespace zlv
