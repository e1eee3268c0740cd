// Reflection: the first rows of an image mirrored below them, rippled on demand and fading into a colour.
#include "artistic/recipe.h"
#include "base/buffer_rows.h"
#include "base/merge.h"
#include "base/resize.h"
#include "runtime/clamp.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <cstring>
#include <limits>

using namespace zlv;

namespace {

constexpr f64 kPi = 3.14159265358979323846;
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNoRipple = 0.0, kLargestRipple = 1.0;
constexpr f64 kLargestStrength = 20.0;
constexpr u32 kBicubicClamped = u32(ZLV40_SAMPLING_BICUBIC) | u32(ZLV40_CLAMP_POINTS);

// How much of the colour covers each row: none above the ramp, all of it below.
struct Fade {
    f64 start, end;
    u32 shape;

    // A positive fadeStart begins the ramp above the first row: presets rely on the sign.
    Fade(u32 rows, f64 fadeStart, f64 fadeEnd, u32 theShape)
        : start(-f64(rows) * fadeStart), end(rows * fadeEnd), shape(theShape)
    {
    }

    // A ramp from infinitely far above gives its rows no number.
    bool IsDefined() const { return IsNumber(start) && IsNumber(end) && (start > -kInfinity || end <= 0); }

    f64 Ramp(f64 t) const
    {
        switch (shape) {
        case ZLV40_FADE_SMOOTH: return Sin((t - 0.5) * kPi) * 0.5 + 0.5;
        case ZLV40_FADE_FAST: return Sin(t * kPi * 0.5);
        default: return t;
        }
    }

    f64 At(f64 y) const
    {
        if (y < start) return 0;
        return y < end ? Ramp((y - start) / (end - start)) : 1;
    }

    u8 CoverageOf(u32 y) const { return u8(At(y) * 255); }
};

// While it lives, this thread's warp list is an empty one; afterwards it is what it was.
class OwnWarpList {
public:
    explicit OwnWarpList(CallFrame& frame) : list_(frame.Context().transforms) { list_.Swap(other_); }
    ~OwnWarpList() { list_.Swap(other_); }
    OwnWarpList(const OwnWarpList&) = delete;
    OwnWarpList& operator=(const OwnWarpList&) = delete;

private:
    MVPtrVector<CXFormer>& list_;
    MVPtrVector<CXFormer> other_;
};

// Pixels alone: MV40_CopyBuffer would take the padding along, and what is behind the last row.
void CopyPixels(const u8* from, u32 fromStride, u32 rowBytes, u32 rows, u8* to, u32 toStride)
{
    for (u32 y = 0; y < rows; ++y) std::memmove(to + size_t(y) * toStride, from + size_t(y) * fromStride, rowBytes);
}

struct Reflection {
    const u8* source;
    u32 width, height, sourceStride;
    u8* destination;
    u32 destinationStride;
    u32 splitRow, rows;
    Fade fade;
    u32 color;
    f64 ripple;
    u32 rippleScale;
    bool isRippled;

    void CopyAbove(u32 rowBytes) const
    {
        CopyPixels(source, sourceStride, rowBytes, splitRow, destination, destinationStride);
    }

    // A size of ripples of 0 is refused and leaves the list empty, which is how flat water is made.
    bool AddRipples() const
    {
        const f64 strength = ClampDouble(ripple, &kNoRipple, &kLargestRipple) * kLargestStrength;
        return ZLV40_AddPerlinDisplacementTransform(width, height, strength, rippleScale, rippleScale) ||
               rippleScale == 0;
    }

    u32 Warp(PackedImage& warped) const
    {
        return ZLV40_TransformProcess(source, width, height, sourceStride, warped.Data(), warped.Stride(),
                                      i32(kRgbChannels), kBicubicClamped, color);
    }

    // What the filter refuses, as too few pixels or none, leaves the reflection unwritten: it is black then. False
    // without memory.
    bool Resize(const u8* image, u32 stride, PackedImage& reflection) const
    {
        if (MV40_ResizeImage(image, width, splitRow, stride, reflection.Data(), width, rows, reflection.Stride(),
                             kRgbChannels, u32(ResizeMode::Lanczos3), 0)) {
            return true;
        }
        std::memset(reflection.Data(), 0, size_t(reflection.Stride()) * rows);
        return Error(MV40_GetLastError()) != Error::OutOfMemory;
    }

    u32 Flip(PackedImage& reflection) const
    {
        return MV40_VerticalFlipImage(reflection.Data(), reflection.Stride(), rows);
    }

    void FillMask(PackedImage& mask) const
    {
        for (u32 y = 0; y < rows; ++y) {
            std::memset(mask.Data() + size_t(y) * mask.Stride(), fade.CoverageOf(y), width);
        }
    }

    u32 Paint(PackedImage& reflection, PackedImage& mask) const
    {
        return MV40_AlphaBlendColor(reflection.Data(), width, rows, kRgbChannels, reflection.Stride(), mask.Data(),
                                    width, rows, mask.Stride(), color, 0, 0, 0);
    }

    void CopyBelow(PackedImage& reflection) const
    {
        CopyPixels(reflection.Data(), reflection.Stride(), reflection.Stride(), rows,
                   destination + size_t(splitRow) * destinationStride, destinationStride);
    }
};

u32 ResizeRippled(const Reflection& call, PackedImage& reflection, CallFrame& frame)
{
    PackedImage warped;
    if (!warped.Resize(call.width, call.height, kRgbChannels)) return frame.Fail(Error::OutOfMemory);
    const OwnWarpList list(frame);
    if (!call.AddRipples()) return 0;
    if (!call.Warp(warped)) return 0;
    ZLV40_ClearAllTransforms();
    return call.Resize(warped.Data(), warped.Stride(), reflection) ? 1 : FailAsBase(frame);
}

u32 ResizeFlat(const Reflection& call, PackedImage& reflection, CallFrame& frame)
{
    return call.Resize(call.source, call.sourceStride, reflection) ? 1 : FailAsBase(frame);
}

u32 Reflect(const Reflection& call, CallFrame& frame)
{
    PackedImage reflection, mask;
    if (!reflection.Resize(call.width, call.rows, kRgbChannels)) return frame.Fail(Error::OutOfMemory);
    call.CopyAbove(reflection.Stride());
    if (!(call.isRippled ? ResizeRippled : ResizeFlat)(call, reflection, frame)) return 0;
    if (!call.Flip(reflection)) return FailAsBase(frame);
    if (!mask.Resize(call.width, call.rows, kGrayChannels)) return frame.Fail(Error::OutOfMemory);
    call.FillMask(mask);
    if (!InForwardingSpan(frame, [&] { return call.Paint(reflection, mask); })) return 0;
    call.CopyBelow(reflection);
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_ReflectImage(const u8* source, u32 width, u32 height, u32 bytesPerPixel, u32 sourceStride,
                                  u8* destination, u32 destinationStride, u32 splitRow, u32 reflectionHeight,
                                  f64 fadeStart, f64 fadeEnd, u32 color, u32 fadeShape, f64 ripple, u32 rippleScale,
                                  u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const Fade fade(reflectionHeight, fadeStart, fadeEnd, fadeShape);
        if (!source || !destination || bytesPerPixel != kRgbChannels) return frame.Fail(Error::BadArgument);
        if (splitRow > height || !fade.IsDefined()) return frame.Fail(Error::BadArgument);
        const bool isRippled = (flags & ZLV40_REFLECT_RIPPLED) != 0 && ripple > kNoRipple;
        const Reflection call = {
            source,           width, height, sourceStride, destination, destinationStride, splitRow,
            reflectionHeight, fade,  color,  ripple,       rippleScale, isRippled};
        return Reflect(call, frame);
    });
}
