// The Canny edge detector (J. Canny, A Computational Approach to Edge Detection, 1986): smoothing, derivatives, their
// magnitudes, thinning to ridges, and hysteresis. The first four go down the image together, a few rows apart, so that
// most of what they hand on stays in the cache.
#include "filters/canny.kernels.h"
#include "filters/canny_hysteresis.h"
#include "filters/canny_smoothing.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <limits>

using namespace zlv;

namespace {

constexpr u32 kStages = 5;
constexpr u8 kInk = 0, kPaper = 255;

// Below it no pixel is thinned: the last two rows and columns are left out, and the first of each.
constexpr u32 kSmallestSide = 4;

// Smoothed rows become gradients, and these possible edges.
class RidgeFinder {
public:
    RidgeFinder(RidgePlane& ridges, u32 width, u32 height)
        : kernels_(Kernels<CannyKernels>()), ridges_(ridges), width_(width), height_(height)
    {
    }

    [[nodiscard]] bool Resize()
    {
        const u64 pitch = ridges_.Pitch();
        return smoothed_.Resize(3, pitch) && gx_.Resize(2, pitch) && gy_.Resize(2, pitch) &&
               magnitudes_.Resize(3, pitch);
    }

    void Run(CannySmoothing& smoothing)
    {
        for (u32 y = 0; y < height_; ++y) {
            smoothing.SmoothRow(smoothed_.Row(y));
            if (y >= 1) Derive(y - 1);
            if (y >= 3) Thin(y - 2);
        }
    }

private:
    // Of the last row and the last column nobody asks.
    void Derive(u32 y)
    {
        const i16* const row = smoothed_.Row(y);
        const i16* const above = y > 0 ? smoothed_.Row(y - 1) : row;
        i16 *const gx = gx_.Row(y), *const gy = gy_.Row(y);
        gx[0] = i16(row[1] - row[0]);
        kernels_.subtract(row + 2, row, gx + 1, width_ - 2);
        kernels_.subtract(smoothed_.Row(y + 1), above, gy, width_ - 1);
        kernels_.measure(gx, gy, magnitudes_.Row(y), width_ - 1);
    }

    void Thin(u32 y)
    {
        const u32 count = width_ - 3;
        const ThinningRows rows = {magnitudes_.Row(y - 1) + 1, magnitudes_.Row(y) + 1, magnitudes_.Row(y + 1) + 1,
                                   gx_.Row(y) + 1, gy_.Row(y) + 1};
        i16* const ridges = ridges_.Row(y);
        kernels_.thin(rows, ridges + 1, count);
        std::fill(ridges + 1 + count, ridges + ridges_.Pitch(), kNoEdge);
        ridges_.CountRidges(y);
    }

    const CannyKernels& kernels_;
    RidgePlane& ridges_;
    const u32 width_, height_;
    RowRing<i16> smoothed_, gx_, gy_, magnitudes_;
};

struct Detection {
    ImageView<const u8> src;
    ImageView<u8> dst;
    f32 sigma, lowFraction, highFraction;

    bool IsTooSmall() const { return src.width < kSmallestSide || src.height < kSmallestSide; }
};

bool FindRidges(const Detection& detection, RidgePlane& ridges)
{
    CannySmoothing smoothing;
    RidgeFinder finder(ridges, detection.src.width, detection.src.height);
    if (!smoothing.Make(detection.src, detection.sigma) || !finder.Resize()) return false;
    finder.Run(smoothing);
    return true;
}

u32 DetectEdges(const Detection& detection, CallFrame& frame)
{
    const ImageView<u8>& dst = detection.dst;
    RidgePlane ridges;
    // A plane without pixels can't be had.
    if (dst.width == 0 || dst.height == 0 || !ridges.Resize(dst.width, dst.height)) {
        return frame.Fail(Error::OutOfMemory);
    }
    if (!detection.IsTooSmall() && !FindRidges(detection, ridges)) return frame.Fail(Error::OutOfMemory);
    for (u32 stage = 1; stage < kStages; ++stage) {
        if (!frame.Report(stage, kStages)) return 0;
    }
    if (!ridges.TraceEdges(detection.lowFraction, detection.highFraction)) return frame.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < dst.height; ++y) {
        Kernels<CannyKernels>().draw(ridges.Row(y), kInk, kPaper, dst.Row(y), dst.width);
    }
    return frame.Report(kStages, kStages) ? 1 : 0;
}

bool IsFraction(f32 fraction) { return fraction >= 0 && fraction <= std::numeric_limits<f32>::max(); }

}  // namespace

ZLV_EXPORT u32 ZLV40_CannyEdgeDetector(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst,
                                       u32 dstRowStride, f64 sigma, f64 lowFraction, f64 highFraction)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || srcRowStride == 0 || dstRowStride == 0) return frame.Fail(Error::BadArgument);
        const Detection detection = {{src, width, height, 1, srcRowStride},
                                     {dst, width, height, 1, dstRowStride},
                                     f32(sigma),
                                     f32(lowFraction),
                                     f32(highFraction)};
        if (!CannySmoothing::IsPossible(detection.sigma)) return frame.Fail(Error::BadArgument);
        if (!IsFraction(detection.lowFraction) || !IsFraction(detection.highFraction)) {
            return frame.Fail(Error::BadArgument);
        }
        return DetectEdges(detection, frame);
    });
}
