#include "base/polygon_scan.h"

#include "base/polygon_scanlines.h"
#include "base/polygon_support.h"

#include <bit>

namespace zlv {
namespace {

// What a call of MV40_GetPolygonScanlineArray gives; frees its blocks.
class Scanlines {
public:
    explicit Scanlines(const Polygon& polygon) : vertices_(polygon) { Call(); }
    ~Scanlines()
    {
        platform::FreeClientBlock(rows);
        platform::FreeClientBlock(lefts);
        platform::FreeClientBlock(rights);
    }
    Scanlines(const Scanlines&) = delete;
    Scanlines& operator=(const Scanlines&) = delete;

    void Call()
    {
        result = MV40_GetPolygonScanlineArray(vertices_.Data(), vertices_.Count(), &rows, &lefts, &rights, &count);
        error = MV40_GetLastError();
    }
    bool IsEmpty() const { return !rows && !lefts && !rights && count == 0; }

    i32* rows = nullptr;
    f64* lefts = nullptr;
    f64* rights = nullptr;
    u32 count = 77;
    u32 result, error;

private:
    Vertices vertices_;
};

void ExpectSpans(const Polygon& polygon, const std::vector<PlainSpan>& wanted)
{
    const Scanlines got(polygon);
    ASSERT_EQ(got.result, 1u);
    EXPECT_EQ(got.error, 0u);
    ASSERT_EQ(got.count, wanted.size());
    for (size_t i = 0; i < wanted.size(); ++i) {
        SCOPE("span", i);
        ASSERT_EQ(got.rows[i], wanted[i].row);
        ASSERT_EQ(std::bit_cast<u64>(got.lefts[i]), std::bit_cast<u64>(wanted[i].leftX));
        ASSERT_EQ(std::bit_cast<u64>(got.rights[i]), std::bit_cast<u64>(wanted[i].rightX));
    }
}

TEST(PolygonScan, EqualsPlain)
{
    ForPolygons(120, [](const Polygon& polygon) { ExpectSpans(polygon, PlainScan(polygon).Spans()); });
}

TEST(PolygonScan, OneAndTwoVerticesEqualPlain)
{
    for (const Polygon& polygon : {Polygon{{3, 4}}, Polygon{{3.2, 4}, {9.5, 12}}, Polygon{{3.5, 4}, {3.5, 12}}}) {
        ExpectSpans(polygon, PlainScan(polygon).Spans());
    }
}

TEST(PolygonScan, ManyVerticesEqualPlain)
{
    for (const u32 count : {40u, 300u, 2000u}) {
        SCOPE(count);
        const Polygon polygon = RandomPolygon(PolygonKind::Around, count, count);
        ExpectSpans(polygon, PlainScan(polygon).Spans());
    }
}

struct HandSpan {
    i64 row;
    f64 leftX, rightX;
};

const struct {
    const char* shows;
    Polygon polygon;
    std::vector<HandSpan> spans;
} kPolygons[] = {
    {"a square of pixels", {{1, 2}, {4, 2}, {4, 5}, {1, 5}}, {{2, 1, 4}, {3, 1, 4}, {4, 1, 4}}},
    {"the other way round", {{1, 5}, {4, 5}, {4, 2}, {1, 2}}, {{2, 1, 4}, {3, 1, 4}, {4, 1, 4}}},
    {"a horizontal bottom edge has no crossing", {{0, 0}, {4, 2}, {-4, 2}}, {{0, -1, 1}, {1, -3, 3}}},
    {"a horizontal top edge has none", {{0, 2}, {4, 0}, {-4, 0}}, {{0, -3, 3}, {1, -1, 1}}},
    {"less than a row between two rows", {{0, 0.6}, {9, 0.7}, {4, 1.4}}, {}},
    {"edges begin with a vertex on a row of samples",
     {{2.5, 0.5}, {4.5, 2.5}, {0.5, 2.5}},
     {{0, 2.5, 2.5}, {1, 1.5, 3.5}}},
    {"and end before one", {{2.5, 2.5}, {4.5, 0.5}, {0.5, 0.5}}, {{0, 0.5, 4.5}, {1, 1.5, 3.5}}},
    {"a figure eight changes sides",
     {{0, 0}, {4, 4}, {0, 4}, {4, 0}},
     {{0, 0.5, 3.5}, {1, 1.5, 2.5}, {2, 1.5, 2.5}, {3, 0.5, 3.5}}},
    // Two squares one over the other: where both are, nothing is.
    {"twice around is outside",
     {{0, 0}, {6, 0}, {6, 2}, {0, 2}, {0, 0}, {2, 0}, {2, 2}, {4, 2}, {4, 0}},
     {{0, 0, 2}, {0, 4, 6}, {1, 0, 2}, {1, 4, 6}}},
    {"all vertices the same", {{3, 3}, {3, 3}, {3, 3}}, {}},
    {"all of them on a pixel centre", {{3.5, 3.5}, {3.5, 3.5}, {3.5, 3.5}}, {}},
    {"a line there and back on pixel centres", {{1.5, 1}, {1.5, 3}, {1.5, 1}}, {{1, 1.5, 1.5}, {2, 1.5, 1.5}}},
    {"both crossings between the same two centres in every row", {{0.1, 0}, {0.9, 0}, {3.9, 3}, {3.1, 3}}, {}},
    {"negative rows", {{0, -3}, {2, -3}, {2, -1}, {0, -1}}, {{-3, 0, 2}, {-2, 0, 2}}},
};

TEST(PolygonScan, ByHand)
{
    for (const auto& row : kPolygons) {
        SCOPE(row.shows);
        const Scanlines got(row.polygon);
        ASSERT_EQ(got.result, 1u);
        ASSERT_EQ(got.count, row.spans.size());
        for (size_t i = 0; i < row.spans.size(); ++i) {
            EXPECT_EQ(got.rows[i], row.spans[i].row);
            EXPECT_EQ(got.lefts[i], row.spans[i].leftX);
            EXPECT_EQ(got.rights[i], row.spans[i].rightX);
        }
    }
}

// Crossings 0.25 apart move by 0.75 a row: 0.375 to 0.625, 1.125 to 1.375, 1.875 to 2.125, 2.625 to 2.875, and the row
// where they enclose a centre again would be missed if those that do not stood still.
TEST(PolygonScan, EdgesOfADroppedSpanGoOn)
{
    const Scanlines got({{0, 0}, {0.25, 0}, {6.25, 8}, {6, 8}});
    ASSERT_EQ(got.count, 2u);
    EXPECT_EQ(got.rows[0], 0);
    EXPECT_EQ(got.lefts[0], 0.375);
    EXPECT_EQ(got.rows[1], 4);
    EXPECT_EQ(got.lefts[1], 3.375);
    EXPECT_EQ(got.rights[1], 3.625);
}

TEST(PolygonScan, NoSpansAreEmptyBlocks)
{
    const Scanlines got({{0, 0.6}, {9, 0.7}, {4, 1.4}});
    EXPECT_EQ(got.result, 1u);
    EXPECT_EQ(got.error, 0u);
    EXPECT_TRUE(got.IsEmpty());
}

TEST(PolygonScan, BadCoordinatesAreRefused)
{
    for (const f64 bad : kBadCoordinates) {
        for (u32 place = 0; place < 6; ++place) {
            SCOPE(bad, place);
            Polygon polygon = {{0, 0}, {5, 0}, {5, 5}};
            (place % 2 ? polygon[place / 2].y : polygon[place / 2].x) = bad;
            const Scanlines got(polygon);
            EXPECT_EQ(got.result, 0u);
            EXPECT_EQ(got.error, u32(Error::BadArgument));
            EXPECT_TRUE(got.IsEmpty());
        }
    }
}

TEST(PolygonScan, TheWholeRangeIsTaken)
{
    const Scanlines got({{kLowest, 0}, {kHighest, 0}, {kHighest, 2}, {kLowest, 2}});
    ASSERT_EQ(got.count, 2u);
    EXPECT_EQ(got.lefts[1], kLowest);
    EXPECT_EQ(got.rights[1], kHighest);

    const Scanlines top({{0, kLowest}, {8, kLowest}, {8, kLowest + 2}, {0, kLowest + 2}});
    ASSERT_EQ(top.count, 2u);
    EXPECT_EQ(top.rows[0], std::numeric_limits<i32>::min());

    const Scanlines bottom({{0, kHighest - 2}, {8, kHighest - 2}, {8, kHighest}, {0, kHighest}});
    ASSERT_EQ(bottom.count, 2u);
    EXPECT_EQ(bottom.rows[1], std::numeric_limits<i32>::max() - 1);
}

TEST(PolygonScan, NullPointersAndNoVerticesAreRefused)
{
    const Vertices square({{1, 2}, {4, 2}, {4, 5}, {1, 5}});
    for (u32 missing = 0; missing < 6; ++missing) {
        SCOPE(missing);
        i32 row = 7;
        f64 crossing = 7;
        i32* rows = &row;
        f64 *lefts = &crossing, *rights = &crossing;
        u32 count = 7;
        EXPECT_EQ(MV40_GetPolygonScanlineArray(missing == 0 ? nullptr : square.Data(), missing == 1 ? 0 : 4,
                                               missing == 2 ? nullptr : &rows, missing == 3 ? nullptr : &lefts,
                                               missing == 4 ? nullptr : &rights, missing == 5 ? nullptr : &count),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(rows, missing == 2 ? &row : nullptr);
        EXPECT_EQ(lefts, missing == 3 ? &crossing : nullptr);
        EXPECT_EQ(rights, missing == 4 ? &crossing : nullptr);
        EXPECT_EQ(count, missing == 5 ? 7u : 0u);
    }
}

TEST(PolygonScan, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const auto function : {zlvtest::FailingCalls::Of::Allocate, zlvtest::FailingCalls::Of::AllocateClientBlock}) {
        for (const u32 succeeding : {0u, 1u, 2u}) {
            SCOPE(int(function), succeeding);
            const zlvtest::FailingCalls failing(function, succeeding);
            const Scanlines got({{1, 2}, {4, 2}, {4, 5}, {1, 5}});
            EXPECT_EQ(got.result, 0u);
            EXPECT_EQ(got.error, u32(Error::OutOfMemory));
            EXPECT_TRUE(got.IsEmpty());
        }
    }
}

// 2^32 rows with a span each: 16 GB are not asked for, and nobody counts up to there.
TEST(PolygonScan, TooManySpansAreCodeOne)
{
    for (const Polygon& polygon : {Polygon{{0, kLowest}, {50, kLowest}, {50, kHighest}, {0, kHighest}},
                                   Polygon{{0, kLowest}, {1000, kHighest}, {kLowest, kHighest}}}) {
        const Scanlines got(polygon);
        EXPECT_EQ(got.result, 0u);
        EXPECT_EQ(got.error, u32(Error::OutOfMemory));
        EXPECT_TRUE(got.IsEmpty());
    }
}

TEST(PolygonScan, NeverReports)
{
    zlvtest::Recording recording(1);
    const Scanlines got({{1, 2}, {4, 2}, {4, 5}, {1, 5}});
    EXPECT_EQ(got.result, 1u);
    EXPECT_TRUE(recording.recorder.reports.empty());
}

}  // namespace
}  // namespace zlv
