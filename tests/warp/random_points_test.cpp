#include "warp/warp_cases.h"

#include "runtime/contexts.h"

namespace zlvtest {
namespace {

TEST(RandomPoints, EveryTargetEqualsPlain)
{
    ExpectEachEqualsPlain(
        {Scatter(0), Scatter(1), Scatter(6.5), Scatter(-3), Scatter(1e9), Scatter(kInfinity), Scatter(kNaN)});
}

// x and y of one point after the other, and of those alone that are not lost yet.
TEST(RandomPoints, DrawsAreThoseOfThePointsThatGetThere)
{
    OnEveryTarget([] {
        for (const WarpImage& image : kWarpImages) {
            ExpectChainEqualsPlain({Polygon("triangle", {{0, -1}, {9, 3}, {2, 8}}, 0), Scatter(3)}, image);
        }
    });
}

// Two warps that draw take turns at every point.
TEST(RandomPoints, TwoInAListDrawInTurns)
{
    OnEveryTarget([] {
        for (const WarpImage& image : kWarpImages) {
            ExpectChainEqualsPlain({Scatter(3), Ellipse(5, 5, 0, 0, 2), Scatter(1.5)}, image);
        }
    });
}

// The generator's first two draws after a seed of 0 are 38 and 7719: modulo 1000, 38 and 719.
TEST(RandomPoints, TheFirstPointByHand)
{
    const WarpList list;
    const FixedSeconds fixed(0);
    ASSERT_EQ(ZLV40_AddRandomTransform(5, 5, 10), 1u);
    double minX, minY, maxX, maxY;
    ASSERT_EQ(ZLV40_GetTransformDimensions(1, 1, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_DOUBLE_EQ(maxX, (1 - 0.038) * 10 - 5);
    EXPECT_DOUBLE_EQ(minY, (1 - 0.719) * 10 - 5);
}

TEST(RandomPoints, TheGeneratorGoesOnFromRunToRun)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddRandomTransform(13, 7, 20), 1u);
    double first[4], second[4];
    ASSERT_EQ(ZLV40_GetTransformDimensions(13, 7, first, first + 1, first + 2, first + 3), 1u);
    ASSERT_EQ(ZLV40_GetTransformDimensions(13, 7, second, second + 1, second + 2, second + 3), 1u);
    EXPECT_NE(Join(first[0], first[1], first[2]), Join(second[0], second[1], second[2]));
}

TEST(RandomPoints, AreSeededWithTheSecond)
{
    const WarpList list;
    const FixedSeconds fixed(4294967295u);
    ASSERT_EQ(ZLV40_AddRandomTransform(5, 5, 1), 1u);
    EXPECT_EQ(zlv::baseContexts.Get()->randomState, 4294967295u);
}

TEST(RandomPoints, ARefusalSeedsNothing)
{
    const WarpList list;
    zlv::baseContexts.Get()->randomState = 77;
    EXPECT_EQ(ZLV40_AddRandomTransform(0, 5, 1), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(ZLV40_AddRandomTransform(5, 0, 1), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(ZLV40_AddRandomTransform(5, 5, 1), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
    }
    EXPECT_EQ(zlv::baseContexts.Get()->randomState, 77u);
    ExpectListEqualsPlain({5, 5, 1}, {}, 0);
}

}  // namespace
}  // namespace zlvtest
