// A rectangle of one colour.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Right belongs to the rectangle and bottom does not: (10, 10, 10, 10) is one column of no rows.
struct SolidRect {
    u32 left, top, right, bottom;
};

inline constexpr u32 kSwapFirstAndThird = 1;

// Fills a rectangle of an image of 1, 3 or 4 channels. `color` holds channel 0 in its low byte; with kSwapFirstAndThird
// channels 0 and 2 change places. What lies beyond the right or bottom edge is cut; coordinates are unsigned. Reports
// (row of the rectangle, rows to fill), but not where one fill of bytes does the whole image. Codes: 5 for a null
// image or rectangle, or any other channel count; 14.
ZLV_BASE u32 MV40_FillSolidRect(u8* image, u32 width, u32 height, u32 channels, u32 stride, const SolidRect* rect,
                                u32 color, u32 flags);

}  // namespace zlv
