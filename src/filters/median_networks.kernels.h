// Kernels of the medians of small windows: sorting networks over rows of samples.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr size_t kMedianSlack = 64;  // bytes that may be read past the end of a row

struct MedianNetworkKernels {
    // The medians of the windows of 3 x 3 or 5 x 5 samples that begin at each of the first `count` samples, limited to
    // `top`. rows are the window's from top to bottom; neighbours in a row are `step` samples apart, at most
    // kMostMedianStep. Rows have count + (side - 1) * step samples and kMedianSlack more.
    void (*medians3)(const u8* const* rows, size_t step, size_t count, u8 top, u8* medians);
    void (*medians5)(const u8* const* rows, size_t step, size_t count, u8 top, u8* medians);
};

inline constexpr size_t kMostMedianStep = 8;

ZLV_DECLARE_KERNELS(MedianNetworkKernels, kMedianNetworkKernels);

}  // namespace zlv
