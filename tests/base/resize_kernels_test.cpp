// The bounds that single precision is trusted by, and what the weights of a list are.
#include "base/resize_filters.h"
#include "base/resize_rows.kernels.h"
#include "support/bytes.h"

#include <cmath>

namespace zlv {
namespace {

const struct {
    u32 sourceSize, destSize;
} kRatios[] = {{1920, 960}, {1920, 1280}, {1000, 1500}, {100, 777}, {301, 300}, {3000, 100}, {5, 4}, {3, 64}};

// The sums that a list gives of samples, in both precisions, tap after tap.
struct Sums {
    f32 near = 0;
    f64 exact = 0;

    void Add(const ResizeContributor& tap, u32 sample)
    {
        near += f32(sample) * tap.nearWeight;
        exact += f64(sample) * tap.weight;
    }
    f64 Distance() const { return std::fabs(f64(near) - exact); }
};

// Each sample is chosen so that the sum parts from the exact one as far as it can.
Sums WorstSums(const ResizeContribList& list, f64 direction)
{
    Sums worst;
    for (u64 k = 0; k < list.count; ++k) {
        Sums best = worst;
        best.Add(list.taps[k], 0);
        for (const u32 sample : {1u, 85u, 127u, 170u, 213u, 251u, 253u, 254u, 255u}) {
            Sums tried = worst;
            tried.Add(list.taps[k], sample);
            if (direction * (f64(tried.near) - tried.exact) > direction * (f64(best.near) - best.exact)) best = tried;
        }
        worst = best;
    }
    return worst;
}

TEST(ResizeKernels, SumsOfRoundedWeightsStayWithinTheTolerance)
{
    zlvtest::Random random(7);
    for (u32 mode = 0; mode < 14; ++mode) {
        for (const auto& ratio : kRatios) {
            ResizeContribTable table(ResizeFilterOf(mode), ratio.sourceSize, ratio.destSize);
            ASSERT_TRUE(table.Resize(1));
            for (u32 i = 0; i < ratio.destSize; i += 1 + ratio.destSize / 40) {
                SCOPE(mode, ratio.sourceSize, ratio.destSize, i);
                table.Build(i, 1);
                const ResizeContribList& list = table[0];
                ASSERT_GT(list.tolerance, 0);
                EXPECT_LE(WorstSums(list, 1).Distance(), list.tolerance);
                EXPECT_LE(WorstSums(list, -1).Distance(), list.tolerance);
                for (u32 trial = 0; trial < 20; ++trial) {
                    Sums sums;
                    for (u64 k = 0; k < list.count; ++k) sums.Add(list.taps[k], random.Byte());
                    EXPECT_LE(sums.Distance(), list.tolerance);
                }
            }
        }
    }
}

TEST(ResizeKernels, BilinearSamplesStayWithinTheTolerance)
{
    zlvtest::Random random(11);
    const auto sample = [&] { return random.Below(4) ? f64(random.Byte()) : random.Below(2) ? 255.0 : 0.0; };
    f64 farthest = 0;
    for (u32 i = 0; i < 3000000; ++i) {
        const f64 fx = random.Next() / 4294967296.0, fy = random.Next() / 4294967296.0;
        const f64 upperLeft = sample(), upperRight = sample(), lowerLeft = sample(), lowerRight = sample();
        const f64 exact = upperRight * (fx * (1 - fy)) + upperLeft * ((1 - fx) * (1 - fy)) + lowerRight * (fx * fy) +
                          lowerLeft * ((1 - fx) * fy);
        const f32 upper = f32(upperLeft) + f32(fx) * f32(upperRight - upperLeft);
        const f32 lower = f32(lowerLeft) + f32(fx) * f32(lowerRight - lowerLeft);
        const f32 near = upper + f32(fy) * (lower - upper);
        farthest = std::max(farthest, std::fabs(f64(near) - exact));
    }
    EXPECT_LE(farthest, kBilinearTolerance);
    EXPECT_GT(farthest, kBilinearTolerance / 16);  // the bound says something
}

TEST(ResizeKernels, WeightsOfAListAddUpToOne)
{
    for (u32 mode = 0; mode < 14; ++mode) {
        for (const auto& ratio : kRatios) {
            ResizeContribTable table(ResizeFilterOf(mode), ratio.sourceSize, ratio.destSize);
            ASSERT_TRUE(table.Resize(ratio.destSize));
            table.Build(0, ratio.destSize);
            for (u32 i = 0; i < ratio.destSize; ++i) {
                SCOPE(mode, ratio.sourceSize, ratio.destSize, i);
                f64 sum = 0;
                for (u64 k = 0; k < table[i].count; ++k) {
                    sum += table[i].taps[k].weight;
                    EXPECT_LE(table.Lowest(), table[i].taps[k].sourceIndex);
                    EXPECT_GE(table.Highest(), table[i].taps[k].sourceIndex);
                }
                EXPECT_NEAR(sum, 1, 1e-12);
            }
            EXPECT_LE(table.Highest() - table.Lowest() + 1, table.SpanOf(ratio.destSize));
        }
    }
}

}  // namespace
}  // namespace zlv
