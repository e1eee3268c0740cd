// Seam carving, said plainly: every step in its order, over whole images. Slow on purpose; includes nothing of the
// library.
#pragma once

#include "plain/plain_sobel.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

// Elements of a row that are beyond `width` are storage all the same.
template <class T>
struct PlainSeamImage {
    int width = 0, height = 0, channels = 1, stride = 0;
    std::vector<T> elements;

    PlainSeamImage() = default;
    PlainSeamImage(int theWidth, int theHeight, int theChannels, int columns)
        : width(theWidth),
          height(theHeight),
          channels(theChannels),
          stride(columns * theChannels),
          elements(std::size_t(stride) * std::size_t(height))
    {
    }
    T& At(int x, int y, int c = 0)
    {
        return elements[std::size_t(y) * std::size_t(stride) + std::size_t(x * channels + c)];
    }
    T At(int x, int y, int c = 0) const { return const_cast<PlainSeamImage*>(this)->At(x, y, c); }
};

template <class T>
void PlainRemovePixel(PlainSeamImage<T>& image, int x, int y, bool blends)
{
    if (x > image.width - 1) return;
    if (image.channels != 1 && image.channels != 3 && image.channels != 4) return;
    for (int c = 0; c < image.channels; ++c) {
        const std::int64_t here = image.At(x, y, c);
        const bool isStored = (x + 2) * image.channels <= image.stride;
        const std::int64_t next = isStored ? image.At(x + 1, y, c) : here;
        for (int i = x; i < image.width - 1; ++i) image.At(i, y, c) = image.At(i + 1, y, c);
        if (blends) image.At(x, y, c) = T((here + next) / 2);
    }
}

template <class T>
void PlainInsertPixel(PlainSeamImage<T>& image, int x, int y)
{
    if (x > image.width - 1) return;
    if (image.channels != 1 && image.channels != 3 && image.channels != 4) return;
    for (int c = 0; c < image.channels; ++c) {
        const double here = double(image.At(x, y, c)), before = double(image.At(x > 0 ? x - 1 : x, y, c));
        for (int i = image.width; i > x; --i) image.At(i, y, c) = image.At(i - 1, y, c);
        image.At(x, y, c) = T((here + before) * 0.5);
    }
}

inline int PlainEnergyAt(const PlainSeamImage<std::uint8_t>& image, int x, int y)
{
    const int west = x == 0 ? x : x - 1, east = x > image.width - 2 ? x : x + 1;
    const int north = y == 0 ? y : y - 1, south = y > image.height - 2 ? y : y + 1;
    int sum = 0;
    for (int c = 0; c < 3; ++c) {
        const auto at = [&](int column, int row) { return int(image.At(column, row, c)); };
        const int gx =
            2 * (at(west, y) - at(east, y)) + at(west, north) + at(west, south) - at(east, north) - at(east, south);
        const int gy =
            2 * (at(x, north) - at(x, south)) + at(west, north) + at(east, north) - at(west, south) - at(east, south);
        sum += std::min(std::abs(gx) + std::abs(gy), 65535);
    }
    return sum / 3;
}

// Costs wrap as 32-bit numbers do.
inline std::int32_t PlainSum(std::int32_t a, std::int64_t b)
{
    return std::int32_t(std::uint32_t(std::int64_t(a) + b));
}

// Without a bias `bias` has no elements.
inline void PlainCosts(const PlainSeamImage<std::uint16_t>& energy, const PlainSeamImage<std::int32_t>& bias,
                       PlainSeamImage<std::int32_t>& cost, bool isThreaded)
{
    const int w = energy.width;
    const bool hasBias = !bias.elements.empty();
    const auto own = [&](int x, int y) { return std::int64_t(energy.At(x, y)) + (hasBias ? bias.At(x, y) : 0); };
    for (int x = 0; x < w; ++x) cost.At(x, 0) = PlainSum(0, own(x, 0));
    for (int y = 1; y < energy.height; ++y) {
        const auto up = [&](int x) { return cost.At(x, y - 1); };
        cost.At(0, y) = PlainSum(std::min(up(0), up(1)), own(0, y));
        for (int x = 1; x < w - 1; ++x) {
            cost.At(x, y) = PlainSum(std::min({up(x - 1), up(x), up(x + 1)}), own(x, y));
        }
        const bool looksAside = hasBias || isThreaded;
        const std::int32_t above = looksAside ? std::min(up(w - 3), up(w - 2)) : std::min(up(w - 2), up(w - 1));
        cost.At(w - 1, y) = PlainSum(above, own(w - 1, y));
    }
}

inline int PlainDraw(std::uint32_t& state)
{
    state = state * 214013u + 2531011u;
    return int(state >> 16 & 32767);
}

inline std::vector<std::uint32_t> PlainSeam(const PlainSeamImage<std::int32_t>& cost, std::uint32_t& state)
{
    constexpr std::int32_t kInfinite = 2147483647;
    const int w = cost.width, last = cost.height - 1;
    int x = 0;
    for (int i = 1; i < w; ++i) x = cost.At(i, last) < cost.At(x, last) ? i : x;
    std::vector<std::uint32_t> seam(std::size_t(cost.height));
    seam[std::size_t(last)] = std::uint32_t(x);
    for (int y = last - 1; y >= 0; --y) {
        const std::int32_t l = x > 0 ? cost.At(x - 1, y) : kInfinite;
        const std::int32_t c = cost.At(x, y);
        const std::int32_t r = x < w - 1 ? cost.At(x + 1, y) : kInfinite;
        int next = x;
        if (l < c && l < r) next = x - 1;
        else if (r < l && r < c) next = x + 1;
        else if (c < l && c < r) next = x;
        else if (l == c && c < r) next = PlainDraw(state) & 1 ? x - 1 : x;
        else if (l == r && r < c) next = PlainDraw(state) & 1 ? x - 1 : x + 1;
        else if (l == c && c == r) next = PlainDraw(state) & 1 ? x - 1 : x + 1;
        else if (c == r && r < l) next = PlainDraw(state) & 1 ? x : x + 1;
        x = std::clamp(next, 0, w - 1);
        seam[std::size_t(y)] = std::uint32_t(x);
    }
    return seam;
}

struct PlainCarveCall {
    const std::uint8_t* src;
    int width, height, channels;
    std::size_t srcStride;
    const std::uint8_t* mask;  // may be null
    std::size_t maskStride;
    std::uint8_t* dst;
    std::size_t dstStride;
    int seamCount;
    int penalty;
    bool isThreaded;
    std::uint32_t randomState = 1;
};

// Carves a picture that the call accepts, with its seams on the way.
class PlainCarver {
public:
    explicit PlainCarver(const PlainCarveCall& call) : call_(call), randomState_(call.randomState)
    {
        const int columns = call.width + std::max(call.seamCount, 0);
        energy = {call.width, call.height, 1, columns};
        cost = {call.width, call.height, 1, columns};
        working = {call.width, call.height, call.channels, columns};
        const std::size_t pitch = std::size_t(call.width) * std::size_t(call.channels);
        // Packed rows of three-byte pixels, whatever the source's are.
        PlainSobel({call.src, call.width, call.height, 3, pitch, energy.elements.data(), std::size_t(columns), 256},
                   [](std::uint32_t, std::uint32_t) { return true; });
        for (int y = 0; y < call.height; ++y) {
            std::copy_n(call.src + std::size_t(y) * call.srcStride, pitch, &working.At(0, y));
        }
        if (!call.mask) return;
        bias = {call.width, call.height, 1, columns};
        for (int y = 0; y < call.height; ++y) {
            for (int x = 0; x < call.width; ++x) {
                bias.At(x, y) = (call.mask[std::size_t(y) * call.maskStride + std::size_t(x)] - 128) * 255;
            }
        }
    }

    void CarveOne()
    {
        PlainCosts(energy, bias, cost, call_.isThreaded);
        seams.push_back(PlainSeam(cost, randomState_));
        if (call_.seamCount < 0) Remove(seams.back());
        else Insert(seams.back());
        cost.width = working.width;
    }

    void Run()
    {
        for (int i = 0; i < std::abs(call_.seamCount); ++i) CarveOne();
        const std::size_t bytes = std::min(std::size_t(working.stride), call_.dstStride);
        for (int y = 0; y < call_.height; ++y) {
            std::copy_n(&working.At(0, y), bytes, call_.dst + std::size_t(y) * call_.dstStride);
        }
    }

    PlainSeamImage<std::uint8_t> working;
    PlainSeamImage<std::uint16_t> energy;
    PlainSeamImage<std::int32_t> bias, cost;
    std::vector<std::vector<std::uint32_t>> seams;
    std::uint32_t RandomState() const { return randomState_; }

private:
    PlainCarveCall call_;
    std::uint32_t randomState_;

    void SetWidth(int width)
    {
        working.width = energy.width = width;
        if (call_.mask) bias.width = width;
    }

    void Remove(const std::vector<std::uint32_t>& seam)
    {
        for (int y = 0; y < call_.height; ++y) {
            const int s = int(seam[std::size_t(y)]);
            PlainRemovePixel(working, s, y, true);
            PlainRemovePixel(energy, s, y, true);
            if (call_.mask) PlainRemovePixel(bias, s, y, false);
        }
        SetWidth(working.width - 1);
        for (int y = 0; y < call_.height; ++y) {
            const int s = int(seam[std::size_t(y)]), w = working.width;
            if (s < w - 1) energy.At(s, y) = std::uint16_t(PlainEnergyAt(working, s, y));
            if (s < w - 2) energy.At(s + 1, y) = std::uint16_t(PlainEnergyAt(working, s + 1, y));
        }
    }

    void Insert(const std::vector<std::uint32_t>& seam)
    {
        for (int y = 0; y < call_.height; ++y) {
            const int s = int(seam[std::size_t(y)]);
            PlainInsertPixel(working, s, y);
            PlainInsertPixel(energy, s, y);
            if (call_.mask) PlainInsertPixel(bias, s, y);
        }
        SetWidth(working.width + 1);
        for (int y = 0; y < call_.height; ++y) {
            const int s = int(seam[std::size_t(y)]), w = working.width;
            const auto repair = [&](int x) {
                energy.At(x, y) = std::uint16_t(std::min(PlainEnergyAt(working, x, y) + call_.penalty, 65535));
            };
            repair(s);
            if (s > 0) repair(s - 1);
            if (s < w - 1) repair(s + 1);
        }
    }
};
