#include "filters/noise_distributions.h"

#include "runtime/math.h"
#include "runtime/random.h"

namespace zlv {

namespace {

constexpr f64 kPi = 3.14159265358979323846;
constexpr f64 kLargestVariance = 1e307;
constexpr f64 kDrawsAndATenth = 32767.1;  // more than the largest draw: the argument of the logarithm stays positive
constexpr f64 kTurnPerDraw = 0.00019175345;
constexpr f64 kRayleighFactor = 2.3299;
constexpr f64 kUniformStep = 0.0001057192;
constexpr f64 kRootOfThree = 1.7320508;

// The logarithm is linear next to 1 and at its largest for the largest draw: 12.7, whose root is 3.57.
constexpr f64 kLargestMinusLog = 12.7;
constexpr f64 kLargestRoot = 3.57;

// Four roundings of single precision: those of the parameters, of a product or two and of a sum.
constexpr f64 kRoundings = 0x1p-22;
// For the roundings of the doubles, and for those of the sum of a sample and a value: below 2^-43 together. What is
// left is far below the width of a level and covers the kernels' own comparison.
constexpr f64 kSlack = 0x1p-20;
// A wider bound leaves most values in doubt.
constexpr f64 kWidestBound = 0.125;

bool IsPossible(f64 variance, f64 mean) { return variance >= 0 && variance <= kLargestVariance && mean - mean == 0; }

// ln(1 - draw / 32767.1)
void Logarithms(const u32* draws, f64* logarithms, size_t count)
{
    for (size_t i = 0; i < count; ++i) logarithms[i] = 1 - draws[i] / kDrawsAndATenth;
    LogArray(logarithms, logarithms, count);
}

void Roots(const u32* draws, f64 scale, f64* roots, size_t count)
{
    Logarithms(draws, roots, count);
    for (size_t i = 0; i < count; ++i) roots[i] = Sqrt(roots[i] * scale);
}

void Angles(const u32* draws, f64* angles, size_t count)
{
    for (size_t i = 0; i < count; ++i) angles[i] = draws[i] * kTurnPerDraw - kPi;
}

// The Box-Muller form, its cosine half.
void GaussianValues(const NoiseDistribution& noise, const u32* first, const u32* second, f64* values, size_t count)
{
    f64 cosines[kNoiseBlock] = {};
    Angles(second, cosines, count);
    CosArray(cosines, cosines, count);
    Roots(first, noise.scale, values, count);
    for (size_t i = 0; i < count; ++i) values[i] = cosines[i] * values[i] + noise.shift;
}

void NegativeExponentialValues(const NoiseDistribution& noise, const u32* first, const u32* second, f64* values,
                               size_t count)
{
    f64 angles[kNoiseBlock] = {}, cosines[kNoiseBlock];
    Angles(second, angles, count);
    CosArray(angles, cosines, count);
    SinArray(angles, angles, count);
    Roots(first, noise.scale, values, count);
    for (size_t i = 0; i < count; ++i) {
        const f64 x = values[i] * cosines[i], y = values[i] * angles[i];
        values[i] = x * x + y * y;
    }
}

void RayleighValues(const NoiseDistribution& noise, const u32* first, const u32*, f64* values, size_t count)
{
    Roots(first, noise.scale, values, count);
}

void UniformValues(const NoiseDistribution& noise, const u32* first, const u32*, f64* values, size_t count)
{
    const f64 deviation = noise.scale, step = deviation * kUniformStep, reach = deviation * kRootOfThree;
    for (size_t i = 0; i < count; ++i) values[i] = first[i] * step + noise.shift - reach;
}

// Levels come from a curve, scaled and shifted, that is within `error` of the formula before that. `largest` is the
// curve's largest value.
void UseCurve(NoiseDistribution& noise, NoiseDistribution::Levels levels, f64 scale, f64 shift, f64 error, f64 largest)
{
    const f64 size = largest * scale + (shift < 0 ? -shift : shift);
    const f64 bound = error * scale + kRoundings * size + kSlack;
    if (!(bound < kWidestBound)) return;
    noise.levels = levels;
    noise.curveScale = f32(scale);
    noise.curveShift = f32(shift);
    noise.bound = f32(bound);
}

}  // namespace

NoiseDistribution GaussianNoise(f64 variance, f64 mean)
{
    NoiseDistribution noise = {IsPossible(variance, mean), 2, GaussianValues, variance * -2.0, mean};
    // A product of a cosine and a root: each carries the other's error.
    if (noise.isPossible) {
        UseCurve(noise, &NoiseKernels::gaussian, Sqrt(variance * 2), mean,
                 kRootOfMinusLogError + kLargestRoot * kTurnCosineError, kLargestRoot);
    }
    return noise;
}

NoiseDistribution NegativeExponentialNoise(f64 variance)
{
    NoiseDistribution noise = {IsPossible(variance, 0), 2, NegativeExponentialValues};
    if (noise.isPossible) {
        const f64 deviation = Sqrt(variance * 0.5);
        noise.scale = deviation * -2.0;
        UseCurve(noise, &NoiseKernels::negativeExponential, deviation * 2, 0, kMinusLogError, kLargestMinusLog);
    }
    return noise;
}

NoiseDistribution RayleighNoise(f64 variance)
{
    NoiseDistribution noise = {IsPossible(variance, 0), 1, RayleighValues, variance * kRayleighFactor * -2.0};
    if (noise.isPossible) {
        UseCurve(noise, &NoiseKernels::rayleigh, Sqrt(-noise.scale), 0, kRootOfMinusLogError, kLargestRoot);
    }
    return noise;
}

NoiseDistribution UniformNoise(f64 variance, f64 mean)
{
    NoiseDistribution noise = {IsPossible(variance, mean), 1, UniformValues};
    if (noise.isPossible) {
        const f64 deviation = Sqrt(variance);
        noise.scale = deviation;
        noise.shift = mean;
        UseCurve(noise, &NoiseKernels::uniform, deviation * kUniformStep, mean - deviation * kRootOfThree, 0,
                 kLargestDraw);
    }
    return noise;
}

}  // namespace zlv
