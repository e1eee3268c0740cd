// The distributions of noise: how draws of the random generator become values that are added to samples.
//
// The formulas are in doubles and their factors are as written, with no more digits. What they give decides; the
// kernels' curves, in single precision, only spare it where they are sure of the level below a value.
#pragma once

#include "filters/noise.kernels.h"

namespace zlv {

// How far the curves of filters/noise_curves.h are from the formulas in doubles, at most. The tests try every draw.
inline constexpr f64 kMinusLogError = 2e-6;
inline constexpr f64 kRootOfMinusLogError = 1e-6;
inline constexpr f64 kTurnCosineError = 1e-6;

struct NoiseDistribution {
    using Levels = u32 (*NoiseKernels::*)(const NoiseRun& run, i16* levels);
    using Values = void (*)(const NoiseDistribution& noise, const u32* first, const u32* second, f64* values,
                            size_t count);

    bool isPossible;    // the parameters are numbers with which no formula leaves its range
    u32 drawsPerValue;  // 1 or 2
    Values values;      // of draws, by the formula; at most kNoiseBlock of them
    f64 scale = 0;      // of the formula
    f64 shift = 0;      // the formula's mean

    // The same with curves, unless levels is null: then the parameters are too large for single precision.
    Levels levels = nullptr;
    f32 curveScale = 0;
    f32 curveShift = 0;
    f32 bound = 0;
};

// The variance is 0 or more, and at most 1e307; the mean is finite. Otherwise the distribution is not possible.
NoiseDistribution GaussianNoise(f64 variance, f64 mean);
NoiseDistribution NegativeExponentialNoise(f64 variance);
NoiseDistribution RayleighNoise(f64 variance);
NoiseDistribution UniformNoise(f64 variance, f64 mean);

}  // namespace zlv
