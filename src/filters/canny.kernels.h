// Kernels of the Canny edge detector. Rows may have any alignment.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// What is known of a pixel: this, or the magnitude of a possible edge.
inline constexpr i16 kNoEdge = 0;
inline constexpr i16 kEdge = -1;

// Pixels are thinned in groups of this many at most.
inline constexpr size_t kThinningGroup = 16;

// A row's gradients, its magnitudes, and those of the rows above and below it.
struct ThinningRows {
    const i16* above;
    const i16* magnitudes;
    const i16* below;
    const i16* gx;
    const i16* gy;
};

struct CannyKernels {
    // means[i] = sums[i] / weights[i].
    void (*divide)(const f32* sums, const f32* weights, f32* means, size_t count);

    // boosted[i] = sums[i] / weight * 90 + 0.5, truncated. The quotient is a float, what follows is in doubles.
    void (*divideAndBoost)(const f32* sums, f32 weight, i16* boosted, size_t count);

    // differences[i] = ahead[i] - behind[i].
    void (*subtract)(const i16* ahead, const i16* behind, i16* differences, size_t count);

    // The lengths of the gradients, rounded.
    void (*measure)(const i16* gx, const i16* gy, i16* magnitudes, size_t count);

    // ridges[x] becomes the magnitude where that is a ridge across its gradient, kNoEdge elsewhere. Works on `count`
    // rounded up to a multiple of kThinningGroup: everything is that long, and magnitudes one more on either side.
    void (*thin)(const ThinningRows& rows, i16* ridges, size_t count);

    // Finds the x with ridges[x] >= least; returns how many. `found` has room for count.
    size_t (*findRidges)(const i16* ridges, size_t count, i16 least, u32* found);

    // pixels[x] is `edge` where ridges[x] is kEdge, `other` elsewhere.
    void (*draw)(const i16* ridges, u8 edge, u8 other, u8* pixels, size_t count);
};

ZLV_DECLARE_KERNELS(CannyKernels, kCannyKernels);

}  // namespace zlv
