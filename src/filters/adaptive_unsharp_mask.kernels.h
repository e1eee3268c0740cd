// Kernels of the adaptive unsharp mask.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// A difference of neighbours counts up to this, in either direction.
inline constexpr u32 kLargestDifference = 127;

// Entry d is how far a sample moves for a difference of d.
struct SharpeningSteps {
    u8 steps[kLargestDifference + 1];
};

struct UnsharpMaskKernels {
    // out[i] = kLargestDifference + from[i] - subtracted[i], within 0 to twice that. `out` may be `from` when
    // `subtracted` lies behind it.
    void (*responses)(const u8* from, const u8* subtracted, size_t count, u8* out);

    // out[i] = samples[i] moved by the step of from[i] - subtracted[i]: up when that is positive, down when it is
    // negative. Works from the last sample to the first: `out` may be any of the rows, and these may begin before it.
    void (*sharpen)(const u8* from, const u8* subtracted, const u8* samples, const SharpeningSteps& steps, size_t count,
                    u8* out);

    // Copies all but the fourth byte of each pixel of four.
    void (*copyColours)(const u8* from, size_t pixels, u8* to);
};

ZLV_DECLARE_KERNELS(UnsharpMaskKernels, kUnsharpMaskKernels);

}  // namespace zlv
