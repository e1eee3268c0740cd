// Kernels of the logic on buffers of bytes. Each writes exactly `count` bytes; the output may be an input.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct BufferLogicKernels {
    using OfTwo = void (*)(const u8* a, const u8* b, size_t count, u8* out);

    void (*invert)(const u8* bytes, size_t count, u8* out);
    OfTwo intersect;  // a & b
    OfTwo unite;      // a | b
    OfTwo exclude;    // a ^ b
    OfTwo remove;     // a & ~b
};

ZLV_DECLARE_KERNELS(BufferLogicKernels, kBufferLogicKernels);

}  // namespace zlv
