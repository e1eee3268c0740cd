// Convolution, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

struct PlainKernel {
    std::size_t width, height;  // odd
    std::vector<double> entries;
    double scale;
};

// Channel c of the image goes through the kernel into dst, with the nearest pixels outside the image.
template <class T>
void PlainConvolve(const T* src, std::size_t width, std::size_t height, std::size_t channels, std::size_t srcStride,
                   T* dst, std::size_t dstStride, const PlainKernel& kernel, bool isPlainSum, std::size_t c)
{
    const auto clampTo = [](long long i, std::size_t size) {
        return std::size_t(std::clamp(i, 0LL, (long long)size - 1));
    };
    const double top = sizeof(T) == 1 ? 255 : 65535;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            double sum = 0;
            for (std::size_t j = 0; j < kernel.height; ++j) {
                for (std::size_t i = 0; i < kernel.width; ++i) {
                    const std::size_t sy = clampTo((long long)(y + j) - (long long)(kernel.height / 2), height);
                    const std::size_t sx = clampTo((long long)(x + i) - (long long)(kernel.width / 2), width);
                    const double product =
                        double(src[sy * srcStride + sx * channels + c]) * kernel.entries[j * kernel.width + i];
                    sum = sum + product;
                }
            }
            const double scaled = sum * kernel.scale;
            const double value = isPlainSum ? scaled : double(src[y * srcStride + x * channels + c]) - scaled;
            T& sample = dst[y * dstStride + x * channels + c];
            if (value != value || value <= 0) sample = 0;
            else if (value >= top) sample = T(top);
            else sample = T(int(value));
        }
    }
}
