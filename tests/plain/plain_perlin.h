// Perlin noise, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_noise.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

class PlainPerlin {
public:
    int p[514];
    double g3[514][3], g2[514][2], g1[514];

    explicit PlainPerlin(PlainGenerator& generator)
    {
        const auto component = [&] { return double((int(generator.Draw()) & 511) - 256) * 0.00390625; };
        for (int i = 0; i < 256; ++i) {
            p[i] = i;
            g1[i] = component();
            for (double& c : g2[i]) c = component();
            const double length2 = std::sqrt(g2[i][0] * g2[i][0] + g2[i][1] * g2[i][1]);
            for (double& c : g2[i]) c /= length2;
            for (double& c : g3[i]) c = component();
            const double length3 = std::sqrt(g3[i][0] * g3[i][0] + g3[i][1] * g3[i][1] + g3[i][2] * g3[i][2]);
            for (double& c : g3[i]) c /= length3;
        }
        for (int i = 255; i >= 1; --i) std::swap(p[i], p[int(generator.Draw()) & 255]);
        for (int i = 0; i <= 257; ++i) {
            p[256 + i] = p[i];
            g1[256 + i] = g1[i];
            for (int c = 0; c < 2; ++c) g2[256 + i][c] = g2[i][c];
            for (int c = 0; c < 3; ++c) g3[256 + i][c] = g3[i][c];
        }
    }

    double Noise1(double x) const
    {
        const Place v(x);
        return Lerp(Fade(v.r0), v.r0 * g1[p[v.b0]], v.r1 * g1[p[v.b1]]);
    }

    double Noise2(double x, double y) const
    {
        const Place vx(x), vy(y);
        const auto dot = [&](int b, double rx, double ry) { return g2[b][0] * rx + g2[b][1] * ry; };
        const int i = p[vx.b0], j = p[vx.b1];
        const int b00 = p[i + vy.b0], b10 = p[j + vy.b0], b01 = p[i + vy.b1], b11 = p[j + vy.b1];
        const double a = Lerp(Fade(vx.r0), dot(b00, vx.r0, vy.r0), dot(b10, vx.r1, vy.r0));
        const double b = Lerp(Fade(vx.r0), dot(b01, vx.r0, vy.r1), dot(b11, vx.r1, vy.r1));
        return Lerp(Fade(vy.r0), a, b);
    }

    double Noise3(double x, double y, double z) const
    {
        const Place vx(x), vy(y), vz(z);
        const int i = p[vx.b0], j = p[vx.b1];
        const int b00 = p[i + vy.b0], b10 = p[j + vy.b0], b01 = p[i + vy.b1], b11 = p[j + vy.b1];
        const auto face = [&](int bz, double rz) {
            const auto dot = [&](int b, double rx, double ry) {
                return g3[b + bz][0] * rx + g3[b + bz][1] * ry + g3[b + bz][2] * rz;
            };
            const double a = Lerp(Fade(vx.r0), dot(b00, vx.r0, vy.r0), dot(b10, vx.r1, vy.r0));
            const double b = Lerp(Fade(vx.r0), dot(b01, vx.r0, vy.r1), dot(b11, vx.r1, vy.r1));
            return Lerp(Fade(vy.r0), a, b);
        };
        return Lerp(Fade(vz.r0), face(vz.b0, vz.r0), face(vz.b1, vz.r1));
    }

    static std::uint8_t Byte(double noise)
    {
        const double v = std::trunc(noise * 128.0 + 127.0);
        return std::isnan(v) || v < 0 ? 0 : v > 255 ? 255 : std::uint8_t(v);
    }

private:
    struct Place {
        int b0, b1;
        double r0, r1;

        explicit Place(double v)
        {
            const double t = v + 4096.0, whole = std::trunc(t);
            b0 = std::isfinite(t) ? int(std::fmod(std::fmod(whole, 256) + 256, 256)) : 0;  // the low eight bits
            b1 = (b0 + 1) & 255;
            r0 = t - whole;
            r1 = r0 - 1.0;
        }
    };

    static double Fade(double t) { return t * t * (3.0 - 2.0 * t); }
    static double Lerp(double s, double a, double b) { return a + s * (b - a); }
};

struct PlainPerlinPlane {
    double scale = 0, z = 0, offsetX = 0, offsetY = 0, cosine = 1, sine = 0, pivotX = 0, pivotY = 0;
};

inline std::vector<double> PlainPerlinSlice(const PlainPerlin& noise, std::uint32_t width, std::uint32_t height,
                                            const PlainPerlinPlane& plane)
{
    std::vector<double> values;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const double a = x * plane.scale + plane.offsetX - plane.pivotX;
            const double b = y * plane.scale + plane.offsetY - plane.pivotY;
            values.push_back(noise.Noise3(a * plane.cosine + b * plane.sine + plane.pivotX,
                                          b * plane.cosine - a * plane.sine + plane.pivotY, plane.z));
        }
    }
    return values;
}

// A gray plane at height z: the points are (x * scale, y * scale, z).
inline std::vector<std::uint8_t> PlainPerlinBytes(const PlainPerlin& noise, std::uint32_t width, std::uint32_t height,
                                                  double scale, double z)
{
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x)
            bytes.push_back(PlainPerlin::Byte(noise.Noise3(x * scale, y * scale, z)));
    }
    return bytes;
}
