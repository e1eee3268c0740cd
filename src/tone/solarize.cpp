// Solarize: the bright half of each channel runs backwards.
#include "base/image_view.h"
#include "base/table_pass.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr i32 kChannelsWithAlpha = 4;

// The turning point lies one below the middle: 126 stays, 127 jumps to 128, and from there on it goes down to 0.
constexpr u32 kFirstTurned = 127;

}  // namespace

ZLV_EXPORT u32 ZLV40_SolarizeImage(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || !IsColour(bytesPerPixel)) return frame.Fail(Error::BadArgument);

        u8 turned[256];
        for (u32 i = 0; i < 256; ++i) turned[i] = u8(i < kFirstTurned ? i : 255 - i);
        // Without an alpha channel there is nothing to protect, and the bit is no mistake.
        const bool protectsAlpha = (flags & ZLV40_PROTECT_ALPHA) && bytesPerPixel == kChannelsWithAlpha;
        const void* const tables[] = {turned, turned, turned, protectsAlpha ? nullptr : turned};

        ForwardingSpan progress(frame);
        const u32 done = MV40_ApplyLUTsToImage(buffer, width, height, u32(bytesPerPixel), rowStride, tables, 0);
        progress.KeepBaseError();
        return done;
    });
}
