// The Sobel filter: gradient magnitudes in 16 bits, for each channel or for a pixel's first three bytes together.
#include "base/channel_list.h"
#include "base/image_view.h"
#include "filters/sobel.kernels.h"
#include "runtime/frame.h"
#include "runtime/worker_threads.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

constexpr u32 kThreadedPixelBytes = 3;
constexpr u32 kStrips = 4;
constexpr u32 kSmallestSide = 2;  // the step to the next row and to the next column is always made

// Magnitudes are made in pieces of this many samples, which stay in the nearest cache.
constexpr u32 kPiece = 4096;

struct Call {
    ImageView<const u8> src;
    ImageView<u16> dst;
    u32 flags;

    bool HasColumnLeft() const { return flags & ZLV40_COLUMN_LEFT; }
    bool HasColumnRight() const { return flags & ZLV40_COLUMN_RIGHT; }
    u32 PixelsAPiece() const { return kPiece / src.channels; }
};

// At the edges of the image its edge rows stand for their neighbours outside, unless those are there.
SobelRows RowsAt(const Call& call, u32 y)
{
    const u8* const middle = call.src.Row(y);
    const bool hasAbove = y > 0 || (call.flags & ZLV40_ROWS_ABOVE);
    const bool hasBelow = y + 1 < call.src.height || (call.flags & ZLV40_ROWS_BELOW);
    return {hasAbove ? middle - call.src.stride : middle, middle, hasBelow ? middle + call.src.stride : middle};
}

u16 MagnitudeAtEdge(const SobelRows& rows, size_t i, size_t left, size_t right)
{
    const u8 *const u = rows.above + i, *const m = rows.middle + i, *const d = rows.below + i;
    const u8 ul = *(u - left), ur = u[right], l = *(m - left), r = m[right], dl = *(d - left), dr = d[right];
    const i32 gx = 2 * (l - r) + ul - ur + dl - dr;
    const i32 gy = 2 * (*u - *d) + ul + ur - dl - dr;
    return u16((gx < 0 ? -gx : gx) + (gy < 0 ? -gy : gy));
}

// The magnitudes of all samples of the pixels from `start` to `end`.
void MagnitudesOf(const Call& call, const SobelRows& rows, u32 start, u32 end, u16* magnitudes)
{
    const size_t step = call.src.channels;
    const u32 last = call.src.width - 1;
    const auto atEdge = [&](u32 x) {
        const size_t left = x > 0 || call.HasColumnLeft() ? step : 0;
        const size_t right = x < last || call.HasColumnRight() ? step : 0;
        for (size_t c = 0; c < step; ++c) {
            magnitudes[(x - start) * step + c] = MagnitudeAtEdge(rows, x * step + c, left, right);
        }
    };
    const u32 insideStart = std::max(start, 1u), insideEnd = std::min(end, last);
    if (start == 0) atEdge(0);
    if (insideStart < insideEnd) {
        const size_t at = insideStart * step;
        Kernels<SobelKernels>().magnitudes({rows.above + at, rows.middle + at, rows.below + at}, step,
                                           magnitudes + (insideStart - start) * step, (insideEnd - insideStart) * step);
    }
    if (end > last && last > 0) atEdge(last);
}

// Only the bits of the mask are written.
class ChannelRows {
public:
    explicit ChannelRows(const Call& call) : call_(call), channels_(call.flags, call.src.channels) {}

    void Write(const SobelRows& rows, u32 start, u32 end, u16* to)
    {
        if (channels_.Count() == 0) return;
        if (channels_.IsAll()) {
            MagnitudesOf(call_, rows, start, end, to);
            return;
        }
        MagnitudesOf(call_, rows, start, end, all_);
        const size_t channels = call_.src.channels;
        for (u32 c = 0; c < channels; ++c) {
            if (!((call_.flags >> c) & 1)) continue;
            for (size_t i = c; i < (end - start) * channels; i += channels) to[i] = all_[i];
        }
    }
    size_t SamplesAPixel() const { return call_.src.channels; }

private:
    const Call& call_;
    const ChannelList channels_;
    u16 all_[kPiece];
};

// One number a pixel. A fourth byte is skipped.
class CombinedRows {
public:
    explicit CombinedRows(const Call& call) : call_(call) {}

    void Write(const SobelRows& rows, u32 start, u32 end, u16* to)
    {
        MagnitudesOf(call_, rows, start, end, all_);
        Kernels<SobelKernels>().means(all_, call_.src.channels, to, end - start);
    }
    size_t SamplesAPixel() const { return 1; }

private:
    const Call& call_;
    u16 all_[kPiece];
};

// Runs over the image with the frame of a call of its own, on whichever thread.
template <class Rows>
u32 RunRows(const Call& call, CallFrame& frame)
{
    Rows writer(call);
    for (u32 y = 0; y < call.src.height; ++y) {
        const SobelRows rows = RowsAt(call, y);
        for (u32 start = 0; start < call.src.width;) {
            const u32 end = start + std::min(call.PixelsAPiece(), call.src.width - start);
            writer.Write(rows, start, end, call.dst.Row(y) + start * writer.SamplesAPixel());
            start = end;
        }
        if (!frame.Report(y, call.src.height)) return 0;
    }
    return 1;
}

bool IsUsable(const Call& call, bool hasRowBelow, bool hasColumnRight)
{
    if (!call.src.data || !call.dst.data || call.src.stride == 0 || call.dst.stride == 0) return false;
    const u32 leastWidth = hasColumnRight ? 1 : kSmallestSide, leastHeight = hasRowBelow ? 1 : kSmallestSide;
    return call.src.width >= leastWidth && call.src.height >= leastHeight;
}

// What only combined magnitudes know: bits that promise neighbours outside the image, and threads.
constexpr u32 kOfCombined =
    ZLV40_COLUMN_LEFT | ZLV40_COLUMN_RIGHT | ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW | ZLV40_WORKER_THREADS;

u32 FilterChannels(Call call)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const u32 channels = call.src.channels;
        call.flags &= ~kOfCombined;
        if (channels == 0 || channels > ChannelList::kMaxChannels || !IsUsable(call, false, false)) {
            return frame.Fail(Error::BadArgument);
        }
        return RunRows<ChannelRows>(call, frame);
    });
}

u32 FilterCombined(const Call& call)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const bool isUsable = IsUsable(call, call.flags & ZLV40_ROWS_BELOW, call.HasColumnRight());
        if (!isUsable || (call.src.channels != 3 && call.src.channels != 4)) return frame.Fail(Error::BadArgument);
        return RunRows<CombinedRows>(call, frame);
    });
}

// What a thread works on. Strips have rows above and below them where the image has.
struct Strip {
    Call call;
    Error result;
};

void RunStrip(void* argument)
{
    Strip& strip = *static_cast<Strip*>(argument);
    strip.result = Error::OutOfMemory;  // when this thread's records can't be had
    InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        strip.result = Error::None;
        return RunRows<CombinedRows>(strip.call, frame);
    });
}

// Returns the code itself and leaves the last error alone: callers expect 0 of a success here, and 1 elsewhere.
u32 FilterOnThreads(const Call& call)
{
    if (!IsUsable(call, false, false)) return u32(Error::BadArgument);
    Strip strips[kStrips];
    const u32 height = call.src.height, rows = height / kStrips;
    for (u32 i = 0; i < kStrips; ++i) {
        const u32 start = i * rows, end = i + 1 < kStrips ? start + rows : height;
        const u32 count = end - start;
        const u32 above = start > 0 ? u32(ZLV40_ROWS_ABOVE) : 0, below = end < height ? u32(ZLV40_ROWS_BELOW) : 0;
        strips[i].call = {{call.src.Row(start), call.src.width, count, kThreadedPixelBytes, call.src.stride},
                          {call.dst.Row(start), call.dst.width, count, 1, call.dst.stride},
                          above | below};
        strips[i].result = Error::None;
    }
    RunOnThreads(RunStrip, strips, kStrips);
    for (const Strip& strip : strips) {
        if (strip.result != Error::None) return u32(strip.result);
    }
    return u32(Error::None);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_SobelFilter(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 srcRowStride, u16* dst,
                                 u32 dstRowStride, u32 flags)
{
    const Call call = {
        {src, width, height, bytesPerPixel, srcRowStride}, {dst, width, height, bytesPerPixel, dstRowStride}, flags};
    if (!(flags & ZLV40_COMBINED)) return FilterChannels(call);
    return flags & ZLV40_WORKER_THREADS ? FilterOnThreads(call) : FilterCombined(call);
}
