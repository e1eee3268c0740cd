#include "plain/plain_tone.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

InPlaceEffect Solarize(u8 flags = 0)
{
    return {[=](u8* image, const ImageShape& s) {
                return ZLV40_SolarizeImage(image, s.width, s.height, i32(s.channels), s.Stride(), flags);
            },
            [=](u8* image, const ImageShape& s) {
                PlainSolarize(image, s.width, s.height, s.channels, s.Stride(), (flags & 1) != 0);
            }};
}

TEST(SolarizeImage, EqualsPlain)
{
    for (const u32 channels : {3u, 4u}) {
        for (const u8 flags : {u8(0), u8(ZLV40_PROTECT_ALPHA), u8(0xFE), u8(0xFF)}) {
            SCOPE(int(flags));
            zlvtest::ExpectPlain(Solarize(flags), channels);
        }
    }
}

// As a row of 4,096 samples too, which is worth more than a look-up.
TEST(SolarizeImage, EveryLevelHasItsPlace)
{
    const struct {
        u8 level, solarised;
    } known[] = {{0, 0}, {1, 1}, {126, 126}, {127, 128}, {128, 127}, {254, 1}, {255, 0}};
    for (const u32 pixels : {1u, 3000u}) {
        for (const auto& row : known) {
            Bytes image(size_t(pixels) * 3, row.level);
            EXPECT_EQ(ZLV40_SolarizeImage(image.data(), pixels, 1, 3, pixels * 3, 0), 1u);
            EXPECT_EQ(image, Bytes(size_t(pixels) * 3, row.solarised)) << int(row.level);
        }
    }
}

// Where an inversion refuses, this one runs.
TEST(SolarizeImage, ProtectedAlphaIsNoMistakeWithThreeChannels)
{
    Bytes image = {200, 201, 202, 203, 204, 205};
    EXPECT_EQ(ZLV40_SolarizeImage(image.data(), 2, 1, 3, 6, ZLV40_PROTECT_ALPHA), 1u);
    EXPECT_EQ(image, (Bytes{55, 54, 53, 52, 51, 50}));
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 2, 1, 3, 6, ZLV40_PROTECT_ALPHA), 0u);
}

TEST(SolarizeImage, ReportsItsRowsAndKeepsTheCodeOfACancel)
{
    zlvtest::ExpectRowsReported(Solarize(), 3, ZLV40_ERROR_CANCELLED);
    zlvtest::ExpectRowsReported(Solarize(ZLV40_PROTECT_ALPHA), 4, ZLV40_ERROR_CANCELLED);
}

TEST(SolarizeImage, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Solarize(), 3); }

TEST(SolarizeImage, KeepsTheFullFrame) { zlvtest::ExpectFrame(Solarize(), 4, true); }

TEST(SolarizeImage, SucceedsWithNothingToDo) { zlvtest::ExpectEmptyImagesSucceed(Solarize(), 3); }

TEST(SolarizeImage, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Solarize(), false, {2, 2, 3});
    zlvtest::ExpectRefused(Solarize(), false, {0, 0, 3});
    for (const u32 channels : {0u, 1u, 2u, 5u, 8u, 0x80000003u, 0xFFFFFFFFu}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(Solarize(), true, {2, 2, channels});
    }
}

}  // namespace
}  // namespace zlv
