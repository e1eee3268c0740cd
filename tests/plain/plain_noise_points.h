// Warps by fields of noise, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_perlin.h"
#include "plain/plain_warp.h"

#include <memory>

struct PlainTurns {
    double (*sine)(double);
    double (*cosine)(double);
};

inline PlainStep PlainPerlinDisplacement(double strength, double scaleX, double scaleY, PlainGenerator& generator)
{
    const auto noise = std::make_shared<const PlainPerlin>(generator);
    return [=](double x, double y, double* outX, double* outY) {
        const auto n = [&](int a, int b) { return noise->Noise2((x + a) / scaleX, (y + b) / scaleY); };
        *outX = (n(0, -1) + n(-1, -1) + n(1, -1) - n(-1, 1) - n(0, 1) - n(1, 1)) * strength + x;
        *outY = (n(1, 0) + n(1, -1) + n(1, 1) - n(-1, -1) - n(-1, 0) - n(-1, 1)) * strength + y;
        return true;
    };
}

// Noise beyond -1 to 1 is limited; without a number a point stays.
inline PlainStep PlainMarble(double cycles, double scaleX, double scaleY, const PlainTurns& turns,
                             PlainGenerator& generator)
{
    const auto noise = std::make_shared<const PlainPerlin>(generator);
    std::vector<double> sines, cosines;
    for (int i = 0; i < 256; ++i) {
        const double a = std::acos(-1.0) * 2.0 * i * 0.00390625 * cycles;
        sines.push_back(-turns.sine(a) * scaleY);
        cosines.push_back(turns.cosine(a) * scaleY);
    }
    return [=](double x, double y, double* outX, double* outY) {
        *outX = x;
        *outY = y;
        const double n = noise->Noise2(x / scaleX, y / scaleY);
        if (std::isnan(n)) return true;
        const double i = std::clamp(std::trunc((n + 1.0) * 127.0), 0.0, 254.0);
        *outX = x + sines[std::size_t(i)];
        *outY = y + cosines[std::size_t(i)];
        return true;
    };
}

struct PlainGlass {
    std::uint32_t tileWidth, tileHeight, bevelWidth, bevelStrength;
    bool flatBevel;
    double zoom, noiseScale, bumpStrength;
};

inline PlainStep PlainGlassBlocks(const PlainGlass& glass, std::uint32_t width, std::uint32_t height,
                                  PlainGenerator& generator)
{
    const std::uint32_t tilesAcross = width / glass.tileWidth + 1, tilesDown = height / glass.tileHeight + 1;
    std::vector<std::vector<std::uint8_t>> tiles;
    for (std::uint32_t i = 0; i < tilesAcross * tilesDown; ++i) {
        tiles.push_back(
            PlainPerlinBytes(PlainPerlin(generator), glass.tileWidth, glass.tileHeight, glass.noiseScale, 0));
    }
    return [=](double x, double y, double* outX, double* outY) {
        const double w = glass.tileWidth, h = glass.tileHeight, b = glass.bevelWidth, s = glass.bevelStrength;
        const double ti = std::trunc(x / w), tj = std::trunc(y / h);
        const double rx = x - w * ti, ry = y - h * tj;
        *outX = (rx / w) * (width * (1 - glass.zoom)) + glass.zoom * x;
        *outY = (ry / h) * (height * (1 - glass.zoom)) + glass.zoom * y;
        bool nearEdge = false;
        const auto bevel = [&](double distance, double* out, double sign) {
            if (!(distance < b)) return;
            *out += sign * ((b - distance) / b * s);
            nearEdge = true;
        };
        bevel(rx, outX, 1);
        bevel((ti + 1) * w - x, outX, -1);
        bevel(ry, outY, 1);
        bevel((tj + 1) * h - y, outY, -1);
        const double index = tilesAcross * tj + ti;
        // Where there is no such tile there is no ripple.
        const bool hasTile = index >= 0 && index < double(tiles.size());
        if (!(glass.flatBevel && nearEdge) && hasTile) {
            const std::vector<std::uint8_t>& p = tiles[std::size_t(index)];
            const auto place = [](double v, double n) { return std::clamp(std::fmod(std::trunc(v), n), 0.0, n - 1); };
            const double c = place(x, w), l = std::max(c - 1, 0.0), r = std::min(c + 1, w - 1);
            const double q = place(y, h), u = std::max(q - 1, 0.0), d = std::min(q + 1, h - 1);
            const auto at = [&](double column, double row) { return double(p[std::size_t(row * w + column)]); };
            *outX += (at(c, u) + at(l, u) + at(r, u) - at(l, d) - at(c, d) - at(r, d)) * glass.bumpStrength;
            *outY += (at(r, q) + at(r, u) + at(r, d) - at(l, u) - at(l, q) - at(l, d)) * glass.bumpStrength;
        }
        if (*outX < 0) *outX = 0;
        else if (*outX > width - 1.0) *outX = width - 1.0;
        if (*outY < 0) *outY = 0;
        else if (*outY > height - 1.0) *outY = height - 1.0;
        return true;
    };
}
