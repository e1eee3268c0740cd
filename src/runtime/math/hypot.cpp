// The length of a vector, from the exact sum of the squares.
//
// Method: squares and the residual of the square root in two parts (T. J. Dekker, "A floating-point
// technique for extending the available precision", Numer. Math. 18 (1971)), then one Newton
// correction. Before the last rounding the sum is within 2^-70 of the true value, so a length that
// a double holds comes out exact.
#include "runtime/math.h"
#include "runtime/math/scaling.h"

namespace zlv {
namespace {

struct Length {
    f64 root, correction;
};

// sqrt(a^2 + b^2) for a >= b in the middle of the range.
Length LengthOf(f64 a, f64 b)
{
    const f64 aHigh = Trim(a);
    const f64 bHigh = Trim(b);
    const f64 aSquare = aHigh * aHigh;
    const f64 bSquare = bHigh * bHigh;
    const f64 squares = aSquare + bSquare;
    const f64 error = (aSquare - squares) + bSquare;
    const f64 low = error + ((a - aHigh) * (a + aHigh) + (b - bHigh) * (b + bHigh));
    const f64 sum = squares + low;
    const f64 sumLow = (squares - sum) + low;

    const f64 root = __builtin_sqrt(sum);
    const f64 rootHigh = Trim(root);
    const f64 rootLow = root - rootHigh;
    const f64 residual = ((sum - rootHigh * rootHigh) - 2 * rootHigh * rootLow) - rootLow * rootLow;
    return {root, (residual + sumLow) / (2 * root)};
}

}  // namespace

f64 Hypot(f64 x, f64 y)
{
    const f64 xSize = Magnitude(x);
    const f64 ySize = Magnitude(y);
    if (xSize == kInfinity || ySize == kInfinity) return kInfinity;
    if (IsNaN(x) || IsNaN(y)) return kNaN;
    const f64 a = xSize > ySize ? xSize : ySize;
    const f64 b = xSize > ySize ? ySize : xSize;
    if (b <= a * 0x1p-54) return a;

    if (a > 0x1p500) {
        const Length length = LengthOf(a * 0x1p-600, b * 0x1p-600);
        return (length.root + length.correction) * 0x1p600;
    }
    if (b < 0x1p-400) {
        const Length length = LengthOf(a * 0x1p600, b * 0x1p600);
        const f64 sum = length.root + length.correction;
        if (sum >= 0x1p-422) return sum * 0x1p-600;
        return RoundToSubnormal(length.root * 0x1p474, length.correction * 0x1p474);
    }
    const Length length = LengthOf(a, b);
    return length.root + length.correction;
}

}  // namespace zlv
