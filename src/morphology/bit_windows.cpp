#include "morphology/bit_windows.h"

#include <bit>
#include <cstring>

namespace zlv {

namespace {

bool IsOne(u32 entry) { return entry == 1; }
bool IsNotZero(u32 entry) { return entry != 0; }

// Whole words: rows have slack. In place, where a call would cost more than the bytes.
void Fill(u8* out, u8 value, size_t bytes)
{
    const u64 word = value * 0x0101010101010101u;
    for (size_t i = 0; i < bytes; i += sizeof(word)) std::memcpy(out + i, &word, sizeof(word));
}

bool IsSet(const u8* row, u32 x) { return row[x / 8] & (0x80u >> x % 8); }

}  // namespace

BitWindows::BitWindows(Kind kind)
    : kind_(kind),
      kernels_(Kernels<BitWindowKernels>()),
      operation_(kind == Kind::Dilation ? kernels_.unite : kernels_.intersect)
{
}

bool BitWindows::Prepare(const ElementEntries& element, u32 width, u32 height)
{
    const bool isDilation = kind_ == Kind::Dilation;
    if (!element_.Prepare(element, isDilation ? IsOne : IsNotZero, width, height)) return false;
    width_ = width;
    height_ = height;
    // Under its centre a clear pixel stays clear, so an erosion passes over empty bytes.
    hasSkips_ = !isDilation && element_.HasCentre();
    margin_ = (element_.ReachX() / 8 / kMarginStep + 1) * kMarginStep;
    wideBytes_ = BitRowBytes(width) + 2 * margin_;
    // Spans reach as far to the right again. An odd number of lines keeps rows apart in the cache.
    rowLength_ = (((wideBytes_ + margin_ + kBitSlack + kCacheLine - 1) / kCacheLine) | 1) * kCacheLine;
    ringRows_ = std::bit_ceil(2 * u64(element_.ReachY()) + kAtOnce);

    const u64 rings = element_.Planes().Count() + (hasSkips_ ? 1 : 0);
    if (rings * ringRows_ > SIZE_MAX / 2 / rowLength_) return false;
    const u64 bytes = rings * ringRows_ * rowLength_;
    if (!rows_.Resize(bytes, kCacheLine) || !values_.Resize(BitRowBytes(width) + kBitSlack, kCacheLine)) return false;
    std::memset(rows_.GetData(), 0, bytes);

    const u32 count = element_.PieceCount();
    if (count == 0) return true;
    if (!pieceRows_.Resize(count) || !columns_.Resize(count)) return false;
    columnCount_ = 0;
    for (u32 i = 0; i < count; ++i) {
        const i32 column = element_.Pieces()[i].column;
        if (i == 0 || column != element_.Pieces()[i - 1].column) {
            columns_[columnCount_++] = {column >> 3, u32(column) & 7, 0};
        }
        ++columns_[columnCount_ - 1].rows;
    }
    return true;
}

void BitWindows::Copy(const u8* from, u64 row) { std::memcpy(Row(0, row) + margin_, from, BitRowBytes(width_)); }

void BitWindows::Repeat(u64 row) { std::memcpy(Row(0, row), Row(0, row - 1), wideBytes_); }

// Finds what the erosion leaves out of a copied row, and repeats its border pixels beyond its edges.
void BitWindows::Finish(u64 row)
{
    u8* const first = Row(0, row) + margin_;
    u8* const end = first + BitRowBytes(width_);
    if (hasSkips_ && !IsRepeated(row)) {
        first[-1] = 0xFF;  // no empty byte
        kernels_.findSkipped(first, size_t(end - first), SkippedOf(Nearest(row)));
    }
    const u8 left = IsSet(first, 0) ? 0xFF : 0, right = IsSet(first, width_ - 1) ? 0xFF : 0;
    const u8 padding = BitPadding(width_);
    end[-1] = u8((end[-1] & ~padding) | (right & padding));
    Fill(first - margin_, left, margin_);
    Fill(end, right, margin_);
}

// What the rows from `first` to `end` complete.
void BitWindows::MakePlanes(u64 first, u64 end)
{
    const BitPlanes& planes = element_.Planes();
    for (u32 k = 0; k <= planes.widest; ++k) {
        for (u64 row = first; k > 0 && row < end; ++row) {
            operation_.span(Row(k - 1, row), size_t(1) << (k - 1), wideBytes_, Row(k, row));
        }
        for (u32 v = 1; v <= planes.highest[k]; ++v) {
            const u64 rows = u64(1) << v;
            const u32 half = planes.Of(k, v - 1), whole = planes.Of(k, v);
            for (u64 row = std::max(first, rows - 1); row < end; ++row) {
                const u64 top = row + 1 - rows;
                operation_.join(Row(half, top), Row(half, top + rows / 2), wideBytes_, Row(whole, top));
            }
        }
    }
}

const u8* BitWindows::Windows()
{
    for (u32 i = 0; i < element_.PieceCount(); ++i) {
        const BitPiece& piece = element_.Pieces()[i];
        pieceRows_[i] = Row(piece.plane, u64(y_) + piece.row) + margin_;
    }
    operation_.window(pieceRows_.GetData(), columns_.GetData(), columnCount_, BitRowBytes(width_), values_.GetData());
    if (hasSkips_) skipped_ = SkippedOf(y_);
    ++y_;
    return values_.GetData();
}

const u8* BitWindows::Clear()
{
    const size_t bytes = BitRowBytes(width_);
    if (hasSkips_) kernels_.clearSkipped(skipped_, bytes, values_.GetData());
    values_.GetData()[bytes - 1] &= u8(~BitPadding(width_));
    return values_.GetData();
}

void BitWindows::Put(u8* out) const
{
    const size_t whole = width_ / 8;
    if (hasSkips_) kernels_.putVisited(values_.GetData(), skipped_, whole, out);
    else std::memcpy(out, values_.GetData(), whole);
    if (width_ % 8 == 0) return;
    const u8 keeps = BitPadding(width_) | (hasSkips_ ? skipped_[whole] : u8(0));
    out[whole] = u8((out[whole] & keeps) | (values_.GetData()[whole] & ~keeps));
}

}  // namespace zlv
