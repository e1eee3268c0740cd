#include "plain/plain_spline.h"
#include "support/doubles.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"

#include <cmath>
#include <limits>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::Doubles;

struct Points {
    explicit Points(std::size_t count, double fill = 0) : x(count, fill), y(count, fill), z(count, fill) {}
    Doubles x, y, z;
    bool operator==(const Points&) const = default;
};

Points RandomPoints(std::size_t count, std::uint64_t seed)
{
    Points points(count);
    points.x = zlvtest::RandomDoubles(count, seed);
    points.y = zlvtest::RandomDoubles(count, seed + 1);
    points.z = zlvtest::RandomDoubles(count, seed + 2);
    return points;
}

std::uint32_t Evaluate(const Points& controls, std::uint32_t order, Points& out)
{
    return ZLV40_Get3DSplinePoints(std::uint32_t(out.x.size()), std::uint32_t(controls.x.size()), order,
                                   controls.x.data(), controls.y.data(), controls.z.data(), out.x.data(), out.y.data(),
                                   out.z.data());
}

void ExpectPlain(const Points& controls, std::uint32_t order, std::uint32_t outCount)
{
    Points wanted(outCount, 7), got(outCount, 9);
    PlainSpline(int(controls.x.size()), int(order))
        .Evaluate(controls.x.data(), controls.y.data(), controls.z.data(), outCount, wanted.x.data(), wanted.y.data(),
                  wanted.z.data());
    EXPECT_EQ(Evaluate(controls, order, got), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.x, got.x), "");
    EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.y, got.y), "");
    EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.z, got.z), "");
}

TEST(Get3DSplinePoints, EqualsTheRecursion)
{
    for (std::uint32_t controlCount = 3; controlCount <= 12; ++controlCount) {
        const Points controls = RandomPoints(controlCount, controlCount);
        for (std::uint32_t order = 1; order < controlCount && order <= 9; ++order) {
            for (const std::uint32_t outCount : {1u, 2u, 3u, 10u, 97u}) {
                SCOPE(controlCount, order, outCount);
                ExpectPlain(controls, order, outCount);
            }
        }
    }
}

// The parameter is a sum of steps: over many points it drifts, and where it ends is part of the result.
TEST(Get3DSplinePoints, EqualsTheRecursionOverManyPoints)
{
    ExpectPlain(RandomPoints(50, 4), 4, 10007);
    ExpectPlain(RandomPoints(7, 5), 3, 65537);
}

TEST(Get3DSplinePoints, ControlPointsThatAreNoNumbersReachEveryPoint)
{
    for (const double wild : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(), 1e308, -5e-324}) {
        for (const std::size_t at : {0, 3, 6}) {
            SCOPE(wild, at);
            Points controls = RandomPoints(7, 6);
            controls.y[at] = wild;
            ExpectPlain(controls, 3, 20);
        }
    }
}

TEST(Get3DSplinePoints, OneOutputIsTheLastControlPoint)
{
    const Points controls = RandomPoints(5, 7);
    Points out(1);
    EXPECT_EQ(Evaluate(controls, 3, out), 1u);
    EXPECT_EQ(out.x[0], controls.x[4]);
    EXPECT_EQ(out.y[0], controls.y[4]);
    EXPECT_EQ(out.z[0], controls.z[4]);
}

TEST(Get3DSplinePoints, TheEndsAreTheFirstAndTheLastControlPoint)
{
    for (std::uint32_t order = 1; order <= 6; ++order) {
        SCOPE(order);
        const Points controls = RandomPoints(7, 8);
        Points out(33);
        EXPECT_EQ(Evaluate(controls, order, out), 1u);
        EXPECT_EQ(out.x.front(), controls.x.front());
        EXPECT_EQ(out.y.front(), controls.y.front());
        EXPECT_EQ(out.z.front(), controls.z.front());
        EXPECT_EQ(out.x.back(), controls.x.back());
        EXPECT_EQ(out.y.back(), controls.y.back());
        EXPECT_EQ(out.z.back(), controls.z.back());
    }
}

// Five control points and nine outputs: every second one is a control point, the others lie half-way.
TEST(Get3DSplinePoints, OrderTwoIsThePolyline)
{
    const Points controls = RandomPoints(5, 9);
    Points out(9);
    EXPECT_EQ(Evaluate(controls, 2, out), 1u);
    for (std::size_t i = 0; i < 9; ++i) {
        const std::size_t before = i / 2, after = (i + 1) / 2;
        EXPECT_DOUBLE_EQ(out.x[i], (controls.x[before] + controls.x[after]) / 2) << i;
        EXPECT_DOUBLE_EQ(out.y[i], (controls.y[before] + controls.y[after]) / 2) << i;
        EXPECT_DOUBLE_EQ(out.z[i], (controls.z[before] + controls.z[after]) / 2) << i;
    }
}

TEST(Get3DSplinePoints, OrderOneStandsOnTheControlPoints)
{
    const Points controls = RandomPoints(4, 10);
    Points out(9);  // 4 intervals in 8 steps
    EXPECT_EQ(Evaluate(controls, 1, out), 1u);
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(out.x[i], controls.x[i / 2]) << i;
}

// By the recursion a point would take as many steps as an unsigned number of 64 bits holds.
TEST(Get3DSplinePoints, HighOrdersTakeNoTime)
{
    Points controls(66, 2.5);
    Points out(50);
    EXPECT_EQ(Evaluate(controls, 65, out), 1u);
    for (const double x : out.x) EXPECT_NEAR(x, 2.5, 1e-12);
}

TEST(Get3DSplinePoints, ResultsMayReplaceTheControlPoints)
{
    const Points controls = RandomPoints(6, 11);
    Points wanted(6), both = controls;
    EXPECT_EQ(Evaluate(controls, 3, wanted), 1u);
    EXPECT_EQ(Evaluate(both, 3, both), 1u);
    EXPECT_EQ(both, wanted);
}

TEST(Get3DSplinePoints, WritesItsOutputsAndNothingElse)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        zlvtest::GuardedBuffer in(4 * sizeof(double), flush), out(11 * sizeof(double), flush);
        const double* const from = reinterpret_cast<const double*>(in.Data());
        double* const to = reinterpret_cast<double*>(out.Data());
        EXPECT_EQ(ZLV40_Get3DSplinePoints(11, 4, 3, from, from, from, to, to, to), 1u);
    }
}

const struct {
    const char* shows;
    std::uint32_t outCount, controlCount, order;
    int null;  // the array that is null, or -1
} kRefused[] = {
    {"no outputs", 0, 4, 2, -1},
    {"as many control points as the order", 8, 4, 4, -1},
    {"fewer control points than the order", 8, 4, 5, -1},
    {"two control points with order 1", 8, 2, 1, -1},
    {"no control points", 8, 0, 0, -1},
    {"order 0", 8, 4, 0, -1},
    {"the largest order", 8, 4, UINT32_MAX, -1},
    {"no x", 8, 4, 2, 0},
    {"no y", 8, 4, 2, 1},
    {"no z", 8, 4, 2, 2},
    {"no outX", 8, 4, 2, 3},
    {"no outY", 8, 4, 2, 4},
    {"no outZ", 8, 4, 2, 5},
};

TEST(Get3DSplinePoints, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        Doubles arrays[6];
        double* pointers[6];
        for (int i = 0; i < 6; ++i) {
            arrays[i] = Doubles(8, i);
            pointers[i] = i == row.null ? nullptr : arrays[i].data();
        }
        EXPECT_EQ(ZLV40_Get3DSplinePoints(row.outCount, row.controlCount, row.order, pointers[0], pointers[1],
                                          pointers[2], pointers[3], pointers[4], pointers[5]),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
        for (int i = 0; i < 6; ++i) EXPECT_EQ(arrays[i], Doubles(8, i));
    }
}

TEST(Get3DSplinePoints, WithoutMemoryIsCodeOneAndNothingWritten)
{
    ZLV40_GetLastError();  // makes the thread's records
    const Points controls = RandomPoints(5, 12);
    const std::uint32_t allocations =
        zlvtest::ExpectCodeOneWithoutMemory(Points(6, 3), [&](Points& out) { return Evaluate(controls, 3, out); });
    EXPECT_EQ(allocations, 2u);
}

}  // namespace
}  // namespace zlv
