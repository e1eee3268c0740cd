// Differences of bytes: plain loops, which the compiler turns into vectors.
#include "morphology/gray_compositions.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

void Subtract(const u8* a, const u8* b, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8(a[i] - b[i]);
}

void TakeOff(const u8* a, const u8* b, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8((a[i] > b[i] ? a[i] : b[i]) - b[i]);
}

}  // namespace

extern const GrayCompositionKernels kGrayCompositionKernels;
const GrayCompositionKernels kGrayCompositionKernels = {Subtract, TakeOff};

}  // namespace zlv::ZLV_TARGET
