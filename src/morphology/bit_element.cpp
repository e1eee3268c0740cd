#include "morphology/bit_element.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

namespace zlv {

namespace {

u32 LevelOf(u32 length, u32 largest) { return std::min(u32(std::bit_width(length)) - 1, largest); }

u32 PiecesOf(u32 length, u32 level) { return u32(((u64(length) - 1) >> level) + 1); }

// What a piece and a plane cost beside each other (bench: MorphoDilation1Bit).
constexpr u64 kPieceCost = 2, kPlaneCost = 3;

// What forEach(visit) visits, in an array. False when memory is out.
template <class T, class ForEach>
bool Collect(MVBuffer<T>& found, ForEach forEach)
{
    u64 count = 0;
    forEach([&](const T&) { ++count; });
    found.Clear();
    if (count == 0) return true;
    if (!found.Resize(count)) return false;
    T* next = found.GetData();
    forEach([&](const T& one) { *next++ = one; });
    return true;
}

}  // namespace

bool ElementEntries::IsValid() const
{
    if (!entries || width < 1 || height < 1 || width % 2 == 0 || height % 2 == 0) return false;
    return u64(width) * u64(height) <= SIZE_MAX / 2 / sizeof(u32);
}

bool BitElement::Prepare(const ElementEntries& element, bool (*isMember)(u32 entry), u32 imageWidth, u32 imageHeight)
{
    const u32 width = u32(element.width), height = u32(element.height);
    const u32 halfX = width / 2, halfY = height / 2;
    reachX_ = std::min(halfX, imageWidth - 1);
    reachY_ = std::min(halfY, imageHeight - 1);
    const size_t columns = 2 * size_t(reachX_) + 1, rows = 2 * size_t(reachY_) + 1;
    MVBuffer<u8> memory;  // one byte an entry
    if (rows > SIZE_MAX / 2 / columns || !memory.Resize(rows * columns)) return false;
    std::memset(memory.GetData(), 0, rows * columns);

    const auto within = [](u32 place, u32 half, u32 reach) {
        return size_t(std::clamp<i64>(i64(place) - half, -i64(reach), reach) + reach);
    };
    for (u32 j = 0; j < height; ++j) {
        const u32* const row = element.entries + size_t(j) * width;
        u8* const members = memory.GetData() + within(j, halfY, reachY_) * columns;
        for (u32 i = 0; i < width; ++i) members[within(i, halfX, reachX_)] |= u8(isMember(row[i]));
    }
    hasCentre_ = isMember(element.entries[size_t(halfY) * width + halfX]);
    if (!MakeBoxes(memory.GetData())) return false;
    ChoosePlanes();
    return MakePieces();
}

// Runs of members along a row, as far down as the rows are alike.
template <class Visit>
void BitElement::ForEachBox(const u8* members, Visit visit) const
{
    const u32 columns = 2 * reachX_ + 1, rows = 2 * reachY_ + 1;
    const auto row = [&](u32 j) { return members + size_t(j) * columns; };
    for (u32 begin = 0, end; begin < rows; begin = end) {
        end = begin + 1;
        while (end < rows && std::memcmp(row(begin), row(end), columns) == 0) ++end;
        const u8* const last = row(begin) + columns;
        for (const u8* from = row(begin); (from = std::find(from, last, u8(1))) != last;) {
            const u8* const to = std::find(from, last, u8(0));
            visit(Box{begin, end - begin, u32(from - row(begin)), u32(to - from)});
            from = to;
        }
    }
}

bool BitElement::MakeBoxes(const u8* members)
{
    return Collect(boxes_, [&](auto visit) { ForEachBox(members, visit); });
}

// Tries all pairs of largest levels and keeps the cheapest.
void BitElement::ChoosePlanes()
{
    const u32 mostHigh = LevelOf(2 * reachY_ + 1, kBitLevels), mostWide = LevelOf(2 * reachX_ + 1, kBitLevels);
    const std::span<const Box> boxes(boxes_.GetData(), boxes_.GetCount());
    u64 lowest = UINT64_MAX;
    for (u32 high = 0; high <= mostHigh; ++high) {
        for (u32 wide = 0; wide <= mostWide; ++wide) {
            u64 pieces = 0;
            BitPlanes planes;
            for (const Box& box : boxes) {
                const u32 v = LevelOf(box.rows, high), k = LevelOf(box.columns, wide);
                planes.widest = std::max(planes.widest, k);
                planes.highest[k] = std::max(planes.highest[k], v);
                pieces += u64(PiecesOf(box.rows, v)) * PiecesOf(box.columns, k);
            }
            const u64 cost = kPieceCost * pieces + kPlaneCost * planes.Count();
            if (cost >= lowest) continue;
            lowest = cost;
            planes_ = planes;
            highestLevel_ = high;
            widestLevel_ = wide;
        }
    }
}

bool BitElement::MakePieces()
{
    const bool hasMemory = Collect(pieces_, [&](auto visit) {
        for (const Box& box : std::span<const Box>(boxes_.GetData(), boxes_.GetCount())) {
            const u32 v = LevelOf(box.rows, highestLevel_), k = LevelOf(box.columns, widestLevel_);
            for (u32 j = 0; j < PiecesOf(box.rows, v); ++j) {
                for (u32 i = 0; i < PiecesOf(box.columns, k); ++i) {
                    // The last one ends where the rectangle does.
                    const u32 down = std::min(j << v, box.rows - (1u << v));
                    const u32 right = std::min(i << k, box.columns - (1u << k));
                    visit(BitPiece{i32(box.column + right) - i32(reachX_), box.row + down, planes_.Of(k, v)});
                }
            }
        }
    });
    if (!hasMemory) return false;
    std::sort(pieces_.GetData(), pieces_.GetData() + pieces_.GetCount(),
              [](const BitPiece& a, const BitPiece& b) { return a.column < b.column; });
    return true;
}

}  // namespace zlv
