#include "generators/gradient.h"
#include "plain/plain_gradient.h"
#include "runtime/math.h"
#include "support/bytes.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

struct Stops {
    const char* shows;
    Bytes colors;
    std::vector<f64> positions;

    u32 Count() const { return u32(positions.size()); }
};

const Stops kStops[] = {
    {"black to white", {0, 0, 0, 0, 255, 255, 255, 255}, {0, 100}},
    {"three", {255, 200, 0, 255, 200, 30, 60, 9, 20, 20, 90, 255}, {0, 40, 100}},
    {"within the line", {10, 20, 30, 40, 250, 1, 128, 0}, {25, 75}},
    {"out of order", {1, 2, 3, 4, 90, 80, 70, 60, 250, 240, 230, 220}, {80, 10, 50}},
    {"a jump", {0, 0, 0, 0, 100, 100, 100, 100, 200, 10, 200, 10, 255, 255, 0, 255}, {0, 50, 50, 100}},
    {"three at one place, kept in order",
     {1, 1, 1, 1, 9, 9, 9, 9, 77, 7, 7, 7, 200, 200, 200, 200, 3, 4, 5, 6},
     {30, 30, 30, 90, 0}},
    {"two at the start", {11, 12, 13, 14, 200, 210, 220, 230, 5, 6, 7, 8}, {0, 0, 60}},
    {"two at the end", {11, 12, 13, 14, 200, 210, 220, 230, 5, 6, 7, 8}, {0, 100, 100}},
    {"all at one place", {11, 12, 13, 14, 200, 210, 220, 230}, {50, 50}},
    {"outside the range", {1, 2, 3, 4, 200, 210, 220, 230}, {-20, 300}},
    {"infinite", {1, 2, 3, 4, 200, 210, 220, 230}, {-kInfinity, kInfinity}},
    {"no number counts as 0", {1, 2, 3, 4, 200, 210, 220, 230}, {100, kNaN}},
};

Stops ManyStops(u32 count)
{
    zlvtest::Random random(count);
    Stops stops = {"many", zlvtest::RandomBytes(count * 4, 3), {}};
    for (u32 i = 0; i < count; ++i) stops.positions.push_back(random.Below(1000) / 10.0);
    return stops;
}

struct Line {
    const char* shows;
    f64 startX, startY, endX, endY;
};

const Line kLines[] = {
    {"aslant", 3, 2, 20, 15},
    {"aslant, from the edge", 0, 4, 12, 9},
    {"to the left, up", 25.5, 17.25, 3.125, 1.5},
    {"to the right", 5, 3, 25, 3},
    {"to the left", 25, 3, 5, 3},
    {"down", 4, 2, 4, 19},
    {"up", 4, 19, 4, 2},
    {"from outside", -40, -30, 100, 3},
    {"short", 10, 10, 10.001, 10.002},
    {"very short", 10, 10, 10, 10.0000001},
    {"steep", 10, 0, 10.5, 300},
    {"far away", 1e300, 5, 1e301, 7},
    {"no number", kNaN, 5, 10, 7},
    {"an end without end", 5, 5, kInfinity, 7},
    {"a start without end", -kInfinity, 5, 4, 7},
    {"overflowing", -1e308, 0, 1e308, 3},
};

struct Disc {
    const char* shows;
    f64 radius;
    i32 centerX, centerY;
};

const Disc kDiscs[] = {
    {"inside", 12, 10, 8},
    {"a corner", 40.5, 0, 0},
    {"outside", 100, -30, 50},
    {"tiny", 1e-9, 5, 5},
    {"huge", 1e9, 5, 5},
    {"infinite", kInfinity, 5, 5},
    {"no number", kNaN, 5, 5},
    {"wrapping", 100, 46350, 3},
    {"wrapping to small numbers", 30000, 65536, 0},
    {"the ends of the range", 1e5, 2147483647, -2147483647 - 1},
};

constexpr f64 kGammas[] = {1, 2, 0.45, 0, -1, kInfinity, kNaN};

void CompareLinear(const Line& line, const Stops& stops, u32 width, u32 height, u32 channels, u32 mode, f64 gamma,
                   u32 flags)
{
    SCOPE(line.shows, stops.shows, width, channels, mode, gamma, flags);
    const u32 stride = width * channels + 3;
    Bytes wanted(size_t(stride) * (height - 1) + width * channels, 0x77), got = wanted;
    ASSERT_EQ(ZLV40_GradientFillImageLinear(got.data(), width, height, channels, stride, line.startX, line.startY,
                                            line.endX, line.endY, stops.colors.data(), stops.positions.data(),
                                            stops.Count(), mode, gamma, flags),
              1u);
    const PlainLinearGradient plain = {{stops.colors.data(), stops.positions.data(), stops.Count(), gamma, flags, Pow},
                                       line.startX,
                                       line.startY,
                                       line.endX,
                                       line.endY,
                                       mode};
    PlainFill(plain, wanted.data(), width, height, channels, stride);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

void CompareRadial(const Disc& disc, const Stops& stops, u32 width, u32 height, u32 channels, f64 gamma, u32 flags)
{
    SCOPE(disc.shows, stops.shows, width, channels, gamma, flags);
    const u32 stride = width * channels + 3;
    Bytes wanted(size_t(stride) * (height - 1) + width * channels, 0x77), got = wanted;
    ASSERT_EQ(ZLV40_GradientFillImageRadial(got.data(), width, height, channels, stride, disc.radius, disc.centerX,
                                            disc.centerY, stops.colors.data(), stops.positions.data(), stops.Count(),
                                            channels, gamma, flags),
              1u);
    const PlainRadialGradient plain = {{stops.colors.data(), stops.positions.data(), stops.Count(), gamma, flags, Pow},
                                       disc.radius,
                                       disc.centerX,
                                       disc.centerY};
    PlainFill(plain, wanted.data(), width, height, channels, stride);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(GradientFill, EveryLineEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const Line& line : kLines) {
            for (const Stops& stops : kStops) {
                for (const u32 mode : {0u, 1u, 2u}) CompareLinear(line, stops, 31, 23, 3, mode, 1, 1);
            }
        }
    });
}

TEST(GradientFill, EveryDiscEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const Disc& disc : kDiscs) {
            for (const Stops& stops : kStops) CompareRadial(disc, stops, 31, 23, 3, 1, 1);
        }
    });
}

TEST(GradientFill, EveryGammaChannelCountAndOrderEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 gamma : kGammas) {
            for (const u32 channels : {1u, 2u, 3u, 4u}) {
                for (const u32 flags : {0u, 1u, 2u, 0xFFFFFFFFu}) {
                    CompareLinear(kLines[0], kStops[1], 29, 11, channels, 1, gamma, flags);
                    CompareRadial(kDiscs[0], kStops[4], 29, 11, channels, gamma, flags);
                }
            }
        }
    });
}

TEST(GradientFill, EveryWidthEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 width : {1u, 2u, 3u, 7u, 8u, 9u, 63u, 255u, 256u, 257u, 521u}) {
            CompareLinear({"long", 250, 1, 600, 30}, kStops[1], width, 3, 3, 0, 1, 1);
            CompareRadial({"long", 300, 200, 1}, kStops[1], width, 3, 3, 1, 1);
        }
    });
}

TEST(GradientFill, ManyStopsKeepTheirOrder)
{
    for (const u32 count : {17u, 300u, 5000u}) {
        CompareLinear({"long", 0, 0, 300, 20}, ManyStops(count), 320, 3, 4, 0, 1, 1);
        CompareRadial({"long", 300, 7, 1}, ManyStops(count), 320, 3, 4, 1, 1);
    }
}

// A row of eleven pixels, 10 percent apart, one channel.
Bytes Row(const Stops& stops, f64 gamma = 1, f64 startX = 0, u32 mode = 0)
{
    Bytes row(11);
    EXPECT_EQ(ZLV40_GradientFillImageLinear(row.data(), 11, 1, 1, 11, startX, 0, startX + 10, 0, stops.colors.data(),
                                            stops.positions.data(), stops.Count(), mode, gamma, ZLV40_COLORS_AS_IMAGE),
              1u);
    return row;
}

Stops GrayStops(const Bytes& grays, const std::vector<f64>& positions)
{
    Stops stops = {"", {}, positions};
    for (const u8 gray : grays) stops.colors.insert(stops.colors.end(), {gray, 1, 2, 3});
    return stops;
}

TEST(GradientFill, AJumpShowsTheColourOfTheLaterStop)
{
    EXPECT_EQ(Row(GrayStops({0, 100, 200, 250}, {0, 50, 50, 100})),
              (Bytes{0, 20, 40, 60, 80, 200, 210, 220, 230, 240, 250}));
}

TEST(GradientFill, BelowTheFirstStopAndAboveTheLastTheirColoursHold)
{
    EXPECT_EQ(Row(GrayStops({40, 80}, {30, 70})), (Bytes{40, 40, 40, 40, 50, 60, 70, 80, 80, 80, 80}));
}

TEST(GradientFill, ThePixelOfTheStartHasTheFirstStop)
{
    // At 0 percent the second stop rules, but not at the start itself.
    const Stops stops = GrayStops({7, 100, 200}, {0, 0, 100});
    for (const u32 mode : {0u, 1u, 9u}) {
        EXPECT_EQ(Row(stops, 1, 0, mode)[0], 7) << mode;
        EXPECT_EQ(Row(stops, 1, 0, mode)[1], 110) << mode;
    }
}

TEST(GradientFill, ALevelGradientsSecondPointIsBelowItsStart)
{
    const Stops stops = GrayStops({7, 100, 200}, {0, 0, 100});
    Bytes image(5 * 120);
    EXPECT_EQ(ZLV40_GradientFillImageLinear(image.data(), 5, 120, 1, 5, 2, 10, 4, 10, stops.colors.data(),
                                            stops.positions.data(), 3, 0, 1, 1),
              1u);
    for (u32 y = 0; y < 120; ++y) EXPECT_EQ(image[y * 5 + 2], y == 10 || y == 110 ? 7 : 100) << y;
}

TEST(GradientFill, BehindTheLineIsTheFirstStopOrTheMirror)
{
    const Stops stops = GrayStops({0, 100}, {0, 100});
    EXPECT_EQ(Row(stops, 1, 5, 1), (Bytes{0, 0, 0, 0, 0, 0, 10, 20, 30, 40, 50}));
    EXPECT_EQ(Row(stops, 1, 5, 0), (Bytes{50, 40, 30, 20, 10, 0, 10, 20, 30, 40, 50}));
    EXPECT_EQ(Row(stops, 1, 5, 7), Row(stops, 1, 5, 0));
}

TEST(GradientFill, OneByteIsTheLowestOfTheColour)
{
    const Stops stops = {"", {10, 20, 30, 40, 10, 20, 30, 40}, {0, 100}};
    for (const u32 flags : {0u, 1u}) {
        u8 pixel = 0;
        EXPECT_EQ(ZLV40_GradientFillImageRadial(&pixel, 1, 1, 1, 1, 5, 0, 0, stops.colors.data(),
                                                stops.positions.data(), 2, 0, 1, flags),
                  1u);
        EXPECT_EQ(pixel, flags ? 10 : 30);
    }
}

TEST(GradientFill, GammaTwoIsAQuarterInTheMiddle) { EXPECT_EQ(Row(GrayStops({0, 255}, {0, 100}), 2)[5], 63); }

TEST(GradientFill, BeyondTheRadiusTheLastStopHolds)
{
    const Stops stops = GrayStops({0, 200}, {0, 100});
    Bytes row(8);
    EXPECT_EQ(ZLV40_GradientFillImageRadial(row.data(), 8, 1, 1, 8, 4, 0, 0, stops.colors.data(),
                                            stops.positions.data(), 2, 1, 1, 0),
              1u);
    EXPECT_EQ(row, (Bytes{2, 2, 2, 2, 2, 2, 2, 2}));  // without the flag the third byte comes first
    EXPECT_EQ(ZLV40_GradientFillImageRadial(row.data(), 8, 1, 1, 8, 4, 0, 0, stops.colors.data(),
                                            stops.positions.data(), 2, 1, 1, 1),
              1u);
    EXPECT_EQ(row, (Bytes{0, 50, 100, 150, 200, 200, 200, 200}));
}

struct Call {
    bool hasImage = true, hasColors = true, hasPositions = true;
    u32 width = 4, height = 3, channels = 3, count = 2;
    f64 endX = 5;    // the line begins at (1, 1)
    f64 radius = 5;  // of a disc
    u32 stride = 12;

    u32 Linear(Bytes& image) const
    {
        return ZLV40_GradientFillImageLinear(hasImage ? image.data() : nullptr, width, height, channels, stride, 1, 1,
                                             endX, 1, hasColors ? kStops[0].colors.data() : nullptr,
                                             hasPositions ? kStops[0].positions.data() : nullptr, count, 0, 1, 0);
    }
    u32 Radial(Bytes& image) const
    {
        return ZLV40_GradientFillImageRadial(hasImage ? image.data() : nullptr, width, height, channels, stride, radius,
                                             1, 1, hasColors ? kStops[0].colors.data() : nullptr,
                                             hasPositions ? kStops[0].positions.data() : nullptr, count, 0, 1, 0);
    }
};

const struct {
    const char* shows;
    Call call;
    bool isLinearRefused, isRadialRefused;
} kRefusals[] = {
    {"a null image", {.hasImage = false}, true, true},
    {"null colours", {.hasColors = false}, true, true},
    {"null positions", {.hasPositions = false}, true, true},
    {"one stop", {.count = 1}, true, true},
    {"no stops", {.count = 0}, true, true},
    {"no channels", {.channels = 0}, true, true},
    {"five channels", {.channels = 5}, true, true},
    {"a line without length", {.endX = 1}, true, false},
    {"a radius of 0", {.radius = 0}, false, true},
    {"a negative radius", {.radius = -1}, false, true},
    {"no width is nothing to do", {.width = 0}, false, false},
    {"no width and the most rows are nothing to do", {.width = 0, .height = 0xFFFFFFFF}, false, false},
    {"no height is nothing to do", {.height = 0}, false, false},
};

TEST(GradientFill, RefusesWithNothingWritten)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        for (const bool isLinear : {true, false}) {
            Bytes image(64, 9);
            const bool isRefused = isLinear ? row.isLinearRefused : row.isRadialRefused;
            EXPECT_EQ(isLinear ? row.call.Linear(image) : row.call.Radial(image), isRefused ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), isRefused ? u32(ZLV40_ERROR_BAD_ARGUMENT) : 0u);
            const bool isEmpty = row.call.width == 0 || row.call.height == 0;
            EXPECT_EQ(image == Bytes(64, 9), isRefused || isEmpty);
        }
    }
}

TEST(GradientFill, ReportsEveryRowAndACancelKeepsTheRowsDone)
{
    const Call call = {.height = 5};
    for (const bool isLinear : {true, false}) {
        Bytes whole(64, 9);
        EXPECT_EQ(isLinear ? call.Linear(whole) : call.Radial(whole), 1u);
        for (u32 cancelAt = 0; cancelAt <= 5; ++cancelAt) {
            SCOPE(isLinear, cancelAt);
            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            Bytes image(64, 9);
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(isLinear ? call.Linear(image) : call.Radial(image), cancelAt ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            ZLV40_SetCallback(nullptr, 0);
            const u32 done = cancelAt ? cancelAt : 5;
            EXPECT_EQ(recorder.reports, zlvtest::Rows(done, 5));
            Bytes wanted = whole;
            std::fill(wanted.begin() + done * 12, wanted.end(), u8(9));
            EXPECT_EQ(image, wanted);
        }
    }
}

TEST(GradientFill, RowsWithoutPixelsAreReportedToo)
{
    const Call call = {.width = 0, .height = 3};
    Bytes image(64);
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(call.Linear(image), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, zlvtest::Rows(3, 3));
}

TEST(GradientFill, EveryAllocationThatFailsIsCode1)
{
    for (const bool isLinear : {true, false}) {
        SCOPE(isLinear);
        zlvtest::ExpectCodeOneWithoutMemory(
            Bytes(64, 9), [&](Bytes& image) { return isLinear ? Call().Linear(image) : Call().Radial(image); });
    }
}

TEST(GradientFill, StaysInsideItsBuffersWhereverTheyLie)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        for (const u32 channels : {1u, 2u, 3u, 4u}) {
            for (const u32 width : {1u, 5u, 257u}) {
                SCOPE(int(flush), channels, width);
                zlvtest::GuardedBuffer image(size_t(width) * channels * 3, flush), colors(8, flush), places(17, flush);
                places.Data()[15] = 0x59;  // 100 at an odd address, about
                places.Data()[16] = 0x40;
                const f64* const positions = reinterpret_cast<const f64*>(places.Data() + 1);
                EXPECT_EQ(ZLV40_GradientFillImageLinear(image.Data(), width, 3, channels, width * channels, 0, 0, 9, 9,
                                                        colors.Data(), positions, 2, 0, 1, 0),
                          1u);
                EXPECT_EQ(ZLV40_GradientFillImageRadial(image.Data(), width, 3, channels, width * channels, 9, 2, 2,
                                                        colors.Data(), positions, 2, 0, 1, 0),
                          1u);
            }
        }
    }
}

// The classes as the rest of the library uses them.
TEST(Gradient, ColorAtIsWhatFillWrites)
{
    using CGradientBase = CZLVGradient::CGradientBase;
    const u32 result = InFrame(FrameKind::Full, [](CallFrame& frame) -> u32 {
        CZLVGradient::StopArray stops;
        EXPECT_TRUE(stops.Resize(3));
        stops[0] = {0x10203040, 60};
        stops[1] = {0xFFEEDDCC, 100};
        stops[2] = {0x00FF00FF, 5};
        CZLVGradient::CLinearGradient2 line;
        CZLVGradient::CRadialGradient disc;
        EXPECT_EQ(line.ColorAt(1, 1), 0u);  // not valid yet
        EXPECT_TRUE(line.Set(frame, {2, 3}, {20, 9}, 1, stops, 1.5));
        EXPECT_TRUE(disc.Set(frame, 17, 4, 5, 0, stops, 0.8));
        for (CGradientBase* const gradient : {static_cast<CGradientBase*>(&line), static_cast<CGradientBase*>(&disc)}) {
            u32 image[8][25];
            EXPECT_EQ(gradient->Fill(frame, reinterpret_cast<u8*>(image), 25, 8, 4, 100), 1u);
            for (u32 y = 0; y < 8; ++y) {
                for (u32 x = 0; x < 25; ++x) EXPECT_EQ(gradient->ColorAt(x, y), image[y][x]) << x << " " << y;
            }
            EXPECT_EQ(gradient->InterpolateColor(0), 0x00FF00FFu);
            EXPECT_EQ(gradient->InterpolateColor(100), 0xFFEEDDCCu);
            EXPECT_EQ(gradient->InterpolateColor(1000), 0xFFEEDDCCu);
            EXPECT_EQ(gradient->InterpolateColor(kNaN), 0u);
            EXPECT_FALSE(gradient->SetStops(frame, 0, stops, 1));
            EXPECT_EQ(gradient->ColorAt(3, 3), 0u);
            EXPECT_TRUE(gradient->SetStops(frame, -5, stops, 1));  // lengths have no sign
            EXPECT_EQ(gradient->Fill(frame, nullptr, 3, 0, 4, 12), 1u);
        }
        CZLVGradient::StopArray one;
        EXPECT_TRUE(one.Resize(1));
        one[0] = stops[0];
        EXPECT_FALSE(disc.SetStops(frame, 4, one, 1));
        return 1;
    });
    EXPECT_EQ(result, 1u);
}

}  // namespace
}  // namespace zlv
