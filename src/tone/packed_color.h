// Colours that clients pass as one number: red in the lowest byte, or blue with ZLV40_BGR.
#pragma once

#include "base/hsv.h"

#include <utility>

#include "zlv40.h"

namespace zlv {

// With a value of 0 to 255.
inline Hsv HsvOfColor(u32 color, u32 flags)
{
    f64 red = color & 255, blue = (color >> 16) & 255;
    if (flags & ZLV40_BGR) std::swap(red, blue);
    return RGBToHSV(red, (color >> 8) & 255, blue);
}

}  // namespace zlv
