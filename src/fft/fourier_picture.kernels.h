// Kernels that make a picture of a grid.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Of a grid. Numbers that are not a number count for nothing.
struct FourierExtremes {
    f64 smallest, largest;  // real part
    f64 largestSquare;      // of a magnitude
};

// result = (value - offset) * factor / divisor
struct FourierScale {
    f64 offset, factor, divisor;
};

struct FourierPictureKernels {
    // Takes `count` values into what is known already.
    void (*findExtremes)(const f64* values, size_t count, FourierExtremes& extremes);

    // A row of real parts or of magnitudes: as samples, limited to 0 to 255 and truncated, or as they are.
    void (*realBytes)(const f64* values, size_t count, const FourierScale& scale, u8* row);
    void (*realDoubles)(const f64* values, size_t count, const FourierScale& scale, f64* row);
    void (*magnitudeBytes)(const f64* values, size_t count, const FourierScale& scale, u8* row);
    void (*magnitudeDoubles)(const f64* values, size_t count, const FourierScale& scale, f64* row);
};

ZLV_DECLARE_KERNELS(FourierPictureKernels, kFourierPictureKernels);

}  // namespace zlv
