// Contrast mask: a blurred gray copy of the image, turned over, lightens its dark parts and darkens its light ones.
#include "base/channels.h"
#include "base/gaussian_blur.h"
#include "runtime/array.h"
#include "tone/contrast_mask.kernels.h"
#include "tone/row_pass.h"

#include "zlv40.h"

using namespace zlv;

namespace {

using BlendRow = void (*)(u8* pixels, const u8* mask, size_t count, size_t channels);

// Null for modes that change nothing.
BlendRow BlendOfMode(u32 mode)
{
    const auto& kernels = Kernels<ContrastMaskKernels>();
    if (mode == ZLV40_CONTRAST_MASK_SOFT_LIGHT) return kernels.softLightRow;
    return mode == ZLV40_CONTRAST_MASK_OVERLAY ? kernels.overlayRow : nullptr;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_ContrastMaskImage(u8* buffer, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, u32 mode,
                                       f64 sigma)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || !IsColour(bytesPerPixel)) return frame.Fail(Error::BadArgument);
        const u64 pixels = u64(width) * height;
        MVBuffer<u8> gray, blurred;
        if (!gray.Resize(pixels) || !blurred.Resize(pixels)) return frame.Fail(Error::OutOfMemory);

        // The blur refuses a sigma that is no number or too large, and may be short of memory itself. Nothing has been
        // written by then.
        const bool hasMask =
            MV40_ImageToGrayScale8Bit(buffer, width, height, bytesPerPixel, rowStride, gray.GetData(), width, 0) &&
            MV40_GaussianBlurImage(gray.GetData(), width, height, 1, width, blurred.GetData(), width, sigma, 1);
        if (!hasMask) return frame.Fail(Error(MV40_GetLastError()));

        const BlendRow blend = BlendOfMode(mode);
        const ImageView<u8> image = {buffer, width, height, bytesPerPixel, rowStride};
        return ForRows(frame, image, [&](u8* row, u32 y) {
            if (blend) blend(row, blurred.GetData() + size_t(y) * width, width, bytesPerPixel);
        });
    });
}
