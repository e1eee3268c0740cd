// The warp into a polygon, said plainly, a point at a time; includes nothing of the library.
#pragma once

#include "plain/plain_convex.h"
#include "plain/plain_polygon.h"
#include "plain/plain_warp.h"

#include <map>
#include <optional>

// One span a line: the one that starts first.
using PlainSpanTable = std::map<double, std::pair<double, double>>;

inline std::optional<PlainSpanTable> PlainSpansOf(const std::vector<PlainPoint>& polygon)
{
    if (polygon.size() < 3) return {};
    std::vector<PlainPoint> hull = PlainHull(polygon);
    if (hull.size() < 3) return {};
    std::reverse(hull.begin(), hull.end());
    if (!PlainIsConvex(hull)) return {};
    std::vector<PlainVertex> vertices;
    for (const PlainPoint& p : hull) vertices.push_back({double(p.x), double(p.y)});
    const std::vector<PlainSpan> spans = PlainScan(vertices).Spans();
    if (spans.empty()) return {};
    PlainSpanTable table;
    for (const PlainSpan& span : spans) {
        const auto at = table.find(double(span.row));
        if (at == table.end() || span.leftX < at->second.first) table[double(span.row)] = {span.leftX, span.rightX};
    }
    return table;
}

// Nothing for a polygon that can't be used.
inline std::optional<PlainStep> PlainPolygonWarp(double width, double height, const std::vector<PlainPoint>& polygon,
                                                 std::uint32_t mode)
{
    const bool isEmpty = width == 0 || height == 0;
    const double w = isEmpty ? 0 : width, h = isEmpty ? 0 : height;
    const auto rows = PlainSpansOf(polygon);
    if (!rows) return {};
    std::vector<PlainPoint> exchanged;
    for (const PlainPoint& p : polygon) exchanged.push_back({p.y, p.x});
    const bool hasColumns = mode == 1 || mode == 2;
    const auto columns = hasColumns ? PlainSpansOf(exchanged) : std::optional<PlainSpanTable>(PlainSpanTable());
    if (!columns) return {};
    return [=](double x, double y, double* outX, double* outY) {
        if (x < 0 || y < 0 || y > h || x > w) return false;
        const auto row = rows->find(std::trunc(y)), column = columns->find(std::trunc(x));
        if (mode == 0 || mode == 5) {
            if (row == rows->end()) return false;
            const auto [start, end] = row->second;
            if (!(start <= x && x <= end)) return false;
            const double s = end - start;
            *outX = s > 0 ? w / s * (x - start) : start;
            return true;
        }
        if (mode == 2) {
            if (row == rows->end()) return false;
            const auto [start, end] = row->second;
            if (x <= start || x >= end) return false;
            const double s = end - start;
            *outX = s > 0 ? w / s * (x - start) : start;
        }
        if (mode == 1 || mode == 2) {
            if (column == columns->end()) return false;
            const auto [start, end] = column->second;
            if (y <= start || y >= end) return false;
            const double s = end - start;
            *outY = s > 0 ? h / s * (y - start) : start;
        }
        return true;
    };
}
