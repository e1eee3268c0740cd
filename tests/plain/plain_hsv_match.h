// The mask of a region of like colours, said plainly: a queue of pixels. Slow on purpose; includes nothing of the
// library.
#pragma once

#include "plain/plain_hsv.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

struct PlainMatch {
    const double* image;
    std::uint32_t width, height, rowStride;
    std::uint32_t seedX, seedY;
    PlainHsv border;
    std::uint32_t matchMode;
    PlainHsv tolerance;
    std::uint8_t flags;

    PlainHsv ColorAt(std::uint32_t x, std::uint32_t y) const
    {
        const double* const pixel = image + std::size_t(y) * rowStride + std::size_t(x) * 3;
        return {pixel[0], pixel[1], pixel[2]};
    }

    bool IsWithin(const PlainHsv& a, const PlainHsv& b) const
    {
        double d = std::fabs(a.h - b.h);
        if (d > 180) d = a.h > 180 ? (360 - a.h) + b.h : (360 - b.h) + a.h;
        return tolerance.h >= d && tolerance.s >= std::fabs(a.s - b.s) && tolerance.v >= std::fabs(a.v - b.v);
    }

    bool IsLike(const PlainHsv& a, const PlainHsv& b) const
    {
        const bool hasTolerance = tolerance.h != 0 || tolerance.s != 0 || tolerance.v != 0;
        return hasTolerance ? IsWithin(a, b) : a.h == b.h && a.s == b.s && a.v == b.v;
    }

    bool IsAccepted(const PlainHsv& color) const
    {
        return matchMode == 1 ? IsLike(color, ColorAt(seedX, seedY)) : !IsLike(color, border);
    }
};

// The mask has height * maskStride bytes.
inline void PlainMatchMask(const PlainMatch& match, std::uint8_t* mask, std::uint32_t maskStride)
{
    for (std::size_t i = 0; i < std::size_t(match.height) * maskStride; ++i) mask[i] = 0;
    const std::uint8_t mark = match.flags & 2 ? 255 : 1;
    std::deque<std::pair<std::uint32_t, std::uint32_t>> queue = {{match.seedX, match.seedY}};
    while (!queue.empty()) {
        const auto [x, y] = queue.front();
        queue.pop_front();
        if (!match.IsAccepted(match.ColorAt(x, y))) continue;
        const std::size_t at = std::size_t(y) * maskStride + x;
        if (mask[at] != 0) continue;
        mask[at] = mark;
        // The rows above and below are looked for one width away, whatever the stride is.
        if (y < match.height - 1 && mask[at + match.width] == 0) queue.emplace_back(x, y + 1);
        if (y > 0 && mask[at - match.width] == 0) queue.emplace_back(x, y - 1);
        if (x < match.width - 1 && mask[at + 1] == 0) queue.emplace_back(x + 1, y);
        if (x > 0 && mask[at - 1] == 0) queue.emplace_back(x - 1, y);
    }
}
