// The despeckle filter, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plain {

class SpecklePlane {
public:
    SpecklePlane(std::size_t width, std::size_t height)
        : width_(width), height_(height), stride_(width + 2), samples_(stride_ * (height + 2)), work_(samples_.size())
    {
    }

    std::uint8_t& At(std::size_t x, std::size_t y) { return samples_[(y + 1) * stride_ + x + 1]; }

    void RunAllPasses()
    {
        const int directions[4][2] = {{0, 1}, {1, 0}, {1, 1}, {-1, 1}};
        for (const auto& [dx, dy] : directions) {
            const std::ptrdiff_t o = dy * std::ptrdiff_t(stride_) + dx;
            Pass(o, true);
            Pass(-o, true);
            Pass(-o, false);
            Pass(o, false);
            work_.assign(work_.size(), 0);
        }
    }

private:
    template <class Half>
    void ForInterior(Half half)
    {
        for (std::size_t y = 1; y <= height_; ++y) {
            for (std::size_t x = 1; x <= width_; ++x) half(std::ptrdiff_t(y * stride_ + x));
        }
    }

    void Pass(std::ptrdiff_t o, bool isRaising)
    {
        const auto at = [](std::vector<std::uint8_t>& plane, std::ptrdiff_t i) -> std::uint8_t& {
            return plane[std::size_t(i)];
        };
        ForInterior([&](std::ptrdiff_t i) {
            const int a = at(samples_, i), b = at(samples_, i + o);
            if (isRaising) at(work_, i) = std::uint8_t(b > a ? a + 1 : a);
            else at(work_, i) = std::uint8_t(a > (b + 1) % 256 ? a - 1 : a);
        });
        ForInterior([&](std::ptrdiff_t i) {
            const int c = at(work_, i), p = at(work_, i - o), n = at(work_, i + o);
            if (isRaising) at(samples_, i) = std::uint8_t((p + 1) % 256 > c && n > c ? c + 1 : c);
            else at(samples_, i) = std::uint8_t((p + 1) % 256 < c && n < c ? c - 1 : c);
        });
    }

    std::size_t width_, height_, stride_;
    std::vector<std::uint8_t> samples_, work_;
};

}  // namespace plain

inline void PlainDespeckle(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                           std::size_t stride, std::size_t channel)
{
    plain::SpecklePlane plane(width, height);
    const auto sample = [&](std::size_t x, std::size_t y) -> std::uint8_t& {
        return image[y * stride + x * channels + channel];
    };
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) plane.At(x, y) = sample(x, y);
    }
    plane.RunAllPasses();
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) sample(x, y) = plane.At(x, y);
    }
}
