// The run-time random generator: a linear congruential generator with 15 bits a draw, one state a thread.
#pragma once

#include "runtime/contexts.h"

namespace zlv {

inline constexpr u32 kRandomMultiplier = 214013;
inline constexpr u32 kRandomIncrement = 2531011;
inline constexpr u32 kLargestDraw = 32767;

inline void SeedRandom(MVThreadContext& context, u32 seed) { context.randomState = seed; }

// Several draws at once: they lead from a state to state * multiplier + increment.
struct RandomJump {
    u32 multiplier = 1;
    u32 increment = 0;

    constexpr u32 From(u32 state) const { return state * multiplier + increment; }
    constexpr RandomJump Then(RandomJump next) const { return {multiplier * next.multiplier, next.From(increment)}; }
};

inline constexpr RandomJump kOneDraw = {kRandomMultiplier, kRandomIncrement};

// By repeated doubling: the jump is taken for every bit of the count.
constexpr RandomJump JumpOf(u64 draws)
{
    RandomJump jump;
    for (RandomJump power = kOneDraw; draws > 0; draws >>= 1, power = power.Then(power)) {
        if (draws & 1) jump = jump.Then(power);
    }
    return jump;
}

// The draw that led to this state, 0 to kLargestDraw.
constexpr u32 DrawOf(u32 state) { return (state >> 16) & kLargestDraw; }

// 0 to kLargestDraw.
inline u32 DrawRandom(MVThreadContext& context)
{
    context.randomState = kOneDraw.From(context.randomState);
    return DrawOf(context.randomState);
}

}  // namespace zlv
