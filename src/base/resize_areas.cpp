// Resizing by averages of exact areas, which only shrinks.
#include "base/resize_area_estimates.h"
#include "base/resize_coverage.h"
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"

#include <algorithm>

namespace zlv {

namespace {

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

// Sums in their own order, a row of the destination at a time.
template <class T>
class ExactAreas {
public:
    explicit ExactAreas(const ResizeImages<T>& images) : source_(images.source), columns_(images) {}

    [[nodiscard]] bool Prepare(u64 count) { return columns_.Prepare() && sums_.Resize(count); }

    void WriteRow(const Coverage& rows, T* out)
    {
        const u64 count = sums_.GetCount();
        std::fill_n(sums_.GetData(), count, 0.0);
        f64 rowWeights = 0;
        for (u32 j = 0; j < rows.count; ++j) {
            const f64 rowWeight = rows.WeightOf(j);
            rowWeights += rowWeight;
            columns_.AddRow(source_.Row(std::min(rows.first + j, source_.height - 1)), rowWeight, sums_.GetData());
        }
        SampleKernels<T>().divideArea(sums_.GetData(), columns_.Norms(), rowWeights, count, out);
    }

private:
    const ImageView<const T> source_;
    AreaColumns<T> columns_;
    MVBuffer<f64> sums_;
};

// Estimates, with a pause after rows that they did not decide: the longer, the more of them follow one another.
template <class T>
class DecidedAreas {
public:
    explicit DecidedAreas(const ResizeImages<T>& images) : estimated_(images), exact_(images) {}

    bool IsWorthwhile() const { return estimated_.IsWorthwhile(); }

    [[nodiscard]] bool Prepare(u64 count) { return estimated_.Prepare(count) && exact_.Prepare(count); }

    void WriteRow(const Coverage& rows, T* out)
    {
        if (rowsToSkip_ > 0) {
            --rowsToSkip_;
        } else {
            const bool isDecided = estimated_.WriteRow(rows, out);
            pause_ = isDecided ? 0 : std::min(2 * pause_ + 1, kLongestPause);
            rowsToSkip_ = pause_;
            if (isDecided) return;
        }
        exact_.WriteRow(rows, out);
    }

private:
    static constexpr u32 kLongestPause = 31;

    EstimatedAreas<T> estimated_;
    ExactAreas<T> exact_;
    u32 pause_ = 0;
    u32 rowsToSkip_ = 0;
};

template <class T, class Areas>
u32 WriteAreas(BaseWork& work, const ResizeImages<T>& images, Areas& areas)
{
    if (!areas.Prepare(images.destination.SamplesPerRow())) return work.Fail(Error::OutOfMemory);
    const u32 height = images.destination.height;
    for (u32 y = 0; y < height; ++y) {
        areas.WriteRow(Coverage(y, images.RatioY()), images.destination.Row(y));
        if (!work.Report(y, height)) return 0;
    }
    return 1;
}

}  // namespace

template <class T>
u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<T>& images)
{
    if (images.IsGrowing()) return work.Fail(Error::BadArgument);
    DecidedAreas<T> decided(images);
    if (decided.IsWorthwhile()) return WriteAreas(work, images, decided);
    ExactAreas<T> exact(images);
    return WriteAreas(work, images, exact);
}

template u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeAreaAverage(BaseWork& work, const ResizeImages<u16>& images);

}  // namespace zlv
