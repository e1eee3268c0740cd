// How the bilateral filter's averages in single precision may differ from those in double precision.
#pragma once

#include "platform/types.h"

#include <bit>

namespace zlv {

// Weights below it are 0 in single precision: no product of two becomes subnormal, which is slow.
inline constexpr f64 kSmallestFastWeight = 0x1p-62;

inline f32 FastWeight(f64 weight) { return weight < kSmallestFastWeight ? 0.0f : f32(weight); }

// To 16 binary digits: the lowest byte is 0.
inline f32 ShortWeight(f64 weight)
{
    return std::bit_cast<f32>((std::bit_cast<u32>(FastWeight(weight)) + 0x80) & ~0xFFu);
}

// How far an average in single precision, half a unit added, may be off. With u = 2^-24, weights normalised to 1 and 20
// in the middle:
//   - A weight is off by the roundings of its range part to single precision (u) and to 16 digits (2^-16), by that of
//     its spatial part (u) and by that of their product (u). Weights that are wrong by a part e of themselves move
//     their mean by at most e times the mean distance of the samples from it, which is at most half of 255.
//   - A product with a sample (u), `columns` additions along a row and `rows` of rows: (rows + columns + 1) u of the
//     sum; without the product, of the sum of the weights.
//   - The division, the addition of one half, and the addition of the doubt itself on either side, after which both are
//     truncated: u each, of at most 256.
//   - What weights set to 0 would have added, and the roundings of double precision: each below 2^-52 of a weight and
//     255 a visit, in sums of weights that are at least 20.
// Errors of errors, and the rounding of this number to single precision, are covered by one hundredth more.
constexpr f64 BilateralDoubt(f64 rows, f64 columns)
{
    constexpr f64 u = 0x1p-24;
    const f64 ofWeights = 0x1p-16 + 3 * u;
    const f64 ofSums = (2 * (rows + columns) + 4) * u;
    const f64 ofRest = rows * columns * 255 * 0x1p-51;
    return 1.01 * (255 / 2.0 * ofWeights + 256 * ofSums) + ofRest;
}

}  // namespace zlv
