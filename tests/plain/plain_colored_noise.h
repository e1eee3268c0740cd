// The painting of coloured noise, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_hsv.h"

#include <cstdint>

// The colour's hue and saturation with this value: three bytes, red first.
inline void PlainColorOfValue(std::uint32_t color, std::uint8_t value, std::uint8_t* out)
{
    const PlainHsv hsv = PlainRgbToHsv(color & 255, color >> 8 & 255, color >> 16 & 255);
    const PlainRgb rgb = PlainHsvToRgb(hsv.h, hsv.s, value);
    out[0] = std::uint8_t(rgb.r);
    out[1] = std::uint8_t(rgb.g);
    out[2] = std::uint8_t(rgb.b);
}
