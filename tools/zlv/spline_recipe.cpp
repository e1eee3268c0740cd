// A spline over the picture, drawn towards the corners of a star; the third coordinate is the pen's thickness.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallSplineStar(const EffectCall& call);

namespace {

struct Points {
    std::vector<double> x, y, z;

    explicit Points(size_t count) : x(count), y(count), z(count) {}
    size_t Count() const { return x.size(); }
};

// A star's corners and the corners between them, back to the first one. The pen is thick far outside.
Points StarCorners(const ImageGroup& picture, uint32_t tips, double thickness)
{
    constexpr double kTurn = 6.28318530717958647692, kInner = 0.4, kOuter = 0.95;
    const double side = std::min(picture.width, picture.height) / 2.0;
    Points corners(size_t{2} * tips + 1);
    for (size_t i = 0; i < corners.Count(); ++i) {
        const double angle = kTurn * static_cast<double>(i) / (2.0 * tips);
        const double reach = side * (i % 2 == 0 ? kOuter : kInner);
        corners.x[i] = (picture.width - 1) / 2.0 + reach * std::sin(angle);
        corners.y[i] = (picture.height - 1) / 2.0 - reach * std::cos(angle);
        corners.z[i] = i % 2 == 0 ? thickness : thickness / 4;
    }
    return corners;
}

struct Colour {
    uint32_t bytes;
    uint8_t Channel(uint32_t channel) const { return static_cast<uint8_t>(bytes >> 8 * channel); }
};

void Dot(const ImageGroup& picture, double x, double y, double radius, Colour colour)
{
    const auto first = [](double from) { return static_cast<uint32_t>(std::max(0.0, std::ceil(from))); };
    const auto end = [](double to, uint32_t size) {
        return static_cast<uint32_t>(std::clamp(std::floor(to) + 1, 0.0, static_cast<double>(size)));
    };
    for (uint32_t row = first(y - radius); row < end(y + radius, picture.height); ++row) {
        for (uint32_t column = first(x - radius); column < end(x + radius, picture.width); ++column) {
            if ((column - x) * (column - x) + (row - y) * (row - y) > radius * radius) continue;
            uint8_t* const pixel = picture.samples + size_t{row} * picture.stride + size_t{column} * picture.channels;
            for (uint32_t c = 0; c < picture.channels; ++c) pixel[c] = colour.Channel(c);
        }
    }
}

}  // namespace

uint32_t CallSplineStar(const EffectCall& call)
{
    const ImageGroup& picture = call.target;
    const Points corners = StarCorners(picture, static_cast<uint32_t>(call.values[0]), call.values[2]);
    // A point a pixel, or closer: the way is shorter than a corner's share of the picture's sides.
    Points curve(corners.Count() * std::max(picture.width, picture.height));
    const uint32_t result =
        ZLV40_Get3DSplinePoints(static_cast<uint32_t>(curve.Count()), static_cast<uint32_t>(corners.Count()),
                                static_cast<uint32_t>(call.values[1]), corners.x.data(), corners.y.data(),
                                corners.z.data(), curve.x.data(), curve.y.data(), curve.z.data());
    if (!result) return result;
    const Colour colour{static_cast<uint32_t>(call.values[3])};
    for (size_t i = 0; i < curve.Count(); ++i)
        Dot(picture, curve.x[i], curve.y[i], std::max(curve.z[i] / 2, 0.75), colour);
    return result;
}

}  // namespace zlv
