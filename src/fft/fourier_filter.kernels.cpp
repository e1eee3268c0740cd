// Products of complex values and real factors, at the speed of memory.
#include "fft/fourier_filter.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

void Multiply(f64* __restrict values, const f64* __restrict factors, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        values[2 * i] *= factors[i];
        values[2 * i + 1] *= factors[i];
    }
}

}  // namespace

extern const FourierFilterKernels kFourierFilterKernels;
const FourierFilterKernels kFourierFilterKernels = {Multiply};

}  // namespace zlv::ZLV_TARGET
