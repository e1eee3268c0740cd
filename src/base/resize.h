// Resizing.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// The first fourteen are filters; 5 and 7 are the same one, and so are 6 and 11.
enum class ResizeMode : u32 {
    Box,
    Triangle,
    Hamming,
    Gaussian,
    Bell,
    BSpline,
    Hermite,
    BSplineAgain,
    Lanczos3,
    Mitchell,
    Sinc,
    HermiteAgain,
    Hanning,
    CatmullRom,
    BlockAverage,
    AreaAverage,
    Bilinear,
    Bicubic,
    Nearest,
};

inline constexpr u32 kResizeSixteenBit = 1;

// Makes an image of another size from an image.
//   source       sourceHeight rows of sourceWidth pixels, interleaved; 8 bits a sample, or 16 with kResizeSixteenBit,
//                and strides then count words. Not null, not empty
//   destination  likewise; it does not overlap the source
//   channels     at least 1, which modes BlockAverage and Bicubic do not insist on; all are treated alike
//   mode         a ResizeMode. Filters are for 8 bits a sample
//   flags        kResizeSixteenBit; other bits are ignored
// Index i of the destination is position i * ratio of the source, with no shift by half a pixel: the first pixel lies
// on the first. Results are truncated.
//
// Filters work across first, then down; what lies between them is truncated to 8 bits too. Their window is mirrored
// once at the ends of the source, and limited to it. The two averages only shrink. BlockAverage takes squares, as large
// as the smaller ratio; so does AreaAverage of 8-bit samples where both ratios are whole numbers. An image that keeps
// its size and stride is copied with its padding by Bilinear, Bicubic and Nearest; BlockAverage copies row by row, as
// much as the smaller stride holds. A copy makes no report.
//
// Returns 1, or 0 with a code, and then nothing is written but after a cancel:
//   1   without memory
//   5   a bad argument: also strides below width * channels (Bilinear, Nearest), a larger target (averages), a block
//       whose sum may not fit 32 bits (BlockAverage), the source as destination (Bicubic)
//   14  cancelled; what was done so far stays
//   68  a filter's target is smaller than its support
// Reports (column, destWidth) for filters, (channel, channels) for Nearest, else (row, destHeight); a column may be
// written just after its report. Works on the calling thread.
// Sources: the contributor lists are those of D. Schumacher, "General Filtered Image Rescaling", Graphics Gems III;
// R. Keys, "Cubic Convolution Interpolation for Digital Image Processing" (1981), for Bicubic.
ZLV_BASE u32 MV40_ResizeImage(const void* source, u32 sourceWidth, u32 sourceHeight, u32 sourceStride,
                              void* destination, u32 destWidth, u32 destHeight, u32 destStride, u32 channels, u32 mode,
                              u32 flags);

}  // namespace zlv
