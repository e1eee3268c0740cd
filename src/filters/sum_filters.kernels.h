// Kernels that make samples of window sums.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Weights of a blend in 1/65536.
struct BlendWeights {
    u32 mean, own;  // 0 to 65536
};

template <class Sum>
struct SumFilterKernels {
    // out[i] = sums[i] / area, truncated. For u16 the area is 9 to 225, for u32 at most 4103 squared; sums are at most
    // 255 times the area.
    void (*mean)(const Sum* sums, u32 area, size_t count, u8* out);

    // out[i] = own[i] - amount * (sums[i] - area * own[i]), truncated towards zero, limited to 0..255. The area is at
    // most 2901 squared.
    void (*sharpen)(const Sum* sums, const u8* own, u32 area, f64 amount, size_t count, u8* out);
};

struct AllSumFilterKernels {
    SumFilterKernels<u16> narrow;
    SumFilterKernels<u32> wide;

    // means[i] = means[i] * weights.mean / 65536 + own[i] * weights.own / 65536, each term truncated.
    void (*blend)(u8* means, const u8* own, BlendWeights weights, size_t count);
};

ZLV_DECLARE_KERNELS(AllSumFilterKernels, kSumFilterKernels);

}  // namespace zlv
