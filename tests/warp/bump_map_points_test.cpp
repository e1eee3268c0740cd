#include "plain/plain_center_shift.h"
#include "support/test_hooks.h"
#include "warp/mapped_point.h"

#include <limits>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A relief between two pages that fault: a look-up beside it ends the tests.
struct Relief {
    std::uint32_t width, height;
    GuardedBuffer heights;

    Relief(std::uint32_t theWidth, std::uint32_t theHeight, Flush flush, bool isEven = false)
        : width(theWidth), height(theHeight), heights(std::size_t(width) * height, flush, 255)
    {
        const Bytes random = RandomBytes(heights.Size(), width + height);
        if (!isEven) std::copy(random.begin(), random.end(), heights.Data());
    }
};

WarpCase Bumps(double strength, Relief& relief)
{
    const std::uint8_t* const map = relief.heights.Data();
    const std::uint32_t mapWidth = relief.width, mapHeight = relief.height;
    return {Join("bumps", strength, mapWidth, mapHeight),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddBumpMapDisplacementTransform(width, height, strength, map, mapWidth, mapHeight);
            },
            [=](std::uint32_t, std::uint32_t) { return PlainBumpMap(strength, map, mapWidth, mapHeight); }};
}

WarpCase Shift(double x, double y)
{
    return {Join("shift", x, y),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddOffsetTransform(width, height, x, y, ZLV40_WRAP_NONE);
            },
            [=](std::uint32_t, std::uint32_t) {
                return [=](double fromX, double fromY, double* outX, double* outY) {
                    *outX = fromX - x;
                    *outY = fromY - y;
                    return true;
                };
            }};
}

TEST(BumpMapPoints, EveryTargetEqualsPlain)
{
    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
        Relief small(3, 2, flush), large(40, 30, flush), pixel(1, 1, flush);
        std::vector<WarpCase> cases;
        for (Relief* const relief : {&small, &large, &pixel}) {
            for (const double strength : {0.0, 2.0, -0.7, 100.0, kNaN, kInfinity}) {
                cases.push_back(Bumps(strength, *relief));
            }
        }
        ExpectEachEqualsPlain(cases);
    }
}

// Negative, fractional and far coordinates tile as the steps of one size at a time would.
TEST(BumpMapPoints, TheReliefRepeatsItselfToAllSides)
{
    Relief relief(5, 3, Flush::ToEnd);
    for (const double away : {0.3, -0.3, 7.0, -7.5, 1e6, -1e6, 1e15 + 1, -1e15 - 1, 9e18, -9e18}) {
        ExpectChainEqualsPlain({Shift(away, -away / 3), Bumps(3, relief)}, {20, 9, 3});
    }
}

TEST(BumpMapPoints, CoordinatesThatAreNoIndexReadTheFirstColumnOrRow)
{
    Relief relief(5, 3, Flush::ToStart);
    for (const double away : {kNaN, kInfinity, -kInfinity, 1e19, -1e300}) {
        ExpectChainEqualsPlain({Shift(away, 0), Bumps(3, relief)}, {20, 9, 3});
        ExpectChainEqualsPlain({Shift(1, away), Bumps(3, relief)}, {20, 9, 3});
    }
}

// From left of 0 to right of it two neighbours are in column 0.
TEST(BumpMapPoints, NeighboursAreTruncatedTowardsZero)
{
    const std::uint8_t map[] = {255, 0, 51};
    const MappedPoint to =
        MapThrough(0.5, 0, [&] { return ZLV40_AddBumpMapDisplacementTransform(9, 9, 1, map, 3, 1); });
    EXPECT_EQ(to.x, 3.5) << "columns 0 and 1 around 0.5: (1 - 0) * 3 + 0.5";
}

TEST(BumpMapPoints, EachAxisFollowsItsOwnSlope)
{
    // It rises by 51, a fifth, to the right, and by two fifths downwards.
    const std::uint8_t map[] = {0, 51, 102, 102, 153, 204, 204, 255, 255};
    const MappedPoint to = MapThrough(1, 1, [&] { return ZLV40_AddBumpMapDisplacementTransform(9, 9, 10, map, 3, 3); });
    EXPECT_NEAR(to.x, 1 - 10 * (561 - 306) / 255.0, 1e-9) << "from the left";
    EXPECT_NEAR(to.y, 1 + 10 * (714 - 153) / 255.0, 1e-9) << "from below";
}

TEST(BumpMapPoints, AnEvenReliefDisplacesNothing)
{
    Relief even(7, 5, Flush::ToEnd, true);
    const WarpList list;
    ASSERT_EQ(Bumps(1e6, even).add(20, 9), 1u);
    const Bytes src = RandomBytes(20 * 9 * 3, 1);
    for (const std::uint32_t sampling : {0u, 1u, 2u}) {
        Bytes dst(src.size());
        EXPECT_EQ(ZLV40_TransformProcess(src.data(), 20, 9, 60, dst.data(), 60, 3, sampling, 0), 1u);
        EXPECT_EQ(dst, src);
    }
}

TEST(BumpMapPoints, ChangesOfTheReliefAreSeen)
{
    const WarpList list;
    Bytes map = {0, 0, 0};
    ASSERT_EQ(ZLV40_AddBumpMapDisplacementTransform(3, 1, 1, map.data(), 3, 1), 1u);
    double minX, minY, before, after, maxY;
    ASSERT_EQ(ZLV40_GetTransformDimensions(3, 1, &minX, &minY, &before, &maxY), 1u);
    map[0] = 255;
    ASSERT_EQ(ZLV40_GetTransformDimensions(3, 1, &minX, &minY, &after, &maxY), 1u);
    EXPECT_EQ(before, 2);
    EXPECT_EQ(after, 4) << "left of pixel 1 it is higher by 1 in three rows";
}

TEST(BumpMapPoints, EmptySizesOfThePictureAreTaken)
{
    const WarpList list;
    const std::uint8_t height = 9;
    EXPECT_EQ(ZLV40_AddBumpMapDisplacementTransform(0, 0, 1, &height, 1, 1), 1u);
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, src);
}

TEST(BumpMapPoints, MissingAndEmptyReliefsAreRefused)
{
    const WarpList list;
    const std::uint8_t height = 9;
    const struct {
        const std::uint8_t* map;
        std::uint32_t width, height;
    } rows[] = {{nullptr, 1, 1}, {&height, 0, 1}, {&height, 1, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(ZLV40_AddBumpMapDisplacementTransform(4, 3, 1, row.map, row.width, row.height), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(ZLV40_AddBumpMapDisplacementTransform(4, 3, 1, &height, 1, 1), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
}

}  // namespace
}  // namespace zlvtest
