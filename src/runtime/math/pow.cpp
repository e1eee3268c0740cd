#include "runtime/math.h"
#include "runtime/math/exp_scaled.h"
#include "runtime/math/pow_core.h"

namespace zlv {
namespace {

enum class Parity { NotAnInteger, Odd, Even };

Parity ParityOf(f64 finite)
{
    const f64 size = Magnitude(finite);
    if (size >= 0x1p53) return Parity::Even;
    const i64 whole = i64(size);
    if (f64(whole) != size) return Parity::NotAnInteger;
    return whole & 1 ? Parity::Odd : Parity::Even;
}

// Of a positive finite base, with results of any size.
f64 PositivePow(f64 x, f64 y)
{
    const bool isNormal = x >= 0x1p-1022;
    const f64 normal = isNormal ? x : x * 0x1p54;
    const LogReduction<f64> reduced = ReduceLog<f64>(ToBits(normal), isNormal ? 0 : -54);
    const TwoParts<f64> power = TimesExponent(y, FinishLongLog(reduced));
    return ExpScaled(power.high, power.low);
}

f64 PowSpecial(f64 x, f64 y)
{
    if (y == 0 || x == 1) return 1;
    if (IsNaN(x) || IsNaN(y)) return kNaN;
    const f64 size = Magnitude(x);
    if (Magnitude(y) == kInfinity) {
        if (size == 1) return 1;
        return (size > 1) == (y > 0) ? kInfinity : 0;
    }
    const bool isNegative = ToBits(x) & kSignBit;
    const Parity parity = ParityOf(y);
    const f64 sign = isNegative && parity == Parity::Odd ? -1 : 1;
    if (x == 0) return y > 0 ? sign * 0.0 : sign * kInfinity;
    if (size == kInfinity) return y > 0 ? sign * kInfinity : sign * 0.0;
    if (isNegative && parity == Parity::NotAnInteger) return kNaN;
    return sign * PositivePow(size, y);
}

}  // namespace

f64 Pow(f64 base, f64 exponent)
{
    bool ordinary;
    const f64 result = PowCore(base, exponent, ordinary);
    if (ordinary) [[likely]]
        return result;
    return PowSpecial(base, exponent);
}

}  // namespace zlv
