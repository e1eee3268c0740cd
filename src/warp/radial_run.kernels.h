// Kernels of the warps around a centre.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// Where the points are that a warp touches.
struct RadialArea {
    f64 centerX, centerY;
    f64 radius;  // no point is touched when it is negative or no number
    bool hasCenter;
};

// Touched points side by side, in their order: where they stand in their run, and how from the centre.
struct TouchedPoints {
    u32 count;
    u32* indices;
    f64 *dx, *dy, *radii;
};

// What a point at a bearing and a distance from the centre becomes, in two additions.
struct RadialPlace {
    f64 centerX, centerY;
    f64 offsetX, offsetY;
};

struct RadialRunKernels {
    // Finds those of `count` points that are not lost and that the area holds.
    void (*findTouched)(const f64* x, const f64* y, const bool* isLost, u32 count, const RadialArea& area,
                        TouchedPoints& touched);
    // dy / dx; 0 where dx is 0.
    void (*findSlopes)(const TouchedPoints& touched, f64* slopes);
    // Points at (cosine, sine) * radius, which is turned round where dx says that they are on the other side. newX may
    // be the cosines and newY the sines.
    void (*placeLeftOf0)(const TouchedPoints& touched, const f64* radii, const RadialPlace& place, f64* newX,
                         f64* newY);
    void (*placeUpTo0)(const TouchedPoints& touched, const f64* radii, const RadialPlace& place, f64* newX, f64* newY);
};

ZLV_DECLARE_KERNELS(RadialRunKernels, kRadialRunKernels);

}  // namespace zlv
