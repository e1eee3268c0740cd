// The arc tangent of a quotient, by a table of atan(i/128).
//
// Method: P. T. P. Tang, "Table-lookup algorithms for elementary functions and their error
// analysis", ARITH-10 (1991): with c = i/128 near a/b, atan(a/b) = atan(c) + atan((a - c b) / (b +
// c a)), the last argument at most 2^-8. Its numerator is exact (c has 8 bits, and a and c b are
// close), its denominator and the quotient are carried in two parts (T. J. Dekker, Numer. Math. 18
// (1971)). Multiples of pi/2 and the table's angles lie on one grid: their sum is exact. What else
// is added is below 2^-16 of the result, so the result is within 0.5001 units in the last place.
#pragma once

#include "runtime/math/lanes.h"
#include "runtime/math/tables.h"

namespace zlv {
namespace {

// An angle as a sum: two parts from tables, and two that are small beside the first or beside a
// first of 0.
template <class V>
struct AngleSum {
    V high, low, firstRest, rest;
};

// atan(a / b) for 0 <= a <= b. Inlined wherever it is used: much of it goes away when a or b is 1.
template <class V>
[[gnu::always_inline]] inline AngleSum<V> ArcOfQuotient(V a, V b)
{
    const V shifted = (a / b) * f64(kArcSteps) + kShift;
    const BitsOf<V> index = (ToBits(shifted) & (2 * kArcSteps - 1)) << 1;
    const V c = (shifted - kShift) * (1.0 / kArcSteps);

    const V bHigh = Trim(b);
    const V numerator = (a - c * bHigh) - c * (b - bHigh);
    const V denominator = b + c * a;
    const V upper = Trim(denominator);
    const V aHigh = Trim(a);
    const V lower = ((b - upper) + c * aHigh) + c * (a - aHigh);

    // The quotient: 26 bits, and what they leave of the numerator.
    const V inverse = 1.0 / denominator;
    const V q = Trim(numerator * inverse);
    const V qLow = ((numerator - q * upper) - q * lower) * inverse;

    const V t = q + qLow;
    const V t2 = t * t;
    const V series = t * t2 * (-1.0 / 3 + t2 * (0.2 - t2 * (1.0 / 7)));
    const V tableHigh = Lane<V>::LookUp(kAtanTable, index);
    const V tableLow = Lane<V>::LookUp(kAtanTable + 1, index);
    return {tableHigh, tableLow, q, qLow + series};
}

template <class V>
V Rounded(const AngleSum<V>& sum)
{
    const V high = sum.high + sum.firstRest;
    const V error = (sum.high - high) + sum.firstRest;
    return high + (error + (sum.low + sum.rest));
}

template <class V>
V Atan2Core(V y, V x)
{
    const V xSize = Magnitude(x);
    const V ySize = Magnitude(y);
    const MaskOf<V> isSteep = ySize > xSize;
    const V a = Lane<V>::Select(isSteep, xSize, ySize);
    const V b = Lane<V>::Select(isSteep, ySize, xSize);
    AngleSum<V> sum = ArcOfQuotient(a, b);

    // The angle is atan, pi - atan, pi/2 - atan or pi/2 + atan, with the sign of y.
    const BitsOf<V> xSign = ToBits(x) & kSignBit;
    const BitsOf<V> flip = xSign ^ Lane<V>::SelectBits(isSteep, kSignBit);
    const MaskOf<V> isLeft = xSign != 0;
    const V leftHigh = Lane<V>::Select(isLeft, V{} + kPiHigh, V{});
    const V leftLow = Lane<V>::Select(isLeft, V{} + kPiLow, V{});
    const V turnHigh = Lane<V>::Select(isSteep, V{} + kHalfPiHigh, leftHigh);
    const V turnLow = Lane<V>::Select(isSteep, V{} + kHalfPiLow, leftLow);
    const auto flipped = [&](V value) { return FromBits<V>(ToBits(value) ^ flip); };

    sum.high = turnHigh + flipped(sum.high);
    sum.low = turnLow + flipped(sum.low);
    sum.firstRest = flipped(sum.firstRest);
    sum.rest = flipped(sum.rest);
    return FromBits<V>((ToBits(Rounded(sum)) & ~kSignBit) | (ToBits(y) & kSignBit));
}

// Both numbers in the middle of the range, and their quotient too; or the smaller one zero.
template <class V>
MaskOf<V> IsAtan2Ordinary(V y, V x)
{
    const V xSize = Magnitude(x);
    const V ySize = Magnitude(y);
    const MaskOf<V> isSteep = ySize > xSize;
    const V a = Lane<V>::Select(isSteep, xSize, ySize);
    const V b = Lane<V>::Select(isSteep, ySize, xSize);
    return (b >= 0x1p-500) & (b <= 0x1p500) & ((a == 0) | (a >= b * 0x1p-300));
}

}  // namespace
}  // namespace zlv
