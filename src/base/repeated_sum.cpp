// In a binade, from a power of two to the next, doubles lie on a grid of constant spacing. On it a rounded sum moves by
// the same number of grid steps every time; only where the step ends halfway between two grid points does it matter
// which one x is on, and after one such sum it is an even one for good. So three sums in one binade tell how far all
// the following ones go, until its end is near.
#include "base/repeated_sum.h"

#include <algorithm>
#include <limits>

namespace zlv {

namespace {

constexpr u64 kFraction = (u64(1) << 52) - 1;  // also the last grid point of a binade
constexpr u64 kMeasuringSums = 3;

u64 BitsOf(f64 x) { return std::bit_cast<u64>(x); }

// How many moves by `move` grid points, a difference of bits, keep off both ends, where sums are rounded to another
// grid.
u64 MovesLeft(f64 x, i64 move)
{
    const u64 fraction = BitsOf(x) & kFraction;
    if (move == 0) return std::numeric_limits<u64>::max();
    if (move > 0) return (kFraction - fraction) / u64(move);
    return fraction > 0 ? (fraction - 1) / u64(-move) : 0;
}

}  // namespace

bool AreEvenSums(f64 x, f64 step, u64 times)
{
    const f64 first = x + step;
    const f64 second = first + step;
    if (BinadeOf(first) != BinadeOf(x) || BinadeOf(second) != BinadeOf(x)) return false;
    const i64 move = i64(BitsOf(first) - BitsOf(x));
    if (i64(BitsOf(second) - BitsOf(first)) != move) return false;
    return times <= 2 || times - 2 <= MovesLeft(second, move);
}

f64 AddRepeatedly(f64 x, f64 step, u64 times)
{
    while (times > kMeasuringSums) {
        const f64 first = x + step;
        const f64 second = first + step;
        x = second + step;
        times -= kMeasuringSums;
        if (BinadeOf(first) != BinadeOf(x) || BinadeOf(second) != BinadeOf(x)) continue;
        const i64 move = i64(BitsOf(x) - BitsOf(second));
        const u64 moves = std::min(MovesLeft(x, move), times);
        x = std::bit_cast<f64>(BitsOf(x) + moves * u64(move));
        times -= moves;
    }
    for (; times > 0; --times) x += step;
    return x;
}

}  // namespace zlv
