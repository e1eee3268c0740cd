// Kernels of the equalising of brightness.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr u32 kBrightnessSums = 3 * 255 + 1;  // of three samples

// What each sample of a pixel loses, from -255 to 255.
struct BrightnessShift {
    i16 samples[4];
};

struct BrightnessKernels {
    // Takes from the pixels of a row, of 3 or 4 samples, what stands in the table by the sum of the first three, and
    // keeps them from 0 to 255.
    void (*shiftRow3)(u8* pixels, size_t count, const BrightnessShift* shifts);
    void (*shiftRow4)(u8* pixels, size_t count, const BrightnessShift* shifts);
};

ZLV_DECLARE_KERNELS(BrightnessKernels, kBrightnessKernels);

}  // namespace zlv
