// Samples moved between interleaved images and single planes.
//
// With kSixteenBitSamples in `flags` samples are words and strides count words. All functions return 1, or 0 with a
// code: 5 for a refused argument (nothing is written), 14 for a cancel (rows done so far stay).
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Takes channel 0 as blue and channel 2 as red.
inline constexpr u32 kGrayFromBgr = 1;

// gray = (601 g + 306 r + 117 b) / 1024, truncated, for images of 3 or 4 channels; channel 0 is red. Reports (row,
// height).
ZLV_BASE u32 MV40_ImageToGrayScale8Bit(const void* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                       void* gray, u32 grayStride, u32 flags);

// Writes each plane to its channel of `destination`; a channel whose plane is null stays as it was. Never reports.
ZLV_BASE u32 MV40_CombineImageChannels(const void* const* planes, u32 width, u32 height, u32 channels, u32 planeStride,
                                       void* destination, u32 destinationStride, u32 flags);

// Splits an image of 4 channels into its first three and its fourth; either output may be null, not both. Never
// reports.
ZLV_BASE u32 MV40_SplitRGBAToRGBPlusA(const void* source, u32 width, u32 height, u32 sourceStride, void* rgb,
                                      u32 rgbStride, void* alpha, u32 alphaStride, u32 flags);

}  // namespace zlv
