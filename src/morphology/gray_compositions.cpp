// Opening, closing, top-hat and gradient of gray planes.
//
// The first three do not look at how their base functions fare: an element that those refuse, or a client that cancels,
// still gives 1. They answer a null pointer with 0 and no code. Clients know all four by it.
#include "base/gray_morphology.h"
#include "base/image_view.h"
#include "morphology/gray_compositions.kernels.h"
#include "runtime/array.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

using Morphology = decltype(&MV40_MorphoDilationGray);

// A plane of the image's size without padding. False when memory is out, or the image has no pixels.
bool MakePlane(ZLVArray<u8>& plane, u32 width, u32 height)
{
    const u64 bytes = u64(width) * height;
    return bytes <= INT32_MAX && plane.Resize(i32(bytes));
}

ImageView<u8> PlaneIn(ZLVArray<u8>& memory, u32 width, u32 height)
{
    return {memory.GetData(), width, height, 1, width};
}

ImageView<const u8> Read(const ImageView<u8>& plane)
{
    return {plane.data, plane.width, plane.height, plane.channels, plane.stride};
}

struct Step {
    Morphology apply;
    const u32* element;
    u32 elementSize;

    // 1, or 0 with the base layer's code.
    [[nodiscard]] u32 operator()(const ImageView<const u8>& src, const ImageView<u8>& dst) const
    {
        return apply(src.data, src.width, src.height, src.stride, element, i32(elementSize), dst.data, dst.stride);
    }
};

u32 ApplyTwo(const Step& first, const Step& second, const ImageView<const u8>& src, const ImageView<u8>& dst)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src.data || !dst.data || !first.element) return 0;
        ZLVArray<u8> memory;
        if (!MakePlane(memory, src.width, src.height)) return frame.Fail(Error::OutOfMemory);
        const ImageView<u8> work = PlaneIn(memory, src.width, src.height);
        if (!first(src, work)) return 1;  // the second one would fail as well, or see what nobody has written
        const ForwardingSpan progress(frame);
        static_cast<void>(second(Read(work), dst));
        return 1;
    });
}

// An image in strips of rows whose two work planes stay in the cache. Steps see `reach` rows more on either side; what
// they make of those is thrown away. An image that is written to itself is one strip: later ones would read results.
class Strips {
public:
    Strips(const ImageView<const u8>& src, const ImageView<u8>& dst, u64 reach)
        : src_(src), reach_(u32(std::min<u64>(reach, src.height)))
    {
        const u64 rows = std::max<u64>(kBytes / std::max(src.width, 1u), 8 * u64(reach_)) + 1;
        rows_ = Overlaps(src, dst) ? src.height : u32(std::min<u64>(rows, src.height));
    }

    // False when memory is out, or the image has no pixels.
    [[nodiscard]] bool Prepare()
    {
        if (u64(src_.width) * src_.height > INT32_MAX) return false;
        const u32 rows = u32(std::min<u64>(rows_ + 2 * u64(reach_), src_.height));
        return MakePlane(memory_[0], src_.width, rows) && MakePlane(memory_[1], src_.width, rows);
    }

    // False behind the last one.
    bool Next()
    {
        first_ = end_;
        end_ = u32(std::min<u64>(u64(first_) + rows_, src_.height));
        top_ = first_ - std::min(first_, reach_);
        height_ = u32(std::min<u64>(u64(end_) + reach_, src_.height)) - top_;
        return first_ < src_.height;
    }

    u32 First() const { return first_; }
    u32 End() const { return end_; }
    ImageView<const u8> Source() const { return {src_.Row(top_), src_.width, height_, 1, src_.stride}; }
    ImageView<u8> Plane(u32 i) { return PlaneIn(memory_[i], src_.width, height_); }
    // The row of a plane that belongs to row y of the image.
    const u8* Row(u32 plane, u32 y) { return Plane(plane).Row(y - top_); }

private:
    static constexpr u64 kBytes = 256 * 1024;

    static bool Overlaps(const ImageView<const u8>& src, const ImageView<u8>& dst)
    {
        const auto end = [](const auto& image) {
            return reinterpret_cast<u64>(image.data) + u64(image.height) * std::max(image.stride, image.width);
        };
        return reinterpret_cast<u64>(src.data) < end(dst) && reinterpret_cast<u64>(dst.data) < end(src);
    }

    const ImageView<const u8> src_;
    const u32 reach_;
    u32 rows_ = 0;  // of a strip
    u32 first_ = 0, end_ = 0, top_ = 0, height_ = 0;
    ZLVArray<u8> memory_[2];
};

}  // namespace

ZLV_EXPORT u32 ZLV40_OpenGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                              u32 elementSize, u8* dst, u32 dstRowStride)
{
    return ApplyTwo({MV40_MorphoErosionGray, element, elementSize}, {MV40_MorphoDilationGray, element, elementSize},
                    {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride});
}

ZLV_EXPORT u32 ZLV40_CloseGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                               u32 elementSize, u8* dst, u32 dstRowStride)
{
    return ApplyTwo({MV40_MorphoDilationGray, element, elementSize}, {MV40_MorphoErosionGray, element, elementSize},
                    {src, width, height, 1, srcRowStride}, {dst, width, height, 1, dstRowStride});
}

ZLV_EXPORT u32 ZLV40_TophatGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                                u32 elementSize, u8* dst, u32 dstRowStride)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || !element) return 0;
        const ImageView<const u8> from = {src, width, height, 1, srcRowStride};
        const ImageView<u8> to = {dst, width, height, 1, dstRowStride};
        Strips strips(from, to, 2 * u64(elementSize / 2));
        if (!strips.Prepare()) return frame.Fail(Error::OutOfMemory);
        // The copy below would leave buffers whose rows overlap.
        if (height > 1 && (srcRowStride < width || dstRowStride < width)) return frame.Fail(Error::BadArgument);
        // One block, whatever the strides are: padded images come out with their rows mixed.
        std::memmove(dst, src, size_t(width) * height);
        const Step erode = {MV40_MorphoErosionGray, element, elementSize};
        const Step dilate = {MV40_MorphoDilationGray, element, elementSize};
        while (strips.Next()) {
            const ImageView<u8> eroded = strips.Plane(0), opened = strips.Plane(1);
            // Without an opening nothing comes off.
            if (!erode(strips.Source(), eroded) || !dilate(Read(eroded), opened)) {
                std::memset(opened.data, 0, size_t(opened.width) * opened.height);
            }
            for (u32 y = strips.First(); y < strips.End(); ++y) {
                Kernels<GrayCompositionKernels>().takeOff(to.Row(y), strips.Row(1, y), width, to.Row(y));
                if (frame.Report(y, height)) continue;
                frame.SetLastError(Error::None);  // a quiet end
                return 1;
            }
        }
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_MorphoGradientGray(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element,
                                        u32 elementSize, u8* dst, u32 dstRowStride)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || !element) return frame.Fail(Error::BadArgument);
        const ImageView<const u8> from = {src, width, height, 1, srcRowStride};
        const ImageView<u8> to = {dst, width, height, 1, dstRowStride};
        Strips strips(from, to, elementSize / 2);
        if (!strips.Prepare()) return frame.Fail(Error::OutOfMemory);
        const Step dilate = {MV40_MorphoDilationGray, element, elementSize};
        const Step erode = {MV40_MorphoErosionGray, element, elementSize};
        while (strips.Next()) {
            if (!dilate(strips.Source(), strips.Plane(0)) || !erode(strips.Source(), strips.Plane(1))) return 0;
            for (u32 y = strips.First(); y < strips.End(); ++y) {
                // Entries that lower what they dilate make differences below 0, which wrap.
                Kernels<GrayCompositionKernels>().subtract(strips.Row(0, y), strips.Row(1, y), width, to.Row(y));
                if (!frame.Report(y, height)) return 0;
            }
        }
        return 1;
    });
}
