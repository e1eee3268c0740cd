// Histograms of images, and the tone curves that are made from them.
//
// A histogram is an array of 256 counts, or of 65536 with kSixteenBitSamples in `flags`; strides then count words. All
// functions work in place on the calling thread and return 1, or 0 with a code: 5 for a refused argument (nothing is
// written), 1 without memory, 14 for a cancel (channels done so far stay changed).
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// Remaps the stretched range so that `midpoint` comes out in the middle of it.
inline constexpr u32 kStretchMidpoint = 256;

// Counts the samples of each channel. `histograms` holds one array a channel; null skips a channel. Reports
// (channel, channels) after each channel, skipped or not. Code 5 for a null buffer or histograms.
ZLV_BASE u32 MV40_GetImageChannelHistograms(const void* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                            u32* const* histograms, u32 flags);

// Spreads the samples between `low` and `high` (in either order) by their own distribution, each channel by itself;
// bit c of `flags` selects channel c. Samples outside the range neither count nor change. The darkest sample goes to
// its own share of the total, not to 0. Reports (channel, channels) after each selected channel. Code 5 for a null
// buffer or more than 8 channels.
ZLV_BASE u32 MV40_HistogramEqualizeImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride, u32 low,
                                         u32 high, u32 flags);

// Equalises the brightness (c0 + c1 + c2) / 3 of an 8-bit image and moves the three channels of a pixel by the same
// amount; a fourth stays. Only pixels with a brightness between `low` and `high` are counted, but all are changed.
// Never reports. Code 5 for a null buffer or channels other than 3 and 4.
ZLV_BASE u32 MV40_BrightnessHistogramEqualizeImage(u8* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                                   u32 low, u32 high);

// Stretches the levels of each selected channel (bit c of `flags`) so that `lowPercent` of its samples fall to the
// bottom and `highPercent` to the top of the range. Percentages are limited to 0 to 100. With kStretchMidpoint the
// level `midpoint` of the stretched range is mapped to its middle. Reports (channel, channels) after each selected
// channel. Code 5 for a null buffer, more than 8 channels, or percentages that are no numbers or add up to more than
// 100.
ZLV_BASE u32 MV40_HistogramStretchImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                        f64 lowPercent, f64 highPercent, u32 midpoint, u32 flags);

}  // namespace zlv
