// Gray dilation and erosion of a plane of bytes with an additive structuring element.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Dilation: each pixel of `dst` becomes the largest of sample + entry over the window around it in `src`, from 0
// to 255.
//   src, dst       planes of one byte a pixel, with strides in bytes; they must not overlap. dst's padding is not
//                  touched
//   element        elementSize * elementSize entries, row after row, not reflected; all of them take part. An entry
//                  with its top bit set is a negative number: 0xFFFFFFFA takes 6 off
//   elementSize    odd, above 0
// Pixels outside the image are the nearest inside. An image without rows or columns is nothing to do. An element of
// equal entries costs the same at any size.
// Returns 1, or 0 with a code: 5 for a null pointer, an even size, one below 1, or an element that no memory could
// hold (nothing is written); 1 without memory; 14 for a cancel, rows done so far stay. Reports (row, height). Works on
// the calling thread.
ZLV_BASE u32 MV40_MorphoDilationGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                                     i32 elementSize, u8* dst, u32 dstRowStride);

// Erosion: the smallest of sample - entry, from 0 to 255. The rest is as above.
ZLV_BASE u32 MV40_MorphoErosionGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                                    i32 elementSize, u8* dst, u32 dstRowStride);

}  // namespace zlv
