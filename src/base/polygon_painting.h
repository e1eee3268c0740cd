// The way from the spans of a polygon to the pixels of an image.
//
// Spans are limited to the image, and to one position past its last row and column: what lies above it and left of it
// is painted onto its first row and column, while what lies beyond the other two edges falls on no pixel. Callers who
// want neither keep their polygons inside. There is no row past the last one to paint on; what the column past the last
// one means is the painter's concern.
#pragma once

#include "base/polygon_pairs.h"

namespace zlv {

// 0 to width, and width is no column of the image any more.
inline u32 LimitColumn(f64 column, u32 width)
{
    if (!(column > 0)) return 0;
    return column < f64(width) ? u32(column) : width;
}

// Painters have
//   BeginRows(times)                a row of the polygon with spans comes, or that many alike
//   Paint(row, left, right, times)  paints columns left to right, both included, so many times over. They are 0 to the
//                                   width
//   IsSettled(row, column)          whether painting that column alone again would change nothing
//   kCountsRows                     whether the number of rows with spans matters, even if they paint nothing
template <class Painter>
void PaintSpan(const ScanSpan& span, u32 width, u32 height, Painter& painter)
{
    const i64 row = std::max(span.row, i64(0));
    if (row >= i64(height)) return;
    painter.Paint(u32(row), LimitColumn(span.left, width), LimitColumn(span.right, width), 1);
}

// What a pair of crossings paints onto the image's first row in a range of rows above it.
struct RepeatedSpan {
    u32 left, right;
    i64 times;  // 0 also where nothing changes any more
    bool isKnown;
};

template <class Painter>
RepeatedSpan FindRepeatedSpan(const PairOverRows& pair, u32 width, const Painter& painter)
{
    const u32 left = LimitColumn(pair.Leftmost(), width), right = LimitColumn(pair.Rightmost(), width);
    const bool isSettled = !Painter::kCountsRows && left == right && painter.IsSettled(0, left);
    const i64 times = isSettled ? 0 : pair.SpanRows();
    const bool hasSameColumns =
        LimitColumn(pair.LatestLeft(), width) == left && LimitColumn(pair.EarliestRight(), width) == right;
    return {left, right, times, times == 0 || (times != PairOverRows::kUnknown && hasSameColumns)};
}

// Paints the next `rows` rows at once. False, with nothing painted, when they differ too much. The pixels that a row
// paints twice may be painted in another order, which is the same for all painters that do not count rows.
template <class Painter>
bool PaintRepetition(const ScanConverter& scan, i64 rows, u32 width, Painter& painter)
{
    i64 rowsWithSpans = 0;
    const bool isRepetition = VisitPairs(scan, rows, [&](const PairOverRows& pair) {
        const RepeatedSpan span = FindRepeatedSpan(pair, width, painter);
        // Two pairs with spans in some rows only: nobody knows how many rows these are.
        if (Painter::kCountsRows && span.times > 0 && rowsWithSpans > 0 && span.times + rowsWithSpans < 2 * rows) {
            return false;
        }
        rowsWithSpans = std::max(rowsWithSpans, span.times);
        return span.isKnown;
    });
    if (!isRepetition) return false;
    if (rowsWithSpans > 0) painter.BeginRows(u64(rowsWithSpans));
    VisitPairs(scan, rows, [&](const PairOverRows& pair) {
        const RepeatedSpan span = FindRepeatedSpan(pair, width, painter);
        if (span.times > 0) painter.Paint(0, span.left, span.right, u64(span.times));
        return true;
    });
    return true;
}

// Paints the spans in order, from top to bottom and from left to right. Rows that cannot be seen cost next to nothing.
template <class Painter>
void PaintPolygon(ScanConverter& scan, u32 width, u32 height, Painter& painter)
{
    if (width == 0 || height == 0) return;
    const auto paintRow = [&] {
        bool hasBegun = false;
        return scan.VisitSpans([&](const ScanSpan& span) {
            if (!hasBegun) painter.BeginRows(1);
            hasBegun = true;
            PaintSpan(span, width, height, painter);
            return true;
        });
    };
    const auto paintRows = [&](i64 rows) { return PaintRepetition(scan, rows, width, painter); };
    scan.Rewind();
    while (scan.NextStretch() && scan.Row() < i64(height)) {
        const i64 rowsAbove = std::min(scan.StretchEnd(), i64(0)) - scan.Row();
        if (rowsAbove > 0) ForRowsInPieces(scan, rowsAbove, paintRows, paintRow);
        const i64 end = std::min(scan.StretchEnd(), i64(height));
        for (; scan.Row() < end; scan.Step()) paintRow();
    }
}

}  // namespace zlv
