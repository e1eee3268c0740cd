// Polygons turned into horizontal spans.
//
// A polygon is a list of vertices, x then y, in order around it; it closes from the last one to the first, and it may
// be concave and cross itself. A row y is sampled at y + 0.5, where the edges' crossings are paired from left to right
// (the even-odd rule); pixel x belongs to a span when x + 0.5 lies between its two crossings, both included. The active
// edge method: an edge's crossing is worked out once, where the edge begins, and then grows by the same number from row
// to row. Those rounded sums are part of the result.
#pragma once

#include "runtime/array.h"
#include "runtime/error.h"
#include "runtime/math.h"

#include <algorithm>
#include <limits>

namespace zlv {

struct PolygonPoint {
    f64 x, y;
};

// Vertices are moved by -left and -top, then multiplied.
struct PolygonMap {
    f64 left = 0, top = 0, scale = 1;
};

// Whether the vertices are numbers within the 32-bit integers.
bool AreCoordinates(const f64* points, u32 count);

// An edge that the present row crosses.
struct ScanEdge {
    f64 x;       // its crossing
    f64 dx;      // what x grows by from row to row
    f64 bottom;  // y of its lower end
};

// The columns are whole numbers and both belong to the span. Neither they nor the row are limited to any image.
struct ScanSpan {
    i64 row;
    f64 left, right;
    f64 leftX, rightX;  // the crossings
};

inline f64 FirstColumn(f64 leftX) { return Ceil(leftX - 0.5); }
inline f64 LastColumn(f64 rightX) { return Floor(rightX - 0.5); }

// Walks down a polygon. Rows come in stretches in which the same edges are active:
//
//     for (scan.Rewind(); scan.NextStretch();) {
//         for (; scan.Row() < scan.StretchEnd(); scan.Step()) scan.VisitSpans(...);
//     }
class ScanConverter {
public:
    // Copies `count` vertices and goes to the row where the polygon begins. Code 5 for no vertices and bad coordinates,
    // 1 without memory.
    [[nodiscard]] Error Prepare(const f64* points, u32 count, const PolygonMap& map = {});

    void Rewind();
    // Goes to the row after the stretch, where another one begins. False after the last one.
    [[nodiscard]] bool NextStretch();

    i64 Row() const { return row_; }
    i64 StretchEnd() const { return stretchEnd_; }

    // Calls visit(span) for the spans of this row, from left to right, until it returns false.
    template <class Visit>
    bool VisitSpans(Visit visit) const
    {
        for (u64 i = 0; i + 1 < activeCount_; i += 2) {
            const f64 leftX = edges_[i].x, rightX = edges_[i + 1].x;
            const f64 left = FirstColumn(leftX), right = LastColumn(rightX);
            if (left <= right && !visit(ScanSpan{row_, left, right, leftX, rightX})) return false;
        }
        return true;
    }

    // To the next row of the stretch, or to the one `rows` further down; past its end only NextStretch() may follow.
    void Step()
    {
        bool isSorted = true;
        f64 lastX = -std::numeric_limits<f64>::infinity();
        for (u64 i = 0; i < activeCount_; ++i) {
            const f64 x = edges_[i].x + edges_[i].dx;
            edges_[i].x = x;
            isSorted &= x >= lastX;
            lastX = x;
        }
        ++row_;
        if (!isSorted) SortEdges();
    }
    void Skip(i64 rows);

    // The crossings of this row, from left to right.
    const ScanEdge* Edges() const { return edges_.GetData(); }
    u64 EdgeCount() const { return activeCount_; }

private:
    const PolygonPoint& VertexInOrder(u32 i) const { return points_[order_[i]]; }
    void InsertEdgeIfBelow(const PolygonPoint& from, const PolygonPoint& to);
    void DropEndedEdges();
    void SortEdges();

    MVBuffer<PolygonPoint> points_;
    MVBuffer<u32> order_;  // the vertices from top to bottom
    MVBuffer<ScanEdge> edges_;
    u32 nextVertex_ = 0;   // the first in order_ that no row has met
    u64 activeCount_ = 0;  // edges, sorted by their crossings
    i64 row_ = 0;
    i64 stretchEnd_ = 0;
};

}  // namespace zlv
