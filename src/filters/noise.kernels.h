// Kernels of the noise adders.
//
// A sample plus noise is truncated to a byte, so of the noise only the whole level below it counts, unless it lies so
// near to a level that rounding decides. The kernels evaluate noise in single precision, whose error has a bound, and
// leave what is nearer than the bound to a level to the formula in doubles.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// Values of noise that are made at once, at most.
inline constexpr size_t kNoiseBlock = 256;

// Stands where a level is in doubt.
inline constexpr i16 kDoubtfulLevel = -32768;

struct NoiseRun {
    // Value i comes from the draw at state * multipliers[i] + increments[i], and the one after it if it takes two.
    u32 state;
    const u32* multipliers;
    const u32* increments;
    size_t count;
    f32 scale;  // of the curve; with any draw the value stays within an i32
    f32 shift;
    f32 bound;  // the distance to a level from which on rounding cannot decide; below 1/2
};

struct NoiseKernels {
    // Write count levels, -256 to 256 or kDoubtfulLevel, and return how many are in doubt.
    u32 (*gaussian)(const NoiseRun& run, i16* levels);
    u32 (*negativeExponential)(const NoiseRun& run, i16* levels);
    u32 (*rayleigh)(const NoiseRun& run, i16* levels);
    u32 (*uniform)(const NoiseRun& run, i16* levels);

    // samples[i] + levels[i], from 0 to 255.
    void (*addLevels)(u8* samples, const i16* levels, size_t count);

    // Level i goes to `times` samples that follow each other.
    void (*spreadLevels)(const i16* levels, i16* spread, size_t count, size_t times);
};

ZLV_DECLARE_KERNELS(NoiseKernels, kNoiseKernels);

}  // namespace zlv
