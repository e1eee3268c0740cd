// Oil paint and watercolour, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_channels.h"
#include "plain/plain_gaussian_blur.h"
#include "plain/plain_histograms.h"
#include "plain/plain_outcome.h"
#include "plain/plain_overlay.h"
#include "plain/plain_palette.h"

#include <algorithm>
#include <cmath>
#include <vector>

// A source and a destination of three channels.
struct PlainRgbCall {
    const std::uint8_t* source;
    std::uint32_t width, height;
    std::size_t sourceStride;
    std::uint8_t* destination;
    std::size_t destinationStride;

    std::vector<std::uint8_t> Gray() const { return GrayOf(source, sourceStride); }
    std::vector<std::uint8_t> GrayOf(const std::uint8_t* image, std::size_t stride) const
    {
        std::vector<std::uint8_t> gray(std::size_t(width) * height);
        PlainGray(image, width, height, 3, stride, gray.data(), width, false);
        return gray;
    }

    void Overlay(const std::uint8_t* image, std::size_t stride, const PlainBlend& blend) const
    {
        const PlainLayer<std::uint8_t> base = {destination, width, height, 3, std::int64_t(destinationStride)};
        const PlainLayer<const std::uint8_t> over = {image, width, height, 3, std::int64_t(stride)};
        PlainOverlay<std::uint8_t>(base, over, 0, 0, blend, height);
    }
};

inline std::vector<std::uint8_t> PlainGrayRamp()
{
    std::vector<std::uint8_t> palette;
    for (int i = 0; i < 256; ++i) palette.insert(palette.end(), {std::uint8_t(i), std::uint8_t(i), std::uint8_t(i), 0});
    return palette;
}

inline PlainOutcome PlainOilPaint(const PlainRgbCall& call, std::uint32_t radius, std::uint32_t levels,
                                  std::uint32_t flags, const PlainReport& report)
{
    const long long width = call.width, height = call.height, r = std::min(radius, 10u);
    levels = std::min(levels, 255u);
    std::vector<std::uint8_t> plane = call.Gray();
    if (flags & 2) PlainEqualize(plane.data(), {call.width, call.height, 1, call.width}, 0, 10, 245);
    for (std::uint8_t& sample : plane) sample = std::uint8_t(sample * (levels / 255.0));

    for (long long y = 0; y < height; ++y) {
        for (long long x = 0; x < width; ++x) {
            unsigned counts[256] = {}, sums[256][3] = {};
            for (long long v = std::max(y - r, 0LL); v <= std::min(y + r, height - 1); ++v) {
                for (long long u = std::max(x - r, 0LL); u <= std::min(x + r, width - 1); ++u) {
                    const unsigned level = plane[std::size_t(v * width + u)];
                    ++counts[level];
                    for (int c = 0; c < 3; ++c) {
                        sums[level][c] += call.source[std::size_t(v) * call.sourceStride + std::size_t(u * 3 + c)];
                    }
                }
            }
            int best = -1, second = -1;
            for (unsigned level = 0; level <= levels; ++level) {
                if (counts[level] <= (best < 0 ? 0 : counts[best])) continue;
                second = best;
                best = int(level);
            }
            for (int c = 0; c < 3; ++c) {
                const unsigned avg1 = sums[best][c] / counts[best];
                std::uint8_t& out = call.destination[std::size_t(y) * call.destinationStride + std::size_t(x * 3 + c)];
                out = std::uint8_t(avg1);
                if (!(flags & 1) || second < 0) continue;
                const unsigned avg2 = sums[second][c] / counts[second];
                const double ratio = double(counts[second]) / double(counts[best]);
                out = std::uint8_t(avg2 * ratio + avg1 * (1 - ratio));
            }
        }
        if (!report(std::uint32_t(y), call.height)) return {0, kPlainCancelled};
    }
    return kPlainDone;
}

inline PlainOutcome PlainWatercolor(const PlainRgbCall& call, double amount, std::uint32_t flags,
                                    const PlainReport& report)
{
    const std::size_t width = call.width, height = call.height;
    const PlainOutcome cancelled = {0, kPlainCancelled};
    const double sigma = std::clamp(amount, 0.0, 1.0) * 30.0;
    std::vector<std::uint8_t> first(width * height), third(width * height * 3);
    const std::vector<std::uint8_t> second = call.Gray();
    if (!report(0, 6)) return cancelled;
    PlainBlur<std::uint8_t>({second.data(), width}, {width, height, 1}, {first.data(), width}, sigma, 1,
                            {std::exp, std::sin, std::cos, std::pow}, PlainSilence);
    if (!report(1, 6)) return cancelled;
    if (flags & 1) PlainStretch(first.data(), {width, height, 1, width}, 0, 5.0, 5.0, -1);
    if (!report(2, 6)) return cancelled;
    PlainExpand(first.data(), width, height, width, third.data(), 3 * width, PlainGrayRamp().data(), false);
    if (!report(3, 6)) return cancelled;
    call.Overlay(call.source, call.sourceStride, {1.0, 0, 0});
    if (!report(4, 6)) return cancelled;
    call.Overlay(third.data(), 3 * width, {1.0, 0, flags & 2 ? 5u : 6u});
    if (!report(5, 6)) return cancelled;
    return kPlainDone;
}
