#include "runtime/random.h"

#include <gtest/gtest.h>

#include <thread>

namespace zlv {
namespace {

// The first draw from state 1: 1 * 214013 + 2531011 = 2745024, and 2745024 >> 16 = 41.
TEST(Random, DrawsFromOneOnAFreshThread)
{
    std::thread([] {
        MVThreadContext& context = *baseContexts.Get();
        EXPECT_EQ(context.randomState, 1u);
        u32 state = 1;
        for (int i = 0; i < 1000; ++i) {
            state = state * 214013u + 2531011u;
            ASSERT_EQ(DrawRandom(context), (state >> 16) & 32767u) << i;
        }
    }).join();
}

TEST(Random, TheFirstDraws)
{
    std::thread([] {
        MVThreadContext& context = *baseContexts.Get();
        for (const u32 want : {41u, 18467u, 6334u, 26500u, 19169u}) EXPECT_EQ(DrawRandom(context), want);
    }).join();
}

TEST(Random, SurvivesThreadExit)
{
    std::thread([] {
        const u32 first = DrawRandom(*baseContexts.Get());
        EXPECT_EQ(first, 41u);
        ZLV40_ThreadExit();
        EXPECT_EQ(DrawRandom(*baseContexts.Get()), 18467u);
    }).join();
}

TEST(Random, StartsAnewOnEveryThread)
{
    for (int i = 0; i < 3; ++i) {
        std::thread([] { EXPECT_EQ(DrawRandom(*baseContexts.Get()), 41u); }).join();
    }
}

TEST(Random, AJumpIsAsManyDraws)
{
    u32 state = 12345;
    for (u64 draws = 0; draws < 1000; ++draws) {
        ASSERT_EQ(JumpOf(draws).From(12345), state) << draws;
        state = state * 214013u + 2531011u;
    }
}

// The generator goes through all 2^32 states before it comes back.
TEST(Random, AJumpOverThePeriodLeadsBack)
{
    for (const u32 state : {0u, 1u, 0xFFFFFFFFu}) {
        EXPECT_EQ(JumpOf(u64(1) << 32).From(state), state);
        EXPECT_EQ(JumpOf((u64(1) << 32) + 3).From(state), JumpOf(3).From(state));
        EXPECT_NE(JumpOf(u64(1) << 31).From(state), state);
    }
}

TEST(Random, JumpsFollowEachOther)
{
    const RandomJump jump = JumpOf(1000).Then(JumpOf(77));
    EXPECT_EQ(jump.From(5), JumpOf(1077).From(5));
}

TEST(Random, CanBeSeeded)
{
    std::thread([] {
        MVThreadContext& context = *baseContexts.Get();
        (void)DrawRandom(context);
        SeedRandom(context, 1);
        EXPECT_EQ(DrawRandom(context), 41u);
        SeedRandom(context, 0);
        EXPECT_EQ(DrawRandom(context), 38u);  // 2531011 >> 16
    }).join();
}

}  // namespace
}  // namespace zlv
