// Reciprocals of samples as integers: their sums nearly give a harmonic mean, at a cost that does not grow with the
// window.
#pragma once

#include "platform/types.h"

namespace zlv {

// In 2^-32. Windows with a 0 are found by their smallest sample: it counts any number above 0.
struct ReciprocalCounts {
    u64 values[256];

    ReciprocalCounts()
    {
        values[0] = 1;
        for (u32 i = 1; i < 256; ++i) values[i] = ((u64(1) << 32) + i / 2) / i;
    }

    // How far a mean from these integers can be from the one in double precision. The former are off by 0.5 each, in a
    // sum of at least area * 2^32 / 255, which is 2^-25 of it. The latter, its reciprocals and its additions are off by
    // 2^-53 of the sum each. Half a dozen further roundings are as good as nothing; means are below 256.
    static f64 BandOf(u32 area) { return 256 * (0x1p-25 + area * 0x1p-53 + 0x1p-49); }
};

}  // namespace zlv
