// Mapping onto palettes and back, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plain {

// The index of the nearest entry: entries in memory order, of which byte 2 pairs with the first component.
inline int NearestEntry(const std::uint8_t* palette, unsigned count, int first, int second, int third)
{
    int nearest = 0;
    int best = 3 * 256 * 256;
    for (unsigned i = 0; i < count; ++i) {
        const int d0 = first - palette[4 * i + 2], d1 = second - palette[4 * i + 1], d2 = third - palette[4 * i];
        const int distance = d0 * d0 + d1 * d1 + d2 * d2;
        if (distance < best) {
            best = distance;
            nearest = int(i);
        }
    }
    return nearest;
}

}  // namespace plain

// `isSameOrder` is flag bit 0 in all of these.
inline void PlainBestFit(const std::uint8_t* source, std::size_t width, std::size_t height, std::size_t sourceStride,
                         std::uint8_t* destination, std::size_t destStride, unsigned colors,
                         const std::uint8_t* palette, bool isSameOrder)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const p = source + y * sourceStride + 3 * x;
            const int nearest = isSameOrder ? plain::NearestEntry(palette, colors, p[2], p[1], p[0])
                                            : plain::NearestEntry(palette, colors, p[0], p[1], p[2]);
            destination[y * destStride + x] = std::uint8_t(nearest);
        }
    }
}

inline void PlainExpand(const std::uint8_t* source, std::size_t width, std::size_t height, std::size_t sourceStride,
                        std::uint8_t* destination, std::size_t destStride, const std::uint8_t* palette,
                        bool isSameOrder)
{
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const entry = palette + 4 * source[y * sourceStride + x];
            for (std::size_t c = 0; c < 3; ++c) {
                destination[y * destStride + 3 * x + c] = isSameOrder ? entry[c] : entry[2 - c];
            }
        }
    }
}

// Errors are kept by position: at[y][x + 1], with a column to spare on either side.
inline void PlainDither(const std::uint8_t* source, std::size_t width, std::size_t height, std::size_t sourceStride,
                        std::uint8_t* destination, std::size_t destStride, unsigned colors, const std::uint8_t* palette,
                        unsigned ditherKind, int limit, bool isSameOrder)
{
    struct Error {
        std::int16_t of[3] = {};
    };
    std::vector<std::vector<Error>> errors(height + 1, std::vector<Error>(width + 2));
    std::vector<int> answers(32768, -1);

    for (std::size_t y = 0; y < height; ++y) {
        const bool isForward = y % 2 == 0;
        for (std::size_t turn = 0; turn < width; ++turn) {
            const std::size_t x = isForward ? turn : width - 1 - turn;
            const std::size_t own = x + 1, ahead = isForward ? own + 1 : own - 1, behind = 2 * own - ahead;
            int v[3];
            for (int c = 0; c < 3; ++c) {
                const int e = errors[y][own].of[c];
                v[c] = source[y * sourceStride + 3 * x + std::size_t(c)] + (ditherKind == 0 ? e >> 1 : (e + 8) >> 4);
                v[c] = v[c] < 0 ? 0 : v[c] > 255 ? 255 : v[c];
            }
            int& answer = answers[std::size_t((v[0] >> 3) << 10 | (v[1] >> 3) << 5 | v[2] >> 3)];
            if (answer < 0) {
                answer = isSameOrder ? plain::NearestEntry(palette, colors, v[2], v[1], v[0])
                                     : plain::NearestEntry(palette, colors, v[0], v[1], v[2]);
            }
            destination[y * destStride + x] = std::uint8_t(answer);
            if (colors == 0) continue;  // no entry, no error
            for (int c = 0; c < 3; ++c) {
                const int difference = v[c] - palette[4 * answer + (isSameOrder ? c : 2 - c)];
                const int limited = difference < -limit ? -limit : difference > limit ? limit : difference;
                const int e = std::int8_t(limited);
                auto& below = errors[y + 1];
                if (ditherKind == 0) {
                    below[own].of[c] = std::int16_t(e);
                    errors[y][ahead].of[c] = std::int16_t(errors[y][ahead].of[c] + e);
                } else {
                    errors[y][ahead].of[c] = std::int16_t(errors[y][ahead].of[c] + 7 * e);
                    below[own].of[c] = std::int16_t(below[own].of[c] + 5 * e);
                    below[behind].of[c] = std::int16_t(below[behind].of[c] + 3 * e);
                    below[ahead].of[c] = std::int16_t(e);
                }
            }
        }
    }
}
