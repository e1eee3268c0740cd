// exp(x + low) where the result may leave the range of normal numbers; for one number.
#pragma once

#include "runtime/math/exp_core.h"
#include "runtime/math/scaling.h"

namespace zlv {
namespace {

inline f64 ExpScaled(f64 x, f64 low)
{
    // Beyond these the result is past the largest number or nearer to 0 than to the smallest.
    if (x > 709.8) return kInfinity;
    if (x < -745.2) return 0;
    const ExpReduction<f64> reduced = ReduceExp(x);
    const i64 steps = i64(reduced.steps - ToBits(kShift));
    const i64 fractionalSteps = i64(reduced.steps & (kExpSteps - 1));
    const ExpSum<f64> sum = SumExp(reduced.steps, u64(0), reduced.r + low);
    return ScaleSum(sum.base, sum.rest, (steps - fractionalSteps) / i64(kExpSteps));
}

}  // namespace
}  // namespace zlv
