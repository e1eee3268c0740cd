// Every warp as a client adds it, with its plain twin, and a list of all of them for chains. A new warp gets a maker
// here and a row in AllWarps.
#pragma once

#include "plain/plain_ellipse_points.h"
#include "plain/plain_offset_points.h"
#include "plain/plain_polygon_points.h"
#include "plain/plain_radial_points.h"
#include "plain/plain_random_points.h"
#include "runtime/math.h"
#include "support/test_hooks.h"
#include "warp/warp_support.h"

namespace zlvtest {

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr PlainRadialMath kRadialMath = {zlv::Sin, zlv::Cos, zlv::Atan};

// A case whose export takes the size and then these arguments. plain(width, height) is its twin.
template <class Plain, class... Parameters, class... Arguments>
WarpCase CaseOf(const char* name, Plain plain, std::uint32_t (*add)(std::uint32_t, std::uint32_t, Parameters...),
                Arguments... arguments)
{
    return {Join(name, arguments...),
            [=](std::uint32_t width, std::uint32_t height) { return add(width, height, arguments...); }, plain};
}

inline WarpCase Offset(double shiftX, double shiftY, std::uint32_t wrap)
{
    return CaseOf(
        "offset",
        [=](std::uint32_t width, std::uint32_t height) { return PlainOffset(shiftX, shiftY, wrap, width, height); },
        ZLV40_AddOffsetTransform, shiftX, shiftY, wrap);
}

// Around the picture's centre, moved by an offset.
inline PlainRadial RadialOf(std::uint32_t width, std::uint32_t height, double offsetX = 0, double offsetY = 0)
{
    return {kRadialMath, double(width), double(height), offsetX, offsetY};
}

inline WarpCase Spin(double radius, double degrees, std::int32_t offsetX = 0, std::int32_t offsetY = 0)
{
    return CaseOf(
        "spin",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainSpin(RadialOf(width, height, offsetX, offsetY), radius, degrees);
        },
        ZLV40_AddSpinTransform, radius, degrees, offsetX, offsetY);
}

inline WarpCase SpinWave(double radius, double degrees, double frequency, std::int32_t offsetX = 0,
                         std::int32_t offsetY = 0)
{
    return CaseOf(
        "spin wave",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainSpinWave(RadialOf(width, height, offsetX, offsetY), radius, degrees, frequency);
        },
        ZLV40_AddSpinWaveTransform, radius, degrees, frequency, offsetX, offsetY);
}

inline WarpCase Lens(double radius, std::int32_t offsetX = 0, std::int32_t offsetY = 0)
{
    return CaseOf(
        "lens",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainLens(RadialOf(width, height, offsetX, offsetY), radius);
        },
        ZLV40_AddLensTransform, radius, offsetX, offsetY);
}

inline WarpCase Pinch(double radius, double strength, std::int32_t offsetX = 0, std::int32_t offsetY = 0)
{
    return CaseOf(
        "pinch",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainPinch(RadialOf(width, height, offsetX, offsetY), radius, strength);
        },
        ZLV40_AddPinchTransform, radius, strength, offsetX, offsetY);
}

inline WarpCase Attractor(double strength, std::int32_t offsetX, std::int32_t offsetY, std::uint32_t mode,
                          double frequency)
{
    return CaseOf(
        "attractor",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainAttractor(RadialOf(width, height, offsetX, offsetY), strength, mode, frequency);
        },
        ZLV40_AddPointAttractorTransform, strength, offsetX, offsetY, mode, frequency);
}

inline WarpCase Wow(double radius, std::uint32_t mode)
{
    return CaseOf(
        "wow",
        [=](std::uint32_t width, std::uint32_t height) { return PlainWow(RadialOf(width, height), radius, mode); },
        ZLV40_AddWowTransform, radius, mode);
}

inline WarpCase Ripple(double radius, double amplitude, double frequency, double offsetX, double offsetY,
                       std::uint32_t falloff)
{
    return CaseOf(
        "ripple",
        [=](std::uint32_t width, std::uint32_t height) {
            const PlainRadial center = RadialOf(width, height);
            return PlainRipple{
                kRadialMath, offsetX + center.CenterX(), offsetY + center.CenterY(), radius, amplitude, frequency,
                falloff};
        },
        ZLV40_AddRippleTransform, radius, amplitude, frequency, offsetX, offsetY, falloff);
}

inline WarpCase Ellipse(double semiAxisX, double semiAxisY, std::int32_t offsetX, std::int32_t offsetY,
                        std::int32_t mode)
{
    return CaseOf(
        "ellipse",
        [=](std::uint32_t width, std::uint32_t height) {
            return PlainEllipse(width, height, semiAxisX, semiAxisY, offsetX, offsetY, mode);
        },
        ZLV40_AddEllipticalTransform, semiAxisX, semiAxisY, offsetX, offsetY, mode);
}

// The generator that stands for a thread's in plain lists.
inline PlainDraws& PlainThreadDraws()
{
    static PlainDraws draws;
    return draws;
}

// Seeded by the same second on both sides.
inline WarpCase Scatter(double amount)
{
    constexpr std::uint32_t kSecond = 1234567890;
    return {Join("random", amount),
            [=](std::uint32_t width, std::uint32_t height) {
                const FixedSeconds fixed(kSecond);
                return ZLV40_AddRandomTransform(width, height, amount);
            },
            [=](std::uint32_t, std::uint32_t) {
                PlainThreadDraws().state = kSecond;
                return PlainScatter(PlainThreadDraws(), amount);
            }};
}

inline WarpCase Polygon(const char* shows, const std::vector<PlainPoint>& polygon, std::uint32_t mode)
{
    return {Join("polygon", shows, mode),
            [=](std::uint32_t width, std::uint32_t height) {
                std::vector<point> points;
                for (const PlainPoint& p : polygon) points.push_back({p.x, p.y});
                return ZLV40_AddPolygonTransform(width, height, points.data(), std::uint32_t(points.size()), mode);
            },
            [=](std::uint32_t width, std::uint32_t height) {
                return PlainPolygonWarp(width, height, polygon, mode).value();
            }};
}

// A client's function that shears the picture and refuses a corner of it.
inline std::int32_t Shear(double x, double y, double* outX, double* outY, void*)
{
    *outX = x + y * 0.25;
    *outY = y - 0.5;
    return x + y > 3;
}

inline WarpCase User()
{
    return {"user", [](std::uint32_t, std::uint32_t) { return ZLV40_AddUserTransform(0, 0, Shear, nullptr); },
            [](std::uint32_t, std::uint32_t) {
                return [](double x, double y, double* outX, double* outY) {
                    return Shear(x, y, outX, outY, nullptr) != 0;
                };
            }};
}

inline std::vector<WarpCase> AllWarps()
{
    const std::vector<PlainPoint> quadrangle = {{1, -2}, {30, 1}, {25, 12}, {3, 6}};
    std::vector<WarpCase> warps = {
        Offset(2.5, -1, 0),
        Offset(-3, 0.5, 1),
        Spin(8, 75, 1, -1),
        Spin(100, -20),
        SpinWave(30, 15, 9, -2, 1),
        Lens(9, 2, 1),
        Lens(200),
        Pinch(12, 3.5),
        Pinch(50, -4, 3, -1),
        Wow(6, 0),
        Wow(90, 1),
        Ripple(20, 1.5, 6, 0.5, -0.25, 1),
        Ripple(7, -3, 2.5, 0, 0, 4),
        Ellipse(30, 20, 0, 0, 2),
        Ellipse(100, 9, 1, -1, 0),
        Scatter(2),
        Scatter(0.5),
        User(),
    };
    for (std::uint32_t mode = 0; mode < 7; ++mode) warps.push_back(Attractor(2.5, 1, 0, mode, 1.5));
    for (std::uint32_t mode = 0; mode < 4; ++mode) warps.push_back(Polygon("quadrangle", quadrangle, mode));
    return warps;
}

}  // namespace zlvtest
