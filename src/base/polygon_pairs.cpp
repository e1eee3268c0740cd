// How many rows of a thin pair of crossings hold a pixel centre.
//
// Between two powers of two a crossing is a whole number of grid steps, and so is what it goes from row to row. The
// centres between two crossings less than a pixel apart are one or none: the last column of the right one less the
// first column of the left one, plus 1. Over many rows that is a difference of two sums of rounded down fractions,
// which Euclid's algorithm gives in a few steps.
#include "base/polygon_pairs.h"

#include "base/repeated_sum.h"

#include <bit>
#include <cmath>
#include <utility>

namespace zlv {

namespace {

__extension__ using i128 = __int128;
__extension__ using u128 = unsigned __int128;

// The sum of (start + i * move) / divisor, rounded down, over i from 0 to count - 1. Start and move are below the
// divisor.
u128 SumOfProperFractions(u128 count, u128 divisor, u128 move, u128 start)
{
    u128 sum = 0;
    while (true) {
        sum += count * (count - 1) / 2 * (move / divisor) + count * (start / divisor);
        move %= divisor;
        start %= divisor;
        // The points below the line, counted along the other axis.
        const u128 end = move * count + start;
        if (end < divisor) return sum;
        count = end / divisor;
        start = end % divisor;
        std::swap(divisor, move);
    }
}

// The sum of (start + i * move) / 2^shift, rounded down, over i from 0 to count - 1.
i128 SumOfFractions(i64 start, i64 move, u32 shift, i64 count)
{
    const u64 mask = (u64(1) << shift) - 1;
    const i128 wholes = i128(start >> shift) * count + i128(move >> shift) * (i128(count) * (count - 1) / 2);
    return wholes + i128(SumOfProperFractions(u128(count), u128(1) << shift, u64(move) & mask, u64(start) & mask));
}

constexpr u32 kFractionBits = 52;
constexpr u32 kExponentOfOne = 1023;
constexpr u32 kMostShift = 62;

// The sum of the first or the last columns over a path. False when it can't be told this way.
bool SumColumns(const CrossingPath& path, bool isLeft, i64 rows, i128& sum)
{
    const auto columnOf = isLeft ? FirstColumn : LastColumn;
    const f64 firstColumn = columnOf(path.first);
    if (firstColumn == columnOf(path.last)) {
        sum = i128(i64(firstColumn)) * rows;
        return true;
    }
    // Columns are those of x - 0.5, which is exact for the numbers here, but not where it leaves the binade.
    if (path.Low() < 0 && BinadeOf(path.Low() - 1) != BinadeOf(path.Low())) return false;
    const u64 bits = std::bit_cast<u64>(path.first);
    const u32 exponent = u32(bits >> kFractionBits) & 0x7FF;
    const u32 shift = kExponentOfOne + kFractionBits - exponent;  // 2^shift grid steps are a pixel
    if (exponent == 0 || shift < 1 || shift > kMostShift) return false;

    const u64 hidden = u64(1) << kFractionBits;
    const i64 sign = path.first < 0 ? -1 : 1;
    const i64 start = sign * i64((bits & (hidden - 1)) | hidden);
    const i64 move = sign * i64(std::bit_cast<u64>(path.first + path.dx) - bits);
    const i64 half = i64(1) << (shift - 1);
    if (isLeft) sum = -SumOfFractions(half - start, -move, shift, rows);
    else sum = SumOfFractions(start - half, move, shift, rows);
    return true;
}

// Whether the distance between two crossings is a pixel or more for sure.
bool IsPixelWide(f64 left, f64 right)
{
    constexpr f64 kExactFrom = 4;  // differences about 1 of numbers from here on are not rounded
    const f64 width = right - left;
    return width > 1 || (width == 1 && std::abs(left) >= kExactFrom);
}

}  // namespace

CrossingPath::CrossingPath(const ScanEdge& edge, i64 rows)
    : first(edge.x),
      last(AddRepeatedly(edge.x, edge.dx, u64(rows) - 1)),
      dx(edge.dx),
      isEven(AreEvenSums(edge.x, edge.dx, u64(rows) - 1))
{
}

PairOverRows::PairOverRows(const ScanEdge& left, const ScanEdge& right, i64 rows)
    : left_(left, rows), right_(right, rows), rows_(rows)
{
}

i64 PairOverRows::SpanRows() const
{
    if (Leftmost() > Rightmost()) return 0;
    if (LatestLeft() <= EarliestRight()) return rows_;
    const bool isInOrder = left_.first <= right_.first && left_.last <= right_.last;
    if (!left_.isEven || !right_.isEven || !isInOrder) return kUnknown;
    // Even paths part or approach evenly: between its ends a pair is neither wider nor narrower than at both.
    if (IsPixelWide(left_.first, right_.first) && IsPixelWide(left_.last, right_.last)) return rows_;
    const bool isThin = right_.first - left_.first < 1 && right_.last - left_.last < 1;
    return isThin ? CountThinSpans() : kUnknown;
}

i64 PairOverRows::CountThinSpans() const
{
    i128 firstColumns = 0, lastColumns = 0;
    if (!SumColumns(left_, true, rows_, firstColumns) || !SumColumns(right_, false, rows_, lastColumns)) {
        return kUnknown;
    }
    return i64(lastColumns - firstColumns) + rows_;
}

bool PairOverRows::IsBehind(const PairOverRows& before) const
{
    const f64 reached = std::max(before.left_.High(), before.right_.High());
    if (reached <= std::min(left_.Low(), right_.Low())) return true;
    const CrossingPath* const paths[] = {&before.left_, &before.right_, &left_, &right_};
    for (u32 i = 0; i < 4; ++i) {
        if (!paths[i]->isEven) return false;
        if (i > 0 && (paths[i]->first < paths[i - 1]->first || paths[i]->last < paths[i - 1]->last)) return false;
    }
    return true;
}

u64 CountSpans(ScanConverter& scan, u64 enough)
{
    u64 count = 0;
    const auto countAtOnce = [&](i64 rows) {
        u64 countOfRows = 0;
        const bool isKnown = VisitPairs(scan, rows, [&](const PairOverRows& pair) {
            const i64 spanRows = pair.SpanRows();
            countOfRows += u64(spanRows);
            return spanRows != PairOverRows::kUnknown;
        });
        if (isKnown) count += countOfRows;
        return isKnown;
    };
    const auto countRow = [&] {
        return scan.VisitSpans([&](const ScanSpan&) {
            ++count;
            return true;
        });
    };
    scan.Rewind();
    while (count <= enough && scan.NextStretch()) {
        ForRowsInPieces(scan, scan.StretchEnd() - scan.Row(), countAtOnce, countRow);
    }
    return count;
}

}  // namespace zlv
