// Kernels of the contrast mask.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct ContrastMaskKernels {
    // Blend `count` pixels of 3 or 4 channels with a gray mask, one byte a pixel; channel 3 is left alone.
    void (*softLightRow)(u8* pixels, const u8* mask, size_t count, size_t channels);
    void (*overlayRow)(u8* pixels, const u8* mask, size_t count, size_t channels);
};

ZLV_DECLARE_KERNELS(ContrastMaskKernels, kContrastMaskKernels);

}  // namespace zlv
