// The adaptive filters and the statistics of an image, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// Called with (current, total); false cancels.
using PlainAdaptiveReport = std::function<bool(std::uint32_t, std::uint32_t)>;

struct PlainAdaptiveImages {
    const std::uint8_t* src;
    int width, height, channels;
    std::size_t srcStride;
    std::uint8_t* dst;
    std::size_t dstStride;

    // With the border pixels repeated.
    int At(int x, int y, int c) const
    {
        const int column = std::clamp(x, 0, width - 1), row = std::clamp(y, 0, height - 1);
        return src[std::size_t(row) * srcStride + std::size_t(column) * std::size_t(channels) + std::size_t(c)];
    }
    std::uint8_t& To(int x, int y, int c) const
    {
        return dst[std::size_t(y) * dstStride + std::size_t(x) * std::size_t(channels) + std::size_t(c)];
    }
};

// ---- Unsharp mask -------------------------------------------------------------------------------------------------

using PlainKernel = double[3][3];

inline constexpr PlainKernel kPlainKernels[8] = {
    {{0, 0, 0}, {-2, 2, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 2, -2}, {0, 0, 0}}, {{0, -2, 0}, {0, 2, 0}, {0, 0, 0}},
    {{0, 0, 0}, {0, 2, 0}, {0, -2, 0}}, {{0, 0, -1}, {0, 1, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 1, 0}, {0, 0, -1}},
    {{-1, 0, 0}, {0, 1, 0}, {0, 0, 0}}, {{0, 0, 0}, {0, 1, 0}, {-1, 0, 0}},
};

inline std::uint8_t PlainResponse(const PlainAdaptiveImages& images, int kernel, int x, int y, int c)
{
    double sum = 0;
    for (int j = -1; j <= 1; ++j) {
        for (int i = -1; i <= 1; ++i) sum += images.At(x + i, y + j, c) * kPlainKernels[kernel][j + 1][i + 1];
    }
    sum = std::clamp(sum, -255.0, 255.0);
    return std::uint8_t(std::clamp(sum * 0.5 + 127.0, 0.0, 255.0));
}

// Runs visit(x, y, channel) row by row.
template <class Visit>
void PlainForEachSample(const PlainAdaptiveImages& images, Visit visit)
{
    for (int y = 0; y < images.height; ++y) {
        for (int x = 0; x < images.width; ++x) {
            for (int c = 0; c < images.channels; ++c) visit(x, y, c);
        }
    }
}

// The images may be the same. False when a report was answered so.
inline bool PlainUnsharpMask(const PlainAdaptiveImages& images, std::uint32_t threshold, double amount, int flags,
                             const PlainAdaptiveReport& report)
{
    const std::vector<int> sets[] = {{0, 1}, {0, 2, 1, 3}, {0, 6, 2, 4, 1, 5, 3, 7}};
    const std::vector<int>& kernels = sets[flags & 3];
    const std::uint32_t total = std::uint32_t(kernels.size());
    const int limit = int(std::min(threshold, 255u));
    std::vector<std::uint8_t> edges, second;
    if (!report(0, total)) return false;
    PlainForEachSample(images,
                       [&](int x, int y, int c) { edges.push_back(PlainResponse(images, kernels[0], x, y, c)); });
    for (std::uint32_t step = 1; step < total; ++step) {
        second.clear();
        PlainForEachSample(
            images, [&](int x, int y, int c) { second.push_back(PlainResponse(images, kernels[step], x, y, c)); });
        std::size_t at = 0;
        if (total == 2) PlainForEachSample(images, [&](int x, int y, int c) { images.To(x, y, c) = second[at++]; });
        // Bytes of table entries: i * (1 - opacity) for the base and i * opacity for what is merged into it.
        const double opacity = 0.0;
        for (std::size_t i = 0; i < edges.size(); ++i) {
            const int merged = std::max(std::min(edges[i] - 127 + second[i], 255), 0);
            edges[i] = std::uint8_t(std::uint8_t(edges[i] * (1 - opacity)) + std::uint8_t(merged * opacity));
        }
        if (!report(step, total)) return false;
    }
    std::size_t at = 0;
    PlainForEachSample(images, [&](int x, int y, int c) {
        const int d = edges[at++] - 127;
        if ((flags & 4) != 0 && c == 3) return;
        const int sample = images.At(x, y, c);
        const double moved = std::trunc(d * amount) + sample;
        images.To(x, y, c) = std::uint8_t(std::abs(d) > limit ? std::clamp(moved, 0.0, 255.0) : sample);
    });
    return report(total, total);
}

// ---- Trimmed mean -------------------------------------------------------------------------------------------------

inline bool PlainTrimmedMean(const PlainAdaptiveImages& images, double noiseLevel, double bandFactor,
                             std::uint32_t mask, const PlainAdaptiveReport& report)
{
    const double q = noiseLevel * bandFactor;
    for (int y = 2; y <= images.height - 3; ++y) {
        for (int x = 2; x <= images.width - 3; ++x) {
            for (int c = 0; c < images.channels; ++c) {
                if (!(mask >> c & 1)) continue;
                std::vector<int> nine;
                for (int j = -1; j <= 1; ++j) {
                    for (int i = -1; i <= 1; ++i) nine.push_back(images.At(x + i, y + j, c));
                }
                std::sort(nine.begin(), nine.end());
                const int m = nine[4];
                int sum = 0, count = 0;
                for (int j = -2; j <= 2; ++j) {
                    for (int i = -2; i <= 1; ++i) {
                        const int sample = images.At(x + i, y + j, c);
                        if (sample < m - q || sample > m + q) continue;
                        sum += sample;
                        ++count;
                    }
                }
                images.To(x, y, c) = std::uint8_t(double(sum) / count);
            }
        }
        if (!report(std::uint32_t(y), std::uint32_t(images.height))) return false;
    }
    return true;
}

// ---- Statistics ---------------------------------------------------------------------------------------------------

inline double PlainMean(const PlainAdaptiveImages& images, int c)
{
    std::uint32_t sum = 0;
    for (int y = 0; y < images.height; ++y) {
        for (int x = 0; x < images.width; ++x) sum += std::uint32_t(images.At(x, y, c));
    }
    return sum / (std::uint32_t(images.width) * std::uint32_t(images.height));
}

inline double PlainDeviation(const PlainAdaptiveImages& images, int c)
{
    const double mean = PlainMean(images, c);
    double sum = 0;
    for (int y = 0; y < images.height; ++y) {
        for (int x = 0; x < images.width; ++x) sum += (images.At(x, y, c) - mean) * (images.At(x, y, c) - mean);
    }
    return std::sqrt(sum / (double(images.width) * images.height));
}

// ---- Local enhancement --------------------------------------------------------------------------------------------

struct PlainEnhancement {
    int windowSize;
    const double *means, *deviations;
    double meanFactor, lowDeviationFactor, highDeviationFactor, gain;
    std::uint32_t flags;
};

inline bool PlainIsEnhanced(const PlainAdaptiveImages& images, const PlainEnhancement& e, int x, int y, int c)
{
    const int half = e.windowSize / 2;
    const double area = double(e.windowSize) * e.windowSize;
    double m = 0, s = 0;
    for (int j = -half; j <= half; ++j) {
        for (int i = -half; i <= half; ++i) m += images.At(x + i, y + j, c);
    }
    m /= area;
    for (int j = -half; j <= half; ++j) {
        for (int i = -half; i <= half; ++i) {
            const double difference = images.At(x + i, y + j, c) - m;
            s += difference * difference;
        }
    }
    s = std::sqrt(s / area);
    if (s < e.deviations[c] * e.lowDeviationFactor || s > e.deviations[c] * e.highDeviationFactor) return false;
    const double limit = e.means[c] * e.meanFactor;
    return e.flags & 256 ? !(m > limit) : !(m < limit);
}

inline bool PlainLocalEnhancement(const PlainAdaptiveImages& images, const PlainEnhancement& e,
                                  const PlainAdaptiveReport& report)
{
    for (int y = 0; y < images.height; ++y) {
        for (int x = 0; x < images.width; ++x) {
            for (int c = 0; c < images.channels; ++c) {
                if (!(e.flags >> c & 1)) continue;
                const int v = images.At(x, y, c);
                const bool isEnhanced = PlainIsEnhanced(images, e, x, y, c);
                images.To(x, y, c) = std::uint8_t(isEnhanced ? std::int64_t(v * e.gain) : v);
            }
        }
        if (!report(std::uint32_t(y), std::uint32_t(images.height))) return false;
    }
    return true;
}
