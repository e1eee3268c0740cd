// Standard deviations in integers: which sums of squares a comparison of rounded deviations comes to.
//
// A window of `samples` samples has the mean m = S / area, and the deviation s = sqrt(T / area) with T the sum of
// (sample - m)^2: `area` is another number than `samples` where the side is even. Without rounding,
//     area^2 * T = area^2 * Q - (2 * area - samples) * S^2
// where Q is the sum of the squares. This integer, the spread, tells how s compares with a limit t: s < t when it is
// below t^2 * area^3. Where `samples` is `area` both sides have a common factor of `area`, and the spread goes without.
//
// What decides is the deviation in double precision, added up sample by sample; so the spread is sure only at some
// distance from the limit. With u = 2^-53:
//   - the rounded mean is off by u * m at most. For samples == area that adds area * (u * m)^2 to T, which is at least
//     1 / area unless it is 0: a part of 2^16 * area^2 * u^2, below area * u. Otherwise T is at least
//     m^2 * (samples - area)^2 / samples, and 2 * u * m^2 * (samples - area) is added: a part of 2 * u * samples at
//     most;
//   - each (sample - m)^2 has three roundings, the sum of `samples` of them one less than that many, the quotient one,
//     the root one, which counts twice for a square: less than samples + 8 parts of u;
//   - the limit's square times powers of the area has six roundings at most, and the bounds on either side one more.
// Three times the samples and 64 parts of u cover all that and the products of those errors.
//
// A spread of 0 means that all samples are m exactly: then s is exactly 0. Any other makes it larger than 0.
#pragma once

#include "platform/types.h"

namespace zlv {

// How windows of a side are measured. Sides up to 65535.
struct SpreadOf {
    u64 area;     // the square of the side as it is given
    u64 samples;  // the square of the side that the window has, which is odd

    explicit SpreadOf(u32 side) : area(u64(side) * side), samples(u64(side | 1) * (side | 1)) {}

    bool HasCommonFactor() const { return samples == area; }
    // The spread is squareFactor * Q - sumFactor * S^2.
    u64 SquareFactor() const { return HasCommonFactor() ? area : area * area; }
    i64 SumFactor() const { return HasCommonFactor() ? 1 : 2 * i64(area) - i64(samples); }
    // The spread of deviations t is t^2 times this.
    f64 OfOne() const
    {
        const f64 square = f64(area) * f64(area);
        return HasCommonFactor() ? square : square * f64(area);
    }
    // The part of a spread by which it may be on the wrong side.
    f64 Doubt() const { return f64(3 * samples + 64) * 0x1p-53; }
};

// Spreads from one to another.
template <class Number>
struct SpreadRange {
    Number least, largest;
};

template <class Number>
struct SpreadLimits {
    SpreadRange<Number> sure, possible;
};

// The spreads of windows with !(s < low) and !(s > high), surely and perhaps. `top` is above all spreads. A limit that
// is not a number limits nothing.
template <class Number>
SpreadLimits<Number> FindSpreadLimits(const SpreadOf& spread, f64 low, f64 high, Number top)
{
    const auto limited = [=](f64 value) { return value < f64(top) ? Number(value) : top; };
    const auto nearby = [&](f64 limit, f64 sign) {
        return limit * limit * spread.OfOne() * (1 + sign * spread.Doubt());
    };

    SpreadLimits<Number> limits = {{0, top}, {0, top}};
    if (low > 0) {
        // The first integer not below; 0 is below any limit that is not 0.
        const Number below = limited(nearby(low, -1));
        limits.possible.least = below > 0 ? below : 1;
        const Number above = limited(nearby(low, 1));
        limits.sure.least = above < top ? above + 1 : top;
    }
    if (high < 0) {
        limits.sure.largest = limits.possible.largest = -1;
    } else if (high == 0) {
        limits.sure.largest = limits.possible.largest = 0;
    } else if (high > 0) {
        const Number below = limited(nearby(high, -1));
        limits.sure.largest = below > 0 ? below - 1 : 0;
        const Number above = limited(nearby(high, 1));
        limits.possible.largest = above < top ? above + 1 : top;
    }
    return limits;
}

}  // namespace zlv
