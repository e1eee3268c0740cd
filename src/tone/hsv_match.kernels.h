// Kernels of the colour match.
#pragma once

#include "base/hsv.h"
#include "runtime/targets.h"

namespace zlv {

// Which pixels belong to a region.
struct HsvMatch {
    Hsv reference;
    Hsv tolerance;
    bool isExact;          // components must be equal, whatever the tolerance is
    bool takesMismatches;  // those that do not match belong to it
};

inline constexpr size_t kMatchBlock = 64;

struct HsvMatchKernels {
    // Bit k is set if pixel k belongs to the region. Up to kMatchBlock pixels of three doubles.
    u64 (*findMatches)(const f64* pixels, size_t count, const HsvMatch& match);

    // Writes `value` where bit k is set and 0 elsewhere, up to kMatchBlock bytes.
    void (*spreadBits)(u64 bits, size_t count, u8 value, u8* bytes);
};

ZLV_DECLARE_KERNELS(HsvMatchKernels, kHsvMatchKernels);

}  // namespace zlv
