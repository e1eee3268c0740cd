// The parts of pixels that an area average counts.
#pragma once

#include "platform/types.h"

namespace zlv {

// What one index of the destination covers in one direction of the source.
struct Coverage {
    u32 first;
    u32 count;
    f64 firstWeight, lastWeight;
    f64 norm;  // the sum of the weights

    Coverage() = default;
    Coverage(u32 index, f64 ratio)
    {
        const f64 start = index * ratio, end = start + ratio;
        const u64 last = u64(end + 0.99999999999);
        first = u32(start);
        count = u32(last - first);
        firstWeight = 1 - (start - first);
        // An end just above a whole number leaves next to nothing of the last pixel.
        lastWeight = end - f64(u64(end));
        if (lastWeight == 0) lastWeight = 1;
        norm = (f64(count) - 2) + firstWeight + lastWeight;
    }

    f64 WeightOf(u32 k) const
    {
        if (k >= count) return 0;
        if (k == 0) return firstWeight;
        return k == count - 1 ? lastWeight : 1.0;
    }
};

}  // namespace zlv
