// A warp that squeezes the picture into a convex polygon: its rows, its columns or both.
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/span_table.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

class CZLVTransform::CPolygonPoints : public CXFormer {
public:
    Error SetUp(const point* polygon, u32 pointCount, u32 newMode)
    {
        if (!rowSpans.Build(polygon, pointCount, SpanTable::Lines::Rows, height)) return Error::BadArgument;
        for (u32 i = 0; i < pointCount; ++i) bounds.Add(polygon[i]);
        const bool hasColumns = newMode == ZLV40_POLYGON_COLUMNS || newMode == ZLV40_POLYGON_BOTH;
        if (hasColumns && !columnSpans.Build(polygon, pointCount, SpanTable::Lines::Columns, width)) {
            return Error::BadArgument;
        }
        mode = newMode;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        SpanTable::Cursor rows(rowSpans), columns(columnSpans);
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) run.isLost[i] = !Map(run.x[i], run.y[i], rows, columns, &run.x[i], &run.y[i]);
        }
    }

private:
    // A span's ends belong to it when rows alone are squeezed, and do not otherwise.
    enum class Ends : bool { Inside, Outside };

    bool Map(f64 x, f64 y, SpanTable::Cursor& rows, SpanTable::Cursor& columns, f64* outX, f64* outY) const
    {
        if (x < 0 || y < 0 || y > height || x > width) return false;
        switch (mode) {
        case ZLV40_POLYGON_ROWS:
        case ZLV40_POLYGON_ROWS_AGAIN: return Stretch(rows.Find(y), x, width, Ends::Inside, outX);
        case ZLV40_POLYGON_COLUMNS: return Stretch(columns.Find(x), y, height, Ends::Outside, outY);
        case ZLV40_POLYGON_BOTH:
            // x stays stretched where y can't be.
            return Stretch(rows.Find(y), x, width, Ends::Outside, outX) &&
                   Stretch(columns.Find(x), y, height, Ends::Outside, outY);
        default: return true;
        }
    }

    // The span becomes the whole size. False outside of it.
    static bool Stretch(const LineSpan* span, f64 along, f64 size, Ends ends, f64* out)
    {
        if (!span) return false;
        if (ends == Ends::Inside ? !(span->start <= along && along <= span->end)
                                 : along <= span->start || along >= span->end) {
            return false;
        }
        const f64 length = span->end - span->start;
        *out = length > 0 ? size / length * (along - span->start) : span->start;
        return true;
    }

    // Of all points given, and the origin.
    struct Bounds {
        i32 minX = 0, minY = 0, maxX = 0, maxY = 0;

        void Add(const point& p)
        {
            minX = std::min(minX, p.x);
            minY = std::min(minY, p.y);
            maxX = std::max(maxX, p.x);
            maxY = std::max(maxY, p.y);
        }
    };

protected:
    u32 mode = 0;
    SpanTable rowSpans;
    SpanTable columnSpans;
    Bounds bounds;
};

ZLV_EXPORT u32 ZLV40_AddPolygonTransform(u32 width, u32 height, const point* polygon, u32 pointCount, u32 mode)
{
    return AddTransformInFrame<CZLVTransform::CPolygonPoints>(
        width, height, [&](CZLVTransform::CPolygonPoints& points) { return points.SetUp(polygon, pointCount, mode); });
}
