// Motion blur along an axis of the image, pixel by pixel: the mean of a window that ends at the image's edge. The sum
// of a window is that of its neighbour with one sample more and one less: its cost does not grow with its length.
#include "base/image_view.h"
#include "filters/motion.kernels.h"
#include "filters/motion_blur.h"
#include "runtime/array.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// Windows along a row, to the right of their pixels or to the left. Pixel i counts from the edge at which they end.
template <class Sum>
class RowWindows {
public:
    RowWindows(const MotionImages& images, bool isRight, size_t length)
        : images_(images),
          channels_(images.src.channels),
          width_(images.src.width),
          isRight_(isRight),
          length_(std::min(length, width_))
    {
    }

    void BlurRow(u32 y) const
    {
        for (size_t c = 0; c < channels_; c += kChannelsAtOnce) {
            const size_t count = std::min(kChannelsAtOnce, channels_ - c);
            const u8* const from = images_.src.Row(y) + c;
            u8* const to = images_.dst.Row(y) + c;
            if (count == 1) BlurChannels([] { return size_t(1); }, from, to);
            else if (count == 3) BlurChannels([] { return size_t(3); }, from, to);
            else if (count == 4) BlurChannels([] { return size_t(4); }, from, to);
            else BlurChannels([=] { return count; }, from, to);
        }
    }

private:
    static constexpr size_t kChannelsAtOnce = 8;
    static constexpr size_t kPixelsAtOnce = 256;

    size_t PlaceOf(size_t i) const { return (isRight_ ? width_ - 1 - i : i) * channels_; }

    template <class Count>
    void BlurChannels(Count count, const u8* from, u8* to) const
    {
        Sum window[kChannelsAtOnce] = {};
        for (size_t i = 0; i < length_; ++i) {
            for (size_t c = 0; c < count(); ++c) window[c] = Sum(window[c] + from[PlaceOf(i) + c]);
            kernels_.mean(window, to + PlaceOf(i), count(), Sum(i + 1));
        }
        for (size_t i = length_; i < width_; i += kPixelsAtOnce) {
            Slide(count, window, from, to, i, std::min(i + kPixelsAtOnce, width_));
        }
    }

    // The windows of pixels first to end - 1; `window` is the one before them.
    template <class Count>
    void Slide(Count count, Sum* window, const u8* from, u8* to, size_t first, size_t end) const
    {
        Sum sums[kPixelsAtOnce * kChannelsAtOnce];
        for (size_t i = first; i < end; ++i) {
            const u8 *const entering = from + PlaceOf(i), *const leaving = from + PlaceOf(i - length_);
            Sum* const sum = sums + (isRight_ ? end - 1 - i : i - first) * count();
            for (size_t c = 0; c < count(); ++c) sum[c] = window[c] = Sum(window[c] + entering[c] - leaving[c]);
        }
        u8* const low = to + PlaceOf(isRight_ ? end - 1 : first);
        if (count() == channels_) return kernels_.mean(sums, low, (end - first) * count(), Sum(length_));
        for (size_t k = 0; k < end - first; ++k) {
            kernels_.mean(sums + k * count(), low + k * channels_, count(), Sum(length_));
        }
    }

    const MotionImages& images_;
    const MotionSums<Sum>& kernels_ = Kernels<MotionKernels>().For<Sum>();
    const size_t channels_, width_;
    const bool isRight_;
    const size_t length_;
};

// Windows down the columns of their pixels, or up, for one row after the other.
template <class Sum>
class ColumnWindows {
public:
    ColumnWindows(const MotionImages& images, bool isDown, size_t length)
        : images_(images), height_(images.src.height), isDown_(isDown), length_(std::min(length, height_))
    {
    }

    // False when memory is out.
    [[nodiscard]] bool Prepare()
    {
        const size_t samples = images_.src.SamplesPerRow();
        if (!sums_.Resize(samples)) return false;
        std::memset(sums_.GetData(), 0, samples * sizeof(Sum));
        // Row 0 takes in the last row of its window.
        for (size_t y = 0; isDown_ && y + 1 < length_; ++y) Enter(y);
        return true;
    }

    void BlurRow(u32 y)
    {
        if (isDown_) {
            if (y > 0) Leave(y - 1);
            if (y + length_ <= height_) Enter(y + length_ - 1);
        } else {
            if (y >= length_) Leave(y - length_);
            Enter(y);
        }
        const size_t rows = std::min<size_t>(length_, isDown_ ? height_ - y : size_t(y) + 1);
        kernels_.mean(sums_.GetData(), images_.dst.Row(y), sums_.GetCount(), Sum(rows));
    }

private:
    void Enter(size_t y) { kernels_.add(sums_.GetData(), images_.src.Row(u32(y)), sums_.GetCount(), Sum(1)); }
    void Leave(size_t y) { kernels_.add(sums_.GetData(), images_.src.Row(u32(y)), sums_.GetCount(), Sum(-1)); }

    const MotionImages& images_;
    const MotionSums<Sum>& kernels_ = Kernels<MotionKernels>().For<Sum>();
    const size_t height_;
    const bool isDown_;
    const size_t length_;
    MVBuffer<Sum> sums_;
};

template <class Sum>
AxisBlur BlurWithSums(CallFrame& frame, const MotionImages& images, const AxisWalk& walk)
{
    if (walk.dx != 0) {
        const RowWindows<Sum> windows(images, walk.dx > 0, walk.length);
        return {true, BlurRows(frame, images, [&](u32 y) { windows.BlurRow(y); })};
    }
    ColumnWindows<Sum> windows(images, walk.dy > 0, walk.length);
    if (!windows.Prepare()) return {false, 0};
    return {true, BlurRows(frame, images, [&](u32 y) { windows.BlurRow(y); })};
}

}  // namespace

AxisBlur BlurAlongAxis(CallFrame& frame, const MotionImages& images, const AxisWalk& walk)
{
    const u64 longest = std::min<u64>(walk.length, walk.dx != 0 ? images.src.width : images.src.height);
    if (longest <= kMostSummed<u16>) return BlurWithSums<u16>(frame, images, walk);
    if (longest <= kMostSummed<u32>) return BlurWithSums<u32>(frame, images, walk);
    return BlurWithSums<u64>(frame, images, walk);
}

}  // namespace zlv
