// Results at the ends of the range: sums that are scaled by a power of two and rounded once.
#pragma once

#include "runtime/math/lanes.h"

namespace zlv {
namespace {

constexpr f64 kInfinity = __builtin_huge_val();
constexpr f64 kNaN = __builtin_nan("");

constexpr i64 kMinExponent = -1022;  // of a normal number
constexpr i64 kMaxExponent = 1023;

inline f64 PowerOfTwo(i64 exponent) { return FromBits<f64>(u64(exponent + 1023) << 52); }

inline bool IsNaN(f64 x) { return x != x; }

// 2^-1074 * (base + rest), rounded once, for 0 <= base <= 2^52 and a small rest. The unit of the
// sum with 2^52 is 1, so that its low bits are the bits of the subnormal number.
inline f64 RoundToSubnormal(f64 base, f64 rest)
{
    const f64 head = 0x1p52 + base;
    const f64 error = (0x1p52 - head) + base;
    return FromBits<f64>(ToBits(head + (error + rest)) - ToBits(0x1p52));
}

// 2^exponent * (base + rest), rounded once, for base in [1, 2), a small rest and an exponent of
// -1080..1024.
inline f64 ScaleSum(f64 base, f64 rest, i64 exponent)
{
    const f64 sum = base + rest;
    if (exponent > kMaxExponent) return sum * 2 * PowerOfTwo(exponent - 1);
    const i64 least = sum < 1 ? kMinExponent + 1 : kMinExponent;
    if (exponent >= least) return sum * PowerOfTwo(exponent);
    const f64 scale = PowerOfTwo(exponent + 1074);
    return RoundToSubnormal(base * scale, rest * scale);
}

}  // namespace
}  // namespace zlv
