// Sums in single precision that decide most samples.
//
// Results are sums in double precision, truncated. A sum in single precision that is off by no more than a known
// tolerance truncates to the same integer, unless it is as near as that to an integer. Then it is made again as it
// should be, for a unit of neighbouring samples at once.
//
// For kernel files alone.
#pragma once

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {
namespace {

using Floats = RealsOf<f32>;
using Doubles = RealsOf<f64>;
using Ints = Lanes<f32>::Ints;
constexpr size_t kLanes = Lanes<f32>::kCount;

constexpr size_t kUnitVectors = kLanes == 16 ? 2 : 4;
constexpr size_t kUnit = kUnitVectors * kLanes;

// Whether a comparison holds in any lane.
bool IsAnySet(Ints mask)
{
    using Flags __attribute__((vector_size(kLanes))) = i8;
    const Flags flags = __builtin_convertvector(mask, Flags);
    u64 words[2] = {};
    __builtin_memcpy(words, &flags, sizeof(flags));
    return (words[0] | words[1]) != 0;
}

Floats Broadcast(f32 value) { return value - Floats{}; }
[[maybe_unused]] Doubles Broadcast(f64 value) { return value - Doubles{}; }

// Keeps sums within 0 to 255.
template <class Vector>
Vector LimitToSamples(Vector sum)
{
    const Vector positive = sum > 0 ? sum : Vector{};
    return positive < 255 ? positive : 255 - Vector{};
}

Floats Min(Floats a, Floats b) { return a < b ? a : b; }

// Truncates sums to samples.
template <size_t kVectors>
void StoreSamples(const Floats (&sums)[kVectors], u8* out)
{
    i32 samples[kVectors * kLanes];
    for (size_t v = 0; v < kVectors; ++v) {
        Store(samples + v * kLanes, __builtin_convertvector(LimitToSamples(sums[v]), Ints));
    }
    for (size_t i = 0; i < kVectors * kLanes; ++i) out[i] = u8(samples[i]);
}

// The squared distance to the nearest integer.
Floats SquaredFraction(Floats sum)
{
    const Floats shift = Broadcast(0x1.8p23f);  // sums are far smaller: what is left of the addition is an integer
    const Floats fraction = sum - ((sum + shift) - shift);
    return fraction * fraction;
}

// The least squared distance of a unit's sums.
Floats LeastFraction(const Floats* sums)
{
    Floats least = SquaredFraction(sums[0]);
    for (size_t v = 1; v < kUnitVectors; ++v) least = Min(SquaredFraction(sums[v]), least);
    return least;
}

}  // namespace
}  // namespace zlv::ZLV_TARGET
