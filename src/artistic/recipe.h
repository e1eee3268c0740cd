// What the chains of steps share: pictures of their own, the steps that report, and the end of a step that failed.
#pragma once

#include "base/packed_image.h"
#include "runtime/base_tables.h"
#include "runtime/frame.h"

namespace zlv {

inline constexpr u32 kGrayChannels = 1;
inline constexpr u32 kRgbChannels = 3;

// Masks of channels in the flags of base functions.
inline constexpr u32 kGrayMask = 1;
inline constexpr u32 kRgbMask = 7;

// A palette whose entries are the levels of gray, in any order of components.
inline const u8* GrayRamp() { return baseTables.grayRamp[0].bytes; }

constexpr bool IsNumber(f64 value) { return value == value; }

// Ends the effect with the code of the base function that was called last.
inline u32 FailAsBase(CallFrame& frame) { return frame.Fail(Error(MV40_GetLastError())); }

// Runs a step of the base layer whose progress is the effect's, and whose code is too.
template <class Step>
u32 InForwardingSpan(CallFrame& frame, Step step)
{
    ForwardingSpan span(frame);
    const u32 done = step();
    span.KeepBaseError();
    return done;
}

}  // namespace zlv
