// Compositions of binary dilations and erosions: opening, closing, hit-or-miss, boundary.
//
// The steps follow each other row by row, so there is no image between them. What a step hands on is what it would have
// written to a cleared image: the erosion's lost pixels are clear.
#include "morphology/bit_windows.h"
#include "morphology/buffer_logic.kernels.h"
#include "runtime/frame.h"

#include "zlv40.h"

using namespace zlv;

namespace {

using Kind = BitWindows::Kind;

struct Images {
    BitImage<const u8> src;
    BitImage<u8> dst;

    auto SourceRows() const
    {
        return [this](u32 y) { return src.Row(y); };
    }
};

// What all compositions refuse, in their order: rows that are too short, an image without pixels (its work image would
// be empty), and what their steps would refuse.
Error Check(const Images& images, const ElementEntries& element)
{
    const u32 rowBytes = BitRowBytes(images.src.width);
    if (rowBytes > images.src.stride || rowBytes > images.dst.stride) return Error::BadArgument;
    if (rowBytes == 0 || images.src.height == 0) return Error::OutOfMemory;
    if (!images.src.data || !images.dst.data || !element.IsValid()) return Error::BadArgument;
    return Error::None;
}

// Runs one step after the other. Only the second one's rows are progress.
u32 ApplyTwo(Kind kind, Kind secondKind, const Images& images, const ElementEntries& element)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const Error error = Check(images, element);
        if (error != Error::None) return frame.Fail(error);
        const u32 width = images.src.width, height = images.src.height;
        BitWindows first(kind), second(secondKind);
        const bool hasMemory = first.Prepare(element, width, height) && second.Prepare(element, width, height);
        if (!hasMemory) return frame.Fail(Error::OutOfMemory);
        for (u32 y = 0; y < height; ++y) {
            second.Next([&](u32) { return first.NextCleared(images.SourceRows()); });
            // A closing does not clear the destination: what its erosion leaves out stays what the client had there.
            second.Put(images.dst.Row(y));
            if (!frame.Report(y, height)) return 0;
        }
        return 1;
    });
}

// The last pixels of a row that ends within a byte go into the row's first byte, over its leftmost pixels, and the
// byte where they belong is never written. Presets were made with it.
void PutBoundaryRow(const u8* src, const u8* eroded, u32 width, u8* dst)
{
    const size_t whole = width / 8;
    Kernels<BufferLogicKernels>().remove(src, eroded, whole, dst);
    if (width % 8 == 0) return;
    const u8 padding = BitPadding(width);
    dst[0] = u8((dst[0] & padding) | (src[whole] & ~eroded[whole] & ~padding));
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MorphoOpen1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst, u32 dstRowStride,
                                    const u32* element, i32 elementWidth, i32 elementHeight, u32)
{
    return ApplyTwo(Kind::Erosion, Kind::Dilation,
                    {{src, width, height, srcRowStride}, {dst, width, height, dstRowStride}},
                    {element, elementWidth, elementHeight});
}

ZLV_EXPORT u32 ZLV40_MorphoClose1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst, u32 dstRowStride,
                                     const u32* element, i32 elementWidth, i32 elementHeight, u32)
{
    return ApplyTwo(Kind::Dilation, Kind::Erosion,
                    {{src, width, height, srcRowStride}, {dst, width, height, dstRowStride}},
                    {element, elementWidth, elementHeight});
}

ZLV_EXPORT u32 ZLV40_MorphoHitOrMiss1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst,
                                         u32 dstRowStride, const u32* hitElement, i32 hitWidth, i32 hitHeight,
                                         const u32* missElement, i32 missWidth, i32 missHeight, u32)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const Images images = {{src, width, height, srcRowStride}, {dst, width, height, dstRowStride}};
        const ElementEntries hits = {hitElement, hitWidth, hitHeight}, misses = {missElement, missWidth, missHeight};
        const Error error = Check(images, hits);
        if (error != Error::None) return frame.Fail(error);
        if (!misses.IsValid()) return frame.Fail(Error::BadArgument);

        const BufferLogicKernels& logic = Kernels<BufferLogicKernels>();
        const size_t rowBytes = BitRowBytes(width);
        BitWindows hit(Kind::Erosion), miss(Kind::Erosion);
        MVBuffer<u8> complement;  // a row of it; its padding is the inverse of the source's
        const bool hasMemory =
            hit.Prepare(hits, width, height) && miss.Prepare(misses, width, height) && complement.Resize(rowBytes);
        if (!hasMemory) return frame.Fail(Error::OutOfMemory);
        const auto complementRow = [&](u32 y) {
            logic.invert(images.src.Row(y), rowBytes, complement.GetData());
            return complement.GetData();
        };
        for (u32 y = 0; y < height; ++y) {
            const u8* const found = hit.NextCleared(images.SourceRows());
            logic.intersect(found, miss.NextCleared(complementRow), rowBytes, images.dst.Row(y));
        }
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_MorphoBoundaryExtraction1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst,
                                                  u32 dstRowStride, const u32* element, i32 elementWidth,
                                                  i32 elementHeight, u32)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const Images images = {{src, width, height, srcRowStride}, {dst, width, height, dstRowStride}};
        const ElementEntries entries = {element, elementWidth, elementHeight};
        const Error error = Check(images, entries);
        if (error != Error::None) return frame.Fail(error);
        BitWindows erosion(Kind::Erosion);
        if (!erosion.Prepare(entries, width, height)) return frame.Fail(Error::OutOfMemory);
        for (u32 y = 0; y < height; ++y) {
            PutBoundaryRow(images.src.Row(y), erosion.NextCleared(images.SourceRows()), width, images.dst.Row(y));
            if (!frame.Report(y, height)) return 0;
        }
        return 1;
    });
}
