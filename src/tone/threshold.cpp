// Threshold: black below one level, white from another one on, and what lies between them stays.
#include "base/sample.h"
#include "base/table_pass.h"
#include "base/table_set.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

ZLV_EXPORT u32 ZLV40_ThresholdFilter(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u32 low,
                                     u32 high, u32 channelMask)
{
    // No counter is raised. A direct call therefore reports nothing and cannot be cancelled: the forwarder asks the
    // client at a nesting depth of 1 only. A call from within a client's callback stands at that depth, and may.
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!buffer || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        if (bytesPerPixel < 1 || bytesPerPixel > i32(kMaxMaskedChannels)) return frame.Fail(Error::BadArgument);

        u8 levels[256];
        for (u32 i = 0; i < 256; ++i) levels[i] = u8(i < low ? 0 : i < high ? i : 255);
        TableSet tables;
        if (!tables.Resize(u32(bytesPerPixel), levels)) return frame.Fail(Error::OutOfMemory);
        for (u32 c = 0; c < u32(bytesPerPixel); ++c) {
            if (!IsSelected(channelMask, c)) tables.Set(c, nullptr);
        }

        const ForwardingSpan progress(frame);
        // What comes of it is not looked at: clients count on the 1.
        MV40_ApplyLUTsToImage(buffer, width, height, u32(bytesPerPixel), rowStride, tables.Data(), 0);
        return 1;
    });
}
