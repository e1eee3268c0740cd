#include "plain/plain_tone.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

InPlaceEffect Duotone(u32 color, u8 flags = 0)
{
    return {[=](u8* image, const ImageShape& s) {
                return ZLV40_DuotoneImage(image, s.width, s.height, i32(s.channels), s.Stride(), color, flags);
            },
            [=](u8* image, const ImageShape& s) {
                PlainDuotone(image, s.width, s.height, s.channels, s.Stride(), color, (flags & 1) != 0);
            }};
}

// One of each side of the hexagon of hues, its corners, a gray, white and black.
constexpr u32 kColors[] = {0x0040C0, 0x00C0A0, 0x20F010, 0xC0F010, 0xE05010, 0xF01080, 0x1000F0, 0x0000FF, 0x00FFFF,
                           0x00FF00, 0xFFFF00, 0xFF0000, 0xFF00FF, 0x808080, 0xFFFFFF, 0x000000, 0x000001};

TEST(DuotoneImage, EqualsPlain)
{
    for (const u32 channels : {3u, 4u}) {
        for (const u8 flags : {u8(0), u8(ZLV40_BGR), u8(0xFE)}) {
            for (const u32 color : {0xE05010u, 0u}) {
                SCOPE(color, int(flags));
                zlvtest::ExpectPlain(Duotone(color, flags), channels);
            }
        }
    }
}

// Grays bring the luminance next to whole levels, where the order of the sum decides.
TEST(DuotoneImage, EveryHueEqualsPlainOnColoursAndGrays)
{
    const ImageShape shape = {2048 + 256, 1, 3};
    Bytes before = zlvtest::RandomBytes(2048 * 3, 2);
    for (u32 level = 0; level < 256; ++level) before.insert(before.end(), 3, u8(level));
    for (const u32 color : kColors) {
        const InPlaceEffect effect = Duotone(color);
        Bytes wanted = before;
        effect.plain(wanted.data(), shape);
        zlvtest::OnEveryTarget([&] {
            SCOPE(color);
            Bytes got = before;
            EXPECT_EQ(effect.apply(got.data(), shape), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        });
    }
}

TEST(DuotoneImage, BlackStaysBlack)
{
    for (const u32 color : kColors) {
        Bytes pixel = {0, 0, 0, 9};
        EXPECT_EQ(ZLV40_DuotoneImage(pixel.data(), 1, 1, 4, 4, color, 0), 1u);
        EXPECT_EQ(pixel, (Bytes{0, 0, 0, 9}));
    }
}

// Hue -1, against hue 0 of a gray: the second component is a little lower.
TEST(DuotoneImage, ABlackColourLiesJustBeforeAGrayOne)
{
    Bytes ofBlack = {200, 200, 200}, ofGray = ofBlack, ofRed = ofBlack;
    EXPECT_EQ(ZLV40_DuotoneImage(ofBlack.data(), 1, 1, 3, 3, 0x000000, 0), 1u);
    EXPECT_EQ(ZLV40_DuotoneImage(ofGray.data(), 1, 1, 3, 3, 0x777777, 0), 1u);
    EXPECT_EQ(ZLV40_DuotoneImage(ofRed.data(), 1, 1, 3, 3, 0x0000FF, 0), 1u);
    EXPECT_EQ(ofGray, ofRed);
    EXPECT_EQ(ofBlack[0], ofGray[0]);
    EXPECT_LT(ofBlack[1], ofGray[1]);
}

// The colour's bytes are swapped, the image's channels are not: red keeps its weight.
TEST(DuotoneImage, TheFlagSwapsTheColourAlone)
{
    Bytes swapped = {250, 100, 10}, other = swapped;
    EXPECT_EQ(ZLV40_DuotoneImage(swapped.data(), 1, 1, 3, 3, 0x102030, ZLV40_BGR), 1u);
    EXPECT_EQ(ZLV40_DuotoneImage(other.data(), 1, 1, 3, 3, 0x302010, 0), 1u);
    EXPECT_EQ(swapped, other);
    EXPECT_GT(swapped[2], swapped[0]) << "the colour was blue after all";
}

TEST(DuotoneImage, TheTopByteOfTheColourIsNotUsed)
{
    Bytes with = zlvtest::RandomBytes(30, 1), without = with;
    EXPECT_EQ(ZLV40_DuotoneImage(with.data(), 10, 1, 3, 30, 0xAB302010, 0), 1u);
    EXPECT_EQ(ZLV40_DuotoneImage(without.data(), 10, 1, 3, 30, 0x302010, 0), 1u);
    EXPECT_EQ(with, without);
}

TEST(DuotoneImage, ReportsItsRowsAndCancels)
{
    zlvtest::ExpectRowsReported(Duotone(0xE05010), 3, ZLV40_ERROR_CANCELLED);
    zlvtest::ExpectRowsReported(Duotone(0xE05010), 4, ZLV40_ERROR_CANCELLED);
}

TEST(DuotoneImage, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Duotone(0xE05010), 3); }

TEST(DuotoneImage, KeepsTheFullFrame) { zlvtest::ExpectFrame(Duotone(0xE05010), 3, true); }

TEST(DuotoneImage, SucceedsWithNothingToDo) { zlvtest::ExpectEmptyImagesSucceed(Duotone(0xE05010), 3); }

TEST(DuotoneImage, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Duotone(5), false, {2, 2, 3});
    for (const u32 channels : {0u, 1u, 2u, 5u, 0x80000004u, 0xFFFFFFFFu}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(Duotone(5), true, {2, 2, channels});
    }
}

}  // namespace
}  // namespace zlv
