// The despeckle filter.
//
// Sixteen passes go over the whole image, four along each of four directions. Here they go over bands of rows, which
// stay in the cache: rows enter a window at its lower end, the direction down the rows is done with all but the last
// six of them, the direction along the rows follows, and the two diagonals, each six rows further up; what comes out at
// the upper end goes back into the image. All channels go through together as wide pixels, or one after the other when
// somebody wants to see them done one by one.
#include "base/despeckle.h"

#include "base/channel_list.h"
#include "base/despeckle.kernels.h"
#include "base/image_view.h"
#include "runtime/array.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

constexpr size_t kBandRows = 32;
constexpr size_t kStagesAcrossRows = 3;
constexpr size_t kTotalLag = kStagesAcrossRows * kSpeckleLag;
constexpr size_t kWindowRows = kBandRows + kTotalLag;
constexpr u32 kReportedTotal = 3;  // clients see this total, whatever the number of channels is

class Despeckler {
public:
    Despeckler(const ImageView<u8>& image, u32 channelsAtOnce)
        : image_(image),
          margin_((kBandRows + kSpeckleLag) * channelsAtOnce + kSpeckleLanes),
          pitch_(size_t(image.width) * channelsAtOnce + 2 * margin_)
    {
    }

    [[nodiscard]] bool Prepare()
    {
        return window_.Resize(kWindowRows * pitch_) && states_.Resize(kStagesAcrossRows * kSpeckleStates * pitch_) &&
               work_.Resize(pitch_) && inside_.Resize(pitch_);
    }

    // As many channels as were announced, or fewer.
    void Run(const ChannelList& channels)
    {
        const i64 height = image_.height;
        const i64 lag = kTotalLag;
        Clear(channels);
        for (i64 y = 0; y < height + lag; y += kBandRows) {
            TakeRows(channels, y);
            AcrossRows(0, 0, y, channels);
            AlongRows(y - i64(kSpeckleLag), channels);
            AcrossRows(1, 1, y - i64(kSpeckleLag), channels);
            AcrossRows(2, -1, y - 2 * i64(kSpeckleLag), channels);
            PutRows(channels, y - lag);
            std::memmove(window_.GetData(), window_.GetData() + kBandRows * pitch_, kTotalLag * pitch_);
        }
    }

private:
    size_t RowBytes(const ChannelList& channels) const { return size_t(image_.width) * channels.Count(); }
    bool IsInside(i64 y) const { return y >= 0 && y < i64(image_.height); }

    // The row of the window that stands `lag` rows before those that come in.
    u8* WindowRow(size_t lag) { return window_.GetData() + (kTotalLag - lag) * pitch_ + margin_; }

    void Clear(const ChannelList& channels)
    {
        std::fill_n(window_.GetData(), window_.GetCount(), u8(0));
        std::fill_n(states_.GetData(), states_.GetCount(), u8(0));
        std::fill_n(work_.GetData(), work_.GetCount(), u8(0));
        std::fill_n(inside_.GetData(), inside_.GetCount(), u8(0));
        std::fill_n(inside_.GetData() + margin_, RowBytes(channels), u8(255));
    }

    // Rows y to y + kBandRows - 1 come in; below the image there are zeros.
    void TakeRows(const ChannelList& channels, i64 y)
    {
        for (size_t i = 0; i < kBandRows; ++i) {
            u8* const row = WindowRow(0) + i * pitch_;
            if (IsInside(y + i64(i))) channels.Gather(image_.Row(u32(y + i64(i))), image_.width, row);
            else std::memset(row, 0, RowBytes(channels));
        }
    }

    // One of the directions that lead from row to row; `first` is the first row that it takes in.
    void AcrossRows(size_t stage, i32 direction, i64 first, const ChannelList& channels)
    {
        SpeckleBand band;
        band.firstRow = WindowRow(stage * kSpeckleLag);
        band.pitch = pitch_;
        band.first = first;
        band.rowCount = kBandRows;
        band.height = image_.height;
        band.width = RowBytes(channels);
        band.step = channels.Count();
        band.direction = direction;
        band.states = states_.GetData() + stage * kSpeckleStates * pitch_ + margin_;
        band.inside = inside_.GetData() + margin_;
        Kernels<DespeckleKernels>().passesAcrossRows(band);
    }

    void AlongRows(i64 first, const ChannelList& channels)
    {
        for (size_t i = 0; i < kBandRows; ++i) {
            if (!IsInside(first + i64(i))) continue;
            Kernels<DespeckleKernels>().passesAlongRow(WindowRow(kSpeckleLag) + i * pitch_, work_.GetData() + margin_,
                                                       RowBytes(channels), channels.Count(),
                                                       inside_.GetData() + margin_);
        }
    }

    void PutRows(const ChannelList& channels, i64 first)
    {
        for (size_t i = 0; i < kBandRows; ++i) {
            if (!IsInside(first + i64(i))) continue;
            channels.Scatter(WindowRow(kTotalLag) + i * pitch_, image_.width, image_.Row(u32(first + i64(i))));
        }
    }

    const ImageView<u8> image_;
    const size_t margin_;  // zeros on either side of a row
    const size_t pitch_;
    MVBuffer<u8> window_;
    MVBuffer<u8> states_;
    MVBuffer<u8> work_;
    MVBuffer<u8> inside_;
};

u32 Despeckle(MVThreadContext& context, Error& error, const ImageView<u8>& image, u32 mask)
{
    BaseWork work(context, error);
    if (!image.data) return work.Fail(Error::BadArgument);
    if (image.channels > ChannelList::kMaxChannels) return work.Fail(Error::BadArgument);

    const ChannelList selected(mask, image.channels);
    const bool hasWork = image.width > 0 && image.height > 0 && selected.Count() > 0;
    Despeckler despeckler(image, work.MayReport() ? 1 : selected.Count());
    if (hasWork && !despeckler.Prepare()) return work.Fail(Error::OutOfMemory);
    if (!work.MayReport()) {
        if (hasWork) despeckler.Run(selected);
        return 1;
    }
    for (u32 c = 0; c < image.channels; ++c) {
        const ChannelList one(mask & (1u << c), image.channels);
        if (hasWork && one.Count() > 0) despeckler.Run(one);
        if (!work.Report(c, kReportedTotal)) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_DespeckleImage(u8* image, u32 width, u32 height, u32 channels, u32 rowStride, i32 channelMask)
{
    return InBaseCall("MV40_DespeckleImage", [&](MVThreadContext& context, Error& error) {
        return Despeckle(context, error, {image, width, height, channels, rowStride}, u32(channelMask));
    });
}

}  // namespace zlv
