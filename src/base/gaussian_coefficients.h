// What the two engines of the Gaussian blur multiply samples with.
#pragma once

#include "runtime/array.h"

namespace zlv {

// The recursive filter: y[i] = sum of n[j] * x[i - j] - sum of d[j] * y[i - j] from the start of a line, and the same
// with m and d from its end. A boundary is the steady output for a unit input, times d[j]: what the samples before a
// line would have contributed. Real is the type that the filter computes in.
template <class Real>
struct RecursiveGaussianCoefficients {
    Real n[5];
    Real d[5];
    Real m[5];
    Real forwardBoundary[5];
    Real backwardBoundary[5];
};

template <class Real>
RecursiveGaussianCoefficients<Real> MakeRecursiveGaussian(f32 sigma);

extern template RecursiveGaussianCoefficients<f32> MakeRecursiveGaussian(f32);
extern template RecursiveGaussianCoefficients<f64> MakeRecursiveGaussian(f32);

// The direct kernel of 2 * radius + 1 entries, which add up to 1 but for rounding.
class DirectGaussian {
public:
    // More entries than this take longer than anybody waits.
    static constexpr f64 kLargestRadius = 1 << 23;

    // Whether the kernel would have at most kLargestRadius entries on a side.
    static bool IsPossible(f64 sigma);

    [[nodiscard]] bool Make(f64 sigma);

    size_t Radius() const { return radius_; }
    const f32* Entries() const { return entries_.GetData(); }

private:
    size_t radius_ = 0;
    MVBuffer<f32> entries_;
};

}  // namespace zlv
