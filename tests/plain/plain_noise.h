// The noise adders, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainNoiseMath {
    double (*log)(double);
    double (*sin)(double);
    double (*cos)(double);
};

// The generator of the C run-time.
struct PlainGenerator {
    std::uint32_t state = 1;

    double Draw()
    {
        state = state * 214013 + 2531011;
        return double((state >> 16) & 32767);
    }
};

struct PlainNoise {
    enum class Kind { Gaussian, NegativeExponential, Rayleigh, Uniform } kind;
    double variance, mean;
    PlainNoiseMath math;

    double Value(PlainGenerator& generator) const
    {
        const double pi = std::acos(-1.0);
        switch (kind) {
        case Kind::Gaussian: {
            const double u1 = generator.Draw(), u2 = generator.Draw();
            const double r = std::sqrt(math.log(1 - u1 / 32767.1) * (variance * -2.0));
            const double t = u2 * 0.00019175345 - pi;
            return math.cos(t) * r + mean;
        }
        case Kind::NegativeExponential: {
            const double u1 = generator.Draw(), u2 = generator.Draw();
            const double s = std::sqrt(variance * 0.5);
            const double r = std::sqrt(math.log(1 - u1 / 32767.1) * (s * -2.0));
            const double t = u2 * 0.00019175345 - pi;
            const double x = r * math.cos(t), y = r * math.sin(t);
            return x * x + y * y;
        }
        case Kind::Rayleigh: {
            const double u = generator.Draw();
            return std::sqrt(math.log(1 - u / 32767.1) * (variance * 2.3299 * -2.0));
        }
        case Kind::Uniform: break;
        }
        const double u = generator.Draw();
        const double s = std::sqrt(variance);
        return u * (s * 0.0001057192) + mean - s * 1.7320508;
    }
};

struct PlainNoisyImage {
    std::uint8_t* samples;
    std::size_t width, height, channels, stride;
};

inline void PlainAddNoise(const PlainNoisyImage& image, const PlainNoise& noise, bool isMonochrome, std::uint32_t mask,
                          PlainGenerator& generator)
{
    for (std::size_t y = 0; y < image.height; ++y) {
        for (std::size_t x = 0; x < image.width; ++x) {
            const double common = isMonochrome ? noise.Value(generator) : 0;
            for (std::size_t c = 0; c < image.channels; ++c) {
                if (!(mask >> c & 1)) continue;
                std::uint8_t& sample = image.samples[y * image.stride + x * image.channels + c];
                const double sum = std::trunc(sample + (isMonochrome ? common : noise.Value(generator)));
                sample = std::uint8_t(sum < 0 ? 0 : sum > 255 ? 255 : sum);
            }
        }
    }
}
