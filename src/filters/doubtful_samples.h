// Samples that a quick way leaves in doubt.
#pragma once

#include "base/channel_list.h"

namespace zlv {

// 0 for samples whose windows hold a 0, which settles them. Returns whether any sample is still in doubt.
inline bool KeepDoubtOutsideZeros(const u8* __restrict smallest, size_t count, u8* __restrict out,
                                  u8* __restrict isDoubtful)
{
    u8 anyDoubtful = 0;
    for (size_t i = 0; i < count; ++i) {
        const u8 hasNoZero = smallest[i] == 0 ? 0 : 0xFF;
        out[i] &= hasNoZero;
        isDoubtful[i] &= hasNoZero;
        anyDoubtful |= isDoubtful[i];
    }
    return anyDoubtful != 0;
}

// Makes the samples of a row in doubt anew: out[place] = make(place, x, channel) where isDoubtful is set. All rows hold
// the selected samples one after the other.
template <class Make>
void MakeDoubtfulSamples(const u8* isDoubtful, u32 width, const ChannelList& channels, u8* out, Make make)
{
    const u32 step = channels.Count();
    for (u32 x = 0; x < width; ++x) {
        for (u32 i = 0; i < step; ++i) {
            const size_t place = size_t(x) * step + i;
            if (isDoubtful[place]) out[place] = make(place, x, channels.At(i));
        }
    }
}

}  // namespace zlv
