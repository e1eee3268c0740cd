// Area averages by exact sums of whole pixels.
//
// An average is a sum of doubles that adds sample after sample, in an order of its own: its roundings are part of the
// result. Here integers add up what weighs 1, and a few doubles the rest. The two differ by less than a known bound, so
// that an average decided by the bound is right whatever its roundings were; the rest is made in the sum's own order.
#pragma once

#include "base/resize_coverage.h"
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"
#include "base/sample.h"

#include <algorithm>

namespace zlv {

template <class T>
class EstimatedAreas {
public:
    explicit EstimatedAreas(const ResizeImages<T>& images)
        : source_(images.source),
          ratio_(images.RatioX()),
          largestArea_((images.RatioX() + 2) * (images.RatioY() + 2)),
          tolerance_((largestArea_ + kOtherRoundings) * 0x1p-53)
    {
    }

    // Small areas are quicker to sum in their own order.
    bool IsWorthwhile() const
    {
        constexpr f64 kLeastArea = 40;
        constexpr u32 kMostArea = 0xFFFFFFFFu / kTop<T>;  // the sum of its samples fits 32 bits
        const u32 channels = source_.channels;
        return (channels == 1 || channels == 3 || channels == 4) && kLeastArea <= largestArea_ &&
               largestArea_ <= kMostArea;
    }

    [[nodiscard]] bool Prepare(u64 count)
    {
        const u64 width = count / source_.channels;
        if (!columns_.Resize(source_.SamplesPerRow()) || !across_.Resize(width) || !sums_.Resize(count) ||
            !edge_.Resize(count) || !undecided_.Resize(count + kTogether)) {
            return false;
        }
        std::fill_n(undecided_.GetData(), undecided_.GetCount(), size_t(0));
        for (u64 x = 0; x < width; ++x) across_[x] = Coverage(u32(x), ratio_);
        return true;
    }

    // Writes the averages of a row of the destination. False where so many are undecided, as in flat pictures, that
    // ExactAreas makes the whole row sooner; what was written is then to be written again.
    bool WriteRow(const Coverage& rows, T* out)
    {
        f64 rowWeights = 0;
        for (u32 j = 0; j < rows.count; ++j) rowWeights += rows.WeightOf(j);
        AddRows(rows);
        const size_t count = WriteDecided(rowWeights, out);
        if (count > sums_.GetCount() / 4) return false;
        for (size_t i = 0; i < count; i += kTogether) {
            f64 sums[kTogether];
            // What follows the last one has been filled with places of this row or of one above.
            const size_t* const places = undecided_.GetData() + i;
            SumExactly(rows, places, sums);
            for (size_t k = 0; k < kTogether && i + k < count; ++k) {
                out[places[k]] = T(i32(sums[k] / (NormOf(places[k]) * rowWeights)));
            }
        }
        return true;
    }

private:
    // A sum in its own order rounds once for each sample. More than all other roundings on both sides are: of weights,
    // products, partial sums, quotients, and of the bound itself.
    static constexpr f64 kOtherRoundings = 32;
    static constexpr u32 kNoRow = ~0u;
    static constexpr size_t kTogether = 8;

    // A column of the areas of some samples.
    struct Columns {
        f64 weights[kTogether];
        size_t samples[kTogether];
    };

    u32 RowOf(const Coverage& rows, u32 place) const { return std::min(rows.first + place, source_.height - 1); }

    f64 NormOf(size_t place) const { return across_[place / source_.channels].norm; }

    void AddRows(const Coverage& rows)
    {
        ClearColumns();
        for (u32 j = 0; j < rows.count; ++j) {
            if (rows.WeightOf(j) == 1) AddToColumns(RowOf(rows, j));
        }
        AddAcross(sums_.GetData());
        // The first row is often the last one of the areas above.
        if (rows.WeightOf(0) != 1) AddEdge(RowOf(rows, 0), rows.WeightOf(0));
        const u32 last = rows.count - 1;
        if (last > 0 && rows.WeightOf(last) != 1) AddEdge(RowOf(rows, last), rows.WeightOf(last));
    }

    // Lists the places of the averages that are not certain, and says how many they are.
    size_t WriteDecided(f64 rowWeights, T* out)
    {
        const f64 least = 1 - tolerance_, most = 1 + tolerance_;
        const u32 channels = source_.channels;
        size_t places = 0;
        for (size_t x = 0, i = 0; i < sums_.GetCount(); ++x) {
            const f64 norm = across_[x].norm * rowWeights;
            for (u32 c = 0; c < channels; ++c, ++i) {
                const f64 mean = sums_[i] / norm;
                out[i] = T(i32(mean * least));
                undecided_[places] = i;
                places += i32(mean * least) != i32(mean * most);
            }
        }
        return places;
    }

    // Some samples' sums, each in its own order: row by row, columns from left to right.
    void SumExactly(const Coverage& rows, const size_t* places, f64* to) const
    {
        const size_t channels = source_.channels;
        u32 least = ~0u, most = 0;
        for (size_t k = 0; k < kTogether; ++k) {
            least = std::min(least, across_[places[k] / channels].count);
            most = std::max(most, across_[places[k] / channels].count);
        }
        const auto columnsAt = [&](u32 i) {
            Columns columns;
            for (size_t k = 0; k < kTogether; ++k) {
                const Coverage& across = across_[places[k] / channels];
                columns.weights[k] = across.WeightOf(i);
                columns.samples[k] = std::min(across.first + i, source_.width - 1) * channels + places[k] % channels;
            }
            return columns;
        };
        // Counts of columns differ by two at most.
        const u32 afterWhole = std::max(least, 2u) - 1;
        const Columns left = columnsAt(0);
        const Columns right[3] = {columnsAt(afterWhole), columnsAt(afterWhole + 1), columnsAt(afterWhole + 2)};
        f64 sums[kTogether] = {};  // apart from what samples might alias
        for (u32 j = 0; j < rows.count; ++j) {
            const T* const row = source_.Row(RowOf(rows, j));
            const f64 rowWeight = rows.WeightOf(j);
            AddColumns(row, left, rowWeight, sums);
            for (u32 i = 1; i < afterWhole; ++i) {
                const T* const pixels = row + i * channels;
                for (size_t k = 0; k < kTogether; ++k) sums[k] += pixels[left.samples[k]] * rowWeight;
            }
            for (u32 i = afterWhole; i < most; ++i) AddColumns(row, right[i - afterWhole], rowWeight, sums);
        }
        std::copy_n(sums, kTogether, to);
    }

    [[gnu::always_inline]] static void AddColumns(const T* row, const Columns& columns, f64 rowWeight, f64* sums)
    {
        for (size_t k = 0; k < kTogether; ++k) {
            sums[k] += row[columns.samples[k]] * (columns.weights[k] * rowWeight);
        }
    }

    void ClearColumns() { std::fill_n(columns_.GetData(), columns_.GetCount(), 0u); }

    void AddToColumns(u32 row) { SampleKernels<T>().addRow(source_.Row(row), columns_.GetCount(), columns_.GetData()); }

    void AddEdge(u32 row, f64 weight)
    {
        if (row != edgeRow_) {
            ClearColumns();
            AddToColumns(row);
            AddAcross(edge_.GetData());
            edgeRow_ = row;
        }
        for (u64 i = 0; i < edge_.GetCount(); ++i) sums_[i] += edge_[i] * weight;
    }

    void AddAcross(f64* out) const
    {
        switch (source_.channels) {
        case 1: return AddAcross<1>(out);
        case 3: return AddAcross<3>(out);
        default: return AddAcross<4>(out);
        }
    }

    // Of each area in what the columns hold.
    template <u32 kChannels>
    void AddAcross(f64* out) const
    {
        for (u64 x = 0; x < across_.GetCount(); ++x, out += kChannels) {
            const Coverage& across = across_[x];
            const u32 last = across.count - 1;
            const u32* const columns = columns_.GetData();
            const u32* const left = columns + size_t(across.first) * kChannels;
            const u32* const right = columns + size_t(std::min(across.first + last, source_.width - 1)) * kChannels;
            u32 inner[kChannels];
            AddPixels<kChannels>(left + kChannels, last > 1 ? last - 1 : 0, inner);
            const f64 rightWeight = last > 0 ? across.lastWeight : 0;
            for (u32 c = 0; c < kChannels; ++c) {
                out[c] = left[c] * across.firstWeight + inner[c] + right[c] * rightWeight;
            }
        }
    }

    template <u32 kChannels>
    static void AddPixels(const u32* pixels, u32 count, u32* sums)
    {
        constexpr u32 kParts = 4 * kChannels;
        u32 parts[kParts] = {};
        u32 i = 0;
        for (; i + 4 <= count; i += 4, pixels += kParts) {
            for (u32 k = 0; k < kParts; ++k) parts[k] += pixels[k];
        }
        for (u32 c = 0; c < kChannels; ++c) {
            sums[c] = parts[c] + parts[c + kChannels] + parts[c + 2 * kChannels] + parts[c + 3 * kChannels];
        }
        for (; i < count; ++i, pixels += kChannels) {
            for (u32 c = 0; c < kChannels; ++c) sums[c] += pixels[c];
        }
    }

    const ImageView<const T> source_;
    const f64 ratio_;
    const f64 largestArea_;
    const f64 tolerance_;
    MVBuffer<u32> columns_;  // sums of rows
    MVBuffer<f64> sums_;
    MVBuffer<f64> edge_;  // of the areas in row edgeRow_
    u32 edgeRow_ = kNoRow;
    MVBuffer<Coverage> across_;
    MVBuffer<size_t> undecided_;  // places of samples in a row
};

}  // namespace zlv
