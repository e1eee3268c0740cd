// Halftone, mosaic and ASCII art: chains of the plain twins of their steps. Includes nothing of the library.
#pragma once

#include "plain/plain_outcome.h"
#include "plain/plain_palette.h"
#include "plain/plain_resize.h"

#include <cmath>
#include <string>
#include <vector>

inline std::uint32_t PlainResizeBytes(const PlainResizeImage<const std::uint8_t>& from,
                                      const PlainResizeImage<std::uint8_t>& to, std::size_t channels, unsigned mode,
                                      const PlainReport& report)
{
    return PlainResizer<std::uint8_t>(from, to, channels, {std::exp, std::sin, std::cos}, report).Run(mode);
}

inline PlainOutcome PlainHalftone(const PlainResizeImage<std::uint8_t>& image, std::uint32_t cellSize, bool isSmooth,
                                  const PlainReport& report)
{
    const std::uint32_t sw = image.width / cellSize, sh = image.height / cellSize;
    if (sw == 0 || sh == 0) return {0, kPlainOutOfMemory};
    const std::uint8_t palette[] = {0, 0, 0, 0, 255, 255, 255, 0};
    std::vector<std::uint8_t> small(std::size_t(sw) * sh * 3), plane(std::size_t(sw) * sh);
    PlainResizeBytes({image.samples, image.width, image.height, image.stride}, {small.data(), sw, sh, 3 * sw}, 3, 16,
                     PlainSilence);
    PlainDither(small.data(), sw, sh, 3 * sw, plane.data(), sw, 2, palette, 1, 20, false);
    PlainExpand(plane.data(), sw, sh, sw, small.data(), 3 * sw, palette, false);
    return PlainOutcome::OfCode(PlainResizeBytes({small.data(), sw, sh, 3 * sw}, image, 3, isSmooth ? 16 : 18, report));
}

inline PlainOutcome PlainMosaic(const PlainResizeImage<std::uint8_t>& image, std::uint32_t channels,
                                std::uint32_t cellSize, const PlainReport& report)
{
    const std::uint32_t sw = image.width / cellSize, sh = image.height / cellSize;
    if (sw == 0 || sh == 0) return {0, kPlainBadArgument};
    std::vector<std::uint8_t> small(std::size_t(sw) * sh * channels);
    PlainResizeBytes({image.samples, image.width, image.height, image.stride}, {small.data(), sw, sh, channels * sw},
                     channels, 15, PlainSilence);
    return PlainOutcome::OfCode(PlainResizeBytes({small.data(), sw, sh, channels * sw}, image, channels, 18, report));
}

// An image of one layout with the text would be copied with its padding: here it never is.
inline void PlainAsciiArt(const PlainResizeImage<const std::uint8_t>& source, std::uint8_t* text, std::uint32_t columns,
                          std::uint32_t rows, const std::string& ramp)
{
    std::vector<std::uint8_t> cells(std::size_t(columns) * rows);
    const std::size_t otherStride = source.stride + 1;  // so that the layouts differ
    std::vector<std::uint8_t> copy(otherStride * source.height);
    for (std::size_t y = 0; y < source.height; ++y) {
        for (std::size_t x = 0; x < source.width; ++x) {
            copy[y * otherStride + x] = source.samples[y * source.stride + x];
        }
    }
    PlainResizeBytes({copy.data(), source.width, source.height, otherStride}, {cells.data(), columns, rows, columns}, 1,
                     16, PlainSilence);
    const double step = 256.0 / double(ramp.size());
    for (std::size_t y = 0; y < rows; ++y) {
        std::uint8_t* const line = text + y * (columns + 1);
        for (std::size_t x = 0; x < columns; ++x) {
            line[x] = std::uint8_t(ramp[std::size_t(cells[y * columns + x] / step)]);
        }
        line[columns] = 10;
    }
    text[(std::size_t(columns) + 1) * rows] = 0;
}
