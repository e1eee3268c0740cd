// The curves that turn draws into noise, in single precision.
//
// A draw has 32,768 values. How near the curves come to the formulas in doubles is said in noise_distributions.h, and
// tried for all of them in tests/filters/noise_curves_test.cpp.
//
// For kernel files (and that test) alone: everything here has internal linkage.
#pragma once

#include "platform/types.h"

namespace zlv {
namespace {

// Either number, by its bits: GCC takes a choice between floating-point numbers for a branch, and makes no vectors of
// it.
inline f32 Select(bool isFirst, f32 first, f32 second)
{
    const u32 mask = 0 - u32(isFirst);
    return __builtin_bit_cast(f32, (__builtin_bit_cast(u32, first) & mask) | (__builtin_bit_cast(u32, second) & ~mask));
}

// -ln(1 - draw / 32767.1), 0 to 12.7.
//
// 1 - draw / 32767.1 is (m + 0.1) / 32767.1 with a whole m. Far from 1 its logarithm is that of m + 0.1 less that of
// 32767.1. Near 1 these two cancel: there the distance from 1 itself enters the series. The series is that of the
// inverse hyperbolic tangent, ln(1 + f) = 2 artanh(f / (2 + f)), for f from -0.3 to 0.42. Here and below the
// coefficients are those of interpolations at Chebyshev nodes.
inline f32 MinusLog(u32 draw)
{
    constexpr i32 kFirstSignificand = 0x3F3504F3;  // the square root of one half: significands run from here to twice
    constexpr u32 kNear = 9600;
    const f32 m = f32(i32(32767 - draw)) + 0.1F;
    const i32 exponent = (__builtin_bit_cast(i32, m) - kFirstSignificand) >> 23;
    const f32 significand = __builtin_bit_cast(f32, i32(u32(__builtin_bit_cast(i32, m)) - (u32(exponent) << 23)));
    const bool isNear = draw < kNear;
    const f32 f = Select(isNear, f32(i32(draw)) * f32(-1 / 32767.1), significand - 1);
    const f32 whole = Select(isNear, 0, f32(exponent) * f32(0.69314718055994531) - f32(10.397180242));

    const f32 s = f / (f + 2);
    const f32 s2 = s * s;
    const f32 series = s2 * (f32(0.3333174758) + s2 * f32(0.2042942755));
    return -(whole + (s + s * series) * 2);
}

// The square root of it.
inline f32 RootOfMinusLog(u32 draw) { return __builtin_sqrtf(MinusLog(draw)); }

// cos(draw * 0.00019175345 - pi): 1 - 2 sin^2 of the half angle, which lies between -pi/2 and pi/2. Counted from the
// middle, draws are small where the cosine changes least with a rounded angle.
inline f32 TurnCosine(u32 draw)
{
    constexpr f64 kHalfStep = 0.00019175345 / 2;
    constexpr f64 kHalfPi = 3.14159265358979323846 / 2;
    const f32 half = f32(i32(draw) - 16384) * f32(kHalfStep) + f32(16384 * kHalfStep - kHalfPi);
    const f32 h2 = half * half;
    const f32 inner = f32(8.333242101e-3) + h2 * (f32(-1.982273483e-4) + h2 * f32(2.634741321e-6));
    const f32 sine = half + half * h2 * (f32(-0.1666666597) + h2 * inner);
    return 1 - sine * sine * 2;
}

}  // namespace
}  // namespace zlv
