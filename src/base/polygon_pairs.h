// Pairs of crossings over a range of rows at once, for those who do not care for each single row.
#pragma once

#include "base/polygon_scan.h"

namespace zlv {

// One crossing from row to row, as rounded sums have it.
struct CrossingPath {
    CrossingPath(const ScanEdge& edge, i64 rows);

    f64 Low() const { return std::min(first, last); }
    f64 High() const { return std::max(first, last); }

    f64 first, last;  // sums of one step go one way, so these are its ends
    f64 dx;
    bool isEven;  // it goes the same distance from row to row, to the last bit
};

// Two crossings that pair in all of the rows. They may change sides.
class PairOverRows {
public:
    PairOverRows(const ScanEdge& left, const ScanEdge& right, i64 rows);

    static constexpr i64 kUnknown = -1;
    // How many of the rows have a span between the two.
    i64 SpanRows() const;

    // The columns of spans in these rows: all of them are within Leftmost() and Rightmost().
    f64 Leftmost() const { return FirstColumn(std::min(left_.Low(), right_.Low())); }
    f64 Rightmost() const { return LastColumn(std::max(left_.High(), right_.High())); }
    // And these belong to each of them, if there are any.
    f64 LatestLeft() const { return FirstColumn(std::min(left_.High(), right_.High())); }
    f64 EarliestRight() const { return LastColumn(std::max(left_.Low(), right_.Low())); }

    // Whether no crossing of this pair can have been to the left of one of the pair before.
    bool IsBehind(const PairOverRows& before) const;

private:
    i64 CountThinSpans() const;

    CrossingPath left_, right_;
    i64 rows_;
};

// Calls visit(pair) for each pair of crossings in the next `rows` rows of a stretch, the present one included. False
// when visit returned it, or when crossings could change their partners on the way.
template <class Visit>
bool VisitPairs(const ScanConverter& scan, i64 rows, Visit visit)
{
    const ScanEdge* const edges = scan.Edges();
    const u64 count = scan.EdgeCount();
    if (count < 2) return true;
    PairOverRows before(edges[0], edges[1], rows);
    if (!visit(before)) return false;
    for (u64 i = 2; i + 1 < count; i += 2) {
        const PairOverRows pair(edges[i], edges[i + 1], rows);
        if (!pair.IsBehind(before) || !visit(pair)) return false;
        before = pair;
    }
    return true;
}

// Goes through the next `rows` rows of a stretch in pieces: atOnce(rows) deals with some of them and returns true, or
// says that they differ too much; oneRow() deals with the present row and may end everything by false. Neither moves
// on. Far fewer calls than rows where rows resemble each other, and where they do not hardly more.
template <class AtOnce, class OneRow>
bool ForRowsInPieces(ScanConverter& scan, i64 rows, AtOnce atOnce, OneRow oneRow)
{
    constexpr i64 kFewRows = 16, kManyRows = 4096;
    i64 piece = rows;
    i64 singleRows = kFewRows;  // to be done before the next attempt at more
    while (rows > 0) {
        piece = std::min(piece, rows);
        if (piece <= kFewRows) {
            const i64 end = scan.Row() + std::min(singleRows, rows);
            rows -= end - scan.Row();
            for (; scan.Row() < end; scan.Step()) {
                if (!oneRow()) return false;
            }
            singleRows = std::min(2 * singleRows, kManyRows);
            piece = 2 * kFewRows;
        } else if (atOnce(piece)) {
            scan.Skip(piece);
            rows -= piece;
            piece *= 2;
            singleRows = kFewRows;
        } else {
            piece /= 2;
        }
    }
    return true;
}

// Calls visit(span) for all spans of a polygon, from top to bottom and from left to right, until it returns false. Rows
// without spans are passed over.
template <class Visit>
bool VisitAllSpans(ScanConverter& scan, Visit visit)
{
    const auto hasNoSpans = [&](i64 rows) {
        return VisitPairs(scan, rows, [](const PairOverRows& pair) { return pair.SpanRows() == 0; });
    };
    scan.Rewind();
    while (scan.NextStretch()) {
        const i64 rows = scan.StretchEnd() - scan.Row();
        if (!ForRowsInPieces(scan, rows, hasNoSpans, [&] { return scan.VisitSpans(visit); })) return false;
    }
    return true;
}

// How many spans a polygon has, told without visiting rows that resemble each other; any number above `enough` may come
// back as soon as there are that many.
u64 CountSpans(ScanConverter& scan, u64 enough);

}  // namespace zlv
