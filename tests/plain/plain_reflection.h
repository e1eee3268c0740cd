// Reflections, said plainly: a chain of the plain twins of its steps. Includes nothing of the library.
#pragma once

#include "plain/plain_buffer_rows.h"
#include "plain/plain_cells.h"
#include "plain/plain_noise_points.h"
#include "plain/plain_outcome.h"
#include "plain/plain_overlay.h"

#include <algorithm>
#include <cmath>
#include <vector>

struct PlainReflection {
    const std::uint8_t* source = nullptr;
    std::uint32_t width = 0, height = 0;
    std::size_t sourceStride = 0;
    std::uint8_t* destination = nullptr;
    std::size_t destinationStride = 0;
    std::uint32_t splitRow = 0, reflectionHeight = 0;
    double fadeStart = 0, fadeEnd = 1;
    std::uint32_t color = 0, fadeShape = 0;
    double ripple = 0;
    std::uint32_t rippleScale = 0, flags = 0;

    // How much of the colour covers a row, 0 to 1.
    double FadeAt(double y) const
    {
        const double pi = std::acos(-1.0);
        const double start = -double(reflectionHeight) * fadeStart, end = reflectionHeight * fadeEnd;
        if (y < start) return 0;
        if (y >= end) return 1;
        const double t = (y - start) / (end - start);
        if (fadeShape == 1) return std::sin((t - 0.5) * pi) * 0.5 + 0.5;
        if (fadeShape == 2) return std::sin(t * pi * 0.5);
        return t;
    }

    PlainOutcome Run(PlainGenerator& generator, const PlainReport& report) const
    {
        if (width == 0 || reflectionHeight == 0) return {0, kPlainOutOfMemory};
        const std::size_t packed = 3 * std::size_t(width);
        std::vector<std::uint8_t> reflection(packed * reflectionHeight);  // black where nothing is written
        for (std::size_t y = 0; y < splitRow; ++y) {
            std::copy_n(source + y * sourceStride, packed, destination + y * destinationStride);
        }
        if ((flags & 1) && ripple > 0) {
            if (height == 0) return {0, kPlainOutOfMemory};
            std::vector<std::uint8_t> work(packed * height);
            std::vector<PlainStep> steps;
            if (rippleScale != 0) {
                const double strength = std::min(ripple, 1.0) * 20.0;
                steps.push_back(PlainPerlinDisplacement(strength, rippleScale, rippleScale, generator));
            }
            PlainTransformProcess(steps, {source, width, height, 3, std::uint32_t(sourceStride)}, work.data(),
                                  std::uint32_t(packed), 10, color);
            Shrink(work.data(), packed, reflection);
        } else {
            Shrink(source, sourceStride, reflection);
        }
        reflection = PlainFlip(reflection, packed, reflectionHeight);

        const std::uint8_t bytes[] = {std::uint8_t(color), std::uint8_t(color >> 8), std::uint8_t(color >> 16),
                                      std::uint8_t(color >> 24)};
        for (std::uint32_t y = 0; y < reflectionHeight; ++y) {
            const int coverage = std::uint8_t(FadeAt(y) * 255);
            for (std::size_t x = 0; x < width; ++x) {
                PlainPaintPixel(reflection.data() + y * packed + 3 * x, coverage, bytes, 0, 3);
            }
            if (!report(y, reflectionHeight)) return {0, kPlainCancelled};
        }
        for (std::size_t y = 0; y < reflectionHeight; ++y) {
            std::copy_n(reflection.data() + y * packed, packed, destination + (splitRow + y) * destinationStride);
        }
        return kPlainDone;
    }

private:
    void Shrink(const std::uint8_t* image, std::size_t stride, std::vector<std::uint8_t>& reflection) const
    {
        if (splitRow == 0) return;
        PlainResizeBytes({image, width, splitRow, stride},
                         {reflection.data(), width, reflectionHeight, 3 * std::size_t(width)}, 3, 8, PlainSilence);
    }
};
