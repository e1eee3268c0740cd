// Polygons turned into spans and filled, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_overlay.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

struct PlainVertex {
    double x, y;
};

struct PlainSpan {
    long long row;
    double left, right, leftX, rightX;
};

// The active edge method, vertex by vertex.
class PlainScan {
public:
    explicit PlainScan(const std::vector<PlainVertex>& polygon) : vertices_(polygon) {}

    std::vector<PlainSpan> Spans()
    {
        const std::size_t n = vertices_.size();
        std::vector<std::size_t> index(n);
        std::iota(index.begin(), index.end(), std::size_t(0));
        std::sort(index.begin(), index.end(), [&](std::size_t a, std::size_t b) { return Y(a) < Y(b); });
        const double first = std::ceil(Y(index[0]) - 0.5), last = std::floor(Y(index[n - 1]) - 0.5);
        std::size_t k = 0;
        for (double y = first; y <= last; ++y) {
            for (; k < n && Y(index[k]) <= y + 0.5; ++k) {
                const std::size_t i = index[k];
                Treat((i + n - 1) % n, (i + n - 1) % n, y);
                Treat((i + 1) % n, i, y);
            }
            std::sort(active_.begin(), active_.end(), [](const Edge& a, const Edge& b) { return a.x < b.x; });
            for (std::size_t pair = 0; pair + 1 < active_.size(); pair += 2) {
                Edge &a = active_[pair], &b = active_[pair + 1];
                const double left = std::ceil(a.x - 0.5), right = std::floor(b.x - 0.5);
                if (left <= right) spans_.push_back({static_cast<long long>(y), left, right, a.x, b.x});
                a.x += a.dx;
                b.x += b.dx;
            }
        }
        return spans_;
    }

private:
    struct Edge {
        double x, dx;
        std::size_t edgeIndex;
    };

    double Y(std::size_t i) const { return vertices_[i].y; }

    // A vertex has been met; `j` is a neighbour of it and `edge` is between the two.
    void Treat(std::size_t j, std::size_t edge, double y)
    {
        if (Y(j) <= y - 0.5) std::erase_if(active_, [&](const Edge& e) { return e.edgeIndex == edge; });
        else if (Y(j) > y + 0.5) Insert(edge, y);
    }

    void Insert(std::size_t edge, double y)
    {
        PlainVertex p = vertices_[edge], q = vertices_[(edge + 1) % vertices_.size()];
        if (!(p.y < q.y)) std::swap(p, q);
        const double dx = (q.x - p.x) / (q.y - p.y);
        const double below = (y + 0.5 - p.y) * dx;
        active_.push_back({below + p.x, dx, edge});
    }

    std::vector<PlainVertex> vertices_;
    std::vector<Edge> active_;
    std::vector<PlainSpan> spans_;
};

struct PlainFill {
    const std::uint8_t* pattern;  // or null
    std::size_t patternWidth, patternHeight, patternStride;
    std::uint32_t color;
    double opacity;
    const std::uint8_t* palette;  // or null
    std::size_t paletteCount;
    bool isBlending, isSwapping;
};

namespace plain {

inline double Limit(double value, double low, double high) { return std::min(std::max(value, low), high); }

inline int ClosestEntry(const std::uint8_t* palette, std::size_t count, int first, int second, int third)
{
    int best = 196608, closest = 0;
    for (std::size_t i = 0; i < std::min(count, std::size_t(256)); ++i) {
        const int d0 = first - palette[4 * i + 2], d1 = second - palette[4 * i + 1], d2 = third - palette[4 * i];
        const int distance = d0 * d0 + d1 * d1 + d2 * d2;
        if (distance < best) {
            best = distance;
            closest = int(i);
        }
    }
    return closest;
}

inline std::uint8_t MixBytes(int old, int color, double opacity)
{
    const int under = std::uint8_t(int(old * (1 - opacity))), over = std::uint8_t(int(color * opacity));
    return std::uint8_t(under + over);
}

inline void FillPixel(std::uint8_t* pixel, std::size_t channels, const PlainFill& fill)
{
    int c[4];
    for (int i = 0; i < 4; ++i) c[i] = std::uint8_t(fill.color >> (8 * i));
    const int lowByte = c[0];
    const auto component = [&](int index, int byte) {
        return index < int(fill.paletteCount) ? int(fill.palette[4 * index + byte]) : 0;
    };
    if (fill.palette && channels == 1) {
        for (int i = 0; i < 3; ++i) c[i] = component(lowByte, 2 - i);
    }
    if (fill.isSwapping) std::swap(c[0], c[2]);
    if (channels == 1 && !fill.isBlending) {
        *pixel = std::uint8_t(lowByte);
    } else if (channels == 1 && !fill.palette) {
        *pixel = MixBytes(*pixel, lowByte, fill.opacity);
    } else if (channels == 1) {
        const int old = *pixel;
        *pixel = std::uint8_t(ClosestEntry(
            fill.palette, fill.paletteCount, MixBytes(component(old, 2), c[0], fill.opacity),
            MixBytes(component(old, 1), c[1], fill.opacity), MixBytes(component(old, 0), c[2], fill.opacity)));
    } else {
        for (std::size_t i = 0; i < channels; ++i) {
            pixel[i] = fill.isBlending ? MixBytes(pixel[i], c[i], fill.opacity) : std::uint8_t(c[i]);
        }
    }
}

// The smallest of the truncated coordinates that `of` takes from a vertex, and the largest, limited to 0..size - 1.
template <class Of>
void Bounds(const std::vector<PlainVertex>& polygon, std::size_t size, Of of, std::size_t& low, std::size_t& high)
{
    double smallest = 1e300, largest = -1e300;
    for (const PlainVertex& vertex : polygon) {
        smallest = std::min(smallest, std::trunc(of(vertex)));
        largest = std::max(largest, std::trunc(of(vertex)));
    }
    low = std::size_t(Limit(smallest, 0, double(size) - 1));
    high = std::size_t(Limit(largest, 0, double(size) - 1));
}

inline double XOf(const PlainVertex& vertex) { return vertex.x; }
inline double YOf(const PlainVertex& vertex) { return vertex.y; }

}  // namespace plain

inline void PlainFillPolygon(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                             std::size_t stride, const std::vector<PlainVertex>& polygon, const PlainFill& fill)
{
    std::size_t boundsLeft, boundsRight;
    plain::Bounds(polygon, width, plain::XOf, boundsLeft, boundsRight);
    std::size_t patternRow = 0;
    const std::vector<PlainSpan> spans = PlainScan(polygon).Spans();
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const PlainSpan& span = spans[i];
        const bool isNewRow = i > 0 && span.row != spans[i - 1].row;
        if (isNewRow && fill.pattern && fill.patternHeight > 0) patternRow = (patternRow + 1) % fill.patternHeight;
        const std::size_t row = std::size_t(plain::Limit(double(span.row), 0, double(height)));
        const std::size_t left = std::size_t(plain::Limit(span.left, 0, double(width)));
        const std::size_t right = std::size_t(plain::Limit(span.right, 0, double(width)));
        for (std::size_t x = left; x <= right; ++x) {
            if (row >= height || x >= width) continue;
            std::uint8_t* const pixel = image + row * stride + x * channels;
            if (!fill.pattern) {
                plain::FillPixel(pixel, channels, fill);
                continue;
            }
            const std::size_t column = ((left - boundsLeft) % fill.patternWidth + x - left) % fill.patternWidth;
            for (std::size_t c = 0; c < channels; ++c) {
                pixel[c] = fill.pattern[patternRow * fill.patternStride + column * channels + c];
            }
        }
    }
}

// False when there are no pixels between the bounds. `samples` is 4 or 16.
inline bool PlainFillAntialiased(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                                 std::size_t stride, const std::vector<PlainVertex>& polygon, PlainFill fill,
                                 std::size_t samples)
{
    std::size_t left, right, top, bottom;
    plain::Bounds(polygon, width, plain::XOf, left, right);
    plain::Bounds(polygon, height, plain::YOf, top, bottom);
    const std::size_t w = right - left, h = bottom - top;
    if (w == 0 || h == 0) return false;
    std::vector<PlainVertex> moved;
    for (const PlainVertex& vertex : polygon) {
        moved.push_back({(vertex.x - double(left)) * double(samples), (vertex.y - double(top)) * double(samples)});
    }
    std::vector<std::uint8_t> mask(w * samples * h * samples);
    const PlainFill covering = {nullptr, 0, 0, 0, 255, fill.isBlending ? fill.opacity : 1, nullptr, 0, true, false};
    PlainFillPolygon(mask.data(), w * samples, h * samples, 1, w * samples, moved, covering);
    if (channels == 1) return true;

    std::uint8_t color[4];
    for (int i = 0; i < 4; ++i) color[i] = std::uint8_t(fill.color >> (8 * i));
    if (fill.isSwapping) std::swap(color[0], color[2]);
    for (std::size_t y = 0; y < h; ++y) {
        for (std::size_t x = 0; x < w; ++x) {
            std::size_t sum = 0;
            for (std::size_t sampleY = y * samples; sampleY < (y + 1) * samples; ++sampleY) {
                for (std::size_t sampleX = x * samples; sampleX < (x + 1) * samples; ++sampleX) {
                    sum += mask[sampleY * w * samples + sampleX];
                }
            }
            PlainPaintPixel(image + (top + y) * stride + (left + x) * channels, int(sum / (samples * samples)), color,
                            0, int(channels));
        }
    }
    return true;
}

// The first `spansDone` spans; the bits of a row are written as they come, a byte at a time where one is full. Columns
// are limited to the width, and the bit of that column is one of the last byte whenever it is written.
inline void PlainFillBits(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t stride,
                          const std::vector<PlainVertex>& polygon, bool isSetting, std::size_t spansDone)
{
    const std::vector<PlainSpan> spans = PlainScan(polygon).Spans();
    for (std::size_t i = 0; i < std::min(spansDone, spans.size()); ++i) {
        const std::size_t row = std::size_t(plain::Limit(double(spans[i].row), 0, double(height)));
        const std::size_t left = std::size_t(plain::Limit(spans[i].left, 0, double(width)));
        const std::size_t right = std::size_t(plain::Limit(spans[i].right, 0, double(width)));
        const auto write = [&](std::size_t x) {
            if (row >= height) return;
            std::uint8_t& byte = image[row * stride + x / 8];
            const int bit = 0x80 >> (x % 8);
            byte = std::uint8_t(isSetting ? byte | bit : byte & ~bit);
        };
        std::size_t x = left;
        for (; x % 8 != 0 && x <= right; ++x) write(x);
        for (; x + 7 <= right; x += 8) {
            for (std::size_t bit = 0; bit < 8; ++bit) write(x + bit);
        }
        for (; x < right; ++x) write(x);
    }
}
