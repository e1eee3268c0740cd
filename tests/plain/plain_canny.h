// The Canny edge detector, said plainly, stage by stage. Slow on purpose; includes nothing of the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// Called with (current, total); false cancels.
using PlainCannyReport = std::function<bool(std::uint32_t, std::uint32_t)>;

// What each stage leaves behind.
class PlainCanny {
public:
    PlainCanny(int width, int height) : width_(width), height_(height) {}

    std::vector<std::int16_t> smoothed, gradX, gradY, magnitude;
    std::vector<std::uint8_t> map;  // 128 a possible edge, 255 none, 0 the border
    std::vector<std::uint8_t> edges;
    int highThreshold = 0, lowThreshold = 0;
    int possibleWithoutMagnitude = 0;

    void Smooth(const std::uint8_t* src, std::size_t stride, float sigma, double (*pow)(double, double))
    {
        const int half = int(std::ceil(2.5 * double(sigma)));
        std::vector<float> kernel;
        float total = 0;
        for (int i = -half; i <= half; ++i) {
            const float variance = sigma * sigma;
            const double value =
                pow(2.71828, -0.5 * double(i) * double(i) / double(variance)) / (double(sigma) * std::sqrt(6.2831853));
            kernel.push_back(float(value));
            total += kernel.back();
        }
        for (float& entry : kernel) entry /= total;

        const auto quotient = [&](int at, int length, auto sample) {
            float sum = 0, weights = 0;
            for (int i = -half; i <= half; ++i) {
                if (at + i < 0 || at + i >= length) continue;
                sum += float(sample(at + i)) * kernel[std::size_t(i + half)];
                weights += kernel[std::size_t(i + half)];
            }
            return sum / weights;
        };
        std::vector<float> rows;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                rows.push_back(
                    quotient(x, width_, [&](int i) { return src[std::size_t(y) * stride + std::size_t(i)]; }));
            }
        }
        smoothed.clear();
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                const float value = quotient(y, height_, [&](int i) { return rows[At(x, i)]; });
                smoothed.push_back(std::int16_t(double(value) * 90.0 + 0.5));
            }
        }
    }

    void Derive()
    {
        gradX.assign(smoothed.size(), 0);
        gradY = gradX;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                const int right = x + 1 < width_ ? x + 1 : x, left = x > 0 ? x - 1 : x;
                const int below = y + 1 < height_ ? y + 1 : y, above = y > 0 ? y - 1 : y;
                gradX[At(x, y)] = std::int16_t(smoothed[At(right, y)] - smoothed[At(left, y)]);
                gradY[At(x, y)] = std::int16_t(smoothed[At(x, below)] - smoothed[At(x, above)]);
            }
        }
    }

    void Measure()
    {
        magnitude.clear();
        for (std::size_t i = 0; i < gradX.size(); ++i) {
            const int gx = gradX[i], gy = gradY[i];
            magnitude.push_back(std::int16_t(double(std::sqrt(float(gx * gx) + float(gy * gy))) + 0.5));
        }
    }

    void Thin()
    {
        map.assign(magnitude.size(), 255);
        for (int x = 0; x < width_; ++x) map[At(x, 0)] = map[At(x, height_ - 1)] = 0;
        for (int y = 0; y < height_; ++y) map[At(0, y)] = map[At(width_ - 1, y)] = 0;
        float xperp = 0, yperp = 0;
        int gx = 0, gy = 0;
        for (int y = 1; y <= height_ - 3; ++y) {
            for (int x = 1; x <= width_ - 3; ++x) {
                const auto near = [&](int i, int j) { return int(magnitude[At(x + i, y + j)]); };
                const int m = near(0, 0);
                if (m != 0) {
                    gx = gradX[At(x, y)];
                    gy = gradY[At(x, y)];
                    xperp = -float(gx) / float(m);
                    yperp = float(gy) / float(m);
                }
                const int ul = near(-1, -1), u = near(0, -1), ur = near(1, -1), l = near(-1, 0), r = near(1, 0);
                const int dl = near(-1, 1), d = near(0, 1), dr = near(1, 1);
                const auto sum = [](int a, float p, int b, float q) { return float(a) * p + float(b) * q; };
                float first = 0, second = 0;
                if (gx < 0 && gy >= 0) {
                    if (-gx < gy) {
                        first = sum(ur - u, xperp, u - m, yperp);
                        second = sum(d - m, yperp, dl - d, xperp);
                    } else {
                        first = sum(ur - r, yperp, r - m, xperp);
                        second = sum(l - m, xperp, dl - l, yperp);
                    }
                } else if (gx < 0) {
                    if (-gx > -gy) {
                        first = sum(r - dr, yperp, r - m, xperp);
                        second = sum(l - m, xperp, l - ul, yperp);
                    } else {
                        first = sum(dr - d, xperp, m - d, yperp);
                        second = sum(m - u, yperp, ul - u, xperp);
                    }
                } else if (gy < 0) {
                    if (gx < -gy) {
                        first = sum(d - dl, xperp, m - d, yperp);
                        second = sum(m - u, yperp, u - ur, xperp);
                    } else {
                        first = sum(l - dl, yperp, m - l, xperp);
                        second = sum(m - r, xperp, r - ur, yperp);
                    }
                } else {
                    if (gx < gy) {
                        first = sum(u - ul, xperp, u - m, yperp);
                        second = sum(d - m, yperp, d - dr, xperp);
                    } else {
                        first = sum(ul - l, yperp, m - l, xperp);
                        second = sum(dr - r, yperp, m - r, xperp);
                    }
                }
                const bool isNone = first > 0.0f || second > 0.0f || second == 0.0f;
                map[At(x, y)] = isNone ? 255 : 128;
                possibleWithoutMagnitude += m == 0 && !isNone;
            }
        }
    }

    void Trace(float lowFraction, float highFraction)
    {
        edges.clear();
        for (const std::uint8_t value : map) edges.push_back(value == 128 ? 128 : 255);
        for (int x = 0; x < width_; ++x) edges[At(x, 0)] = edges[At(x, height_ - 1)] = 255;
        for (int y = 0; y < height_; ++y) edges[At(0, y)] = edges[At(width_ - 1, y)] = 255;
        FindThresholds(lowFraction, highFraction);
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                if (edges[At(x, y)] != 128 || magnitude[At(x, y)] < highThreshold) continue;
                edges[At(x, y)] = 0;
                TraceFrom(x + 1, y);
            }
        }
        for (std::uint8_t& value : edges) value = value == 0 ? 0 : 255;
    }

private:
    std::size_t At(int x, int y) const { return std::size_t(y) * std::size_t(width_) + std::size_t(x); }

    void FindThresholds(float lowFraction, float highFraction)
    {
        std::vector<std::uint32_t> histogram(32768);
        for (std::size_t i = 0; i < edges.size(); ++i) {
            if (edges[i] == 128) ++histogram[std::size_t(magnitude[i])];
        }
        int maximum = 0;
        std::uint32_t count = 0;
        for (int r = 1; r < 32768; ++r) {
            if (histogram[std::size_t(r)] != 0) maximum = r;
            count += histogram[std::size_t(r)];
        }
        const double highCount = std::trunc(double(float(count) * highFraction) + 0.5);
        int r = 1;
        double total = histogram[1];
        while (r < maximum - 1 && total < highCount) {
            ++r;
            total += histogram[std::size_t(r)];
        }
        highThreshold = r;
        const double low = std::trunc(double(float(r) * lowFraction) + 0.5);
        lowThreshold = low > 65535 ? 65535 : int(low);
    }

    void TraceFrom(int seedX, int seedY)
    {
        struct Position {
            int x, y;
        };
        std::vector<Position> stack = {{seedX, seedY}};
        while (!stack.empty()) {
            const Position at = stack.back();
            stack.pop_back();
            const int around[8][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
            for (const auto& [dx, dy] : around) {
                const int x = at.x + dx, y = at.y + dy;
                if (edges[At(x, y)] != 128 || magnitude[At(x, y)] <= lowThreshold) continue;
                edges[At(x, y)] = 0;
                stack.push_back({x, y});
            }
        }
    }

    const int width_, height_;
};

struct PlainCannyCall {
    const std::uint8_t* src;
    int width, height;
    std::size_t srcStride;
    std::uint8_t* dst;
    std::size_t dstStride;
    double sigma, lowFraction, highFraction;
};

// False when a report was answered so. An image without an interior has no edges.
inline bool PlainCannyDetector(const PlainCannyCall& call, double (*pow)(double, double),
                               const PlainCannyReport& report)
{
    PlainCanny canny(call.width, call.height);
    const bool hasInterior = call.width >= 3 && call.height >= 3;
    if (hasInterior) {
        canny.Smooth(call.src, call.srcStride, float(call.sigma), pow);
        canny.Derive();
        canny.Measure();
        canny.Thin();
    }
    for (std::uint32_t stage = 1; stage <= 4; ++stage) {
        if (!report(stage, 5)) return false;
    }
    if (hasInterior) canny.Trace(float(call.lowFraction), float(call.highFraction));
    else canny.edges.assign(std::size_t(call.width) * std::size_t(call.height), 255);
    for (int y = 0; y < call.height; ++y) {
        for (int x = 0; x < call.width; ++x) {
            call.dst[std::size_t(y) * call.dstStride + std::size_t(x)] =
                canny.edges[std::size_t(y) * std::size_t(call.width) + std::size_t(x)];
        }
    }
    return report(5, 5);
}
