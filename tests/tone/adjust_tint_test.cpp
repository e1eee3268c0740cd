#include "plain/plain_tone.h"
#include "runtime/math.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

constexpr f64 kPi = 3.14159265358979323846;

InPlaceEffect Tint(i32 angle, u32 flags = 0)
{
    const f64 radians = kPi * angle / 180;
    const f64 cosine = Cos(radians), sine = Sin(radians);
    return {[=](u8* image, const ImageShape& s) {
                return ZLV40_AdjustTint(image, s.width, s.height, s.channels, s.Stride(), angle, flags);
            },
            [=](u8* image, const ImageShape& s) {
                PlainTint(image, s.width, s.height, s.channels, s.Stride(), cosine, sine, (flags & 1) != 0);
            }};
}

TEST(AdjustTint, EqualsPlain)
{
    for (const u32 channels : {3u, 4u, 5u, 8u}) {
        for (const u32 flags : {0u, u32(ZLV40_BGR), 0xFFFFFFFEu}) {
            for (const i32 angle : {0, 37}) {
                SCOPE(angle, flags);
                zlvtest::ExpectPlain(Tint(angle, flags), channels);
            }
        }
    }
}

// Among them those whose cosine and sine are nearly whole: there results lie on, or next to, whole numbers.
TEST(AdjustTint, EveryKindOfAngleEqualsPlain)
{
    const ImageShape shape = {4096, 1, 3};
    const Bytes before = zlvtest::RandomBytes(shape.Bytes(), 1);
    for (const i32 angle : {0,   1,   30,  45,  60,  89, 90,  91,   120,     179,       180,      181,
                            270, 300, 359, 360, 405, -1, -90, -180, 1000000, INT32_MAX, INT32_MIN}) {
        const InPlaceEffect effect = Tint(angle);
        Bytes wanted = before;
        effect.plain(wanted.data(), shape);
        zlvtest::OnEveryTarget([&] {
            SCOPE(angle);
            Bytes got = before;
            EXPECT_EQ(effect.apply(got.data(), shape), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        });
    }
}

// The divisions are done by multiplying: every sum that can come up, for all colours of every third level.
TEST(AdjustTint, TheWholeCubeEqualsPlain)
{
    for (const i32 angle : {90, 213}) {
        const InPlaceEffect effect = Tint(angle);
        for (u32 red = 0; red < 256; red += 3) {
            Bytes wanted;
            for (u32 green = 0; green < 256; ++green) {
                for (u32 blue = red % 2; blue < 256; blue += 3) {
                    for (const u32 level : {red, green, blue}) wanted.push_back(u8(level));
                }
            }
            Bytes got = wanted;
            const ImageShape shape = {u32(got.size() / 3), 1, 3};
            effect.plain(wanted.data(), shape);
            ASSERT_EQ(effect.apply(got.data(), shape), 1u);
            ASSERT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "") << red;
        }
    }
}

TEST(AdjustTint, AnAngleOfZeroStillRounds)
{
    // y = (30 + 59 * 2 + 11 * 3) / 100 = 1, i = (70 - 118 - 33) / 100 = 0, q = (267 - 30 - 118) / 100 = 1; the green
    // part is (51 * 0 + 19 * 1) / 100 = 0.
    Bytes pixel = {1, 2, 3};
    EXPECT_EQ(ZLV40_AdjustTint(pixel.data(), 1, 1, 3, 3, 0, 0), 1u);
    EXPECT_EQ(pixel, (Bytes{1, 1, 2}));
}

TEST(AdjustTint, GraysStay)
{
    for (u32 level = 0; level < 256; ++level) {
        Bytes pixel(3, u8(level));
        EXPECT_EQ(ZLV40_AdjustTint(pixel.data(), 1, 1, 3, 3, 77, 0), 1u);
        EXPECT_EQ(pixel, Bytes(3, u8(level)));
    }
}

TEST(AdjustTint, BytesBehindTheColoursAreLeftAlone)
{
    for (const u32 channels : {4u, 5u, 9u}) {
        const ImageShape shape = {70, 1, channels};
        const Bytes before = zlvtest::RandomBytes(shape.Bytes(), channels);
        Bytes image = before;
        EXPECT_EQ(Tint(100).apply(image.data(), shape), 1u);
        for (size_t i = 0; i < image.size(); ++i) {
            if (i % channels < 3) continue;
            EXPECT_EQ(image[i], before[i]) << i;
        }
    }
}

TEST(AdjustTint, ReportsItsRowsAndCancels)
{
    zlvtest::ExpectRowsReported(Tint(37), 3, ZLV40_ERROR_CANCELLED);
    zlvtest::ExpectRowsReported(Tint(37), 4, ZLV40_ERROR_CANCELLED);
}

TEST(AdjustTint, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Tint(37), 3); }

TEST(AdjustTint, KeepsTheFullFrame) { zlvtest::ExpectFrame(Tint(37), 3, true); }

TEST(AdjustTint, SucceedsWithNothingToDo) { zlvtest::ExpectEmptyImagesSucceed(Tint(37), 3); }

TEST(AdjustTint, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Tint(37), false, {2, 2, 3});
    for (const u32 channels : {0u, 1u, 2u}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(Tint(37), true, {2, 2, channels});
    }
}

}  // namespace
}  // namespace zlv
