#include "base/polygon_pairs.h"

#include "base/polygon_support.h"

namespace zlv {
namespace {

u64 Count(const Polygon& polygon, u64 enough = u64(1) << 60)
{
    const Vertices vertices(polygon);
    ScanConverter scan;
    EXPECT_EQ(scan.Prepare(vertices.Data(), vertices.Count()), Error::None);
    return CountSpans(scan, enough);
}

TEST(CountSpans, CountsWhatIsVisited)
{
    ForPolygons(60, [](const Polygon& polygon) { EXPECT_EQ(Count(polygon), PlainScan(polygon).Spans().size()); });
}

// Pairs of every slope and width, some thousand rows long.
TEST(CountSpans, CountsTallPolygons)
{
    zlvtest::Random random(7);
    const auto real = [&](f64 size) { return size * (random.Next() / 2147483648.0 - 1); };
    for (u32 i = 0; i < 600; ++i) {
        SCOPE(i);
        constexpr f64 kWidths[] = {0, 1e-9, 0.1, 0.6, 0.999, 1, 1.001, 3, 40};
        constexpr f64 kPlaces[] = {0, 0.5, 3, 1000, -1000.5, 1e6, -3e8};
        constexpr f64 kSlopes[] = {0, 1, -1, 0.5, 1e-3, -1e-5, 3};
        const f64 width = kWidths[i % 9], x = kPlaces[i % 7] + real(1) * (i % 4 > 0), height = 3000 + real(2000);
        const f64 slope = kSlopes[random.Below(7)] + real(0.3) * (i % 5 > 1);
        const f64 top = real(2000), shift = slope * height, taper = i % 3 ? width : width * (1 + real(1));
        const Polygon polygon = {
            {x, top}, {x + width, top}, {x + taper + shift, top + height}, {x + shift, top + height}};
        ASSERT_EQ(Count(polygon), PlainScan(polygon).Spans().size());
    }
}

// Several pairs side by side, crossing each other and turning over.
TEST(CountSpans, CountsTallPolygonsOfManyEdges)
{
    zlvtest::Random random(8);
    for (u32 i = 0; i < 300; ++i) {
        SCOPE(i);
        Polygon polygon;
        for (u32 k = 0; k < 3 + i % 7; ++k) {
            polygon.push_back({i32(random.Below(400)) / 4.0 - 30, i32(random.Below(2)) * 3000.0 + random.Below(900)});
        }
        ASSERT_EQ(Count(polygon), PlainScan(polygon).Spans().size());
    }
}

constexpr u64 kAllRows = 0xFFFFFFFF;

const struct {
    const char* shows;
    Polygon polygon;
    u64 spans;
} kTall[] = {
    {"a column", {{0, kLowest}, {5, kLowest}, {5, kHighest}, {0, kHighest}}, kAllRows},
    {"a column without centres", {{0.6, kLowest}, {1.4, kLowest}, {1.4, kHighest}, {0.6, kHighest}}, 0},
    {"two columns",
     {{0, kLowest},
      {5, kLowest},
      {5, kHighest},
      {8, kHighest},
      {8, kLowest},
      {9, kLowest},
      {9, kHighest},
      {0, kHighest}},
     2 * kAllRows},
    {"a slanted line on centres", {{kLowest, kLowest}, {0, 0}, {kHighest, kHighest}}, kAllRows},
    {"a slanted line between centres", {{-0x1p30 + 0.25, -0x1p30}, {0.25, 0}, {0x1p30 + 0.25, 0x1p30}}, 0},
    // 0.25 wide, and 0.25 to the right from row to row: in every fourth row.
    {"a slanted sliver that holds a centre now and then",
     {{0.0625, kLowest}, {0.3125, kLowest}, {0x1p29 + 0.3125, 0}, {0x1p29 + 0.0625, 0}},
     u64(1) << 29},
};

TEST(CountSpans, SkipsRowsThatAreAlike)
{
    for (const auto& row : kTall) {
        SCOPE(row.shows);
        EXPECT_EQ(Count(row.polygon), row.spans);
    }
}

TEST(CountSpans, StopsWhenItIsEnough)
{
    EXPECT_GT(Count({{0, kLowest}, {5, kLowest}, {5, kHighest}, {0, kHighest}}, 1000), 1000u);
}

}  // namespace
}  // namespace zlv
