// Statistics of square windows, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

struct PlainWindowImage {
    const std::uint8_t* src;
    long long width, height;
    std::uint8_t* dst;
    long long channels, srcStride, dstStride;
    long long filterSize;
    std::uint32_t channelMask;

    long long Side() const
    {
        const long long atLeastOne = std::max(filterSize, 1LL);
        return atLeastOne % 2 == 0 ? atLeastOne + 1 : atLeastOne;
    }
    // Clamped coordinates.
    std::uint8_t At(long long x, long long y, long long channel) const
    {
        const long long row = std::clamp(y, 0LL, height - 1), column = std::clamp(x, 0LL, width - 1);
        return src[row * srcStride + column * channels + channel];
    }
};

using PlainWindow = std::vector<std::uint8_t>;             // row by row
using PlainPower = double (*)(double base, double power);  // whose last bits count

// Calls statistic(window, the pixel's own sample) for every selected sample.
template <class Statistic>
void PlainWindowFilter(const PlainWindowImage& image, Statistic statistic)
{
    const long long side = image.Side(), half = side / 2;
    PlainWindow window;
    for (long long c = 0; c < image.channels; ++c) {
        if (((image.channelMask >> c) & 1) == 0) continue;
        for (long long y = 0; y < image.height; ++y) {
            for (long long x = 0; x < image.width; ++x) {
                window.clear();
                for (long long j = -half; j <= half; ++j) {
                    for (long long i = -half; i <= half; ++i) window.push_back(image.At(x + i, y + j, c));
                }
                image.dst[y * image.dstStride + x * image.channels + c] = statistic(window, image.At(x, y, c));
            }
        }
    }
}

inline long long PlainSum(const PlainWindow& window)
{
    long long sum = 0;
    for (const int sample : window) sum += sample;
    return sum;
}

inline std::uint8_t PlainTruncated(double value) { return std::uint8_t(std::clamp(std::trunc(value), 0.0, 255.0)); }

inline void PlainMinimum(const PlainWindowImage& image)
{
    PlainWindowFilter(image, [](const PlainWindow& w, int) { return *std::min_element(w.begin(), w.end()); });
}

inline void PlainMaximum(const PlainWindowImage& image)
{
    PlainWindowFilter(image, [](const PlainWindow& w, int) { return *std::max_element(w.begin(), w.end()); });
}

inline void PlainMidpoint(const PlainWindowImage& image)
{
    PlainWindowFilter(image, [](const PlainWindow& w, int) {
        const int largest = *std::max_element(w.begin(), w.end()), smallest = *std::min_element(w.begin(), w.end());
        return std::uint8_t((largest + smallest) / 2);
    });
}

inline void PlainArithmeticMean(const PlainWindowImage& image)
{
    const long long side = image.Side();
    PlainWindowFilter(image, [=](const PlainWindow& w, int) { return std::uint8_t(PlainSum(w) / side / side); });
}

inline void PlainSharpen(const PlainWindowImage& image, double amount)
{
    PlainWindowFilter(image, [=](const PlainWindow& w, int own) {
        const long long total = PlainSum(w) - (long long)w.size() * own;
        const double product = amount * double(total);
        return PlainTruncated(own - product);
    });
}

inline void PlainBlur(const PlainWindowImage& image, double amount)
{
    const double limited = std::clamp(amount, 0.0, 1.0);
    std::uint8_t first[256], second[256];
    for (int i = 0; i < 256; ++i) {
        first[i] = std::uint8_t(i * limited);
        second[i] = std::uint8_t(i * (1.0 - limited));
    }
    PlainWindowFilter(image, [&](const PlainWindow& w, int own) {
        return std::uint8_t(first[(PlainSum(w) / (long long)w.size()) % 256] + second[own]);
    });
}

inline void PlainHarmonicMean(const PlainWindowImage& image)
{
    PlainWindowFilter(image, [](const PlainWindow& w, int) {
        double sum = 0;
        for (const int sample : w) {
            if (sample == 0) return std::uint8_t(0);
            sum += 1.0 / sample;
        }
        return PlainTruncated(double(w.size()) / sum + 0.5);
    });
}

inline void PlainYpMean(const PlainWindowImage& image, int order, PlainPower power = std::pow)
{
    PlainWindowFilter(image, [=](const PlainWindow& w, int) {
        double sum = 0;
        for (const int sample : w) {
            if (sample == 0 && order < 0) return std::uint8_t(0);
            sum += power(sample, order);
        }
        if (sum == 0.0) return std::uint8_t(0);
        const double exponent = order == 0 ? HUGE_VAL : 1.0 / order;
        return PlainTruncated(power(sum / double(w.size()), exponent));
    });
}

// The ring of columns as it turns: rebuilt at the start of a row, then one column replaced at each step.
inline void PlainGeometricMean(const PlainWindowImage& image, PlainPower power = std::pow)
{
    const long long side = image.Side(), half = side / 2;
    std::vector<double> table(256), ring(std::size_t(side), 0.0);
    for (int i = 0; i < 256; ++i) table[std::size_t(i)] = power(i, 1.0 / double(side * side));
    for (long long c = 0; c < image.channels; ++c) {
        if (((image.channelMask >> c) & 1) == 0) continue;
        for (long long y = 0; y < image.height; ++y) {
            const auto column = [&](long long x) {
                double product = 1;
                for (long long j = -half; j <= half; ++j) product *= table[image.At(x, y + j, c)];
                return product;
            };
            for (long long x = 0; x < image.width; ++x) {
                if (x == 0) {
                    for (long long s = 0; s < side; ++s) ring[std::size_t(s)] = column(s - half);
                } else {
                    ring[std::size_t((x - 1) % side)] = column(x + half);
                }
                double product = 1;
                for (const double entry : ring) product *= entry;
                image.dst[y * image.dstStride + x * image.channels + c] = PlainTruncated(product);
            }
        }
    }
}
