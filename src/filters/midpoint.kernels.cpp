// Averages of two bytes.
#include "filters/midpoint.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

void AverageDown(u8* __restrict into, const u8* __restrict other, size_t count)
{
    // What both have, and half of what one of them has: nothing overflows a byte.
    for (size_t i = 0; i < count; ++i) into[i] = u8((into[i] & other[i]) + u8((into[i] ^ other[i]) >> 1));
}

}  // namespace

extern const MidpointKernels kMidpointKernels;
const MidpointKernels kMidpointKernels = {AverageDown};

}  // namespace zlv::ZLV_TARGET
