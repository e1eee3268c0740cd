// The largest or the smallest sample of the square window around each pixel, one row after the other.
//
// The extreme of a square is that of its columns' extremes. Those of low windows come from their rows at once. For
// others the rows go through blocks as high as the window (M. van Herk, "A fast algorithm for local minimum and maximum
// filters on rectangular and octagonal kernels", Pattern Recognition Letters 13 (1992)): a window that begins at row k
// of a block is the extreme of the rest of the block and of the first k rows of the next one. Along a row, extremes of
// 4, 16, 64, ... neighbours make the window. The cost does not grow with the window.
//
// Beyond its edges the image repeats its border pixels, which adds nothing to an extreme: windows end there.
#pragma once

#include "base/channel_list.h"
#include "base/image_view.h"
#include "base/row_ring.h"
#include "base/running_extremes.kernels.h"

namespace zlv {

enum class Extreme : u8 { Largest, Smallest };

class RunningExtremes {
public:
    // The window reaches `radius` pixels to each side, any number. The image has pixels.
    RunningExtremes(const ImageView<const u8>& src, u32 radius, Extreme extreme);

    // Memory for as many channels as will be asked for, or more. False when it is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce);

    // Begins with the first row of the image.
    void Start(const ChannelList& channels);

    // The extremes of the next row's windows: the samples of the selected channels, one pixel after the other.
    void Next(u8* out);

private:
    u32 Window() const { return 2 * radiusY_ + 1; }
    size_t Count() const { return size_t(src_.width) * channels_.Count(); }
    const u8* Samples(u32 row);
    void ColumnsOfFewRows(u8* out);
    void ColumnsOfBlocks(u8* out);

    const ImageView<const u8> src_;
    const u32 radiusX_, radiusY_;  // more would find the same pixels again
    const RunningExtremesKernels::Operation& operation_;
    const u8 neutral_;  // never the extreme of anything else
    ChannelList channels_ = ChannelList(0, 0);
    u32 y_ = 0;
    MVBuffer<u8> wide_[2];  // with room for the pixels beyond the edges
    MVBuffer<u8> copy_;
    RowRing<u8> rests_;   // from each row of the block on, the extremes up to its end
    MVBuffer<u8> soFar_;  // those of the rows behind the block
};

}  // namespace zlv
