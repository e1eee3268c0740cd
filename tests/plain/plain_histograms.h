// Histograms, equalising and stretching, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct PlainImageShape {
    std::size_t width, height, channels, stride;
};

template <class T>
std::vector<std::uint32_t> PlainHistogram(const T* image, const PlainImageShape& shape, std::size_t channel)
{
    std::vector<std::uint32_t> counts(sizeof(T) == 1 ? 256 : 65536);
    for (std::size_t y = 0; y < shape.height; ++y) {
        for (std::size_t x = 0; x < shape.width; ++x) ++counts[image[y * shape.stride + x * shape.channels + channel]];
    }
    return counts;
}

// One channel; low <= high.
template <class T>
void PlainEqualize(T* image, const PlainImageShape& shape, std::size_t channel, std::uint32_t low, std::uint32_t high)
{
    const std::uint32_t top = sizeof(T) == 1 ? 255 : 65535;
    std::vector<std::uint32_t> counts = PlainHistogram(image, shape, channel);
    std::uint32_t n = 0;
    for (std::uint32_t i = 0; i <= top; ++i) {
        if (i < low || i > high) counts[i] = 0;
        n += counts[i];
    }
    std::vector<T> map(top + 1);
    std::uint32_t sum = 0;
    for (std::uint32_t i = 0; i <= top; ++i) {
        sum += counts[i];
        map[i] = n == 0 ? T(0) : T(int(double(sum) * (double(top) / double(n))));
    }
    for (std::size_t y = 0; y < shape.height; ++y) {
        for (std::size_t x = 0; x < shape.width; ++x) {
            T& sample = image[y * shape.stride + x * shape.channels + channel];
            if (sample >= low && sample <= high) sample = map[sample];
        }
    }
}

// low <= high; pictures of fewer than 8 million pixels.
inline void PlainEqualizeBrightness(std::uint8_t* image, const PlainImageShape& shape, std::uint32_t low,
                                    std::uint32_t high)
{
    const auto pixelAt = [&](std::size_t x, std::size_t y) { return image + y * shape.stride + x * shape.channels; };
    int counts[256] = {}, map[256], n = 0, sum = 0;
    for (std::size_t y = 0; y < shape.height; ++y) {
        for (std::size_t x = 0; x < shape.width; ++x) {
            const std::uint8_t* p = pixelAt(x, y);
            const unsigned b = unsigned(p[0] + p[1] + p[2]) / 3;
            if (low <= b && b <= high) {
                ++counts[b];
                ++n;
            }
        }
    }
    for (int i = 0; i < 256; ++i) {
        sum += counts[i];
        map[i] = n == 0 ? 0 : sum * 255 / n;
    }
    for (std::size_t y = 0; y < shape.height; ++y) {
        for (std::size_t x = 0; x < shape.width; ++x) {
            std::uint8_t* p = pixelAt(x, y);
            const int b = (p[0] + p[1] + p[2]) / 3;
            const int d = b - map[b];
            for (int c = 0; c < 3; ++c) {
                const int moved = p[c] - d;
                p[c] = std::uint8_t(moved < 0 ? 0 : moved > 255 ? 255 : moved);
            }
        }
    }
}

// One channel; percentages from 0 to 100 that add up to at most 100; midpoint below 0 for none.
template <class T>
void PlainStretch(T* image, const PlainImageShape& shape, std::size_t channel, double lowPercent, double highPercent,
                  int midpoint)
{
    const int top = sizeof(T) == 1 ? 255 : 65535;
    const std::vector<std::uint32_t> counts = PlainHistogram(image, shape, channel);
    const double pL = lowPercent / 100, pH = highPercent / 100;
    const double n = double(shape.width * shape.height);
    const long long lowCount = (long long)(n * pL), highCount = (long long)((1 - pH) * n);
    int lowIndex = -1, highIndex = -1;
    long long sum = 0;
    for (int i = 0; i <= top; ++i) {
        sum += counts[std::size_t(i)];
        if (sum >= lowCount && lowIndex == -1) {
            lowIndex = i;
        } else if (sum >= highCount) {
            highIndex = i;
            break;
        }
    }
    if (lowIndex < 1) lowIndex = 0;
    if (highIndex == -1) highIndex = 0;
    const int low = lowIndex < highIndex ? lowIndex : highIndex;
    const int high = lowIndex < highIndex ? highIndex : lowIndex;
    const double scale = high != low ? double(top) / (high - low) : 0;
    std::vector<int> table(std::size_t(top) + 1);
    for (int i = 0; i <= top; ++i) {
        long long entry = (long long)((i - low) * scale);
        if (entry < 0) entry = 0;
        if (entry > top) entry = top;
        if (pL == 1.0) entry = 0;
        if (pH == 1.0) entry = top;
        table[std::size_t(i)] = int(entry);
    }
    if (midpoint >= 0) {
        const double half = top * 0.5;
        for (int& entry : table) {
            const double mapped = midpoint != 0 && entry <= midpoint
                                      ? entry * half / midpoint
                                      : (entry - midpoint) * half / (top + 1 - midpoint - 1) + half;
            entry = T(int(mapped));
        }
    }
    for (std::size_t y = 0; y < shape.height; ++y) {
        for (std::size_t x = 0; x < shape.width; ++x) {
            T& sample = image[y * shape.stride + x * shape.channels + channel];
            sample = T(table[sample]);
        }
    }
}
