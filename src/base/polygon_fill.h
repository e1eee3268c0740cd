// Filled polygons.
//
// Vertices are pairs of x and y in pixels, in order around the polygon, which closes by itself and may cross itself
// (the even-odd rule). A pixel is inside when its centre is. Coordinates are within the 32-bit integers. What lies
// above the image and left of it is painted onto its first row and column (see polygon_painting.h); nothing outside the
// image is written.
//
// The functions work on the calling thread and return 1, or 0 with a code: 5 for a refused argument (nothing is
// written), 1 without memory (nothing is written).
#pragma once

#include "base/image_view.h"
#include "runtime/base_call.h"

namespace zlv {

inline constexpr u32 kPolygonBlend = 1;        // mix with what is there; else the opacity is not used
inline constexpr u32 kPolygonSwapColor = 2;    // exchange the colour's first and third byte
inline constexpr u32 kPolygonAntialias = 4;    // paint by how much of each pixel is covered
inline constexpr u32 kPolygonFineSamples = 8;  // count 16 by 16 samples a pixel instead of 4 by 4

// Fills a polygon of at least three vertices.
//   image         height rows of width pixels of 1, 3 or 4 channels, 8 bits a sample; the stride is in bytes
//   pattern       null, or a tile of the image's channels that is copied instead of the colour. Its row moves on with
//                 each row of the polygon that has pixels, wherever that lies; its columns begin at the polygon's
//                 bounding rectangle. patternWidth is above 0; a patternHeight of 0 is one row for all
//   color         channel 0 in the low byte. With a palette, one channel's low byte is an index
//   opacity       not limited; shares of bytes are truncated, and their low eight bits added
//   palette       null, or paletteCount entries of four bytes for an image of one channel, with the third component
//                 first. Mixed colours are looked for in it; of equal ones the lowest index is taken. Entries above 256
//                 are not used, indices beyond the last entry are black
// Antialiased, no pattern and no palette are used, only the bounding rectangle without its last row and column is
// painted, a fourth channel keeps its bytes, and an image of one channel is left as it is.
// Code 5 for a null image or polygon, another number of channels or vertices, a coordinate out of range or no number, a
// pattern at an opacity or without columns, and an opacity that is no number or takes shares out of the 32-bit
// integers; 1 also for antialiasing in a bounding rectangle without pixels. Never reports.
ZLV_BASE u32 MV40_PolygonFillImage(u8* image, u32 width, u32 height, u32 channels, u32 stride, const f64* points,
                                   u32 count, const u8* pattern, u32 patternWidth, u32 patternHeight, u32 patternStride,
                                   u32 color, f64 opacity, const u8* palette, u32 paletteCount, u32 flags);

}  // namespace zlv
