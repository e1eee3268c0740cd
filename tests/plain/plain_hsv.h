// Hue, saturation and value, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>

struct PlainHsv {
    double h, s, v;
};

struct PlainRgb {
    double r, g, b;
};

inline PlainHsv PlainRgbToHsv(double r, double g, double b)
{
    const double v = std::max(r, std::max(g, b));
    const double d = v - std::min(r, std::min(g, b));
    if (v == 0) return {-1, 0, v};
    const double s = d / v;
    if (d == 0) return {0, s, v};
    double h;
    if (r == v) h = (g - b) / d;
    else if (g != v) h = (r - g) / d + 4;
    else h = (b - r) / d + 2;
    h *= 60;
    if (h < 0) h += 360;
    return {h, s, v};
}

inline PlainRgb PlainHsvToRgb(double h, double s, double v)
{
    if (s == 0) return {v, v, v};
    const int i = int(h / 60);
    const double f = h / 60 - i;
    const double p = (1 - s) * v, q = (1 - f * s) * v, t = (1 - (1 - f) * s) * v;
    if (i == 0) return {v, t, p};
    if (i == 1) return {q, v, p};
    if (i == 2) return {p, v, t};
    if (i == 3) return {p, q, v};
    if (i == 4) return {t, p, v};
    return {v, p, q};
}
