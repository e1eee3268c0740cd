// The spans of a polygon, for a caller that draws them by itself.
#pragma once

#include "base/polygon_scan.h"
#include "runtime/base_call.h"

namespace zlv {

// Makes three arrays of spanCount entries, from top to bottom and from left to right: the row of each span and its two
// exact crossings.
//   points                count vertices, x then y each; coordinates within the 32-bit integers
//   rows, lefts, rights   blocks for the caller to free; null where there are no spans
// Returns 1 or 0 with a code: 5 for a null pointer, no vertices, or a coordinate that is no number or out of range; 1
// without memory, and for arrays of 2 GB and more. After a failure the arrays are null and spanCount is 0. Never
// reports.
ZLV_BASE u32 MV40_GetPolygonScanlineArray(const f64* points, u32 count, i32** rows, f64** lefts, f64** rights,
                                          u32* spanCount);

}  // namespace zlv
