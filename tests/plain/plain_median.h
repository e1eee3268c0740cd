// Medians of square windows, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <utility>
#include <vector>

// The element of the middle rank; reorders the array.
inline int PlainSelectMedian(std::vector<int>& a)
{
    const long long wanted = (static_cast<long long>(a.size()) - 1) / 2;
    const auto at = [&](long long i) -> int& { return a[std::size_t(i)]; };
    const auto order = [](int& smaller, int& larger) {
        if (smaller > larger) std::swap(smaller, larger);
    };
    long long low = 0, high = static_cast<long long>(a.size()) - 1;
    while (high > low + 1) {
        const long long middle = (low + high) / 2;
        order(at(middle), at(high));
        order(at(low), at(high));
        order(at(middle), at(low));
        std::swap(at(middle), at(low + 1));
        const int pivot = at(low);
        long long i = low + 1, j = high;
        for (;;) {
            do ++i;
            while (at(i) < pivot);
            do --j;
            while (at(j) > pivot);
            if (j < i) break;
            std::swap(at(i), at(j));
        }
        std::swap(at(low), at(j));
        if (j <= wanted) low = j + 1;
        if (j >= wanted) high = j - 1;
    }
    if (high == low + 1) order(at(low), at(high));
    return at(wanted);
}

// A histogram of the window, the median that walks over it, and how many samples lie below.
struct PlainWalk {
    std::array<long long, 257> histogram{};
    int median = 0;
    long long belowMedian = 0;

    void Seed(int seed)
    {
        median = seed;
        belowMedian = 0;
        for (int v = 0; v < median; ++v) belowMedian += histogram[std::size_t(v)];
    }

    void Replace(int leaving, int entering)
    {
        --histogram[std::size_t(leaving)];
        if (leaving < median) --belowMedian;
        ++histogram[std::size_t(entering)];
        if (entering < median) ++belowMedian;
    }

    void Move(long long half)
    {
        if (belowMedian > half) {
            do StepDown();
            while (belowMedian > half && median != 0);
        } else {
            do {
                belowMedian += histogram[std::size_t(median)];
                ++median;
            } while (belowMedian <= half && median != 255);
            StepDown();
        }
    }

    void StepDown()
    {
        belowMedian -= histogram[std::size_t(median - 1)];
        --median;
    }
};

// The running median of every pixel of one channel, row by row.
class PlainRunningMedian {
public:
    using Sample = std::function<int(long long x, long long y)>;

    PlainRunningMedian(long long width, long long height, long long side, Sample sample)
        : width_(width), height_(height), side_(side), half_(side / 2), sample_(std::move(sample))
    {
    }

    std::vector<int> Row(long long y) const
    {
        PlainWalk walk;
        std::vector<int> window;  // column after column, a ring
        for (long long slot = 0; slot < side_; ++slot) {
            for (long long j = 0; j < side_; ++j) {
                window.push_back(At(slot - half_, y + j - half_));
                ++walk.histogram[std::size_t(window.back())];
            }
        }
        std::vector<int> scratch = window;
        walk.Seed(PlainSelectMedian(scratch));
        std::vector<int> medians = {walk.median};
        for (long long x = 1; x < width_; ++x) {
            const long long slot = (x - 1) % side_;
            for (long long j = 0; j < side_; ++j) {
                int& place = window[std::size_t(slot * side_ + j)];
                const int entering = At(x + half_, y + j - half_);
                walk.Replace(place, entering);
                place = entering;
            }
            walk.Move(side_ * side_ / 2);
            medians.push_back(walk.median);
        }
        return medians;
    }

    // The same for windows too large to be listed: each image sample counts as often as the window meets it.
    std::vector<int> RowByWeights(long long y) const
    {
        std::vector<int> medians;
        PlainWalk walk;
        for (long long x = 0; x < width_; ++x) {
            walk.histogram.fill(0);
            for (long long v = 0; v < height_; ++v) {
                for (long long u = 0; u < width_; ++u) {
                    walk.histogram[std::size_t(sample_(u, v))] += Times(u, x, width_) * Times(v, y, height_);
                }
            }
            if (x == 0) {
                int median = 0;
                for (long long sum = walk.histogram[0]; sum <= side_ * side_ / 2;)
                    sum += walk.histogram[std::size_t(++median)];
                walk.Seed(median);
            } else {
                walk.Seed(walk.median);
                walk.Move(side_ * side_ / 2);
            }
            medians.push_back(walk.median);
        }
        return medians;
    }

private:
    long long width_, height_, side_, half_;
    Sample sample_;

    int At(long long x, long long y) const
    {
        return sample_(std::clamp(x, 0LL, width_ - 1), std::clamp(y, 0LL, height_ - 1));
    }

    // How often the window around `centre` meets `place`: what lies beyond the ends is the end.
    long long Times(long long place, long long centre, long long count) const
    {
        const long long first = centre - half_, last = centre + half_;
        long long times = first <= place && place <= last;
        if (place == 0) times += std::max(0 - first, 0LL);
        if (place == count - 1) times += std::max(last - (count - 1), 0LL);
        return times;
    }
};

inline long long PlainOddSide(long long filterSize)
{
    const long long atLeastOne = std::max(filterSize, 1LL);
    return atLeastOne % 2 == 0 ? atLeastOne + 1 : atLeastOne;
}

struct PlainMedianBlend {
    std::uint32_t threshold;
    double amount;

    int Threshold() const { return int(std::min(threshold, 255u)); }
    int Weight() const { return int(std::clamp(amount, 0.0, 1.0) * 255); }

    std::uint8_t Apply(int v, int median) const
    {
        if (std::abs(v - median) <= Threshold()) return std::uint8_t(v);
        return std::uint8_t(v + ((median - v) * Weight() + 128) / 255);
    }
};

struct PlainMedianImage {
    const std::uint8_t* src;
    long long width, height;
    std::uint8_t* dst;
    long long channels, srcStride, dstStride;
    long long filterSize;

    int At(long long x, long long y, long long channel) const { return src[y * srcStride + x * channels + channel]; }
    std::uint8_t& Out(long long x, long long y, long long channel) const
    {
        return dst[y * dstStride + x * channels + channel];
    }
};

inline void PlainDustAndScratches(const PlainMedianImage& image, const PlainMedianBlend& blend, std::uint32_t mask)
{
    constexpr long long kLargestListed = 255;
    const long long side = PlainOddSide(image.filterSize);
    for (long long c = 0; c < image.channels; ++c) {
        if (((mask >> c) & 1) == 0) continue;
        const PlainRunningMedian running(image.width, image.height, side,
                                         [&](long long x, long long y) { return image.At(x, y, c); });
        for (long long y = 0; y < image.height; ++y) {
            const std::vector<int> medians = side <= kLargestListed ? running.Row(y) : running.RowByWeights(y);
            for (long long x = 0; x < image.width; ++x) {
                const int median = medians[std::size_t(x)];
                image.Out(x, y, c) =
                    blend.threshold == 0 ? std::uint8_t(median) : blend.Apply(image.At(x, y, c), median);
            }
        }
    }
}

// Two tiers of 16 counters.
struct PlainTiers {
    std::array<int, 16> coarse{};
    std::array<std::array<int, 16>, 16> fine{};
};

// The median in constant time, one channel.
class PlainConstantTimeMedian {
public:
    PlainConstantTimeMedian(const PlainMedianImage& image, long long channel, std::uint32_t padFlags)
        : image_(image),
          channel_(channel),
          r_((image.filterSize - 1) / 2),
          padLeft_(padFlags & 1),
          padRight_(padFlags & 2),
          columns_(std::size_t(image.width))
    {
    }

    // Calls write(x, y, median).
    template <class Write>
    void Run(Write write)
    {
        for (long long x = 0; x < image_.width; ++x) {
            Count(x, 0, int(r_ + 1));
            for (long long y = 0; y < r_; ++y) Count(x, y, 1);
        }
        for (long long y = 0; y < image_.height; ++y) {
            for (long long x = 0; x < image_.width; ++x) {
                Count(x, std::max(0LL, y - r_ - 1), -1);
                Count(x, std::min(image_.height - 1, y + r_), 1);
            }
            Row([&](long long x, int median) { write(x, y, median); });
        }
    }

private:
    const PlainMedianImage& image_;
    const long long channel_, r_;
    const bool padLeft_, padRight_;
    std::vector<PlainTiers> columns_;

    void Count(long long x, long long y, int times)
    {
        const int sample = image_.At(x, y, channel_);
        PlainTiers& column = columns_[std::size_t(x)];
        column.coarse[std::size_t(sample / 16)] += times;
        column.fine[std::size_t(sample / 16)][std::size_t(sample % 16)] += times;
    }

    static void Add(std::array<int, 16>& sum, const std::array<int, 16>& counts, long long times)
    {
        for (std::size_t i = 0; i < 16; ++i) sum[i] += counts[i] * int(times);
    }

    template <class Write>
    void Row(Write write)
    {
        const long long width = image_.width, t = 2 * r_ * r_ + 2 * r_;
        const auto coarse = [&](long long x) -> const auto& { return columns_[std::size_t(x)].coarse; };
        const auto fine = [&](long long x, std::size_t b) -> const auto& { return columns_[std::size_t(x)].fine[b]; };
        PlainTiers kernel;
        std::array<long long, 16> lastUpdatedColumn{};
        if (padLeft_) Add(kernel.coarse, coarse(0), r_);
        for (long long x = 0; x < (padLeft_ ? r_ : 2 * r_); ++x) Add(kernel.coarse, coarse(x), 1);
        for (std::size_t b = 0; b < 16; ++b) Add(kernel.fine[b], fine(0, b), 2 * r_ + 1);

        for (long long x = padLeft_ ? 0 : r_; x <= (padRight_ ? width - 1 : width - r_ - 1); ++x) {
            Add(kernel.coarse, coarse(std::min(x + r_, width - 1)), 1);
            long long sum = 0;
            std::size_t b = 0;
            while ((sum += kernel.coarse[b]) <= t) ++b;
            sum -= kernel.coarse[b];

            long long& last = lastUpdatedColumn[b];
            if (last <= x - r_) {
                kernel.fine[b].fill(0);
                for (last = x - r_; last < std::min(x + r_ + 1, width); ++last) Add(kernel.fine[b], fine(last, b), 1);
                if (last < x + r_ + 1) {
                    Add(kernel.fine[b], fine(width - 1, b), x + r_ + 1 - width);
                    last = x + r_ + 1;
                }
            } else {
                for (; last < x + r_ + 1; ++last) {
                    Add(kernel.fine[b], fine(std::max(last - 2 * r_ - 1, 0LL), b), -1);
                    Add(kernel.fine[b], fine(std::min(last, width - 1), b), 1);
                }
            }
            Add(kernel.coarse, coarse(std::max(x - r_, 0LL)), -1);
            std::size_t k = 0;
            while ((sum += kernel.fine[b][k]) <= t) ++k;
            write(x, int(16 * b + k));
        }
    }
};

inline void PlainDustAndScratchesO1(const PlainMedianImage& image, const PlainMedianBlend& blend,
                                    std::uint32_t padFlags)
{
    const bool isOn = blend.Threshold() != 0 && blend.Weight() != 0;
    for (long long c = 0; c < image.channels; ++c) {
        PlainConstantTimeMedian(image, c, padFlags).Run([&](long long x, long long y, int median) {
            image.Out(x, y, c) = isOn ? blend.Apply(image.At(x, y, c), median) : std::uint8_t(median);
        });
    }
}

// The leftmost pixel of a byte is its highest bit.
inline void PlainMedian1Bit(const std::uint8_t* src, long long width, long long height, long long srcStride,
                            std::uint8_t* dst, long long dstStride, long long filterSize)
{
    constexpr long long kLargestListed = 255;
    const auto mask = [](long long x) { return std::uint8_t(1 << (7 - x % 8)); };
    const long long side = PlainOddSide(filterSize);
    const PlainRunningMedian running(width, height, side, [&](long long x, long long y) {
        return (src[y * srcStride + x / 8] & mask(x)) != 0 ? 1 : 0;
    });
    for (long long y = 0; y < height; ++y) {
        const std::vector<int> medians = side <= kLargestListed ? running.Row(y) : running.RowByWeights(y);
        for (long long x = 0; x < width; ++x) {
            std::uint8_t& byte = dst[y * dstStride + x / 8];
            if (medians[std::size_t(x)] == 0) byte = std::uint8_t(byte & ~mask(x));
            else byte = std::uint8_t(byte | mask(x));
        }
    }
}
