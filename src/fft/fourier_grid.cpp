// The grid of complex values that the frequency functions work on: sizes, and its memory.
#include "platform/platform.h"
#include "runtime/frame.h"

#include <bit>

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kSmallestSide = 4;
constexpr size_t kBytesPerValue = 2 * sizeof(f64);

bool IsSide(u32 side) { return side >= kSmallestSide && ZLV40_NextPowerOfTwo(side - 1) == side; }

// Null where the bytes of the grid are too many to count, too.
void* AllocateGrid(u32 width, u32 height)
{
    const u64 values = u64(width) * height;
    return values > SIZE_MAX / kBytesPerValue ? nullptr
                                              : platform::AllocateClientBlock(size_t(values) * kBytesPerValue);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_NextPowerOfTwo(u32 value)
{
    // Strictly above the value, so a power of two gives the next one.
    if (value < kSmallestSide) return kSmallestSide;
    return value >> 31 ? 0 : std::bit_floor(value) << 1;
}

ZLV_EXPORT f64* ZLV40_AllocFFTGrid(u32 width, u32 height)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> f64* {
        void* grid = nullptr;
        if (!IsSide(width) || !IsSide(height)) frame.SetLastError(Error::BadArgument);
        else if (!(grid = AllocateGrid(width, height))) frame.SetLastError(Error::OutOfMemory);
        return static_cast<f64*>(grid);
    });
}
