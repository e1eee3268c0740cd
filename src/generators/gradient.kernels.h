// Kernels of the gradients: pieces of rows.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// A row of a linear gradient. Pixel x has n = slopeX * (x - startX) - shift, which is 0 on the line through the start.
struct LinearRow {
    f64 slopeX, startX, shift;
    f64 lineLength;                   // the distance from the line is |n / lineLength|, or length when lineLength is 0
    f64 length;                       // what 100 percent stands for
    bool isOneSided, isNegativeSide;  // pixels whose (n < 0) is not isNegativeSide have -1 percent
};

struct GradientBlend {
    f64 first[4], change[4];  // of the four bytes
};

struct GradientKernels {
    void (*linearPercents)(const LinearRow& row, f64 x, f64* percents, size_t count);

    // The squared distances wrap like 32-bit numbers; negative ones give NaN.
    void (*radialPercents)(u32 dx, u32 dy, f64 length, f64* percents, size_t count);

    // (percents - position) / span.
    void (*fractions)(const f64* percents, f64 position, f64 span, f64* fractions, size_t count);

    // Bytes first + change * fraction, truncated, which lie from 0 to 255; those from `channels` on are 0.
    void (*blend)(const f64* fractions, const GradientBlend& blend, u32 channels, u32* colors, size_t count);
};

ZLV_DECLARE_KERNELS(GradientKernels, kGradientKernels);

}  // namespace zlv
