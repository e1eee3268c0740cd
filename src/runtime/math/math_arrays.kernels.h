// The array forms of the mathematical functions, one table for each instruction set.
#pragma once

#include "runtime/targets.h"

namespace zlv {

struct MathArrayKernels {
    void (*exp)(const f64* in, f64* out, size_t count);
    void (*log)(const f64* in, f64* out, size_t count);
    void (*sin)(const f64* in, f64* out, size_t count);
    void (*cos)(const f64* in, f64* out, size_t count);
    void (*pow)(const f64* bases, const f64* exponents, f64* out, size_t count);
    void (*powOfOneExponent)(const f64* bases, f64 exponent, f64* out, size_t count);
    void (*atan2)(const f64* y, const f64* x, f64* out, size_t count);
};

ZLV_DECLARE_KERNELS(MathArrayKernels, kMathArrayKernels);

}  // namespace zlv
