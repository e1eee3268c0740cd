// Polygons painted by how much of each pixel they cover.
#pragma once

#include "base/polygon_painters.h"
#include "runtime/error.h"

namespace zlv {

struct CoverageFill {
    u32 samples;  // a pixel is looked at in so many rows and columns: a power of two, at most 16
    f64 opacity;  // of every sample, not limited
    PixelBytes pixel;
};

// Paints a polygon of `count` vertices onto an image of three or four channels, inside its bounding rectangle without
// that one's last row and column. Pixels of one channel are left alone.
// Code 5 for a coordinate that is no number or out of range, and for an opacity that is no number or takes a byte out
// of the 32-bit integers; 1 for a bounding rectangle without pixels and without memory.
[[nodiscard]] Error FillByCoverage(const ImageView<u8>& image, const f64* points, u32 count, const CoverageFill& fill);

}  // namespace zlv
