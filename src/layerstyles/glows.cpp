// Glows of an image with alpha, in place: a halo behind the shape, and a tint from its edges inwards. Both blur the
// alpha and reshape it by a curve.
#include "base/buffer_rows.h"
#include "base/channels.h"
#include "base/gaussian_blur.h"
#include "base/image_view.h"
#include "base/merge.h"
#include "base/overlay.h"
#include "base/packed_image.h"
#include "base/table_pass.h"
#include "runtime/clamp.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <cstring>

using namespace zlv;

namespace {

constexpr u32 kChannels = 4;
constexpr f64 kSizePerSigma = 2.5;
constexpr u32 kFirstChannel = 1;
// Lifts the thin end of a blur, so that a glow keeps its body at a distance.
constexpr f64 kDefaultExponent = 0.5555555555555556;

f64 DefaultCurve(u32 i) { return Pow(i * 0.00390625, kDefaultExponent) * 256; }

struct Glow {
    ImageView<u8> image;
    f64 sigma, opacity;
    u32 color;
    const u8* curve;  // null for the default
};

[[nodiscard]] bool Allocate(PackedImage& picture, const ImageView<u8>& image, u32 channels)
{
    return picture.Resize(image.width, image.height, channels);
}

void Invert(PackedImage& plane)
{
    u8* const samples = plane.Data();
    for (u64 i = 0; i < plane.Size(); ++i) samples[i] = u8(255 - samples[i]);
}

void ReadAlpha(const ImageView<u8>& image, u8* alpha)
{
    (void)MV40_SplitRGBAToRGBPlusA(image.data, image.width, image.height, image.stride, nullptr, 0, alpha, image.width,
                                   0);
}

// Progress is the client's. False without memory; a cancel is not asked for: what the blur has not written is 0.
[[nodiscard]] bool Blur(CallFrame& frame, const Glow& glow, const u8* from, u8* to)
{
    const u32 width = glow.image.width, height = glow.image.height;
    std::memset(to, 0, size_t(width) * height);
    const ForwardingSpan span(frame);
    return MV40_GaussianBlurImage(from, width, height, 1, width, to, width, glow.sigma,
                                  kFirstChannel | kBlurTruncates) != 0 ||
           Error(MV40_GetLastError()) != Error::OutOfMemory;
}

void ApplyTable(const Glow& glow, u8* plane, const u8* table)
{
    const void* const tables[] = {table};
    (void)MV40_ApplyLUTsToImage(plane, glow.image.width, glow.image.height, 1, glow.image.width, tables, 0);
}

// The two glows take their arguments alike.
template <class Make>
u32 MakeGlow(u8* image, u32 width, u32 height, u32 rowStride, u32 size, f64 opacity, u32 color, const u8* curve,
             Make make)
{
    return InFrame(FrameKind::NoNestCount, [&](CallFrame& frame) -> u32 {
        if (!image || opacity != opacity) return frame.Fail(Error::BadArgument);
        const f64 lowest = 0, highest = 1;
        return make(frame, Glow{{image, width, height, kChannels, rowStride},
                                size / kSizePerSigma,
                                ClampDouble(opacity, &lowest, &highest),
                                color,
                                curve});
    });
}

// ---- The halo ---------------------------------------------------------------------------------------------------

u32 GlowOutside(CallFrame& frame, const Glow& glow)
{
    const ImageView<u8>& image = glow.image;
    const u32 width = image.width, height = image.height;
    PackedImage alpha, coverage, halo;
    if (!Allocate(alpha, image, 1) || !Allocate(coverage, image, 1) || !Allocate(halo, image, kChannels)) {
        return frame.Fail(Error::OutOfMemory);
    }
    ReadAlpha(image, alpha.Data());
    if (!Blur(frame, glow, alpha.Data(), coverage.Data())) return frame.Fail(Error::OutOfMemory);

    u8 table[256];
    for (u32 i = 0; i < 256; ++i) table[i] = u8((glow.curve ? glow.curve[i] : DefaultCurve(i)) * glow.opacity);
    ApplyTable(glow, coverage.Data(), table);
    // Under the shape the halo is as solid as the shape itself.
    (void)MV40_OverlayImage(coverage.Data(), width, height, 1, width, alpha.Data(), width, height, width, 0, 0, 1.0,
                            1.0, u32(OverlayMode::Lighter), 0);
    (void)MV40_AlphaBlendColor(halo.Data(), width, height, kChannels, halo.Stride(), coverage.Data(), width, height,
                               width, glow.color, 0, 0, kColorReplace);
    (void)MV40_MergeRGBA(halo.Data(), width, height, kChannels, halo.Stride(), image.data, width, height, image.stride,
                         0, 0, 1.0, u32(MergeMode::KeepAlpha));
    (void)MV40_CopyBuffer(halo.Data(), halo.Stride(), height, image.stride, image.data);
    frame.SetLastError(Error::None);
    return 1;
}

// ---- The tint ---------------------------------------------------------------------------------------------------

u32 GlowInside(CallFrame& frame, const Glow& glow)
{
    const ImageView<u8>& image = glow.image;
    PackedImage outside, tint;
    if (!Allocate(outside, image, 1) || !Allocate(tint, image, 1)) return frame.Fail(Error::OutOfMemory);
    ReadAlpha(image, outside.Data());
    Invert(outside);
    if (!Blur(frame, glow, outside.Data(), tint.Data())) return frame.Fail(Error::OutOfMemory);

    // Not the halo's: the curve is truncated before it meets the opacity.
    u8 table[256];
    for (u32 i = 0; i < 256; ++i) table[i] = u8((glow.curve ? glow.curve[i] : u8(DefaultCurve(i))) * glow.opacity);
    ApplyTable(glow, tint.Data(), table);
    const u32 width = image.width, height = image.height;
    (void)MV40_AlphaBlendColor(image.data, width, height, kChannels, image.stride, tint.Data(), width, height, width,
                               glow.color, 0, 0, kColorOver);
    frame.SetLastError(Error::None);
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_OuterGlowRGBA(u8* image, u32 width, u32 height, u32 rowStride, u32 size, f64 opacity, u32 color,
                                   const u8* curve)
{
    return MakeGlow(image, width, height, rowStride, size, opacity, color, curve, GlowOutside);
}

ZLV_EXPORT u32 ZLV40_InnerGlowRGBA(u8* image, u32 width, u32 height, u32 rowStride, u32 size, f64 opacity, u32 color,
                                   const u8* curve)
{
    return MakeGlow(image, width, height, rowStride, size, opacity, color, curve, GlowInside);
}
