// Kernels of the recursive Gaussian blur: lines through the filter, many side by side.
#pragma once

#include "base/gaussian_coefficients.h"
#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Lines that are filtered side by side. Sample i of line l of a group stands at lines[i * step + l].
inline constexpr size_t kLineGroup = 32;

// Columns that are taken out of the image together. Every row is another page: in narrower blocks the processor walks
// its page tables more often (bench: 64 columns cost a fifth more).
inline constexpr size_t kColumnBlock = 128;

struct GaussianLineKernels {
    // Filters a group of lines in place. `work` has room for length * kLineGroup numbers.
    // The first pass leaves the results truncated to integers, of which it keeps 16 bits. The second takes them with
    // their sign, and leaves its results between 0 and top, truncated.
    void (*firstPass32)(const RecursiveGaussianCoefficients<f32>& filter, u16* lines, size_t step, size_t length,
                        f32* work);
    void (*firstPass64)(const RecursiveGaussianCoefficients<f64>& filter, u16* lines, size_t step, size_t length,
                        f64* work);
    void (*secondPass32)(const RecursiveGaussianCoefficients<f32>& filter, u16* lines, size_t step, size_t length,
                         f32* work, u32 top);
    void (*secondPass64)(const RecursiveGaussianCoefficients<f64>& filter, u16* lines, size_t step, size_t length,
                         f64* work, u32 top);

    // to[x * toStep + y] = from[y * fromStep + x].
    void (*transpose)(const u16* from, size_t fromStep, u16* to, size_t toStep, size_t rows, size_t columns);

    void (*widen)(const u8* from, u16* to, size_t count);
    // to[y * toStep + x] = from[y * fromStep + x], of values up to 255.
    void (*narrow)(const u16* from, size_t fromStep, u8* to, size_t toStep, size_t rows, size_t columns);
};

ZLV_DECLARE_KERNELS(GaussianLineKernels, kGaussianLineKernels);

}  // namespace zlv
