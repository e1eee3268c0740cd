#include "warp/warp_cases.h"

#include "support/failing_memory.h"

namespace zlvtest {
namespace {

using Points = std::vector<PlainPoint>;

constexpr std::int32_t kLowest = -2147483647 - 1, kHighest = 2147483647;

TEST(PolygonPoints, EveryTargetEqualsPlain)
{
    const struct {
        const char* shows;
        Points polygon;
    } polygons[] = {
        {"triangle", {{1, 1}, {11, 2}, {4, 8}}},
        {"square around everything", {{-5, -5}, {400, -5}, {400, 50}, {-5, 50}}},
        {"square on the raster", {{2, 1}, {6, 1}, {6, 5}, {2, 5}}},
        {"thin", {{0, 0}, {1, 30}, {2, 30}}},
        {"far to the lower right", {{100, 100}, {200, 100}, {150, 200}}},
        {"far to the upper left", {{-100, -100}, {-20, -100}, {-50, -200}}},
        {"concave", {{0, 0}, {12, 0}, {6, 3}, {12, 8}, {0, 8}}},
        {"many in a line", {{0, 0}, {3, 0}, {6, 0}, {9, 0}, {9, 4}, {9, 9}, {0, 9}, {0, 4}}},
    };
    std::vector<WarpCase> cases;
    for (const auto& row : polygons) {
        for (const std::uint32_t mode : {0u, 1u, 2u, 3u, 4u, 5u, 0xFFFFFFFFu}) {
            if (!PlainPolygonWarp(9, 9, row.polygon, mode)) continue;
            cases.push_back(Polygon(row.shows, row.polygon, mode));
        }
    }
    ASSERT_GE(cases.size(), 40u);
    ExpectEachEqualsPlain(cases);
}

// Points in any order and number: the library and the twin agree on which polygons can be used, too.
TEST(PolygonPoints, RandomPolygonsEqualPlain)
{
    Random random(5);
    int used = 0, refused = 0;
    for (int i = 0; i < 600; ++i) {
        Points polygon(1 + random.Below(8));
        const std::uint32_t reach = 2 + random.Below(30);
        for (PlainPoint& p : polygon)
            p = {std::int32_t(random.Below(reach)) - 3, std::int32_t(random.Below(reach)) - 3};
        const std::uint32_t mode = random.Below(4);
        SCOPE(i, "mode", mode);
        const WarpCase warp = Polygon("random", polygon, mode);
        if (PlainPolygonWarp(13, 7, polygon, mode)) {
            ++used;
            ExpectChainEqualsPlain({warp}, {13, 7, 1});
        } else {
            ++refused;
            const WarpList list;
            EXPECT_EQ(warp.add(13, 7), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
        }
    }
    EXPECT_GT(used, 200);
    EXPECT_GT(refused, 50);
}

Bytes Warped(const Points& polygon, std::uint32_t mode, const Bytes& src, std::uint32_t width)
{
    const WarpList list;
    const std::uint32_t height = std::uint32_t(src.size()) / width;
    EXPECT_EQ(Polygon("", polygon, mode).add(width, height), 1u);
    Bytes dst(src.size());
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), width, height, width, dst.data(), width, 1, 0, 99), 1u);
    return dst;
}

TEST(PolygonPoints, RowsAboveAndBelowATriangleTakeTheFill)
{
    const Bytes dst = Warped({{0, 2}, {8, 2}, {4, 6}}, ZLV40_POLYGON_ROWS, Bytes(8 * 8, 7), 8);
    for (const std::size_t row : {0, 1, 6, 7}) {
        EXPECT_EQ(Bytes(dst.begin() + std::ptrdiff_t(row) * 8, dst.begin() + std::ptrdiff_t(row) * 8 + 8),
                  Bytes(8, 99));
    }
    EXPECT_NE(Bytes(dst.begin() + 16, dst.begin() + 24), Bytes(8, 99));
}

// A square from 2 to 6: x = 2, 3, 4, 5, 6 come from 8 / 4 * (x - 2) = 0, 2, 4, 6, 8.
TEST(PolygonPoints, ASpanBecomesTheWholeWidth)
{
    const Bytes src = {0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(Warped({{2, 0}, {6, 0}, {6, 1}, {2, 1}}, ZLV40_POLYGON_ROWS, src, 8), (Bytes{99, 99, 0, 2, 4, 6, 7, 99}));
}

TEST(PolygonPoints, EndsAreInsideWhereRowsAloneAreSqueezed)
{
    const Points square = {{2, 2}, {6, 2}, {6, 6}, {2, 6}};
    const Bytes src(8 * 8, 7);
    const auto at = [&](std::uint32_t mode, std::size_t x, std::size_t y) {
        return Warped(square, mode, src, 8)[8 * y + x];
    };
    EXPECT_EQ(at(ZLV40_POLYGON_ROWS, 2, 4), 7);
    EXPECT_EQ(at(ZLV40_POLYGON_ROWS, 6, 4), 7);
    EXPECT_EQ(at(ZLV40_POLYGON_ROWS, 4, 2), 7);
    EXPECT_EQ(at(ZLV40_POLYGON_COLUMNS, 4, 2), 99);
    EXPECT_EQ(at(ZLV40_POLYGON_COLUMNS, 4, 3), 7);
    EXPECT_EQ(at(ZLV40_POLYGON_COLUMNS, 4, 6), 99);
    EXPECT_EQ(at(ZLV40_POLYGON_BOTH, 2, 4), 99);
    EXPECT_EQ(at(ZLV40_POLYGON_BOTH, 3, 4), 7);
    EXPECT_EQ(at(ZLV40_POLYGON_BOTH, 4, 2), 99);
}

TEST(PolygonPoints, AConcavePolygonIsItsHull)
{
    const Bytes src = RandomBytes(16 * 12, 3);
    for (const std::uint32_t mode : {0u, 1u, 2u}) {
        EXPECT_EQ(Warped({{1, 1}, {14, 1}, {7, 5}, {14, 10}, {1, 10}}, mode, src, 16),
                  Warped({{1, 1}, {14, 1}, {14, 10}, {1, 10}}, mode, src, 16));
    }
}

TEST(PolygonPoints, ModeFiveIsModeZero)
{
    const Bytes src = RandomBytes(16 * 12, 3);
    const Points polygon = {{1, 1}, {14, 3}, {6, 10}};
    EXPECT_EQ(Warped(polygon, 5, src, 16), Warped(polygon, 0, src, 16));
}

// Sampled at their middles, rows are one span each, also along a horizontal edge.
TEST(PolygonPoints, AHorizontalEdgeAtTheTopCountsOnce)
{
    const Bytes src = {0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(Warped({{2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {6, 1}, {2, 1}}, ZLV40_POLYGON_ROWS, src, 8),
              (Bytes{99, 99, 0, 2, 4, 6, 7, 99}));
}

// The test of the frame is everywhere; no position of the picture's own pixels fails it.
TEST(PolygonPoints, OtherModesKeepTheFrame)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 1, 2, 0, ZLV40_WRAP_NONE), 1u);
    ASSERT_EQ(Polygon("", {{0, 0}, {1, 0}, {1, 1}}, 3).add(4, 1), 1u);
    const Bytes src = {1, 2, 3, 4};
    Bytes dst(4);
    ASSERT_EQ(ZLV40_TransformProcess(src.data(), 4, 1, 4, dst.data(), 4, 1, ZLV40_CLAMP_POINTS, 9), 1u);
    EXPECT_EQ(dst, (Bytes{9, 9, 1, 2})) << "clamping does not bring back what a warp called outside";
}

TEST(PolygonPoints, UnusableOnesAreRefused)
{
    const struct {
        const char* shows;
        Points polygon;
        std::uint32_t mode;
    } rows[] = {
        {"no points", {}, 0},
        {"one point", {{1, 1}}, 0},
        {"two points", {{1, 1}, {5, 5}}, 0},
        {"one point three times", {{1, 1}, {1, 1}, {1, 1}}, 0},
        {"all in a row", {{1, 1}, {5, 1}, {9, 1}}, 0},
        {"all in a column", {{1, 1}, {1, 5}, {1, 9}}, 0},
        {"billions of rows", {{0, kLowest}, {kHighest, 0}, {0, kHighest}}, 0},
        {"billions of columns", {{kLowest, 0}, {kHighest, 0}, {0, 5}}, 1},
        {"billions of columns", {{kLowest, 0}, {kHighest, 0}, {0, 5}}, 2},
    };
    const WarpList list;
    ASSERT_EQ(Offset(1, 0, 0).add(5, 5), 1u);
    for (const auto& row : rows) {
        SCOPE(row.shows);
        EXPECT_EQ(Polygon("", row.polygon, row.mode).add(5, 5), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    EXPECT_EQ(ZLV40_AddPolygonTransform(5, 5, nullptr, 4, 0), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    ExpectListEqualsPlain({5, 5, 1}, {PlainOffset(1, 0, 0, 5, 5)}, 0);
}

// Wide, but not high: the whole range of coordinates is one span.
TEST(PolygonPoints, ExtremeColumnsAreStretched)
{
    const WarpList list;
    const WarpCase warp = Polygon("wide", {{kLowest, 0}, {kHighest, 0}, {kHighest, 3}, {kLowest, 3}}, 0);
    ASSERT_EQ(warp.add(4, 3), 1u);
    const Bytes src = RandomBytes(12, 1);
    Bytes dst(12);
    ASSERT_EQ(ZLV40_TransformProcess(src.data(), 4, 3, 4, dst.data(), 4, 1, 0, 99), 1u);
    // All of it comes from half way: 4 / (2^32 - 1) * (2^31 + x) is a little above 2.
    for (std::size_t row = 0; row < 3; ++row) {
        EXPECT_EQ(Bytes(dst.begin() + std::ptrdiff_t(row) * 4, dst.begin() + std::ptrdiff_t(row) * 4 + 4),
                  Bytes(4, src[4 * row + 3]));
    }
}

TEST(PolygonPoints, TheArrayMayGoAway)
{
    const WarpList list;
    {
        std::vector<point> points = {{2, 0}, {6, 0}, {6, 1}, {2, 1}};
        ASSERT_EQ(ZLV40_AddPolygonTransform(8, 1, points.data(), 4, 0), 1u);
        std::fill(points.begin(), points.end(), point{0, 0});
    }
    const Bytes src = {0, 1, 2, 3, 4, 5, 6, 7};
    Bytes dst(8);
    ASSERT_EQ(ZLV40_TransformProcess(src.data(), 8, 1, 8, dst.data(), 8, 1, 0, 99), 1u);
    EXPECT_EQ(dst, (Bytes{99, 99, 0, 2, 4, 6, 7, 99}));
}

TEST(PolygonPoints, PositionsThatAreNoNumbersHaveNoLine)
{
    for (const std::uint32_t mode : {0u, 1u, 2u, 3u}) {
        for (const double shift : {kNaN, kInfinity, -kInfinity, 1e300}) {
            ExpectChainEqualsPlain({Offset(shift, 0, 0), Polygon("", {{0, 0}, {9, 0}, {9, 9}, {0, 9}}, mode)},
                                   {9, 9, 1});
            ExpectChainEqualsPlain({Offset(0, shift, 0), Polygon("", {{0, 0}, {9, 0}, {9, 9}, {0, 9}}, mode)},
                                   {9, 9, 1});
        }
    }
}

// A frame of one point.
TEST(PolygonPoints, EmptySizesAreTaken)
{
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        SCOPE(mode);
        const WarpList list;
        const Points polygon = {{-3, -3}, {9, -3}, {9, 9}, {-3, 9}};
        ASSERT_EQ(Polygon("", polygon, mode).add(0, 4), 1u);
        const Bytes src = {1, 2, 3, 4};
        Bytes dst(4);
        ASSERT_EQ(ZLV40_TransformProcess(src.data(), 4, 1, 4, dst.data(), 4, 1, 0, 9), 1u);
        EXPECT_EQ(dst, (Bytes{1, 9, 9, 9}));
        ExpectListEqualsPlain({4, 3, 1}, {*PlainPolygonWarp(0, 4, polygon, mode)}, 0);
    }
}

// The object itself, and the list's room, are code 1; what the tables need is a polygon that can't be used.
TEST(PolygonPoints, WithoutMemoryTheListStaysAsItWas)
{
    const WarpList list;
    const WarpCase warp = Polygon("", {{0, 0}, {9, 0}, {9, 9}}, 2);
    for (const auto function : {FailingCalls::Of::Allocate, FailingCalls::Of::AllocateClientBlock}) {
        SCOPE(int(function));
        WithEachFailing(
            function, [&] { return warp.add(9, 9); },
            [&](std::uint32_t added, std::uint32_t failed, std::uint32_t succeeding) {
                EXPECT_EQ(added, failed ? 0u : 1u);
                if (!failed) return;
                const bool isObject = function == FailingCalls::Of::Allocate && succeeding == 0;
                EXPECT_EQ(ZLV40_GetLastError(),
                          std::uint32_t(isObject ? ZLV40_ERROR_OUT_OF_MEMORY : ZLV40_ERROR_BAD_ARGUMENT));
                ExpectListEqualsPlain({5, 5, 1}, {}, 0);
            });
        ZLV40_ClearAllTransforms();
    }
}

}  // namespace
}  // namespace zlvtest
