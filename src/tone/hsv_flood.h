// The two ways to fill the mask of a colour match.
#pragma once

#include "runtime/error.h"
#include "tone/hsv_match.kernels.h"

namespace zlv {

struct HsvImage {
    const f64* data;  // three a pixel: hue, saturation, value
    u32 width, height;
    u32 stride;  // in doubles

    const f64* Pixel(u32 x, u32 y) const { return data + size_t(y) * stride + size_t(x) * 3; }
};

struct MatchMask {
    u8* data;
    u32 stride;
    u8 mark;  // what becomes of the bytes of the region
};

struct PixelPlace {
    u32 x, y;
};

// Both set the mask's bytes to the mark where a region of matching pixels, joined above, below, left and right, leads
// to the seed, and to 0 elsewhere, paddings included. The seed lies in the image.

// For masks without padding, 64 pixels at once. Nothing is written without memory.
Error FillPackedMask(const HsvImage& image, const MatchMask& mask, const HsvMatch& match, PixelPlace seed);

// For masks with padding. The bytes that tell whether the pixels above and below have been reached are looked for one
// `width` away, as if there were none, so parts of a region can be left out; which ones follows from the order in
// which pixels are visited: first come, first served. Without memory the mask stays half done.
Error FillPaddedMask(const HsvImage& image, const MatchMask& mask, const HsvMatch& match, PixelPlace seed);

}  // namespace zlv
