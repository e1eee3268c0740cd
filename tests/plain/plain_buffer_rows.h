// Rows turned over and copied, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

inline std::vector<std::uint8_t> PlainFlip(const std::vector<std::uint8_t>& buffer, std::size_t rowBytes,
                                           std::size_t rows)
{
    std::vector<std::uint8_t> flipped = buffer;
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t i = 0; i < rowBytes; ++i) flipped[y * rowBytes + i] = buffer[(rows - 1 - y) * rowBytes + i];
    }
    return flipped;
}

inline void PlainCopyRows(const std::uint8_t* source, std::size_t sourceRowBytes, std::size_t rows,
                          std::size_t destinationRowBytes, std::uint8_t* destination)
{
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t i = 0; i < sourceRowBytes && i < destinationRowBytes; ++i) {
            destination[y * destinationRowBytes + i] = source[y * sourceRowBytes + i];
        }
    }
}
