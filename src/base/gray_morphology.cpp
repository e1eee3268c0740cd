// Gray dilation and erosion.
//
// Equal entries commute with the extreme, which then is that of a square window: running extremes find it at a cost
// that does not grow with the element. Other elements are applied entry by entry.
#include "base/gray_morphology.h"

#include "base/gray_morphology.kernels.h"
#include "base/image_view.h"
#include "base/row_ring.h"
#include "base/running_extremes.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

struct Direction {
    const GrayMorphologyKernels::Operation& kernels;
    Extreme extreme;
};

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

u32 ApplyFlat(BaseWork& work, const ImageView<const u8>& src, const ImageView<u8>& dst, const Element& element,
              const Direction& direction)
{
    RunningExtremes extremes(src, element.side / 2, direction.extreme);
    if (!extremes.Prepare(1)) return work.Fail(Error::OutOfMemory);
    extremes.Start(ChannelList(1, 1));
    for (u32 y = 0; y < src.height; ++y) {
        extremes.Next(dst.Row(y));
        direction.kernels.apply(dst.Row(y), Limited(element.entries[0]), src.width);
        if (!work.Report(y, src.height)) return 0;
    }
    return 1;
}

u32 ApplyEntries(BaseWork& work, const ImageView<const u8>& src, const ImageView<u8>& dst, const Element& element,
                 const Direction& direction)
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
        direction.kernels.window(rows.GetData(), entries.GetData(), element.side, src.width, dst.Row(y));
        if (!work.Report(y, src.height)) return 0;
    }
    return 1;
}

u32 Apply(MVThreadContext& context, Error& error, const ImageView<const u8>& src, const ImageView<u8>& dst,
          const u32* entries, i32 elementSize, const Direction& direction)
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
    if (element.IsFlat()) return ApplyFlat(work, src, dst, element, direction);
    return ApplyEntries(work, src, dst, element, direction);
}

}  // namespace

u32 MV40_MorphoDilationGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element, i32 elementSize,
                            u8* dst, u32 dstRowStride)
{
    return InBaseCall("MV40_MorphoDilationGray", [&](MVThreadContext& context, Error& error) {
        return Apply(context, error, {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride},
                     element, elementSize, {Kernels<GrayMorphologyKernels>().dilation, Extreme::Largest});
    });
}

u32 MV40_MorphoErosionGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element, i32 elementSize,
                           u8* dst, u32 dstRowStride)
{
    return InBaseCall("MV40_MorphoErosionGray", [&](MVThreadContext& context, Error& error) {
        return Apply(context, error, {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride},
                     element, elementSize, {Kernels<GrayMorphologyKernels>().erosion, Extreme::Smallest});
    });
}

}  // namespace zlv
