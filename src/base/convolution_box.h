// Convolution with a kernel whose entries are all the same but for the one in the middle, as of ridges.
//
// Its sum is that of a plain window and of the pixel's own sample. The windows' sums slide, so that a larger kernel
// costs no more. This is for kernels of whole numbers (in units of a power of two) that are exact in any order.
#pragma once

#include "base/channel_list.h"
#include "base/convolution.kernels.h"
#include "base/image_view.h"
#include "base/sample.h"
#include "runtime/array.h"

namespace zlv {

struct BoxKernel {
    u32 width = 0, height = 0;
    i64 around = 0, middle = 0;  // the two weights, in units
    f64 unit = 1;

    bool IsBox() const { return width > 0; }
};

// The kernel as a box; it is none when its entries differ, when it is so small that sums beside each other are faster,
// or when a sum of samples up to `top` may not be exact. `unit` is the kernel's, or 0.
BoxKernel FindBoxKernel(const f64* entries, u32 width, u32 height, f64 unit, u32 top);

// Makes rows one after the other, from the top.
template <class T>
class BoxRows {
public:
    BoxRows(const ImageView<const T>& src, const ChannelList& channels, const BoxKernel& kernel,
            const ConvolutionResult& result);

    [[nodiscard]] bool Prepare();

    // The selected samples of row y; y counts up from 0.
    void MakeRow(u32 y, T* out);

private:
    const T* Samples(u64 y, MVBuffer<T>& copy);
    void AddUp();
    T Finish(i64 windowSum, T own) const;

    const ImageView<const T>& src_;
    const ChannelList& channels_;
    const BoxKernel& kernel_;
    const ConvolutionResult result_;
    const size_t count_;
    MVBuffer<u32> columns_;  // the sums of a window's rows
    MVBuffer<T> entering_, leaving_;
};

extern template class BoxRows<u8>;
extern template class BoxRows<u16>;

}  // namespace zlv
