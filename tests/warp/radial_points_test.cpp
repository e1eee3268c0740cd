// Warps around a centre: spin, spin wave, lens, pinch, attractor, wow, ripple.
#include "warp/warp_cases.h"

namespace zlvtest {
namespace {

// Where a pixel comes from, by the warp that stands: the extent of a picture of one pixel, moved to (x, y) first. Both
// of its maxima are x; y is found by another client's function behind the warp.
struct Position {
    double x, y;
    friend bool operator==(const Position&, const Position&) = default;
};

std::ostream& operator<<(std::ostream& out, const Position& p) { return out << '(' << p.x << ", " << p.y << ')'; }

std::int32_t MoveTo(double, double, double* outX, double* outY, void* userData)
{
    const Position& to = *static_cast<const Position*>(userData);
    *outX = to.x;
    *outY = to.y;
    return 1;
}

std::int32_t Note(double x, double y, double*, double*, void* userData)
{
    *static_cast<Position*>(userData) = {x, y};
    return 1;
}

// For a picture of 9 x 9, whose centre is (4, 4) and whose half diagonal is sqrt(32).
Position Mapped(const WarpCase& warp, Position from)
{
    const WarpList list;
    Position to = {-1, -1};
    EXPECT_EQ(ZLV40_AddUserTransform(0, 0, MoveTo, &from), 1u);
    EXPECT_EQ(warp.add(9, 9), 1u);
    EXPECT_EQ(ZLV40_AddUserTransform(0, 0, Note, &to), 1u);
    double unused;
    EXPECT_EQ(ZLV40_GetTransformDimensions(1, 1, &unused, &unused, &unused, &unused), 1u);
    return to;
}

void ExpectNear(const Position& got, const Position& wanted)
{
    EXPECT_NEAR(got.x, wanted.x, 1e-12);
    EXPECT_NEAR(got.y, wanted.y, 1e-12);
}

const double kHalfDiagonal = std::sqrt(32.0);

// ---- Every one against its twin -----------------------------------------------------------------------------------

constexpr double kRadii[] = {0.5, 1, 3, 4, 6.5, 1000, kInfinity, kNaN, -3, 1e-200, 1e200};

TEST(SpinPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const double radius : kRadii) cases.push_back(Spin(radius, 33));
    for (const double degrees : {0.0, -0.0, 90.0, 180.0, -720.0, 1e6, 1e300, kInfinity, kNaN}) {
        cases.push_back(Spin(5, degrees, 1, -2));
    }
    cases.push_back(Spin(1e11, 10, 2147483647, -2147483647 - 1));
    ExpectEachEqualsPlain(cases);
}

TEST(SpinWavePoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const double radius : kRadii) cases.push_back(SpinWave(radius, 33, 7));
    for (const double frequency : {0.0, 1.0, -4.5, 1e9, kInfinity, kNaN}) {
        cases.push_back(SpinWave(6, 40, frequency, -1, 1));
    }
    ExpectEachEqualsPlain(cases);
}

TEST(LensPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const double radius : kRadii) {
        cases.push_back(Lens(radius));
        cases.push_back(Lens(radius, 2, -1));
    }
    cases.push_back(Lens(1e11, -2147483647 - 1, 2147483647));
    ExpectEachEqualsPlain(cases);
}

TEST(PinchPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const double radius : kRadii) cases.push_back(Pinch(radius, 1.5));
    for (const double strength : {0.0, 5.0, -5.0, -1000.0, 1e308, -kInfinity, kNaN}) {
        cases.push_back(Pinch(20, strength, 2, -1));
    }
    ExpectEachEqualsPlain(cases);
}

TEST(PointAttractor, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t mode = 0; mode < 8; ++mode) {
        for (const double frequency : {0.0, 1.0, -2.5}) cases.push_back(Attractor(3, 1, -1, mode, frequency));
        cases.push_back(Attractor(-40, 0, 0, mode, 2));
        cases.push_back(Attractor(kNaN, 0, 0, mode, 2));
        cases.push_back(Attractor(2, 0, 0, mode, kInfinity));
    }
    cases.push_back(Attractor(2, 0, 0, 0xFFFFFFFFu, 1));
    ExpectEachEqualsPlain(cases);
}

TEST(WowPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const std::uint32_t mode : {0u, 1u, 2u}) {
        for (const double radius : kRadii) cases.push_back(Wow(radius, mode));
    }
    ExpectEachEqualsPlain(cases);
}

TEST(RipplePoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t falloff = 0; falloff < 7; ++falloff) {
        cases.push_back(Ripple(8, 1.5, 5, 0, 0, falloff));
        cases.push_back(Ripple(30, -20, 2, 1.25, -0.5, falloff));
    }
    for (const double radius : kRadii) cases.push_back(Ripple(radius, 2, 3, 0, 0, 1));
    for (const double odd : {0.0, 1e300, kInfinity, kNaN}) {
        cases.push_back(Ripple(8, odd, 3, 0, 0, 2));
        cases.push_back(Ripple(8, 2, odd, 0, 0, 3));
        cases.push_back(Ripple(8, 2, 3, odd, -odd, 4));
    }
    ExpectEachEqualsPlain(cases);
}

// Lost points between others, so that a run has holes, and points off the raster, in wide rows.
TEST(RadialRuns, HolesStayAsTheyAre)
{
    const WarpImage wide = {600, 6, 1};
    OnEveryTarget([&] {
        for (const WarpCase& warp : {Spin(90, 50), Lens(120, 3, 1), Ripple(80, 6, 9, 0, 0, 1)}) {
            SCOPE(warp.name);
            ExpectChainEqualsPlain({Ellipse(40, 200, 0, 0, -1), Polygon("hole", {{9, 0}, {500, 1}, {70, 7}}, 0), warp},
                                   wide);
            ExpectChainEqualsPlain({Scatter(40), warp, warp}, wide);
        }
    });
}

// ---- What is touched ----------------------------------------------------------------------------------------------

TEST(RadialPoints, TheExactCenterStays)
{
    const WarpCase cases[] = {Spin(3, 90), SpinWave(3, 90, 5), Lens(3), Pinch(3, 2), Attractor(2, 0, 0, 0, 1),
                              Wow(3, 0),   Wow(3, 1)};
    for (const WarpCase& warp : cases) {
        SCOPE(warp.name);
        EXPECT_EQ(Mapped(warp, {4, 4}), (Position{4, 4}));
    }
}

// A frequency of 0 or a half wave begins at 0: the centre stays. No formula of this warp is other than 0 there.
TEST(RipplePoints, TheCenterRunsThroughTheFormula)
{
    EXPECT_EQ(Mapped(Ripple(3, 5, 1, 0, 0, 0), {4, 4}), (Position{4, 4}));
    const Position got = Mapped(Ripple(3, kNaN, 1, 0, 0, 0), {4, 4});
    EXPECT_EQ(got.x, 4) << "straight below the centre x stays";
    EXPECT_TRUE(std::isnan(got.y)) << "the centre was touched";
}

TEST(SpinPoints, NoAngleIsTheIdentityButForRounding)
{
    for (int x = 0; x < 9; ++x) {
        for (int y = 0; y < 9; ++y) {
            SCOPE(x, y);
            ExpectNear(Mapped(Spin(20, 0), {double(x), double(y)}), {double(x), double(y)});
        }
    }
}

// 90 degrees times the factor 1/2 at half the radius: 45 degrees, from straight below to the lower left.
TEST(SpinPoints, StraightBelowTheCenterItTurnsTheRightWay)
{
    ExpectNear(Mapped(Spin(4, 90), {4, 6}), {4 - std::sqrt(2.0), 4 + std::sqrt(2.0)});
    ExpectNear(Mapped(Spin(4, 90), {4, 2}), {4 + std::sqrt(2.0), 4 - std::sqrt(2.0)});
    const Position little = Mapped(Spin(4, 1e-6), {4, 6});
    EXPECT_NEAR(little.y, 6, 1e-5) << "a small angle stays below";
}

TEST(SpinPoints, TheFourSidesTurnAlike)
{
    ExpectNear(Mapped(Spin(4, 180), {6, 4}), {4, 6});
    ExpectNear(Mapped(Spin(4, 180), {4, 6}), {2, 4});
    ExpectNear(Mapped(Spin(4, 180), {2, 4}), {4, 2});
    ExpectNear(Mapped(Spin(4, 180), {4, 2}), {6, 4});
}

TEST(SpinPoints, TheRimIsTouchedAndStays)
{
    ExpectNear(Mapped(Spin(3, 90), {7, 4}), {7, 4});
    ExpectNear(Mapped(Spin(5, 90), {0, 7}), {0, 7});
    EXPECT_TRUE(std::isnan(Mapped(Spin(3, kNaN), {7, 4}).x)) << "it was touched";
    EXPECT_EQ(Mapped(Spin(2.999999, kNaN), {7, 4}), (Position{7, 4})) << "beyond the rim nothing is";
}

TEST(SpinPoints, AnOffsetMovesTheCenter)
{
    EXPECT_EQ(Mapped(Spin(3, 90, 1, -2), {5, 2}), (Position{5, 2}));
    ExpectNear(Mapped(Spin(4, 180, 1, -2), {7, 2}), {5, 4});
}

TEST(SpinWavePoints, TheFactorIsOneLessAWave)
{
    // q = 1/2: 1 - cos(0) / 2 of 180 degrees.
    ExpectNear(Mapped(SpinWave(4, 180, 0), {6, 4}), {4, 6});
    // q = 1/2, cos(pi) = -1: 1.5 times 60 degrees.
    ExpectNear(Mapped(SpinWave(4, 60, 2 * std::acos(-1.0)), {6, 4}), {4, 6});
}

TEST(LensPoints, TheBendIsThePicturesAndNotTheRadius)
{
    const double r = 3, wanted = std::sin(r / kHalfDiagonal * std::acos(-1.0) / 2) * r;
    for (const double radius : {3.0, 4.0, 100.0}) ExpectNear(Mapped(Lens(radius), {7, 4}), {4 + wanted, 4});
    EXPECT_EQ(Mapped(Lens(2.9), {7, 4}), (Position{7, 4}));
}

TEST(LensPoints, TheColumnThroughTheCenterTakesTheOffsetOnceMore)
{
    EXPECT_EQ(Mapped(Lens(5, 2, 0), {6, 7}).x, 8);
    EXPECT_NEAR(Mapped(Lens(5, 2, 0), {6.0000001, 7}).x, 6, 1e-6);
    EXPECT_EQ(Mapped(Pinch(5, 1, 2, 0), {6, 7}).x, 6) << "other warps do not";
    EXPECT_EQ(Mapped(Attractor(1, 2, 0, 0, 1), {6, 7}).x, 6);
}

TEST(PinchPoints, StrengthIsInPixels)
{
    ExpectNear(Mapped(Pinch(5, 2), {6, 4}), {4 + 2 + 2 * (1 - 2 / kHalfDiagonal), 4});
    ExpectNear(Mapped(Pinch(5, 2), {4, 2}), {4, 4 - 2 - 2 * (1 - 2 / kHalfDiagonal)});
}

TEST(PinchPoints, ALargeNegativeStrengthCollapsesToTheCenter)
{
    ExpectNear(Mapped(Pinch(5, -100), {6, 4}), {4, 4});
    ExpectNear(Mapped(Pinch(5, -100), {4, 1}), {4, 4});
    ExpectNear(Mapped(Attractor(-100, 0, 0, 0, 0), {6, 4}), {4, 4});
}

TEST(RipplePoints, ADeepWaveFlipsThroughTheCenter)
{
    // t = 1/2, sin(pi / 2) = 1: R = 2 - 5.
    ExpectNear(Mapped(Ripple(4, -5, 1, 0, 0, 0), {6, 4}), {1, 4});
    ExpectNear(Mapped(Ripple(4, -5, 1, 0, 0, 0), {4, 6}), {4, 1});
}

TEST(WowPoints, BeyondTheHalfDiagonalItFlipsThroughTheCenter)
{
    const double r = 10, wanted = (1 - r / kHalfDiagonal) * r;
    ASSERT_LT(wanted, 0);
    ExpectNear(Mapped(Wow(20, 0), {14, 4}), {4 + wanted, 4});
}

TEST(RipplePoints, FalloffsWeighTheWave)
{
    const double half = std::sqrt(0.5);
    const struct {
        std::uint32_t falloff;
        double weight;
        const char* shows;
    } rows[] = {
        {ZLV40_RIPPLE_EVEN, 1, "the same everywhere"},   {ZLV40_RIPPLE_LINEAR, 0.5, "half way half of it"},
        {ZLV40_RIPPLE_SQUARE, 0.25, "and its square"},   {ZLV40_RIPPLE_SINE, half, "the sine of 45 degrees"},
        {ZLV40_RIPPLE_COSINE, half, "and their cosine"}, {5, 1, "other values are even"},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        ExpectNear(Mapped(Ripple(4, 0.5, 1, 0, 0, row.falloff), {6, 4}), {6 + 0.5 * row.weight, 4});
    }
}

TEST(RipplePoints, OutsideTheRadiusNothingIsTouched)
{
    EXPECT_EQ(Mapped(Ripple(2, kNaN, 1, 0, 0, 0), {6.0000001, 4}), (Position{6.0000001, 4}));
    EXPECT_TRUE(std::isnan(Mapped(Ripple(2, kNaN, 1, 0, 0, 0), {6, 4}).x)) << "the rim is inside";
}

TEST(PointAttractor, CurvesAtTheHalfDiagonal)
{
    const struct {
        std::uint32_t mode;
        double frequency, shape;
        const char* shows;
    } rows[] = {
        {ZLV40_ATTRACT_LINEAR, 1, 0, "1 - 1"},
        {ZLV40_ATTRACT_SINE, 0.5, 1, "sin(pi / 2)"},
        {ZLV40_ATTRACT_COSINE, 1, 0, "cos(pi) / 2 + 1 / 2"},
        {ZLV40_ATTRACT_SQUARE, 2, 2, "-2 + 4"},
        {ZLV40_ATTRACT_CUBIC, 9, 1.433, "(18 * 0.027 + 12 * 0.09 + 0.3 - 2) / 2 + 1.5"},
        {ZLV40_ATTRACT_ARC, 1, std::atan(1.0), "atan(1)"},
        {6, 1, 0, "any other mode moves nothing"},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        ExpectNear(Mapped(Attractor(2, 0, 0, row.mode, row.frequency), {4 + kHalfDiagonal, 4}),
                   {4 + kHalfDiagonal + 2 * row.shape, 4});
    }
}

TEST(PointAttractor, HasNoRim) { EXPECT_NE(Mapped(Attractor(2, 0, 0, 5, 1), {1e6, 4}).x, 1e6); }

// ---- Refusals -----------------------------------------------------------------------------------------------------

TEST(RadialPoints, EmptySizesAndARadiusOf0AreRefused)
{
    const struct {
        const char* shows;
        WarpCase warp;
        std::uint32_t width, height;
    } rows[] = {
        {"no width", Spin(3, 1), 0, 5},
        {"no height", Spin(3, 1), 5, 0},
        {"no radius", Spin(0, 1), 5, 5},
        {"a negative 0 is 0", Spin(-0.0, 1), 5, 5},
        {"no width", SpinWave(3, 1, 1), 0, 5},
        {"no height", SpinWave(3, 1, 1), 5, 0},
        {"no radius", SpinWave(0, 1, 1), 5, 5},
        {"no width", Lens(3), 0, 5},
        {"no height", Lens(3), 5, 0},
        {"no radius", Lens(0), 5, 5},
        {"no width", Pinch(3, 1), 0, 5},
        {"no height", Pinch(3, 1), 5, 0},
        {"no radius", Pinch(0, 1), 5, 5},
        {"no width", Attractor(3, 0, 0, 0, 1), 0, 5},
        {"no height", Attractor(3, 0, 0, 0, 1), 5, 0},
        {"no width", Wow(3, 1), 0, 5},
        {"no height", Wow(3, 1), 5, 0},
        {"no radius", Wow(0, 1), 5, 5},
        {"no radius", Ripple(0, 1, 1, 0, 0, 0), 5, 5},
        {"no radius of an empty size", Ripple(0, 1, 1, 0, 0, 0), 0, 0},
    };
    const WarpList list;
    ASSERT_EQ(Offset(1, 0, 0).add(5, 5), 1u);
    for (const auto& row : rows) {
        SCOPE(row.warp.name, row.shows);
        EXPECT_EQ(row.warp.add(row.width, row.height), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    ExpectListEqualsPlain({5, 5, 1}, {PlainOffset(1, 0, 0, 5, 5)}, 0);
}

TEST(RadialPoints, WithoutMemoryTheListStaysAsItWas)
{
    const WarpCase cases[] = {Spin(3, 90), SpinWave(3, 90, 5),      Lens(3), Pinch(3, 2), Attractor(2, 0, 0, 0, 1),
                              Wow(3, 0),   Ripple(3, 1, 1, 0, 0, 0)};
    const WarpList list;
    for (const WarpCase& warp : cases) {
        SCOPE(warp.name);
        {
            const FailingCalls failing(FailingCalls::Of::Allocate, 0);
            EXPECT_EQ(warp.add(5, 5), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        }
        ExpectListEqualsPlain({5, 5, 1}, {}, 0);
    }
}

// The centre of nothing is (0, 0).
TEST(RipplePoints, EmptySizesAreTaken)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddRippleTransform(0, 9, 5, 1, 3, 2, 1, ZLV40_RIPPLE_LINEAR), 1u);
    ASSERT_EQ(ZLV40_AddRippleTransform(9, 0, 3, 1, 3, 0, 0, ZLV40_RIPPLE_EVEN), 1u);
    const std::vector<PlainStep> steps = {PlainRipple{kRadialMath, 2, 1, 5, 1, 3, 1},
                                          PlainRipple{kRadialMath, 0, 0, 3, 1, 3, 0}};
    for (const std::uint32_t flags : {0u, 1u, 2u}) ExpectListEqualsPlain({9, 9, 3}, steps, flags);
}

}  // namespace
}  // namespace zlvtest
