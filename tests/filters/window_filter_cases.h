// The window statistic filters as rows of a table, with their plain twins.
#pragma once

#include "plain/plain_window_filters.h"
#include "runtime/math.h"
#include "support/bytes.h"

#include "zlv40.h"

#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zlvtest {

struct WindowCase {
    const std::uint8_t* src;
    std::uint32_t width, height;
    std::uint8_t* dst;
    std::uint32_t channels, srcStride, dstStride;
    std::int32_t filterSize;
    std::uint32_t mask;

    PlainWindowImage Plain(std::uint8_t* out) const
    {
        return {src, width, height, out, channels, srcStride, dstStride, filterSize, mask};
    }
};

struct WindowFilter {
    std::string name;
    std::function<std::uint32_t(const WindowCase&)> apply;
    std::function<void(const PlainWindowImage&)> plain;
    std::int32_t largestSize = std::numeric_limits<std::int32_t>::max();
    bool reportsRows = false;  // otherwise channels
};

template <class Export, class... Extra>
std::uint32_t CallWindowFilter(Export function, const WindowCase& c, Extra... extra)
{
    return function(c.src, c.width, c.height, c.dst, c.channels, c.srcStride, c.dstStride, c.filterSize, extra...,
                    c.mask);
}

inline WindowFilter Minimum()
{
    return {"minimum", [](const WindowCase& c) { return CallWindowFilter(ZLV40_MinimumFilter, c); }, PlainMinimum};
}

inline WindowFilter Maximum()
{
    return {"maximum", [](const WindowCase& c) { return CallWindowFilter(ZLV40_MaximumFilter, c); }, PlainMaximum};
}

inline WindowFilter Midpoint()
{
    return {"midpoint", [](const WindowCase& c) { return CallWindowFilter(ZLV40_MidpointFilter, c); }, PlainMidpoint};
}

inline WindowFilter ArithmeticMean()
{
    return {"arithmetic mean", [](const WindowCase& c) { return CallWindowFilter(ZLV40_ArithmeticMeanFilter, c); },
            PlainArithmeticMean, 4103};
}

inline WindowFilter GeometricMean()
{
    return {"geometric mean", [](const WindowCase& c) { return CallWindowFilter(ZLV40_GeometricMeanFilter, c); },
            [](const PlainWindowImage& image) { PlainGeometricMean(image, zlv::Pow); }, 46339};
}

inline WindowFilter HarmonicMean()
{
    return {"harmonic mean", [](const WindowCase& c) { return CallWindowFilter(ZLV40_HarmonicMeanFilter, c); },
            PlainHarmonicMean, 46339, true};
}

inline WindowFilter PowerMean(std::int32_t order)
{
    return {"power mean of order " + std::to_string(order),
            [=](const WindowCase& c) { return CallWindowFilter(ZLV40_YpMeanFilter, c, order); },
            [=](const PlainWindowImage& image) { PlainYpMean(image, order, zlv::Pow); }, 46339, true};
}

inline WindowFilter Sharpen(double amount)
{
    return {"sharpening by " + std::to_string(amount),
            [=](const WindowCase& c) { return CallWindowFilter(ZLV40_SharpenImage, c, amount); },
            [=](const PlainWindowImage& image) { PlainSharpen(image, amount); }, 2901};
}

inline WindowFilter Blur(double amount)
{
    return {"blurring by " + std::to_string(amount),
            [=](const WindowCase& c) { return CallWindowFilter(ZLV40_BlurImage, c, amount); },
            [=](const PlainWindowImage& image) { PlainBlur(image, amount); }, 4103};
}

// One of each export.
inline std::vector<WindowFilter> WindowFilters()
{
    return {Midpoint(),     Minimum(),    Maximum(),     ArithmeticMean(), GeometricMean(),
            HarmonicMean(), PowerMean(2), PowerMean(-1), Sharpen(0.05),    Blur(0.6)};
}

// With the parameters that lead somewhere else.
inline std::vector<WindowFilter> AllWindowFilters()
{
    std::vector<WindowFilter> all = WindowFilters();
    for (const std::int32_t order : {1, 3, 4, 5, 6, 0, -2, -7, 200, -200}) all.push_back(PowerMean(order));
    for (const double amount : {-0.3, 0.0, 1.7, 1e300}) all.push_back(Sharpen(amount));
    for (const double amount : {-2.0, 0.0, 1.0 / 49, 0.5, 1.0, 7.0}) all.push_back(Blur(amount));
    return all;
}

// Runs the filter and its twin over a random image of `levels` neighbouring levels and compares.
struct WindowComparison {
    std::uint32_t width, height, channels;
    std::int32_t filterSize;
    std::uint32_t mask = 0xFF;
    std::uint32_t padding = 3;
    std::uint32_t lowest = 0, levels = 256;

    std::uint32_t SrcStride() const { return width * channels + padding; }
    std::uint32_t DstStride() const { return width * channels + 2 * padding; }

    Bytes Source() const
    {
        Random random(width * 31 + height * 7 + channels + levels);
        Bytes src(std::size_t(SrcStride()) * height);
        for (std::uint8_t& sample : src) sample = std::uint8_t(lowest + random.Below(levels));
        return src;
    }

    void Expect(const WindowFilter& filter) const
    {
        SCOPE(filter.name, width, "x", height, "channels", channels, "window", filterSize, "mask", mask, "levels",
              lowest, levels);
        const Bytes src = Source();
        Bytes wanted = RandomBytes(std::size_t(DstStride()) * height, 5);
        Bytes got = wanted;
        const WindowCase call = {src.data(),  width,       height,     got.data(), channels,
                                 SrcStride(), DstStride(), filterSize, mask};
        filter.plain(call.Plain(wanted.data()));
        EXPECT_EQ(filter.apply(call), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

}  // namespace zlvtest
