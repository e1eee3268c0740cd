// The effects that change each pixel by itself, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_hsv.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Calls change(pixel) for the pixels of an image, the rows from the top.
template <class Change>
void PlainForPixels(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                    std::size_t stride, Change change)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) change(image + y * stride + x * channels);
    }
}

// The nearest of eight colours, by a search through all of them; the first of equals.
inline void PlainPosterize(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t stride)
{
    static constexpr int kCorners[8][3] = {{0, 0, 0},     {0, 0, 255},   {0, 255, 0},   {255, 0, 0},
                                           {0, 255, 255}, {255, 255, 0}, {255, 0, 255}, {255, 255, 255}};
    PlainForPixels(image, width, height, 3, stride, [](std::uint8_t* pixel) {
        int best = 3 * 256 * 256;
        const int* nearest = nullptr;
        for (const auto& corner : kCorners) {
            int distance = 0;
            for (int c = 0; c < 3; ++c) distance += (corner[c] - pixel[c]) * (corner[c] - pixel[c]);
            if (distance >= best) continue;
            best = distance;
            nearest = corner;
        }
        for (int c = 0; c < 3; ++c) pixel[c] = std::uint8_t(nearest[c]);
    });
}

inline void PlainSolarize(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                          std::size_t stride, bool protectsAlpha)
{
    PlainForPixels(image, width, height, channels, stride, [=](std::uint8_t* pixel) {
        for (std::size_t c = 0; c < channels; ++c) {
            if (protectsAlpha && channels == 4 && c == 3) continue;
            if (pixel[c] >= 127) pixel[c] = std::uint8_t(255 - pixel[c]);
        }
    });
}

inline void PlainThreshold(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                           std::size_t stride, std::uint32_t low, std::uint32_t high, std::uint32_t mask)
{
    PlainForPixels(image, width, height, channels, stride, [=](std::uint8_t* pixel) {
        for (std::size_t c = 0; c < channels; ++c) {
            if (!(mask >> c & 1)) continue;
            if (pixel[c] < low) pixel[c] = 0;
            else if (pixel[c] >= high) pixel[c] = 255;
        }
    });
}

// The cosine and sine of the angle are the caller's.
inline void PlainTint(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                      std::size_t stride, double cosine, double sine, bool isBgr)
{
    const auto clamped = [](int value) { return std::uint8_t(value < 0 ? 0 : value > 255 ? 255 : value); };
    const std::size_t red = isBgr ? 2 : 0, blue = isBgr ? 0 : 2;
    PlainForPixels(image, width, height, channels, stride, [=](std::uint8_t* pixel) {
        const int r = pixel[red], g = pixel[1], b = pixel[blue];
        const int y = (30 * r + 59 * g + 11 * b) / 100;
        const int i = (70 * r - 59 * g - 11 * b) / 100;
        const int q = (89 * b - 30 * r - 59 * g) / 100;
        const int i2 = int((i * (cosine * 256) + q * (sine * 256)) * 0.00390625);
        const int q2 = int((q * (cosine * 256) - i * (sine * 256)) * 0.00390625);
        pixel[red] = clamped(i2 + y);
        pixel[blue] = clamped(q2 + y);
        pixel[1] = clamped(y - int((51 * i2 + 19 * q2) / 100.0));
    });
}

inline void PlainTintGray(const std::uint8_t* gray, std::size_t width, std::size_t height, std::size_t grayStride,
                          std::uint8_t* image, std::size_t channels, std::size_t stride, std::uint32_t color,
                          bool isBgr)
{
    const int bytes[3] = {int(color & 255), int(color >> 8 & 255), int(color >> 16 & 255)};
    const PlainHsv tint = PlainRgbToHsv(bytes[isBgr ? 2 : 0], bytes[1], bytes[isBgr ? 0 : 2]);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const PlainRgb rgb = PlainHsvToRgb(tint.h, tint.s, gray[y * grayStride + x]);
            std::uint8_t* const pixel = image + y * stride + x * channels;
            pixel[0] = std::uint8_t(rgb.r);
            pixel[1] = std::uint8_t(rgb.g);
            pixel[2] = std::uint8_t(rgb.b);
        }
    }
}

inline void PlainDuotone(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                         std::size_t stride, std::uint32_t color, bool isBgr)
{
    const double bytes[3] = {double(color & 255), double(color >> 8 & 255), double(color >> 16 & 255)};
    const double h =
        PlainRgbToHsv(bytes[isBgr ? 2 : 0] * 0.00390625, bytes[1] * 0.00390625, bytes[isBgr ? 0 : 2] * 0.00390625).h;
    PlainForPixels(image, width, height, channels, stride, [=](std::uint8_t* pixel) {
        double sum = 0.587 * pixel[1] + 0.299 * pixel[0];
        sum = sum + 0.114 * pixel[2];
        const double luminance = sum * 0.00390625;
        const PlainRgb rgb = PlainHsvToRgb(h, 1 - luminance, luminance);
        pixel[0] = std::uint8_t(int(rgb.r * 256));
        pixel[1] = std::uint8_t(int(rgb.g * 256));
        pixel[2] = std::uint8_t(int(rgb.b * 256));
    });
}

// The sliders of one range of tones.
struct PlainSliders {
    int red, green, blue;
};

inline std::vector<int> PlainLimited(const PlainSliders& sliders)
{
    std::vector<int> limited = {sliders.red, sliders.green, sliders.blue};
    for (int& value : limited) value = value < -128 ? -128 : value > 128 ? 128 : value;
    return limited;
}

inline std::vector<int> PlainRaised(std::vector<int> values)
{
    const int smallest = *std::min_element(values.begin(), values.end());
    for (int& value : values) value -= smallest < 0 ? smallest : 0;
    return values;
}

// What level i of colour c becomes.
inline std::uint8_t PlainBalanced(int i, std::size_t c, const PlainSliders& middle, const PlainSliders& shadow,
                                  const PlainSliders& high, std::int64_t brightness)
{
    const std::vector<int> m = PlainLimited(middle);
    const std::vector<int> s = PlainRaised(PlainLimited(shadow)), h = PlainRaised(PlainLimited(high));
    const std::size_t other = (c + 1) % 3, another = (c + 2) % 3;
    const int weight = 128 - (i < 128 ? 128 - i : i - 128);
    const std::int64_t t = std::int64_t(m[c] - m[other] - m[another]) * weight -
                           std::int64_t(s[other] + s[another]) * (255 - i) + std::int64_t(h[c]) * i -
                           8 * weight * brightness;
    const std::int64_t level = i + t / 255;
    return std::uint8_t(level < 0 ? 0 : level > 255 ? 255 : level);
}

inline void PlainBalance(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t channels,
                         std::size_t stride, const PlainSliders& middle, const PlainSliders& shadow,
                         const PlainSliders& high, std::int64_t brightness, bool isAlphaFirst)
{
    PlainForPixels(image, width, height, channels, stride, [&](std::uint8_t* pixel) {
        const std::uint8_t before[4] = {pixel[0], pixel[1], pixel[2], channels == 4 ? pixel[3] : std::uint8_t(0)};
        for (std::size_t color = 0; color < 3; ++color) {
            const std::size_t c = isAlphaFirst && color == 0 ? 3 : color;
            if (c < channels) pixel[c] = PlainBalanced(before[c], color, middle, shadow, high, brightness);
        }
    });
}
