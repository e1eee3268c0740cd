// Columns of a plane that are the same as their neighbours, so that a filter down the columns need not do them again.
#pragma once

#include "base/image_view.h"
#include "runtime/array.h"

#include <cstring>
#include <utility>

namespace zlv {

class RepeatedColumns {
public:
    // For planes of this width.
    [[nodiscard]] bool Resize(u64 width)
    {
        return repeats_.Resize(width) && places_.Resize(width) && columns_.Resize(width);
    }

    // Compares each column with the one `period` columns before it, over the rows 0 to rows - 1 that rowAt(y) gives.
    // False when fewer than half of them repeat: then it does not pay.
    template <class RowAt>
    [[nodiscard]] bool Find(u32 rows, size_t period, RowAt rowAt)
    {
        const size_t width = repeats_.GetCount();
        if (width < 2 * period || width >> 32) return false;
        std::memset(repeats_.GetData(), 0, period);
        std::memset(repeats_.GetData() + period, 1, width - period);
        for (u32 y = 0; y < rows; ++y) {
            Compare(rowAt(y), width, period);
            // Pictures of real things are recognised by their first rows.
            if (y < kRowsOfFirstLook && !IsWorthwhile(width)) return false;
        }
        if (!IsWorthwhile(width)) return false;
        Number(width, period);
        return true;
    }

    // The columns that differ from their neighbours: at most half of all.
    size_t Count() const { return count_; }

    // `count` of them, from the first on, out of a row.
    void Gather(const u16* row, size_t first, size_t count, u16* to) const
    {
        for (size_t i = 0; i < count; ++i) to[i] = row[columns_[first + i]];
    }

    // Spreads the distinct columns, which stand at the beginning of each row of the image, over the rows. `rows` has
    // room for two rows of them.
    template <class T>
    void Spread(const ImageView<T>& image, T* rows) const
    {
        const size_t samples = image.SamplesPerRow(), bytes = count_ * sizeof(T);
        T *made = rows, *above = rows + count_;
        for (u32 y = 0; y < image.height; ++y) {
            T* const row = image.Row(y);
            std::memcpy(made, row, bytes);
            if (y > 0 && std::memcmp(made, above, bytes) == 0) {
                std::memcpy(row, image.Row(y - 1), samples * sizeof(T));
            } else {
                for (size_t x = 0; x < samples; ++x) row[x] = made[places_[x]];
            }
            std::swap(made, above);
        }
    }

private:
    static constexpr u32 kRowsOfFirstLook = 4;

    void Compare(const u16* row, size_t width, size_t period)
    {
        u8* const repeats = repeats_.GetData();
        for (size_t x = period; x < width; ++x) repeats[x] = u8(repeats[x] & (row[x] == row[x - period]));
    }

    size_t CountDistinct(size_t width) const
    {
        size_t count = 0;
        for (size_t x = 0; x < width; ++x) count += repeats_[x] == 0;
        return count;
    }

    bool IsWorthwhile(size_t width) const { return CountDistinct(width) <= width / 2; }

    void Number(size_t width, size_t period)
    {
        count_ = 0;
        for (size_t x = 0; x < width; ++x) {
            places_[x] = repeats_[x] ? places_[x - period] : u32(count_);
            if (!repeats_[x]) columns_[count_++] = u32(x);
        }
    }

    MVBuffer<u8> repeats_;   // 1 for a column that repeats
    MVBuffer<u32> places_;   // of each column: which of the distinct ones it is
    MVBuffer<u32> columns_;  // the distinct ones
    size_t count_ = 0;
};

}  // namespace zlv
