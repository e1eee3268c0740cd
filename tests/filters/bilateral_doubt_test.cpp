// The bound on single precision's errors, by brute force: no average that it calls sure is another one than that of
// double precision.
#include "filters/bilateral_doubt.h"
#include "filters/bilateral.kernels.h"
#include "support/bytes.h"
#include "support/targets.h"

#include <algorithm>
#include <bit>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kMiddleWeight = 20;

f64 RandomReal(Random& random) { return random.Next() * 0x1p-32; }

// A weight close to 1 / 2 that 16 digits put as far above it or below it as they can.
f64 BadlyShortened(bool isRaised) { return 0.5 + 0x1p-17 - (isRaised ? 0 : 0x1p-24); }

// A window of samples with their weights, and its average in both precisions, half a unit added.
struct Window {
    size_t rows, columns;
    std::vector<u8> samples;
    std::vector<f64> range, spatial;

    f64 Exact() const
    {
        f64 sum = 0, weights = 0;
        for (size_t i = 0; i < samples.size(); ++i) {
            sum += samples[i] * (range[i] * spatial[i]);
            weights += range[i] * spatial[i];
        }
        return sum / weights + 0.5;
    }

    f32 Single() const
    {
        f32 sum = 0, weights = 0;
        for (size_t j = 0; j < rows; ++j) {
            f32 rowSum = 0, rowWeights = 0;
            for (size_t i = j * columns; i < (j + 1) * columns; ++i) {
                const f32 weight = ShortWeight(range[i]) * FastWeight(spatial[i]);
                rowSum += weight * f32(samples[i]);
                rowWeights += weight;
            }
            sum += rowSum;
            weights += rowWeights;
        }
        return sum / weights + 0.5f;
    }

    // The part of the doubt by which single precision is off.
    f64 PartOfDoubt() const
    {
        const f64 doubt = BilateralDoubt(f64(rows), f64(columns)), off = f64(Single()) - Exact();
        return (off < 0 ? -off : off) / doubt;
    }

    bool IsBracketed() const
    {
        const f32 doubt = f32(BilateralDoubt(f64(rows), f64(columns)));
        const f32 below = Single() - doubt, above = Single() + doubt;
        return f64(below) <= Exact() && Exact() <= f64(above);
    }
};

// The weights of light samples are raised and those of dark ones lowered, as far as 16 digits go, or any.
Window MakeWindow(Random& random, size_t rows, size_t columns, bool isBad)
{
    Window window = {rows, columns, {}, {}, {}};
    const u32 darkest = isBad ? 0 : random.Below(255), levels = 1 + random.Below(255 - darkest);
    for (size_t i = 0; i < rows * columns; ++i) {
        const bool isLight = random.Below(2);
        window.samples.push_back(u8(isBad ? 255 * isLight : darkest + random.Below(levels + 1)));
        window.range.push_back(isBad ? BadlyShortened(isLight) : RandomReal(random));
        window.spatial.push_back(isBad ? 1 - RandomReal(random) * 0x1p-20 : RandomReal(random));
    }
    const size_t middle = rows / 2 * columns + columns / 2;
    window.range[middle] = 1;
    window.spatial[middle] = kMiddleWeight;
    return window;
}

TEST(BilateralDoubt, CoversSinglePrecisionAndIsNotFarFromIt)
{
    Random random(3);
    f64 largestPart = 0;
    for (u32 round = 0; round < 40000; ++round) {
        const size_t rows = 1 + random.Below(20), columns = 1 + random.Below(20);
        const Window window = MakeWindow(random, rows, columns, round % 2 == 0);
        ASSERT_TRUE(window.IsBracketed()) << rows << " x " << columns << " in round " << round;
        largestPart = std::max(largestPart, window.PartOfDoubt());
    }
    EXPECT_LE(largestPart, 1);
    EXPECT_GT(largestPart, 0.5) << "or the windows do not try hard enough";
}

// Four roundings beside those of the sums: of the products, of the quotient, of the half and of the doubt.
TEST(BilateralDoubt, CountsEveryRounding)
{
    constexpr f64 u = 0x1p-24;
    const f64 ofSums = (2 * (9 + 9) + 1 + 1 + 1 + 1) * u * 256, ofWeights = (0x1p-16 + 3 * u) * 127.5;
    EXPECT_GE(BilateralDoubt(9, 9), ofSums + ofWeights);
    EXPECT_LT(BilateralDoubt(9, 9), 1.02 * (ofSums + ofWeights));
}

// ---- The kernels' test of it --------------------------------------------------------------------------------------

constexpr size_t kCount = kBilateralGroup;

// Windows of a row, whose averages often lie halfway between two levels: their samples have few levels.
struct Scene {
    size_t side;
    Bytes samples;
    f64 exactRange[kRangeEntries];
    std::vector<f64> exactSpatial;
    BilateralRange range;
    std::vector<f32> spatial;

    Scene(Random& random, size_t theSide) : side(theSide), samples(side * Length()), exactSpatial(side * side)
    {
        const u32 lowest = random.Below(240), levels = 2 + random.Below(3);
        for (u8& sample : samples) sample = u8(lowest + random.Below(levels));
        const f64 fall = random.Below(2) ? 0 : RandomReal(random) / 256;
        for (size_t d = 0; d <= kRangeMiddle; ++d) {
            const f64 weight = 1 - f64(d) * fall;
            exactRange[kRangeMiddle + d] = exactRange[kRangeMiddle - d] = weight;
            range.weights[kRangeMiddle + d] = range.weights[kRangeMiddle - d] = ShortWeight(weight);
            const u32 bits = std::bit_cast<u32>(ShortWeight(weight));
            for (u32 byte = 0; byte < 3; ++byte) range.bytes[byte][d] = u8(bits >> (8 * (byte + 1)));
        }
        for (f64& weight : exactSpatial) weight = random.Below(2) ? 1 : RandomReal(random);
        exactSpatial[side * side / 2] = kMiddleWeight;
        for (const f64 weight : exactSpatial) spatial.push_back(FastWeight(weight));
    }

    size_t Length() const { return kCount + side + kBilateralGroup; }
    const u8* Row(size_t j) const { return samples.data() + j * Length(); }
    const u8* Middle() const { return Row(side / 2) + side / 2; }

    u8 Exact(size_t x) const
    {
        f64 sum = 0, weights = 0;
        for (size_t j = 0; j < side; ++j) {
            for (size_t i = 0; i < side; ++i) {
                const u8 sample = Row(j)[x + i];
                const f64 weight = exactRange[kRangeMiddle + Middle()[x] - sample] * exactSpatial[j * side + i];
                sum += sample * weight;
                weights += weight;
            }
        }
        return u8(sum / weights + 0.5);
    }
};

TEST(BilateralDoubt, KernelsAreRightWhereTheyAreSure)
{
    zlvtest::OnEveryTarget([&] {
        Random random(8);
        size_t sure = 0, doubtful = 0;
        for (u32 round = 0; round < 600; ++round) {
            const Scene scene(random, 1 + 2 * random.Below(5));
            std::vector<const u8*> rows;
            for (size_t j = 0; j < scene.side; ++j) rows.push_back(scene.Row(j));
            const Bytes inside(scene.Length(), 255);
            const f64 side = f64(scene.side);
            const BilateralWindow window = {.rows = rows.data(),
                                            .rowCount = scene.side,
                                            .columns = scene.side,
                                            .step = 1,
                                            .spatial = scene.spatial.data(),
                                            .spatialStride = scene.side,
                                            .range = &scene.range,
                                            .inside = inside.data(),
                                            .wholeStart = 0,
                                            .wholeEnd = kCount,
                                            .doubt = f32(BilateralDoubt(side, side))};
            u8 averages[kCount], doubts[kCount];
            Kernels<BilateralKernels>().average(window, scene.Middle(), kCount, averages, doubts);
            for (size_t x = 0; x < kCount; ++x) {
                EXPECT_TRUE(doubts[x] != 0 || averages[x] == scene.Exact(x)) << round << ' ' << x;
                ++(doubts[x] == 0 ? sure : doubtful);
            }
        }
        EXPECT_GT(sure, doubtful);
        EXPECT_GT(doubtful, 0u);
    });
}

}  // namespace
}  // namespace zlv
