// The kernels of the noise adders. Plain loops, which the compiler turns into vectors of the target.
#include "filters/noise.kernels.h"

#include "filters/noise_curves.h"

namespace zlv::ZLV_TARGET {

namespace {

// Adding this or more makes any sample 255, and its opposite 0.
constexpr i32 kFar = 256;

constexpr u32 kMultiplier = 214013;
constexpr u32 kIncrement = 2531011;

u32 FirstDraw(u32 state) { return (state >> 16) & 32767; }
u32 SecondDraw(u32 state) { return FirstDraw(state * kMultiplier + kIncrement); }

// The level below each noise(state), or doubt.
template <class Noise>
u32 MakeLevels(const NoiseRun& run, i16* levels, Noise noise)
{
    const u32 state = run.state;
    const u32* const multipliers = run.multipliers;
    const u32* const increments = run.increments;
    const f32 safeDistance = 0.5F - run.bound;  // from the middle between two levels
    i32 doubtful = 0;
    for (size_t i = 0; i < run.count; ++i) {
        const f32 value = noise(state * multipliers[i] + increments[i]);
        const i32 whole = i32(value);
        const f32 rest = value - f32(whole);
        const f32 offMiddle = __builtin_fabsf(__builtin_fabsf(rest) - 0.5F);
        const i32 isDoubtful = offMiddle > safeDistance;
        i32 level = whole - (rest < 0);
        level = level < -kFar ? -kFar : level;
        level = level > kFar ? kFar : level;
        levels[i] = i16(isDoubtful ? i32(kDoubtfulLevel) : level);
        doubtful += isDoubtful;
    }
    return u32(doubtful);
}

u32 Gaussian(const NoiseRun& run, i16* levels)
{
    const f32 scale = run.scale, shift = run.shift;
    return MakeLevels(run, levels, [=](u32 state) {
        return TurnCosine(SecondDraw(state)) * (RootOfMinusLog(FirstDraw(state)) * scale) + shift;
    });
}

// The squares of a radius' two parts add up to its own square, whatever the second draw says about its direction.
u32 NegativeExponential(const NoiseRun& run, i16* levels)
{
    const f32 scale = run.scale;
    return MakeLevels(run, levels, [=](u32 state) { return MinusLog(FirstDraw(state)) * scale; });
}

u32 Rayleigh(const NoiseRun& run, i16* levels)
{
    const f32 scale = run.scale;
    return MakeLevels(run, levels, [=](u32 state) { return RootOfMinusLog(FirstDraw(state)) * scale; });
}

u32 Uniform(const NoiseRun& run, i16* levels)
{
    const f32 scale = run.scale, shift = run.shift;
    return MakeLevels(run, levels, [=](u32 state) { return f32(i32(FirstDraw(state))) * scale + shift; });
}

void AddLevels(u8* __restrict samples, const i16* __restrict levels, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        i16 sum = i16(samples[i] + levels[i]);
        sum = sum < 0 ? i16(0) : sum;
        samples[i] = u8(sum > 255 ? i16(255) : sum);
    }
}

template <size_t times>
void Spread(const i16* __restrict levels, i16* __restrict spread, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        for (size_t k = 0; k < times; ++k) spread[i * times + k] = levels[i];
    }
}

void SpreadLevels(const i16* levels, i16* spread, size_t count, size_t times)
{
    if (times == 3) return Spread<3>(levels, spread, count);
    if (times == 4) return Spread<4>(levels, spread, count);
    for (size_t i = 0; i < count; ++i) {
        for (size_t k = 0; k < times; ++k) *spread++ = levels[i];
    }
}

}  // namespace

extern const NoiseKernels kNoiseKernels;
const NoiseKernels kNoiseKernels = {Gaussian, NegativeExponential, Rayleigh, Uniform, AddLevels, SpreadLevels};

}  // namespace zlv::ZLV_TARGET
