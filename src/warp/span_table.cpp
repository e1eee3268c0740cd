#include "warp/span_table.h"

#include "base/convex.h"
#include "base/polygon_scanlines.h"

#include <algorithm>
#include <utility>

namespace zlv {

namespace {

constexpr u32 kFewestPoints = 3;

// An array that a function of the base layer has made.
template <class T>
class MadeBlock {
public:
    MadeBlock() = default;
    ~MadeBlock() { platform::FreeClientBlock(data); }
    MadeBlock(const MadeBlock&) = delete;
    MadeBlock& operator=(const MadeBlock&) = delete;

    T* data = nullptr;
};

void ReversePoints(i32* points, u32 count)
{
    for (size_t i = 0, j = count - 1; i < j; ++i, --j) {
        std::swap(points[2 * i], points[2 * j]);
        std::swap(points[2 * i + 1], points[2 * j + 1]);
    }
}

// The convex hull, in the order of a convex polygon that winds the usual way.
[[nodiscard]] bool MakeHull(const point* polygon, u32 count, MVBuffer<PolygonPoint>& hull)
{
    MadeBlock<i32> made;
    u32 madeCount = 0;
    if (!MV40_GetConvexHull(&polygon->x, count, &made.data, &madeCount) || madeCount < kFewestPoints) return false;
    ReversePoints(made.data, madeCount);
    if (!MV40_PolygonIsConvex(made.data, madeCount) || !hull.Resize(madeCount)) return false;
    for (size_t i = 0; i < madeCount; ++i) hull[i] = {f64(made.data[2 * i]), f64(made.data[2 * i + 1])};
    return true;
}

}  // namespace

bool SpanTable::Build(const point* polygon, u32 count, Lines lines, u32 lastLine)
{
    count_ = 0;
    if (!polygon || count < kFewestPoints) return false;
    MVBuffer<point> exchanged;
    if (lines == Lines::Columns) {
        if (!exchanged.Resize(count)) return false;
        for (u32 i = 0; i < count; ++i) exchanged[i] = {polygon[i].y, polygon[i].x};
        polygon = exchanged.GetData();
    }
    MVBuffer<PolygonPoint> hull;
    if (!MakeHull(polygon, count, hull)) return false;
    MadeBlock<i32> rows;
    MadeBlock<f64> starts, ends;
    u32 spanCount = 0;
    return MV40_GetPolygonScanlineArray(&hull[0].x, u32(hull.GetCount()), &rows.data, &starts.data, &ends.data,
                                        &spanCount) &&
           spanCount > 0 && KeepFirstOfLines(rows.data, starts.data, ends.data, spanCount, lastLine);
}

// Spans come from top to bottom and from left to right. Of several on one line, which a horizontal edge can make, the
// leftmost one stands for the line as it is.
bool SpanTable::KeepFirstOfLines(const i32* lines, const f64* starts, const f64* ends, u32 count, u32 lastLine)
{
    const i32* const first = std::lower_bound(lines, lines + count, 0);
    const i32* const last = std::find_if(first, lines + count, [&](i32 line) { return u32(line) > lastLine; });
    const size_t kept = size_t(last - first);
    if (kept == 0) return true;
    if (!spans_.Resize(kept)) return false;
    for (size_t i = size_t(first - lines), end = i + kept; i < end; ++i) {
        if (count_ > 0 && spans_[count_ - 1].line == lines[i]) continue;
        spans_[count_++] = {lines[i], starts[i], ends[i]};
    }
    return true;
}

const LineSpan* SpanTable::Cursor::Find(f64 coordinate)
{
    // No number, or beyond all lines.
    if (!(coordinate < 0x1p31)) return nullptr;
    const i64 line = i64(coordinate);
    if (IsAt(line)) return &table_.spans_[at_];
    ++at_;
    if (IsAt(line)) return &table_.spans_[at_];
    const LineSpan* const spans = table_.spans_.GetData();
    at_ = u64(std::lower_bound(spans, spans + table_.count_, line,
                               [](const LineSpan& span, i64 wanted) { return span.line < wanted; }) -
              spans);
    return IsAt(line) ? &table_.spans_[at_] : nullptr;
}

}  // namespace zlv
