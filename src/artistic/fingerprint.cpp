// Fingerprint: a gray image as ridge lines.
#include "artistic/recipe.h"
#include "base/convolution.h"
#include "base/gaussian_blur.h"
#include "base/gray_morphology.h"
#include "base/histograms.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

constexpr f64 kSigmaPerBlur = 12.5, kPercent = 100.0;
constexpr f64 kCutPercent = 5.0;
constexpr u32 kSmallestRidge = 3;
constexpr u32 kLargestRidge = 2901;  // the sum of a larger window may not fit 31 bits

// A window of 5 x 5 that raises, or lowers, what lies above and below.
constexpr i32 kElementSide = 5;
constexpr u32 kElement[kElementSide * kElementSide] = {
    0, 0, 10, 0, 0,  //
    0, 0, 10, 0, 0,  //
    0, 0, 10, 0, 0,  //
    0, 0, 10, 0, 0,  //
    0, 0, 10, 0, 0,  //
};

// A pixel against the others of its window: the entries add up to 0.
class RidgeKernel {
public:
    [[nodiscard]] bool Make(u32 side)
    {
        const u64 count = u64(side) * side;
        if (!entries_.Resize(count)) return false;
        std::fill_n(entries_.GetData(), count, -1.0);
        entries_[count / 2] = f64(count - 1);
        return true;
    }

    const f64* Entries() const { return entries_.GetData(); }

private:
    MVBuffer<f64> entries_;
};

struct Fingerprint {
    const u8* source;
    u32 width, height, sourceStride;
    u8* destination;
    u32 destinationStride;

    u32 Blur(f64 sigma, PackedImage& blurred) const
    {
        return MV40_GaussianBlurImage(source, width, height, kGrayChannels, sourceStride, blurred.Data(),
                                      blurred.Stride(), sigma, kGrayMask);
    }

    u32 Thicken(PackedImage& blurred, bool isLight, PackedImage& lines) const
    {
        const auto change = isLight ? MV40_MorphoDilationGray : MV40_MorphoErosionGray;
        return change(blurred.Data(), width, height, blurred.Stride(), kElement, kElementSide, lines.Data(),
                      lines.Stride());
    }

    u32 FindRidges(PackedImage& lines, const RidgeKernel& kernel, u32 side) const
    {
        return MV40_ApplyConvolutionFilterToImage(lines.Data(), width, height, kGrayChannels, lines.Stride(),
                                                  destination, destinationStride, side, side, kernel.Entries(), 1.0,
                                                  kGrayMask | kPlainSum);
    }

    u32 Stretch() const
    {
        return MV40_HistogramStretchImage(destination, width, height, kGrayChannels, destinationStride, kCutPercent,
                                          kCutPercent, 0, kGrayMask);
    }
};

u32 DrawRidges(const Fingerprint& call, f64 sigma, u32 side, bool isLight, CallFrame& frame)
{
    PackedImage blurred, lines;
    RidgeKernel kernel;
    if (!blurred.Resize(call.width, call.height, kGrayChannels) ||
        !lines.Resize(call.width, call.height, kGrayChannels) || !kernel.Make(side)) {
        return frame.Fail(Error::OutOfMemory);
    }
    if (!call.Blur(sigma, blurred)) return FailAsBase(frame);
    if (!call.Thicken(blurred, isLight, lines)) return FailAsBase(frame);
    const u32 done = InForwardingSpan(frame, [&] { return call.FindRidges(lines, kernel, side); });
    // A cancel is no failure here: what was drawn so far is stretched like a whole picture.
    if (!done && frame.LastError() != Error::Cancelled) return 0;
    if (!call.Stretch()) return FailAsBase(frame);
    frame.SetLastError(Error::None);
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_Fingerprint(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                 u32 destinationStride, f64 blur, u32 ridge, u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const u32 side = std::max(ridge | 1, kSmallestRidge);
        if (!source || !destination || !IsNumber(blur) || side > kLargestRidge) return frame.Fail(Error::BadArgument);
        const f64 sigma = std::max(0.0, blur) * kSigmaPerBlur / kPercent;
        return DrawRidges({source, width, height, sourceStride, destination, destinationStride}, sigma, side,
                          flags & ZLV40_FINGERPRINT_LIGHT, frame);
    });
}
