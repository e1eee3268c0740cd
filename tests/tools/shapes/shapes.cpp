// Effects made for tests of the command: one of each shape of call.
#include "shapes.h"

#include "zlv40.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <thread>

namespace {

constexpr uint32_t kSlowRows = 1000;

// As the library does it: through the callback of the calling thread; false is a wish to stop.
bool Report(uint32_t row, uint32_t rows)
{
    uint64_t data = 0;
    const ZLVProgressCallback callback = ZLV40_GetCallback(&data);
    return !callback || callback(row, rows, data) != 0;
}

}  // namespace

uint32_t ZLV40_TestLighten(uint8_t* buffer, uint32_t width, uint32_t height, uint32_t rowStride, int32_t amount,
                           uint32_t channelMask)
{
    for (uint32_t y = 0; y < height; ++y) {
        uint8_t* row = buffer + size_t{y} * rowStride;
        for (uint32_t i = 0; i < width * 3; ++i)
            if (channelMask >> (i % 3) & 1u) row[i] = static_cast<uint8_t>(std::clamp(row[i] + amount, 0, 255));
        if (!Report(y, height)) return 0;
    }
    return channelMask < 8 ? 1 : 0;
}

uint32_t ZLV40_TestMirror(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, uint32_t bytesPerPixel,
                          uint32_t srcRowStride, uint32_t dstRowStride, uint8_t axis, uint32_t firstRow)
{
    for (uint32_t y = firstRow; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t fromX = axis == 1 ? width - 1 - x : x, fromY = axis == 2 ? height - 1 - y : y;
            std::copy_n(src + size_t{fromY} * srcRowStride + fromX * bytesPerPixel, bytesPerPixel,
                        dst + size_t{y} * dstRowStride + x * bytesPerPixel);
        }
    return 1;
}

uint32_t ZLV40_TestPaint(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                         uint8_t* destination, uint32_t destinationStride, uint32_t color, double strength,
                         uint8_t flags, const uint8_t* curve)
{
    if (curve) return 0;
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            const uint8_t from = source[size_t{y} * sourceStride + x];
            const uint8_t gray = (flags & 1u) ? static_cast<uint8_t>(255 - from) : from;
            uint8_t* to = destination + size_t{y} * destinationStride + x * 3;
            for (uint32_t c = 0; c < 3; ++c) {
                const double tone = (color >> (8 * c) & 255u) / 255.0 * strength;
                to[c] = (flags & 2u) ? static_cast<uint8_t>(gray * tone) : gray;
            }
        }
    return 1;
}

uint32_t ZLV40_TestSlow(uint8_t*, uint32_t pause)
{
    for (uint32_t row = 0; row < kSlowRows; ++row) {
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        if (!Report(row, kSlowRows)) return 0;
    }
    return 1;
}

uint32_t ZLV40_TestRefuse(uint8_t*) { return 0; }
