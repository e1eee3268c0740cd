// Kernels that move and mix the channels of a row.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Weights of red, green and blue in a gray value, in 1/1024.
inline constexpr u32 kRedWeight = 306, kGreenWeight = 601, kBlueWeight = 117;

struct ChannelKernels {
    // gray[x] = (sum of weights[c] * pixels[x * channels + c]) >> 10 over the first three of 3 or 4 channels. The
    // weights add up to 1024.
    void (*grayRow8)(const u8* pixels, u8* gray, size_t count, size_t channels, const u32* weights);
    void (*grayRow16)(const u16* pixels, u16* gray, size_t count, size_t channels, const u32* weights);
};

ZLV_DECLARE_KERNELS(ChannelKernels, kChannelKernels);

}  // namespace zlv
