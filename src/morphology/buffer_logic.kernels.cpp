// Logic on buffers of bytes: plain loops, which the compiler turns into vectors.
#include "morphology/buffer_logic.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

struct And {
    static u8 Of(u8 a, u8 b) { return a & b; }
};

struct Or {
    static u8 Of(u8 a, u8 b) { return a | b; }
};

struct Xor {
    static u8 Of(u8 a, u8 b) { return a ^ b; }
};

struct AndNot {
    static u8 Of(u8 a, u8 b) { return u8(a & ~b); }
};

void Invert(const u8* bytes, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8(~bytes[i]);
}

template <class Op>
void OfTwo(const u8* a, const u8* b, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = Op::Of(a[i], b[i]);
}

}  // namespace

extern const BufferLogicKernels kBufferLogicKernels;
const BufferLogicKernels kBufferLogicKernels = {Invert, OfTwo<And>, OfTwo<Or>, OfTwo<Xor>, OfTwo<AndNot>};

}  // namespace zlv::ZLV_TARGET
