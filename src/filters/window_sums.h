// The sums of what samples count in the square window around each pixel, one row after the other.
//
// Each column of the windows keeps its sum, which the row that enters is added to and the one that leaves is taken
// from; the sum of neighbouring columns moves along the row likewise. Integers: the order of additions changes nothing,
// and the cost does not grow with the window. Beyond its edges the image repeats its border pixels.
#pragma once

#include "base/row_ring.h"
#include "filters/window_filter.h"
#include "filters/window_sums.kernels.h"

namespace zlv {

// What samples count: themselves, in sums of 16 or 32 bits.
template <class Number>
struct SampleCounts {
    using Sum = Number;

    static const ColumnSumKernels<Sum>& Table()
    {
        if constexpr (sizeof(Sum) == sizeof(u16)) return Kernels<WindowSumKernels>().narrowSamples;
        else return Kernels<WindowSumKernels>().samples;
    }
    void AddRow(Sum* columns, const u8* row, u32 times, size_t count) const
    {
        Table().addRow(columns, row, Sum(times), count);
    }
    void MoveRow(Sum* columns, const u8* entering, const u8* leaving, size_t count) const
    {
        Table().moveRow(columns, entering, leaving, count);
    }
};

struct SquareCounts {
    using Sum = u32;

    void AddRow(u32* columns, const u8* row, u32 times, size_t count) const
    {
        Kernels<WindowSumKernels>().squares.addRow(columns, row, times, count);
    }
    void MoveRow(u32* columns, const u8* entering, const u8* leaving, size_t count) const
    {
        Kernels<WindowSumKernels>().squares.moveRow(columns, entering, leaving, count);
    }
};

// A number for each level. Look-ups one by one are faster than those of vectors (bench: HarmonicMeanFilter/rgb8).
struct TableCounts {
    using Sum = u64;

    const u64* values;

    void AddRow(u64* columns, const u8* row, u32 times, size_t count) const
    {
        for (size_t i = 0; i < count; ++i) columns[i] += times * values[row[i]];
    }
    void MoveRow(u64* columns, const u8* entering, const u8* leaving, size_t count) const
    {
        for (size_t i = 0; i < count; ++i) columns[i] += values[entering[i]] - values[leaving[i]];
    }
};

template <class Counts>
class WindowSums {
public:
    using Sum = typename Counts::Sum;

    explicit WindowSums(const WindowCall& call, const Counts& counts = Counts())
        : call_(call), counts_(counts), radius_(call.Radius())
    {
    }

    // Memory for as many channels as will be asked for, or more. False when it is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        const u64 rowLength = u64(call_.src.width) * channelsAtOnce;
        const u64 margins = kIsNarrow ? 2 * u64(radius_) * channelsAtOnce : 0;
        return columns_.Resize(rowLength + margins + kSumSlack) && sums_.Resize(rowLength + kSumSlack) &&
               entering_.Resize(rowLength) && leaving_.Resize(rowLength);
    }

    // Begins with the first row of the image.
    void Start(const ChannelList& channels)
    {
        channels_ = channels;
        y_ = 0;
        const size_t last = call_.src.height - 1;
        const size_t below = std::min<size_t>(radius_, last);
        std::fill_n(columns_.GetData(), columns_.GetCount(), Sum(0));
        AddRow(0, radius_ + 1);
        for (size_t y = 1; y <= below; ++y) AddRow(u32(y), 1);
        if (radius_ > last) AddRow(u32(last), u32(radius_ - last));
    }

    // The sums of the next row's windows, for the selected channels, one pixel after the other. Valid until the next
    // call.
    const Sum* Next()
    {
        const u32 width = call_.src.width, step = channels_.Count();
        if (y_ > 0) MoveDown();
        ++y_;
        const WindowSumKernels& kernels = Kernels<WindowSumKernels>();
        if constexpr (kIsNarrow) {
            ReplicateBorders(columns_.GetData(), width, step, radius_);
            kernels.narrowWindows(Columns(), width, step, radius_, sums_.GetData());
        } else if constexpr (sizeof(Sum) == sizeof(u32)) {
            kernels.windows(Columns(), width, step, radius_, sums_.GetData());
        } else {
            kernels.longWindows(Columns(), width, step, radius_, sums_.GetData());
        }
        return sums_.GetData();
    }

private:
    static constexpr bool kIsNarrow = sizeof(Sum) == sizeof(u16);

    size_t Count() const { return size_t(call_.src.width) * channels_.Count(); }
    Sum* Columns() { return columns_.GetData() + (kIsNarrow ? size_t(radius_) * channels_.Count() : 0); }
    const u8* Samples(u32 y, MVBuffer<u8>& copy) const
    {
        return SelectedSamples(call_.src, y, channels_, copy.GetData());
    }
    void AddRow(u32 y, u32 times) { counts_.AddRow(Columns(), Samples(y, entering_), times, Count()); }
    void MoveDown()
    {
        const u32 entering = u32(std::min(u64(y_) + radius_, u64(call_.src.height) - 1));
        const u32 leaving = y_ - 1 - std::min(y_ - 1, radius_);
        if (entering == leaving) return;
        counts_.MoveRow(Columns(), Samples(entering, entering_), Samples(leaving, leaving_), Count());
    }

    const WindowCall& call_;
    const Counts counts_;
    const u32 radius_;
    ChannelList channels_ = ChannelList(0, 0);
    u32 y_ = 0;
    MVBuffer<Sum> columns_;
    MVBuffer<Sum> sums_;
    MVBuffer<u8> entering_, leaving_;
};

}  // namespace zlv
