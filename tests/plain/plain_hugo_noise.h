// Hugo noise, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_noise.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainHugoMath {
    double (*cos)(double);
    double (*pow)(double, double);
};

class PlainHugoNoise {
public:
    PlainHugoNoise(std::uint32_t seed, std::int32_t octaves, double persistence, PlainHugoMath math)
        : octaves_(octaves < 8 ? octaves : 8), persistence_(persistence), math_(math)
    {
        PlainGenerator generator = {seed};
        for (std::uint32_t i = 1; i <= 7; ++i) std::swap(order_[i], order_[std::uint32_t(generator.Draw()) % (i + 1)]);
        stateAfter = generator.state;
    }

    std::uint8_t Pixel(std::uint32_t x, std::uint32_t y, double scale) const
    {
        const double v = std::trunc(Value(x * scale, y * scale) * -128.0);
        if (std::isnan(v)) return 0;
        return 127 - v < 0 ? 0 : 127 - v > 255 ? 255 : std::uint8_t(127 - v);
    }

    std::uint32_t stateAfter;

private:
    double Value(double x, double y) const
    {
        double total = 0.0;
        for (int i = 0; i <= octaves_ - 2; ++i) {
            const double frequency = math_.pow(2.0, i), amplitude = math_.pow(persistence_, i);
            total += amplitude * Interpolated(order_[i], x * frequency, y * frequency);
        }
        return total < -1.0 ? -1.0 : total > 1.0 ? 1.0 : total;
    }

    double Interpolated(int f, double x, double y) const
    {
        const double ix = std::trunc(x), iy = std::trunc(y), fx = x - ix, fy = y - iy;
        const double top = Blend(Smoothed(f, ix, iy), Smoothed(f, ix + 1, iy), fx);
        const double bottom = Blend(Smoothed(f, ix, iy + 1), Smoothed(f, ix + 1, iy + 1), fx);
        return Blend(top, bottom, fy);
    }

    double Blend(double a, double b, double t) const
    {
        const double u = (1 - math_.cos(t * 3.141596)) * 0.5;
        return (1 - u) * a + u * b;
    }

    static double Smoothed(int f, double i, double j)
    {
        const double corners =
            Hash(f, i - 1, j - 1) + Hash(f, i + 1, j - 1) + Hash(f, i - 1, j + 1) + Hash(f, i + 1, j + 1);
        const double sides = Hash(f, i - 1, j) + Hash(f, i + 1, j) + Hash(f, i, j - 1) + Hash(f, i, j + 1);
        return corners * 0.0625 + sides * 0.125 + Hash(f, i, j) * 0.25;
    }

    static double Hash(int f, double x, double y)
    {
        static const std::int64_t a[] = {15731, 19979, 18133, 10627, 18757, 18133, 15731, 19979};
        static const std::int64_t b[] = {789221, 685511, 741467, 784789, 685511, 784789, 685511, 784789};
        static const std::int64_t c[] = {-771171059, 901034347, 992952869, 901027397,
                                         -771171059, 87623533,  992952869, -771171059};
        const double whole = std::trunc(y * 57.0 + x);
        const std::uint32_t n = std::abs(whole) < 0x1p62 ? std::uint32_t(std::int64_t(whole)) : 0;
        const std::uint32_t m = n ^ (n << 13);
        const std::uint32_t k = (m * m * std::uint32_t(a[f]) + std::uint32_t(b[f])) * m + std::uint32_t(c[f]);
        return 1.0 - (k & 0x7FFFFFFF) * 9.313225746154785e-10;
    }

    int order_[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    int octaves_;
    double persistence_;
    PlainHugoMath math_;
};
