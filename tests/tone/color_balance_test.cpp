#include "plain/plain_tone.h"
#include "tone/tone_support.h"

#include <numeric>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

struct Balance {
    PlainSliders middle = {0, 0, 0}, shadow = {0, 0, 0}, high = {0, 0, 0};
    i32 brightness = 0;
    u8 flags = 0;
};

u32 Apply(u8* image, const ImageShape& s, const Balance& b)
{
    return ZLV40_AdjustImageColorBalance(image, s.width, s.height, i32(s.channels), s.Stride(), b.middle.red,
                                         b.middle.green, b.middle.blue, b.shadow.red, b.shadow.green, b.shadow.blue,
                                         b.high.red, b.high.green, b.high.blue, b.brightness, b.flags);
}

InPlaceEffect Effect(const Balance& balance)
{
    return {[=](u8* image, const ImageShape& s) { return Apply(image, s, balance); },
            [=](u8* image, const ImageShape& s) {
                PlainBalance(image, s.width, s.height, s.channels, s.Stride(), balance.middle, balance.shadow,
                             balance.high, balance.brightness, (balance.flags & 1) != 0);
            }};
}

const Balance kSome = {{20, -30, 40}, {-10, 25, 60}, {90, -5, 3}, 2, 0};

const struct {
    const char* shows;
    Balance balance;
} kBalances[] = {
    {"every kind of slider", kSome},
    {"a middle slider", {{50, 0, 0}, {0, 0, 0}, {0, 0, 0}, 0, 0}},
    {"a shadow slider", {{0, 0, 0}, {0, 80, 0}, {0, 0, 0}, 0, 0}},
    {"a highlight slider", {{0, 0, 0}, {0, 0, 0}, {0, 0, 128}, 0, 0}},
    {"sliders below 0", {{-5, -6, -7}, {-20, -30, -40}, {-1, -128, -3}, 0, 0}},
    {"sliders beyond their ends", {{500, -500, 129}, {INT32_MIN, INT32_MAX, 0}, {-129, 1000, 0}, 0, 0}},
    {"darker", {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, 7, 0}},
    {"lighter", {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, -7, 0}},
    {"the darkest", {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, INT32_MAX, 0}},
    {"the lightest", {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, INT32_MIN, 0}},
};

TEST(AdjustImageColorBalance, EqualsPlain)
{
    for (const auto& row : kBalances) {
        for (const u32 channels : {3u, 4u}) {
            for (const u8 flags : {u8(0), u8(ZLV40_ALPHA_FIRST), u8(0xFE)}) {
                SCOPE(row.shows, int(flags));
                Balance balance = row.balance;
                balance.flags = flags;
                zlvtest::ExpectPlain(Effect(balance), channels);
            }
        }
    }
}

// All levels in all channels.
Bytes Ramp(u32 channels)
{
    Bytes ramp;
    for (u32 i = 0; i < 256; ++i) ramp.insert(ramp.end(), channels, u8(i));
    return ramp;
}

Bytes Balanced(const Balance& balance, u32 channels = 3)
{
    Bytes ramp = Ramp(channels);
    EXPECT_EQ(Apply(ramp.data(), {256, 1, channels}, balance), 1u);
    return ramp;
}

TEST(AdjustImageColorBalance, AllValuesZeroLeaveTheImage)
{
    EXPECT_EQ(Balanced({}), Ramp(3));
    EXPECT_EQ(Balanced({}, 4), Ramp(4));
}

TEST(AdjustImageColorBalance, ShadowsBelowZeroAreMovedUpTogether)
{
    Balance below, moved;
    below.shadow = {-10, 0, 0};
    moved.shadow = {0, 10, 10};
    EXPECT_EQ(Balanced(below), Balanced(moved));
    EXPECT_NE(Balanced(below), Ramp(3));
}

TEST(AdjustImageColorBalance, HighlightsBelowZeroAreMovedUpTogether)
{
    Balance below, moved;
    below.high = {-10, 0, 5};
    moved.high = {0, 10, 15};
    EXPECT_EQ(Balanced(below), Balanced(moved));
    EXPECT_NE(Balanced(below), Ramp(3));
}

TEST(AdjustImageColorBalance, SlidersAreLimitedBeforeTheyAreMoved)
{
    Balance beyond, limited;
    beyond.shadow = {-1000, 0, 1000};
    limited.shadow = {0, 128, 256};
    const Bytes moved = Balanced(beyond);
    for (u32 i = 0; i < 256; ++i) {
        EXPECT_EQ(moved[i * 3], PlainBalanced(int(i), 0, {0, 0, 0}, {-128, 0, 128}, {0, 0, 0}, 0)) << i;
        // green and blue together: 128 + 256 of 255 - i
        const int wanted = int(i) - 384 * (255 - int(i)) / 255;
        EXPECT_EQ(moved[i * 3], wanted < 0 ? 0 : wanted) << i;
    }
}

TEST(AdjustImageColorBalance, ABrightnessOfOneTakesFourLevelsFromTheMiddle)
{
    Balance darker;
    darker.brightness = 1;
    const Bytes ramp = Balanced(darker);
    EXPECT_EQ(ramp[0], 0);
    EXPECT_EQ(ramp[128 * 3], 124);
    EXPECT_EQ(ramp[255 * 3], 255);
}

TEST(AdjustImageColorBalance, ABrightnessBelowZeroGivesThem)
{
    Balance lighter;
    lighter.brightness = -1;
    const Bytes ramp = Balanced(lighter);
    EXPECT_EQ(ramp[0], 0);
    EXPECT_EQ(ramp[128 * 3], 132);
    EXPECT_EQ(ramp[255 * 3], 255);
}

TEST(AdjustImageColorBalance, AlphaFirstWithThreeChannelsWorksOnTheTwoOthers)
{
    Balance balance = kSome;
    balance.flags = ZLV40_ALPHA_FIRST;
    const Bytes plain = Balanced(kSome), got = Balanced(balance);
    for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], i % 3 == 0 ? u8(i / 3) : plain[i]) << i;
}

TEST(AdjustImageColorBalance, AlphaFirstWithFourChannelsMovesRedToTheFourth)
{
    Balance balance = kSome;
    balance.flags = ZLV40_ALPHA_FIRST;
    const Bytes plain = Balanced(kSome, 4), got = Balanced(balance, 4);
    for (size_t i = 0; i < got.size(); i += 4) {
        EXPECT_EQ(got[i], u8(i / 4));
        EXPECT_EQ(got[i + 1], plain[i + 1]);
        EXPECT_EQ(got[i + 2], plain[i + 2]);
        EXPECT_EQ(got[i + 3], plain[i]);
    }
}

TEST(AdjustImageColorBalance, ReportsItsRowsAndACancelLeavesNoCode)
{
    zlvtest::ExpectRowsReported(Effect(kSome), 3, ZLV40_ERROR_NONE);
    zlvtest::ExpectRowsReported(Effect(kSome), 4, ZLV40_ERROR_NONE);
}

TEST(AdjustImageColorBalance, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Effect(kSome), 3); }

TEST(AdjustImageColorBalance, KeepsTheFullFrame) { zlvtest::ExpectFrame(Effect(kSome), 4, true); }

TEST(AdjustImageColorBalance, SucceedsWithNothingToDo) { zlvtest::ExpectEmptyImagesSucceed(Effect(kSome), 3); }

TEST(AdjustImageColorBalance, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Effect(kSome), false, {2, 2, 3});
    for (const u32 channels : {0u, 1u, 2u, 5u, 0xFFFFFFFFu}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(Effect(kSome), true, {2, 2, channels});
    }
}

}  // namespace
}  // namespace zlv
