// Scribble: the edges of an image drawn over a simplified one.
#include "artistic/recipe.h"
#include "base/buffer_rows.h"
#include "base/channels.h"
#include "base/despeckle.h"
#include "base/gaussian_blur.h"
#include "base/overlay.h"
#include "base/palette.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr f64 kBlurSigma = 2.5;
constexpr i32 kMidpointSide = 5;
constexpr i32 kNoChannels = 0;
constexpr f64 kEdgeSigma = 0.1, kLowFraction = 0.5, kHighFraction = 0.9;
constexpr u32 kPaletteColors = 256;
constexpr f64 kPercent = 100.0;
constexpr u32 kWhite = 0xFFFFFF;
constexpr u32 kTolerance = 2;

// All pictures are packed.
struct Scribble {
    const u8* source;
    u32 width, height;
    u8* destination;
    u32 stride;
    bool areEdgesFromResult;

    u32 Blur() const
    {
        return MV40_GaussianBlurImage(source, width, height, kRgbChannels, stride, destination, stride, kBlurSigma,
                                      kRgbMask);
    }

    u32 TakeMidpoints() const
    {
        return ZLV40_MidpointFilter(source, width, height, destination, kRgbChannels, stride, stride, kMidpointSide,
                                    kRgbMask);
    }

    void Copy() const { MV40_CopyBuffer(source, stride, height, stride, destination); }
    u32 Posterize() const { return ZLV40_PosterizeRGB(destination, width, height, stride, 0); }

    // No channel is selected: this base is the image as it is, with the reports of a filter that goes over it. A mask
    // here would change what clients draw on.
    u32 Despeckle() const { return MV40_DespeckleImage(destination, width, height, kRgbChannels, stride, kNoChannels); }

    u32 ToGray(const u8* image, PackedImage& gray) const
    {
        return MV40_ImageToGrayScale8Bit(image, width, height, kRgbChannels, stride, gray.Data(), gray.Stride(), 0);
    }

    u32 FindEdges(PackedImage& gray, PackedImage& edges) const
    {
        return ZLV40_CannyEdgeDetector(gray.Data(), width, height, gray.Stride(), edges.Data(), edges.Stride(),
                                       kEdgeSigma, kLowFraction, kHighFraction);
    }

    u32 ColorEdges(PackedImage& edges, PackedImage& drawing) const
    {
        return MV40_8BitToRGB(edges.Data(), width, height, edges.Stride(), drawing.Data(), drawing.Stride(),
                              kPaletteColors, GrayRamp(), 0);
    }

    u32 Draw(PackedImage& drawing, u32 percent) const
    {
        return MV40_OverlayRGBTrans(destination, width, height, stride, drawing.Data(), width, height, drawing.Stride(),
                                    0, 0, percent / kPercent, kWhite, kTolerance, 0);
    }
};

// The simplified image, which is the step that reports. A cancelled posterisation leaves no code, and so does the
// effect.
u32 MakeBase(const Scribble& call, u32 baseKind, CallFrame& frame)
{
    switch (baseKind) {
    case ZLV40_SCRIBBLE_BLURRED: return InForwardingSpan(frame, [&] { return call.Blur(); });
    case ZLV40_SCRIBBLE_MIDPOINTS: {
        const ReportingStep reporting(frame);
        return call.TakeMidpoints();
    }
    case ZLV40_SCRIBBLE_POSTERIZED: {
        call.Copy();
        const ReportingStep reporting(frame);
        return call.Posterize();
    }
    default:
        call.Copy();
        if (call.areEdgesFromResult) call.Despeckle();  // a first time in silence
        return InForwardingSpan(frame, [&] { return call.Despeckle(); });
    }
}

u32 DrawEdges(const Scribble& call, u32 baseKind, u32 opacity, CallFrame& frame)
{
    PackedImage gray, edges, drawing;
    if (!gray.Resize(call.width, call.height, kGrayChannels) || !edges.Resize(call.width, call.height, kGrayChannels) ||
        !drawing.Resize(call.width, call.height, kRgbChannels)) {
        return frame.Fail(Error::OutOfMemory);
    }
    if (call.areEdgesFromResult && !MakeBase(call, baseKind, frame)) return 0;
    if (!call.ToGray(call.areEdgesFromResult ? call.destination : call.source, gray)) return FailAsBase(frame);
    if (!call.FindEdges(gray, edges)) return 0;
    if (!call.ColorEdges(edges, drawing)) return FailAsBase(frame);
    if (!call.areEdgesFromResult && !MakeBase(call, baseKind, frame)) return 0;
    return call.Draw(drawing, opacity) ? 1 : FailAsBase(frame);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_Scribble(const u8* source, u32 width, u32 height, u8* destination, u32 baseKind,
                              i32 edgesFromResult, u32 opacity)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination || baseKind > ZLV40_SCRIBBLE_DESPECKLED) return frame.Fail(Error::BadArgument);
        const Scribble call = {source, width, height, destination, width * kRgbChannels, edgesFromResult != 0};
        return DrawEdges(call, baseKind, opacity, frame);
    });
}
