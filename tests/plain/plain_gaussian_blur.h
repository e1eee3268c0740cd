// The Gaussian blur, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainBlurMath {
    double (*exp)(double);
    double (*sin)(double);
    double (*cos)(double);
    double (*pow)(double, double);
};

template <class T>
struct PlainBlurImage {
    T* samples;
    std::size_t stride;
};

struct PlainBlurSize {
    std::size_t width, height, channels;
};

// Called with (current, total); false cancels.
using PlainBlurReport = std::function<bool(std::uint32_t, std::uint32_t)>;

template <class Real>
struct PlainRecursion {
    Real n[5], d[5], m[5], forwardBoundary[5], backwardBoundary[5];

    PlainRecursion(float narrowSigma, const PlainBlurMath& math)
    {
        const double sigma = double(narrowSigma), pi = 3.14159265358979323846;
        const double q = 1 / sigma, w0 = 0.6318 * q, w1 = 1.997 * q, e0 = -1.783 * q, e1 = -1.723 * q;
        const double k = 1 / (std::sqrt(2 * pi) * sigma);
        const double a0 = 1.68 * k, a1 = 3.735 * k, c0 = -0.6803 * k, c1 = -0.2598 * k;
        const auto exp = math.exp, sin = math.sin, cos = math.cos;

        double wideN[5], wideD[5], wideM[5];
        wideN[0] = a0 + c0;
        wideN[1] =
            exp(e1) * (c1 * sin(w1) - (2 * a0 + c0) * cos(w1)) + exp(e0) * (a1 * sin(w0) - (2 * c0 + a0) * cos(w0));
        wideN[2] = 2 * exp(e0 + e1) * (wideN[0] * cos(w1) * cos(w0) - a1 * cos(w1) * sin(w0) - c1 * sin(w1) * cos(w0)) +
                   c0 * exp(2 * e0) + a0 * exp(2 * e1);
        wideN[3] = exp(2 * e1 + e0) * (a1 * sin(w0) - a0 * cos(w0)) + exp(2 * e0 + e1) * (c1 * sin(w1) - c0 * cos(w1));
        wideN[4] = 0;
        wideD[0] = 0;
        wideD[1] = -2 * cos(w1) * exp(e1) - 2 * cos(w0) * exp(e0);
        wideD[2] = 4 * cos(w0) * cos(w1) * exp(e0 + e1) + exp(2 * e1) + exp(2 * e0);
        wideD[3] = -2 * cos(w0) * exp(e0 + 2 * e1) - 2 * cos(w1) * exp(2 * e0 + e1);
        wideD[4] = exp(2 * e0 + 2 * e1);
        wideM[0] = 0;
        for (int i = 1; i <= 4; ++i) wideM[i] = wideN[i] - wideD[i] * wideN[0];

        double sumN = 0, sumD = 0, sumM = 0;
        for (int i = 0; i <= 4; ++i) {
            sumN += wideN[i];
            sumD += wideD[i];
            sumM += wideM[i];
        }
        const double s = 1 + (sumD == -1 ? -0.999999 : sumD);
        for (int i = 0; i <= 4; ++i) {
            n[i] = Real(wideN[i]);
            d[i] = Real(wideD[i]);
            m[i] = Real(wideM[i]);
            forwardBoundary[i] = Real(wideD[i] * sumN / s);
            backwardBoundary[i] = Real(wideD[i] * sumM / s);
        }
    }

    // One line. Samples outside it are those of its ends; results outside it are boundaries.
    std::vector<Real> Filter(const std::vector<Real>& x) const
    {
        const std::ptrdiff_t length = std::ptrdiff_t(x.size());
        const auto at = [&](std::ptrdiff_t i) { return x[std::size_t(i < 0 ? 0 : i < length ? i : length - 1)]; };
        const Real first = at(0), last = at(length - 1);
        std::vector<Real> forward(x.size()), backward(x.size());
        for (std::ptrdiff_t i = 0; i < length; ++i) {
            Real y = n[0] * at(i) + n[1] * at(i - 1) + n[2] * at(i - 2) + n[3] * at(i - 3);
            for (int j = 1; j <= 4; ++j)
                y -= i - j >= 0 ? d[j] * forward[std::size_t(i - j)] : forwardBoundary[j] * first;
            if (i == 0) {
                Real sum = 0;
                for (int j = 1; j <= 4; ++j) sum += n[j] - forwardBoundary[j];
                y = first * (n[0] + sum);
            }
            forward[std::size_t(i)] = y;
        }
        for (std::ptrdiff_t i = length - 1; i >= 0; --i) {
            Real z = m[1] * at(i + 1) + m[2] * at(i + 2) + m[3] * at(i + 3) + m[4] * at(i + 4);
            for (int j = 1; j <= 4; ++j) {
                z -= i + j < length ? d[j] * backward[std::size_t(i + j)] : backwardBoundary[j] * last;
            }
            if (i == length - 1) {
                Real sum = 0;
                for (int j = 1; j <= 4; ++j) sum += m[j] - backwardBoundary[j];
                z = last * sum;
            }
            backward[std::size_t(i)] = z;
        }
        std::vector<Real> result(x.size());
        for (std::size_t i = 0; i < x.size(); ++i) result[i] = forward[i] + backward[i];
        return result;
    }
};

// A number truncated to 32 bits, then kept to 16. What 32 bits do not hold is their lowest number.
inline std::int16_t PlainWord(double value)
{
    const bool isHeld = value > -2147483649.0 && value < 2147483648.0;
    const std::int32_t whole = isHeld ? std::int32_t(value) : std::numeric_limits<std::int32_t>::min();
    return std::int16_t(std::uint16_t(whole));
}

// False when a report was answered so.
template <class Real, class T>
bool PlainBlurRecursively(const PlainBlurImage<const T>& source, const PlainBlurSize& size,
                          const PlainBlurImage<T>& destination, float sigma, unsigned flags, const PlainBlurMath& math,
                          const PlainBlurReport& report)
{
    const PlainRecursion<Real> recursion(sigma, math);
    const double top = sizeof(T) == 1 ? 255 : 65535;
    for (std::size_t c = 0; c < size.channels; ++c) {
        if (!(flags >> c & 1)) continue;
        std::vector<std::int16_t> plane(size.width * size.height);
        for (std::size_t y = 0; y < size.height; ++y) {
            std::vector<Real> line(size.width);
            for (std::size_t x = 0; x < size.width; ++x) {
                line[x] = Real(source.samples[y * source.stride + x * size.channels + c]);
            }
            line = recursion.Filter(line);
            for (std::size_t x = 0; x < size.width; ++x) plane[y * size.width + x] = PlainWord(double(line[x]));
            if (!report(std::uint32_t(y), std::uint32_t(size.height))) return false;
        }
        for (std::size_t x = 0; x < size.width; ++x) {
            std::vector<Real> line(size.height);
            for (std::size_t y = 0; y < size.height; ++y) line[y] = Real(plane[y * size.width + x]);
            line = recursion.Filter(line);
            for (std::size_t y = 0; y < size.height; ++y) {
                double value = double(line[y]);
                if (value < 0) value = 0;
                if (value > top) value = top;
                destination.samples[y * destination.stride + x * size.channels + c] = value == value ? T(value) : T(0);
            }
            if (!report(std::uint32_t(x), std::uint32_t(size.width))) return false;
        }
    }
    return true;
}

inline std::vector<float> PlainDirectKernel(double sigma, const PlainBlurMath& math)
{
    if (sigma <= 0) return {1.0f};
    const int radius = int(std::ceil(2.5 * sigma));
    std::vector<float> kernel;
    float sum = 0;
    for (int i = -radius; i <= radius; ++i) {
        kernel.push_back(float(math.pow(2.71828, -0.5 * i * i / (sigma * sigma)) / (std::sqrt(6.2831853) * sigma)));
        sum += kernel.back();
    }
    const float scale = 1 / sum;
    for (float& entry : kernel) entry *= scale;
    return kernel;
}

// The kernel laid over position `at` of a line.
inline float PlainWeighted(const std::vector<float>& line, std::ptrdiff_t at, const std::vector<float>& kernel)
{
    const std::ptrdiff_t radius = std::ptrdiff_t(kernel.size() / 2), length = std::ptrdiff_t(line.size());
    float sum = 0, weight = 0;
    for (std::ptrdiff_t i = -radius; i <= radius; ++i) {
        if (at + i < 0 || at + i >= length) continue;
        sum += line[std::size_t(at + i)] * kernel[std::size_t(radius + i)];
        weight += kernel[std::size_t(radius + i)];
    }
    const bool isWhole = at - radius >= 0 && at + radius < length;
    return isWhole ? sum : weight == 0 ? 0.0f : sum / weight;
}

template <class T>
bool PlainBlurDirectly(const PlainBlurImage<const T>& source, const PlainBlurSize& size,
                       const PlainBlurImage<T>& destination, double sigma, unsigned flags, const PlainBlurMath& math,
                       const PlainBlurReport& report)
{
    const std::vector<float> kernel = PlainDirectKernel(sigma, math);
    const float top = sizeof(T) == 1 ? 255 : 65535;
    const float rounding = flags & 1024 ? 0.0f : 0.5f;
    for (std::size_t c = 0; c < size.channels; ++c) {
        if (!(flags >> c & 1)) continue;
        std::vector<float> plane(size.width * size.height);
        for (std::size_t y = 0; y < size.height; ++y) {
            std::vector<float> line(size.width);
            for (std::size_t x = 0; x < size.width; ++x) {
                line[x] = source.samples[y * source.stride + x * size.channels + c];
            }
            for (std::size_t x = 0; x < size.width; ++x) {
                plane[y * size.width + x] = PlainWeighted(line, std::ptrdiff_t(x), kernel);
            }
        }
        if (!report(std::uint32_t(2 * c), std::uint32_t(2 * size.channels))) return false;
        for (std::size_t x = 0; x < size.width; ++x) {
            std::vector<float> line(size.height);
            for (std::size_t y = 0; y < size.height; ++y) line[y] = plane[y * size.width + x];
            for (std::size_t y = 0; y < size.height; ++y) {
                float value = PlainWeighted(line, std::ptrdiff_t(y), kernel) + rounding;
                if (value > top) value = top;
                destination.samples[y * destination.stride + x * size.channels + c] = T(value);
            }
        }
        if (!report(std::uint32_t(2 * c + 1), std::uint32_t(2 * size.channels))) return false;
    }
    return true;
}

// Either engine, as the sigma asks for it.
template <class T>
bool PlainBlur(const PlainBlurImage<const T>& source, const PlainBlurSize& size, const PlainBlurImage<T>& destination,
               double sigma, unsigned flags, const PlainBlurMath& math, const PlainBlurReport& report)
{
    if (sigma < 1.0 || (flags & 256))
        return PlainBlurDirectly<T>(source, size, destination, sigma, flags, math, report);
    if (sigma < 4.5) {
        return PlainBlurRecursively<double, T>(source, size, destination, float(sigma), flags, math, report);
    }
    return PlainBlurRecursively<float, T>(source, size, destination, float(sigma), flags, math, report);
}
