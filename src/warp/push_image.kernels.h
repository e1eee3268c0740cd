// Kernels that draw a stretched part of an image.
#pragma once

#include "base/image_view.h"
#include "runtime/targets.h"

namespace zlv {

// Columns of pixels side by side: for each, where its next pixel comes from, and how far away from there the one below
// it does.
struct PushedColumns {
    static constexpr u32 kMost = 128;

    u32 count;
    f64 x[kMost], y[kMost];
    f64 stepX[kMost], stepY[kMost];
};

struct PushImageKernels {
    // Writes `rows` pixels of each column from `to` down, where rows follow each other as those of `src` do. Places
    // outside the image are read at its edge, but the way down the columns goes on from where they are.
    void (*drawColumns)(const ImageView<const u8>& src, PushedColumns& columns, u32 rows, u8* to);
};

ZLV_DECLARE_KERNELS(PushImageKernels, kPushImageKernels);

}  // namespace zlv
