// Overlays and merges, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// An image by its numbers; the stride counts samples.
template <class T>
struct PlainLayer {
    T* data;
    std::int64_t width, height, channels, stride;

    T* At(std::int64_t x, std::int64_t y) const { return data + y * stride + x * channels; }
};

// Calls draw(base pixel, overlay pixel) for every pixel of the overlay that lies on the base, down to `rows` of them.
template <class Base, class Overlay, class Draw>
void PlainVisible(const Base& base, const Overlay& overlay, std::int64_t x, std::int64_t y, std::int64_t rows,
                  Draw draw)
{
    std::int64_t rowsLeft = rows;
    for (std::int64_t py = 0; py < base.height; ++py) {
        if (py < y || py >= y + overlay.height) continue;
        if (x >= base.width || x + overlay.width <= 0 || overlay.width == 0 || rowsLeft-- <= 0) continue;
        for (std::int64_t px = 0; px < base.width; ++px) {
            if (px >= x && px < x + overlay.width) draw(base.At(px, py), overlay.At(px - x, py - y));
        }
    }
}

struct PlainBlend {
    double opacity;    // 0 to 1
    double parameter;  // small enough for an int
    unsigned mode;
};

inline long long PlainAtMost(long long value, long long limit) { return value > limit ? limit : value; }
inline long long PlainAtLeast0(long long value) { return value < 0 ? 0 : value; }

// f(d, s), but for what modes 9 and 10 leave alone. Negative results of modes 15 and 16 are returned as they are.
inline long long PlainFormula(long long d, long long s, long long M, const PlainBlend& blend)
{
    const long long H = (M >> 1) + (M & 1);
    const double P = blend.parameter;
    const auto T = [&] { return static_cast<long long>(P); };
    const auto multiply = [&] { return d * s / M; };
    const auto screen = [&] { return M - (M - d) * (M - s) / M; };
    switch (blend.mode) {
    case 0:
    case 1: return s;
    case 2: return d & s;
    case 3: return d | s;
    case 4: return d ^ s;
    case 5: return d > s ? d : s;
    case 6: return d < s ? d : s;
    case 7: return PlainAtMost(d + s, M);
    case 8: return PlainAtLeast0(d - s);
    case 9:
    case 10: return s;
    case 11: return d > s ? d - s : s - d;
    case 12: return multiply();
    case 13: {
        const double value = double(s) * P * (double(d) / double(M));
        return static_cast<long long>(value < 0 ? 0.0 : value > double(M) ? double(M) : value);
    }
    case 14: return screen();
    case 15: return PlainAtMost(d - T() + s, M);
    case 16: return PlainAtMost(d - s + T(), M);
    case 17: return M & ~(d & s);
    case 18: return M & ~(d | s);
    case 19: return M & ~(d ^ s);
    case 20: {
        if (s == M) return M;
        const long long quotient = d * M / (M - s);
        return quotient >= 0x80000000LL ? quotient & M : PlainAtMost(quotient, M);
    }
    case 21: return s == 0 ? 0 : PlainAtLeast0(M - (M - d) * M / s);
    case 22:
        if (d + s < M + 1) return s == M ? M : PlainAtMost(d * H / (M - s), M);
        return PlainAtLeast0(M - (M - s) * H / d);
    case 23:
        if (d + s < M + 1) return d == M ? M : PlainAtMost(s * H / (M - d), M);
        return PlainAtLeast0(M - (M - d) * H / s);
    case 24: return d < H ? d * s / H : M - (M - d) * (M - s) / H;
    case 25: {
        const long long c = multiply(), e = screen();
        return c + (e - c) * d / M;
    }
    case 26: return s < H ? d * s / H : M - (M - d) * (M - s) / H;
    case 27: return s == M ? M : PlainAtMost(d * d / (M - s), M);
    case 28: return d == M ? M : PlainAtMost(s * s / (M - d), M);
    case 29: return s == 0 ? 0 : PlainAtLeast0(M - (M - d) * (M - d) / s);
    case 30: return d == 0 ? 0 : PlainAtLeast0(M - (M - s) * (M - s) / d);
    default: std::abort();
    }
}

template <class T>
T PlainBlendSample(T d, T s, const PlainBlend& blend)
{
    const long long M = T(~T(0));
    const double over = blend.opacity, under = 1 - blend.opacity;
    if (blend.mode == 9 && !(s > static_cast<long long>(blend.parameter))) return d;
    if (blend.mode == 10 && !(s < static_cast<long long>(blend.parameter))) return d;
    const long long f = PlainFormula(d, s, M, blend);
    if (over == 1) return T(f);
    if (blend.mode == 1) return T(static_cast<long long>(d * under + f * over));
    return T(static_cast<long long>(d * under) + static_cast<long long>(double(PlainAtLeast0(f)) * over));
}

// All samples of a pixel are blended alike; `rows` ends the work early.
template <class T>
void PlainOverlay(const PlainLayer<T>& base, const PlainLayer<const T>& overlay, std::int64_t x, std::int64_t y,
                  const PlainBlend& blend, std::int64_t rows)
{
    PlainVisible(base, overlay, x, y, rows, [&](T* to, const T* from) {
        for (std::int64_t c = 0; c < base.channels; ++c) to[c] = PlainBlendSample<T>(to[c], from[c], blend);
    });
}

// Mode 0 and 1 at full opacity, from the overlay's last row upwards and always from its first column.
template <class T>
void PlainFlippedCopy(const PlainLayer<T>& base, const PlainLayer<const T>& overlay, std::int64_t x, std::int64_t y)
{
    const std::int64_t left = x < 0 ? 0 : x;
    for (std::int64_t r = 0; r < base.height; ++r) {
        if (r < y || r >= y + overlay.height) continue;
        for (std::int64_t px = left; px < base.width && px < x + overlay.width; ++px) {
            const T* const from = overlay.At(px - left, overlay.height - r - 1 + y);
            for (std::int64_t c = 0; c < base.channels; ++c) base.At(px, r)[c] = from[c];
        }
    }
}

// One byte at an opacity: two truncated shares, or the truncated sum.
inline std::uint8_t PlainMix(int base, int overlay, double opacity, bool isTruncatedFirst)
{
    const double over = overlay * opacity, under = base * (1 - opacity);
    return std::uint8_t(isTruncatedFirst ? int(over) + int(under) : int(over + under));
}

inline bool PlainIsHidden(const std::uint8_t* pixel, std::uint32_t color, std::uint32_t tolerance)
{
    long long distance = 0;
    for (int c = 0; c < 3; ++c) {
        const long long difference = pixel[c] - static_cast<long long>(color >> (8 * c) & 255);
        distance += difference * difference;
    }
    return distance == 0 || (tolerance != 0 && distance <= tolerance);
}

inline std::uint8_t PlainProduct(int coverage, int sample) { return std::uint8_t(sample * (coverage / 255.0)); }

inline std::uint8_t PlainCovered(int base, int overlay, int coverage)
{
    return std::uint8_t(PlainProduct(coverage, overlay) + PlainProduct(255 - coverage, base));
}

// `a` is the overlay's alpha, at its opacity already. Only mode 4 needs a base of four bytes.
inline void PlainMergePixel(std::uint8_t* base, const std::uint8_t* overlay, int a, unsigned mode, bool hasAlpha)
{
    if (mode == 4) {
        const int b = base[3];
        const int t = (255 - a) * b / 255;
        const int A = t + a;
        const int r = A != 0 ? a * 255 / A : 0;
        for (int c = 0; c < 3; ++c) base[c] = std::uint8_t(((255 - r) * base[c] + r * overlay[c]) / 255);
        base[3] = std::uint8_t(A);
        return;
    }
    if (a == 0) return;
    for (int c = 0; c < 3; ++c) base[c] = PlainCovered(base[c], overlay[c], a);
    if (!hasAlpha) return;
    if (mode == 1) base[3] = std::uint8_t(a);
    if (mode == 2) base[3] = std::uint8_t(base[3] > a ? base[3] : a);
    if (mode == 3) base[3] = std::uint8_t(PlainAtMost(base[3] + a, 255));
}

inline void PlainPaintPixel(std::uint8_t* base, int m, const std::uint8_t* color, int rule, int channels)
{
    if (channels == 4 && rule == 5) {
        const int b = base[3];
        if (b == 0) return;
        const int t = (255 - m) * b / 255;
        const int r = t + m != 0 ? m * 255 / (t + m) : 0;
        for (int c = 0; c < 3; ++c) base[c] = std::uint8_t(((255 - r) * base[c] + r * color[c]) / 255);
        return;
    }
    for (int c = 0; c < 3; ++c) {
        base[c] = channels == 4 && rule == 4 ? color[c] : PlainCovered(base[c], color[c], m);
    }
    if (channels != 4) return;
    if (rule == 1) base[3] = PlainCovered(base[3], color[3], m);
    if (rule == 2 && m != 0) base[3] = color[3];
    if (rule == 3 && m != 0) base[3] = std::uint8_t(m);
    if (rule == 4) base[3] = std::uint8_t(m);
}
