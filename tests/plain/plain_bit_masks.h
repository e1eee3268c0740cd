// Packed rows of bits, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The low `depth` bits of each pixel, the first pixel in the top bits; what is left of the last byte is 0.
inline std::vector<std::uint8_t> PlainPack(const std::vector<std::uint8_t>& pixels, std::size_t depth)
{
    std::vector<std::uint8_t> packed((pixels.size() * depth + 7) / 8);
    for (std::size_t bit = 0; bit < pixels.size() * depth; ++bit) {
        const bool isSet = pixels[bit / depth] >> (depth - 1 - bit % depth) & 1;
        if (isSet) packed[bit / 8] = std::uint8_t(packed[bit / 8] | 128 >> bit % 8);
    }
    return packed;
}

inline void PlainMakeMask(const std::uint8_t* plane, std::size_t width, std::size_t height, std::size_t stride,
                          std::uint8_t* mask, std::size_t maskStride, std::uint8_t value)
{
    for (std::size_t y = 0; y < height; ++y) {
        std::vector<std::uint8_t> row;
        for (std::size_t x = 0; x < width; ++x) row.push_back(plane[y * stride + x] == value);
        const std::vector<std::uint8_t> packed = PlainPack(row, 1);
        for (std::size_t i = 0; i < packed.size(); ++i) mask[y * maskStride + i] = packed[i];
    }
}

inline void PlainSetWhereMasked(const std::uint8_t* mask, std::size_t width, std::size_t height, std::size_t maskStride,
                                std::uint8_t* plane, std::size_t stride, std::uint8_t value)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            if (mask[y * maskStride + x / 8] >> (7 - x % 8) & 1) plane[y * stride + x] = value;
        }
    }
}
