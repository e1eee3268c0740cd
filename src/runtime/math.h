// The library's own mathematical functions.
//
// Results end in bytes, so the last bit of a power can be a whole level, and C run-times differ
// there. These functions give the same bits on every build, compiler and instruction set. They stay
// within 0.51 units in the last place of the true value (tests/runtime/math measures it; 0.52 is
// the bound that its tests hold them to), so a result that a double holds comes out exact, also at
// the ends of the range: subnormal results are rounded once.
//
// All of them take every argument, infinities and NaN included, and follow the special cases of the
// C standard. Every NaN that they return is the same one. They need rounding to nearest and
// subnormal numbers switched on, as a call frame sets them; they set no errno, allocate nothing and
// keep no state.
#pragma once

#include "platform/types.h"

namespace zlv {

// e to the power x. Infinity from 709.79 up, 0 below -745.13; 1 for either zero.
// Tang's table-driven exponential (runtime/math/exp_core.h).
f64 Exp(f64 x);

// The natural logarithm. -infinity for either zero, NaN below zero, +0 for 1.
// Tang's table-driven logarithm with an exact reduction (runtime/math/log_core.h).
f64 Log(f64 x);

// base to the power exponent. 1 for Pow(x, 0) and Pow(1, y) whatever the other one is, NaN
// included. A negative base has results for integer exponents only, NaN otherwise; zero and
// infinite bases keep their sign for odd integers. The two methods above with the logarithm carried
// in two numbers (runtime/math/pow_core.h).
f64 Pow(f64 base, f64 exponent);

// Of an angle in radians, of any size: 1e300 is reduced with as many digits of pi as it takes. NaN
// for an infinite angle; Sin(-0.0) is -0.0. Angles up to 12,800 take a fast path.
// Cody and Waite's reduction, Payne and Hanek's for large angles, Tang's table
// (runtime/math/sine_core.h).
f64 Sin(f64 angle);
f64 Cos(f64 angle);

// The arc tangent, -pi/2..pi/2. Atan(-0.0) is -0.0. The same bits as Atan2(x, 1).
// Tang's table-driven arc tangent (runtime/math/atan_core.h).
f64 Atan(f64 x);

// The angle of the point (x, y), -pi..pi. Signed zeros and infinities give the angle that they are
// the limit of: Atan2(+-0.0, -0.0) is +-pi, Atan2(+-0.0, 0.0) is +-0.0.
// The same method, on a quotient carried in two numbers.
f64 Atan2(f64 y, f64 x);

// The length of the vector (x, y), without overflow or underflow on the way. Infinite when either
// is infinite, even if the other one is NaN.
// Dekker's exact squares and one Newton step (runtime/math/hypot.cpp).
f64 Hypot(f64 x, f64 y);

// The square root: correctly rounded, one instruction everywhere. (std::sqrt is a call of the C
// run-time in a build without optimisation.)
inline f64 Sqrt(f64 x) { return __builtin_sqrt(x); }

// The nearest whole number below or above; exact. From 2^52 up every double is whole, and NaN stays what it is. (A zero
// comes out positive. std::floor is a call of the C run-time on a processor without SSE4.1.)
constexpr f64 Floor(f64 x)
{
    if (!(-0x1p52 < x && x < 0x1p52)) return x;
    const f64 whole = f64(i64(x));
    return whole > x ? whole - 1 : whole;
}
constexpr f64 Ceil(f64 x) { return -Floor(-x); }

// The same functions over arrays of count numbers, bit for bit what the functions above return.
// Several numbers go side by side where the processor can; zeros, infinities, NaN and arguments off
// the fast path cost as much as a call of the function above. The output may be one of the inputs;
// otherwise they do not overlap.
void ExpArray(const f64* in, f64* out, size_t count);
void LogArray(const f64* in, f64* out, size_t count);
void SinArray(const f64* angles, f64* out, size_t count);
void CosArray(const f64* angles, f64* out, size_t count);
void PowArray(const f64* bases, const f64* exponents, f64* out, size_t count);
void PowArray(const f64* bases, f64 exponent, f64* out, size_t count);
void Atan2Array(const f64* y, const f64* x, f64* out, size_t count);

}  // namespace zlv
