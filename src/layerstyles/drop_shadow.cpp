// Drop shadow: a new, larger image with the source over a blurred, shifted copy of its shape.
#include "base/buffer_rows.h"
#include "base/channels.h"
#include "base/client_block.h"
#include "base/gaussian_blur.h"
#include "base/image_view.h"
#include "base/merge.h"
#include "base/overlay.h"
#include "base/packed_image.h"
#include "base/solid_rect.h"
#include "layerstyles/shadow_layout.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <cstring>
#include <limits>

using namespace zlv;

namespace {

constexpr u32 kAllChannels = 15;
constexpr u32 kAlphaChannels = 4;

// Blurs with the client's callback behind the base layer. False without memory; otherwise it is not asked how the blur
// ended: the image is finished with what there is.
[[nodiscard]] bool BlurReporting(CallFrame& frame, const ImageView<const u8>& from, u8* to, f64 sigma, u32 channelMask)
{
    const ForwardingSpan span(frame);
    return MV40_GaussianBlurImage(from.data, from.width, from.height, from.channels, from.stride, to, from.stride,
                                  sigma, channelMask) != 0 ||
           Error(MV40_GetLastError()) != Error::OutOfMemory;
}

struct Shadow {
    const ShadowLayout layout;
    const u32 backgroundColor, shadowColor;
    const bool isTinted;
};

// A blurred rectangle on the background. The source's rows are taken as packed.
[[nodiscard]] bool DrawOpaque(CallFrame& frame, const ImageView<const u8>& src, const ImageView<u8>& result,
                              const Shadow& shadow)
{
    PackedImage sharp;
    if (!sharp.Resize(result.width, result.height, result.channels)) return false;
    const auto fill = [&](const SolidRect& rect, u32 color) {
        (void)MV40_FillSolidRect(sharp.Data(), result.width, result.height, result.channels, result.stride, &rect,
                                 color, 0);
    };
    fill({0, 0, result.width - 1, result.height}, shadow.backgroundColor);
    const u32 left = u32(shadow.layout.shadow.x), top = u32(shadow.layout.shadow.y);
    fill({left, top, left + src.width - 1, top + src.height}, shadow.shadowColor);
    const ImageView<const u8> ground = {sharp.Data(), result.width, result.height, result.channels, result.stride};
    if (!BlurReporting(frame, ground, result.data, shadow.layout.sigma, kAllChannels)) return false;
    (void)MV40_OverlayImage(result.data, result.width, result.height, result.channels, result.stride, src.data,
                            src.width, src.height, u32(src.SamplesPerRow()), shadow.layout.image.x,
                            shadow.layout.image.y, 1.0, 0.0, u32(OverlayMode::Replace), 0);
    return true;
}

// The blurred outline of the alpha.
[[nodiscard]] bool DrawByAlpha(CallFrame& frame, const ImageView<const u8>& src, const ImageView<u8>& result,
                               const Shadow& shadow)
{
    PackedImage alpha, outline, blurred;
    if (!alpha.Resize(src.width, src.height, 1) || !outline.Resize(result.width, result.height, 1) ||
        !blurred.Resize(result.width, result.height, 1)) {
        return false;
    }
    (void)MV40_SplitRGBAToRGBPlusA(src.data, src.width, src.height, src.stride, nullptr, 0, alpha.Data(), src.width, 0);
    std::memset(outline.Data(), 0, outline.Size());
    (void)MV40_OverlayImage(outline.Data(), result.width, result.height, 1, result.width, alpha.Data(), src.width,
                            src.height, src.width, shadow.layout.shadow.x, shadow.layout.shadow.y, 1.0, 0.0,
                            u32(OverlayMode::Replace), 0);
    alpha.Clear();
    std::memset(blurred.Data(), 0, blurred.Size());
    const ImageView<const u8> shape = {outline.Data(), result.width, result.height, 1, result.width};
    if (!BlurReporting(frame, shape, blurred.Data(), shadow.layout.sigma, 1)) return false;
    outline.Clear();
    if (shadow.isTinted) {
        (void)MV40_AlphaBlendColor(result.data, result.width, result.height, result.channels, result.stride,
                                   blurred.Data(), result.width, result.height, result.width, shadow.shadowColor, 0, 0,
                                   kColorReplace);
    } else {
        const void* const planes[kAlphaChannels] = {nullptr, nullptr, nullptr, blurred.Data()};
        (void)MV40_CombineImageChannels(planes, result.width, result.height, result.channels, result.width, result.data,
                                        result.stride, 0);
    }
    (void)MV40_MergeRGBA(result.data, result.width, result.height, result.channels, result.stride, src.data, src.width,
                         src.height, src.stride, shadow.layout.image.x, shadow.layout.image.y, 1.0,
                         u32(MergeMode::Over));
    return true;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_DropShadowEx(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 srcRowStride,
                                  u8** outImage, u32* outWidth, u32* outHeight, i32 distance, i32 blurPercent,
                                  u32 backgroundColor, u32 shadowColor, i32 angle, point* imagePos, point* shadowPos,
                                  u32 flags)
{
    return InFrame(FrameKind::NoNestCount, [&](CallFrame& frame) -> u32 {
        const bool hasAlpha = bytesPerPixel == kAlphaChannels;
        if (!src || !outImage || !outWidth || !outHeight) return frame.Fail(Error::BadArgument);
        if (bytesPerPixel != 1 && bytesPerPixel != 3 && !hasAlpha) return frame.Fail(Error::BadArgument);
        if ((flags & ZLV40_SHADOW_OF_ALPHA) && !hasAlpha) return frame.Fail(Error::BadArgument);
        const bool isOpaque = !hasAlpha || flags == 0;
        const u64 rowBytes = u64(width) * bytesPerPixel;
        // Packed rows would lie outside a source whose rows overlap.
        if (isOpaque && height > 1 && rowBytes > srcRowStride) return frame.Fail(Error::BadArgument);

        const Shadow shadow = {LayOutShadow(width, height, distance, blurPercent, angle), backgroundColor, shadowColor,
                               (flags & ZLV40_SHADOW_TINTED) != 0};
        if (imagePos) *imagePos = shadow.layout.image;
        if (shadowPos) *shadowPos = shadow.layout.shadow;

        constexpr i64 kMost = std::numeric_limits<u32>::max();
        const i64 resultWidth = shadow.layout.width, resultHeight = shadow.layout.height;
        if (resultWidth < 1 || resultHeight < 1 || resultHeight > kMost) return frame.Fail(Error::OutOfMemory);
        if (resultWidth > kMost / bytesPerPixel) return frame.Fail(Error::OutOfMemory);
        const u32 stride = u32(resultWidth) * bytesPerPixel;
        ClientBlock<u8> block;
        if (!block.AllocateAny(u64(stride) * u64(resultHeight))) return frame.Fail(Error::OutOfMemory);
        const ImageView<u8> result = {&block[0], u32(resultWidth), u32(resultHeight), bytesPerPixel, stride};
        const ImageView<const u8> source = {src, width, height, bytesPerPixel, srcRowStride};
        const auto draw = isOpaque ? DrawOpaque : DrawByAlpha;
        if (!draw(frame, source, result, shadow)) return frame.Fail(Error::OutOfMemory);

        *outImage = block.Release();
        *outWidth = result.width;
        *outHeight = result.height;
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_DropShadow(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u8** outImage, u32* outWidth,
                                u32* outHeight, i32 distance, i32 blurPercent, u32 backgroundColor, u32 shadowColor,
                                i32 angle, u32 flags)
{
    return ZLV40_DropShadowEx(src, width, height, bytesPerPixel, width * bytesPerPixel, outImage, outWidth, outHeight,
                              distance, blurPercent, backgroundColor, shadowColor, angle, nullptr, nullptr, flags);
}
