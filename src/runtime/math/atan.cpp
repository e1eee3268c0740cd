#include "runtime/math.h"
#include "runtime/math/atan_core.h"
#include "runtime/math/scaling.h"

namespace zlv {
namespace {

constexpr f64 kPi = kPiHigh + kPiLow;
constexpr f64 kHalfPi = kPi / 2;

f64 WithSignOf(f64 size, f64 sign) { return FromBits<f64>(ToBits(size) | (ToBits(sign) & kSignBit)); }

// Of finite numbers at most 2^100 times apart, the larger one very large or very small.
f64 Atan2Scaled(f64 y, f64 x)
{
    // Subnormal numbers become normal ones; the largest stay finite because the other one was out
    // of range then.
    const bool isLarge = Magnitude(x) > 0x1p500 || Magnitude(y) > 0x1p500;
    const f64 scale = isLarge ? 0x1p-600 : 0x1p600;
    return Atan2Core(y * scale, x * scale);
}

f64 Atan2Special(f64 y, f64 x)
{
    if (IsNaN(y) || IsNaN(x)) return kNaN;
    const f64 xSize = Magnitude(x);
    const f64 ySize = Magnitude(y);
    const bool isLeft = ToBits(x) & kSignBit;
    if (ySize == kInfinity) {
        if (xSize == kInfinity) return Atan2Core(WithSignOf(1, y), WithSignOf(1, x));
        return WithSignOf(kHalfPi, y);
    }
    if (ySize == 0 || xSize == kInfinity) return WithSignOf(isLeft ? kPi : 0, y);
    if (xSize == 0) return WithSignOf(kHalfPi, y);

    // When the numbers are far apart the angle is next to a multiple of pi/2: nothing of it shows,
    // except next to 0, where it is the quotient.
    const f64 large = xSize > ySize ? xSize : ySize;
    const f64 small = xSize > ySize ? ySize : xSize;
    const f64 normalSmall = small * 0x1p100;
    const bool isFar = large > 0x1p500 ? small < large * 0x1p-100 : normalSmall < large;
    if (isFar && ySize > xSize) return WithSignOf(kHalfPi, y);
    if (isFar) return WithSignOf(isLeft ? kPi : ySize / xSize, y);
    return Atan2Scaled(y, x);
}

}  // namespace

f64 Atan(f64 x)
{
    const f64 size = Magnitude(x);
    if (size < 0x1p-27) return x;
    if (size <= 1) return WithSignOf(Rounded(ArcOfQuotient(size, 1.0)), x);
    if (size < 0x1p300) [[likely]] {
        const AngleSum<f64> rest = ArcOfQuotient(1.0, size);
        const f64 high = kHalfPiHigh - rest.high;
        const f64 low = kHalfPiLow - rest.low;
        return WithSignOf(Rounded<f64>({high, low, -rest.firstRest, -rest.rest}), x);
    }
    return IsNaN(x) ? kNaN : WithSignOf(kHalfPi, x);
}

f64 Atan2(f64 y, f64 x)
{
    if (IsAtan2Ordinary(y, x)) [[likely]]
        return Atan2Core(y, x);
    return Atan2Special(y, x);
}

}  // namespace zlv
