#include "base/polygon_scan.h"

#include "base/repeated_sum.h"

namespace zlv {

namespace {

constexpr f64 kLowestCoordinate = std::numeric_limits<i32>::min();
constexpr f64 kHighestCoordinate = std::numeric_limits<i32>::max();
constexpr f64 kHalfRow = 0.5;
constexpr u64 kMovesAnEdge = 8;  // of insertion sort: more than that and sorting afresh is faster

// False for what is no number.
bool IsCoordinate(f64 value) { return value >= kLowestCoordinate && value <= kHighestCoordinate; }

// The first row whose samples are not above y.
i64 FirstRowFrom(f64 y)
{
    const i64 row = i64(Ceil(y - kHalfRow));
    return f64(row) + kHalfRow < y ? row + 1 : row;  // the difference may have been rounded up to a whole number
}

bool IsLeftOf(const ScanEdge& a, const ScanEdge& b) { return a.x < b.x; }

}  // namespace

bool AreCoordinates(const f64* points, u32 count)
{
    return std::all_of(points, points + 2 * size_t(count), IsCoordinate);
}

Error ScanConverter::Prepare(const f64* points, u32 count, const PolygonMap& map)
{
    if (count == 0 || !AreCoordinates(points, count)) return Error::BadArgument;
    if (!points_.Resize(count) || !order_.Resize(count) || !edges_.Resize(count)) return Error::OutOfMemory;
    for (u32 i = 0; i < count; ++i) {
        points_[i] = {(points[2 * size_t(i)] - map.left) * map.scale,
                      (points[2 * size_t(i) + 1] - map.top) * map.scale};
        order_[i] = i;
    }
    std::sort(order_.GetData(), order_.GetData() + count, [&](u32 a, u32 b) { return points_[a].y < points_[b].y; });
    Rewind();
    return Error::None;
}

void ScanConverter::Rewind()
{
    nextVertex_ = 0;
    activeCount_ = 0;
    row_ = stretchEnd_ = FirstRowFrom(VertexInOrder(0).y);
}

bool ScanConverter::NextStretch()
{
    row_ = stretchEnd_;
    DropEndedEdges();
    const u32 count = u32(points_.GetCount());
    for (; nextVertex_ < count && VertexInOrder(nextVertex_).y <= f64(row_) + kHalfRow; ++nextVertex_) {
        const u32 i = order_[nextVertex_];
        InsertEdgeIfBelow(points_[i], points_[i == 0 ? count - 1 : i - 1]);
        InsertEdgeIfBelow(points_[i], points_[i == count - 1 ? 0 : i + 1]);
    }
    if (nextVertex_ == count) return false;  // every edge has ended
    SortEdges();
    stretchEnd_ = FirstRowFrom(VertexInOrder(nextVertex_).y);
    return true;
}

// The edge between two vertices that this row parts. Horizontal edges are never among them, nor others that pass no
// row's samples.
void ScanConverter::InsertEdgeIfBelow(const PolygonPoint& from, const PolygonPoint& to)
{
    const f64 sample = f64(row_) + kHalfRow;
    if (to.y <= sample) return;
    const f64 dx = (to.x - from.x) / (to.y - from.y);
    edges_[activeCount_++] = {(sample - from.y) * dx + from.x, dx, to.y};
}

void ScanConverter::DropEndedEdges()
{
    const f64 sample = f64(row_) + kHalfRow;
    ScanEdge* const edges = edges_.GetData();
    const auto hasEnded = [&](const ScanEdge& edge) { return edge.bottom <= sample; };
    activeCount_ = u64(std::remove_if(edges, edges + activeCount_, hasEnded) - edges);
}

// Insertion: from row to row hardly anything changes.
void ScanConverter::SortEdges()
{
    ScanEdge* const edges = edges_.GetData();
    u64 movesLeft = kMovesAnEdge * activeCount_;
    for (u64 i = 1; i < activeCount_; ++i) {
        if (!IsLeftOf(edges[i], edges[i - 1])) continue;
        const ScanEdge edge = edges[i];
        u64 place = i;
        for (; place > 0 && IsLeftOf(edge, edges[place - 1]) && movesLeft > 0; --place, --movesLeft) {
            edges[place] = edges[place - 1];
        }
        edges[place] = edge;
        if (movesLeft == 0) {
            std::sort(edges, edges + activeCount_, IsLeftOf);
            return;
        }
    }
}

void ScanConverter::Skip(i64 rows)
{
    for (u64 i = 0; i < activeCount_; ++i) edges_[i].x = AddRepeatedly(edges_[i].x, edges_[i].dx, u64(rows));
    row_ += rows;
    SortEdges();
}

}  // namespace zlv
