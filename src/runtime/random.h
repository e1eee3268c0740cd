// The run-time random generator: a linear congruential generator with 15 bits a draw, one state a thread.
#pragma once

#include "runtime/contexts.h"

namespace zlv {

inline constexpr u32 kRandomMultiplier = 214013;
inline constexpr u32 kRandomIncrement = 2531011;
inline constexpr u32 kLargestDraw = 32767;

inline void SeedRandom(MVThreadContext& context, u32 seed) { context.randomState = seed; }

// 0 to kLargestDraw.
inline u32 DrawRandom(MVThreadContext& context)
{
    context.randomState = context.randomState * kRandomMultiplier + kRandomIncrement;
    return (context.randomState >> 16) & kLargestDraw;
}

}  // namespace zlv
