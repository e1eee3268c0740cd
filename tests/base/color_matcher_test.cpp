#include "base/color_matcher.h"

#include "base/palette_support.h"
#include "plain/plain_palette.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <thread>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::PaletteKind;

TEST(ColorMatcher, EveryTargetEqualsPlain)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        zlvtest::ForEveryKind<PaletteKind>([&](PaletteKind kind) {
            for (const u32 count : {1u, 2u, 3u, 4u, 15u, 16u, 17u, 100u, 255u, 256u}) {
                SCOPE(zlvtest::NameOf(target), NameOf(kind), count);
                const Bytes palette = zlvtest::MakePalette(kind, count, count);
                CMVColorMatch matcher;
                matcher.SetPalette(palette.data(), count);
                zlvtest::Random random(count);
                for (u32 i = 0; i < 600; ++i) {
                    // Entries themselves, colours near the first ones, and any.
                    const u8* const entry = palette.data() + 4 * random.Below(count);
                    u8 c[3] = {entry[2], entry[1], entry[0]};
                    if (i % 3 != 0) c[random.Below(3)] = random.Byte();
                    if (i % 3 == 2) c[random.Below(3)] = random.Byte();
                    ASSERT_EQ(matcher.FindClosest(c[0], c[1], c[2]),
                              u32(plain::NearestEntry(palette.data(), count, c[0], c[1], c[2])))
                        << +c[0] << ' ' << +c[1] << ' ' << +c[2];
                }
            }
        });
    }
}

TEST(ColorMatcher, TheFirstComponentPairsWithByteTwo)
{
    const Bytes palette = {0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 4);
    EXPECT_EQ(matcher.FindClosest(255, 0, 0), 3u);
    EXPECT_EQ(matcher.FindClosest(0, 255, 0), 2u);
    EXPECT_EQ(matcher.FindClosest(0, 0, 255), 1u);
    EXPECT_EQ(matcher.FindClosest(1, 1, 1), 0u);
}

TEST(ColorMatcher, ByteThreeIsIgnored)
{
    const Bytes palette = {10, 10, 10, 255, 12, 12, 12, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 2);
    EXPECT_EQ(matcher.FindClosest(10, 10, 10), 0u);
    EXPECT_EQ(matcher.FindClosest(12, 12, 12), 1u);
}

TEST(ColorMatcher, ANullPaletteAlwaysAnswersZero)
{
    CMVColorMatch matcher;
    EXPECT_EQ(matcher.FindClosest(255, 255, 255), 0u);
    matcher.SetPalette(nullptr, 256);
    EXPECT_EQ(matcher.FindClosest(1, 2, 3), 0u);
}

TEST(ColorMatcher, ANullPaletteKeepsTheOneBefore)
{
    const Bytes palette = {0, 0, 0, 0, 9, 9, 9, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 2);
    matcher.SetPalette(nullptr, 0);
    EXPECT_EQ(matcher.FindClosest(9, 9, 9), 1u);
}

TEST(ColorMatcher, ANewPaletteForgetsTheAnswers)
{
    const Bytes before = {0, 0, 0, 0, 9, 9, 9, 0}, after = {9, 9, 9, 0, 0, 0, 0, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(before.data(), 2);
    EXPECT_EQ(matcher.FindClosest(9, 9, 9), 1u);
    matcher.SetPalette(after.data(), 2);
    EXPECT_EQ(matcher.FindClosest(9, 9, 9), 0u);
}

TEST(ColorMatcher, NoEntriesAnswerZero)
{
    const Bytes palette = {1, 2, 3, 4};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 0);
    EXPECT_EQ(matcher.FindClosest(200, 200, 200), 0u);
    EXPECT_EQ(matcher.FindClosest(200, 200, 200), 0u);
}

TEST(ColorMatcher, AnExactColorIsItsFirstEntry)
{
    const Bytes palette = {1, 1, 1, 0, 7, 6, 5, 0, 7, 6, 5, 0, 5, 6, 7, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 4);
    EXPECT_EQ(matcher.FindClosest(5, 6, 7), 1u);
}

TEST(ColorMatcher, AmongEqualDistancesTheLowerIndexWins)
{
    // 10 is 2 away from both; a closer one behind them takes it from them.
    const Bytes palette = {12, 12, 12, 0, 8, 8, 8, 0, 12, 8, 12, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 3);
    EXPECT_EQ(matcher.FindClosest(10, 10, 10), 0u);
    EXPECT_EQ(matcher.FindClosest(12, 9, 12), 2u);
}

TEST(ColorMatcher, EntriesBeyondTheCountAreNotConsidered)
{
    const Bytes palette = {0, 0, 0, 0, 50, 50, 50, 0, 100, 100, 100, 0};
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 2);
    EXPECT_EQ(matcher.FindClosest(100, 100, 100), 1u);
}

TEST(ColorMatcher, MoreColorsThanItRemembersAreAnsweredAgain)
{
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 200, 5);
    CMVColorMatch matcher;
    matcher.SetPalette(palette.data(), 200);
    for (u32 round = 0; round < 3; ++round) {
        for (u32 i = 0; i < 600; ++i) {
            const u8 first = u8(i), second = u8(i / 3), third = u8(i * 7);
            EXPECT_EQ(matcher.FindClosest(first, second, third),
                      u32(plain::NearestEntry(palette.data(), 200, first, second, third)));
        }
    }
}

TEST(ColorMatcher, ACountAbove256IsLimited)
{
    zlvtest::GuardedBuffer palette(1024, zlvtest::Flush::ToEnd, 30);
    palette.Data()[4 * 255] = 255;
    for (const u32 count : {256u, 257u, 0xFFFFFFFFu}) {
        SCOPE(count);
        CMVColorMatch matcher;
        matcher.SetPalette(palette.Data(), count);
        EXPECT_EQ(matcher.FindClosest(30, 30, 255), 255u);
        ColorMatcherHandle* const handle = MV40_CreateColorMatcher(palette.Data(), count);
        EXPECT_EQ(MV40_FindClosestColor(handle, 30, 30, 255), 255);
        EXPECT_EQ(MV40_DestroyColorMatcher(handle), 1u);
    }
}

TEST(ColorMatcher, ReadsNoEntryBeyondTheCount)
{
    for (const u32 count : {1u, 3u, 16u, 255u}) {
        SCOPE(count);
        zlvtest::GuardedBuffer palette(count * 4, zlvtest::Flush::ToEnd, 9);
        CMVColorMatch matcher;
        matcher.SetPalette(palette.Data(), count);
        EXPECT_EQ(matcher.FindClosest(1, 1, 1), 0u);
    }
}

TEST(ColorMatcherHandle, AnswersLikeTheMatcher)
{
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 100, 3);
    ColorMatcherHandle* const handle = MV40_CreateColorMatcher(palette.data(), 100);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    for (u32 i = 0; i < 256; ++i) {
        EXPECT_EQ(MV40_FindClosestColor(handle, u8(i), u8(255 - i), u8(i / 2)),
                  plain::NearestEntry(palette.data(), 100, int(i), int(255 - i), int(i / 2)));
        EXPECT_EQ(MV40_GetLastError(), 0u);
    }
    EXPECT_EQ(MV40_DestroyColorMatcher(handle), 1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
}

TEST(ColorMatcherHandle, ANullPaletteAlwaysAnswersZero)
{
    ColorMatcherHandle* const handle = MV40_CreateColorMatcher(nullptr, 256);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(MV40_FindClosestColor(handle, 255, 255, 255), 0);
    EXPECT_EQ(MV40_DestroyColorMatcher(handle), 1u);
}

TEST(ColorMatcherHandle, IsABlockOfEightBytes) { EXPECT_EQ(sizeof(ColorMatcherHandle), 8u); }

TEST(ColorMatcherHandle, NullIsRefused)
{
    EXPECT_EQ(MV40_DestroyColorMatcher(nullptr), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    MV40_SetCallback(nullptr, 0);  // clears the code
    EXPECT_EQ(MV40_FindClosestColor(nullptr, 1, 2, 3), -1);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
}

TEST(ColorMatcherHandle, WithoutABlockItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    ColorMatcherHandle* handle = nullptr;
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::AllocateClientBlock, 0);
        handle = MV40_CreateColorMatcher(nullptr, 0);
    }
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
}

// The code of the failure is followed by a report of success.
TEST(ColorMatcherHandle, WithoutAMatcherTheLogAloneKeepsTheCode)
{
    (void)MV40_GetLastError();
    MVThreadContext& context = *baseContexts.Get();
    MVReportError(u32(Error::BadArgument), "before", nullptr);
    ColorMatcherHandle* handle = nullptr;
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        handle = MV40_CreateColorMatcher(nullptr, 0);
        EXPECT_GE(failing.Failed(), 1u);
    }
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    EXPECT_EQ(context.errorLog[context.errorLog.GetCount() - 1].code, Error::OutOfMemory);
}

TEST(ColorMatcherHandle, WithoutAThreadsRecordThereIsNothing)
{
    ColorMatcherHandle* const kept = MV40_CreateColorMatcher(nullptr, 0);
    std::thread([=] {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::SetSlot, 0);
        EXPECT_EQ(MV40_CreateColorMatcher(nullptr, 0), nullptr);
        EXPECT_EQ(MV40_FindClosestColor(kept, 0, 0, 0), 0);
        EXPECT_EQ(MV40_DestroyColorMatcher(kept), 0u);
    }).join();
    EXPECT_EQ(MV40_DestroyColorMatcher(kept), 1u);
}

}  // namespace
}  // namespace zlv
