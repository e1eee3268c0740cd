// The bilateral filter, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainBilateralMath {
    double (*exp)(double);
    double (*cos)(double);
};

struct PlainBilateralCall {
    const std::uint8_t* src;
    int width, height;
    std::size_t srcStride;
    int channels;
    std::uint8_t* dst;
    std::size_t dstStride;
    int filterSize;
    std::uint32_t weightKind;
    double sigma;
    std::uint32_t flags;
};

// Called with (current, total); false cancels.
using PlainBilateralReport = std::function<bool(std::uint32_t, std::uint32_t)>;

class PlainBilateral {
public:
    PlainBilateral(const PlainBilateralCall& call, const PlainBilateralMath& math)
        : call_(call), math_(math), n_(call.filterSize % 2 == 0 ? call.filterSize + 1 : call.filterSize), half_(n_ / 2)
    {
        for (int i = -255; i <= 255; ++i) range_.push_back(Weight(std::abs(i)));
    }

    // False when a report was answered so.
    bool Run(const PlainBilateralReport& report)
    {
        for (int c = 0; c < call_.channels; ++c) {
            if (!(call_.flags >> c & 1)) continue;
            const bool goesOn = call_.flags & 256 ? RunSeparably(c, report) : RunOverSquares(c, report);
            if (!goesOn) return false;
        }
        return true;
    }

private:
    double Weight(double d) const
    {
        const double sigma = call_.sigma, pi = 3.14159265358979323846;
        switch (call_.weightKind) {
        case 1: return d <= sigma ? 1 - d / sigma : 0;
        case 2: return d <= sigma ? math_.cos(pi * d / (2 * sigma)) : 0;
        case 3: return d <= sigma ? 1 / sigma : 0;
        default: return math_.exp(-(d * d) / (2 * sigma * sigma));
        }
    }

    std::uint8_t Source(int x, int y, int c) const
    {
        return call_.src[std::ptrdiff_t(y) * std::ptrdiff_t(call_.srcStride) + x * call_.channels + c];
    }
    std::uint8_t& Destination(int x, int y, int c) const
    {
        return call_.dst[std::size_t(y) * call_.dstStride + std::size_t(x * call_.channels + c)];
    }
    double Range(int centre, int other) const { return range_[std::size_t(centre - other + 255)]; }

    static std::uint8_t Quotient(double sum, double weights, std::uint8_t centre)
    {
        return weights <= 0.0 ? centre : std::uint8_t(sum / weights + 0.5);
    }

    bool RunOverSquares(int c, const PlainBilateralReport& report) const
    {
        std::vector<double> kernel;
        for (int j = -half_; j <= half_; ++j) {
            for (int i = -half_; i <= half_; ++i) kernel.push_back(Weight(std::sqrt(double(i * i + j * j))));
        }
        kernel[std::size_t(half_ * n_ + half_)] *= 20.0;

        const bool hasRowsAbove = call_.flags >> 22 & 1, hasRowsBelow = call_.flags >> 23 & 1;
        for (int y = 0; y < call_.height; ++y) {
            for (int x = 0; x < call_.width; ++x) {
                const std::uint8_t centre = Source(x, y, c);
                double sum = 0, weights = 0;
                for (int j = -half_; j < half_; ++j) {
                    if ((y + j < 0 && !hasRowsAbove) || (y + j >= call_.height && !hasRowsBelow)) continue;
                    for (int i = -half_; i < half_; ++i) {
                        if (x + i < 0 || x + i >= call_.width) continue;
                        const std::uint8_t v = Source(x + i, y + j, c);
                        const double weight = Range(centre, v) * kernel[std::size_t((j + half_) * n_ + i + half_)];
                        sum += v * weight;
                        weights += weight;
                    }
                }
                Destination(x, y, c) = Quotient(sum, weights, centre);
            }
            if (!report(std::uint32_t(y), std::uint32_t(call_.height))) return false;
        }
        return true;
    }

    // The sample at `at` of a line.
    std::uint8_t AverageInLine(const std::vector<std::uint8_t>& line, int at, const std::vector<double>& kernel) const
    {
        double sum = 0, weights = 0;
        for (int i = -half_; i <= half_; ++i) {
            if (at + i < 0 || at + i >= int(line.size())) continue;
            const std::uint8_t v = line[std::size_t(at + i)];
            const double weight = Range(line[std::size_t(at)], v) * kernel[std::size_t(i + half_)];
            sum += v * weight;
            weights += weight;
        }
        return Quotient(sum, weights, line[std::size_t(at)]);
    }

    bool RunSeparably(int c, const PlainBilateralReport& report) const
    {
        std::vector<double> kernel;
        for (int i = -half_; i <= half_; ++i) kernel.push_back(Weight(std::abs(i)));
        kernel[std::size_t(half_)] *= 20.0;
        std::vector<std::uint8_t> plane;
        for (int y = 0; y < call_.height; ++y) {
            std::vector<std::uint8_t> row;
            for (int x = 0; x < call_.width; ++x) row.push_back(Source(x, y, c));
            for (int x = 0; x < call_.width; ++x) plane.push_back(AverageInLine(row, x, kernel));
        }
        for (int x = 0; x < call_.width; ++x) {
            std::vector<std::uint8_t> column;
            for (int y = 0; y < call_.height; ++y) column.push_back(plane[std::size_t(y * call_.width + x)]);
            for (int y = 0; y < call_.height; ++y) Destination(x, y, c) = AverageInLine(column, y, kernel);
        }
        return report(std::uint32_t(c), std::uint32_t(call_.channels));
    }

    const PlainBilateralCall call_;
    const PlainBilateralMath math_;
    const int n_, half_;
    std::vector<double> range_;
};
