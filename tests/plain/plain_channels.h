// Gray values and channels moved, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>

template <class T>
void PlainGray(const T* image, std::size_t width, std::size_t height, std::size_t channels, std::size_t stride, T* gray,
               std::size_t grayStride, bool isBgr)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const T* pixel = image + y * stride + x * channels;
            const std::uint64_t r = pixel[isBgr ? 2 : 0], g = pixel[1], b = pixel[isBgr ? 0 : 2];
            gray[y * grayStride + x] = T((601 * g + 306 * r + 117 * b) / 1024);
        }
    }
}

template <class T>
void PlainCombine(const T* const* planes, std::size_t width, std::size_t height, std::size_t channels,
                  std::size_t planeStride, T* image, std::size_t stride)
{
    for (std::size_t c = 0; c < channels; ++c) {
        if (!planes[c]) continue;
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                image[y * stride + x * channels + c] = planes[c][y * planeStride + x];
            }
        }
    }
}

// Either output may be null.
template <class T>
void PlainSplit(const T* image, std::size_t width, std::size_t height, std::size_t stride, T* rgb,
                std::size_t rgbStride, T* alpha, std::size_t alphaStride)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const T* pixel = image + y * stride + x * 4;
            for (std::size_t c = 0; rgb && c < 3; ++c) rgb[y * rgbStride + x * 3 + c] = pixel[c];
            if (alpha) alpha[y * alphaStride + x] = pixel[3];
        }
    }
}
