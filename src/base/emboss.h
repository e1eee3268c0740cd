// A relief: a bump map lit from one direction.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

inline constexpr u32 kEmbossBrightTexture = 1;  // texture * shade / 128, at most 255, instead of / 256
inline constexpr u32 kEmbossWholeImage = 2;     // also the outermost pixels, their neighbours replaced by the nearest

// Renders a bump map (one byte a pixel) into an image of three bytes a pixel.
//   azimuth, elevation  where the light is, radians
//   depth               above 0; the larger, the stronger the relief (1530 / depth is the height of a normal)
//   texture             three bytes a pixel to be shaded, or null: the shade itself is written to all three channels
//   mask                one byte a pixel, or null; where it is 0 the texture is copied unchanged
// Without kEmbossWholeImage the outermost rows and columns of `destination` stay as they were. Reports (row, height).
// Codes: 5 for a null bump map or destination, a depth of 0, a side below 4, or angles that are no numbers; 14.
// Source: J. Schlag, "Fast Embossing Effects on Raster Image Data", Graphics Gems IV (1994).
ZLV_BASE u32 MV40_EmbossRGB(const u8* bumpMap, u32 width, u32 height, u32 bumpStride, f64 azimuth, f64 elevation,
                            u32 depth, const u8* texture, u32 textureStride, u8* destination, u32 destinationStride,
                            const u8* mask, u32 maskStride, u32 flags);

}  // namespace zlv
