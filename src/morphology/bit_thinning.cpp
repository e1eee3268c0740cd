// Thinning of 1-bit images: what an element hits is taken off, one element after the other, until nothing changes.
#include "morphology/bit_windows.h"
#include "morphology/buffer_logic.kernels.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <cstring>

using namespace zlv;

namespace {

// An image of whole rows, cleared. False when memory is out, or the rows have no bytes.
bool MakeCleared(ZLVArray<u8>& image, u64 bytes)
{
    if (bytes > INT32_MAX || !image.Resize(i32(bytes))) return false;
    std::memset(image.GetData(), 0, size_t(bytes));
    return true;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MorphoThinning1Bit(const u8* src, u32 width, u32 height, u32 rowStride, u8* dst,
                                        const u32* const* hitElements, i32 hitSize, const u32* const* missElements,
                                        i32 missSize, u32 elementCount, u32 iterations, u32 reserved)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        ZLVArray<u8> current, matches;
        const size_t size = size_t(height) * rowStride;
        if (!MakeCleared(current, size) || !MakeCleared(matches, size)) return frame.Fail(Error::OutOfMemory);
        if (BitRowBytes(width) > rowStride) return frame.Fail(Error::BadArgument);
        if (width == 0) return frame.Fail(Error::OutOfMemory);  // as the steps answer: an image of theirs is empty
        if (!src || !dst || !hitElements || !missElements) return frame.Fail(Error::BadArgument);

        const u8* image = src;
        for (u32 i = 0; i < iterations; ++i) {
            for (u32 k = 0; k < elementCount; ++k) {
                const u32 isDone = ZLV40_MorphoHitOrMiss1Bit(image, width, height, rowStride, matches.GetData(),
                                                             rowStride, hitElements[k], hitSize, hitSize,
                                                             missElements[k], missSize, missSize, reserved);
                if (!isDone) return 0;  // with the step's code
                Kernels<BufferLogicKernels>().remove(image, matches.GetData(), size, current.GetData());
                image = current.GetData();
            }
            // Whole rows are compared, padding included, the first time with what the client left there.
            if (std::memcmp(current.GetData(), dst, size) == 0) return 1;
            std::memcpy(dst, current.GetData(), size);
        }
        return 1;
    });
}
