// Resizing by averages, which only shrinks: of squares of whole pixels, and of exact areas.
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"
#include "base/sample.h"

#include <algorithm>

namespace zlv {

namespace {

// Copies an image that keeps its size, with as much of what follows the rows as both of them have.
template <class T>
void CopyRows(const ResizeImages<T>& images)
{
    const size_t count = std::min(images.source.stride, images.destination.stride);
    for (u32 y = 0; y < images.source.height; ++y) {
        std::memmove(images.destination.Row(y), images.source.Row(y), count * sizeof(T));
    }
}

// Where blocks begin: positions grow by addition, and so do their roundings.
class BlockStarts {
public:
    BlockStarts(f64 ratio, u32 sourceSize, u32 side) : ratio_(ratio), last_(sourceSize - side) {}

    u32 Next()
    {
        const u32 start = TruncateTo(last_, position_);
        position_ += ratio_;
        return start;
    }

private:
    const f64 ratio_;
    const u32 last_;
    f64 position_ = 0;
};

// Sums of the `side` rows from `top` on, then of `side` of their pixels.
template <class T>
class BlockSums {
public:
    BlockSums(const ImageView<const T>& source, u32 side) : source_(source), side_(side) {}

    [[nodiscard]] bool Prepare() { return ResizeForSamples(sums_, source_.width, source_.channels); }

    void AddRows(u32 top)
    {
        const size_t count = source_.SamplesPerRow();
        std::fill_n(sums_.GetData(), count, 0u);
        for (u32 j = 0; j < side_; ++j) SampleKernels<T>().addRow(source_.Row(top + j), count, sums_.GetData());
    }

    void WriteRow(const u32* starts, u32 width, T* out) const
    {
        if (source_.channels == 3) WritePixels(3, starts, width, out);
        else WritePixels(source_.channels, starts, width, out);
    }

private:
    [[gnu::always_inline]] void WritePixels(size_t channels, const u32* starts, u32 width, T* out) const
    {
        // The integer quotient: (sum + 0.5) / area is 0.5 / area or more away from every integer, and that is above
        // 2^-26; the two roundings are below 2^-36.
        const f64 inverseArea = 1.0 / (f64(side_) * side_);
        for (u32 x = 0; x < width; ++x) {
            const u32* const block = sums_.GetData() + starts[x] * channels;
            for (size_t c = 0; c < channels; ++c) {
                u32 sum = 0;
                for (u32 i = 0; i < side_; ++i) sum += block[i * channels + c];
                *out++ = T(u32((sum + 0.5) * inverseArea));
            }
        }
    }

    const ImageView<const T>& source_;
    const u32 side_;
    MVBuffer<u32> sums_;
};

template <class T>
bool IsHalving(const ResizeImages<T>& images)
{
    const u32 channels = images.Channels();
    return sizeof(T) == 1 && 1 <= channels && channels <= 4 && images.RatioX() == 2 && images.RatioY() == 2;
}

u32 HalveImage(BaseWork& work, const ResizeImages<u8>& images)
{
    const ImageView<u8>& destination = images.destination;
    for (u32 y = 0; y < destination.height; ++y) {
        const u8* const upper = images.source.Row(2 * y);
        Kernels<ResizeRowKernels>().halve(upper, upper + images.source.stride, images.Channels(),
                                          destination.SamplesPerRow(), destination.Row(y));
        if (!work.Report(y, destination.height)) return 0;
    }
    return 1;
}

// What one index of the destination covers in one direction of the source.
struct Coverage {
    u32 first;
    u32 count;
    f64 firstWeight, lastWeight;
    f64 norm;  // the sum of the weights

    Coverage(u32 index, f64 ratio)
    {
        const f64 start = index * ratio, end = start + ratio;
        const u64 last = u64(end + 0.99999999999);
        first = u32(start);
        count = u32(last - first);
        firstWeight = 1 - (start - first);
        // An end just above a whole number leaves next to nothing of the last pixel.
        lastWeight = end - f64(u64(end));
        if (lastWeight == 0) lastWeight = 1;
        norm = (f64(count) - 2) + firstWeight + lastWeight;
    }

    f64 WeightOf(u32 k) const
    {
        if (k >= count) return 0;
        if (k == 0) return firstWeight;
        return k == count - 1 ? lastWeight : 1.0;
    }
};

// The columns of an area average, by their place among those that a pixel of the destination covers. Pixels that cover
// fewer columns than others have a weight of 0 in the last places, which adds nothing to a sum.
template <class T>
class AreaColumns {
public:
    explicit AreaColumns(const ResizeImages<T>& images)
        : source_(images.source),
          ratio_(images.RatioX()),
          width_(images.destination.width),
          sampleCount_(images.destination.SamplesPerRow())
    {
    }

    [[nodiscard]] bool Prepare()
    {
        for (u32 x = 0; x < width_; ++x) {
            const u32 count = Coverage(x, ratio_).count;
            least_ = x == 0 ? count : std::min(least_, count);
            most_ = std::max(most_, count);
        }
        if (!norms_.Resize(sampleCount_) || !picked_.Resize(sampleCount_) || !tables_.Resize(TableCount()))
            return false;
        for (u64 i = 0; i < TableCount(); ++i) {
            if (!tables_[i].columns.Resize(width_) || !tables_[i].weights.Resize(sampleCount_)) return false;
        }
        for (u32 x = 0; x < width_; ++x) FillPixel(x);
        for (u64 i = 0; i < TableCount(); ++i) tables_[i].columns.Finish(source_);
        return true;
    }

    // Adds what a row of the source gives to each sample, columns from left to right.
    void AddRow(const T* row, f64 rowWeight, f64* sums)
    {
        for (u32 place = 0; place < most_; ++place) {
            const Table& table = tables_[TableOf(place)];
            const u32 further = place > 0 && place <= Shared() ? place - 1 : 0;
            table.columns.Pick(row + size_t(further) * source_.channels, picked_.GetData());
            SampleKernels<T>().addArea(picked_.GetData(), table.weights.GetData(), rowWeight, sampleCount_, sums);
        }
    }

    // The sums of each sample's weights in a row.
    const f64* Norms() const { return norms_.GetData(); }

private:
    struct Table {
        PickedColumns columns;
        MVBuffer<f64> weights;  // one for each sample of a row
    };

    // Between the first place and the last one of the pixel that covers fewest, all weigh 1: they share a table, with
    // the columns of the first of them.
    u32 Shared() const { return least_ > 2 ? least_ - 2 : 0; }
    u64 TableCount() const { return TableOf(most_ - 1) + 1; }
    u64 TableOf(u32 place) const
    {
        if (place == 0 || Shared() == 0) return place;
        return place <= Shared() ? 1 : place - Shared() + 1;
    }

    void FillPixel(u32 x)
    {
        const Coverage coverage(x, ratio_);
        SetPixel(norms_, x, coverage.norm);
        for (u32 place = 0; place < most_; ++place) {
            if (place > 1 && place <= Shared()) place = Shared() + 1;
            Table& table = tables_[TableOf(place)];
            // Rounding may let a pixel end beyond the source, with next to no weight: nothing is read there.
            table.columns[x] = u32(std::min<u64>(u64(coverage.first) + place, source_.width - 1));
            SetPixel(table.weights, x, coverage.WeightOf(place));
        }
    }

    void SetPixel(MVBuffer<f64>& table, u32 x, f64 value) const
    {
        std::fill_n(table.GetData() + u64(x) * source_.channels, source_.channels, value);
    }

    const ImageView<const T> source_;
    const f64 ratio_;
    const u32 width_;
    const u64 sampleCount_;
    u32 least_ = 0;
    u32 most_ = 0;
    MVBuffer<f64> norms_;
    MVBuffer<T> picked_;
    MVBuffer<Table> tables_;
};

}  // namespace

template <class T>
u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<T>& images)
{
    const ImageView<T>& destination = images.destination;
    constexpr u32 kMostPixels = 0xFFFFFFFFu / kTop<T>;  // of a block: the sum of its samples fits 32 bits
    const f64 rx = images.RatioX(), ry = images.RatioY();
    if (images.IsGrowing() || rx * ry > kMostPixels) return work.Fail(Error::BadArgument);
    if (images.IsSameSize()) {
        CopyRows(images);
        return 1;
    }
    if constexpr (sizeof(T) == 1) {
        if (IsHalving(images)) return HalveImage(work, images);
    }
    // A square also where the ratios differ: some of the source is then skipped.
    const u32 side = std::min(u32(rx), u32(ry));
    BlockSums<T> sums(images.source, side);
    MVBuffer<u32> lefts;
    if (!sums.Prepare() || !lefts.Resize(destination.width)) return work.Fail(Error::OutOfMemory);
    BlockStarts columns(rx, images.source.width, side);
    for (u32 x = 0; x < destination.width; ++x) lefts[x] = columns.Next();
    BlockStarts rows(ry, images.source.height, side);
    for (u32 y = 0; y < destination.height; ++y) {
        sums.AddRows(rows.Next());
        sums.WriteRow(lefts.GetData(), destination.width, destination.Row(y));
        if (!work.Report(y, destination.height)) return 0;
    }
    return 1;
}

template <class T>
u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<T>& images)
{
    if (images.IsGrowing()) return work.Fail(Error::BadArgument);
    const ImageView<T>& destination = images.destination;
    const u64 count = destination.SamplesPerRow();
    AreaColumns<T> columns(images);
    MVBuffer<f64> sums;
    if (!columns.Prepare() || !sums.Resize(count)) return work.Fail(Error::OutOfMemory);
    const u32 lastRow = images.source.height - 1;
    for (u32 y = 0; y < destination.height; ++y) {
        const Coverage rows(y, images.RatioY());
        std::fill_n(sums.GetData(), count, 0.0);
        f64 rowWeights = 0;
        for (u32 j = 0; j < rows.count; ++j) {
            const f64 rowWeight = rows.WeightOf(j);
            rowWeights += rowWeight;
            columns.AddRow(images.source.Row(std::min(rows.first + j, lastRow)), rowWeight, sums.GetData());
        }
        SampleKernels<T>().divideArea(sums.GetData(), columns.Norms(), rowWeights, count, destination.Row(y));
        if (!work.Report(y, destination.height)) return 0;
    }
    return 1;
}

template u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<u16>& images);
template u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<u16>& images);

}  // namespace zlv
