#include "base/convex.h"

#include "plain/plain_convex.h"
#include "support/base_layer.h"
#include "support/test_hooks.h"

#include <algorithm>
#include <limits>

namespace zlv {
namespace {

using Points = std::vector<PlainPoint>;

constexpr i32 kLowest = std::numeric_limits<i32>::min(), kHighest = std::numeric_limits<i32>::max();

const i32* Numbers(const Points& points) { return points.empty() ? nullptr : &points[0].x; }

u32 CallIsConvex(const Points& points) { return MV40_PolygonIsConvex(Numbers(points), u32(points.size())); }

// On a grid of a few places many points meet and stand in lines; on a large one none do.
Points RandomPoints(u32 count, u32 places, u64 seed)
{
    zlvtest::Random random(seed);
    Points points;
    for (u32 i = 0; i < count; ++i) points.push_back({i32(random.Below(places)), i32(random.Below(places))});
    return points;
}

// A convex polygon of `count` vertices, wound as it has to be.
Points Circle(u32 count, f64 radius)
{
    Points points;
    for (u32 i = 0; i < count; ++i) {
        const f64 angle = 6.283185307179586 * i / count;
        points.push_back({i32(std::lround(radius * std::cos(angle))), i32(std::lround(radius * std::sin(angle)))});
    }
    return points;
}

TEST(PolygonIsConvex, EqualsPlain)
{
    u32 convex = 0;
    for (u32 seed = 0; seed < 4000; ++seed) {
        SCOPE(seed);
        const Points points = RandomPoints(1 + seed % 7, 2 + seed % 5, seed);
        const bool isConvex = PlainIsConvex(points);
        convex += isConvex;
        ASSERT_EQ(CallIsConvex(points), isConvex ? 1u : 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(isConvex ? Error::None : Error::UnusablePolygon));
    }
    EXPECT_GT(convex, 400u);
    EXPECT_LT(convex, 3600u);
}

TEST(PolygonIsConvex, CirclesOfAnySizeEqualPlain)
{
    for (u32 count = 3; count < 40; ++count) {
        SCOPE(count);
        Points points = Circle(count, 100000);
        EXPECT_EQ(CallIsConvex(points), PlainIsConvex(points) ? 1u : 0u);
        std::reverse(points.begin(), points.end());
        EXPECT_EQ(CallIsConvex(points), PlainIsConvex(points) ? 1u : 0u);
    }
}

const struct {
    const char* shows;
    Points points;
    bool isConvex;
} kPolygons[] = {
    {"a square as it has to be wound", {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, true},
    {"a square in reverse", {{0, 1}, {1, 1}, {1, 0}, {0, 0}}, false},
    {"a triangle", {{0, 0}, {4, 0}, {0, 4}}, true},
    {"a triangle in reverse, found by its second vertex", {{0, 4}, {4, 0}, {0, 0}}, false},
    {"one point", {{5, 5}}, true},
    {"two points", {{5, 5}, {9, 2}}, true},
    {"three points on a line", {{0, 0}, {2, 2}, {4, 4}}, true},
    {"three points on a line, there and back", {{0, 0}, {4, 4}, {2, 2}}, true},
    {"the same point", {{3, 3}, {3, 3}, {3, 3}, {3, 3}}, true},
    {"points along the edges", {{0, 0}, {1, 0}, {2, 0}, {2, 2}, {1, 2}, {0, 2}, {0, 1}, {0, 0}}, true},
    {"a dent", {{0, 0}, {4, 0}, {4, 4}, {2, 1}}, false},
    {"a figure eight", {{0, 0}, {4, 4}, {4, 0}, {0, 4}}, false},
    {"a star that turns one way and winds twice", {{0, -10}, {6, 8}, {-10, -3}, {10, -3}, {-6, 8}}, false},
    {"a square wound twice", {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 0}, {1, 0}, {1, 1}, {0, 1}}, true},
    {"corners of the range",
     {{kLowest, kLowest}, {kHighest, kLowest}, {kHighest, kHighest}, {kLowest, kHighest}},
     true},
    {"and in reverse", {{kLowest, kHighest}, {kHighest, kHighest}, {kHighest, kLowest}, {kLowest, kLowest}}, false},
};

TEST(PolygonIsConvex, ByHand)
{
    for (const auto& row : kPolygons) {
        SCOPE(row.shows);
        EXPECT_EQ(CallIsConvex(row.points), row.isConvex ? 1u : 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(row.isConvex ? Error::None : Error::UnusablePolygon));
    }
}

TEST(PolygonIsConvex, NoPointsAreConvexAndNullIsRefused)
{
    const i32 point[2] = {};
    EXPECT_EQ(MV40_PolygonIsConvex(point, 0), 1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    for (const u32 count : {0u, 4u}) {
        EXPECT_EQ(MV40_PolygonIsConvex(nullptr, count), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    }
}

TEST(PolygonIsConvex, NeedsNoMemory)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(CallIsConvex({{0, 0}, {1, 0}, {1, 1}, {0, 1}}), 1u);
}

// What a call of MV40_GetConvexHull gives; frees its block.
struct Hull {
    explicit Hull(const Points& given)
    {
        i32* hull = nullptr;
        u32 count = 77;
        result = MV40_GetConvexHull(Numbers(given), u32(given.size()), &hull, &count);
        isBlock = hull != nullptr;
        if (hull) {
            for (u32 i = 0; i < count; ++i) points.push_back({hull[2 * i], hull[2 * i + 1]});
        }
        hullCount = count;
        platform::FreeClientBlock(hull);
    }

    u32 result, hullCount;
    bool isBlock;
    Points points;
};

TEST(ConvexHull, EqualsPlain)
{
    u32 usable = 0;
    for (u32 seed = 0; seed < 4000; ++seed) {
        SCOPE(seed);
        const Points points = RandomPoints(3 + seed % 12, 2 + seed % 13 * 3, seed);
        const Points wanted = PlainHull(points);
        const Hull got(points);
        if (wanted.size() < 3) {
            EXPECT_EQ(got.result, 0u);
            EXPECT_EQ(got.hullCount, 0u);
            EXPECT_FALSE(got.isBlock);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::UnusablePolygon));
            continue;
        }
        ++usable;
        ASSERT_EQ(got.result, 1u);
        EXPECT_EQ(got.points, wanted);
    }
    EXPECT_GT(usable, 2000u);
}

TEST(ConvexHull, ManyPointsEqualPlain)
{
    for (const u32 count : {50u, 500u, 3000u}) {
        for (const u32 places : {10u, 1000u, 0x7FFFFFFFu}) {
            SCOPE(count, places);
            const Points points = RandomPoints(count, places, count + places);
            const Points wanted = PlainHull(points);
            EXPECT_EQ(Hull(points).points, wanted.size() < 3 ? Points() : wanted);
        }
    }
}

const struct {
    const char* shows;
    Points points, hull;
} kHulls[] = {
    {"a triangle; the start comes last", {{4, 4}, {0, 0}, {8, 0}}, {{4, 4}, {8, 0}, {0, 0}}},
    {"the points inside are left out",
     {{0, 0}, {8, 0}, {4, 3}, {8, 8}, {3, 4}, {0, 8}},
     {{0, 8}, {8, 8}, {8, 0}, {0, 0}}},
    {"the start is the lowest y, then the lowest x",
     {{5, 1}, {2, 1}, {9, 4}, {1, 6}},
     {{1, 6}, {9, 4}, {5, 1}, {2, 1}}},
    // From (0, 0) both (4, 0) and (8, 0) are at angle 0: the last of them is taken, here the near one.
    {"a near point on a line comes in when it stands last",
     {{0, 0}, {8, 0}, {4, 0}, {4, 8}},
     {{4, 8}, {8, 0}, {4, 0}, {0, 0}}},
    {"and is passed by when it stands first", {{0, 0}, {4, 0}, {8, 0}, {4, 8}}, {{4, 8}, {8, 0}, {0, 0}}},
    {"a duplicate is at angle 0 and passed by", {{0, 0}, {8, 0}, {4, 8}, {4, 8}}, {{4, 8}, {8, 0}, {0, 0}}},
    {"a duplicate of the start too, in front of others at angle 0",
     {{0, 0}, {0, 0}, {8, 0}, {4, 8}},
     {{4, 8}, {8, 0}, {0, 0}}},
    {"corners of the range",
     {{kLowest, kLowest}, {kHighest, kLowest}, {kHighest, kHighest}, {kLowest, kHighest}},
     {{kLowest, kHighest}, {kHighest, kHighest}, {kHighest, kLowest}, {kLowest, kLowest}}},
};

TEST(ConvexHull, ByHand)
{
    for (const auto& row : kHulls) {
        SCOPE(row.shows);
        const Hull hull(row.points);
        EXPECT_EQ(hull.result, 1u);
        EXPECT_EQ(hull.points, row.hull);
    }
}

const struct {
    const char* shows;
    Points points;
} kFlat[] = {
    {"three points on a line, the far end last", {{0, 0}, {2, 1}, {4, 2}}},
    {"the same point", {{3, 3}, {3, 3}, {3, 3}, {3, 3}}},
    // It is at angle 0, and from there the start is too: the walk is back after one step.
    {"a duplicate of the start that stands last", {{0, 0}, {8, 0}, {4, 8}, {0, 0}}},
};

TEST(ConvexHull, FewerThanThreePointsAreNone)
{
    for (const auto& row : kFlat) {
        SCOPE(row.shows);
        const Hull hull(row.points);
        EXPECT_EQ(hull.result, 0u);
        EXPECT_EQ(hull.hullCount, 0u);
        EXPECT_FALSE(hull.isBlock);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::UnusablePolygon));
    }
}

TEST(ConvexHull, SuccessLeavesTheEarlierCode)
{
    EXPECT_EQ(MV40_PolygonIsConvex(nullptr, 0), 0u);
    EXPECT_EQ(Hull({{0, 0}, {8, 0}, {4, 8}}).result, 1u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
}

TEST(ConvexHull, NullPointersAndFewPointsAreRefused)
{
    const i32 points[] = {0, 0, 8, 0, 4, 8};
    for (u32 missing = 0; missing < 6; ++missing) {
        SCOPE(missing);
        i32 some = 7;
        i32* hull = &some;
        u32 hullCount = 7;
        const u32 count = missing == 3 ? 0 : missing == 4 ? 2 : 3;
        const u32 result = MV40_GetConvexHull(missing == 0 ? nullptr : points, count, missing == 1 ? nullptr : &hull,
                                              missing == 2 ? nullptr : &hullCount);
        if (missing == 5) {
            EXPECT_EQ(result, 1u);
            platform::FreeClientBlock(hull);
            continue;
        }
        EXPECT_EQ(result, 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(hull, missing == 1 ? &some : nullptr);
        EXPECT_EQ(hullCount, missing == 2 ? 7u : 0u);
    }
}

// 8 * 268418560 bytes are the first that are not asked for; the points are not looked at.
TEST(ConvexHull, TooManyPointsAreCodeOne)
{
    const i32 point[2] = {};
    for (const u32 count : {268418560u, 0xFFFFFFFFu}) {
        i32* hull = nullptr;
        u32 hullCount = 7;
        EXPECT_EQ(MV40_GetConvexHull(point, count, &hull, &hullCount), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(hullCount, 0u);
    }
}

TEST(ConvexHull, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const auto function : {zlvtest::FailingCalls::Of::Allocate, zlvtest::FailingCalls::Of::AllocateClientBlock}) {
        SCOPE(int(function));
        const zlvtest::FailingCalls failing(function, 0);
        const Hull hull({{0, 0}, {8, 0}, {4, 8}});
        EXPECT_EQ(hull.result, 0u);
        EXPECT_EQ(hull.hullCount, 0u);
        EXPECT_FALSE(hull.isBlock);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
    }
}

}  // namespace
}  // namespace zlv
