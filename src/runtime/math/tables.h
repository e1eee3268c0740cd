// The constant tables of the mathematical functions, written by make_tables.py.
#pragma once

#include "platform/types.h"

namespace zlv {

#include "runtime/math/constants_table.inc"

inline constexpr u64 kExpSteps = 256;   // of a factor of two
inline constexpr u64 kLogSteps = 512;   // intervals of the significand
inline constexpr u64 kSineSteps = 256;  // of a full turn
inline constexpr u64 kArcSteps = 128;   // of the ratios 0..1

// What an entry holds is said in line two of each .inc file.
extern const f64 kExpTable[2 * kExpSteps];
extern const f64 kLogTable[4 * kLogSteps];
extern const f64 kSineTable[2 * kSineSteps];
extern const f64 kAtanTable[4 * kArcSteps];
extern const u64 kTwoOverPi[22];

}  // namespace zlv
