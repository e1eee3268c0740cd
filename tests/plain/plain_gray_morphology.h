// Gray dilation and erosion, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

inline void PlainGrayMorphology(const std::uint8_t* src, std::size_t width, std::size_t height, std::size_t srcStride,
                                const std::vector<std::uint32_t>& element, std::size_t side, bool isDilation,
                                std::uint8_t* dst, std::size_t dstStride)
{
    const auto clampTo = [](long long i, std::size_t size) {
        return std::size_t(std::clamp(i, 0LL, (long long)size - 1));
    };
    const long long half = (long long)(side / 2);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            long long found = isDilation ? 0 : 255;
            for (std::size_t j = 0; j < side; ++j) {
                for (std::size_t i = 0; i < side; ++i) {
                    const std::size_t sy = clampTo((long long)(y + j) - half, height);
                    const std::size_t sx = clampTo((long long)(x + i) - half, width);
                    const long long sample = src[sy * srcStride + sx];
                    const long long entry = std::int32_t(element[j * side + i]);  // with its sign
                    if (isDilation) found = std::max(found, sample + entry);
                    else found = std::min(found, sample - entry);
                }
            }
            dst[y * dstStride + x] = std::uint8_t(std::clamp(found, 0LL, 255LL));
        }
    }
}
