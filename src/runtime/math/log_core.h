// The logarithm, reduced by a table of log(c) so that the reduced argument has no error at all.
//
// Method: P. T. P. Tang, "Table-driven implementation of the logarithm function in IEEE
// floating-point arithmetic", ACM TOMS 16 (1990), with inverses of few bits in place of a division
// (W. F. Wong, E. Goto, "Fast hardware-based algorithms for elementary function computations using
// rectangular multipliers", IEEE Trans. Comput. 43 (1994)).
//
// x = 2^k z with z around 1. 1/c is a multiple of 2^-10 where z is one of 2^-52 (of 2^-9 below 1,
// where z has one place more), so that r = z/c - 1 is a multiple of 2^-62; it is at most 2^-9. That
// makes 53 bits: r is exact. The sum k log(2) + log(c) is exact as well, because its leading parts
// lie on one grid. Next to 1, c is 1 and log(c) is 0. What remains inexact is below 2^-10 of the
// result everywhere.
#pragma once

#include "runtime/math/lanes.h"
#include "runtime/math/tables.h"

namespace zlv {
namespace {

// 11/16: z is taken from here to twice that, so that 1 is well inside.
constexpr u64 kFirstSignificand = 0x3FE6'0000'0000'0000;

// log(x) = head + low + log(1 + r), head and r exact.
template <class V>
struct LogReduction {
    V head, low, r;
};

// Of a positive normal number, plus addedExponent times log(2).
template <class V>
LogReduction<V> ReduceLog(BitsOf<V> bits, f64 addedExponent)
{
    const BitsOf<V> offset = bits - kFirstSignificand;
    const BitsOf<V> index = ((offset >> 43) & (kLogSteps - 1)) << 2;
    const BitsOf<V> zBits = bits - (offset & ~((u64(1) << 52) - 1));

    // k + 1024 goes into the low bits of 2^52 and comes out as a number.
    constexpr u64 kBiasInField = u64(1024) << 52;
    const BitsOf<V> biased = (offset + kBiasInField) >> 52;
    const V k = FromBits<V>(biased | ToBits(0x1p52)) - (0x1p52 + 1024 - addedExponent);

    // Both products are exact, and so are the sums: 32 and 21 bits times 10.
    const V inverse = Lane<V>::LookUp(kLogTable, index);
    const V zHigh = FromBits<V>(zBits & (~u64(0) << 21));
    const V zLow = FromBits<V>(zBits) - zHigh;
    const V r = (zHigh * inverse - 1) + zLow * inverse;

    const V logHigh = Lane<V>::LookUp(kLogTable + 1, index);
    const V logLow = Lane<V>::LookUp(kLogTable + 2, index);
    return {k * kLn2High + logHigh, k * kLn2Low + logLow, r};
}

template <class V>
V FinishLog(const LogReduction<V>& reduced)
{
    const V r = reduced.r;
    const V high = reduced.head + r;
    const V low = (reduced.head - high) + r + reduced.low;
    const V r2 = r * r;
    const V further = (r * 0.2 - 0.25) + r2 * (r * (1.0 / 7) - 1.0 / 6);
    return high + (low + r2 * ((r * (1.0 / 3) - 0.5) + r2 * further));
}

template <class V>
V LogCore(V x)
{
    return FinishLog(ReduceLog<V>(ToBits(x), 0));
}

// Positive normal numbers.
template <class V>
MaskOf<V> IsLogOrdinary(V x)
{
    return (x >= 0x1p-1022) & (x < __builtin_huge_val());
}

}  // namespace
}  // namespace zlv
