#include "base/polygon_mask.h"

#include "base/polygon_fill.h"
#include "base/polygon_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;

constexpr u32 kColor = 0xE0402011;

u32 Call(u8* image, u32 width, u32 height, u32 channels, u32 stride, const Polygon& polygon, f64 opacity, u32 flags)
{
    const Vertices vertices(polygon);
    return MV40_PolygonFillImage(image, width, height, channels, stride, vertices.Data(), vertices.Count(), nullptr, 0,
                                 0, 0, kColor, opacity, nullptr, 0, flags | kPolygonAntialias);
}

struct Scene {
    u32 width, height, channels, padding;
};

// On every target.
void ExpectPlain(const Scene& scene, const Polygon& polygon, f64 opacity, u32 flags)
{
    const Canvas before(scene.width, scene.height, scene.channels, scene.padding);
    Bytes wanted = before.Before();
    const bool hasPixels = PlainFillAntialiased(
        wanted.data(), scene.width, scene.height, scene.channels, before.Stride(), polygon,
        {nullptr, 0, 0, 0, kColor, opacity, nullptr, 0, (flags & kPolygonBlend) != 0, (flags & kPolygonSwapColor) != 0},
        flags & kPolygonFineSamples ? 16 : 4);
    for (const Target target : zlvtest::RunnableTargets()) {
        SCOPE(zlvtest::NameOf(target));
        const zlvtest::ScopedTarget scoped(target);
        Canvas canvas(scene.width, scene.height, scene.channels, scene.padding);
        ASSERT_EQ(
            Call(canvas.Data(), scene.width, scene.height, scene.channels, canvas.Stride(), polygon, opacity, flags),
            hasPixels ? 1u : 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(hasPixels ? Error::None : Error::OutOfMemory));
        EXPECT_EQ(canvas.DifferenceTo(wanted), "");
    }
}

constexpr u32 kEveryFlag[] = {0, kPolygonSwapColor, kPolygonFineSamples, kPolygonBlend,
                              kPolygonBlend | kPolygonFineSamples};

TEST(PolygonMask, EveryFlagEqualsPlain)
{
    for (const u32 flags : kEveryFlag) {
        for (const u32 channels : {1u, 3u, 4u}) {
            SCOPE(flags, channels);
            u32 run = 0;
            ForPolygons(flags & kPolygonFineSamples ? 3 : 9, [&](const Polygon& polygon) {
                constexpr f64 kOpacities[] = {0.6, 1, 0, 1.7, -0.4};
                ++run;
                ExpectPlain({u32(kSceneWidth), u32(kSceneHeight), channels, run % 3}, polygon, kOpacities[run % 5],
                            flags);
            });
            if (HasFailure()) return;
        }
    }
}

TEST(PolygonMask, EveryImageSizeEqualsPlain)
{
    constexpr u32 kSizes[][2] = {{1, 1}, {2, 2}, {2, 30}, {30, 2}, {300, 5}};
    for (const auto [width, height] : kSizes) {
        for (const u32 flags : kEveryFlag) {
            for (u32 seed = 0; seed < 8; ++seed) {
                SCOPE(width, height, flags, seed);
                Polygon polygon = RandomPolygon(PolygonKind::Around, 3 + seed, seed);
                for (PlainVertex& v : polygon) v = {v.x * width / kSceneWidth, v.y * height / kSceneHeight};
                ExpectPlain({width, height, 3 + seed % 2, seed}, polygon, 0.8, flags);
            }
        }
    }
}

// A black image of 3 x 2; what the first channel becomes under white.
const struct {
    const char* shows;
    Polygon polygon;
    u32 flags;
    Bytes result;
} kCoverages[] = {
    {"whole pixels, but for the last column and row", {{0, 0}, {2, 0}, {2, 1}, {0, 1}}, 0, {255, 255, 0, 0, 0, 0}},
    {"vertices at the edge lie on the last pixel", {{0, 0}, {3, 0}, {3, 2}, {0, 2}}, 0, {255, 255, 0, 0, 0, 0}},
    {"fractions beyond the bounding rectangle are lost",
     {{0, 0}, {1.9, 0}, {1.9, 1.9}, {0, 1.9}},
     0,
     {255, 0, 0, 0, 0, 0}},
    // 2 of 4 columns of samples: 8 * 255 / 16, and 8 * 16 * 255 / 256
    {"half a pixel", {{0.5, 0}, {2, 0}, {2, 1}, {0.5, 1}}, 0, {127, 255, 0, 0, 0, 0}},
    {"half a pixel in fine samples", {{0.5, 0}, {2, 0}, {2, 1}, {0.5, 1}}, kPolygonFineSamples, {127, 255, 0, 0, 0, 0}},
    // 1 of 16 columns: 16 * 255 / 256; none of 4
    {"a sixteenth", {{0.9375, 0}, {2, 0}, {2, 1}, {0.9375, 1}}, kPolygonFineSamples, {15, 255, 0, 0, 0, 0}},
    {"a sixteenth in coarse samples", {{0.9375, 0}, {2, 0}, {2, 1}, {0.9375, 1}}, 0, {0, 255, 0, 0, 0, 0}},
};

TEST(PolygonMask, ByHand)
{
    for (const auto& row : kCoverages) {
        SCOPE(row.shows);
        Bytes image(18, 0);
        const Vertices vertices(row.polygon);
        EXPECT_EQ(MV40_PolygonFillImage(image.data(), 3, 2, 3, 9, vertices.Data(), vertices.Count(), nullptr, 0, 0, 0,
                                        0xFFFFFFFF, 1, nullptr, 0, row.flags | kPolygonAntialias),
                  1u);
        Bytes first;
        for (size_t i = 0; i < 18; i += 3) first.push_back(image[i]);
        EXPECT_EQ(first, row.result);
    }
}

TEST(PolygonMask, AFourthChannelStays)
{
    Bytes image = {1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(Call(image.data(), 2, 2, 4, 8, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, 1, 0), 1u);
    EXPECT_EQ(image, (Bytes{0x11, 0x20, 0x40, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(PolygonMask, OneChannelIsLeftAlone)
{
    Bytes image(16, 9);
    EXPECT_EQ(Call(image.data(), 4, 4, 1, 4, {{0, 0}, {4, 0}, {4, 4}, {0, 4}}, 1, 0), 1u);
    EXPECT_EQ(image, Bytes(16, 9));
}

TEST(PolygonMask, PatternAndPaletteAreNotUsed)
{
    const Vertices vertices({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
    const u8 pattern[3] = {1, 2, 3};
    Bytes image(27, 9), wanted(27, 9);
    EXPECT_EQ(Call(wanted.data(), 3, 3, 3, 9, {{0, 0}, {2, 0}, {2, 2}, {0, 2}}, 1, 0), 1u);
    EXPECT_EQ(MV40_PolygonFillImage(image.data(), 3, 3, 3, 9, vertices.Data(), 4, pattern, 0, 0, 0, kColor, 1, pattern,
                                    1, kPolygonAntialias),
              1u);
    EXPECT_EQ(image, wanted);
}

const struct {
    const char* shows;
    u32 width, height, channels;
    Polygon polygon;
    f64 opacity;
    Error error;
} kRefused[] = {
    {"narrower than a pixel", 9, 9, 3, {{2.1, 0}, {2.9, 0}, {2.9, 5}}, 1, Error::OutOfMemory},
    {"lower than a pixel", 9, 9, 3, {{2, 3.1}, {5, 3.1}, {5, 3.8}}, 1, Error::OutOfMemory},
    {"right of the image", 9, 9, 3, {{20, 0}, {29, 0}, {29, 5}}, 1, Error::OutOfMemory},
    {"above the image", 9, 9, 3, {{2, -20}, {5, -20}, {5, -10}}, 1, Error::OutOfMemory},
    {"one channel narrower than a pixel", 9, 9, 1, {{2.1, 0}, {2.9, 0}, {2.9, 5}}, 1, Error::OutOfMemory},
    {"an image of one pixel", 1, 1, 3, {{0, 0}, {1, 0}, {1, 1}}, 1, Error::OutOfMemory},
    {"an image without columns", 0, 9, 3, {{0, 0}, {5, 0}, {5, 5}}, 1, Error::OutOfMemory},
    {"an image without rows", 9, 0, 3, {{0, 0}, {5, 0}, {5, 5}}, 1, Error::OutOfMemory},
    {"an opacity that is no number", 9, 9, 3, {{0, 0}, {5, 0}, {5, 5}}, kNaN, Error::BadArgument},
    {"an opacity out of the integers", 9, 9, 3, {{0, 0}, {5, 0}, {5, 5}}, 1e7, Error::BadArgument},
    {"a bad opacity of one channel", 9, 9, 1, {{0, 0}, {5, 0}, {5, 5}}, 1e7, Error::BadArgument},
    {"no pixels come before a bad opacity", 9, 9, 3, {{2.1, 0}, {2.9, 0}, {2.9, 5}}, kNaN, Error::OutOfMemory},
    {"a mask of 2^32 columns", 300000000, 2, 3, {{0, 0}, {3e8, 0}, {3e8, 2}}, 1, Error::OutOfMemory},
    {"a mask of 2^32 rows", 2, 300000000, 3, {{0, 0}, {2, 3e8}, {2, 0}}, 1, Error::OutOfMemory},
};

TEST(PolygonMask, RefusalsWriteNothing)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        Bytes image(9 * 27, 77);
        EXPECT_EQ(Call(image.data(), row.width, row.height, row.channels, 27, row.polygon, row.opacity,
                       kPolygonBlend | kPolygonFineSamples),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(row.error));
        EXPECT_EQ(image, Bytes(9 * 27, 77));
    }
}

// Rows above are one, painted 2^35 times.
TEST(PolygonMask, PolygonsAsLargeAsCanBe)
{
    Bytes image(27, 0);
    EXPECT_EQ(Call(image.data(), 3, 3, 3, 9,
                   {{kLowest, kLowest}, {kHighest, kLowest}, {kHighest, kHighest}, {kLowest, kHighest}}, 1,
                   kPolygonFineSamples),
              1u);
    for (const size_t pixel : {0u, 1u, 3u, 4u}) EXPECT_EQ(image[pixel * 3], 0x11);
    for (const size_t pixel : {2u, 5u, 6u, 7u, 8u}) EXPECT_EQ(image[pixel * 3], 0);
    EXPECT_EQ(Call(image.data(), 3, 3, 3, 9, {{kLowest, kLowest}, {kHighest, kLowest}, {0, kHighest}}, 0.3,
                   kPolygonBlend | kPolygonFineSamples),
              1u);
}

TEST(PolygonMask, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    u32 failures = 0;
    for (u32 succeeding = 0;; ++succeeding) {
        SCOPE(succeeding);
        Bytes image(27, 77);
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
        const u32 result = Call(image.data(), 3, 3, 3, 9, {{0, -2}, {3, 0}, {3, 3}, {0, 3}}, 1, 0);
        if (failing.Failed() == 0) {
            EXPECT_EQ(result, 1u);
            break;
        }
        ++failures;
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(image, Bytes(27, 77));
    }
    EXPECT_EQ(failures, 6u);
}

}  // namespace
}  // namespace zlv
