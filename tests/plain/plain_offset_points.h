// The warp that shifts, said plainly, a point at a time; includes nothing of the library.
#pragma once

#include "plain/plain_warp.h"

inline PlainStep PlainOffset(double shiftX, double shiftY, std::uint32_t wrap, std::uint32_t width,
                             std::uint32_t height)
{
    return [=](double x, double y, double* outX, double* outY) {
        const auto corrected = [](double v, double n) {
            if (v < 0) v += n;
            if (v > n - 1) v -= n;
            return v;
        };
        *outX = x - shiftX;
        *outY = y - shiftY;
        if (wrap == 1 || wrap == 2) *outX = corrected(*outX, width);
        if (wrap == 1 || wrap == 3) *outY = corrected(*outY, height);
        return true;
    };
}
