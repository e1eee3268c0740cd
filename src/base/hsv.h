// Colours as hue, saturation and value.
//
// Hue is in degrees, 0 up to 360; saturation runs from 0 to 1; value has the scale of the components, 0 to 255 or 0 to
// 1 as a caller likes. Black has no hue: -1 stands for it. Grays have the hue 0.
// Source: A. R. Smith, "Color gamut transform pairs", SIGGRAPH (1978).
#pragma once

#include "platform/types.h"

namespace zlv {

struct Hsv {
    f64 h, s, v;
};

struct Rgb {
    f64 r, g, b;
};

// Components that are not negative.
Hsv RGBToHSV(f64 r, f64 g, f64 b);

// What a hue says of the components: each is value * (1 - weight * saturation) with a weight of its own. On every side
// of the hexagon of hues one weight is 0, one is 1 and one lies between them.
struct HueWeights {
    f64 r, g, b;
};

// For a hue from -60 to 360, which -1 belongs to: it lies just before red on the side that begins there.
HueWeights WeightsOfHue(f64 h);

// The way back; a saturation of 0 is a gray whatever the hue is.
Rgb HSVToRGB(f64 h, f64 s, f64 v);

}  // namespace zlv
