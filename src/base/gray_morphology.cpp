// Gray dilation and erosion.
//
// Equal entries commute with the extreme, which then is one of a rectangle: extremes of spans of each row first, of
// spans of rows after it. The rows go through blocks as high as the window (van Herk 1992): a window that begins at
// row k of a block is the extreme of the rest of the block and of the first k rows of the next one, so a row costs
// three operations a pixel at any height. Other elements are applied entry by entry.
#include "base/gray_morphology.h"

#include "base/gray_morphology.kernels.h"
#include "base/image_view.h"
#include "base/row_ring.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

using Operation = GrayMorphologyKernels::Operation;

// Entries are added and subtracted as numbers with a sign, so an element can lower what it dilates: the gradient of a
// picture by such an element wraps, and clients know it. At 255 and beyond in either way the result is an end of the
// range whatever the sample is, so nine bits say as much as the entry itself.
i16 Limited(u32 entry) { return i16(std::clamp(i32(entry), -255, 255)); }

struct Element {
    const u32* entries;
    u32 side;

    u64 Count() const { return u64(side) * side; }
    bool IsFlat() const
    {
        return std::all_of(entries, entries + Count(),
                           [&](u32 entry) { return Limited(entry) == Limited(entries[0]); });
    }
};

// The extremes over spans of each row of the source, for rows above and below the image too.
class SpanRows {
public:
    SpanRows(const ImageView<const u8>& src, u32 radius, const Operation& operation)
        : src_(src), radiusX_(std::min(radius, src.width - 1)), operation_(operation)
    {
    }

    [[nodiscard]] bool Prepare() { return wide_.Resize(size_t(src_.width) + 2 * size_t(radiusX_)); }

    void Make(i64 y, u8* out)
    {
        const u32 row = u32(std::clamp<i64>(y, 0, i64(src_.height) - 1));
        std::memcpy(wide_.GetData() + radiusX_, src_.Row(row), src_.width);
        ReplicateBorders(wide_.GetData(), src_.width, 1, radiusX_);
        operation_.span(wide_.GetData(), src_.width, 2 * size_t(radiusX_) + 1, out);
    }

private:
    const ImageView<const u8> src_;
    const u32 radiusX_;  // more would find the same pixels again
    const Operation& operation_;
    MVBuffer<u8> wide_;
};

// A block of rows, as high as the window.
class RowBlock {
public:
    [[nodiscard]] bool Resize(u64 rows, u32 width)
    {
        width_ = width;
        return rows <= SIZE_MAX / width && memory_.Resize(rows * width);
    }
    u8* Row(u64 i) { return memory_.GetData() + i * width_; }

private:
    MVBuffer<u8> memory_;
    u32 width_ = 0;
};

u32 ApplyFlat(BaseWork& work, const ImageView<const u8>& src, const ImageView<u8>& dst, const Element& element,
              const Operation& operation)
{
    const u32 radius = element.side / 2;
    const u32 radiusY = std::min(radius, src.height - 1);
    const u64 window = 2 * u64(radiusY) + 1;
    const i16 entry = Limited(element.entries[0]);
    SpanRows spans(src, radius, operation);
    RowBlock blocks[2];
    MVBuffer<u8> upToHere;  // the extreme of the next block's rows so far
    const bool hasMemory = spans.Prepare() && blocks[0].Resize(window, src.width) &&
                           blocks[1].Resize(window, src.width) && upToHere.Resize(src.width);
    if (!hasMemory) return work.Fail(Error::OutOfMemory);

    // Row k of the block that begins with the window of image row `first` is the source's row first - radiusY + k.
    for (u64 k = 0; k + 1 < window; ++k) spans.Make(i64(k) - radiusY, blocks[0].Row(k));
    u32 current = 0;
    for (u64 first = 0; first < src.height; first += window, current ^= 1) {
        RowBlock& block = blocks[current];
        RowBlock& next = blocks[current ^ 1];
        spans.Make(i64(first) + radiusY, block.Row(window - 1));
        for (u64 k = window - 1; k > 0; --k) {
            operation.extremes(block.Row(k - 1), block.Row(k), src.width, block.Row(k - 1));
        }
        const u64 rows = std::min<u64>(window, src.height - first);
        for (u64 k = 0; k < rows; ++k) {
            const u32 y = u32(first + k);
            const u8* before = block.Row(k);
            if (k > 0) {
                u8* const row = next.Row(k - 1);
                spans.Make(i64(y) + radiusY, row);
                operation.extremes(row, k > 1 ? upToHere.GetData() : row, src.width, upToHere.GetData());
                before = upToHere.GetData();
            }
            operation.finish(block.Row(k), before, entry, src.width, dst.Row(y));
            if (!work.Report(y, src.height)) return 0;
        }
    }
    return 1;
}

u32 ApplyEntries(BaseWork& work, const ImageView<const u8>& src, const ImageView<u8>& dst, const Element& element,
                 const Operation& operation)
{
    const size_t margin = element.side / 2;
    const size_t wideCount = size_t(src.width) + 2 * margin;
    MVBuffer<i16> entries;
    MVBuffer<const u8*> rows;
    RowRing<u8> ring;
    const bool hasMemory = entries.Resize(element.Count()) && rows.Resize(element.side) &&
                           ring.Resize(std::min(element.side, src.height), wideCount + kMorphologyBlock);
    if (!hasMemory) return work.Fail(Error::OutOfMemory);
    for (u64 i = 0; i < element.Count(); ++i) entries[i] = Limited(element.entries[i]);

    const u32 lastY = src.height - 1;
    u64 made = 0;
    for (u32 y = 0; y < src.height; ++y) {
        for (; made <= std::min<u64>(y + margin, lastY); ++made) {
            u8* const wide = ring.Row(made);
            std::memcpy(wide + margin, src.Row(u32(made)), src.width);
            ReplicateBorders(wide, src.width, 1, margin);
            std::memset(wide + wideCount, 0, kMorphologyBlock);
        }
        for (u64 j = 0; j < element.side; ++j) {
            const u64 unclamped = y + j < margin ? 0 : y + j - margin;
            rows[j] = ring.Row(std::min<u64>(unclamped, lastY));
        }
        operation.window(rows.GetData(), entries.GetData(), element.side, src.width, dst.Row(y));
        if (!work.Report(y, src.height)) return 0;
    }
    return 1;
}

u32 Apply(MVThreadContext& context, Error& error, const ImageView<const u8>& src, const ImageView<u8>& dst,
          const u32* entries, i32 elementSize, const Operation& operation)
{
    BaseWork work(context, error);
    if (!src.data || !dst.data || !entries) return work.Fail(Error::BadArgument);
    if (elementSize < 1 || elementSize % 2 == 0) return work.Fail(Error::BadArgument);
    const Element element = {entries, u32(elementSize)};
    if (element.Count() > SIZE_MAX / 2 / sizeof(u32)) return work.Fail(Error::BadArgument);
    if (src.height == 0) return 1;
    if (src.width == 0) {
        for (u32 y = 0; y < src.height; ++y) {
            if (!work.Report(y, src.height)) return 0;
        }
        return 1;
    }
    if (element.IsFlat()) return ApplyFlat(work, src, dst, element, operation);
    return ApplyEntries(work, src, dst, element, operation);
}

}  // namespace

u32 MV40_MorphoDilationGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element, i32 elementSize,
                            u8* dst, u32 dstRowStride)
{
    return InBaseCall("MV40_MorphoDilationGray", [&](MVThreadContext& context, Error& error) {
        return Apply(context, error, {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride},
                     element, elementSize, Kernels<GrayMorphologyKernels>().dilation);
    });
}

u32 MV40_MorphoErosionGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element, i32 elementSize,
                           u8* dst, u32 dstRowStride)
{
    return InBaseCall("MV40_MorphoErosionGray", [&](MVThreadContext& context, Error& error) {
        return Apply(context, error, {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride},
                     element, elementSize, Kernels<GrayMorphologyKernels>().erosion);
    });
}

}  // namespace zlv
