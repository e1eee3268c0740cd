// Warps that need more than numbers: one by a function of the command's own, one by a polygon.
#include "catalogue.h"
#include "warps.h"
#include "zlv40.h"

#include <cmath>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallKaleidoscope(const EffectCall& call);
uint32_t CallPolygonWarp(const EffectCall& call);

namespace {

constexpr double kTurn = 6.28318530717958647692;

struct Mirrors {
    double centreX, centreY, sector, start;
};

// Every other sector mirrors the first one.
int32_t FromFirstSector(double x, double y, double* outX, double* outY, void* userData)
{
    const Mirrors& mirrors = *static_cast<const Mirrors*>(userData);
    const double fromCentreX = x - mirrors.centreX, fromCentreY = y - mirrors.centreY;
    const double distance = std::hypot(fromCentreX, fromCentreY);
    const double angle = std::atan2(fromCentreY, fromCentreX) - mirrors.start + kTurn;
    const double inPair = std::fmod(angle, 2 * mirrors.sector);
    const double inFirst = (inPair < mirrors.sector ? inPair : 2 * mirrors.sector - inPair) + mirrors.start;
    *outX = mirrors.centreX + distance * std::cos(inFirst);
    *outY = mirrors.centreY + distance * std::sin(inFirst);
    return 1;
}

}  // namespace

uint32_t CallKaleidoscope(const EffectCall& call)
{
    const ImageGroup& source = call.source;
    Mirrors mirrors{(source.width - 1) / 2.0, (source.height - 1) / 2.0, kTurn / (2 * call.values[0]),
                    kTurn * call.values[1] / 360};
    const auto add = [&](uint32_t width, uint32_t height, std::span<const double>) {
        return ZLV40_AddUserTransform(width, height, FromFirstSector, &mirrors);
    };
    WarpSettings settings;
    settings.clamps = true;
    return WarpOnce(call, add, settings);
}

uint32_t CallPolygonWarp(const EffectCall& call)
{
    const ImageGroup& source = call.source;
    const auto corners = static_cast<uint32_t>(call.values[0]);
    std::vector<point> polygon(corners);
    for (uint32_t i = 0; i < corners; ++i) {
        const double angle = kTurn * (call.values[1] / 360 + i / double(corners));
        polygon[i].x = static_cast<int32_t>(std::lround((source.width - 1) * (1 + std::sin(angle)) / 2));
        polygon[i].y = static_cast<int32_t>(std::lround((source.height - 1) * (1 - std::cos(angle)) / 2));
    }
    return WarpOnce(call, [&](uint32_t width, uint32_t height, std::span<const double> values) {
        return ZLV40_AddPolygonTransform(width, height, polygon.data(), corners, static_cast<uint32_t>(values[2]));
    });
}

}  // namespace zlv
