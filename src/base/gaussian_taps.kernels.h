// Kernels of the direct Gaussian blur.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct GaussianTapKernels {
    // out[i] = taps[0] * rows[0][i] + taps[1] * rows[1][i] + ..., added in this order.
    void (*weigh)(const f32* const* rows, const f32* taps, size_t tapCount, f32* out, size_t count);

    void (*toFloats8)(const u8* from, f32* to, size_t count);
    void (*toFloats16)(const u16* from, f32* to, size_t count);

    // Adds `rounding`, limits to the largest sample and truncates. Values are not below 0.
    void (*toSamples8)(const f32* from, f32 rounding, u8* to, size_t count);
    void (*toSamples16)(const f32* from, f32 rounding, u16* to, size_t count);
};

ZLV_DECLARE_KERNELS(GaussianTapKernels, kGaussianTapKernels);

}  // namespace zlv
