// Pushing an image, said plainly: column by column, every tap looked up. Slow on purpose; includes nothing of the
// library.
#pragma once

#include "plain/plain_warp.h"

#include <cstring>

struct PlainPoint {
    double x, y;
};

struct PlainRectangle {
    double left, top, right, bottom;
};

// The four pixels along one axis and the fraction, for a place within 0 to size - 1.
struct PlainPushTaps {
    double at[4];
    double fraction;

    PlainPushTaps(double v, double size)
    {
        const double whole = std::trunc(v);
        at[0] = v >= 1 ? whole - 1 : 0;
        at[1] = v < size - 1 ? whole : size - 1;
        at[2] = v < size - 2 ? whole + 1 : at[1];
        at[3] = v < size - 3 ? whole + 2 : at[2];
        fraction = v - whole;
    }
};

inline std::uint8_t PlainPushedLevel(const PlainPicture& picture, double x, double y, std::uint32_t c)
{
    const PlainPushTaps columns(x, picture.width), rows(y, picture.height);
    double sums[4];
    for (int j = 0; j < 4; ++j) {
        double taps[4];
        for (int i = 0; i < 4; ++i) taps[i] = picture.At(columns.at[i], rows.at[j], c);
        sums[j] = PlainCubic(columns.fraction, taps);
    }
    return PlainCubicLevel(PlainCubic(rows.fraction, sums));
}

// Corners clockwise from the top left one.
inline void PlainQuadWarp(const PlainPicture& picture, std::uint8_t* dst, const PlainRectangle& rectangle,
                          const PlainPoint (&corners)[4])
{
    const double w = rectangle.right - rectangle.left, h = rectangle.bottom - rectangle.top;
    if (w < 1 || h < 1) return;
    const auto between = [](PlainPoint a, PlainPoint b, double t) {
        return PlainPoint{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    };
    for (double i = 0; i < w; ++i) {
        const double t = i / w;
        const PlainPoint top = between(corners[0], corners[1], t), bottom = between(corners[3], corners[2], t);
        const double stepX = (bottom.x - top.x) / h, stepY = (bottom.y - top.y) / h;
        double x = top.x, y = top.y;
        for (double j = 0; j < h; ++j) {
            const double sampledX = std::clamp(x, 0.0, picture.width - 1.0);
            const double sampledY = std::clamp(y, 0.0, picture.height - 1.0);
            for (std::uint32_t c = 0; c < picture.channels; ++c) {
                dst[std::size_t(rectangle.top + j) * picture.stride +
                    std::size_t(rectangle.left + i) * picture.channels + c] =
                    PlainPushedLevel(picture, sampledX, sampledY, c);
            }
            x += stepX;
            y += stepY;
        }
    }
}

// report(k, 4) says whether to go on.
template <class Report>
bool PlainPush(const PlainPicture& picture, std::uint8_t* dst, PlainPoint from, PlainPoint to, Report report)
{
    std::memcpy(dst, picture.samples, std::size_t(picture.height) * picture.stride);
    if (from.x == to.x && from.y == to.y) return true;
    const double dx = from.x - to.x, dy = from.y - to.y;
    const double r = 2 * std::trunc(std::sqrt(dx * dx + dy * dy));
    const double width = picture.width, height = picture.height;
    const double left = std::max(0.0, to.x - r), right = std::min(to.x + r, width);
    const double top = std::max(0.0, to.y - r), bottom = std::min(to.y + r, height);
    const PlainRectangle rectangles[] = {
        {left, top, std::min(to.x, width), std::min(to.y, height)},
        {std::max(0.0, to.x), top, right, std::min(to.y, height)},
        {left, std::max(0.0, to.y), std::min(to.x, width), bottom},
        {std::max(0.0, to.x), std::max(0.0, to.y), right, bottom},
    };
    const int pulledCorners[] = {2, 3, 1, 0};
    for (int k = 0; k < 4; ++k) {
        const PlainRectangle& q = rectangles[k];
        PlainPoint corners[] = {{q.left, q.top}, {q.right, q.top}, {q.right, q.bottom}, {q.left, q.bottom}};
        corners[pulledCorners[k]] = from;
        PlainQuadWarp(picture, dst, q, corners);
        if (!report(std::uint32_t(k + 1), 4u)) return false;
    }
    return true;
}
