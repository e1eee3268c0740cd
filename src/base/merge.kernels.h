// Kernels that merge rows of four-byte pixels.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// What becomes of a pixel of the base under an overlay pixel with an alpha. All but the last three blend colours by
// the table of products.
enum class MergeRule : u8 {
    KeepAlpha,
    ReplaceAlpha,  // where the overlay's alpha is not 0
    LargerAlpha,
    AddAlpha,
    BlendAlpha,  // with the given alpha, as a colour
    GivenAlpha,  // where the overlay's alpha is not 0
    Over,
    OverKeepAlpha,  // where the base's alpha is not 0
    Replace,        // the overlay's pixel as it stands
};
inline constexpr u32 kMergeRules = 9;

struct MergeTerms {
    const u8 (*product)[256];  // row a, column b: b * (a / 255.0), truncated
    u32 givenAlpha;
};

// Both rows hold four-byte pixels, the fourth byte alpha; they do not overlap.
using MergeRow = void (*)(u8* base, const u8* overlay, size_t count, const MergeTerms& terms);

struct MergeKernels {
    MergeRow rows[kMergeRules];  // by MergeRule
};

ZLV_DECLARE_KERNELS(MergeKernels, kMergeKernels);

}  // namespace zlv
