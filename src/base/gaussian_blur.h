// The base layer's blur.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

inline constexpr u32 kBlurDirectly = 256;    // the direct engine for every sigma
inline constexpr u32 kBlurTruncates = 1024;  // the direct engine truncates its results instead of rounding them

// Blurs the channels that bits 0 to 7 of `flags` select by a Gaussian of standard deviation `sigma`; the others of
// `destination` stay as they were. Samples are words with kSixteenBitSamples, and strides count them.
//
// Below sigma 1, or with kBlurDirectly, a kernel of 2 * ceil(2.5 * sigma) + 1 entries runs along the rows and then the
// columns. At the borders the entries that lie in the image share the whole weight. A sigma of 0 or less copies. The
// images must be two. Reports (2 * channel, 2 * channels) and (2 * channel + 1, 2 * channels) after the two passes of
// each selected channel.
//
// From sigma 1 on, recursive filters run along the rows and then the columns, as if the outermost samples went on for
// ever; their cost does not depend on sigma. From sigma 4.5 on they compute in single precision. Results are truncated,
// so a flat image may lose a level. Between the two passes samples are kept in 16 bits with a sign, without a clamp:
// values above 32767 wrap. A line may be shorter than the four samples that the recursion looks back, down to a single
// one: it is continued by its end samples like any other. The images may be the same. Reports (row, height) after each
// row and (column, width) after each column of each selected channel.
//
// Returns 1, or 0 with a code: 5 for a null image, the same image twice in the direct engine, more than 8 channels, or
// a sigma that is no number, infinite, or too large for its engine (3.4e38; 3,355,443 in the direct one); 1 without
// memory or for an empty image; 14 for a cancel: channels and columns done so far stay. Nothing is written with 5 and
// 1. Works on the calling thread.
// Source of the recursion: R. Deriche, "Recursively implementing the Gaussian and its derivatives", INRIA Research
// Report 1893 (1993).
ZLV_BASE u32 MV40_GaussianBlurImage(const void* source, u32 width, u32 height, u32 channels, u32 sourceStride,
                                    void* destination, u32 destinationStride, f64 sigma, u32 flags);

}  // namespace zlv
