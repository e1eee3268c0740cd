// Resizing, said plainly. Slow on purpose; includes nothing of the library. Arguments are taken to be good.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

// Functions whose last bits differ between C run-times: the caller brings them.
struct PlainResizeMath {
    double (*exp)(double);
    double (*sin)(double);
    double (*cos)(double);
};

template <class T>
struct PlainResizeImage {
    T* samples;
    std::uint32_t width, height;
    std::size_t stride;
};

// Called with (current, total); false cancels.
using PlainResizeReport = std::function<bool(std::uint32_t, std::uint32_t)>;

namespace plain {

constexpr double kPi = 3.14159265358979323846;

inline double FilterSupport(unsigned mode)
{
    const double supports[] = {0.5, 1, 1, 1.25, 1.5, 2, 1, 2, 3, 2, 4, 1, 1, 2};
    return supports[mode];
}

inline double FilterWeight(unsigned mode, double x, const PlainResizeMath& math)
{
    const double a = std::fabs(x);
    const auto sinc = [&](double v) { return v == 0 ? 1.0 : math.sin(kPi * v) / (kPi * v); };
    switch (mode) {
    case 0: return -0.5 < x && x <= 0.5 ? 1 : 0;
    case 1: return a < 1 ? 1 - a : 0;
    case 2: return 0.54 + 0.46 * math.cos(kPi * x);
    case 3: return math.exp(-2 * x * x) * std::sqrt(2 / kPi);
    case 4:
        if (a < 0.5) return 0.75 - a * a;
        return a < 1.5 ? 0.5 * (a - 1.5) * (a - 1.5) : 0;
    case 5:
    case 7:
        if (a < 1) return a * a * a / 2 - a * a + 2.0 / 3;
        return a < 2 ? (2 - a) * (2 - a) * (2 - a) / 6 : 0;
    case 6:
    case 11: return a < 1 ? (2 * a - 3) * a * a + 1 : 0;
    case 8:
        if (x == 0) return 1;
        return a < 3 ? sinc(a) * sinc(a / 3) : 0;
    case 9:
        if (a < 1) return (7 * a * a * a - 12 * a * a + 16.0 / 3) / 6;
        return a < 2 ? (-(7.0 / 3) * a * a * a + 12 * a * a - 20 * a + 32.0 / 3) / 6 : 0;
    case 10: return sinc(x);
    case 12: return 0.5 + 0.5 * math.cos(kPi * x);
    default:
        if (a < 1) return ((3 * a - 5) * a * a + 2) / 2;
        return a < 2 ? (((5 - a) * a - 8) * a + 4) / 2 : 0;
    }
}

struct Tap {
    std::size_t index;
    double weight;
};

inline std::vector<Tap> FilterTaps(unsigned mode, double position, double sourceSize, double destSize,
                                   const PlainResizeMath& math)
{
    const double scale = destSize / sourceSize, centre = position / scale, support = FilterSupport(mode);
    const double halfWidth = scale < 1 ? support / scale : support, filterScale = scale < 1 ? 1 / scale : 1;
    std::vector<Tap> taps;
    double sum = 0;
    for (double k = std::ceil(centre - halfWidth); k <= std::floor(centre + halfWidth); ++k) {
        const double weight = FilterWeight(mode, (centre - k) / filterScale, math) / filterScale;
        double index = k;
        if (k < 0) index = -k;
        else if (k >= sourceSize) index = 2 * sourceSize - k - 1;
        taps.push_back({std::size_t(std::clamp(index, 0.0, sourceSize - 1)), weight});
        sum += weight;
    }
    if (sum != 0) {
        for (Tap& tap : taps) tap.weight /= sum;
    }
    return taps;
}

// `sampleAt(index)` is the sample of this channel there.
template <class SampleAt>
std::uint8_t WeighTaps(const std::vector<Tap>& taps, SampleAt sampleAt)
{
    const std::uint8_t first = sampleAt(taps[0].index);
    bool isSame = true;
    double sum = 0;
    for (const Tap& tap : taps) {
        isSame = isSame && sampleAt(tap.index) == first;
        sum += sampleAt(tap.index) * tap.weight;
    }
    return isSame ? first : std::uint8_t(std::clamp(std::trunc(sum), 0.0, 255.0));
}

// The part of the source that a destination index covers.
struct Coverage {
    std::size_t first, last;
    double firstWeight, lastWeight;

    Coverage(double index, double ratio)
    {
        const double start = index * ratio, end = start + ratio;
        first = std::size_t(start);
        last = std::size_t(end + 0.99999999999);
        firstWeight = 1 - (start - double(first));
        lastWeight = end - std::trunc(end);
        if (lastWeight == 0) lastWeight = 1;
    }
};

// Four taps of the cubic convolution; the last one is subtracted.
struct CubicTaps {
    std::size_t index[4];
    double weight[4];

    CubicTaps(double position, double size)
    {
        const double x = std::min(position, size - 1), whole = std::trunc(x), t = x - whole;
        weight[0] = -((1 - t) * t * (1 - t));
        weight[1] = 1 - 2 * t * t + t * t * t;
        weight[2] = (t + 1 - t * t) * t;
        weight[3] = (1 - t) * t * t;
        const std::size_t c = std::size_t(whole);
        index[0] = x < 1 ? 0 : c - 1;
        index[1] = x >= size - 1 ? std::size_t(size) - 1 : c;
        index[2] = x >= size - 2 ? index[1] : c + 1;
        index[3] = x >= size - 3 ? index[2] : c + 2;
    }

    template <class ValueAt>
    double Sum(ValueAt valueAt) const
    {
        return valueAt(index[1]) * weight[1] + valueAt(index[0]) * weight[0] + valueAt(index[2]) * weight[2] -
               valueAt(index[3]) * weight[3];
    }
};

inline double BilinearStep(double sourceSize, double destSize)
{
    return sourceSize < destSize ? (sourceSize - sourceSize / destSize) / destSize : sourceSize / destSize;
}

}  // namespace plain

template <class T>
class PlainResizer {
public:
    PlainResizer(const PlainResizeImage<const T>& source, const PlainResizeImage<T>& destination, std::size_t channels,
                 const PlainResizeMath& math, PlainResizeReport report)
        : src_(source), dst_(destination), channels_(channels), math_(math), report_(std::move(report))
    {
    }

    // The error code.
    std::uint32_t Run(unsigned mode)
    {
        if (mode < 14) return Filtered(mode);
        switch (mode) {
        case 14: return BlockAverage();
        case 15: {
            const bool isEven = src_.width % dst_.width == 0 && src_.height % dst_.height == 0;
            return sizeof(T) == 1 && isEven ? BlockAverage() : AreaAverage();
        }
        case 16: return IsPlainCopy() ? Copy() : Bilinear();
        case 17: return IsPlainCopy() ? Copy() : Bicubic();
        default: return IsPlainCopy() ? Copy() : Nearest();
        }
    }

private:
    static constexpr std::uint32_t kCancelled = 14, kTooSmall = 68, kBadArgument = 5;
    static constexpr double kTop = std::numeric_limits<T>::max();

    T Source(std::size_t x, std::size_t y, std::size_t c) const
    {
        return src_.samples[y * src_.stride + x * channels_ + c];
    }
    T& Destination(std::size_t x, std::size_t y, std::size_t c)
    {
        return dst_.samples[y * dst_.stride + x * channels_ + c];
    }

    bool IsSameSize() const { return src_.width == dst_.width && src_.height == dst_.height; }
    bool IsPlainCopy() const { return IsSameSize() && src_.stride == dst_.stride; }
    std::uint32_t Copy()
    {
        std::copy_n(src_.samples, src_.height * src_.stride, dst_.samples);
        return 0;
    }

    // Calls make(x, y, c) for every sample, a report a row.
    template <class Make>
    std::uint32_t EachRow(Make make)
    {
        for (std::uint32_t y = 0; y < dst_.height; ++y) {
            for (std::size_t x = 0; x < dst_.width; ++x) {
                for (std::size_t c = 0; c < channels_; ++c) Destination(x, y, c) = make(x, y, c);
            }
            if (!report_(y, dst_.height)) return kCancelled;
        }
        return 0;
    }

    std::uint32_t Filtered(unsigned mode)
    {
        const auto need = std::uint32_t(plain::FilterSupport(mode) + 0.999999999);
        if (dst_.width < need || dst_.height < need) return kTooSmall;
        for (std::uint32_t x = 0; x < dst_.width; ++x) {
            const auto across = plain::FilterTaps(mode, x, src_.width, dst_.width, math_);
            std::vector<std::uint8_t> column(src_.height * channels_);
            for (std::size_t y = 0; y < src_.height; ++y) {
                for (std::size_t c = 0; c < channels_; ++c) {
                    column[y * channels_ + c] =
                        plain::WeighTaps(across, [&](std::size_t k) { return std::uint8_t(Source(k, y, c)); });
                }
            }
            for (std::uint32_t y = 0; y < dst_.height; ++y) {
                const auto down = plain::FilterTaps(mode, y, src_.height, dst_.height, math_);
                for (std::size_t c = 0; c < channels_; ++c) {
                    Destination(x, y, c) =
                        plain::WeighTaps(down, [&](std::size_t k) { return column[k * channels_ + c]; });
                }
            }
            if (!report_(x, dst_.width)) return kCancelled;
        }
        return 0;
    }

    std::uint32_t BlockAverage()
    {
        const double rx = double(src_.width) / dst_.width, ry = double(src_.height) / dst_.height;
        if (rx * ry > double(std::numeric_limits<std::uint32_t>::max() / std::uint32_t(kTop))) return kBadArgument;
        if (IsSameSize()) {
            const std::size_t count = std::min(src_.stride, dst_.stride);
            for (std::size_t y = 0; y < src_.height; ++y) {
                std::copy_n(src_.samples + y * src_.stride, count, dst_.samples + y * dst_.stride);
            }
            return 0;
        }
        const std::size_t side = std::min(std::size_t(rx), std::size_t(ry));
        const auto positions = [](std::size_t count, double ratio) {
            std::vector<std::size_t> list;
            double position = 0;
            for (std::size_t i = 0; i < count; ++i, position += ratio) list.push_back(std::size_t(position));
            return list;
        };
        const auto left = positions(dst_.width, rx), top = positions(dst_.height, ry);
        return EachRow([&](std::size_t x, std::size_t y, std::size_t c) {
            std::uint32_t sum = 0;
            for (std::size_t j = 0; j < side; ++j) {
                for (std::size_t i = 0; i < side; ++i) sum += Source(left[x] + i, top[y] + j, c);
            }
            return T(sum / std::uint32_t(side * side));
        });
    }

    std::uint32_t AreaAverage()
    {
        const double rx = double(src_.width) / dst_.width, ry = double(src_.height) / dst_.height;
        return EachRow([&](std::size_t x, std::size_t y, std::size_t c) {
            const plain::Coverage across(double(x), rx), down(double(y), ry);
            const double norm = double(across.last - across.first) - 2 + across.firstWeight + across.lastWeight;
            double sum = 0, rowWeights = 0;
            for (std::size_t j = down.first; j < down.last; ++j) {
                double rowWeight = 1;
                if (j == down.first) rowWeight = down.firstWeight;
                else if (j == down.last - 1) rowWeight = down.lastWeight;
                rowWeights += rowWeight;
                for (std::size_t i = across.first; i < across.last; ++i) {
                    // Where rounding makes the last column begin at the source's end, nothing is read there.
                    const double sample =
                        Source(std::min<std::size_t>(i, src_.width - 1), std::min<std::size_t>(j, src_.height - 1), c);
                    if (i == across.first) sum += sample * (across.firstWeight * rowWeight);
                    else if (i == across.last - 1) sum += sample * (rowWeight * across.lastWeight);
                    else sum += sample * rowWeight;
                }
            }
            return T(sum / (norm * rowWeights));
        });
    }

    std::uint32_t Bilinear()
    {
        const double stepX = plain::BilinearStep(src_.width, dst_.width);
        const double stepY = plain::BilinearStep(src_.height, dst_.height);
        const auto limit = [](double value, std::uint32_t size) { return std::size_t(std::min(value, size - 1.0)); };
        return EachRow([&](std::size_t i, std::size_t j, std::size_t c) {
            const double x = double(i) * stepX, y = double(j) * stepY;
            const double fx = x - std::trunc(x), fy = y - std::trunc(y);
            const std::size_t left = limit(std::trunc(x), src_.width), upper = limit(std::trunc(y), src_.height);
            const std::size_t right = limit(double(left) + 1, src_.width);
            const std::size_t lower = limit(std::trunc(y) + 1, src_.height);
            return T(Source(right, upper, c) * (fx * (1 - fy)) + Source(left, upper, c) * ((1 - fx) * (1 - fy)) +
                     Source(right, lower, c) * (fx * fy) + Source(left, lower, c) * ((1 - fx) * fy));
        });
    }

    std::uint32_t Bicubic()
    {
        const double rx = double(src_.width) / dst_.width, ry = double(src_.height) / dst_.height;
        return EachRow([&](std::size_t x, std::size_t y, std::size_t c) {
            const plain::CubicTaps across(double(x) * rx, src_.width), down(double(y) * ry, src_.height);
            const double value = down.Sum([&](std::size_t row) {
                return across.Sum([&](std::size_t column) { return double(Source(column, row, c)); });
            });
            return T(std::clamp(std::trunc(value), 0.0, kTop));
        });
    }

    std::uint32_t Nearest()
    {
        for (std::uint32_t c = 0; c < channels_; ++c) {
            std::uint32_t rowProduct = 0;
            for (std::size_t y = 0; y < dst_.height; ++y, rowProduct += src_.height) {
                std::uint32_t columnProduct = 0;
                for (std::size_t x = 0; x < dst_.width; ++x, columnProduct += src_.width) {
                    Destination(x, y, c) = Source(columnProduct / dst_.width, rowProduct / dst_.height, c);
                }
            }
            if (!report_(c, std::uint32_t(channels_))) return kCancelled;
        }
        return 0;
    }

    const PlainResizeImage<const T> src_;
    const PlainResizeImage<T> dst_;
    const std::size_t channels_;
    const PlainResizeMath math_;
    const PlainResizeReport report_;
};
