// A rectangle of one colour, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>

// From left up to and with right, from top up to and without bottom; none of the edges wraps.
inline void PlainFillRect(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                          std::size_t stride, std::size_t left, std::size_t top, std::size_t right, std::size_t bottom,
                          std::uint32_t color, bool swapsFirstAndThird)
{
    for (std::size_t y = top; y < bottom && y < height; ++y) {
        for (std::size_t x = left; x <= right && x < width; ++x) {
            for (std::size_t c = 0; c < channels; ++c) {
                const std::size_t from = swapsFirstAndThird && channels > 1 && c != 1 && c != 3 ? 2 - c : c;
                image[y * stride + x * channels + c] = std::uint8_t(color >> (8 * from));
            }
        }
    }
}
