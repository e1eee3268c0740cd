#include "filters/canny_hysteresis.h"
#include "plain/plain_canny.h"
#include "runtime/base_call.h"
#include "runtime/math.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include <algorithm>
#include <limits>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::BaseWatch;
using zlvtest::Bytes;
using zlvtest::FailingCalls;
using zlvtest::ProgressRecorder;
using zlvtest::Report;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();

struct Shape {
    u32 width, height, srcPadding = 0, dstPadding = 0;

    u32 SrcStride() const { return width + srcPadding; }
    u32 DstStride() const { return width + dstPadding; }
};

struct Detector {
    f64 sigma = 1.4, lowFraction = 0.5, highFraction = 0.8;
};

enum class Content { Noise, Blocks, Ramps, Lines };

// Noise has a gradient everywhere; blocks have flat areas, where magnitudes are 0 beside others that are not; ramps
// have plateaus of equal magnitudes, and equal parts in both directions.
Bytes Picture(const Shape& shape, Content content, u64 seed)
{
    zlvtest::Random random(seed);
    Bytes bytes(size_t(shape.SrcStride()) * shape.height);
    u8 levels[64];
    for (u8& level : levels) level = random.Byte();
    for (size_t i = 0; i < bytes.size(); ++i) {
        const size_t x = i % shape.SrcStride(), y = i / shape.SrcStride();
        switch (content) {
        case Content::Noise: bytes[i] = random.Byte(); break;
        case Content::Blocks: bytes[i] = levels[(x / 9 + y / 7 * 5) % 64]; break;
        case Content::Ramps: bytes[i] = u8((x / 12 % 2 ? x : x + y) * 3 + (y / 11 % 2 ? y * 4 : 0)); break;
        case Content::Lines: bytes[i] = (x + 2 * y) % 17 < 2 || x % 13 == 5 ? 255 : 0; break;
        }
    }
    return bytes;
}

u32 Detect(const Shape& shape, const u8* src, u8* dst, const Detector& d)
{
    return ZLV40_CannyEdgeDetector(src, shape.width, shape.height, shape.SrcStride(), dst, shape.DstStride(), d.sigma,
                                   d.lowFraction, d.highFraction);
}

bool Plain(const Shape& shape, const u8* src, u8* dst, const Detector& d, const PlainCannyReport& report)
{
    return PlainCannyDetector({src, int(shape.width), int(shape.height), shape.SrcStride(), dst, shape.DstStride(),
                               d.sigma, d.lowFraction, d.highFraction},
                              Pow, report);
}

// Returns how many pixels are edges.
size_t ExpectPlain(const Shape& shape, Content content, const Detector& d)
{
    SCOPE(shape.width, 'x', shape.height, "content", int(content), "sigma", d.sigma, "fractions", d.lowFraction,
          d.highFraction);
    const Bytes src = Picture(shape, content, shape.width * 7 + shape.height);
    Bytes wanted(size_t(shape.DstStride()) * shape.height, 0x5A), got = wanted;
    Plain(shape, src.data(), wanted.data(), d, [](u32, u32) { return true; });
    EXPECT_EQ(Detect(shape, src.data(), got.data(), d), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    return size_t(std::count(got.begin(), got.end(), u8(0)));
}

TEST(Canny, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        size_t edges = 0;
        for (const Content content : {Content::Noise, Content::Blocks, Content::Ramps, Content::Lines}) {
            for (const f64 sigma : {0.1, 0.5, 1.0, 1.4, 3.3, 12.0}) {
                for (const f64 high : {0.3, 0.8, 0.97}) {
                    edges += ExpectPlain({90, 61, 2, 3}, content, {sigma, 0.4, high});
                }
            }
        }
        EXPECT_GT(edges, 20000u) << "pictures without edges show nothing";
    });
}

TEST(Canny, EverySizeEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 width = 1; width <= 80; ++width) {
            ExpectPlain({width, 11, 1, 0}, Content::Noise, {0.6, 0.3, 0.5});
            ExpectPlain({11, width, 0, 1}, Content::Lines, {0.6, 0.3, 0.5});
        }
        for (u32 width = 1; width <= 6; ++width) {
            for (u32 height = 1; height <= 6; ++height) ExpectPlain({width, height}, Content::Noise, {0.4, 0.2, 0.2});
        }
    });
}

// The kernel reaches out of the image on both sides at once.
TEST(Canny, KernelsWiderThanTheImageEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 sigma : {4.0, 10.0, 40.0, 500.0}) ExpectPlain({21, 17}, Content::Lines, {sigma, 0.3, 0.5});
    });
}

TEST(Canny, FractionsOfAnySizeEqualPlain)
{
    for (const f64 low : {0.0, 0.2, 1.0, 1.5, 3.0, 1e30}) {
        for (const f64 high : {0.0, 0.5, 0.999, 1.0, 2.0, 1e30}) ExpectPlain({50, 40}, Content::Noise, {1, low, high});
    }
}

TEST(Canny, AFlatImageHasNoEdges)
{
    const Bytes src(60 * 50, 133);
    Bytes dst(src.size());
    EXPECT_EQ(Detect({60, 50}, src.data(), dst.data(), {}), 1u);
    EXPECT_EQ(dst, Bytes(dst.size(), 255));
}

// A ramp has the same gradient everywhere: no pixel is higher than its neighbours.
TEST(Canny, WithoutPossibleEdgesNoTraceStarts)
{
    const Shape shape = {40, 30};
    Bytes src(1200), dst(1200);
    for (size_t i = 0; i < src.size(); ++i) src[i] = u8(i % 40 * 6);
    PlainCanny plain(40, 30);
    plain.Smooth(src.data(), 40, 0.2f, Pow);
    plain.Derive();
    plain.Measure();
    plain.Thin();
    ASSERT_EQ(std::count(plain.map.begin(), plain.map.end(), u8(128)), 0);
    EXPECT_EQ(Detect(shape, src.data(), dst.data(), {0.2, 0, 0}), 1u);
    EXPECT_EQ(dst, Bytes(1200, 255));
}

TEST(Canny, WithoutAnInteriorThereIsOnlyPaper)
{
    for (u32 width = 1; width <= 9; ++width) {
        for (u32 height = 1; height <= 9; ++height) {
            if (width >= 4 && height >= 4) continue;
            SCOPE(width, height);
            const Bytes src = zlvtest::RandomBytes(size_t(width) * height, width);
            Bytes dst(src.size());
            EXPECT_EQ(Detect({width, height}, src.data(), dst.data(), {}), 1u);
            EXPECT_EQ(dst, Bytes(dst.size(), 255));
        }
    }
}

// The thinning takes a pixel without a magnitude with the gradient of another one. It never becomes a possible edge:
// that is why the kernel need not know of any other pixel.
TEST(Canny, NoPixelWithoutMagnitudeIsAPossibleEdge)
{
    size_t flat = 0, possible = 0;
    for (u64 seed = 0; seed < 60; ++seed) {
        const Shape shape = {80, 50};
        // Sparse dots on a flat ground, and the other pictures.
        Bytes src = Picture(shape, Content(seed % 4), seed);
        zlvtest::Random random(seed);
        if (seed % 4 == 0) {
            for (u8& byte : src) byte = random.Below(40) ? u8(90) : random.Byte();
        }
        PlainCanny plain(80, 50);
        plain.Smooth(src.data(), 80, seed % 3 ? 0.15f : 0.8f, Pow);
        plain.Derive();
        plain.Measure();
        plain.Thin();
        EXPECT_EQ(plain.possibleWithoutMagnitude, 0) << seed;
        flat += size_t(std::count(plain.magnitude.begin(), plain.magnitude.end(), 0));
        possible += size_t(std::count(plain.map.begin(), plain.map.end(), 128));
    }
    EXPECT_GT(flat, 10000u);
    EXPECT_GT(possible, 10000u);
}

TEST(Canny, TheDestinationMayBeTheSource)
{
    const Shape shape = {70, 40, 3, 3};
    const Bytes src = Picture(shape, Content::Lines, 1);
    Bytes wanted = src, got = src;
    EXPECT_EQ(Detect(shape, src.data(), wanted.data(), {}), 1u);
    EXPECT_EQ(Detect(shape, got.data(), got.data(), {}), 1u);
    EXPECT_EQ(got, wanted);
}

TEST(Canny, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 width : {3u, 15u, 16u, 17u, 50u, 64u}) {
                const Shape shape = {width, 20, 2, 1};
                zlvtest::GuardedBuffer src(shape.SrcStride() * 19 + width, flush, 9);
                zlvtest::GuardedBuffer dst(shape.DstStride() * 19 + width, flush, 0x5A);
                for (size_t i = 0; i < src.Size(); ++i) src.Data()[i] = u8(i * i >> 3);
                EXPECT_EQ(Detect(shape, src.Data(), dst.Data(), {2, 0.5, 0.5}), 1u);
                for (size_t i = 0; i < dst.Size(); ++i) {
                    const u8 value = dst.Data()[i];
                    if (i % shape.DstStride() < width) ASSERT_TRUE(value == 0 || value == 255) << i;
                    else ASSERT_EQ(value, 0x5A) << i;
                }
            }
        }
    });
}

// ---- Progress -----------------------------------------------------------------------------------------------------

TEST(Canny, ReportsFiveStages)
{
    for (const Shape& shape : {Shape{40, 30}, Shape{2, 2}, Shape{1, 9}}) {
        const Bytes src = zlvtest::RandomBytes(size_t(shape.width) * shape.height, 1);
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(src.size());
        EXPECT_EQ(Detect(shape, src.data(), dst.data(), {}), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, (std::vector<Report>{{1, 5}, {2, 5}, {3, 5}, {4, 5}, {5, 5}}));
    }
}

TEST(Canny, OnlyTheLastStageWrites)
{
    const Shape shape = {40, 30};
    const Bytes src = zlvtest::RandomBytes(1200, 1);
    Bytes edges(1200);
    EXPECT_EQ(Detect(shape, src.data(), edges.data(), {}), 1u);
    for (size_t at = 1; at <= 5; ++at) {
        SCOPE(at);
        ProgressRecorder recorder;
        recorder.cancelAt = at;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(1200, 0x5A);
        EXPECT_EQ(Detect(shape, src.data(), dst.data(), {}), 0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
        EXPECT_EQ(recorder.reports.size(), at);
        EXPECT_EQ(dst, at == 5 ? edges : Bytes(1200, 0x5A));
    }
}

TEST(Canny, LeavesCountersAndBaseCallbackAsTheyWere)
{
    BaseWatch base;
    const Bytes src = zlvtest::RandomBytes(100, 1);
    Bytes dst(100);
    for (const f64 sigma : {1.0, -1.0}) {
        Detect({10, 10}, src.data(), dst.data(), {sigma});
        base.ExpectUntouched();
    }
}

// ---- Codes --------------------------------------------------------------------------------------------------------

struct ArgumentRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 6, height = 6, srcStride = 6, dstStride = 6;
    Detector detector = {};
    u32 error = ZLV40_ERROR_BAD_ARGUMENT;
};
const ArgumentRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "a sigma of 0", .detector = {.sigma = 0}},
    {.shows = "a negative sigma", .detector = {.sigma = -1}},
    {.shows = "a sigma that is no number", .detector = {.sigma = kNan}},
    {.shows = "an infinite sigma", .detector = {.sigma = kInfinity}},
    {.shows = "a sigma that no float holds", .detector = {.sigma = 1e300}},
    {.shows = "a sigma that is 0 as a float", .detector = {.sigma = 1e-60}},
    {.shows = "a sigma whose square is 0 as a float", .detector = {.sigma = 1e-30}},
    {.shows = "a sigma whose kernel is endless", .detector = {.sigma = 3.4e6}},
    {.shows = "a low fraction that is no number", .detector = {.lowFraction = kNan}},
    {.shows = "a negative low fraction", .detector = {.lowFraction = -0.1}},
    {.shows = "an infinite low fraction", .detector = {.lowFraction = kInfinity}},
    {.shows = "a high fraction that is no number", .detector = {.highFraction = kNan}},
    {.shows = "a negative high fraction", .detector = {.highFraction = -0.1}},
    {.shows = "a high fraction that no float holds", .detector = {.highFraction = 1e39}},
    {.shows = "no source, and no pixels either", .hasSrc = false, .width = 0},
    {.shows = "no width", .width = 0, .error = ZLV40_ERROR_OUT_OF_MEMORY},
    {.shows = "no height", .height = 0, .error = ZLV40_ERROR_OUT_OF_MEMORY},
    {.shows = "more pixels than memory",
     .width = 0xFFFFFFFF,
     .height = 0xFFFFFFFF,
     .srcStride = 1,
     .dstStride = 1,
     .error = ZLV40_ERROR_OUT_OF_MEMORY},
};

TEST(Canny, RefusesWithNothingWrittenAndNoReport)
{
    for (const ArgumentRow& row : kRefused) {
        SCOPE(row.shows);
        const Bytes src = zlvtest::RandomBytes(36, 1), before = zlvtest::RandomBytes(36, 2);
        Bytes dst = before;
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(ZLV40_CannyEdgeDetector(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.srcStride,
                                          row.hasDst ? dst.data() : nullptr, row.dstStride, row.detector.sigma,
                                          row.detector.lowFraction, row.detector.highFraction),
                  0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        EXPECT_EQ(dst, before);
        EXPECT_TRUE(recorder.reports.empty());
    }
}

TEST(Canny, EveryFailedAllocationIsCodeOne)
{
    const Bytes src = zlvtest::RandomBytes(400, 1), before = zlvtest::RandomBytes(400, 2);
    ZLV40_GetLastError();  // makes the thread's records
    zlvtest::ExpectCodeOneWithoutMemory(before, [&](Bytes& dst) {
        return Detect({20, 20}, src.data(), dst.data(), {});
    });
}

// ---- Hysteresis ---------------------------------------------------------------------------------------------------

// Possible edges drawn by hand: a space is none, a digit one with that many tens as its magnitude.
struct Drawing {
    const char* shows;
    std::vector<const char*> rows;
    f32 low, high;
    std::vector<const char*> edges;
};

const Drawing kDrawings[] = {
    // The walk to the high threshold ends at 89, just below the maximum. Half of that is 45.
    {"strong edges and what touches them",
     {"      ", "  95  ", "   5  ", "      ", "  5   ", "      "},
     0.5f,
     1,
     {"      ", "  ##  ", "   #  ", "      ", "      ", "      "}},
    {"the neighbours on the left of a seed are two pixels from where its trace begins",
     {"      ", " 59   ", "      ", "      "},
     0.5f,
     1,
     {"      ", "  #   ", "      ", "      "}},
    {"they join by way of a neighbour that both have",
     {"      ", " 59   ", "  5   ", "      "},
     0.5f,
     1,
     {"      ", " ##   ", "  #   ", "      "}},
    {"a trace reaches two pixels to the right of its seed",
     {"      ", " 9 5  ", "      ", "      "},
     0.5f,
     1,
     {"      ", " # #  ", "      ", "      "}},
    {"nor does the pixel itself where it begins",
     {"      ", " 95   ", "      "},
     0.5f,
     1,
     {"      ", " #    ", "      "}},
    {"the low threshold itself does not join",
     {"      ", " 9 6  ", "      "},
     60.0f / 89,
     1,
     {"      ", " #    ", "      "}},
    {"just above it does", {"      ", " 9 6  ", "      "}, 59.0f / 89, 1, {"      ", " # #  ", "      "}},
    {"a low fraction of 0 lets everything join",
     {"       ", " 9111  ", "    1  ", "       "},
     0,
     1,
     {"       ", " ####  ", "    #  ", "       "}},
    {"a high fraction of 0 makes every possible edge a seed",
     {"      ", " 9 1 5", "      "},
     1,
     0,
     {"      ", " # # #", "      "}},
};

u8 Drawn(const std::vector<const char*>& rows, size_t x, size_t y) { return u8(rows[y][x]); }

TEST(Canny, HysteresisByHand)
{
    for (const Drawing& drawing : kDrawings) {
        SCOPE(drawing.shows);
        const u32 width = u32(std::string(drawing.rows[0]).size()), height = u32(drawing.rows.size());
        RidgePlane ridges;
        ASSERT_TRUE(ridges.Resize(width, height));
        for (u32 y = 0; y < height; ++y) {
            for (u32 x = 0; x < width; ++x) {
                const u8 drawn = Drawn(drawing.rows, x, y);
                if (drawn != ' ') ridges.Row(y)[x] = i16((drawn - '0') * 10);
            }
            ridges.CountRidges(y);
        }
        ASSERT_TRUE(ridges.TraceEdges(drawing.low, drawing.high));
        for (u32 y = 0; y < height; ++y) {
            for (u32 x = 0; x < width; ++x) {
                EXPECT_EQ(ridges.Row(y)[x] == kEdge, Drawn(drawing.edges, x, y) == '#') << x << ' ' << y;
            }
        }
    }
}

// A path through a million pixels: no recursion could follow it.
TEST(Canny, TheLongestTraceNeedsNoCallStack)
{
    constexpr u32 kSide = 1400;
    RidgePlane ridges;
    ASSERT_TRUE(ridges.Resize(kSide, kSide));
    size_t count = 0;
    for (u32 y = 1; y < kSide - 1; ++y) {
        for (u32 x = 1; x < kSide - 1; ++x) {
            const bool isTurn = x == (y / 2 % 2 ? kSide - 2 : 1);
            if (y % 2 == 0 && !isTurn) continue;
            ridges.Row(y)[x] = x == 1 && y == 1 ? 200 : 100;
            ++count;
        }
        ridges.CountRidges(y);
    }
    ASSERT_TRUE(ridges.TraceEdges(0.25f, 1));
    size_t edges = 0;
    for (u32 y = 0; y < kSide; ++y) edges += size_t(std::count(ridges.Row(y), ridges.Row(y) + kSide, kEdge));
    EXPECT_EQ(edges, count);
    EXPECT_GT(count, 900000u);
}

}  // namespace
}  // namespace zlv
