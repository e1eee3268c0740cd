// Minimum, maximum and midpoint of a square window.
#include "base/running_extremes.h"
#include "filters/midpoint.kernels.h"
#include "filters/window_filter.h"

#include "zlv40.h"

using namespace zlv;

namespace {

class ExtremeFilter {
public:
    ExtremeFilter(const WindowCall& call, Extreme extreme) : call_(call), extremes_(call.src, call.Radius(), extreme) {}

    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        return extremes_.Prepare(channelsAtOnce) && row_.Resize(u64(call_.src.width) * channelsAtOnce);
    }

    void Run(const ChannelList& channels)
    {
        extremes_.Start(channels);
        for (u32 y = 0; y < call_.src.height; ++y) {
            MakeSelectedSamples(call_.dst, y, channels, row_.GetData(), [&](u8* row) { extremes_.Next(row); });
        }
    }

private:
    const WindowCall& call_;
    RunningExtremes extremes_;
    MVBuffer<u8> row_;
};

class MidpointFilter {
public:
    explicit MidpointFilter(const WindowCall& call)
        : call_(call),
          largest_(call.src, call.Radius(), Extreme::Largest),
          smallest_(call.src, call.Radius(), Extreme::Smallest)
    {
    }

    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        const u64 rowBytes = u64(call_.src.width) * channelsAtOnce;
        return largest_.Prepare(channelsAtOnce) && smallest_.Prepare(channelsAtOnce) && row_.Resize(rowBytes) &&
               smallestRow_.Resize(rowBytes);
    }

    void Run(const ChannelList& channels)
    {
        const size_t count = size_t(call_.src.width) * channels.Count();
        largest_.Start(channels);
        smallest_.Start(channels);
        for (u32 y = 0; y < call_.src.height; ++y) {
            MakeSelectedSamples(call_.dst, y, channels, row_.GetData(), [&](u8* row) {
                largest_.Next(row);
                smallest_.Next(smallestRow_.GetData());
                Kernels<MidpointKernels>().averageDown(row, smallestRow_.GetData(), count);
            });
        }
    }

private:
    const WindowCall& call_;
    RunningExtremes largest_, smallest_;
    MVBuffer<u8> row_, smallestRow_;
};

}  // namespace

ZLV_EXPORT u32 ZLV40_MidpointFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                                    u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kAnySide,
                          [&](CallFrame& frame) { return RunOverChannels(frame, call, MidpointFilter(call)); });
}

ZLV_EXPORT u32 ZLV40_MinimumFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                                   u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kAnySide, [&](CallFrame& frame) {
        return RunOverChannels(frame, call, ExtremeFilter(call, Extreme::Smallest));
    });
}

ZLV_EXPORT u32 ZLV40_MaximumFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                                   u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kAnySide, [&](CallFrame& frame) {
        return RunOverChannels(frame, call, ExtremeFilter(call, Extreme::Largest));
    });
}
