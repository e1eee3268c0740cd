// The relief, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

struct PlainPlane {
    const std::uint8_t* data;
    std::size_t stride;
};

// Sines and cosines are the caller's.
struct PlainLight {
    double cosAzimuth, sinAzimuth, cosElevation, sinElevation;
    unsigned depth;
};

// texture and mask may be null.
inline void PlainEmboss(const PlainPlane& bump, int width, int height, const PlainLight& light,
                        const PlainPlane& texture, const PlainPlane& mask, bool isBright, bool isWholeImage,
                        std::uint8_t* out, std::size_t outStride)
{
    const int lx = int(light.cosAzimuth * light.cosElevation * 255.9);
    const int ly = int(light.sinAzimuth * light.cosElevation * 255.9);
    const int lz = int(light.sinElevation * 255.9);
    const int nz = int(1530u / light.depth);
    const int margin = isWholeImage ? 0 : 1;
    for (int y = margin; y < height - margin; ++y) {
        for (int x = margin; x < width - margin; ++x) {
            const auto s = [&](int row, int column) -> int {
                const int sy = std::clamp(y + row, 0, height - 1), sx = std::clamp(x + column, 0, width - 1);
                return bump.data[std::size_t(sy) * bump.stride + std::size_t(sx)];
            };
            const int nx = s(0, -1) + s(-1, -1) + s(1, -1) - s(0, 1) - s(-1, 1) - s(1, 1);
            const int ny = s(1, -1) + s(1, 0) + s(1, 1) - s(-1, -1) - s(-1, 0) - s(-1, 1);
            int shade = lz;
            if (nx != 0 || ny != 0) {
                const int d = nx * lx + ny * ly + nz * lz;
                shade = d < 0 ? 0 : int(d / std::sqrt(double(nx * nx + ny * ny + nz * nz)));
            }
            std::uint8_t* pixel = out + std::size_t(y) * outStride + std::size_t(x) * 3;
            for (int c = 0; c < 3; ++c) {
                if (!texture.data) {
                    pixel[c] = std::uint8_t(shade);
                    continue;
                }
                const int t = texture.data[std::size_t(y) * texture.stride + std::size_t(x * 3 + c)];
                if (mask.data && mask.data[std::size_t(y) * mask.stride + std::size_t(x)] == 0)
                    pixel[c] = std::uint8_t(t);
                else if (isBright) pixel[c] = std::uint8_t(std::min(t * shade >> 7, 255));
                else pixel[c] = std::uint8_t(t * shade >> 8);
            }
        }
    }
}
