// Segmented colourise: a picture of few colours in smooth flat regions, as a stencil or a poster has them.
//
// Colours are painted one after the other, the rarest first, each through a mask that a filter has cleaned: so large
// regions swallow the ragged edges of small ones. What no cleaned mask covers keeps the rarest colour.
#include "artistic/segment_elements.h"
#include "base/bit_masks.h"
#include "base/histograms.h"
#include "base/palette.h"
#include "base/solid_rect.h"
#include "runtime/array.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

// The exports called on the way report nothing, and nobody looks at how they and the base functions fare: the next step
// works on what is there. Memory that a step writes is cleared before, so that what is there is always the same.
class Segmenter {
public:
    // Without padding; the source too, whatever stride its client has told.
    Segmenter(u32 width, u32 height) : width_(width), height_(height), maskStride_(u32(PackedRowBytes(width, 1))) {}

    // False when memory is out, or the picture has no pixels.
    [[nodiscard]] bool Prepare()
    {
        const u64 maskBytes = u64(maskStride_) * height_, pixels = u64(width_) * height_;
        if (pixels > INT32_MAX) return false;
        if (!mask_.Resize(i32(maskBytes)) || !cleaned_.Resize(i32(maskBytes)) || !plane_.Resize(i32(pixels))) {
            return false;
        }
        std::memset(cleaned_.GetData(), 0, maskBytes);
        std::memset(plane_.GetData(), 0, pixels);
        return true;
    }

    void Quantize(const u8* source, u32 colors, u8* palette)
    {
        MV40_QuantizeRGBTo8Bit(source, width_, height_, 3 * width_, plane_.GetData(), width_, colors, palette, 0, 0, 0);
    }

    // The rarest colour first; of equally rare ones the first.
    void SortColors(u32 colors)
    {
        u32* const histograms[] = {counts_};
        MV40_GetImageChannelHistograms(plane_.GetData(), width_, height_, 1, width_, histograms, 0);
        for (u32 i = 0; i < colors; ++i) order_[i] = u8(i);
        std::sort(order_, order_ + colors,
                  [this](u8 a, u8 b) { return counts_[a] != counts_[b] ? counts_[a] < counts_[b] : a < b; });
    }

    u8 Color(u32 i) const { return order_[i]; }

    void FillBackground(u8* destination, u32 stride) const
    {
        const SolidRect whole = {0, 0, width_, height_};
        MV40_FillSolidRect(destination, width_, height_, 1, stride, &whole, Color(0), 0);
    }

    void TakeElement(u32 number)
    {
        const SegmentElement& element = SegmentElementOf(number);
        side_ = i32(element.side);
        for (u32 i = 0; i < element.Entries(); ++i) {
            element_[i] = element.At(i);
            complement_[i] = 1 - element_[i];
        }
    }

    void PaintColor(u8 color, u32 mode, u32 filterSize, u8* destination, u32 stride)
    {
        // No filter finds anything in an empty mask; palettes larger than a picture needs have many.
        if (counts_[color] == 0) return;
        MV40_Create1BitMaskFromColor(plane_.GetData(), width_, height_, width_, mask_.GetData(), maskStride_, color, 0);
        Clean(mode, filterSize);
        MV40_SetColorFrom1BitMask(cleaned_.GetData(), width_, height_, maskStride_, destination, stride, color, 0);
    }

private:
    void Clean(u32 mode, u32 filterSize)
    {
        const u8* const mask = mask_.GetData();
        u8* const cleaned = cleaned_.GetData();
        const u32 w = width_, h = height_, stride = maskStride_;
        // The median writes every pixel, the others leave some out.
        if (mode != ZLV40_SEGMENT_MEDIAN) std::memset(cleaned, 0, size_t(stride) * h);
        switch (mode) {
        case ZLV40_SEGMENT_MEDIAN: ZLV40_MedianFilter1Bit(mask, w, h, stride, cleaned, stride, filterSize | 1); break;
        case ZLV40_SEGMENT_CLOSE:
            ZLV40_MorphoClose1Bit(mask, w, h, stride, cleaned, stride, element_, side_, side_, 0);
            break;
        case ZLV40_SEGMENT_HIT_OR_MISS:
            ZLV40_MorphoHitOrMiss1Bit(mask, w, h, stride, cleaned, stride, element_, side_, side_, complement_, side_,
                                      side_, 0);
            break;
        case ZLV40_SEGMENT_BOUNDARY:
            ZLV40_MorphoBoundaryExtraction1Bit(mask, w, h, stride, cleaned, stride, element_, side_, side_, 0);
            break;
        default: break;  // refused
        }
    }

    const u32 width_, height_, maskStride_;
    ZLVArray<u8> mask_, cleaned_;  // of one colour
    ZLVArray<u8> plane_;           // the quantised picture
    u32 counts_[kLargestPalette] = {};
    u8 order_[kLargestPalette] = {};
    i32 side_ = 0;
    u32 element_[kLargestSegmentElement * kLargestSegmentElement] = {};
    u32 complement_[kLargestSegmentElement * kLargestSegmentElement] = {};
};

}  // namespace

ZLV_EXPORT u32 ZLV40_SegmentedColorizeRGBImage(const u8* source, u32 width, u32 height, u64, u8* destination,
                                               i32 destinationStride, u8* palette, u32 colors, u32 mode, u32 filterSize,
                                               u64)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination || mode > ZLV40_SEGMENT_BOUNDARY) return frame.Fail(Error::BadArgument);
        if (colors == 0) return frame.Fail(Error::BadArgument);  // there is no background
        // A single row has no use for its stride.
        if (height > 1 && destinationStride < i64(width)) return frame.Fail(Error::BadArgument);
        Segmenter segmenter(width, height);
        if (!segmenter.Prepare()) return frame.Fail(Error::OutOfMemory);

        const u32 count = std::min(colors, kLargestPalette), stride = u32(destinationStride);
        segmenter.Quantize(source, count, palette);
        segmenter.SortColors(count);
        segmenter.FillBackground(destination, stride);
        segmenter.TakeElement(filterSize);
        for (u32 i = 0; i < count; ++i) {
            segmenter.PaintColor(segmenter.Color(i), mode, filterSize, destination, stride);
            if (!frame.Report(i, count)) return 0;
        }
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_SegmentedColorizeRGB(const u8* source, u32 width, u32 height, u64 sourceStride, u8* destination,
                                          i32 destinationStride, u8* palette, u32 colors, u32 filterSize, i32 useMedian)
{
    const u32 mode = useMedian ? ZLV40_SEGMENT_MEDIAN : ZLV40_SEGMENT_CLOSE;
    return ZLV40_SegmentedColorizeRGBImage(source, width, height, sourceStride, destination, destinationStride, palette,
                                           colors, mode, filterSize, 0);
}
