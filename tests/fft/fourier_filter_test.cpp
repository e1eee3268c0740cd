#include "plain/plain_fourier.h"
#include "runtime/math.h"
#include "support/doubles.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <limits>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::Doubles;
using zlvtest::Flush;

constexpr PlainFilterMath kMath = {Exp, Pow};
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kKinds[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 15};

// How many parameters a kind reads.
std::size_t ParametersOf(int kind)
{
    switch (kind) {
    case 3:
    case 5:
    case 6: return 2;
    case 9:
    case 10: return 3;
    case 15: return 4;
    default: return 1;
    }
}

// On a grid and parameters that end where the memory does.
void ExpectPlain(int kind, std::uint32_t width, std::uint32_t height, const Doubles& params)
{
    Doubles wanted = zlvtest::RandomDoubles(2 * std::size_t(width) * height, width + height);
    zlvtest::GuardedBuffer grid(wanted.size() * sizeof(double), kind % 2 ? Flush::ToEnd : Flush::ToStart);
    zlvtest::GuardedBuffer given(ParametersOf(kind) * sizeof(double), Flush::ToEnd);
    std::memcpy(grid.Data(), wanted.data(), grid.Size());
    std::memcpy(given.Data(), params.data(), given.Size());
    PlainFilterGrid(wanted.data(), width, height, kind, params.data(), kMath);
    double* const got = reinterpret_cast<double*>(grid.Data());
    EXPECT_EQ(ZLV40_FilterFFT(got, width, height, kind, reinterpret_cast<const double*>(given.Data())), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.data(), got, wanted.size()), "");
}

TEST(FilterFFT, EveryKindAndTargetEqualsPlain)
{
    const struct {
        std::uint32_t width, height;
    } shapes[] = {{1, 1}, {1, 9}, {2, 2},   {3, 3},  {3, 8},   {4, 4},
                  {5, 2}, {8, 7}, {16, 16}, {33, 5}, {520, 3}, {1030, 2}};
    zlvtest::OnEveryTarget([&] {
        for (const int kind : kKinds) {
            for (const auto& [width, height] : shapes) {
                SCOPE(kind, width, height);
                ExpectPlain(kind, width, height, {2.5, 3.25, 1.5, 0.75});
                ExpectPlain(kind, width, height, {300, 0.5, 2, 4});
            }
        }
    });
}

TEST(FilterFFT, WildParametersAreCarriedThrough)
{
    const Doubles sets[] = {{0, 1, 2, 1},           {-3, 2, 1, 1},          {kNotANumber, 1, 2, 1},
                            {2, kNotANumber, 2, 1}, {2, 1, kNotANumber, 1}, {2, 1, 2, kNotANumber},
                            {kInfinity, 1, 2, 1},   {2, -kInfinity, 2, 1},  {1e300, 1e300, 1, 1},
                            {1e-300, 1, 1, 1},      {0, 0, 0, 0},           {2, -1, kInfinity, -1}};
    for (const int kind : kKinds) {
        for (const Doubles& params : sets) {
            SCOPE(kind, params[0], params[1], params[2], params[3]);
            ExpectPlain(kind, 9, 8, params);
        }
    }
}

// What a factor is at each place of a grid of 4 by 4: distances run 0, 1, 2, 0, one short behind the middle.
TEST(FilterFFT, DistancesBehindTheMiddleAreOneShort)
{
    const double radius = 1;  // lets squared distances up to 1 pass
    Doubles grid(32, 1);
    EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 4, 4, ZLV40_FFT_IDEAL_LOW_PASS, &radius), 1u);
    const int passes[16] = {1, 1, 0, 1,  //
                            1, 0, 0, 1,  //
                            0, 0, 0, 0,  //
                            1, 1, 0, 1};
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(grid[2 * i], passes[i]) << i;
        EXPECT_EQ(grid[2 * i + 1], passes[i]) << i;
    }
}

TEST(FilterFFT, TheLimitsOfIdealFiltersPass)
{
    const double params[] = {1, 2};  // squared distances 1 and 4
    const struct {
        int kind;
        double at0, at1, at2, at3;  // by distance along the first row
    } rows[] = {{ZLV40_FFT_IDEAL_LOW_PASS, 1, 1, 0, 0},
                {ZLV40_FFT_IDEAL_HIGH_PASS, 0, 1, 1, 1},
                {ZLV40_FFT_IDEAL_BAND_PASS, 0, 1, 1, 0}};
    for (const auto& row : rows) {
        SCOPE(row.kind);
        Doubles grid(16, 1);
        EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 8, 1, row.kind, params), 1u);
        EXPECT_EQ(grid[0], row.at0);
        EXPECT_EQ(grid[2], row.at1);
        EXPECT_EQ(grid[4], row.at2);
        EXPECT_EQ(grid[6], row.at3);
    }
}

TEST(FilterFFT, SmoothFiltersLeaveTheFrequencyZero)
{
    const double params[] = {0.5, 2, 3, 1};
    for (int kind = ZLV40_FFT_POWER_LAW; kind <= ZLV40_FFT_GAUSSIAN_EMPHASIS; ++kind) {
        SCOPE(kind);
        Doubles grid(32, 3);
        EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 4, 4, kind, params), 1u);
        // Distance 0 in all four corners.
        for (const std::size_t corner : {0, 3, 12, 15}) {
            EXPECT_EQ(grid[2 * corner], 3) << corner;
            EXPECT_EQ(grid[2 * corner + 1], 3) << corner;
        }
        EXPECT_NE(grid[4], 3) << "others are filtered";
    }
}

TEST(FilterFFT, ThePowerLawDividesByNoZero)
{
    const double power = 1;
    Doubles grid(32, 8);
    EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 4, 4, ZLV40_FFT_POWER_LAW, &power), 1u);
    EXPECT_EQ(grid[0], 8);
    EXPECT_EQ(grid[2], 8) << "divided by 1";
    EXPECT_EQ(grid[4], 2) << "divided by 4";
}

TEST(FilterFFT, TheHomomorphicFilterTreatsTheFrequencyZeroLikeAnyOther)
{
    const double params[] = {2, 0.25, 2, 1};
    Doubles grid(32, 4);
    EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 4, 4, ZLV40_FFT_HOMOMORPHIC, params), 1u);
    EXPECT_EQ(grid[0], 1) << "the lower gain";
}

TEST(FilterFFT, TheOrderOfTheButterworthEmphasisIsItsOffset)
{
    const double params[] = {1, 1, 2};
    Doubles grid(32, 1);
    EXPECT_EQ(ZLV40_FilterFFT(grid.data(), 4, 4, ZLV40_FFT_BUTTERWORTH_EMPHASIS, params), 1u);
    EXPECT_EQ(grid[2], 1 + 2 / (1 + 1.0)) << "at the radius";
}

const struct {
    const char* shows;
    bool hasGrid, hasParams;
    std::uint32_t width, height;
    std::int32_t kind;
    std::uint32_t result;
} kCalls[] = {
    {"a null grid is refused", false, true, 4, 4, 7, 0},
    {"null parameters are refused", true, false, 4, 4, 7, 0},
    {"a null grid is refused with nothing to do too", false, true, 0, 0, 7, 0},
    {"null parameters are refused with nothing to do too", true, false, 0, 0, 7, 0},
    {"kind 0 is refused", true, true, 4, 4, 0, 0},
    {"kind 16 is refused", true, true, 4, 4, 16, 0},
    {"kind 16 is refused with nothing to do too", true, true, 0, 4, 16, 0},
    {"a negative kind is refused", true, true, 4, 4, -1, 0},
    {"the most negative kind is refused", true, true, 4, 4, INT32_MIN, 0},
    {"the largest kind is refused", true, true, 4, 4, INT32_MAX, 0},
    {"kind 11 is refused at the first value", true, true, 4, 4, 11, 0},
    {"kind 12 is refused at the first value", true, true, 4, 4, 12, 0},
    {"kind 13 is refused at the first value", true, true, 4, 4, 13, 0},
    {"kind 14 is refused at the first value", true, true, 1, 1, 14, 0},
    {"without columns nothing is visited", true, true, 0, 4, 7, 1},
    {"without rows nothing is visited", true, true, 4, 0, 7, 1},
    {"without columns kind 11 is no mistake", true, true, 0, 4, 11, 1},
    {"without rows kind 14 is no mistake", true, true, 4, 0, 14, 1},
    {"without anything kind 12 is no mistake", true, true, 0, 0, 12, 1},
};

TEST(FilterFFT, RefusesWithNothingWritten)
{
    for (const auto& row : kCalls) {
        SCOPE(row.shows);
        const Doubles before = zlvtest::RandomDoubles(32, 4), params = {1, 1, 1, 1};
        Doubles grid = before;
        EXPECT_EQ(ZLV40_FilterFFT(row.hasGrid ? grid.data() : nullptr, row.width, row.height, row.kind,
                                  row.hasParams ? params.data() : nullptr),
                  row.result);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(row.result ? 0 : ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(zlvtest::DifferenceOfDoubles(before, grid), "");
    }
}

}  // namespace
}  // namespace zlv
