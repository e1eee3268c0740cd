// The table pass and the inversion, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>

// Every sample of a channel that has a table becomes the entry at its own value, row after row.
template <class T>
void PlainTablePass(T* image, std::size_t width, std::size_t height, std::size_t channels, std::size_t stride,
                    const void* const* tables)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < channels; ++c) {
                T& sample = image[y * stride + x * channels + c];
                if (tables[c]) sample = static_cast<const T*>(tables[c])[sample];
            }
        }
    }
}

inline void PlainInvert(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                        std::size_t stride, bool protectsAlpha)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < channels; ++c) {
                std::uint8_t& sample = image[y * stride + x * channels + c];
                if (!(protectsAlpha && c == 3)) sample = std::uint8_t(255 - sample);
            }
        }
    }
}
