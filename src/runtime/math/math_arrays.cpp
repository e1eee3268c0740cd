#include "runtime/math.h"
#include "runtime/math/math_arrays.kernels.h"

namespace zlv {

void ExpArray(const f64* in, f64* out, size_t count) { Kernels<MathArrayKernels>().exp(in, out, count); }
void LogArray(const f64* in, f64* out, size_t count) { Kernels<MathArrayKernels>().log(in, out, count); }
void SinArray(const f64* angles, f64* out, size_t count) { Kernels<MathArrayKernels>().sin(angles, out, count); }
void CosArray(const f64* angles, f64* out, size_t count) { Kernels<MathArrayKernels>().cos(angles, out, count); }

void PowArray(const f64* bases, const f64* exponents, f64* out, size_t count)
{
    Kernels<MathArrayKernels>().pow(bases, exponents, out, count);
}

void PowArray(const f64* bases, f64 exponent, f64* out, size_t count)
{
    Kernels<MathArrayKernels>().powOfOneExponent(bases, exponent, out, count);
}

void Atan2Array(const f64* y, const f64* x, f64* out, size_t count)
{
    Kernels<MathArrayKernels>().atan2(y, x, out, count);
}

}  // namespace zlv
