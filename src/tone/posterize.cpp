// Posterize: every pixel becomes the nearest of the eight corners of the colour cube.
//
// The corners are the colours whose components are 0 or 255, so each component goes its own way: the squared distance
// to a corner is a sum over the components, and the smallest sum has the smallest terms. 127 is nearer to 0, 128 to
// 255, and nothing lies half-way: a threshold finds the corner that a search through the palette would.
#include "base/table_pass.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kChannels = 3;
constexpr u32 kFirstNearerToTop = 128;

}  // namespace

ZLV_EXPORT u32 ZLV40_PosterizeRGB(u8* buffer, u32 width, u32 height, u32 rowStride, u32)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || width == 0 || height == 0) return frame.Fail(Error::BadArgument);

        u8 corner[256];
        for (u32 i = 0; i < 256; ++i) corner[i] = i < kFirstNearerToTop ? 0 : 255;
        const void* const tables[kChannels] = {corner, corner, corner};

        // A cancel leaves no code: clients know it from the 0 alone.
        const ForwardingSpan progress(frame);
        const u32 done = MV40_ApplyLUTsToImage(buffer, width, height, kChannels, rowStride, tables, 0);
        frame.SetLastError(Error::None);
        return done;
    });
}
