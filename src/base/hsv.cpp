#include "base/hsv.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr f64 kDegreesOfSide = 60.0;

// Where the largest of several components is the same, red comes before green before blue.
f64 HueOf(f64 r, f64 g, f64 b, f64 largest, f64 difference)
{
    f64 sides = 0;
    if (r == largest) sides = (g - b) / difference;
    else if (g != largest) sides = (r - g) / difference + 4;
    else sides = (b - r) / difference + 2;
    const f64 degrees = sides * kDegreesOfSide;
    return degrees < 0 ? degrees + 360 : degrees;
}

}  // namespace

Hsv RGBToHSV(f64 r, f64 g, f64 b)
{
    const f64 v = std::max({r, g, b});
    const f64 difference = v - std::min({r, g, b});
    if (v == 0) return {-1, 0, v};
    if (difference == 0) return {0, 0, v};
    return {HueOf(r, g, b, v, difference), difference / v, v};
}

HueWeights WeightsOfHue(f64 h)
{
    const i32 side = i32(h / kDegreesOfSide);
    const f64 falling = h / kDegreesOfSide - side, rising = 1 - falling;
    switch (side) {
    case 0: return {0, rising, 1};
    case 1: return {falling, 0, 1};
    case 2: return {1, 0, rising};
    case 3: return {1, falling, 0};
    case 4: return {rising, 1, 0};
    default: return {0, 1, falling};
    }
}

Rgb HSVToRGB(f64 h, f64 s, f64 v)
{
    if (s == 0) return {v, v, v};
    const HueWeights weights = WeightsOfHue(h);
    return {(1 - weights.r * s) * v, (1 - weights.g * s) * v, (1 - weights.b * s) * v};
}

}  // namespace zlv
