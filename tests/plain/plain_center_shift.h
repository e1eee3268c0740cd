// Warps that bend the middle line of a picture, and the one by a relief, said plainly. Includes nothing of the library.
#pragma once

#include "plain/plain_warp.h"

inline const double kPlainPi = std::acos(-1.0);

struct PlainWaves {
    double (*sine)(double);
    double (*cosine)(double);
};

// A table with an entry for every column (or row).
struct PlainShift {
    bool isByColumn;
    std::vector<double> table;

    PlainStep Step(double width, double height) const
    {
        return [width, height, shift = *this](double x, double y, double* outX, double* outY) {
            const double n = double(shift.table.size());
            *outX = x;
            *outY = y;
            if (shift.isByColumn) {
                if (x >= n) *outX = width;
                else if (x < 0) *outX = 0;
                else if (!std::isnan(x)) *outY = Stretched(y, shift.table[std::size_t(x)], (height - 1) * 0.5, height);
            } else {
                if (y >= n) *outY = height;
                else if (y < 0) *outY = 0;
                else if (!std::isnan(y)) *outX = Stretched(x, shift.table[std::size_t(y)], (width - 1) * 0.5, width);
            }
            return true;
        };
    }

    static double Stretched(double v, double t, double centre, double size)
    {
        if (t > v) {
            if (t != 0) return v * centre / t;
            return v;
        }
        const double d = v - t, e = (size - 1) - t;
        if (d == 0 || e == 0) return v;
        return d / e * centre + centre;
    }
};

inline bool PlainStay(double x, double y, double* outX, double* outY)
{
    *outX = x;
    *outY = y;
    return true;
}

inline PlainStep PlainWave(double percent, double cycles, std::uint32_t mode, std::uint32_t width, std::uint32_t height,
                           const PlainWaves& waves)
{
    if (mode > 3) return PlainStay;
    PlainShift shift = {mode == 0 || mode == 2, {}};
    const std::uint32_t n = shift.isByColumn ? width : height;
    const double across = shift.isByColumn ? height : width, amplitude = percent / 100 * across;
    for (std::uint32_t i = 0; i < n; ++i) {
        const double g = double(i) / (double(n) - 1) * kPlainPi * cycles;
        shift.table.push_back((mode < 2 ? waves.sine(g) : waves.cosine(g)) * amplitude + (across - 1) * 0.5);
    }
    return shift.Step(width, height);
}

inline PlainStep PlainZigZag(double percent, int teeth, std::uint32_t mode, std::uint32_t width, std::uint32_t height)
{
    if (mode > 1) return PlainStay;
    PlainShift shift = {mode == 0, {}};
    const int n = int(shift.isByColumn ? width : height), period = n / teeth, half = period / 2;
    const double across = shift.isByColumn ? height : width, amplitude = percent / 100;
    for (int i = 0; i < n; ++i) {
        const int m = i % period, v = m < half ? m : period - m - 1;
        const double g = v / (half - 1.0);
        shift.table.push_back((g - 0.5) * amplitude * n + (across - 1) * 0.5);
    }
    return shift.Step(width, height);
}

inline PlainStep PlainLineSlice(double start, double end, std::uint32_t mode, std::uint32_t width, std::uint32_t height)
{
    if (mode > 1) return PlainStay;
    PlainShift shift = {mode == 0, {}};
    const std::uint32_t n = shift.isByColumn ? width : height;
    const double rise = end - start, run = double(n) - 1;
    for (std::uint32_t i = 0; i < n; ++i) {
        if (rise == 0 || run == 0) {
            shift.table.push_back(start);
        } else if (shift.isByColumn) {
            const double k = rise / run;
            shift.table.push_back(i * k + start);
        } else {
            const double k = run / rise;
            shift.table.push_back((i + start * k) / k);
        }
    }
    return shift.Step(width, height);
}

// The index after the additions and subtractions of the size that bring it inside. Coordinates beyond 64 bits are 0.
inline std::size_t PlainRepeated(double v, std::uint32_t size)
{
    if (!(std::fabs(v) < 0x1p63)) return 0;
    const double rest = std::fmod(std::trunc(v), size);
    return std::size_t(rest < 0 ? rest + size : rest);
}

inline PlainStep PlainBumpMap(double strength, const std::uint8_t* map, std::uint32_t mapWidth, std::uint32_t mapHeight)
{
    return [=](double x, double y, double* outX, double* outY) {
        const auto h = [&](double a, double b) {
            return map[PlainRepeated(b, mapHeight) * mapWidth + PlainRepeated(a, mapWidth)] / 255.0;
        };
        *outX = (h(x - 1, y) + h(x - 1, y - 1) + h(x - 1, y + 1) - (h(x + 1, y) + h(x + 1, y - 1) + h(x + 1, y + 1))) *
                    strength +
                x;
        *outY = (h(x, y + 1) + h(x - 1, y + 1) + h(x + 1, y + 1) - (h(x, y - 1) + h(x - 1, y - 1) + h(x + 1, y - 1))) *
                    strength +
                y;
        return true;
    };
}
