// Watercolour: a blurred gray version of the image tints it where it is lighter, or darker.
#include "artistic/recipe.h"
#include "base/channels.h"
#include "base/gaussian_blur.h"
#include "base/histograms.h"
#include "base/overlay.h"
#include "base/palette.h"
#include "runtime/clamp.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr f64 kNone = 0.0, kAll = 1.0;
constexpr f64 kLargestSigma = 30.0;
constexpr f64 kCutPercent = 5.0;
constexpr u32 kMidpoint = 1;
constexpr u32 kStages = 6;
constexpr u32 kPaletteColors = 256;

struct Watercolor {
    const u8* source;
    u32 width, height, sourceStride;
    u8* destination;
    u32 destinationStride;

    // Lays an image over the destination, the same size and place.
    void Lay(const u8* image, u32 stride, OverlayMode mode) const
    {
        MV40_OverlayImage(destination, width, height, kRgbChannels, destinationStride, image, width, height, stride, 0,
                          0, kAll, 0, u32(mode), 0);
    }
};

// Steps that only lack of memory can stop are asked for their result; what the others say is ignored.
u32 Paint(const Watercolor& call, f64 sigma, u8 flags, CallFrame& frame)
{
    const u32 width = call.width, height = call.height;
    PackedImage blurred, gray, tint;
    if (!blurred.Resize(width, height, kGrayChannels) || !gray.Resize(width, height, kGrayChannels) ||
        !tint.Resize(width, height, kRgbChannels)) {
        return frame.Fail(Error::OutOfMemory);
    }
    MV40_ImageToGrayScale8Bit(call.source, width, height, kRgbChannels, call.sourceStride, gray.Data(), gray.Stride(),
                              0);
    if (!frame.Report(0, kStages)) return 0;
    if (!MV40_GaussianBlurImage(gray.Data(), width, height, kGrayChannels, gray.Stride(), blurred.Data(),
                                blurred.Stride(), sigma, kGrayMask)) {
        return FailAsBase(frame);
    }
    if (!frame.Report(1, kStages)) return 0;
    const bool isStretched = flags & ZLV40_WATERCOLOR_STRETCH;
    if (isStretched && !MV40_HistogramStretchImage(blurred.Data(), width, height, kGrayChannels, blurred.Stride(),
                                                   kCutPercent, kCutPercent, kMidpoint, kGrayMask)) {
        return FailAsBase(frame);
    }
    if (!frame.Report(2, kStages)) return 0;
    MV40_8BitToRGB(blurred.Data(), width, height, blurred.Stride(), tint.Data(), tint.Stride(), kPaletteColors,
                   GrayRamp(), 0);
    if (!frame.Report(3, kStages)) return 0;
    call.Lay(call.source, call.sourceStride, OverlayMode::Replace);
    if (!frame.Report(4, kStages)) return 0;
    call.Lay(tint.Data(), tint.Stride(), flags & ZLV40_WATERCOLOR_LIGHTER ? OverlayMode::Lighter : OverlayMode::Darker);
    return frame.Report(5, kStages) ? 1 : 0;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_WatercolorTintRGB(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                       u32 destinationStride, f64 amount, u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination || !IsNumber(amount)) return frame.Fail(Error::BadArgument);
        const f64 sigma = ClampDouble(amount, &kNone, &kAll) * kLargestSigma;
        return Paint({source, width, height, sourceStride, destination, destinationStride}, sigma, flags, frame);
    });
}
