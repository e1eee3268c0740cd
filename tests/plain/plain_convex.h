// Convexity and convex hulls, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

struct PlainPoint {
    std::int32_t x, y;
    bool operator==(const PlainPoint&) const = default;
};

inline bool PlainIsConvex(const std::vector<PlainPoint>& points)
{
    struct Vertex {
        double x, y;
    };
    std::vector<Vertex> v;
    for (const PlainPoint& p : points) v.push_back({double(p.x), double(p.y)});
    const std::uint32_t n = std::uint32_t(v.size());
    const auto turn = [&](std::uint32_t i, const Vertex& other) {
        const Vertex &cur = v[i], &next = v[(i + 1) % n];
        const Vertex a = {cur.x - next.x, cur.y - next.y}, b = {other.x - next.x, other.y - next.y};
        const double first = a.y * b.x, second = b.y * a.x;
        return first - second;
    };
    for (std::uint32_t i = 0; i < n; ++i) {
        if (turn(i, v[std::uint32_t(i - 1) % n]) < 0) return false;
    }
    std::uint32_t top = 0;
    for (std::uint32_t i = 1; i < n; ++i) {
        if (v[i].y > v[top].y) top = i;
    }
    for (std::uint32_t i = 0; i < n; ++i) {
        if (turn(i, v[top]) < 0) return false;
    }
    return true;
}

inline double PlainPseudoAngle(const PlainPoint& p, const PlainPoint& q)
{
    const double dx = double(q.x) - double(p.x), dy = double(q.y) - double(p.y);
    double t = 0;
    if (dx != 0 || dy != 0) t = dy / (std::fabs(dx) + std::fabs(dy));
    if (dx < 0) t = 2 - t;
    else if (dy < 0) t = t + 4;
    return t * 90;
}

// At least three points.
inline std::vector<PlainPoint> PlainHull(std::vector<PlainPoint> points)
{
    const std::size_t n = points.size();
    std::size_t chosen = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const PlainPoint &p = points[i], &best = points[chosen];
        if (p.y < best.y || (p.y == best.y && p.x < best.x)) chosen = i;
    }
    double last = 0;
    std::size_t m = 0;
    while (true) {
        std::swap(points[m], points[chosen]);
        double limit = 360;
        for (std::size_t candidate = m + 1; candidate <= n; ++candidate) {
            if (m == 0 && candidate == n) break;
            const double angle = PlainPseudoAngle(points[m], candidate == n ? points[0] : points[candidate]);
            if (angle >= last && angle <= limit) {
                chosen = candidate;
                limit = angle;
            }
        }
        last = limit;
        if (chosen == n || m + 1 == n) break;
        ++m;
    }
    std::vector<PlainPoint> hull;
    for (std::size_t i = m + 1; i > 0; --i) hull.push_back(points[i - 1]);
    return hull;
}
