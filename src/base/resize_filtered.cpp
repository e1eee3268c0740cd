// The filter engine: across first, then down, a block of columns at a time.
//
// Between the two passes stands no image, but one block of columns of the destination's width and the source's height.
// The first pass takes as many rows as make long lines, turns the part of them that the block looks at on its side,
// weighs its lines, and turns the results back. Samples are kept as numbers: lines are weighed many times.
#include "base/resize_filters.h"
#include "base/resize_images.h"
#include "base/sample.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr u64 kSamplesPerLine = 96;  // what lines of both passes come near to
constexpr u64 kLeastTileRows = 32;
constexpr u64 kAlignment = 64;

constexpr u64 RoundUp(u64 value, u64 multiple) { return (value + multiple - 1) / multiple * multiple; }

// Room for `lines` lines of `pitch` numbers, all zero at first: what is not meant is weighed along.
[[nodiscard]] bool MakeLines(MVAlignedArray<f32>& array, u64 lines, u64 pitch)
{
    u64 count;
    if (__builtin_mul_overflow(lines, pitch, &count) || count > SIZE_MAX / 2) return false;
    if (!array.Resize(count + kResizeLineRoom, kAlignment)) return false;
    std::fill_n(array.GetData(), array.GetCount(), 0.0f);
    return true;
}

void Weigh(ResizeContribList& list, const ResizeLines& lines, size_t count, u8* out)
{
    const bool isSummedTwice = Kernels<ResizeLineKernels>().weigh(list, lines, count, out);
    if (isSummedTwice) list.isExact = true;  // as in its next lines, most likely
}

// One call at work.
class ResizeFilterState {
public:
    ResizeFilterState(const ResizeImages<u8>& images, const ResizeFilter& filter)
        : source_(images.source),
          destination_(images.destination),
          channels_(images.Channels()),
          blockColumns_(ColumnsAtOnce(images.destination)),
          tileRows_(std::min(RowsAtOnce(channels_), RoundUp(source_.height, kResizeBlock))),
          columnPitch_(RoundUp(blockColumns_ * channels_, kResizeBlock)),
          columnLists_(filter, source_.width, destination_.width),
          rowLists_(filter, source_.height, destination_.height)
    {
    }

    [[nodiscard]] bool Prepare()
    {
        const u64 tileSamples = columnLists_.SpanOf(u32(blockColumns_)) * channels_;
        const bool hasMemory = columnLists_.Resize(u32(blockColumns_)) && rowLists_.Resize(destination_.height) &&
                               MakeLines(tile_, RoundUp(tileSamples, kResizeBlock), tileRows_) &&
                               MakeLines(column_, RoundUp(source_.height, tileRows_), columnPitch_) &&
                               weighed_.Resize(blockColumns_ * channels_ * tileRows_);
        if (hasMemory) rowLists_.Build(0, destination_.height);
        return hasMemory;
    }

    u32 BlockColumns() const { return u32(blockColumns_); }

    // Source rows across, into the columns of the block that begins at column `first`.
    void FirstPass(u32 first, u32 count)
    {
        columnLists_.Build(first, count);
        const size_t lineSize = channels_ * tileRows_;
        const ResizeLines lines = {tile_.GetData(), lineSize, columnLists_.Lowest()};
        const size_t samples = (size_t(columnLists_.Highest()) - columnLists_.Lowest() + 1) * channels_;
        for (u64 y = 0; y < source_.height; y += tileRows_) {
            const size_t rows = std::min<u64>(tileRows_, source_.height - y);
            const u8* const from = source_.Row(u32(y)) + columnLists_.Lowest() * channels_;
            Kernels<ResizeLineKernels>().turn(from, source_.stride, rows, samples, tile_.GetData(), tileRows_);
            PrefetchRows(y + tileRows_, samples);
            for (u32 i = 0; i < count; ++i) Weigh(columnLists_[i], lines, lineSize, weighed_.GetData() + i * lineSize);
            Kernels<ResizeLineKernels>().turn(weighed_.GetData(), tileRows_, count * channels_, tileRows_,
                                              column_.GetData() + y * columnPitch_, columnPitch_);
        }
    }

    // Columns of the block down, into the destination.
    void SecondPass(u32 first, u32 count)
    {
        const ResizeLines lines = {column_.GetData(), columnPitch_, 0};
        for (u32 y = 0; y < destination_.height; ++y) {
            Weigh(rowLists_[y], lines, count * channels_, destination_.Row(y) + first * channels_);
        }
    }

private:
    // Rows that overlap keep what is written to them last, so there the columns follow each other one by one.
    static u64 ColumnsAtOnce(const ImageView<u8>& destination)
    {
        if (destination.stride < destination.SamplesPerRow()) return 1;
        return std::clamp<u64>(kSamplesPerLine / destination.channels, 1, destination.width);
    }

    static u64 RowsAtOnce(u64 channels)
    {
        return std::max(kLeastTileRows, kSamplesPerLine / channels / kResizeBlock * kResizeBlock);
    }

    // The rows of the next tile are far from each other: nobody else sees them coming.
    void PrefetchRows(u64 y, size_t samples) const
    {
        const size_t first = columnLists_.Lowest() * channels_;
        for (const u64 end = std::min<u64>(y + tileRows_, source_.height); y < end; ++y) {
            const u8* const row = source_.Row(u32(y)) + first;
            for (size_t at = 0; at < samples; at += kAlignment) __builtin_prefetch(row + at);
            __builtin_prefetch(row + samples - 1);
        }
    }

    const ImageView<const u8> source_;
    const ImageView<u8> destination_;
    const u64 channels_;
    const u64 blockColumns_;
    const u64 tileRows_;
    const u64 columnPitch_;
    ResizeContribTable columnLists_;
    ResizeContribTable rowLists_;
    MVAlignedArray<f32> tile_;    // samples of the source that the block looks at, a line each, tileRows_ rows
    MVAlignedArray<f32> column_;  // a line for each row of the source, with the samples of the block
    MVBuffer<u8> weighed_;        // samples of the block, a line each, tileRows_ rows
};

}  // namespace

u32 ResizeFiltered(BaseWork& work, const ResizeImages<u8>& images, u32 mode)
{
    const ResizeFilter& filter = ResizeFilterOf(mode);
    const ImageView<u8>& destination = images.destination;
    if (destination.width < filter.Need() || destination.height < filter.Need()) {
        return work.Fail(Error::TargetTooSmall);
    }
    ResizeFilterState state(images, filter);
    if (!state.Prepare()) return work.Fail(Error::OutOfMemory);

    for (u64 x = 0; x < destination.width; x += state.BlockColumns()) {
        const u32 first = u32(x), count = u32(std::min<u64>(state.BlockColumns(), destination.width - x));
        state.FirstPass(first, count);
        // Columns are reported before the block is written: after a cancel, later ones must not be.
        u32 reported = 0;
        bool goesOn = true;
        while (goesOn && reported < count) goesOn = work.Report(first + reported++, destination.width);
        state.SecondPass(first, reported);
        if (!goesOn) return 0;
    }
    return 1;
}

}  // namespace zlv
