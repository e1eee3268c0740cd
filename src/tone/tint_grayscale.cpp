// Tint of a gray image: hue and saturation of one colour, the gray samples as the value.
#include "runtime/frame.h"
#include "tone/packed_color.h"
#include "tone/tint_grayscale.kernels.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kColours = 3;

void FillRamp(const Hsv& tint, GrayRamp& ramp)
{
    for (u32 gray = 0; gray < 256; ++gray) {
        const Rgb rgb = HSVToRGB(tint.h, tint.s, gray);
        const u8 channels[kColours] = {u8(rgb.r), u8(rgb.g), u8(rgb.b)};
        ramp.colours[gray] = channels[0] | u32(channels[1]) << 8 | u32(channels[2]) << 16;
        for (u32 c = 0; c < kColours; ++c) ramp.channels[c][gray] = channels[c];
    }
}

}  // namespace

ZLV_EXPORT u32 ZLV40_TintGrayscale(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                   u32 destinationBytesPerPixel, u32 destinationStride, u32 color, u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        if (destinationBytesPerPixel < kColours) return frame.Fail(Error::BadArgument);

        GrayRamp ramp;
        FillRamp(HsvOfColor(color, flags), ramp);
        const auto& kernels = Kernels<TintGrayscaleKernels>();
        for (u32 y = 0; y < height; ++y) {
            kernels.tintRow(source + size_t(y) * sourceStride, destination + size_t(y) * destinationStride,
                            destinationBytesPerPixel, width, ramp);
        }
        return 1;
    });
}
