// The same number added again and again, each sum rounded to a double, without the loop.
#pragma once

#include "platform/types.h"

#include <bit>

namespace zlv {

// What `times` runs of x += step leave in x, to the last bit. The cost grows with the powers of two that x passes and
// not with `times`. Infinities and NaN stay what they are.
f64 AddRepeatedly(f64 x, f64 step, u64 times);

// The power of two that x lies above, and its sign: doubles of the same binade have the same spacing.
inline u64 BinadeOf(f64 x) { return std::bit_cast<u64>(x) >> 52; }

// Whether x and `times` sums from it on are in one binade and the same distance apart, to the last bit. No for some
// that are.
bool AreEvenSums(f64 x, f64 step, u64 times);

}  // namespace zlv
