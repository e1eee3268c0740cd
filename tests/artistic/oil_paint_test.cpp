#include "artistic/artistic_cases.h"

namespace zlv {
namespace {

using namespace zlvtest;

Bytes Paint(const Bytes& source, u32 width, u32 height, u32 radius, u32 levels, u32 flags = 0)
{
    Bytes painted(source.size(), 77);
    EXPECT_EQ(ZLV40_OilPaintRGB(source.data(), width, i32(height), width * 3, painted.data(), width * 3, radius, levels,
                                flags),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return painted;
}

// A row of gray pixels.
Bytes Grays(std::initializer_list<u8> levels)
{
    Bytes row;
    for (const u8 level : levels) row.insert(row.end(), 3, level);
    return row;
}

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width;
    i32 height;
    u32 code;
} kRefused[] = {
    {"a null source", false, true, 2, 2, 5},
    {"a null destination", true, false, 2, 2, 5},
    {"a null source of no size", false, true, 0, 0, 5},
    {"no columns", true, true, 0, 2, 1},
    {"no rows", true, true, 2, 0, 1},
    {"a negative height", true, true, 2, -1, 1},
    {"the most negative height", true, true, 2, INT32_MIN, 1},
    {"the largest image", true, true, 0xFFFFFFFF, INT32_MAX, 1},
};

TEST(OilPaintRGB, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes source = RandomBytes(12, 4);
        Bytes destination(12, 77);
        EXPECT_EQ(ZLV40_OilPaintRGB(row.hasSource ? source.data() : nullptr, row.width, row.height, 6,
                                    row.hasDestination ? destination.data() : nullptr, 6, 1, 20, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.code);
        EXPECT_EQ(destination, Bytes(12, 77));
    }
}

TEST(OilPaintRGB, ARadiusOf0Copies)
{
    const Bytes source = RandomBytes(9 * 7 * 3, 1);
    for (const u32 levels : {0u, 7u, 255u}) EXPECT_EQ(Paint(source, 9, 7, 0, levels, ZLV40_OIL_PAINT_BLEND), source);
}

TEST(OilPaintRGB, OneLevelMakesThePlainMeanOfTheWindow)
{
    EXPECT_EQ(Paint(Grays({10, 21, 30, 200}), 4, 1, 1, 0), Grays({15, 20, 83, 115}));
}

TEST(OilPaintRGB, RadiusAndLevelsAreLimited)
{
    const Bytes source = RandomBytes(40 * 30 * 3, 1);
    EXPECT_EQ(Paint(source, 40, 30, 11, 20), Paint(source, 40, 30, 10, 20));
    EXPECT_EQ(Paint(source, 40, 30, 0xFFFFFFFF, 20), Paint(source, 40, 30, 10, 20));
    EXPECT_EQ(Paint(source, 40, 30, 2, 256), Paint(source, 40, 30, 2, 255));
    EXPECT_EQ(Paint(source, 40, 30, 2, 0xFFFFFFFF), Paint(source, 40, 30, 2, 255));
    EXPECT_NE(Paint(source, 40, 30, 9, 20), Paint(source, 40, 30, 10, 20));
}

TEST(OilPaintRGB, OfEquallyFrequentLevelsTheLowestCounts)
{
    EXPECT_EQ(Paint(Grays({200, 50, 100}), 3, 1, 2, 255), Grays({50, 50, 50}));
}

// The level of 0 is as frequent, but was first: nothing has been displaced.
TEST(OilPaintRGB, EqualLevelsHaveNoRunnerUp)
{
    EXPECT_EQ(Paint(Grays({200, 50}), 2, 1, 1, 255, ZLV40_OIL_PAINT_BLEND), Grays({50, 50}));
}

TEST(OilPaintRGB, ARunnerUpIsALowerLevelThatWasTheBestBefore)
{
    // 40 once, 100 twice: half of 40 and half of 100.
    EXPECT_EQ(Paint(Grays({100, 40, 100}), 3, 1, 2, 255, ZLV40_OIL_PAINT_BLEND), Grays({70, 70, 70}));
    // 40 twice, 100 once: what comes after the best one never becomes the runner-up.
    EXPECT_EQ(Paint(Grays({40, 100, 40}), 3, 1, 2, 255, ZLV40_OIL_PAINT_BLEND), Grays({40, 40, 40}));
    // 10 and 20 once, 90 three times: 10 is the runner-up, as 20 was never the best.
    EXPECT_EQ(Paint(Grays({90, 20, 90, 10, 90}), 5, 1, 4, 255, ZLV40_OIL_PAINT_BLEND), Grays({63, 63, 63, 63, 63}));
}

TEST(OilPaintRGB, WindowsAtTheEdgesHoldFewerPixels)
{
    // Mirrored, the outermost window would hold 10 twice.
    EXPECT_EQ(Paint(Grays({0, 10, 20, 20, 20}), 5, 1, 1, 0), Grays({5, 10, 16, 20, 20}));
}

// The largest sums that a window of either kind of key can hold, in every channel and level.
TEST(OilPaintRGB, TheLargestWindowsOfWhite)
{
    for (const u32 radius : {7u, 8u, 10u}) {
        for (const u32 levels : {0u, 1u, 255u}) {
            const Bytes white(50 * 45 * 3, 255);
            EXPECT_EQ(Paint(white, 50, 45, radius, levels, ZLV40_OIL_PAINT_BLEND), white);
        }
    }
}

// Every count of levels, as whole vectors of keys are looked at.
TEST(OilPaintRGB, EveryNumberOfLevelsEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 levels = 0; levels <= 255; ++levels) {
            for (const u32 radius : {2u, 9u}) {
                SCOPE(levels, radius);
                ArtisticComparison(OilPaint(radius, levels, ZLV40_OIL_PAINT_BLEND), {12, 6, 0}).Expect(0, false);
            }
        }
    });
}

// Means by reciprocals: every sum that a window may have with every count.
TEST(OilPaintRGB, MeansOfWindowsOfAnySizeAreExact)
{
    for (u32 width = 1; width <= 21; ++width) {
        for (const u32 height : {1u, 2u, 13u, 21u}) {
            SCOPE(width, height);
            ArtisticComparison(OilPaint(10, 0, 0), {width, height, 0}).Expect(0, false);
        }
    }
}

}  // namespace
}  // namespace zlv
