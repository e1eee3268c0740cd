// Gradient fills, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

struct PlainStop {
    std::uint8_t bytes[4];
    double position;
};

struct PlainGradient {
    std::vector<PlainStop> stops;
    double gamma;
    double (*pow)(double, double);  // its last bits differ between C run-times: the caller brings it
    double length = 0;

    PlainGradient(const std::uint8_t* colors, const double* positions, std::size_t count, double theGamma,
                  std::uint32_t flags, double (*thePow)(double, double))
        : gamma(theGamma), pow(thePow)
    {
        for (std::size_t i = 0; i < count; ++i) {
            PlainStop stop = {{colors[4 * i], colors[4 * i + 1], colors[4 * i + 2], colors[4 * i + 3]}, positions[i]};
            if (!(flags & 1)) std::swap(stop.bytes[0], stop.bytes[2]);
            if (!(stop.position > 0)) stop.position = 0;
            if (stop.position > 100) stop.position = 100;
            stops.push_back(stop);
        }
        std::stable_sort(stops.begin(), stops.end(),
                         [](const PlainStop& a, const PlainStop& b) { return a.position < b.position; });
    }

    std::vector<std::uint8_t> Interpolate(double p) const
    {
        const std::size_t last = stops.size() - 1;
        std::size_t hi = 0;
        while (hi < last && !(stops[hi].position > p)) ++hi;
        const std::size_t lo = hi > 0 ? hi - 1 : 0;
        const double s = stops[hi].position - stops[lo].position;
        if (lo == hi || p > stops[hi].position || s == 0) return Bytes(stops[hi]);
        double t = (p - stops[lo].position) / s;
        if (t > 1.0) t = 1.0;
        if (gamma != 1.0) t = pow(t, gamma);
        std::vector<std::uint8_t> color;
        for (int c = 0; c < 4; ++c) {
            const double byte = stops[lo].bytes[c] + (stops[hi].bytes[c] - stops[lo].bytes[c]) * t;
            color.push_back(std::isnan(byte) || byte < 0 ? 0 : byte > 255 ? 255 : std::uint8_t(byte));
        }
        return color;
    }

    static std::vector<std::uint8_t> Bytes(const PlainStop& stop) { return {stop.bytes, stop.bytes + 4}; }
};

struct PlainLinearGradient : PlainGradient {
    double startX, startY, endX, endY;
    std::uint32_t mode;

    std::vector<std::uint8_t> ColorAt(double x, double y) const
    {
        const double dx = endX - startX, dy = endY - startY;
        const double gradientLength = std::sqrt(dx * dx + dy * dy);
        double lineX, lineY;
        if (dx == 0) {
            lineX = startX + 100.0;
            lineY = startY;
        } else if (dy == 0) {
            lineX = startX;
            lineY = startY + 100.0;
        } else {
            const double m = -1.0 / (dy / dx);
            lineX = startX == 0 ? 100.0 : 0;
            lineY = m * lineX + (startY - startX * m);
        }
        const double lineLength =
            std::sqrt(std::abs((lineX - startX) * (lineX - startX) + (lineY - startY) * (lineY - startY)));

        if ((x == lineX && y == lineY) || (x == startX && y == startY)) return Bytes(stops[0]);
        if (mode == 1) {
            const auto side = [&](double px, double py) {
                return (lineX - startX) * (py - startY) - (lineY - startY) * (px - startX) > 0;
            };
            if (side(x, y) != side(endX, endY)) return Bytes(stops[0]);
        }
        double d = ((lineY - startY) * (x - startX) - (y - startY) * (lineX - startX)) / lineLength;
        if (lineLength == 0) d = gradientLength;
        if (d < 0) d = -d;
        const double p = d / gradientLength * 100.0;
        return Interpolate(p > 100.0 ? 100.0 : p);
    }
};

struct PlainRadialGradient : PlainGradient {
    double radius;
    std::int32_t centerX, centerY;

    std::vector<std::uint8_t> ColorAt(std::uint32_t x, std::uint32_t y) const
    {
        const std::uint32_t dx = x - std::uint32_t(centerX), dy = y - std::uint32_t(centerY);
        const double d = std::sqrt(double(std::int32_t(dx * dx + dy * dy)));
        const double p = d / radius * 100.0;
        return Interpolate(p > 100.0 ? 100.0 : p);
    }
};

template <class Gradient>
void PlainFill(const Gradient& gradient, std::uint8_t* image, std::uint32_t width, std::uint32_t height,
               std::uint32_t channels, std::size_t stride)
{
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::vector<std::uint8_t> color = gradient.ColorAt(x, y);
            std::copy_n(color.begin(), channels, image + y * stride + std::size_t(x) * channels);
        }
    }
}
