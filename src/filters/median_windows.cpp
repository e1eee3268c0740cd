// Medians of square windows.
//
// Windows of up to 5 x 5 go through sorting networks, with all channels side by side. Larger ones go through
// histograms, channel by channel, in tiles: a few hundred columns from top to bottom, whose histograms stay in the
// caches. The tiles of wide windows are wider, since neighbours hold the columns between them twice.
#include "filters/median_windows.h"

#include "filters/median_blend.kernels.h"
#include "filters/median_networks.kernels.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace zlv {

namespace {

constexpr u8 kTop = 255;
constexpr u64 kColumnAlignment = 64;
constexpr size_t kTileColumns = 256;
constexpr size_t kCountsPerColumn = kMedianBins + kMedianBins * kMedianBins;
constexpr size_t kLargestNarrowSide = 255;  // its square is the last that 16 bits count

// The row or column at `place`, or the nearest that there is.
u32 Nearest(i64 place, u32 count) { return u32(std::clamp<i64>(place, 0, i64(count) - 1)); }

// Asks for a row before it is needed: it is on its way while other rows are worked on.
void FetchAhead(const u8* row, size_t bytes)
{
    constexpr size_t kCacheLine = 64;
    for (size_t i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(row + i);
}

// How many samples, `step` apart, are the top level before the first that is not.
size_t LeadingTops(const u8* samples, size_t count, size_t step)
{
    size_t i = 0;
    while (i < count && samples[i * step] == kTop) ++i;
    return i;
}

// The same for samples side by side, rounded down to eights.
size_t LeadingTopsByEights(const u8* samples, size_t count)
{
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        u64 eight;
        std::memcpy(&eight, samples + i, sizeof eight);
        if (eight != ~u64(0)) break;
    }
    return i;
}

// Medians of `step` channels settle below the top, but for the first ones of each channel that are all there.
void Settle(u8* medians, size_t pixels, size_t step)
{
    const size_t first = LeadingTopsByEights(medians, pixels * step) / step;
    u8* const rest = medians + first * step;
    size_t leading[kMostMedianStep];
    for (size_t c = 0; c < step; ++c) leading[c] = LeadingTops(rest + c, pixels - first, step);
    Kernels<MedianBlendKernels>().limit(rest, (pixels - first) * step, kTop - 1);
    for (size_t c = 0; c < step; ++c) {
        for (size_t i = 0; i < leading[c]; ++i) rest[i * step + c] = kTop;
    }
}

}  // namespace

// ---- Output ----

bool MedianOutput::Prepare(u32 channelsAtOnce)
{
    return !job_.blend.isOn || source_.Resize(u64(job_.src.width) * channelsAtOnce);
}

u8* MedianOutput::Place(u32 y, u32 x, const ChannelList& channels, u8* buffer) const
{
    return channels.IsAll() ? job_.dst.Row(y) + PlaceInRow(x) : buffer;
}

void MedianOutput::Put(u32 y, u32 x, size_t pixels, const ChannelList& channels, u8* medians)
{
    u8* const place = job_.dst.Row(y) + PlaceInRow(x);
    if (job_.blend.isOn) {
        const u8* source = job_.src.Row(y) + PlaceInRow(x);
        if (!channels.IsAll()) {
            channels.Gather(source, pixels, source_.GetData());
            source = source_.GetData();
        }
        Kernels<MedianBlendKernels>().blend(medians, source, pixels * channels.Count(), job_.blend.threshold,
                                            job_.blend.weight, medians);
    }
    if (medians != place) channels.Scatter(medians, pixels, place);
}

// ---- Small windows ----

bool SmallMedians::Prepare(u32 channelsAtOnce)
{
    const u64 row = (u64(job_.src.width) + 2 * job_.half) * channelsAtOnce + kMedianSlack;
    return rows_.Resize(job_.Side(), row) && medians_.Resize(row) && output_.Prepare(channelsAtOnce);
}

void SmallMedians::Run(const ChannelList& channels)
{
    const u32 height = job_.src.height;
    u32 taken = 0;
    for (u32 y = 0; y < height; ++y) {
        for (; taken < height && taken <= u64(y) + job_.half; ++taken) TakeRow(taken, channels);
        if (taken < height) FetchAhead(job_.src.Row(taken), job_.src.SamplesPerRow());
        MakeRow(y, channels);
    }
}

void SmallMedians::TakeRow(u32 y, const ChannelList& channels)
{
    u8* const row = rows_.Row(y);
    channels.Gather(job_.src.Row(y), job_.src.width, row + job_.half * channels.Count());
    ReplicateBorders(row, job_.src.width, channels.Count(), job_.half);
}

void SmallMedians::MakeRow(u32 y, const ChannelList& channels)
{
    const size_t step = channels.Count(), pixels = job_.endColumn - job_.firstColumn;
    const u8* window[2 * kLargestHalf + 1];  // a smaller window has fewer rows, and nobody looks at the others
    for (u32 i = 0; i < std::size(window); ++i) {
        window[i] = rows_.Row(Nearest(i64(y) + i - job_.half, job_.src.height)) + job_.firstColumn * step;
    }
    u8* const medians = output_.Place(y, job_.firstColumn, channels, medians_.GetData());
    bool startsAtTop = false;
    if (job_.settlesBelowTop) {
        MakeMedians(window, step, step, kTop, medians);
        startsAtTop = std::find(medians, medians + step, kTop) != medians + step;
    }
    MakeMedians(window, step, pixels * step, job_.settlesBelowTop && !startsAtTop ? kTop - 1 : kTop, medians);
    if (startsAtTop) Settle(medians, pixels, step);
    output_.Put(y, job_.firstColumn, pixels, channels, medians);
}

void SmallMedians::MakeMedians(const u8* const* window, size_t step, size_t count, u8 top, u8* medians) const
{
    const MedianNetworkKernels& kernels = Kernels<MedianNetworkKernels>();
    if (job_.half == 2) {
        kernels.medians5(window, step, count, top, medians);
    } else if (job_.half == 1) {
        kernels.medians3(window, step, count, top, medians);
    } else {
        std::memcpy(medians, window[0], count);
        Kernels<MedianBlendKernels>().limit(medians, count, top);
    }
}

// ---- Large windows ----

bool LargeMedians::Prepare(u32)
{
    const size_t half = job_.half, width = job_.src.width;
    const size_t tile = std::min(width, std::max(kTileColumns, 4 * half));
    const size_t held = std::min(width, tile + 2 * half);
    return counts_.Resize(held * kCountsPerColumn, kColumnAlignment) && medians_.Resize(tile) &&
           (!job_.settlesBelowTop || isAtTop_.Resize(job_.src.height)) && output_.Prepare(1);
}

void LargeMedians::Run(const ChannelList& channels)
{
    for (u32 i = 0; i < channels.Count(); ++i) {
        const ChannelList one(1u << channels.At(i), job_.src.channels);
        for (u32 x = job_.firstColumn; x < job_.endColumn;) {
            const u32 end = u32(std::min<u64>(x + medians_.GetCount(), job_.endColumn));
            RunTile(one, x, end);
            x = end;
        }
    }
}

void LargeMedians::RunTile(const ChannelList& channel, u32 first, u32 end)
{
    const ImageView<const u8>& src = job_.src;
    const i64 half = job_.half;
    const u32 firstHeld = Nearest(first - half, src.width), lastHeld = Nearest(end - 1 + half, src.width);
    const size_t held = size_t(lastHeld) - firstHeld + 1;
    const MedianColumns columns = {counts_.GetData(), counts_.GetData() + held * kMedianBins, held};
    const size_t place = size_t(firstHeld) * src.channels + channel.At(0);
    const MedianRun run = {first - half - firstHeld, i64(job_.Side()), end - first, medians_.GetData()};
    const MedianColumnKernels& kernels = Kernels<MedianColumnKernels>();
    const auto makeMedians = job_.Side() > kLargestNarrowSide ? kernels.wideMedians : kernels.narrowMedians;

    CountFirstWindow(columns, src.data + place);
    for (u32 y = 0; y < src.height; ++y) {
        const u32 leaving = Nearest(y - 1 - half, src.height), entering = Nearest(y + half, src.height);
        if (y > 0 && leaving != entering) {
            kernels.moveRow(columns, src.Row(leaving) + place, src.Row(entering) + place, src.channels);
        }
        makeMedians(columns, run);
        if (job_.settlesBelowTop) SettleTile(y, first == job_.firstColumn, run);
        output_.Put(y, first, end - first, channel, run.medians);
    }
}

void LargeMedians::SettleTile(u32 y, bool isFirst, const MedianRun& run)
{
    const bool wasAtTop = isFirst || isAtTop_[y];
    const size_t leading = wasAtTop ? LeadingTops(run.medians, run.count, 1) : 0;
    Kernels<MedianBlendKernels>().limit(run.medians + leading, run.count - leading, kTop - 1);
    isAtTop_[y] = leading == run.count;
}

// `image` is the sample of the first row in the first column.
void LargeMedians::CountFirstWindow(const MedianColumns& columns, const u8* image)
{
    std::fill_n(counts_.GetData(), columns.count * kCountsPerColumn, u16(0));
    const u32 last = Nearest(job_.half, job_.src.height);
    for (u32 y = 0; y <= last; ++y) {
        // The first row stands for those above the image, and the last one for those below.
        const u32 above = y == 0 ? job_.half : 0, below = y == last ? job_.half - last : 0;
        Kernels<MedianColumnKernels>().addRow(columns, image + size_t(y) * job_.src.stride, job_.src.channels,
                                              1 + above + below);
    }
}

}  // namespace zlv
