// Dilation and erosion of 1-bit images.
//
// The erosion jumps over stretches of empty bytes and leaves their pixels, and the first one behind each stretch, as
// the destination has them. Clients that want the erosion itself hand in a cleared destination; the lost pixel stays
// clear in it even where it would have been set.
#include "morphology/bit_windows.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

u32 Apply(BitWindows::Kind kind, const BitImage<const u8>& src, const BitImage<u8>& dst, const ElementEntries& element)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src.data || !dst.data || src.width == 0 || src.height == 0) return frame.Fail(Error::BadArgument);
        if (!element.IsValid()) return frame.Fail(Error::BadArgument);
        BitWindows windows(kind);
        if (!windows.Prepare(element, src.width, src.height)) return frame.Fail(Error::OutOfMemory);
        for (u32 y = 0; y < src.height; ++y) {
            windows.Next([&](u32 row) { return src.Row(row); });
            windows.Put(dst.Row(y));
            if (!frame.Report(y, src.height)) return 0;
        }
        return 1;
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MorphoDilation1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst,
                                        u32 dstRowStride, const u32* element, i32 elementWidth, i32 elementHeight, u32)
{
    return Apply(BitWindows::Kind::Dilation, {src, width, height, srcRowStride}, {dst, width, height, dstRowStride},
                 {element, elementWidth, elementHeight});
}

ZLV_EXPORT u32 ZLV40_MorphoErosion1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst,
                                       u32 dstRowStride, const u32* element, i32 elementWidth, i32 elementHeight, u32)
{
    return Apply(BitWindows::Kind::Erosion, {src, width, height, srcRowStride}, {dst, width, height, dstRowStride},
                 {element, elementWidth, elementHeight});
}
