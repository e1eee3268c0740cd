// Filled polygons in packed 1-bit images (see base/bit_masks.h).
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Sets (value not 0) or clears the pixels inside a polygon of at least three vertices, as of base/polygon_fill.h.
//   image   height rows of width bits, the leftmost in the top bit of a byte; the stride is in bytes. Of a row's last
//           byte, a span that goes on beyond the width may write the one bit after the last pixel's
// A span's last bit is left as it was, unless it is the last one of its byte, or the span begins in the same byte and
// not with that byte's first bit. Clients rely on it: touching shapes leave the seam alone.
// Reports (0, spans) after each span, spans outside the image included. Codes as there, and 14 for a cancel: spans
// drawn so far stay.
ZLV_BASE u32 MV40_PolygonFill1Bit(u8* image, u32 width, u32 height, u32 stride, const f64* points, u32 count,
                                  u32 value);

}  // namespace zlv
