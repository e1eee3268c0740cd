// Convolution with any kernel.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// The result is the sum itself, and not the source less the sum.
inline constexpr u32 kPlainSum = 256;

// Filters `src` into `dst` with a kernel that is applied as it is stored, not turned over.
//   src, dst       images of up to 8 channels, 8 bits a sample or 16 with kSixteenBitSamples in `flags`; strides count
//                  samples. They must be different memory; dst's padding is not touched
//   kernel         kernelWidth * kernelHeight numbers, row after row; both sides are odd
//   scale          what the sum of samples times kernel entries is multiplied by
//   flags          bit c selects channel c, the others are not written in dst; kPlainSum
// A sample becomes its own value less the scaled sum (a high-pass kernel sharpens), or the scaled sum with kPlainSum:
// truncated, and limited to the range of samples; what is no number becomes 0. Sums are made in double precision, row
// by row of the kernel. Pixels outside the image are the nearest inside. An image without rows, columns or channels is
// nothing to do.
// Returns 1, or 0 with a code: 5 for a null pointer, an even side, src equal to dst, more than 8 channels, or a kernel
// that no memory could hold (nothing is written); 1 without memory; 14 for a cancel, rows done so far stay. Reports
// (row, height). Works on the calling thread.
ZLV_BASE u32 MV40_ApplyConvolutionFilterToImage(const void* src, u32 width, u32 height, u32 channels, u32 srcRowStride,
                                                void* dst, u32 dstRowStride, u32 kernelWidth, u32 kernelHeight,
                                                const f64* kernel, f64 scale, u32 flags);

}  // namespace zlv
