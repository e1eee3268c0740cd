// The warps that bend the middle line: a wave, teeth and a slanted line.
#include "plain/plain_center_shift.h"
#include "runtime/math.h"
#include "support/test_hooks.h"
#include "warp/mapped_point.h"

#include <climits>
#include <limits>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint32_t kUnknownMode = 9;

WarpCase Wave(double percent, double cycles, std::uint32_t mode)
{
    return {Join("wave", percent, cycles, mode),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddWaveTransform(width, height, percent, cycles, mode);
            },
            [=](std::uint32_t width, std::uint32_t height) {
                return PlainWave(percent, cycles, mode, width, height, {zlv::Sin, zlv::Cos});
            }};
}

// As many teeth as `teeth`, but not more than there are pixels.
WarpCase ZigZag(double percent, int teeth, std::uint32_t mode)
{
    const auto most = [=](std::uint32_t width, std::uint32_t height) {
        return std::min(teeth, int(mode == ZLV40_SHIFT_Y ? width : height));
    };
    return {Join("zigzag", percent, teeth, mode),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddZigZagTransform(width, height, percent, most(width, height), mode);
            },
            [=](std::uint32_t width, std::uint32_t height) {
                return PlainZigZag(percent, most(width, height), mode, width, height);
            }};
}

WarpCase LineSlice(std::int32_t start, std::int32_t end, std::uint32_t mode)
{
    return {Join("line", start, end, mode),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddLineSliceTransform(width, height, start, end, mode);
            },
            [=](std::uint32_t width, std::uint32_t height) { return PlainLineSlice(start, end, mode, width, height); }};
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

// On the first pixels of every row, on all of some.
WarpCase LostPoints()
{
    static constexpr auto function = [](double x, double y, double* outX, double* outY, void*) -> std::int32_t {
        *outX = x * 0.9;
        *outY = y;
        return int(x + y) % 3 != 0;
    };
    return {"lost points",
            [=](std::uint32_t, std::uint32_t) { return ZLV40_AddUserTransform(1, 1, function, nullptr); },
            [=](std::uint32_t, std::uint32_t) {
                return [=](double x, double y, double* outX, double* outY) {
                    return function(x, y, outX, outY, nullptr) != 0;
                };
            }};
}

TEST(WavePoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t mode = 0; mode < 5; ++mode) {
        for (const double percent : {20.0, -35.0, 0.0, 300.0}) cases.push_back(Wave(percent, 3, mode));
        for (const double cycles : {0.0, 0.5, -2.0, 1e9, kNaN, kInfinity}) cases.push_back(Wave(25, cycles, mode));
        cases.push_back(Wave(kInfinity, 1, mode));
        cases.push_back(Wave(kNaN, 1, mode));
    }
    ExpectEachEqualsPlain(cases);
}

TEST(ZigZagPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t mode = 0; mode < 3; ++mode) {
        for (const double percent : {30.0, -30.0, 0.0, 500.0, kNaN, -kInfinity})
            cases.push_back(ZigZag(percent, 2, mode));
        for (const int teeth : {1, 3, 4, 5, 100, 300}) cases.push_back(ZigZag(40, teeth, mode));
    }
    ExpectEachEqualsPlain(cases);
}

TEST(LineSlicePoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t mode = 0; mode < 3; ++mode) {
        for (const std::int32_t start : {0, 3, -5, 12, INT_MIN, INT_MAX}) {
            for (const std::int32_t end : {0, 7, -9, INT_MIN, INT_MAX}) cases.push_back(LineSlice(start, end, mode));
        }
    }
    ExpectEachEqualsPlain(cases);
}

// Points from anywhere: between pixels, beyond the table, no numbers, lost ones among the others.
TEST(CenterShiftPoints, PointsFromAnywhereEqualPlain)
{
    for (const double away : {0.25, -0.75, 6.5, -6.5, 1e9, -1e18, 1e300, kNaN, kInfinity, -kInfinity}) {
        for (std::uint32_t mode = 0; mode < 2; ++mode) {
            for (const WarpCase& warp : {Wave(30, 2, mode), ZigZag(30, 2, mode), LineSlice(-2, 9, mode)}) {
                for (const WarpImage& image : {WarpImage{13, 7, 3}, WarpImage{300, 4, 1}}) {
                    SCOPE(warp.name, away);
                    ExpectChainEqualsPlain({Shift(away, 0), warp}, image);
                    ExpectChainEqualsPlain({Shift(0, away), warp}, image);
                    ExpectChainEqualsPlain({LostPoints(), warp, warp}, image);
                }
            }
        }
    }
}

TEST(CenterShiftPoints, ChainsEqualPlain)
{
    OnEveryTarget([] {
        for (const WarpImage& image : kWarpImages) {
            ExpectChainEqualsPlain({Wave(20, 3, 0), ZigZag(20, 3, 1), LineSlice(1, 5, 0), Wave(10, 2, 3)}, image);
        }
    });
}

TEST(CenterShiftPoints, TheMiddleRowGoesToTheLine)
{
    // The line of a picture of 11 x 9 is row 2 everywhere: the middle one, 4, is seen there.
    const auto add = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 2, ZLV40_SHIFT_Y); };
    EXPECT_EQ(MapThrough(5, 2, add).y, 2) << "on the line itself nothing is divided: the point stays";
    EXPECT_EQ(MapThrough(5, 1, add).y, 2) << "half way above it";
    EXPECT_EQ(MapThrough(5, 5, add).y, 6) << "half way below it";
    EXPECT_EQ(MapThrough(5, 0, add).y, 0) << "the upper edge stays";
    EXPECT_EQ(MapThrough(5, 8, add).y, 8) << "and the lower one";
    EXPECT_EQ(MapThrough(5, 1, add).x, 5);
}

TEST(CenterShiftPoints, ALineOnAnEdgeLeavesPointsThatItWouldDivideByNothing)
{
    const auto below = [] { return ZLV40_AddLineSliceTransform(11, 9, 8, 8, ZLV40_SHIFT_Y); };
    EXPECT_EQ(MapThrough(5, 8, below).y, 8);
    EXPECT_EQ(MapThrough(5, 9.5, below).y, 9.5);
    EXPECT_EQ(MapThrough(5, 4, below).y, 2);
    const auto above = [] { return ZLV40_AddLineSliceTransform(11, 9, 0, 0, ZLV40_SHIFT_Y); };
    EXPECT_EQ(MapThrough(5, -3, above).y, -3);
    EXPECT_EQ(MapThrough(5, 0, above).y, 0);
    EXPECT_EQ(MapThrough(5, 4, above).y, 6);
}

TEST(CenterShiftPoints, TheLastColumnHasTheLastEntry)
{
    const auto add = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, ZLV40_SHIFT_Y); };
    EXPECT_EQ(MapThrough(10, 3, add).y, 2) << "3 * 4 / 6";
    EXPECT_EQ(MapThrough(10.999, 3, add).y, 2) << "and so has all of the pixel";
}

TEST(CenterShiftPoints, APointBehindTheTableGoesToTheSizeWhichNearestSamplingTakes)
{
    const auto byColumn = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, ZLV40_SHIFT_Y); };
    const auto byRow = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, ZLV40_SHIFT_X); };
    for (const double far : {11.0, 11.5, 1e300, kInfinity}) {
        EXPECT_EQ(MapThrough(far, 3, byColumn).x, 11);
        EXPECT_EQ(MapThrough(far, 3, byColumn).y, 3);
        EXPECT_EQ(MapThrough(3, far, byRow).y, 9);
        EXPECT_EQ(MapThrough(3, far, byRow).x, 3);
    }
    for (const double far : {-0.001, -1e300, -kInfinity}) {
        EXPECT_EQ(MapThrough(far, 3, byColumn).x, 0);
        EXPECT_EQ(MapThrough(3, far, byRow).y, 0);
    }
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(3, 1, -1, 0, ZLV40_WRAP_NONE), 1u);
    ASSERT_EQ(ZLV40_AddLineSliceTransform(3, 1, 0, 0, ZLV40_SHIFT_Y), 1u);
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, ZLV40_SAMPLING_NEAREST, 9), 1u);
    EXPECT_EQ(dst, (Bytes{2, 3, 3})) << "column 3 of 3 is still inside";
}

TEST(CenterShiftPoints, CoordinatesAlongTheLineThatAreNoNumbersStay)
{
    const auto byColumn = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, ZLV40_SHIFT_Y); };
    const auto byRow = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, ZLV40_SHIFT_X); };
    EXPECT_TRUE(std::isnan(MapThrough(kNaN, 3, byColumn).x));
    EXPECT_EQ(MapThrough(kNaN, 3, byColumn).y, 3);
    EXPECT_TRUE(std::isnan(MapThrough(3, kNaN, byRow).y));
    EXPECT_EQ(MapThrough(3, kNaN, byRow).x, 3);
}

TEST(CenterShiftPoints, UnknownModesLeaveEveryPoint)
{
    const auto wave = [] { return ZLV40_AddWaveTransform(11, 9, 20, 3, 4); };
    const auto teeth = [] { return ZLV40_AddZigZagTransform(11, 9, 20, 1000, kUnknownMode); };
    const auto line = [] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, kUnknownMode); };
    for (const MappedPoint at : {MappedPoint{3, 3}, MappedPoint{-5, 100}}) {
        for (const MappedPoint to :
             {MapThrough(at.x, at.y, wave), MapThrough(at.x, at.y, teeth), MapThrough(at.x, at.y, line)}) {
            EXPECT_EQ(to.x, at.x);
            EXPECT_EQ(to.y, at.y);
        }
    }
}

TEST(WavePoints, CyclesAreHalfPeriods)
{
    // 10 percent of 101 rows around row 50, at the middle of one half period: the line is at 60.1.
    const auto sine = [] { return ZLV40_AddWaveTransform(11, 101, 10, 1, ZLV40_WAVE_SINE_Y); };
    EXPECT_NEAR(MapThrough(5, 30.05, sine).y, 25, 1e-9);
    EXPECT_NEAR(MapThrough(0, 25, sine).y, 25, 1e-9) << "at its start the line is straight";
    const auto cosine = [] { return ZLV40_AddWaveTransform(11, 101, 10, 1, ZLV40_WAVE_COSINE_Y); };
    EXPECT_NEAR(MapThrough(0, 30.05, cosine).y, 25, 1e-9);
    EXPECT_NEAR(MapThrough(10, 19.95, cosine).y, 25, 1e-9);
}

// The amplitude goes by the size in which pixels are shifted.
TEST(WavePoints, TheAmplitudeScalesAlongTheShift)
{
    const auto wave = [] { return ZLV40_AddWaveTransform(101, 11, 10, 1, ZLV40_WAVE_SINE_X); };
    EXPECT_NEAR(MapThrough(30.05, 5, wave).x, 25, 1e-9);
}

TEST(WavePoints, OneColumnOrRowIsOutside)
{
    EXPECT_TRUE(std::isnan(MapThrough(0, 3, [] { return ZLV40_AddWaveTransform(1, 9, 20, 1, ZLV40_WAVE_SINE_Y); }).y));
    EXPECT_TRUE(
        std::isnan(MapThrough(3, 0, [] { return ZLV40_AddWaveTransform(9, 1, 20, 1, ZLV40_WAVE_COSINE_X); }).x));
}

// The line goes from -10 to 10 percent of 21 columns around row 50, and back: 47.9, 48.95, 50, 51.05, 52.1, ...
TEST(ZigZagPoints, TheAmplitudeScalesAlongTheTeeth)
{
    const auto teeth = [] { return ZLV40_AddZigZagTransform(20, 101, 20, 2, ZLV40_SHIFT_Y); };
    EXPECT_NEAR(MapThrough(0, 48 / 2.0, teeth).y, 25, 1e-9) << "(0 - 0.5) * 0.2 * 20 + 50 = 48";
    EXPECT_NEAR(MapThrough(4, 52 / 2.0, teeth).y, 25, 1e-9) << "the point of the tooth: 4 / 4";
    EXPECT_NEAR(MapThrough(5, 52 / 2.0, teeth).y, 25, 1e-9) << "is two columns wide";
    EXPECT_NEAR(MapThrough(9, 48 / 2.0, teeth).y, 25, 1e-9) << "and so is the gap";
    EXPECT_NEAR(MapThrough(10, 48 / 2.0, teeth).y, 25, 1e-9);
}

TEST(ZigZagPoints, TeethOfOnePixelAreAllGaps)
{
    // 0 / -1 is 0: the line is at (0 - 0.5) * 0.2 * 10 + 50.
    const auto teeth = [] { return ZLV40_AddZigZagTransform(10, 101, 20, 10, ZLV40_SHIFT_Y); };
    for (int x = 0; x < 10; ++x) EXPECT_NEAR(MapThrough(x, 49 / 2.0, teeth).y, 25, 1e-9);
}

TEST(ZigZagPoints, TeethOfTwoPixelsAreOutside)
{
    const auto teeth = [] { return ZLV40_AddZigZagTransform(10, 101, 20, 5, ZLV40_SHIFT_Y); };
    for (int x = 0; x < 10; ++x) EXPECT_TRUE(std::isnan(MapThrough(x, 20, teeth).y)) << "0 / 0";
}

TEST(ZigZagPoints, TeethOfThreePixelsAreOutsideOrAtTheEdge)
{
    const auto teeth = [] { return ZLV40_AddZigZagTransform(9, 101, 20, 3, ZLV40_SHIFT_Y); };
    for (int x = 0; x < 9; ++x) {
        const double y = MapThrough(x, 20, teeth).y;
        if (x % 3 == 1) EXPECT_EQ(y, 0) << "1 / 0: the line is infinitely far below";
        else EXPECT_TRUE(std::isnan(y)) << "0 / 0";
    }
}

TEST(CenterShiftPoints, BadArgumentsAreRefused)
{
    const WarpList list;
    const struct {
        const char* shows;
        std::uint32_t result;
    } rows[] = {
        {"a wave without columns", ZLV40_AddWaveTransform(0, 9, 20, 1, 0)},
        {"a wave without rows", ZLV40_AddWaveTransform(11, 0, 20, 1, 9)},
        {"a line without columns", ZLV40_AddLineSliceTransform(0, 9, 2, 6, 0)},
        {"a line without rows", ZLV40_AddLineSliceTransform(11, 0, 2, 6, 9)},
        {"teeth without columns", ZLV40_AddZigZagTransform(0, 9, 20, 1, 1)},
        {"teeth without rows", ZLV40_AddZigZagTransform(11, 0, 20, 1, 9)},
        {"no teeth", ZLV40_AddZigZagTransform(11, 9, 20, 0, 0)},
        {"a negative count of teeth", ZLV40_AddZigZagTransform(11, 9, 20, -1, 9)},
        {"more teeth than columns", ZLV40_AddZigZagTransform(11, 99, 20, 12, ZLV40_SHIFT_Y)},
        {"more teeth than rows", ZLV40_AddZigZagTransform(99, 9, 20, 10, ZLV40_SHIFT_X)},
    };
    for (const auto& row : rows) EXPECT_EQ(row.result, 0u) << row.shows;
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, src) << "the list is empty";
}

TEST(CenterShiftPoints, WithoutMemoryTheListStays)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(3, 1, 1, 0, ZLV40_WRAP_X), 1u);
    const auto adders = {
        +[] { return ZLV40_AddWaveTransform(11, 9, 20, 1, 0); },
        +[] { return ZLV40_AddZigZagTransform(11, 9, 20, 1, 1); },
        +[] { return ZLV40_AddLineSliceTransform(11, 9, 2, 6, 1); },
    };
    for (const auto add : adders) {
        for (const std::uint32_t succeeding : {0u, 1u}) {  // the object, and its table
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(add(), 0u);
            EXPECT_EQ(failing.Failed(), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        }
    }
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, (Bytes{3, 1, 2}));
}

TEST(CenterShiftPoints, TablesForMoreThanAnArrayHoldsFindNoMemory)
{
    const WarpList list;
    EXPECT_EQ(ZLV40_AddWaveTransform(0xFFFFFFFFu, 9, 20, 1, ZLV40_WAVE_SINE_Y), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(ZLV40_AddWaveTransform(0xFFFFFFFFu, 9, 20, 1, ZLV40_WAVE_SINE_X), 1u) << "nine entries";
}

}  // namespace
}  // namespace zlvtest
