// Taking single pixels out of images and putting them in, and whole seams.
#pragma once

#include "seam/seam_context.h"

namespace zlv {

// Images of 1, 3 or 4 channels; with others nothing happens. The width of the image stays: whoever has changed all
// rows changes it.

// Moves the pixels right of x one place to the left, for an x inside the image. With `blends` the pixel now at x is
// the mean of the old one and of the one behind it, truncated. Behind the last pixel that is what an earlier removal
// has left there; where the row's storage ends it is the pixel itself.
template <class T>
void RemovePixel(CLImage<T>& image, u32 x, u32 y, bool blends);

// Moves the pixels from x on one place to the right and puts the mean of the old pixel and of its left neighbour at x,
// truncated; that of the first pixel and itself. The row must have room.
template <class T>
void InsertPixel(CLImage<T>& image, u32 x, u32 y);

// The gradient magnitude of the pixel's first three channels, their sum divided by 3. The image's edge pixels stand for
// their neighbours outside.
u32 EnergyAt(const CLImage<u8>& image, u32 x, u32 y);

// The images that a seam goes through. The bias may be empty.
struct SeamImages {
    CLImage<u8>& working;
    CLImage<u16>& energy;
    CLImage<i32>& bias;
};

// Both change the images' width, and the energy of the pixels along the seam alone.
void RemoveSeam(const SeamImages& images, const ZLVArray<u32>& seam);
// The penalty is added to the energy around the seam, so that the next ones take other ways.
void InsertSeam(const SeamImages& images, const ZLVArray<u32>& seam, u16 penalty);

}  // namespace zlv
