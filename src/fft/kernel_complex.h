// Vectors of complex values for the kernels of this folder. For kernel files alone.
#pragma once

#include "base/kernel_vectors.h"

#include <utility>

namespace zlv {
namespace {

using Reals = RealsOf<f64>;
constexpr size_t kLanes = Lanes<f64>::kCount;

// Not 0 + value, which would lose the sign of a negative zero.
Reals InEachLane(f64 value) { return value - Reals{}; }

// Numbers whose index has the bit `distance` go from a to b and from b to a where the other one's index lacks it: a
// step of a transposition (Eklundh 1972), and the inverse of itself.
template <size_t distance, size_t... k>
void ExchangeAt(Reals& a, Reals& b, std::index_sequence<k...>)
{
    const Reals lower = __builtin_shufflevector(a, b, int(k & distance ? kLanes + k - distance : k)...);
    const Reals upper = __builtin_shufflevector(a, b, int(k & distance ? kLanes + k : k + distance)...);
    a = lower;
    b = upper;
}

template <size_t distance>
void Exchange(Reals& a, Reals& b)
{
    ExchangeAt<distance>(a, b, std::make_index_sequence<kLanes>());
}

}  // namespace
}  // namespace zlv
