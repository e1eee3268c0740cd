// Logic on buffers of bytes, whatever they hold.
//
// A null pointer counts as memory that is missing: code 1, not the code for bad arguments.
#include "morphology/buffer_logic.kernels.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

u32 Combine(const u8* a, const u8* b, u8* out, u32 size, BufferLogicKernels::OfTwo BufferLogicKernels::*operation)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!a || !b || !out) return frame.Fail(Error::OutOfMemory);
        (Kernels<BufferLogicKernels>().*operation)(a, b, size, out);
        return 1;
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_InvertBuffer(u8* buffer, u32 size)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!buffer) return frame.Fail(Error::OutOfMemory);
        Kernels<BufferLogicKernels>().invert(buffer, size, buffer);
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_IntersectBuffers(const u8* a, const u8* b, u8* out, u32 size)
{
    return Combine(a, b, out, size, &BufferLogicKernels::intersect);
}

ZLV_EXPORT u32 ZLV40_UnionBuffers(const u8* a, const u8* b, u8* out, u32 size)
{
    return Combine(a, b, out, size, &BufferLogicKernels::unite);
}

ZLV_EXPORT u32 ZLV40_XORBuffers(const u8* a, const u8* b, u8* out, u32 size)
{
    return Combine(a, b, out, size, &BufferLogicKernels::exclude);
}
