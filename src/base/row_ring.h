// The latest rows of an image as a window filter wants them: as many as its window is high, in a form of its own.
#pragma once

#include "runtime/array.h"

namespace zlv {

template <class T>
class RowRing {
public:
    // False when memory is out.
    [[nodiscard]] bool Resize(u64 rows, u64 rowLength)
    {
        if (rows == 0 || rowLength > SIZE_MAX / rows) return false;
        rows_ = rows;
        rowLength_ = rowLength;
        return memory_.Resize(rows * rowLength);
    }

    // The place of row y; it takes that of row y - rows.
    T* Row(u64 y) { return memory_.GetData() + y % rows_ * rowLength_; }

private:
    MVBuffer<T> memory_;
    u64 rows_ = 0;
    u64 rowLength_ = 0;
};

// Repeats the first and the last of `count` pixels of `channels` samples that stand at samples + margin * channels:
// `margin` times on either side.
template <class T>
void ReplicateBorders(T* samples, size_t count, size_t channels, size_t margin)
{
    T* const first = samples + margin * channels;
    T* const end = first + count * channels;
    const T* const last = end - channels;
    for (size_t x = 0; x < margin; ++x) {
        for (size_t c = 0; c < channels; ++c) {
            samples[x * channels + c] = first[c];
            end[x * channels + c] = last[c];
        }
    }
}

}  // namespace zlv
