#include "base/convex.h"

#include "base/client_block.h"
#include "runtime/array.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace zlv {

namespace {

constexpr f64 kWholeTurn = 360;
constexpr u32 kFewestHullPoints = 3;

struct Point {
    i32 x, y;
};

class PointList {
public:
    PointList(const i32* points, u32 count) : points_(points), count_(count) {}

    u32 Count() const { return count_; }
    Point operator[](u32 i) const { return {points_[2 * size_t(i)], points_[2 * size_t(i) + 1]}; }

private:
    const i32* const points_;
    const u32 count_;
};

// Below 0 where the path from `other` over `next` to `current` bends the wrong way.
f64 Turn(const Point& current, const Point& next, const Point& other)
{
    const f64 ax = f64(current.x) - next.x, ay = f64(current.y) - next.y;
    const f64 bx = f64(other.x) - next.x, by = f64(other.y) - next.y;
    return ay * bx - by * ax;
}

u32 NextOf(u32 i, u32 count) { return i + 1 == count ? 0 : i + 1; }

// The vertex before the first one is 4294967295 modulo the count: the last one of 2, 4 or 8, and another one of 3, 5 or
// 6, where the first vertex proves less or nothing. Polygons that pass by it are in use.
u32 PreviousOf(u32 i, u32 count) { return (i - 1) % count; }

u32 LowestOnScreen(const PointList& points)
{
    u32 lowest = 0;
    for (u32 i = 1; i < points.Count(); ++i) {
        if (points[i].y > points[lowest].y) lowest = i;
    }
    return lowest;
}

bool IsConvex(const PointList& points)
{
    const u32 count = points.Count();
    if (count == 0) return true;
    for (u32 i = 0; i < count; ++i) {
        if (Turn(points[i], points[NextOf(i, count)], points[PreviousOf(i, count)]) < 0) return false;
    }
    // Figures that turn one way throughout and wind more than once.
    const Point top = points[LowestOnScreen(points)];
    for (u32 i = 0; i < count; ++i) {
        if (Turn(points[i], points[NextOf(i, count)], top) < 0) return false;
    }
    return true;
}

// Grows with the angle of the way from p to q, from 0 up to 360, and is cheaper; 0 for the same point twice.
f64 PseudoAngle(const Point& p, const Point& q)
{
    const f64 dx = f64(q.x) - p.x, dy = f64(q.y) - p.y;
    const f64 t = dx == 0 && dy == 0 ? 0 : dy / (std::abs(dx) + std::abs(dy));
    if (dx < 0) return (2 - t) * 90;
    return (dy < 0 ? t + 4 : t) * 90;
}

u32 StartOfHull(const Point* points, u32 count)
{
    u32 start = 0;
    for (u32 i = 1; i < count; ++i) {
        const Point &point = points[i], &best = points[start];
        if (point.y < best.y || (point.y == best.y && point.x < best.x)) start = i;
    }
    return start;
}

// Brings the hull's points to the front, one after the other, and tells how many they are.
u32 WrapHull(Point* points, u32 count)
{
    u32 chosen = StartOfHull(points, count);
    f64 lastAngle = 0;
    for (u32 found = 0;; ++found) {
        std::swap(points[found], points[chosen]);
        f64 limit = kWholeTurn;
        // The candidate after the last point is the start, once the walk has left it.
        const u32 candidates = found == 0 ? count - 1 : count;
        for (u32 i = found + 1; i <= candidates; ++i) {
            const f64 angle = PseudoAngle(points[found], i == count ? points[0] : points[i]);
            // Equal counts on both sides: of the points in one direction the last one is taken, near or far.
            if (angle < lastAngle || angle > limit) continue;
            chosen = i;
            limit = angle;
        }
        lastAngle = limit;
        if (chosen == count || found + 1 == count) return found + 1;
    }
}

Error MakeHull(const i32* given, u32 count, i32** hull, u32* hullCount)
{
    if (hullCount) *hullCount = 0;
    if (hull) *hull = nullptr;
    if (!given || !hull || !hullCount || count < kFewestHullPoints) return Error::BadArgument;
    if (ClientBlock<Point>::IsTooLong(count)) return Error::OutOfMemory;
    MVBuffer<Point> points;
    if (!points.Resize(count)) return Error::OutOfMemory;
    std::memcpy(points.GetData(), given, count * sizeof(Point));
    const u32 found = WrapHull(points.GetData(), count);
    if (found < kFewestHullPoints) return Error::UnusablePolygon;

    ClientBlock<i32> block;
    if (!block.Allocate(2 * u64(found))) return Error::OutOfMemory;
    for (u32 i = 0; i < found; ++i) {
        const Point& point = points[found - 1 - i];
        block[2 * size_t(i)] = point.x;
        block[2 * size_t(i) + 1] = point.y;
    }
    *hull = block.Release();
    *hullCount = found;
    return Error::None;
}

}  // namespace

u32 MV40_PolygonIsConvex(const i32* points, u32 count)
{
    return InBaseCall("MV40_PolygonIsConvex", [&](MVThreadContext& context, Error& error) -> u32 {
        BaseWork work(context, error);
        if (!points) return work.Fail(Error::BadArgument);
        return IsConvex({points, count}) ? 1 : work.Fail(Error::UnusablePolygon);
    });
}

// A hull that is found is not reported: clients who work through a list of polygons read the code of an earlier failure
// afterwards.
u32 MV40_GetConvexHull(const i32* points, u32 count, i32** hull, u32* hullCount)
{
    MVThreadContext* const context = baseContexts.Get();
    if (!context) return 0;
    const Error error = MakeHull(points, count, hull, hullCount);
    if (error == Error::None) return 1;
    ReportBaseError(*context, error, "MV40_GetConvexHull", nullptr);
    return 0;
}

}  // namespace zlv
