#include "plain/plain_tone.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

InPlaceEffect Posterize(u32 flags = 0)
{
    return {
        [=](u8* image, const ImageShape& s) { return ZLV40_PosterizeRGB(image, s.width, s.height, s.Stride(), flags); },
        [](u8* image, const ImageShape& s) { PlainPosterize(image, s.width, s.height, s.Stride()); }};
}

TEST(PosterizeRGB, EqualsPlain) { zlvtest::ExpectPlain(Posterize(), 3); }

// Both steps of the search through a palette pair the components the same way, so no flag shows in the result.
TEST(PosterizeRGB, FlagsChangeNothing)
{
    zlvtest::ExpectPlain(Posterize(1), 3);
    zlvtest::ExpectPlain(Posterize(0xFFFFFFFF), 3);
}

// Large enough for vectors and tables of steps: every component's values about the middle beside every other one's.
TEST(PosterizeRGB, AThresholdFindsTheNearestCornerOfTheWholeCube)
{
    constexpr u32 kLevels[] = {0, 1, 63, 126, 127, 128, 129, 192, 254, 255};
    Bytes image;
    for (const u32 r : kLevels) {
        for (const u32 g : kLevels) {
            for (const u32 b : kLevels) {
                for (const u32 level : {r, g, b}) image.push_back(u8(level));
            }
        }
    }
    for (u32 level = 0; level < 256; ++level) {
        for (const u32 c : {0u, 1u, 2u}) image.push_back(u8(c == level % 3 ? 255 - level : level));
    }
    const u32 pixels = u32(image.size() / 3);
    Bytes wanted = image;
    PlainPosterize(wanted.data(), pixels, 1, pixels * 3);
    zlvtest::OnEveryTarget([&] {
        Bytes got = image;
        EXPECT_EQ(ZLV40_PosterizeRGB(got.data(), pixels, 1, pixels * 3, 0), 1u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    });
}

TEST(PosterizeRGB, ReportsItsRowsAndACancelLeavesNoCode)
{
    zlvtest::ExpectRowsReported(Posterize(), 3, ZLV40_ERROR_NONE);
}

TEST(PosterizeRGB, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Posterize(), 3); }

TEST(PosterizeRGB, KeepsTheFullFrame) { zlvtest::ExpectFrame(Posterize(), 3, true); }

TEST(PosterizeRGB, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Posterize(), false, {2, 2, 3});
    zlvtest::ExpectRefused(Posterize(), true, {0, 2, 3});
    zlvtest::ExpectRefused(Posterize(), true, {2, 0, 3});
    zlvtest::ExpectRefused(Posterize(), true, {0, 0, 3});
}

}  // namespace
}  // namespace zlv
