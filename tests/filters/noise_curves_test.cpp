// The curves of the noise kernels against the formulas in doubles, for every draw that there is.
#include "filters/noise_curves.h"

#include "filters/noise_distributions.h"
#include "runtime/math.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zlv {
namespace {

constexpr u32 kDraws = 32768;

f64 ExactMinusLog(u32 draw) { return -Log(1 - draw / 32767.1); }

// The largest distance between the two over all draws.
template <class Curve, class Formula>
f64 LargestError(Curve curve, Formula formula)
{
    f64 largest = 0;
    for (u32 draw = 0; draw < kDraws; ++draw) largest = std::max(largest, std::abs(curve(draw) - formula(draw)));
    return largest;
}

TEST(NoiseCurves, StayWithinTheirErrorsForEveryDraw)
{
    EXPECT_LT(LargestError(MinusLog, ExactMinusLog), kMinusLogError);
    EXPECT_LT(LargestError(RootOfMinusLog, [](u32 draw) { return std::sqrt(ExactMinusLog(draw)); }),
              kRootOfMinusLogError);
    EXPECT_LT(LargestError(TurnCosine, [](u32 draw) { return Cos(draw * 0.00019175345 - 3.14159265358979323846); }),
              kTurnCosineError);
}

// The errors that the bounds are made of are not far above those that there are: a wide bound would only cost time.
TEST(NoiseCurves, AreNotMuchBetterThanSaid)
{
    EXPECT_GT(LargestError(MinusLog, ExactMinusLog), kMinusLogError / 8);
    EXPECT_GT(LargestError(TurnCosine, [](u32 draw) { return Cos(draw * 0.00019175345 - 3.14159265358979323846); }),
              kTurnCosineError / 8);
}

TEST(NoiseCurves, AreExactWhereTheLogarithmIsZero)
{
    EXPECT_EQ(MinusLog(0), 0);
    EXPECT_EQ(RootOfMinusLog(0), 0);
}

// What the bounds of the distributions assume of the largest values.
TEST(NoiseCurves, EndWhereTheBoundsSay)
{
    EXPECT_LT(ExactMinusLog(kDraws - 1), 12.7);
    EXPECT_LT(std::sqrt(ExactMinusLog(kDraws - 1)), 3.57);
}

}  // namespace
}  // namespace zlv
