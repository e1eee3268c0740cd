// What the modes of resizing share.
#pragma once

#include "base/image_view.h"
#include "base/resize_rows.kernels.h"
#include "runtime/array.h"
#include "runtime/base_call.h"

#include <cstring>

namespace zlv {

// Two images with the same channels; neither is empty.
template <class T>
struct ResizeImages {
    ImageView<const T> source;
    ImageView<T> destination;

    u32 Channels() const { return source.channels; }
    f64 RatioX() const { return f64(source.width) / destination.width; }
    f64 RatioY() const { return f64(source.height) / destination.height; }
    bool IsSameSize() const { return source.width == destination.width && source.height == destination.height; }
    bool IsGrowing() const { return source.width < destination.width || source.height < destination.height; }
    bool HasWholeRows() const
    {
        return source.stride >= source.SamplesPerRow() && destination.stride >= destination.SamplesPerRow();
    }
};

// Images of the same size and stride are copied in one block, with what stands between the rows.
template <class T>
bool CopyIfSameLayout(const ResizeImages<T>& images)
{
    const ImageView<const T>& source = images.source;
    if (!images.IsSameSize() || source.stride != images.destination.stride) return false;
    std::memmove(images.destination.data, source.data, size_t(source.height) * source.stride * sizeof(T));
    return true;
}

// Room for `count` elements for each of `channels`; also for none, as an image without channels has.
template <class Array>
[[nodiscard]] bool ResizeForSamples(Array& array, u64 count, u64 channels)
{
    u64 product;
    if (__builtin_mul_overflow(count, channels, &product)) return false;
    return array.Resize(product ? product : 1);
}

// A whole number of a double that is not negative, at most `largest`.
inline u32 TruncateTo(u32 largest, f64 value) { return value >= largest ? largest : u32(value); }

// The pixels that the columns of the destination look at.
class PickedColumns {
public:
    // To be filled with indexes below the width of the source.
    [[nodiscard]] bool Resize(u32 width) { return indexes_.Resize(width); }
    u32& operator[](u32 x) { return indexes_[x]; }
    u32 operator[](u32 x) const { return indexes_[x]; }

    // To be called when all are there.
    template <class T>
    void Finish(const ImageView<const T>& source)
    {
        pixels_ = {indexes_.GetData(), indexes_.GetCount(), 0, source.channels * sizeof(T)};
        while (pixels_.inside < pixels_.count && indexes_[pixels_.inside] + 1 < source.width) ++pixels_.inside;
    }

    template <class T>
    void Pick(const T* row, T* out) const
    {
        Kernels<ResizeRowKernels>().pick(pixels_, row, out);
    }

private:
    MVBuffer<u32> indexes_;
    PixelPick pixels_ = {};
};

// The modes, a file a topic. All of them take images that have passed the checks that all modes share.
u32 ResizeFiltered(BaseWork& work, const ResizeImages<u8>& images, u32 mode);
template <class T>
u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<T>& images);
template <class T>
u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<T>& images);
template <class T>
u32 ResizeBilinear(BaseWork& work, const ResizeImages<T>& images);
template <class T>
u32 ResizeBicubic(BaseWork& work, const ResizeImages<T>& images);
template <class T>
u32 ResizeNearest(BaseWork& work, const ResizeImages<T>& images);

}  // namespace zlv
