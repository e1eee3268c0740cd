// The power, as exp(y log(x)) with the logarithm to some 70 bits.
//
// Method: P. T. P. Tang's two table-driven reductions (see exp_core.h and log_core.h), with the
// terms r - r^2/2 of the logarithm and the product with y carried in two numbers (T. J. Dekker, "A
// floating-point technique for extending the available precision", Numer. Math. 18 (1971)).
//
// Error: the third term of the series is at most 2^-19.5 of the logarithm, so its rounding errors
// are below 2^-69.5 of it; y log(x) is at most 746, so they end below 2^-7 units in the last place
// of the result. With those of the exponential the sum before the last rounding is within 0.02
// units of the true value. A result that a double holds is therefore the nearest double to that
// sum: exact powers come out exact.
#pragma once

#include "runtime/math/exp_core.h"
#include "runtime/math/log_core.h"

namespace zlv {
namespace {

// A number in two parts, the second one small.
template <class V>
struct TwoParts {
    V high, low;
};

template <class V>
TwoParts<V> FinishLongLog(const LogReduction<V>& reduced)
{
    const V r = reduced.r;
    const V first = reduced.head + r;
    const V firstError = (reduced.head - first) + r;

    // r^2/2 as an exact leading part and the rest.
    const V rHigh = Trim(r);
    const V rLow = r - rHigh;
    const V square = 0.5 * rHigh * rHigh;
    const V squareLow = 0.5 * rLow * (r + rHigh);
    const V high = first - square;
    const V secondError = (first - high) - square;

    const V r2 = r * r;
    const V further = (0.2 - r * (1.0 / 6)) + r2 * (1.0 / 7 - r * 0.125);
    const V series = (1.0 / 3 - r * 0.25) + r2 * further;
    return {high, ((firstError + reduced.low) + (secondError - squareLow)) + r * r2 * series};
}

// y * log(x): the leading part is exact.
template <class V>
TwoParts<V> TimesExponent(V y, const TwoParts<V>& log)
{
    const V logHigh = Trim(log.high);
    const V logLow = (log.high - logHigh) + log.low;
    const V yHigh = Trim(y);
    const V yLow = y - yHigh;
    return {yHigh * logHigh, yLow * logHigh + y * logLow};
}

// Ordinary: x positive and normal, the result a normal number. For other lanes the result means
// nothing.
template <class V>
V PowCore(V x, V y, MaskOf<V>& ordinary)
{
    const TwoParts<V> power = TimesExponent(y, FinishLongLog(ReduceLog<V>(ToBits(x), 0)));
    const ExpReduction<V> reduced = ReduceExp(power.high);
    ordinary = Lane<V>::Both(IsLogOrdinary(x), IsExpOrdinary(power.high));
    return FinishExp(reduced.steps, reduced.r + power.low);
}

}  // namespace
}  // namespace zlv
