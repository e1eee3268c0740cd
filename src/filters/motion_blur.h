// The motion blur's paths.
#pragma once

#include "base/image_view.h"
#include "runtime/frame.h"

namespace zlv {

// Two images of one shape, neither empty, that do not overlap.
struct MotionImages {
    ImageView<const u8> src;
    ImageView<u8> dst;
};

// Straight lines: step i of `steps` lies (i * amount * sine, i * amount * cosine) from the pixel.
[[nodiscard]] u32 BlurAlongLines(CallFrame& frame, const MotionImages& images, f64 sine, f64 cosine, f64 amount,
                                 i32 steps);

// A line from pixel to pixel along an axis: step i lies i * (dx, dy) from the pixel, one of them 1 or -1, the other 0.
struct AxisWalk {
    i32 dx, dy;
    u64 length;  // steps
};

struct AxisBlur {
    bool isDone;  // false when memory is out: nothing is written
    u32 result;
};

[[nodiscard]] AxisBlur BlurAlongAxis(CallFrame& frame, const MotionImages& images, const AxisWalk& walk);

// Arcs around the centre, and rays towards it; at most ZLV40_MOST_MOTION_STEPS steps.
[[nodiscard]] u32 BlurAlongArcs(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps);
[[nodiscard]] u32 BlurAlongRays(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps);

// Calls blurRow(y) for every row and reports it.
template <class BlurRow>
u32 BlurRows(CallFrame& frame, const MotionImages& images, BlurRow blurRow)
{
    for (u32 y = 0; y < images.dst.height; ++y) {
        blurRow(y);
        if (!frame.Report(y, images.dst.height)) return 0;
    }
    return 1;
}

}  // namespace zlv
