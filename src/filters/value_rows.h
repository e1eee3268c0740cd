// The latest rows of an image as numbers: a table's entry for each sample, with the border pixels repeated.
#pragma once

#include "base/row_ring.h"
#include "filters/power_means.kernels.h"
#include "filters/window_filter.h"

namespace zlv {

class ValueRows {
public:
    // `margin` pixels stand on either side of a row.
    ValueRows(const WindowCall& call, const f64* values, u32 margin) : call_(call), values_(values), margin_(margin) {}

    // Memory for as many channels as will be asked for, or more. False when it is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        const u64 wide = (call_.src.width + 2 * u64(margin_)) * channelsAtOnce;
        const u64 rows = std::min(call_.Side(), call_.src.height);
        return rows_.Resize(rows, wide + kOrderedSlack) && windowRows_.Resize(call_.Side()) &&
               samples_.Resize(u64(call_.src.width) * channelsAtOnce);
    }

    // Begins with the first row of the image.
    void Start(const ChannelList& channels)
    {
        channels_ = channels;
        y_ = begunRows_ = 0;
    }

    // Passes over the next row's windows.
    void Skip() { ++y_; }

    // The rows of the next row's windows, from top to bottom. Valid until the next call.
    const f64* const* Next()
    {
        const u32 radius = call_.Radius(), lastRow = call_.src.height - 1;
        const u32 last = u32(std::min(u64(y_) + radius, u64(lastRow)));
        for (; begunRows_ <= last; ++begunRows_) Make(begunRows_);
        for (u32 j = 0; j < call_.Side(); ++j) {
            const u32 unclamped = y_ + j < radius ? 0 : y_ + j - radius;
            windowRows_[j] = rows_.Row(std::min(unclamped, lastRow));
        }
        ++y_;
        return windowRows_.GetData();
    }

private:
    void Make(u32 y)
    {
        const size_t step = channels_.Count(), count = call_.src.width * step;
        const u8* const samples = SelectedSamples(call_.src, y, channels_, samples_.GetData());
        f64* const row = rows_.Row(y);
        f64* const first = row + margin_ * step;
        for (size_t i = 0; i < count; ++i) first[i] = values_[samples[i]];
        ReplicateBorders(row, call_.src.width, step, margin_);
        std::fill_n(first + count + margin_ * step, kOrderedSlack, 0.0);
    }

    const WindowCall& call_;
    const f64* const values_;
    const u32 margin_;
    ChannelList channels_ = ChannelList(0, 0);
    u32 y_ = 0, begunRows_ = 0;
    RowRing<f64> rows_;
    MVBuffer<const f64*> windowRows_;
    MVBuffer<u8> samples_;
};

}  // namespace zlv
