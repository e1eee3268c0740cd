// The warp into an ellipse, said plainly, a point at a time; includes nothing of the library.
#pragma once

#include "plain/plain_warp.h"

inline PlainStep PlainEllipse(double width, double height, double semiAxisX, double semiAxisY, double offsetX,
                              double offsetY, int mode)
{
    return [=](double x, double y, double* outX, double* outY) {
        // Of an empty picture nothing is known.
        const bool isEmpty = width == 0 || height == 0;
        const double centerX = isEmpty ? 0 : (width - 1) * 0.5, centerY = isEmpty ? 0 : (height - 1) * 0.5;
        const double w = isEmpty ? 0 : width, h = isEmpty ? 0 : height;
        const double a2 = semiAxisX * semiAxisX, b2 = semiAxisY * semiAxisY;
        const double px = x - offsetX, py = y - offsetY;
        if (px < 0 || py < 0 || py > h || px > w) return false;
        const double ex = px - centerX, ey = py - centerY;
        if (mode == 1 || mode == 2) {
            const double v = (1 - ex * ex / a2) * b2;
            if (v <= 0) return false;
            const double root = std::sqrt(v);
            *outY = (py - (centerY - root)) / ((centerY + root) - (centerY - root)) * h;
            if (mode == 1) *outX = px;
        }
        if (mode == 0 || mode == 2) {
            const double v = (1 - ey * ey / b2) * a2;
            if (v <= 0) return false;
            const double root = std::sqrt(v);
            *outX = (px - (centerX - root)) / ((centerX + root) - (centerX - root)) * w;
            if (mode == 0) *outY = py;
        }
        return true;
    };
}
