// Duotone: one hue over the image's luminance, the darker the more saturated.
#include "base/hsv.h"
#include "tone/duotone.kernels.h"
#include "tone/packed_color.h"
#include "tone/row_pass.h"

#include "zlv40.h"

using namespace zlv;

ZLV_EXPORT u32 ZLV40_DuotoneImage(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u32 color,
                                  u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || !IsColour(bytesPerPixel)) return frame.Fail(Error::BadArgument);

        // Of the colour only the hue counts: a division of its components by 256 does not change it.
        const HueWeights hue = WeightsOfHue(HsvOfColor(color, flags).h);
        const ImageView<u8> image = {buffer, width, height, u32(bytesPerPixel), rowStride};
        return ForRows(frame, image,
                       [&](u8* row, u32) { Kernels<DuotoneKernels>().paintRow(row, image.channels, width, hue); });
    });
}
