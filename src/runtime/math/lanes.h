// What the functions are written in: one number, or a vector of them, with the same text for both.
//
// The cores (*_core.h) are templates over the lane type. Every operation in them is one IEEE
// operation a lane, so scalar and vector forms give the same bits because they are the same source.
// Everything in these headers stands in an unnamed namespace: kernel files compile it for other
// instruction sets, and no copy of theirs may reach the linker.
#pragma once

#include "platform/types.h"

namespace zlv {
namespace {

// Lane<V> is what differs between one number and a vector of them. Vectors specialise it in
// math_arrays.kernels.cpp.
template <class V>
struct Lane;

template <>
struct Lane<f64> {
    using Bits = u64;
    using Mask = bool;
    static constexpr size_t kCount = 1;

    static f64 Load(const f64* from) { return *from; }
    static void Store(f64* to, f64 value) { *to = value; }
    static f64 LookUp(const f64* table, u64 index) { return table[index]; }
    static f64 Select(bool mask, f64 yes, f64 no) { return mask ? yes : no; }
    static u64 SelectBits(bool mask, u64 yes) { return mask ? yes : 0; }
    static bool Both(bool first, bool second) { return first && second; }
    static bool All(bool mask) { return mask; }
};

template <class V>
using BitsOf = typename Lane<V>::Bits;

template <class V>
using MaskOf = typename Lane<V>::Mask;

constexpr u64 kSignBit = u64(1) << 63;
// Keeps 26 bits: the product of two trimmed numbers is exact.
constexpr u64 kTrimMask = ~u64(0) << 27;

// Added to a number below 2^51, its sum has the nearest integer in its low bits: rounding without a
// rounding instruction, which the oldest of our processors lack.
constexpr f64 kShift = 0x1.8p52;

template <class V>
BitsOf<V> ToBits(V x)
{
    return __builtin_bit_cast(BitsOf<V>, x);
}

template <class V>
V FromBits(BitsOf<V> bits)
{
    return __builtin_bit_cast(V, bits);
}

template <class V>
V Trim(V x)
{
    return FromBits<V>(ToBits(x) & kTrimMask);
}

template <class V>
V Magnitude(V x)
{
    return FromBits<V>(ToBits(x) & ~kSignBit);
}

}  // namespace
}  // namespace zlv
