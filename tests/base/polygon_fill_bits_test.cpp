#include "base/polygon_fill_bits.h"

#include "base/polygon_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;

u32 Call(Bytes& image, u32 width, u32 height, u32 stride, const Polygon& polygon, u32 value)
{
    const Vertices vertices(polygon);
    return MV40_PolygonFill1Bit(image.data(), width, height, stride, vertices.Data(), vertices.Count(), value);
}

TEST(PolygonFill1Bit, EqualsPlain)
{
    for (const u32 width : {1u, 7u, 8u, 9u, 31u, 32u, 37u}) {
        for (const u32 value : {0u, 1u, 0x80000000u}) {
            SCOPE(width, value);
            ForPolygons(20, [&](const Polygon& polygon) {
                Canvas canvas((width + 7) / 8, u32(kSceneHeight), 1, 2);
                Bytes wanted = canvas.Before();
                PlainFillBits(wanted.data(), width, canvas.Height(), canvas.Stride(), polygon, value != 0, 1u << 30);
                const Vertices vertices(polygon);
                ASSERT_EQ(MV40_PolygonFill1Bit(canvas.Data(), width, canvas.Height(), canvas.Stride(), vertices.Data(),
                                               vertices.Count(), value),
                          1u);
                EXPECT_EQ(MV40_GetLastError(), 0u);
                EXPECT_EQ(canvas.DifferenceTo(wanted), "");
            });
        }
    }
}

TEST(PolygonFill1Bit, SpanAfterSpanIsTheSame)
{
    ForPolygons(20, [&](const Polygon& polygon) {
        Bytes image(5 * 23, 0xA5), wanted(5 * 23, 0xA5);
        PlainFillBits(wanted.data(), 37, 23, 5, polygon, true, 1u << 30);
        zlvtest::Recording recording;
        ASSERT_EQ(Call(image, 37, 23, 5, polygon, 1), 1u);
        EXPECT_EQ(image, wanted);
        const u32 spans = u32(PlainScan(polygon).Spans().size());
        EXPECT_EQ(recording.recorder.reports, std::vector<zlvtest::Report>(spans, {0, spans}));
    });
}

// One row from `left` to `right` of an image of 32 pixels.
const struct {
    const char* shows;
    f64 left, right;
    u32 width;
    Bytes bytes;
} kSpans[] = {
    {"a head that ends in its byte has its last bit", 1, 3, 32, {0x70, 0, 0, 0}},
    {"a head of one bit", 3, 3, 32, {0x10, 0, 0, 0}},
    {"a head up to the byte's end", 5, 7, 32, {0x07, 0, 0, 0}},
    {"from a boundary there is no head, and the tail stops before", 0, 3, 32, {0xE0, 0, 0, 0}},
    {"a single bit on a boundary is left as it was", 8, 8, 32, {0, 0, 0, 0}},
    {"a full byte has all its bits", 8, 15, 32, {0, 0xFF, 0, 0}},
    {"a byte but for its last bit is a tail", 8, 14, 32, {0, 0xFC, 0, 0}},
    {"a full byte and one bit of a tail", 0, 8, 32, {0xFF, 0, 0, 0}},
    {"a full byte and two bits of a tail", 0, 9, 32, {0xFF, 0x80, 0, 0}},
    {"a head and a tail", 6, 10, 32, {0x03, 0xC0, 0, 0}},
    {"a head, bytes and a tail", 5, 28, 32, {0x07, 0xFF, 0xFF, 0xF0}},
    {"all bytes", 0, 31, 32, {0xFF, 0xFF, 0xFF, 0xFF}},
    {"beyond the right edge: a tail up to it", 16, 99, 20, {0, 0, 0xF0, 0}},
    {"beyond the right edge: a head up to the bit after it", 17, 99, 20, {0, 0, 0x78, 0}},
    {"beyond the right edge: the bit after it makes the byte full", 8, 99, 23, {0, 0xFF, 0xFF, 0}},
    {"beyond the right edge of whole bytes", 8, 99, 24, {0, 0xFF, 0xFF, 0}},
    {"from the left of the image", -9, 3, 32, {0xE0, 0, 0, 0}},
    {"a span to the left is bit 0 alone: left as it was", -9, -3, 32, {0, 0, 0, 0}},
    {"a span to the right is the bit after the edge", 21, 29, 20, {0, 0, 0x08, 0}},
    {"to the right of whole bytes it is nothing", 21, 29, 16, {0, 0, 0, 0}},
};

TEST(PolygonFill1Bit, SpansByHand)
{
    for (const auto& row : kSpans) {
        SCOPE(row.shows);
        const Polygon polygon = {{row.left, 0}, {row.right + 1, 0}, {row.right + 1, 1}, {row.left, 1}};
        Bytes set(4, 0), cleared(4, 0xFF), wanted = row.bytes;
        EXPECT_EQ(Call(set, row.width, 1, 4, polygon, 1), 1u);
        EXPECT_EQ(set, wanted);
        EXPECT_EQ(Call(cleared, row.width, 1, 4, polygon, 0), 1u);
        for (u8& byte : wanted) byte = u8(~byte);
        EXPECT_EQ(cleared, wanted);
    }
}

TEST(PolygonFill1Bit, RowsAboveComeToTheFirstAndRowsBelowToNone)
{
    Bytes image(3, 0);
    EXPECT_EQ(Call(image, 8, 3, 1, {{1, -9}, {4, -9}, {4, -8}, {1, -8}}, 1), 1u);
    EXPECT_EQ(image, (Bytes{0x70, 0, 0}));
    EXPECT_EQ(Call(image, 8, 3, 1, {{1, 3}, {4, 3}, {4, 9}, {1, 9}}, 1), 1u);
    EXPECT_EQ(image, (Bytes{0x70, 0, 0}));
    EXPECT_EQ(Call(image, 8, 3, 1, {{-2e9, -2e9}, {2e9, -2e9}, {2e9, 2e9}, {-2e9, 2e9}}, 1), 1u);
    EXPECT_EQ(image, (Bytes{0xFF, 0xFF, 0xFF}));
}

TEST(PolygonFill1Bit, ACancelKeepsTheSpansDone)
{
    const Polygon polygon = {{1, -2}, {30, -2}, {30, 5}, {20, -2}, {9, 6}};
    const u32 spans = u32(PlainScan(polygon).Spans().size());
    ASSERT_GT(spans, 8u);
    for (u32 cancelAt = 1; cancelAt <= spans; ++cancelAt) {
        SCOPE(cancelAt);
        Bytes image(4 * 4, 0), wanted(4 * 4, 0);
        PlainFillBits(wanted.data(), 32, 4, 4, polygon, true, cancelAt);
        zlvtest::Recording recording(cancelAt);
        EXPECT_EQ(Call(image, 32, 4, 4, polygon, 1), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        EXPECT_EQ(image, wanted);
        EXPECT_EQ(recording.recorder.reports, std::vector<zlvtest::Report>(cancelAt, {0, spans}));
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(PolygonFill1Bit, BillionsOfRowsCanBeCancelled)
{
    Bytes image(2, 0);
    zlvtest::Recording recording(2);
    EXPECT_EQ(Call(image, 8, 2, 1, {{1, kLowest}, {4, kLowest}, {4, kHighest}, {1, kHighest}}, 1), 0u);
    EXPECT_EQ(recording.recorder.reports, (std::vector<zlvtest::Report>(2, {0, 0xFFFFFFFF})));
    EXPECT_EQ(image, (Bytes{0x70, 0}));
}

TEST(PolygonFill1Bit, NoSpansReportNothing)
{
    Bytes image(2, 0);
    zlvtest::Recording recording(1);
    EXPECT_EQ(Call(image, 8, 2, 1, {{0, 0.6}, {9, 0.7}, {4, 1.4}}, 1), 1u);
    EXPECT_TRUE(recording.recorder.reports.empty());
}

const struct {
    const char* shows;
    bool hasImage, hasPoints;
    u32 width, height, count;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null image", false, true, 8, 2, 4, 0, Error::BadArgument},
    {"null points", true, false, 8, 2, 4, 0, Error::BadArgument},
    {"two vertices", true, true, 8, 2, 2, 0, Error::BadArgument},
    {"no vertices", true, true, 8, 2, 0, 0, Error::BadArgument},
    {"no columns are nothing to do", true, true, 0, 2, 4, 1, Error::None},
    {"no rows are nothing to do", true, true, 8, 0, 4, 1, Error::None},
};

TEST(PolygonFill1Bit, EdgesWriteNothing)
{
    const Vertices square({{-2, -2}, {3, -2}, {3, 3}, {-2, 3}});
    for (const auto& row : kEdges) {
        for (const bool isHeard : {false, true}) {
            SCOPE(row.shows, isHeard);
            Bytes image(2, 0x5A);
            const zlvtest::Recording recording;
            if (!isHeard) MV40_SetCallback(nullptr, 0);
            EXPECT_EQ(MV40_PolygonFill1Bit(row.hasImage ? image.data() : nullptr, row.width, row.height, 1,
                                           row.hasPoints ? square.Data() : nullptr, row.count, 1),
                      row.result);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            EXPECT_EQ(image, Bytes(2, 0x5A));
            // Spans that are not seen are reported.
            EXPECT_EQ(recording.recorder.reports.size(), isHeard && row.result ? 5u : 0u);
        }
    }
}

TEST(PolygonFill1Bit, BadCoordinatesAreRefused)
{
    for (const f64 bad : kBadCoordinates) {
        for (u32 place = 0; place < 6; ++place) {
            SCOPE(bad, place);
            Polygon polygon = {{0, 0}, {5, 0}, {5, 2}};
            (place % 2 ? polygon[place / 2].y : polygon[place / 2].x) = bad;
            Bytes image(2, 0x5A);
            EXPECT_EQ(Call(image, 8, 2, 1, polygon, 1), 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
            EXPECT_EQ(image, Bytes(2, 0x5A));
        }
    }
}

TEST(PolygonFill1Bit, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const u32 succeeding : {0u, 1u, 2u}) {
        SCOPE(succeeding);
        Bytes image(2, 0x5A);
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
        EXPECT_EQ(Call(image, 8, 2, 1, {{0, 0}, {5, 0}, {5, 2}}, 1), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(image, Bytes(2, 0x5A));
    }
}

}  // namespace
}  // namespace zlv
