// Medians, and the removal of dust and scratches: samples that stand out from the median of their surroundings.
#include "filters/median_windows.h"
#include "filters/window_filter.h"
#include "runtime/clamp.h"

#include "zlv40.h"

#include <cmath>

using namespace zlv;

namespace {

constexpr u32 kMostConstantTimeChannels = 4;
constexpr i32 kLargestConstantTimeHalf = 127;

u32 LimitedThreshold(u32 threshold) { return std::min(threshold, 255u); }

// A share in 1/255.
u32 WeightOf(f64 amount)
{
    constexpr f64 kNone = 0, kWhole = 1;
    return u32(ClampDouble(amount, &kNone, &kWhole) * 255);
}

// Without a threshold the amount plays no part, whatever it is.
bool IsUsable(u32 threshold, f64 amount) { return threshold == 0 || !std::isnan(amount); }

MedianBlend MakeBlend(u32 threshold, f64 amount)
{
    if (threshold == 0) return {};
    return {true, LimitedThreshold(threshold), WeightOf(amount)};
}

// Runs work(medians) with what makes the medians of the job.
template <class Work>
u32 WithMedians(const MedianJob& job, Work work)
{
    if (job.half <= SmallMedians::kLargestHalf) return work(SmallMedians(job));
    return work(LargeMedians(job));
}

// The running median, which settles below the top level.
u32 FilterRunningMedian(const WindowCall& call, u32 threshold, f64 amount)
{
    if (!IsUsable(threshold, amount)) return RefuseCall(Error::BadArgument);
    return InWindowFilter(call, kLargestSideOfSignedArea, [&](CallFrame& frame) {
        const MedianJob job = {
            call.src, call.dst, call.Radius(), 0, call.src.width, true, MakeBlend(threshold, amount)};
        return WithMedians(job, [&](auto&& medians) { return RunOverChannels(frame, call, medians); });
    });
}

// The median in constant time. Its windows lie inside the image, but for the sides that are padded.
u32 FilterMedian(const ImageView<const u8>& src, const ImageView<u8>& dst, i32 filterSize, u32 threshold, f64 amount,
                 u32 padFlags)
{
    if (!IsUsable(threshold, amount)) return RefuseCall(Error::BadArgument);
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src.data || !dst.data || src.data == dst.data) return frame.Fail(Error::BadArgument);
        if (src.channels == 0 || src.channels > kMostConstantTimeChannels) return frame.Fail(Error::BadArgument);
        if (src.width == 0 || src.height == 0) return frame.Fail(Error::BadArgument);
        // Even windows are not raised here: 4 is a window of 3.
        const i32 half = (std::max(filterSize, 1) - 1) / 2;
        if (half <= 0 || half > kLargestConstantTimeHalf) return frame.Fail(Error::BadArgument);
        const u32 side = 2 * u32(half) + 1;
        if (side > src.width || side > src.height) return frame.Fail(Error::BadArgument);
        if (src.stride == 0 || dst.stride == 0) return frame.Fail(Error::BadArgument);

        // An amount that comes to nothing writes the plain median here, where the running median leaves the samples.
        MedianBlend blend = MakeBlend(threshold, amount);
        blend.isOn = blend.isOn && blend.weight != 0;
        const u32 first = padFlags & ZLV40_PAD_LEFT ? 0 : u32(half);
        const u32 end = padFlags & ZLV40_PAD_RIGHT ? src.width : src.width - u32(half);
        const MedianJob job = {src, dst, u32(half), first, end, false, blend};
        return WithMedians(job, [&](auto&& medians) -> u32 {
            if (!medians.Prepare(src.channels)) return frame.Fail(Error::OutOfMemory);
            medians.Run(ChannelList(~0u, src.channels));
            return 1;
        });
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MedianFilterImage(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel,
                                       u32 srcRowStride, u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    return FilterRunningMedian(
        {src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask}, 0, 1.0);
}

ZLV_EXPORT u32 ZLV40_DustAndScratches(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel,
                                      u32 srcRowStride, u32 dstRowStride, i32 filterSize, u32 threshold, f64 amount,
                                      u32 channelMask)
{
    return FilterRunningMedian(
        {src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask}, threshold,
        amount);
}

ZLV_EXPORT u32 ZLV40_MedianFilterImage_O1(const u8* src, u32 width, u32 height, u8* dst, u32 channels, u32 srcRowStride,
                                          u32 dstRowStride, i32 filterSize, u32 padFlags)
{
    return FilterMedian({src, width, height, channels, srcRowStride}, {dst, width, height, channels, dstRowStride},
                        filterSize, 0, 0.0, padFlags);
}

ZLV_EXPORT u32 ZLV40_DustAndScratches_O1(const u8* src, u32 width, u32 height, u8* dst, u32 channels, u32 srcRowStride,
                                         u32 dstRowStride, i32 filterSize, u32 threshold, f64 amount, u32 padFlags)
{
    return FilterMedian({src, width, height, channels, srcRowStride}, {dst, width, height, channels, dstRowStride},
                        filterSize, threshold, amount, padFlags);
}
