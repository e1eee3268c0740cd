// The Sobel filter, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>

struct PlainSobelCall {
    const std::uint8_t* src;
    int width, height, channels;
    std::size_t srcStride;
    std::uint16_t* dst;
    std::size_t dstStride;  // in magnitudes
    std::uint32_t flags;
};

// Called with (current, total); false cancels.
using PlainSobelReport = std::function<bool(std::uint32_t, std::uint32_t)>;

inline int PlainSobelMagnitude(const PlainSobelCall& call, int x, int y, int c, std::uint32_t outside)
{
    const auto bit = [&](int b) { return (outside >> b & 1) != 0; };
    const auto at = [&](int i, int j) {
        int column = x + i, row = y + j;
        if (column < 0 && !bit(20)) column = 0;
        if (column >= call.width && !bit(21)) column = call.width - 1;
        if (row < 0 && !bit(22)) row = 0;
        if (row >= call.height && !bit(23)) row = call.height - 1;
        return int(call.src[std::ptrdiff_t(row) * std::ptrdiff_t(call.srcStride) + column * call.channels + c]);
    };
    const int ul = at(-1, -1), u = at(0, -1), ur = at(1, -1), l = at(-1, 0), r = at(1, 0);
    const int dl = at(-1, 1), d = at(0, 1), dr = at(1, 1);
    const int gx = 2 * (l - r) + ul - ur + dl - dr;
    const int gy = 2 * (u - d) + ul + ur - dl - dr;
    const int magnitude = std::abs(gx) + std::abs(gy);
    return magnitude > 65535 ? 65535 : magnitude;
}

// False when a report was answered so.
inline bool PlainSobel(const PlainSobelCall& call, const PlainSobelReport& report)
{
    const bool isCombined = call.flags & 256;
    for (int y = 0; y < call.height; ++y) {
        std::uint16_t* const row = call.dst + std::size_t(y) * call.dstStride;
        for (int x = 0; x < call.width; ++x) {
            if (isCombined) {
                int sum = 0;
                for (int c = 0; c < 3; ++c) sum += PlainSobelMagnitude(call, x, y, c, call.flags);
                row[x] = std::uint16_t(sum / 3);
                continue;
            }
            for (int c = 0; c < call.channels; ++c) {
                if (!(call.flags >> c & 1)) continue;
                row[x * call.channels + c] = std::uint16_t(PlainSobelMagnitude(call, x, y, c, 0));
            }
        }
        if (!report(std::uint32_t(y), std::uint32_t(call.height))) return false;
    }
    return true;
}
