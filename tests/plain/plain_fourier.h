// The Fourier transform of a grid, its filters and its pictures, as they are described.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// What a transform leaves as its code, and whether it has been done.
struct PlainTransformResult {
    bool isDone;
    std::uint32_t error;
};

inline std::uint32_t PlainNextPowerOfTwo(std::uint32_t value)
{
    std::uint64_t power = 2 * 2;
    while (power <= value) power *= 2;
    return std::uint32_t(power);
}

// In place, on separate arrays of 2 to the power m numbers.
inline void PlainFourierLine(bool isForward, int m, std::vector<double>& re, std::vector<double>& im)
{
    const long long n = 1LL << m;
    long long j = 0;
    for (long long i = 0; i <= n - 2; ++i) {
        if (i < j) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
        long long k = n / 2;
        while (k <= j) {
            j -= k;
            k /= 2;
        }
        j += k;
    }

    double c1 = -1.0, c2 = 0.0;
    long long half = 1;
    for (int stage = 0; stage < m; ++stage) {
        double u1 = 1.0, u2 = 0.0;
        for (long long first = 0; first < half; ++first) {
            for (long long i = first; i < n; i += 2 * half) {
                const long long i1 = i + half;
                const double t1 = u1 * re[i1] - u2 * im[i1];
                const double t2 = u1 * im[i1] + u2 * re[i1];
                re[i1] = re[i] - t1;
                im[i1] = im[i] - t2;
                re[i] += t1;
                im[i] += t2;
            }
            const double old1 = u1, old2 = u2;
            u1 = old1 * c1 - old2 * c2;
            u2 = old1 * c2 + old2 * c1;
        }
        c2 = std::sqrt((1.0 - c1) * 0.5);
        if (isForward) c2 = -c2;
        c1 = std::sqrt((1.0 + c1) * 0.5);
        half *= 2;
    }

    if (isForward) {
        for (long long i = 0; i < n; ++i) {
            re[i] /= double(n);
            im[i] /= double(n);
        }
    }
}

// -1 for what is no power of two, or below 2.
inline int PlainLogarithm(std::uint32_t size)
{
    for (int m = 1; m < 32; ++m) {
        if (std::uint64_t(1) << m == size) return m;
    }
    return -1;
}

inline PlainTransformResult PlainFourierGrid(bool isForward, std::uint32_t width, std::uint32_t height, double* grid)
{
    if (width == 0) return {false, 5};  // no line buffers
    std::vector<double> re(width), im(width);
    const int columnsPower = PlainLogarithm(width);
    if (columnsPower < 0) return {false, 5};
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            re[x] = grid[2 * (y * width + x)];
            im[x] = grid[2 * (y * width + x) + 1];
        }
        PlainFourierLine(isForward, columnsPower, re, im);
        for (std::size_t x = 0; x < width; ++x) {
            grid[2 * (y * width + x)] = re[x];
            grid[2 * (y * width + x) + 1] = im[x];
        }
    }

    if (height == 0) return {false, 1};  // no line buffers
    re.resize(height);
    im.resize(height);
    const int rowsPower = PlainLogarithm(height);
    if (rowsPower < 0) return {false, 5};
    for (std::size_t x = 0; x < width; ++x) {
        for (std::size_t y = 0; y < height; ++y) {
            re[y] = grid[2 * (y * width + x)];
            im[y] = grid[2 * (y * width + x) + 1];
        }
        PlainFourierLine(isForward, rowsPower, re, im);
        for (std::size_t y = 0; y < height; ++y) {
            grid[2 * (y * width + x)] = re[y];
            grid[2 * (y * width + x) + 1] = im[y];
        }
    }
    return {true, 0};
}

// Returns the last error that is left; the call itself returns 1.
template <class Sample>
std::uint32_t PlainFourierOfPicture(const Sample* source, std::uint32_t width, std::uint32_t height,
                                    std::uint32_t stride, double* grid)
{
    double sum = 0;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            grid[2 * (y * width + x)] = source[y * stride + x];
            grid[2 * (y * width + x) + 1] = 0.0;
            sum += source[y * stride + x];
        }
    }
    const double mean = sum / (double(width) * double(height));
    for (std::size_t i = 0; i < std::size_t(width) * height; ++i) grid[2 * i] -= mean;
    return PlainFourierGrid(true, width, height, grid).error;
}

// The functions that differ between C run-times are the test's to give.
struct PlainFilterMath {
    double (*exp)(double);
    double (*pow)(double, double);
};

inline double PlainFilterFactor(int kind, double d2, const double* p, const PlainFilterMath& math)
{
    const bool isSmooth = kind >= 4 && kind <= 10;
    if (isSmooth && d2 == 0) return 1;
    switch (kind) {
    case 1: return d2 > p[0] * p[0] ? 0 : 1;
    case 2: return d2 < p[0] * p[0] ? 0 : 1;
    case 3: return d2 < p[0] * p[0] || d2 > p[1] * p[1] ? 0 : 1;
    case 4: return math.pow(1 / d2, p[0]);
    case 5: return 1 / (1 + math.pow(std::sqrt(d2) / p[0], 2 * p[1]));
    case 6: return 1 / (1 + math.pow(p[0] / std::sqrt(d2), 2 * p[1]));
    case 7: return math.exp(-d2 / (2 * (p[0] * p[0])));
    case 8: return 1 - math.exp(-d2 / (2 * (p[0] * p[0])));
    case 9: return p[1] + p[2] / (1 + math.pow(p[0] / std::sqrt(d2), 2 * p[1]));
    case 10: return p[1] + p[2] * (1 - math.exp(-d2 / (2 * (p[0] * p[0]))));
    default: return (p[2] - p[1]) * (1 - math.exp(-p[3] * d2 / (p[0] * p[0]))) + p[1];
    }
}

inline void PlainFilterGrid(double* grid, std::uint32_t width, std::uint32_t height, int kind, const double* params,
                            const PlainFilterMath& math)
{
    for (std::uint64_t y = 0; y < height; ++y) {
        for (std::uint64_t x = 0; x < width; ++x) {
            const std::uint64_t dx = x <= width / 2 ? x : width - 1 - x;
            const std::uint64_t dy = y <= height / 2 ? y : height - 1 - y;
            const double factor = PlainFilterFactor(kind, double(dx * dx + dy * dy), params, math);
            grid[2 * (y * width + x)] *= factor;
            grid[2 * (y * width + x) + 1] *= factor;
        }
    }
}

// Exactly one of the two destinations.
inline void PlainGrayscaleOfGrid(std::uint8_t* bytes, double* doubles, const double* grid, std::uint32_t width,
                                 std::uint32_t height, std::uint32_t stride, bool isReal, bool isScaled)
{
    const auto magnitudeOf = [](const double* value) { return std::sqrt(value[0] * value[0] + value[1] * value[1]); };
    double smallest = 1e32, largest = -1e32, largestMagnitude = 0.0;
    for (std::size_t i = 0; i < std::size_t(width) * height; ++i) {
        const double re = grid[2 * i], magnitude = magnitudeOf(grid + 2 * i);
        if (re < smallest) smallest = re;
        if (re > largest) largest = re;
        if (magnitude > largestMagnitude) largestMagnitude = magnitude;
    }
    if (!(smallest < largest)) {
        largest += 0.01;
        smallest -= 0.01;
    }
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const double* const value = grid + 2 * (y * width + x);
            double v;
            if (isReal) v = isScaled ? (value[0] - smallest) * 255.0 / (largest - smallest) : value[0] - smallest;
            else v = magnitudeOf(value) * (isScaled ? 255.0 : largest) / largestMagnitude;
            if (doubles) doubles[y * stride + x] = v;
            else bytes[y * stride + x] = !(v > 0) ? 0 : v > 255 ? 255 : std::uint8_t(v);
        }
    }
}
