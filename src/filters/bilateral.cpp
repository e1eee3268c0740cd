// The bilateral filter: each sample becomes an average of its neighbours, weighted by their distance and by how much
// they differ from it.
//
// Both forms go down the image with as many rows at hand as the window needs. The square form averages over all rows of
// a window. The separable one averages along each row as it comes in, and then down the columns of these averages.
#include "base/blur_images.h"
#include "base/channel_list.h"
#include "base/row_ring.h"
#include "base/sample.h"
#include "filters/bilateral_average.h"
#include "runtime/frame.h"
#include "runtime/worker_threads.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

struct Call {
    ImageView<const u8> src;
    ImageView<u8> dst;
    u32 filterSize;
    u32 weightKind;
    f64 sigma;

    // Even sizes grow by one.
    u32 Size() const { return filterSize | 1; }
};

// Rows with room beside them for the window.
class PaddedRows {
public:
    [[nodiscard]] bool Resize(u64 rows, const BilateralRow& row, u32 size)
    {
        margin_ = BilateralAverage::Margin(row, size);
        const u64 length = row.PaddedSamples() + 2 * margin_;
        if (!ring_.Resize(rows, length)) return false;
        for (u64 y = 0; y < rows; ++y) std::fill_n(ring_.Row(y), length, u8(0));
        return true;
    }

    u8* Row(u64 y) { return ring_.Row(y) + margin_; }

private:
    RowRing<u8> ring_;
    size_t margin_ = 0;
};

ChannelList ChannelsOf(const ChannelSpan& span, u32 channels)
{
    return {((1u << span.count) - 1) << span.first, channels};
}

// The window lacks its last row and its last column, and so has its middle one place off: results depend on it.
class SquareForm {
public:
    SquareForm(const Call& call, u32 flags)
        : call_(call),
          half_(call.Size() / 2),
          firstRow_(flags & ZLV40_ROWS_ABOVE ? -i64(half_) : 0),
          endRow_(i64(call.src.height) + (flags & ZLV40_ROWS_BELOW ? half_ : 0))
    {
    }

    // For spans of `channels`.
    [[nodiscard]] bool Prepare(u32 channels)
    {
        const BilateralRow row = {call_.src.width, channels};
        const u64 rows = 2 * u64(half_) + 1;
        return average_.Make(row, call_.Size(), WindowShape::Square, call_.sigma, call_.weightKind) &&
               rows_.Resize(rows, row, call_.Size()) && under_.Resize(rows) && averages_.Resize(row.PaddedSamples());
    }

    // False after a cancel.
    bool Run(const ChannelSpan& span, CallFrame& frame)
    {
        const ChannelList channels = ChannelsOf(span, call_.src.channels);
        i64 nextRow = firstRow_;
        for (i64 y = 0; y < i64(call_.src.height); ++y) {
            const i64 start = std::max(y - half_, firstRow_), end = std::min(y + half_, endRow_);
            for (; nextRow <= std::max(y, end - 1); ++nextRow) {
                channels.Gather(call_.src.data + nextRow * i64(call_.src.stride), call_.src.width, Row(nextRow));
            }
            for (i64 row = start; row < end; ++row) under_[size_t(row - start)] = Row(row) - half_ * span.count;
            const BilateralTaps taps = {under_.GetData(), size_t(end - start), size_t(2 * half_), size_t(half_),
                                        size_t(start - y + half_) * call_.Size()};
            average_.Average(taps, Row(y), averages_.GetData());
            channels.Scatter(averages_.GetData(), call_.src.width, call_.dst.Row(u32(y)));
            if (!frame.Report(u32(y), call_.src.height)) return false;
        }
        return true;
    }

private:
    u8* Row(i64 y) { return rows_.Row(u64(y - firstRow_)); }

    const Call& call_;
    const i64 half_;
    const i64 firstRow_, endRow_;  // that may be looked at
    BilateralAverage average_;
    PaddedRows rows_;
    MVBuffer<const u8*> under_;
    MVBuffer<u8> averages_;
};

class SeparableForm {
public:
    SeparableForm(const Call& call, u32) : call_(call), half_(call.Size() / 2) {}

    // For spans of `channels`.
    [[nodiscard]] bool Prepare(u32 channels)
    {
        const BilateralRow row = {call_.src.width, channels};
        return average_.Make(row, call_.Size(), WindowShape::Line, call_.sigma, call_.weightKind) &&
               samples_.Resize(1, row, call_.Size()) && rows_.Resize(call_.Size(), row, call_.Size()) &&
               under_.Resize(call_.Size()) && averages_.Resize(row.PaddedSamples());
    }

    // False after a cancel.
    bool Run(const ChannelSpan& span, CallFrame& frame)
    {
        const ChannelList channels = ChannelsOf(span, call_.src.channels);
        const u64 height = call_.src.height;
        u64 nextRow = 0;
        for (u64 y = 0; y < height; ++y) {
            const u64 start = y < half_ ? 0 : y - half_, end = std::min(y + half_ + 1, height);
            for (; nextRow < end; ++nextRow) AverageAlongRow(u32(nextRow), span.count, channels);
            for (u64 row = start; row < end; ++row) under_[row - start] = rows_.Row(row);
            const BilateralTaps taps = {under_.GetData(), end - start, 1, 0, start + half_ - y};
            average_.Average(taps, rows_.Row(y), averages_.GetData());
            channels.Scatter(averages_.GetData(), call_.src.width, call_.dst.Row(u32(y)));
        }
        return frame.Report(span.first, call_.src.channels);
    }

private:
    void AverageAlongRow(u32 y, u32 together, const ChannelList& channels)
    {
        u8* const samples = samples_.Row(0);
        channels.Gather(call_.src.Row(y), call_.src.width, samples);
        const u8* const under = samples - half_ * together;
        average_.Average({&under, 1, call_.Size(), half_, 0}, samples, rows_.Row(y));
    }

    const Call& call_;
    const size_t half_;
    BilateralAverage average_;
    PaddedRows samples_;  // one row
    PaddedRows rows_;     // averaged along themselves
    MVBuffer<const u8*> under_;
    MVBuffer<u8> averages_;
};

// Channel by channel where somebody hears of it, otherwise all together.
template <class Form>
Error Filter(const Call& call, u32 flags, CallFrame& frame)
{
    if (call.Size() > call.src.width || call.Size() > call.src.height) return Error::BadArgument;
    const u32 together = ChannelsTogether(flags, call.src.channels, !frame.MayReport());
    Form form(call, flags);
    if (!form.Prepare(together)) return Error::OutOfMemory;
    const bool isDone =
        ForEachSpan(flags, call.src.channels, together, [&](const ChannelSpan& span) { return form.Run(span, frame); });
    return isDone ? Error::None : Error::Cancelled;
}

// Each form has a frame of its own: on a thread of its own as well as on the caller's.
template <class Form>
u32 RunForm(const Call& call, u32 flags)
{
    Error error = Error::OutOfMemory;  // when this thread's records can't be had
    InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        error = Filter<Form>(call, flags, frame);
        return error == Error::None;
    });
    return u32(error);
}

// What a thread works on.
struct bilat {  // NOLINT(readability-identifier-naming): the record's name
    const u8* src;
    u32 width, height;
    u32 bytesPerPixel;
    u32 srcRowStride;
    u8* dst;
    u32 dstRowStride;
    u32 channelBit;  // also the whole of the worker's flags
    f64 sigma;
    u32 weightKind;
    u32 filterSize;
    u32 result;
    u32 threadIndex;
};

template <class Form>
void RunRecord(void* argument)
{
    bilat& record = *static_cast<bilat*>(argument);
    const Call call = {
        {record.src, record.width, record.height, record.bytesPerPixel, record.srcRowStride},
        {record.dst, record.width, record.height, record.bytesPerPixel, record.dstRowStride},
        record.filterSize,
        record.weightKind,
        record.sigma,
    };
    record.result = RunForm<Form>(call, record.channelBit);
}

// One thread a selected channel, whatever the number of processors.
u32 RunThreads(const Call& call, u32 flags)
{
    ZLVArray<bilat> records;
    u32 count = 0;
    for (u32 c = 0; c < call.src.channels; ++c) count += IsSelected(flags, c);
    if (count == 0) return u32(Error::None);
    if (!records.Resize(i32(count))) return u32(Error::OutOfMemory);
    for (u32 c = 0, index = 0; c < call.src.channels; ++c) {
        if (!IsSelected(flags, c)) continue;
        records[index] = {call.src.data,
                          call.src.width,
                          call.src.height,
                          call.src.channels,
                          call.src.stride,
                          call.dst.data,
                          call.dst.stride,
                          1u << c,
                          call.sigma,
                          call.weightKind,
                          call.filterSize,
                          0,
                          index};
        ++index;
    }
    const auto body = flags & ZLV40_SEPARABLE ? RunRecord<SeparableForm> : RunRecord<SquareForm>;
    // A thread that can't be created leaves the results as they are: callers are told of success.
    RunOnThreads(body, records.GetData(), count);
    for (u32 i = 0; i < count; ++i) {
        if (records[i].result) return records[i].result;
    }
    return u32(Error::None);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_BilateralFilterImage(const u8* src, u32 width, u32 height, u32 srcRowStride, u32 bytesPerPixel,
                                          u8* dst, u32 dstRowStride, u32 filterSize, u32 weightKind, f64 sigma,
                                          u32 flags)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!src || width == 0 || height == 0 || filterSize == 0) return frame.Fail(Error::BadArgument);
        if (sigma == 0.0 || !dst || srcRowStride == 0 || dstRowStride == 0) return frame.Fail(Error::BadArgument);
        if (bytesPerPixel == 0 || bytesPerPixel > kMaxMaskedChannels) return frame.Fail(Error::BadArgument);
        if (!AreWeightsUsable(sigma, weightKind, f64(filterSize) * filterSize)) return frame.Fail(Error::BadArgument);

        const Call call = {{src, width, height, bytesPerPixel, srcRowStride},
                           {dst, width, height, bytesPerPixel, dstRowStride},
                           filterSize,
                           weightKind,
                           sigma};
        u32 code;
        if (flags & ZLV40_WORKER_THREADS) code = RunThreads(call, flags);
        else if (flags & ZLV40_SEPARABLE) code = RunForm<SeparableForm>(call, flags);
        else code = RunForm<SquareForm>(call, flags);
        frame.SetLastError(Error(code));
        return code == u32(Error::None);
    });
}
