// Binary dilation and erosion of packed rows, one row after the other: whoever wants a row asks for it, and is asked
// for the rows that it needs. So one step can follow another with no image in between.
//
// Beyond its edges the image repeats its border pixels.
#pragma once

#include "morphology/bit_element.h"
#include "morphology/bit_windows.kernels.h"

#include <algorithm>

namespace zlv {

// Packed pixels somewhere in memory.
template <class Byte>
struct BitImage {
    Byte* data;
    u32 width, height, stride;

    Byte* Row(u32 y) const { return data + size_t(y) * stride; }
};

constexpr u32 BitRowBytes(u32 width) { return u32((u64(width) + 7) / 8); }

// The bits of a row's last byte that lie behind its last pixel.
constexpr u8 BitPadding(u32 width) { return width % 8 ? u8(0xFF >> width % 8) : u8(0); }

class BitWindows {
public:
    enum class Kind : u8 {
        Dilation,  // the union of pixels under entries of exactly 1
        Erosion,   // the intersection of pixels under any entry but 0
    };

    explicit BitWindows(Kind kind);

    // The image has pixels, the element is valid. False when memory is out.
    [[nodiscard]] bool Prepare(const ElementEntries& element, u32 width, u32 height);

    // The next row's windows, from the first on. getRow(y) gives row y of the image, each once and in order; its bytes
    // are used at once. Bits behind the last pixel may be anything.
    template <class GetRow>
    const u8* Next(GetRow getRow)
    {
        // Rows are made some at once: a row that has just been written is slow to read at another alignment.
        const u64 wanted = u64(y_) + 2 * element_.ReachY() + 1;
        if (taken_ < wanted) {
            const u64 last = std::min(wanted + kAtOnce - 1, u64(height_) + 2 * element_.ReachY());
            while (taken_ < last) {
                const u64 first = taken_, end = std::min(last, first + kAtOnce);
                for (; taken_ < end; ++taken_) {
                    if (IsRepeated(taken_)) Repeat(taken_);
                    else Copy(getRow(Nearest(taken_)), taken_);
                }
                for (u64 row = first; row < end; ++row) Finish(row);
                MakePlanes(first, end);
            }
        }
        return Windows();
    }

    // The next row, where what the erosion leaves out, and what lies behind the last pixel, is 0: as in a cleared
    // image.
    template <class GetRow>
    const u8* NextCleared(GetRow getRow)
    {
        Next(getRow);
        return Clear();
    }

    // Writes the row that Next gave last. What the erosion leaves out, and what lies behind the last pixel, stays.
    void Put(u8* out) const;

private:
    static constexpr u64 kAtOnce = 8;
    static constexpr size_t kCacheLine = 64, kMarginStep = sizeof(u64);

    u8* Row(u32 plane, u64 row) { return rows_.GetData() + (plane * ringRows_ + (row & (ringRows_ - 1))) * rowLength_; }
    // The skipped pixels of a row of the image are in a ring behind the planes.
    u8* SkippedOf(u64 row) { return Row(element_.Planes().Count(), row); }
    // The row of the image that stands for a row to be taken.
    u32 Nearest(u64 row) const { return u32(std::clamp<i64>(i64(row) - element_.ReachY(), 0, i64(height_) - 1)); }
    bool IsRepeated(u64 row) const { return row > 0 && Nearest(row) == Nearest(row - 1); }
    void Copy(const u8* from, u64 row);
    void Repeat(u64 row);
    void Finish(u64 row);
    void MakePlanes(u64 first, u64 end);
    const u8* Windows();
    const u8* Clear();

    const Kind kind_;
    const BitWindowKernels& kernels_;
    const BitWindowKernels::Operation& operation_;
    BitElement element_;
    u32 width_ = 0, height_ = 0;
    bool hasSkips_ = false;
    size_t margin_ = 0;     // bytes before the first pixel, a multiple of kMarginStep
    size_t wideBytes_ = 0;  // with the pixels beyond the edges
    size_t rowLength_ = 0;  // and what vectors reach; whole cache lines
    u64 ringRows_ = 0;      // a power of two
    u64 taken_ = 0;         // rows; the first counts from the highest that the first window reaches
    u32 y_ = 0;
    const u8* skipped_ = nullptr;  // of the row that Next gave last
    u32 columnCount_ = 0;
    MVAlignedArray<u8> rows_;  // a ring for each plane
    MVAlignedArray<u8> values_;
    MVBuffer<BitColumn> columns_;
    MVBuffer<const u8*> pieceRows_;
};

}  // namespace zlv
