// The recursive filter's coefficients and steady states.
#include "base/gaussian_coefficients.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zlv {
namespace {

// sigma 2: k = 1 / (sqrt(2 pi) * 2) = 0.19947; n0 = (1.68 - 0.6803) * k = 0.19941; the poles' product d4 =
// e^(2 * (-1.783 - 1.723) / 2) = e^-3.506 = 0.03002.
TEST(RecursiveGaussian, CoefficientsByHand)
{
    const auto filter = MakeRecursiveGaussian<f64>(2);
    EXPECT_NEAR(filter.n[0], 0.19941, 1e-5);
    EXPECT_NEAR(filter.d[4], 0.03002, 1e-5);
    EXPECT_EQ(filter.n[4], 0);
    EXPECT_EQ(filter.d[0], 0);
    EXPECT_EQ(filter.m[0], 0);
    EXPECT_EQ(filter.m[4], -filter.d[4] * filter.n[0]);
}

// A filter without end on a flat line: both directions together give the level back.
TEST(RecursiveGaussian, SteadyStatesAddUpToOne)
{
    for (const f32 sigma : {1.0f, 2.0f, 4.5f, 20.0f, 100.0f}) {
        const auto filter = MakeRecursiveGaussian<f64>(sigma);
        const f64 forward = filter.forwardBoundary[1] / filter.d[1],
                  backward = filter.backwardBoundary[1] / filter.d[1];
        EXPECT_NEAR(forward + backward, 1, 2e-3) << sigma;
    }
}

// The sum of the poles' coefficients is -1 in doubles: the divisor would be 0.
TEST(RecursiveGaussian, TheSteadyStateIsFiniteWhereThePolesMeetOne)
{
    const auto filter = MakeRecursiveGaussian<f64>(1e20f);
    for (u32 i = 0; i < 5; ++i) {
        EXPECT_TRUE(std::isfinite(filter.forwardBoundary[i])) << i;
        EXPECT_TRUE(std::isfinite(filter.backwardBoundary[i])) << i;
    }
}

}  // namespace
}  // namespace zlv
