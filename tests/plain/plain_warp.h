// Warp lists, said plainly: every pixel's position through every step, and the picture read where it arrives. Slow on
// purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

// Gets a position, and has it in the outputs already. False is outside.
using PlainStep = std::function<bool(double x, double y, double* outX, double* outY)>;

struct PlainPosition {
    double x, y;
    bool isLost;
};

inline PlainPosition PlainMapped(const std::vector<PlainStep>& steps, double x, double y)
{
    for (const PlainStep& step : steps) {
        if (!step(x, y, &x, &y)) return {x, y, true};
    }
    return {x, y, false};
}

struct PlainExtent {
    double minX, minY, maxX, maxY;
};

inline PlainExtent PlainTransformExtent(const std::vector<PlainStep>& steps, std::uint32_t width, std::uint32_t height)
{
    PlainExtent extent = {double(width), double(height), 0, 0};
    for (std::uint32_t row = 0; row < height; ++row) {
        for (std::uint32_t column = 0; column < width; ++column) {
            double x = column, y = row;
            for (const PlainStep& step : steps) step(x, y, &x, &y);
            if (x < extent.minX) extent.minX = x;
            if (y < extent.minY) extent.minY = y;
            if (x > extent.maxX) extent.maxX = x;
            if (x > extent.maxY) extent.maxY = x;
        }
    }
    return extent;
}

struct PlainPicture {
    const std::uint8_t* samples;
    std::uint32_t width, height, channels, stride;

    double At(double column, double row, std::uint32_t c) const
    {
        return samples[std::uint32_t(row) * stride + std::uint32_t(column) * channels + c];
    }
};

inline std::uint8_t PlainNearest(const PlainPicture& picture, const PlainPosition& p, std::uint32_t c, double fill)
{
    const bool isInside = p.x >= 0 && p.y >= 0 && p.x <= picture.width && p.y <= picture.height;
    if (!isInside || p.isLost) return std::uint8_t(fill);
    const double column = std::min(std::trunc(p.x + 0.9999999999), picture.width - 1.0);
    const double row = std::min(std::trunc(p.y + 0.9999999999), picture.height - 1.0);
    return std::uint8_t(picture.At(column, row, c));
}

inline std::uint8_t PlainBilinear(const PlainPicture& picture, const PlainPosition& p, std::uint32_t c, double fill)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::uint8_t(fill);
    const double width = picture.width, height = picture.height;
    const double fx = p.x - std::floor(p.x), fy = p.y - std::floor(p.y);
    const bool leftOut = p.isLost || p.x < 0 || p.x >= width;
    const bool rightOut = p.isLost || p.x <= -1 || p.x >= width - 1;
    const bool topOut = p.isLost || p.y < 0 || p.y >= height;
    const bool bottomOut = p.isLost || p.y <= -1 || p.y >= height - 1;
    const double c0 = std::clamp(std::floor(p.x), 0.0, width - 1), c1 = std::clamp(std::floor(p.x) + 1, 0.0, width - 1);
    const double r0 = std::clamp(std::floor(p.y), 0.0, height - 1);
    const double r1 = std::clamp(std::floor(p.y) + 1, 0.0, height - 1);
    const double p00 = leftOut || topOut ? fill : picture.At(c0, r0, c);
    const double p10 = rightOut || topOut ? fill : picture.At(c1, r0, c);
    const double p11 = rightOut || bottomOut ? fill : picture.At(c1, r1, c);
    const double p01 = leftOut || bottomOut ? fill : picture.At(c0, r1, c);
    return std::uint8_t(p00 * (1 - fx) * (1 - fy) + p10 * fx * (1 - fy) + p11 * fx * fy + p01 * (1 - fx) * fy);
}

inline double PlainCubic(double t, const double* four)
{
    const double w0 = -(1 - t) * t * (1 - t);
    const double w1 = 1 - 2 * (t * t) + t * t * t;
    const double w2 = ((t + 1) - t * t) * t;
    const double w3 = -(t * t) * (1 - t);
    return four[0] * w0 + four[1] * w1 + four[2] * w2 + four[3] * w3;
}

inline double PlainCubicFraction(double v)
{
    if (v < 0) {
        const double a = std::fabs(v), i = std::trunc(a);
        v = (i + 1) - (a - i);
    }
    return v - std::trunc(v);
}

inline std::uint8_t PlainCubicLevel(double sum) { return std::uint8_t(std::clamp(std::trunc(sum + 0.5), 0.0, 255.0)); }

inline std::uint8_t PlainBicubic(const PlainPicture& picture, const PlainPosition& p, std::uint32_t c, double fill)
{
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::uint8_t(fill);
    const auto isUsable = [](double v, double size, int tap) {
        const bool fits[] = {v < size && v >= 1, v < size && v >= 0, v < size - 1 && v >= -1, v < size - 2 && v >= -2};
        return fits[tap] && std::trunc(v + (tap - 1)) < size;
    };
    double rows[4];
    for (int j = 0; j < 4; ++j) {
        double taps[4];
        for (int i = 0; i < 4; ++i) {
            const bool isRead = !p.isLost && isUsable(p.x, picture.width, i) && isUsable(p.y, picture.height, j);
            taps[i] = isRead ? picture.At(std::trunc(p.x + (i - 1)), std::trunc(p.y + (j - 1)), c) : fill;
        }
        rows[j] = PlainCubic(PlainCubicFraction(p.x), taps);
    }
    return PlainCubicLevel(PlainCubic(PlainCubicFraction(p.y), rows));
}

inline void PlainTransformProcess(const std::vector<PlainStep>& steps, const PlainPicture& picture, std::uint8_t* dst,
                                  std::uint32_t dstStride, std::uint32_t flags, std::uint32_t background)
{
    for (std::uint32_t row = 0; row < picture.height; ++row) {
        for (std::uint32_t column = 0; column < picture.width; ++column) {
            PlainPosition p = PlainMapped(steps, column, row);
            if (flags & 8) {
                // What is no number stays so.
                if (p.x < 0) p.x = 0;
                else if (p.x > picture.width - 1.0) p.x = picture.width - 1.0;
                if (p.y < 0) p.y = 0;
                else if (p.y > picture.height - 1.0) p.y = picture.height - 1.0;
            }
            std::uint8_t* const pixel = dst + row * dstStride + column * picture.channels;
            for (std::uint32_t c = 0; c < picture.channels; ++c) {
                const double fill = flags & 4 ? pixel[c] : c < 4 ? (background >> (8 * c)) & 255 : 0;
                if ((flags & 3) == 0) pixel[c] = PlainNearest(picture, p, c, fill);
                if ((flags & 3) == 1) pixel[c] = PlainBilinear(picture, p, c, fill);
                if ((flags & 3) == 2) pixel[c] = PlainBicubic(picture, p, c, fill);
            }
        }
    }
}
