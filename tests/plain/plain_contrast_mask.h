// The contrast mask, said plainly, from its mask on. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>

inline std::uint8_t PlainContrast(int c, int g, unsigned mode)
{
    const int inv = 255 - g;
    if (mode == 0) {
        const int a = c * inv / 255;
        const int b = (255 - c) * g / 255;
        return std::uint8_t(a + c * (255 - b - a) / 255);
    }
    if (mode == 1) return std::uint8_t(c >= 128 ? 255 - (((255 - c) * g) >> 7) : (c * inv) >> 7);
    return std::uint8_t(c);
}

// Blends rows of 3 or 4 channels with a mask of one byte a pixel.
inline void PlainContrastMask(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                              std::size_t stride, const std::uint8_t* mask, unsigned mode)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < 3; ++c) {
                std::uint8_t& sample = image[y * stride + x * channels + c];
                sample = PlainContrast(sample, mask[y * width + x], mode);
            }
        }
    }
}
