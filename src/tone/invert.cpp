// Invert: every sample becomes its complement.
#include "base/table_pass.h"
#include "base/table_set.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr i32 kAlphaChannel = 3;
constexpr i32 kChannelsWithAlpha = 4;

}  // namespace

ZLV_EXPORT u32 ZLV40_InvertImage(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const bool protectsAlpha = flags & ZLV40_PROTECT_ALPHA;
        if (!buffer || bytesPerPixel < 0) return frame.Fail(Error::BadArgument);
        if (protectsAlpha && bytesPerPixel != kChannelsWithAlpha) return frame.Fail(Error::BadArgument);
        if (width == 0 || height == 0 || bytesPerPixel == 0) return 1;

        u8 complement[256];
        for (u32 i = 0; i < 256; ++i) complement[i] = u8(255 - i);
        TableSet tables;
        if (!tables.Resize(u32(bytesPerPixel), complement)) return frame.Fail(Error::OutOfMemory);
        if (protectsAlpha) tables.Set(kAlphaChannel, nullptr);

        // The effect reports no progress: a pass at memory speed is over before a client could draw a bar.
        return MV40_ApplyLUTsToImage(buffer, width, height, u32(bytesPerPixel), rowStride, tables.Data(), 0);
    });
}
