// Polygons of whole-numbered points: whether one is convex, and the convex hull of any.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Whether a polygon of `count` points, x then y each, is convex as it stands: it turns one way throughout, or not at
// all, and winds once. The way is that of (0, 0), (1, 0), (1, 1), (0, 1), clockwise where y points down; the reverse is
// refused.
// Returns 1, also for no points; or 0 with a code: 5 for null, 61 for a polygon that is not convex.
ZLV_BASE u32 MV40_PolygonIsConvex(const i32* points, u32 count);

// Makes the convex hull of at least three points, x then y each. The hull's points stand in descending order of the
// angle at which the walk around them goes on and end with the start, the leftmost of the points of smallest y; points
// on a line between two others may be among them.
//   hull       a block of hullCount points for the caller to free; null after a failure
//   hullCount  0 after a failure
// Returns 1, with the thread's last code as it was; or 0 with a code: 5 for a null pointer or fewer than three points,
// 61 for a hull of fewer than three, 1 without memory and for 2 GB of points and more.
// Source: R. A. Jarvis, "On the identification of the convex hull of a finite set of points in the plane",
// Information Processing Letters 2 (1973), with R. Sedgewick's stand-in for the angle.
ZLV_BASE u32 MV40_GetConvexHull(const i32* points, u32 count, i32** hull, u32* hullCount);

}  // namespace zlv
