// What both engines of the Gaussian blur work on.
#pragma once

#include "base/image_view.h"
#include "base/sample.h"

namespace zlv {

// Two images of the same size.
template <class T>
struct BlurImages {
    ImageView<const T> source;
    ImageView<T> destination;
};

// Neighbouring channels that are blurred together: one of them, or all. A row then has width * count samples, and the
// next sample of the same channel follows `count` samples later.
struct ChannelSpan {
    u32 first, count;
};

// How many channels go together: one, as reports want them, or all where nobody hears any and all are selected.
constexpr u32 ChannelsTogether(u32 channelMask, u32 channels, bool isSilent)
{
    const u32 all = (1u << channels) - 1;
    return isSilent && (channelMask & all) == all ? channels : 1;
}

// Calls blur(span) for the selected channels, until it returns false.
template <class Blur>
bool ForEachSpan(u32 channelMask, u32 channels, u32 together, Blur blur)
{
    for (u32 c = 0; c < channels; c += together) {
        if (IsSelected(channelMask, c) && !blur(ChannelSpan{c, together})) return false;
    }
    return true;
}

}  // namespace zlv
