// Kernels that sample an image at points between its pixels.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// Points, and the pixels that are made at them. Offsets of pixels are computed in 32 bits and wrap.
struct SampledRun {
    const u8* src;
    u64 srcBytes;  // up to the last pixel's end
    u32 width, height, srcStride;
    u32 channels;
    const f64 *x, *y;
    const bool* isLost;  // a pixel of the fill, wherever the point is
    u32 count;           // of pixels that follow each other in `to`
    u8* to;
    const u8* background;  // the fill's first four channels, the others are 0; null where a pixel's fill is itself
};

struct SamplingKernels {
    void (*nearest)(const SampledRun& run);
    void (*bilinear)(const SampledRun& run);
    void (*bicubic)(const SampledRun& run);

    // How many points, from the first one on, stand at (x, y), (x + 1, y), (x + 2, y), ...
    u32 (*countAtHome)(const f64* x, const f64* y, u32 count, f64 homeX, f64 homeY);
    // How many stand elsewhere, the first one among them.
    u32 (*countAway)(const f64* x, const f64* y, u32 count, f64 homeX, f64 homeY);
};

ZLV_DECLARE_KERNELS(SamplingKernels, kSamplingKernels);

}  // namespace zlv
