#include "base/hsv.h"

#include "plain/plain_hsv.h"
#include "support/bytes.h"

#include <cstring>

namespace zlv {
namespace {

const struct {
    const char* shows;
    f64 r, g, b;
    Hsv hsv;
} kColours[] = {
    {"black has no hue", 0, 0, 0, {-1, 0, 0}},
    {"a gray has the hue 0", 90, 90, 90, {0, 0, 90}},
    {"white", 1, 1, 1, {0, 0, 1}},
    {"red", 255, 0, 0, {0, 1, 255}},
    {"yellow: of red and green at the top, red's form is taken", 255, 255, 0, {60, 1, 255}},
    {"green", 0, 255, 0, {120, 1, 255}},
    {"cyan: of green and blue at the top, green's form is taken", 0, 255, 255, {180, 1, 255}},
    {"blue", 0, 0, 255, {240, 1, 255}},
    {"magenta: of red and blue at the top, red's form is taken", 255, 0, 255, {300, 1, 255}},
    {"half saturated", 100, 50, 50, {0, 0.5, 100}},
};

TEST(Hsv, OfKnownColours)
{
    for (const auto& row : kColours) {
        SCOPE(row.shows);
        const Hsv hsv = RGBToHSV(row.r, row.g, row.b);
        EXPECT_EQ(hsv.h, row.hsv.h);
        EXPECT_EQ(hsv.s, row.hsv.s);
        EXPECT_EQ(hsv.v, row.hsv.v);
        const Rgb rgb = HSVToRGB(hsv.h, hsv.s, hsv.v);
        EXPECT_EQ(rgb.r, row.r);
        EXPECT_EQ(rgb.g, row.g);
        EXPECT_EQ(rgb.b, row.b);
    }
}

TEST(Hsv, ThereIsPlainInBothScales)
{
    for (const f64 scale : {1.0, 1 / 255.0, 1 / 256.0}) {
        for (u32 r = 0; r < 256; r += 5) {
            for (u32 g = 0; g < 256; g += 3) {
                for (u32 b = 0; b < 256; b += 5) {
                    const Hsv got = RGBToHSV(r * scale, g * scale, b * scale);
                    const PlainHsv wanted = PlainRgbToHsv(r * scale, g * scale, b * scale);
                    ASSERT_EQ(std::memcmp(&got, &wanted, sizeof got), 0) << r << ' ' << g << ' ' << b;
                }
            }
        }
    }
}

TEST(Hsv, AndBackIsPlainToTheLastBit)
{
    for (const f64 h : {-1.0, 0.0, 12.3, 59.99, 60.0, 100.0, 121.5, 180.0, 239.0, 240.0, 271.0, 300.0, 359.9, 360.0}) {
        for (u32 s = 0; s <= 100; ++s) {
            for (u32 v = 0; v < 256; ++v) {
                const Rgb got = HSVToRGB(h, s / 100.0, v);
                const PlainRgb wanted = PlainHsvToRgb(h, s / 100.0, v);
                ASSERT_TRUE(got.r == wanted.r && got.g == wanted.g && got.b == wanted.b) << h << ' ' << s << ' ' << v;
            }
        }
    }
}

TEST(Hsv, BlacksHueLiesJustBeforeRed)
{
    const Rgb rgb = HSVToRGB(-1, 1, 60);
    EXPECT_EQ(rgb.r, 60);
    EXPECT_NEAR(rgb.g, -1, 1e-9);
    EXPECT_EQ(rgb.b, 0);
}

}  // namespace
}  // namespace zlv
