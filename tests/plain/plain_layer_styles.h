// Layer styles, said plainly: chains of the plain steps. Slow on purpose; includes nothing of the library.
#pragma once

#include "plain/plain_buffer_rows.h"
#include "plain/plain_channels.h"
#include "plain/plain_gaussian_blur.h"
#include "plain/plain_overlay.h"
#include "plain/plain_solid_rect.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

using PlainStyleBytes = std::vector<std::uint8_t>;

inline PlainStyleBytes PlainBlurred(const PlainStyleBytes& from, std::size_t width, std::size_t height,
                                    std::size_t channels, double sigma, unsigned flags, const PlainBlurMath& math)
{
    PlainStyleBytes to(from.size());
    if (sigma <= 0) return from;
    PlainBlur<std::uint8_t>({from.data(), width * channels}, {width, height, channels}, {to.data(), width * channels},
                            sigma, flags, math, [](std::uint32_t, std::uint32_t) { return true; });
    return to;
}

// ---- Drop shadow ------------------------------------------------------------------------------------------------

struct PlainShadow {
    std::int64_t distance, blurPercent, angle;
    std::uint32_t background, color, flags;
};

struct PlainShadowResult {
    std::int64_t width, height;
    std::int64_t imageX = 0, imageY = 0, shadowX = 0, shadowY = 0;
    double sigma;
    PlainStyleBytes pixels;
};

inline PlainShadowResult PlainShadowGeometry(std::int64_t width, std::int64_t height, const PlainShadow& s,
                                             const PlainBlurMath& math)
{
    PlainShadowResult r;
    const double a = std::acos(-1.0) * double(s.angle) / 180;
    const auto dx = std::int64_t(std::trunc(math.sin(a) * double(s.distance)));
    const auto dy = std::int64_t(std::trunc(math.cos(a) * double(s.distance)));
    r.sigma = double(s.blurPercent) / 100.0 * 4.0 + 1.0;
    const auto kernel = std::int64_t(std::trunc(std::ceil(r.sigma * 2.5) * 2.0 + 1.0));
    r.width = std::abs(dx) + kernel + width;
    r.height = std::abs(dy) + kernel + height;
    const std::int64_t h = kernel / 2;
    if (s.angle <= 90) r.imageX = h, r.imageY = h + dy, r.shadowX = h + dx, r.shadowY = h;
    else if (s.angle <= 180) r.imageX = h, r.imageY = h, r.shadowX = h + dx, r.shadowY = h - dy;
    else if (s.angle <= 270) r.imageX = h - dx, r.imageY = h, r.shadowX = h, r.shadowY = h - dy;
    else if (s.angle <= 360) r.imageX = h - dx, r.imageY = h + dy, r.shadowX = h, r.shadowY = h;
    return r;
}

struct PlainStyleImage {
    const std::uint8_t* samples;
    std::int64_t width, height, channels, stride;
};

inline PlainShadowResult PlainDropShadow(const PlainStyleImage& src, const PlainShadow& s, const PlainBlurMath& math)
{
    PlainShadowResult r = PlainShadowGeometry(src.width, src.height, s, math);
    const std::int64_t channels = src.channels, stride = r.width * channels;
    const auto width = std::size_t(r.width), height = std::size_t(r.height);
    r.pixels.assign(std::size_t(stride * r.height), 0);
    const PlainLayer<std::uint8_t> result = {r.pixels.data(), r.width, r.height, channels, stride};
    if (s.flags == 0 || channels != 4) {
        PlainStyleBytes sharp(r.pixels.size());
        const auto fill = [&](std::int64_t left, std::int64_t top, std::int64_t w, std::int64_t h,
                              std::uint32_t color) {
            for (std::int64_t y = top; y < top + h && top >= 0; ++y) {
                for (std::int64_t x = left; x < left + w && left >= 0; ++x) {
                    if (x >= r.width || y >= r.height) continue;
                    for (std::int64_t c = 0; c < channels; ++c) {
                        sharp[std::size_t(y * stride + x * channels + c)] = std::uint8_t(color >> (8 * c));
                    }
                }
            }
        };
        fill(0, 0, r.width, r.height, s.background);
        fill(r.shadowX, r.shadowY, src.width, src.height, s.color);
        r.pixels = PlainBlurred(sharp, width, height, std::size_t(channels), r.sigma, 15, math);
        const PlainLayer<std::uint8_t> blurred = {r.pixels.data(), r.width, r.height, channels, stride};
        const PlainLayer<const std::uint8_t> packed = {src.samples, src.width, src.height, channels,
                                                       src.width * channels};
        PlainVisible(blurred, packed, r.imageX, r.imageY, src.height,
                     [&](std::uint8_t* to, const std::uint8_t* from) { std::copy_n(from, channels, to); });
        return r;
    }
    PlainStyleBytes outline(width * height);
    const PlainLayer<std::uint8_t> plane = {outline.data(), r.width, r.height, 1, r.width};
    const PlainLayer<const std::uint8_t> image = {src.samples, src.width, src.height, 4, src.stride};
    PlainVisible(plane, image, r.shadowX, r.shadowY, src.height,
                 [](std::uint8_t* to, const std::uint8_t* from) { *to = from[3]; });
    outline = PlainBlurred(outline, width, height, 1, r.sigma, 1, math);
    for (std::size_t i = 0; i < outline.size(); ++i) {
        std::uint8_t* const pixel = r.pixels.data() + 4 * i;
        for (int c = 0; c < 3 && (s.flags & 2); ++c) pixel[c] = std::uint8_t(s.color >> (8 * c));
        pixel[3] = outline[i];
    }
    PlainVisible(result, image, r.imageX, r.imageY, src.height,
                 [](std::uint8_t* to, const std::uint8_t* from) { PlainMergePixel(to, from, from[3], 4, true); });
    return r;
}

// ---- Bevel ------------------------------------------------------------------------------------------------------

struct PlainBevelShades {
    std::int64_t bevelWidth;
    double left, top, right, bottom, blur;
};

inline PlainStyleBytes PlainShadePlane(std::int64_t width, std::int64_t height, const PlainBevelShades& b,
                                       const PlainBlurMath& math)
{
    PlainStyleBytes plane(std::size_t(width * height), 100);
    const auto shade = [](double s) { return std::uint8_t(std::trunc(std::clamp(s, 0.0, 255.0))); };
    const auto at = [&](std::int64_t x, std::int64_t y) -> std::uint8_t& { return plane[std::size_t(y * width + x)]; };
    for (std::int64_t i = 0; i < b.bevelWidth; ++i) {
        for (std::int64_t y = i + 1; y <= height - i - 2; ++y) {
            at(i, y) = shade(b.left);
            at(width - 1 - i, y) = shade(b.right);
        }
        for (std::int64_t x = i; x <= width - i - 1; ++x) {
            at(x, i) = shade(b.top);
            at(x, height - 1 - i) = shade(b.bottom);
        }
    }
    if (b.blur == 0) return plane;
    return PlainBlurred(plane, std::size_t(width), std::size_t(height), 1, b.blur / 100.0, 1, math);
}

// The rows above `rows`.
inline void PlainBevel(std::uint8_t* image, std::int64_t width, std::int64_t height, std::int64_t channels,
                       std::int64_t stride, bool protectsAlpha, const PlainBevelShades& b, const PlainBlurMath& math)
{
    const PlainStyleBytes plane = PlainShadePlane(width, height, b, math);
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            const double k = plane[std::size_t(y * width + x)] / 100.0;
            for (std::int64_t c = 0; c < (protectsAlpha && channels == 4 ? 3 : channels); ++c) {
                std::uint8_t& v = image[y * stride + x * channels + c];
                v = std::uint8_t(std::trunc(std::clamp(v * k, 0.0, 255.0)));
            }
        }
    }
}

// ---- Glows ------------------------------------------------------------------------------------------------------

struct PlainGlow {
    std::uint32_t size;
    double opacity;
    std::uint32_t color;
    const std::uint8_t* curve;  // or null
};

inline double PlainGlowCurve(int i, const PlainBlurMath& math)
{
    return math.pow(i * 0.00390625, 0.5555555555555556) * 256;
}

inline PlainStyleBytes PlainGlowAlpha(const std::uint8_t* image, std::size_t width, std::size_t height,
                                      std::size_t stride)
{
    PlainStyleBytes alpha(width * height);
    PlainSplit<std::uint8_t>(image, width, height, stride, nullptr, 0, alpha.data(), width);
    return alpha;
}

inline void PlainOuterGlow(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t stride,
                           const PlainGlow& glow, const PlainBlurMath& math)
{
    const double opacity = std::clamp(glow.opacity, 0.0, 1.0);
    const PlainStyleBytes alpha = PlainGlowAlpha(image, width, height, stride);
    PlainStyleBytes halo = PlainBlurred(alpha, width, height, 1, glow.size / 2.5, 1025, math);
    for (std::size_t i = 0; i < halo.size(); ++i) {
        const int a = halo[i];
        const double curved = glow.curve ? glow.curve[a] * opacity : PlainGlowCurve(a, math) * opacity;
        halo[i] = std::max(std::uint8_t(curved), alpha[i]);
        std::uint8_t* const pixel = image + i / width * stride + i % width * 4;
        std::uint8_t made[4] = {std::uint8_t(glow.color), std::uint8_t(glow.color >> 8), std::uint8_t(glow.color >> 16),
                                halo[i]};
        PlainMergePixel(made, pixel, alpha[i], 0, true);
        std::copy_n(made, 4, pixel);
    }
}

inline void PlainInnerGlow(std::uint8_t* image, std::size_t width, std::size_t height, std::size_t stride,
                           const PlainGlow& glow, const PlainBlurMath& math)
{
    const double opacity = std::clamp(glow.opacity, 0.0, 1.0);
    PlainStyleBytes tint = PlainGlowAlpha(image, width, height, stride);
    for (std::uint8_t& a : tint) a = std::uint8_t(~a);
    tint = PlainBlurred(tint, width, height, 1, glow.size / 2.5, 1025, math);
    for (std::size_t i = 0; i < tint.size(); ++i) {
        const int curved = glow.curve ? glow.curve[tint[i]] : std::uint8_t(PlainGlowCurve(tint[i], math));
        const int a = int(std::trunc(curved * opacity));
        std::uint8_t* const pixel = image + i / width * stride + i % width * 4;
        const int p = pixel[3];
        if (p == 0) continue;
        const int t = (255 - a) * p / 255 + a;
        const int k = t == 0 ? 0 : a * 255 / t;
        for (int c = 0; c < 3; ++c) {
            pixel[c] = std::uint8_t((pixel[c] * (255 - k) + int(glow.color >> (8 * c) & 255) * k) / 255);
        }
    }
}
