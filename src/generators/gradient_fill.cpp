// Gradient fills: an image painted along a line or around a centre.
#include "generators/gradient.h"

#include "zlv40.h"

#include <cstring>
#include <utility>

using namespace zlv;

namespace {

constexpr u32 kMostChannels = 4;
constexpr f64 kLargestPosition = 100;

struct GradientTarget {
    u8* image;
    u32 width, height, bytesPerPixel, rowStride;
};

// The client's stops, at any addresses.
struct GradientStops {
    const u8* colors;
    const f64* positions;
    u32 count;
    bool isInImageOrder;

    [[nodiscard]] bool ReadTo(CZLVGradient::StopArray& stops) const
    {
        if (!stops.Resize(count)) return false;
        for (u32 i = 0; i < count; ++i) stops[i] = {ColorOf(i), PositionOf(i)};
        return true;
    }

private:
    u32 ColorOf(u32 i) const
    {
        u8 bytes[4];
        std::memcpy(bytes, colors + size_t(i) * 4, 4);
        if (!isInImageOrder) std::swap(bytes[0], bytes[2]);
        return bytes[0] | u32(bytes[1]) << 8 | u32(bytes[2]) << 16 | u32(bytes[3]) << 24;
    }

    // What is no number lies at 0.
    f64 PositionOf(u32 i) const
    {
        f64 position;
        std::memcpy(&position, reinterpret_cast<const u8*>(positions) + size_t(i) * sizeof position, sizeof position);
        return !(position > 0) ? 0 : position < kLargestPosition ? position : kLargestPosition;
    }
};

// The shape of both fills. `set` gives the gradient its stops; false when it can't, with the code set.
template <class Gradient, class Set>
u32 FillImage(const GradientTarget& target, const GradientStops& stops, Set set)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!target.image || !stops.colors || !stops.positions) return frame.Fail(Error::BadArgument);
        if (stops.count < 2) return frame.Fail(Error::BadArgument);
        if (target.bytesPerPixel == 0 || target.bytesPerPixel > kMostChannels) return frame.Fail(Error::BadArgument);

        CZLVGradient::StopArray read;
        if (!stops.ReadTo(read)) return frame.Fail(Error::OutOfMemory);
        Gradient gradient;
        if (!set(frame, gradient, read)) return 0;
        return gradient.Fill(frame, target.image, target.width, target.height, target.bytesPerPixel, target.rowStride);
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_GradientFillImageLinear(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride,
                                             f64 startX, f64 startY, f64 endX, f64 endY, const u8* colors,
                                             const f64* positions, u32 stopCount, u32 mode, f64 gamma, u32 flags)
{
    return FillImage<CZLVGradient::CLinearGradient2>(
        {image, width, height, bytesPerPixel, rowStride},
        {colors, positions, stopCount, (flags & ZLV40_COLORS_AS_IMAGE) != 0},
        [=](CallFrame& frame, CZLVGradient::CLinearGradient2& gradient, const CZLVGradient::StopArray& stops) {
            return gradient.Set(frame, {startX, startY}, {endX, endY}, mode, stops, gamma);
        });
}

ZLV_EXPORT u32 ZLV40_GradientFillImageRadial(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride,
                                             f64 radius, i32 centerX, i32 centerY, const u8* colors,
                                             const f64* positions, u32 stopCount, u32 mode, f64 gamma, u32 flags)
{
    return FillImage<CZLVGradient::CRadialGradient>(
        {image, width, height, bytesPerPixel, rowStride},
        {colors, positions, stopCount, (flags & ZLV40_COLORS_AS_IMAGE) != 0},
        [=](CallFrame& frame, CZLVGradient::CRadialGradient& gradient, const CZLVGradient::StopArray& stops) {
            return gradient.Set(frame, radius, centerX, centerY, mode, stops, gamma);
        });
}
