// The exponential, reduced by a table of 2^(i/256).
//
// Method: P. T. P. Tang, "Table-driven implementation of the exponential function in IEEE
// floating-point arithmetic", ACM TOMS 15 (1989), with a Taylor polynomial, |r| <= log(2)/512. What
// is added to the table's value is below 2^-9 of it, so that its own rounding errors (some four
// halves of a unit in its last place) are below 2^-7 of a unit in the last place of the result.
#pragma once

#include "runtime/math/lanes.h"
#include "runtime/math/tables.h"

namespace zlv {
namespace {

// Up to here the result is normal, and so is the small term added to it last.
constexpr f64 kExpSafe = 700;

// exp(x) = 2^(steps / 256) * exp(r). The low bits of steps are a signed integer, those above bit 51
// are not.
template <class V>
struct ExpReduction {
    BitsOf<V> steps;
    V r;
};

template <class V>
ExpReduction<V> ReduceExp(V x)
{
    const V shifted = x * kExpStepsPerUnit + kShift;
    const V count = shifted - kShift;
    // The first product and difference are exact: 34 bits times 19, and the numbers are close.
    return {ToBits(shifted), (x - count * kExpStepHigh) - count * kExpStepLow};
}

// 2^(i/256) * exp(r) = base + rest, for the fractional steps i alone.
template <class V>
struct ExpSum {
    V base, rest;
};

template <class V>
ExpSum<V> SumExp(BitsOf<V> steps, BitsOf<V> exponentBits, V r)
{
    const BitsOf<V> index = (steps & (kExpSteps - 1)) << 1;
    const V base = FromBits<V>(ToBits(Lane<V>::LookUp(kExpTable, index)) + exponentBits);
    const V tail = Lane<V>::LookUp(kExpTable + 1, index);
    const V r2 = r * r;
    const V series = (0.5 + r * (1.0 / 6)) + r2 * (1.0 / 24 + r * (1.0 / 120));
    return {base, base * ((tail + r) + r2 * series)};
}

// exp(r) * 2^(steps / 256) where the result is a normal number.
template <class V>
V FinishExp(BitsOf<V> steps, V r)
{
    const ExpSum<V> sum = SumExp(steps, (steps & ~(kExpSteps - 1)) << 44, r);
    return sum.base + sum.rest;
}

template <class V>
V ExpCore(V x)
{
    const ExpReduction<V> reduced = ReduceExp(x);
    return FinishExp(reduced.steps, reduced.r);
}

template <class V>
MaskOf<V> IsExpOrdinary(V x)
{
    return Magnitude(x) <= kExpSafe;
}

}  // namespace
}  // namespace zlv
