// What the window statistic filters share: their arguments, the checks of them, and the ways through the channels.
#pragma once

#include "base/channel_list.h"
#include "base/image_view.h"
#include "runtime/frame.h"

#include <algorithm>

namespace zlv {

struct WindowCall {
    ImageView<const u8> src;
    ImageView<u8> dst;
    i32 filterSize;
    u32 channelMask;

    // In the order of the exports.
    WindowCall(const u8* from, u32 width, u32 height, u8* to, u32 channels, u32 srcStride, u32 dstStride, i32 size,
               u32 mask)
        : src{from, width, height, channels, srcStride},
          dst{to, width, height, channels, dstStride},
          filterSize(size),
          channelMask(mask)
    {
    }

    // Windows have a centre: sizes below 1 become 1 and even ones grow by 1.
    u32 Side() const { return u32(std::max(filterSize, 1)) | 1; }
    u32 Radius() const { return Side() / 2; }
    // The samples of a window; the side is at most 65535.
    u32 Area() const { return Side() * Side(); }
    ChannelList Selected() const { return ChannelList(channelMask, src.channels); }

    // Adds up valueOf(sample) over the window around a pixel, row by row. Outside the image its edge samples repeat.
    template <class ValueOf>
    f64 SumAround(u32 x, u32 y, u32 channel, ValueOf valueOf) const
    {
        const i64 radius = Radius(), lastX = i64(src.width) - 1, lastY = i64(src.height) - 1;
        f64 sum = 0;
        for (i64 j = y - radius; j <= y + radius; ++j) {
            const u8* const row = src.Row(u32(std::clamp<i64>(j, 0, lastY))) + channel;
            for (i64 i = x - radius; i <= x + radius; ++i) {
                sum += valueOf(row[size_t(std::clamp<i64>(i, 0, lastX)) * src.channels]);
            }
        }
        return sum;
    }
};

// The largest windows whose area, and whose sum of samples, are numbers of 32 bits: with a sign, and without one.
inline constexpr u32 kLargestSideOfSignedArea = 46339;
inline constexpr u32 kLargestSideOfSignedSum = 2901;
inline constexpr u32 kLargestSideOfSum = 4103;
inline constexpr u32 kAnySide = 0xFFFFFFFF;

// Refuses what no window filter takes, and otherwise runs the work, which returns 1 or 0, inside the call's frame.
template <class Work>
u32 InWindowFilter(const WindowCall& call, u32 largestSide, Work work)
{
    constexpr u32 kMostChannels = 8;
    const ImageView<const u8>& src = call.src;
    if (!src.data || !call.dst.data || src.data == call.dst.data) return RefuseCall(Error::BadArgument);
    if (src.channels == 0 || src.channels > kMostChannels) return RefuseCall(Error::BadArgument);
    if (src.width == 0 || src.height == 0 || call.Side() > largestSide) return RefuseCall(Error::BadArgument);
    return InFrame(FrameKind::Full, work);
}

// Takes the filter over the selected channels: one after the other when somebody may be told of each, otherwise all at
// once. A filter has Prepare(channelsAtOnce), false without memory, and Run(channels).
template <class Filter>
u32 RunOverChannels(CallFrame& frame, const WindowCall& call, Filter&& filter)
{
    const ChannelList selected = call.Selected();
    if (selected.Count() == 0) return 1;
    const bool mayReport = frame.MayReport();
    if (!filter.Prepare(mayReport ? 1 : selected.Count())) return frame.Fail(Error::OutOfMemory);
    if (!mayReport) {
        filter.Run(selected);
        return 1;
    }
    for (u32 c = 0; c < call.src.channels; ++c) {
        const ChannelList one(call.channelMask & (1u << c), call.src.channels);
        if (one.Count() == 0) continue;
        filter.Run(one);
        if (!frame.Report(c, call.src.channels)) return 0;
    }
    return 1;
}

// Takes the filter down the rows, all selected channels at once. Each row is reported even when no channel is selected.
// A filter has Start(), false without memory, and MakeRow(y).
template <class Filter>
u32 RunOverRows(CallFrame& frame, const WindowCall& call, Filter&& filter)
{
    const bool hasWork = call.Selected().Count() > 0;
    if (hasWork && !filter.Start()) return frame.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < call.src.height; ++y) {
        if (hasWork) filter.MakeRow(y);
        if (!frame.Report(y, call.src.height)) return 0;
    }
    return 1;
}

// The selected samples of a row one after the other: those of the image where they stand, or a copy.
inline const u8* SelectedSamples(const ImageView<const u8>& image, u32 y, const ChannelList& channels, u8* copy)
{
    if (channels.IsAll()) return image.Row(y);
    channels.Gather(image.Row(y), image.width, copy);
    return copy;
}

// Lets make(row) write the selected samples of a row one after the other, straight into the image where it can.
template <class Make>
void MakeSelectedSamples(const ImageView<u8>& image, u32 y, const ChannelList& channels, u8* copy, Make make)
{
    if (channels.IsAll()) {
        make(image.Row(y));
        return;
    }
    make(copy);
    channels.Scatter(copy, image.width, image.Row(y));
}

}  // namespace zlv
