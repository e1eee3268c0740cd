// Kernel of the gray tint.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// A colour for each gray level, twice: whole, channel 0 in its lowest byte, and as a table a channel.
struct GrayRamp {
    u32 colours[256];
    u8 channels[3][256];
};

struct TintGrayscaleKernels {
    // Writes the three colour bytes of `count` pixels of `step` bytes, three at least; other bytes are left alone.
    void (*tintRow)(const u8* gray, u8* pixels, size_t step, size_t count, const GrayRamp& ramp);
};

ZLV_DECLARE_KERNELS(TintGrayscaleKernels, kTintGrayscaleKernels);

}  // namespace zlv
