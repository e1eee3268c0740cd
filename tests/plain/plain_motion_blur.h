// The motion blur, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainMotionMath {
    double (*sin)(double);
    double (*cos)(double);
    double (*atan2)(double, double);
};

struct PlainMotion {
    double angle, amount;
    std::int32_t steps, mode;
    PlainMotionMath math;

    // Where step i of the walk of (x, y) is, before it is truncated.
    std::pair<double, double> Position(std::int32_t i, int x, int y, int width, int height) const
    {
        const double pi = std::acos(-1.0);
        const int halfWidth = width / 2, halfHeight = height / 2;
        const double dx = x - halfWidth, dy = y - halfHeight;
        if (i == 0) return {x, y};
        if (mode == 1) {
            const double r = std::sqrt(dy * dy + dx * dx);
            const double t = math.atan2(dy, dx) + (((i - steps / 2) * amount) / pi) / 10.0;
            return {math.cos(t) * r + halfWidth, math.sin(t) * r + halfHeight};
        }
        if (mode == 2) {
            const double f = 1.0 - (i * amount) / 100.0;
            return {dx * f + halfWidth, dy * f + halfHeight};
        }
        const double radians = angle / 180.0 * pi;
        return {i * amount * math.sin(radians) + x, i * amount * math.cos(radians) + y};
    }
};

struct PlainMotionSource {
    const std::uint8_t* samples;
    int width, height;
    std::size_t stride, channels;
};

inline std::uint8_t PlainMotionSample(const PlainMotionSource& image, int x, int y, std::size_t channel,
                                      const PlainMotion& motion)
{
    const auto at = [&](double px, double py) {
        return image.samples[std::size_t(py) * image.stride + std::size_t(px) * image.channels + channel];
    };
    if (motion.steps < 1) return at(x, y);
    long long sum = 0, count = 0;
    for (std::int32_t i = 0; i < motion.steps; ++i) {
        const auto [exactX, exactY] = motion.Position(i, x, y, image.width, image.height);
        const double px = std::trunc(exactX), py = std::trunc(exactY);
        if (!(px >= 0 && px < image.width && py >= 0 && py < image.height)) break;
        sum += at(px, py);
        ++count;
    }
    return std::uint8_t(std::clamp(sum / count, 0LL, 255LL));
}

inline void PlainMotionBlur(const PlainMotionSource& image, std::uint8_t* dst, std::size_t dstStride,
                            const PlainMotion& motion)
{
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            for (std::size_t c = 0; c < image.channels; ++c) {
                dst[std::size_t(y) * dstStride + std::size_t(x) * image.channels + c] =
                    PlainMotionSample(image, x, y, c, motion);
            }
        }
    }
}
