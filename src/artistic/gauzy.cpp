// Gauzy: a thin copy of the image over a heavily blurred one.
#include "artistic/recipe.h"
#include "base/channels.h"
#include "base/gaussian_blur.h"
#include "base/overlay.h"
#include "base/table_pass.h"
#include "runtime/clamp.h"
#include "runtime/math.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr f64 kNone = 0.0, kAll = 1.0;
constexpr f64 kLargestSigma = 30.0;
constexpr f64 kLargestSharpness = 0.2;
constexpr f64 kLargestOpacity = 0.5;
constexpr i32 kSharpenSide = 3;

// A gamma-like curve with its foot at 128.
struct GauzyCurve {
    static constexpr u32 kFoot = 128;
    u8 entries[256];

    explicit GauzyCurve(f64 sharpness)
    {
        const f64 base = sharpness * 0.03 + 0.97;
        for (u32 i = 0; i < 256; ++i) entries[i] = u8(255 - 255 * Pow(base, i > kFoot ? i - kFoot : 0));
    }
};

struct Gauzy {
    const u8* source;
    u32 width, height, sourceStride;
    u8* destination;
    u32 destinationStride;
    f64 sigma, sharpness, opacity;

    u32 Blur() const
    {
        return MV40_GaussianBlurImage(source, width, height, kRgbChannels, sourceStride, destination, destinationStride,
                                      sigma, kRgbMask);
    }

    u32 ToGray(PackedImage& gray) const
    {
        return MV40_ImageToGrayScale8Bit(source, width, height, kRgbChannels, sourceStride, gray.Data(), gray.Stride(),
                                         0);
    }

    u32 ApplyCurve(PackedImage& gray) const
    {
        const GauzyCurve curve(sharpness);
        const void* const tables[] = {curve.entries};
        return MV40_ApplyLUTsToImage(gray.Data(), width, height, kGrayChannels, gray.Stride(), tables, 0);
    }

    u32 LayGray(PackedImage& gray) const
    {
        return MV40_Overlay8BitToRGB(destination, width, height, destinationStride, gray.Data(), width, height,
                                     gray.Stride(), GrayRamp(), 0, 0, opacity, 0, 0);
    }

    u32 LaySource(OverlayMode mode) const
    {
        return MV40_OverlayImage(destination, width, height, kRgbChannels, destinationStride, source, width, height,
                                 sourceStride, 0, 0, opacity, 0, u32(mode), 0);
    }
};

u32 LaySharpenedGray(const Gauzy& call, bool isCurved, CallFrame& frame)
{
    PackedImage gray, sharpened;
    if (!gray.Resize(call.width, call.height, kGrayChannels) ||
        !sharpened.Resize(call.width, call.height, kGrayChannels)) {
        return frame.Fail(Error::OutOfMemory);
    }
    if (!call.ToGray(gray)) return FailAsBase(frame);
    if (isCurved && !call.ApplyCurve(gray)) return FailAsBase(frame);
    if (!ZLV40_SharpenImage(gray.Data(), call.width, call.height, sharpened.Data(), kGrayChannels, gray.Stride(),
                            sharpened.Stride(), kSharpenSide, call.sharpness, kGrayMask)) {
        return 0;
    }
    return call.LayGray(sharpened) ? 1 : FailAsBase(frame);
}

u32 LaySource(const Gauzy& call, OverlayMode mode, CallFrame& frame)
{
    return call.LaySource(mode) ? 1 : FailAsBase(frame);
}

u32 LayThinCopy(const Gauzy& call, u32 mode, CallFrame& frame)
{
    switch (mode) {
    case ZLV40_GAUZY_GRAY: return LaySharpenedGray(call, false, frame);
    case ZLV40_GAUZY_CURVE: return LaySharpenedGray(call, true, frame);
    case ZLV40_GAUZY_COPY: return LaySource(call, OverlayMode::Replace, frame);
    case ZLV40_GAUZY_LIGHTER: return LaySource(call, OverlayMode::Lighter, frame);
    case ZLV40_GAUZY_DARKER: return LaySource(call, OverlayMode::Darker, frame);
    default: return 1;
    }
}

f64 Share(f64 value, f64 largest) { return ClampDouble(value, &kNone, &kAll) * largest; }

}  // namespace

ZLV_EXPORT u32 ZLV40_GauzyRGB(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                              u32 destinationStride, f64 blur, f64 sharpness, f64 opacity, u32 mode)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination) return frame.Fail(Error::BadArgument);
        if (!IsNumber(blur) || !IsNumber(sharpness) || !IsNumber(opacity)) return frame.Fail(Error::BadArgument);
        if (width == 0 || height == 0) return frame.Fail(Error::OutOfMemory);
        const Gauzy call = {source,
                            width,
                            height,
                            sourceStride,
                            destination,
                            destinationStride,
                            Share(blur, kLargestSigma),
                            Share(sharpness, kLargestSharpness),
                            Share(opacity, kLargestOpacity)};
        if (!InForwardingSpan(frame, [&] { return call.Blur(); })) return 0;
        return LayThinCopy(call, mode, frame);
    });
}
