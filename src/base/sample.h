// What the two sample widths of the base layer differ in.
#pragma once

#include "platform/types.h"
#include "runtime/base_call.h"

namespace zlv {

// The largest value of a sample.
template <class T>
inline constexpr u32 kTop = sizeof(T) == 1 ? 255 : 65535;

// The entries of a table of samples.
template <class T>
inline constexpr u32 kLevels = kTop<T> + 1;

// The most channels that a mask of bits 0 to 7 can select.
inline constexpr u32 kMaxMaskedChannels = 8;

constexpr bool IsSelected(u32 channelMask, u32 channel) { return (channelMask >> channel) & 1; }

// Calls work(samples) with the width that `flags` asks for.
template <class Work>
u32 WithSamples(void* buffer, u32 flags, Work work)
{
    return flags & kSixteenBitSamples ? work(static_cast<u16*>(buffer)) : work(static_cast<u8*>(buffer));
}

template <class Work>
u32 WithSamples(const void* buffer, u32 flags, Work work)
{
    return flags & kSixteenBitSamples ? work(static_cast<const u16*>(buffer)) : work(static_cast<const u8*>(buffer));
}

}  // namespace zlv
