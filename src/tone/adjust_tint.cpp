// Tint: turns the colour difference of every pixel and keeps its brightness.
#include "runtime/math.h"
#include "tone/adjust_tint.kernels.h"
#include "tone/row_pass.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kColours = 3;
constexpr f64 kPi = 3.14159265358979323846;

}  // namespace

ZLV_EXPORT u32 ZLV40_AdjustTint(u8* buffer, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, i32 angle,
                                u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || bytesPerPixel < kColours) return frame.Fail(Error::BadArgument);

        const f64 radians = kPi * angle / 180;
        const TintRotation rotation = {Cos(radians), Sin(radians), (flags & ZLV40_BGR) != 0};
        const ImageView<u8> image = {buffer, width, height, bytesPerPixel, rowStride};
        return ForRows(frame, image, [&](u8* row, u32) {
            Kernels<AdjustTintKernels>().turnRow(row, bytesPerPixel, width, rotation);
        });
    });
}
