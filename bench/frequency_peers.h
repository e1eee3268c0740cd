// FFTW and OpenCV beside the frequency functions: comparable work, on one thread. Where they are not installed they
// have no work. The grids stand in the output.
#pragma once

#include "bench_row.h"

namespace zlvbench {

// A complex transform in place by a measured plan; the plan is made before the first run. `prepare` makes the grid.
Peer FftwTransform(const Shape& shape, bool isForward, const Work& prepare);

// Computes a Gaussian mask and multiplies the grid by it.
Peer CvGaussianMask(const Shape& shape, f64 sigma, const Work& prepare);

// Takes the real parts out and spreads them from 0 to 255, into the picture behind `gridBytes`.
Peer CvNormalizeRealParts(const Shape& shape, size_t gridBytes, const Work& prepare);

}  // namespace zlvbench
