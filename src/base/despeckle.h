// Removal of speckles.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Pulls single bright and dark pixels towards their neighbours, in place: along four directions, each sample that
// stands out from both neighbours moves by one level, twice up and twice down.
//   image        height rows of width pixels of up to 32 channels, 8 bits a sample; the stride is in bytes, at least
//                width * channels, and padding is not touched
//   channelMask  bit c selects channel c; the others are not written
// What surrounds the image counts as 0. Comparisons with a neighbour's value plus one wrap from 255 to 0.
// Returns 1, or 0 with a code: 5 for a null image or more than 32 channels (nothing is written); 1 without memory;
// 14 for a cancel, channels done so far stay changed. Reports (channel, 3) after each channel, selected or not,
// whatever the number of channels is. Works on the calling thread.
// Source: T. R. Crimmins, "Geometric filter for speckle reduction", Applied Optics 24 (1985).
ZLV_BASE u32 MV40_DespeckleImage(u8* image, u32 width, u32 height, u32 channels, u32 rowStride, i32 channelMask);

}  // namespace zlv
