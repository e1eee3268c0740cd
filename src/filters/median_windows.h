// The medians of square windows whose borders repeat the image's, and what becomes of them.
#pragma once

#include "base/channel_list.h"
#include "base/image_view.h"
#include "base/row_ring.h"
#include "filters/median_columns.kernels.h"
#include "runtime/array.h"

namespace zlv {

// How a sample moves towards its median: not at all up to a difference of `threshold`, by weight / 255 of the way from
// there on. Off, the median itself is written.
struct MedianBlend {
    bool isOn = false;
    u32 threshold = 0;  // 0..255
    u32 weight = 0;     // 0..255
};

struct MedianJob {
    ImageView<const u8> src;
    ImageView<u8> dst;
    u32 half;                    // windows have 2 * half + 1 columns and rows
    u32 firstColumn, endColumn;  // the columns that are written
    // A running median climbs along its row and stops short of the last level: where the median is 255, it settles at
    // 254. Only a row that starts with 255 keeps it, for as long as its medians are all 255. Clients compare bytes: it
    // stays so.
    bool settlesBelowTop;
    MedianBlend blend;

    size_t Side() const { return 2 * size_t(half) + 1; }
};

// Writes a row's medians, or what the blend makes of them.
class MedianOutput {
public:
    explicit MedianOutput(const MedianJob& job) : job_(job) {}

    // False when memory is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce);

    // Where medians may be put to save a copy: the image, or else `buffer`.
    u8* Place(u32 y, u32 x, const ChannelList& channels, u8* buffer) const;

    // The medians of `pixels` pixels from x on, those of the selected channels side by side. They are overwritten.
    void Put(u32 y, u32 x, size_t pixels, const ChannelList& channels, u8* medians);

private:
    size_t PlaceInRow(u32 x) const { return size_t(x) * job_.src.channels; }

    const MedianJob& job_;
    MVBuffer<u8> source_;
};

// Windows of up to 5 x 5.
class SmallMedians {
public:
    static constexpr u32 kLargestHalf = 2;

    explicit SmallMedians(const MedianJob& job) : job_(job), output_(job) {}

    // False when memory is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce);
    // As many channels as were announced, or fewer.
    void Run(const ChannelList& channels);

private:
    void TakeRow(u32 y, const ChannelList& channels);
    void MakeRow(u32 y, const ChannelList& channels);
    void MakeMedians(const u8* const* window, size_t step, size_t count, u8 top, u8* medians) const;

    const MedianJob& job_;
    MedianOutput output_;
    RowRing<u8> rows_;
    MVBuffer<u8> medians_;
};

// Windows of any size: the cost of a sample does not depend on it.
class LargeMedians {
public:
    explicit LargeMedians(const MedianJob& job) : job_(job), output_(job) {}

    // False when memory is out.
    [[nodiscard]] bool Prepare(u32 channelsAtOnce);
    void Run(const ChannelList& channels);

private:
    void RunTile(const ChannelList& channel, u32 first, u32 end);
    void CountFirstWindow(const MedianColumns& columns, const u8* image);
    void SettleTile(u32 y, bool isFirst, const MedianRun& run);

    const MedianJob& job_;
    MedianOutput output_;
    MVAlignedArray<u16> counts_;
    MVBuffer<u8> medians_;
    MVBuffer<u8> isAtTop_;  // for each row: whether its medians so far are all 255
};

}  // namespace zlv
