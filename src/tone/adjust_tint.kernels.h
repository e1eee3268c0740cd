// Kernel of the tint rotation.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct TintRotation {
    f64 cosine;
    f64 sine;
    bool isBgr;  // channel 0 is blue, channel 2 red
};

struct AdjustTintKernels {
    // Turns `count` pixels of `step` bytes, three at least; bytes from the fourth on are left alone.
    void (*turnRow)(u8* pixels, size_t step, size_t count, const TintRotation& rotation);
};

ZLV_DECLARE_KERNELS(AdjustTintKernels, kAdjustTintKernels);

}  // namespace zlv
