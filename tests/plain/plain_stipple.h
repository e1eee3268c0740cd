// Stipple, said plainly: a chain of the plain twins of its steps. Includes nothing of the library.
#pragma once

#include "plain/plain_outcome.h"
#include "plain/plain_paint.h"
#include "plain/plain_perlin.h"
#include "plain/plain_window_filters.h"

#include <algorithm>
#include <vector>

// False for a kind that is none.
inline bool PlainStippleFilter(const PlainWindowImage& image, std::uint32_t kind, PlainPower power)
{
    switch (kind) {
    case 0: PlainArithmeticMean(image); return true;
    case 1: PlainMinimum(image); return true;
    case 2: PlainMaximum(image); return true;
    case 3: PlainGeometricMean(image, power); return true;
    case 4: PlainYpMean(image, 1, power); return true;
    default: return false;
    }
}

inline PlainOutcome PlainStipple(const PlainRgbCall& call, std::uint32_t density, std::uint32_t filterKind,
                                 std::uint32_t flags, PlainPower power, PlainGenerator& generator,
                                 const PlainReport& report)
{
    const std::uint32_t d = std::min(density, 100u), width = call.width, height = call.height;
    const int side = d < 51 ? 3 : d < 81 ? 5 : 7;
    const std::size_t packed = 3 * std::size_t(width);
    const std::vector<std::uint8_t> noise =
        PlainPerlinBytes(PlainPerlin(generator), width, height, 1.0 - d / 100.0 * 0.9, 0);
    const auto filter = [&](const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to, std::size_t toStride) {
        return PlainStippleFilter({from, width, height, to, 3, (long long)fromStride, (long long)toStride, side, 7},
                                  filterKind, power);
    };
    const auto noisy = [&](int sample, std::size_t x, std::size_t y) {
        return std::uint8_t(std::clamp(sample + noise[y * width + x] - 128, 0, 255));
    };

    std::vector<std::uint8_t> work(packed * height);
    if (flags & 1) {
        for (std::uint32_t y = 0; y < height; ++y) {
            for (std::size_t i = 0; i < packed; ++i) {
                work[y * packed + i] = noisy(call.source[y * call.sourceStride + i], i / 3, y);
            }
            if (!report(y, height)) return {0, kPlainCancelled};
        }
        filter(work.data(), packed, call.destination, call.destinationStride);
        return kPlainDone;
    }

    std::vector<std::uint8_t> second(packed * height), led(packed * height);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < packed; ++i) {
            second[y * packed + i] = std::max(call.source[y * call.sourceStride + i], std::uint8_t(1));
        }
    }
    // The rows as the source's stride leads to them, none of them outside.
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t start = std::min(y * call.sourceStride, second.size() - packed);
        std::copy_n(second.begin() + std::ptrdiff_t(start), packed, led.begin() + std::ptrdiff_t(y * packed));
    }
    const bool isFiltered = filter(led.data(), packed, work.data(), packed);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; isFiltered && i < packed; ++i) {
            call.destination[y * call.destinationStride + i] = noisy(work[y * packed + i], i / 3, y);
        }
        if (!report(y, height)) return {0, kPlainCancelled};
    }
    return kPlainDone;
}
