// Sine and cosine, by a table of the sines of a full turn in 256 steps.
//
// Method: W. J. Cody, W. Waite, "Software Manual for the Elementary Functions" (1980), for the
// reduction with a constant in three parts; sin(a + r) = sin(a) cos(r) + cos(a) sin(r) with tabled
// sines as in P. T. P. Tang, "Table-lookup algorithms for elementary functions and their error
// analysis", ARITH-10 (1991). The leading parts of sin(a) and of cos(a) r are added without error.
// What else is added is below 2^-10 of the result, and r carries its own error in a second number.
#pragma once

#include "runtime/math/lanes.h"
#include "runtime/math/tables.h"

namespace zlv {
namespace {

constexpr u64 kSineQuarter = kSineSteps / 4;
// Steps stay below 2^20: their products with the constant's parts are exact.
constexpr f64 kSineFastLimit = 12800;
// Of the angle: what comes nearer to a step than this is reduced with more bits.
constexpr f64 kSineCancelled = 0x1p-57;

// angle = steps * (2 pi / 256) + r + low.
template <class V>
struct AngleReduction {
    BitsOf<V> steps;
    V r, low;
};

template <class V>
AngleReduction<V> ReduceAngle(V angle, MaskOf<V>& ordinary)
{
    const V shifted = angle * kSineStepsPerUnit + kShift;
    const V count = shifted - kShift;
    // The first two products are exact, and so are the differences: the second one with its error
    // beside it.
    const V first = angle - count * kSineStep1;
    const V secondStep = count * kSineStep2;
    const V second = first - secondStep;
    const V rest = ((first - second) - secondStep) - count * kSineStep3;
    const V r = second + rest;
    const V size = Magnitude(angle);
    ordinary = (size < kSineFastLimit) & (Magnitude(second) >= size * kSineCancelled);
    return {ToBits(shifted), r, (second - r) + rest};
}

// The sine of that angle.
template <class V>
V SineOf(const AngleReduction<V>& angle)
{
    const BitsOf<V> index = (angle.steps & (kSineSteps - 1)) << 1;
    const BitsOf<V> cosineIndex = ((angle.steps + kSineQuarter) & (kSineSteps - 1)) << 1;
    const V sineHigh = Lane<V>::LookUp(kSineTable, index);
    const V sineLow = Lane<V>::LookUp(kSineTable + 1, index);
    const V cosineHigh = Lane<V>::LookUp(kSineTable, cosineIndex);
    const V cosineLow = Lane<V>::LookUp(kSineTable + 1, cosineIndex);

    const V r = angle.r;
    const V r2 = r * r;
    const V sineSeries = r * r2 * (-1.0 / 6 + r2 * (1.0 / 120 - r2 * (1.0 / 5040)));
    const V cosineSeries = r2 * (-0.5 + r2 * (1.0 / 24 - r2 * (1.0 / 720)));

    const V rHigh = Trim(r);
    const V rLow = (r - rHigh) + angle.low;
    const V slope = cosineHigh * rHigh;  // 27 bits times 26
    const V high = sineHigh + slope;
    const V error = (sineHigh - high) + slope;
    const V small = (sineHigh + sineLow) * cosineSeries + (cosineHigh + cosineLow) * sineSeries;
    return high + (error + ((sineLow + (cosineHigh * rLow + cosineLow * r)) + small));
}

template <class V>
V SinCore(V angle, MaskOf<V>& ordinary)
{
    const V sine = SineOf(ReduceAngle(angle, ordinary));
    // Tiny angles are their own sine; -0 keeps its sign this way.
    return Lane<V>::Select(Magnitude(angle) < 0x1p-27, angle, sine);
}

template <class V>
V CosCore(V angle, MaskOf<V>& ordinary)
{
    AngleReduction<V> reduced = ReduceAngle(angle, ordinary);
    reduced.steps += kSineQuarter;
    return SineOf(reduced);
}

}  // namespace
}  // namespace zlv
