// Push: drags what is at one point of an image to another one, as a finger does in wet paint.
//
// A square around the second point is stretched: each of its quarters is made of the quadrilateral that has the
// quarter's three outer corners and the first point. Towards the square's edges pixels come from nearer to themselves.
#include "runtime/frame.h"
#include "runtime/math.h"
#include "warp/push_image.kernels.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

constexpr u32 kQuarters = 4;

struct Place {
    f64 x, y;

    friend Place operator+(const Place& a, const Place& b) { return {a.x + b.x, a.y + b.y}; }
    friend Place operator-(const Place& a, const Place& b) { return {a.x - b.x, a.y - b.y}; }
    friend Place operator*(const Place& a, f64 b) { return {a.x * b, a.y * b}; }
    friend Place operator/(const Place& a, f64 b) { return {a.x / b, a.y / b}; }
};

// From the first pixel of an axis to the one behind the last, within the image. Empty ones may have left > right.
struct Span {
    i64 start, end;

    // The part of the square on one side of its middle. Points and distances are far below 2^62.
    Span(i64 middle, i64 reach, bool isBehind, u32 size)
        : start(std::max<i64>(0, isBehind ? middle : middle - reach)),
          end(std::min<i64>(isBehind ? middle + reach : middle, size))
    {
    }

    i64 Length() const { return end - start; }
};

// A quarter, and the places that its corners come from.
struct Quarter {
    Span columns, rows;
    Place topLeft, topRight, bottomRight, bottomLeft;

    Quarter(const Span& theColumns, const Span& theRows)
        : columns(theColumns),
          rows(theRows),
          topLeft{f64(columns.start), f64(rows.start)},
          topRight{f64(columns.end), f64(rows.start)},
          bottomRight{f64(columns.end), f64(rows.end)},
          bottomLeft{f64(columns.start), f64(rows.end)}
    {
    }
};

// From left to right, the upper ones first. The corner in the square's middle comes from `from`.
Quarter MakeQuarter(u32 index, const point& from, const point& to, i64 reach, const ImageView<const u8>& image)
{
    const bool isRight = index & 1, isLower = index & 2;
    Quarter quarter({to.x, reach, isRight, image.width}, {to.y, reach, isLower, image.height});
    Place& middle =
        isLower ? (isRight ? quarter.topLeft : quarter.topRight) : (isRight ? quarter.bottomLeft : quarter.bottomRight);
    middle = {f64(from.x), f64(from.y)};
    return quarter;
}

// Twice the distance of the points in whole pixels: 2 or more for different points.
i64 ReachOf(const point& from, const point& to)
{
    const f64 dx = f64(from.x) - to.x, dy = f64(from.y) - to.y;
    return 2 * i64(Sqrt(dx * dx + dy * dy));
}

// The places of a column start on the quadrilateral's upper edge and go down to the lower one.
void StartColumn(const Quarter& quarter, i64 column, PushedColumns& columns)
{
    const f64 t = f64(column) / f64(quarter.columns.Length());
    const Place top = quarter.topLeft + (quarter.topRight - quarter.topLeft) * t;
    const Place bottom = quarter.bottomLeft + (quarter.bottomRight - quarter.bottomLeft) * t;
    const Place step = (bottom - top) / f64(quarter.rows.Length());
    const u32 i = columns.count++;
    columns.x[i] = top.x;
    columns.y[i] = top.y;
    columns.stepX[i] = step.x;
    columns.stepY[i] = step.y;
}

void DrawQuarter(const Quarter& quarter, const ImageView<const u8>& src, u8* dst)
{
    const i64 width = quarter.columns.Length(), height = quarter.rows.Length();
    if (width < 1 || height < 1) return;
    u8* const corner = dst + u64(quarter.rows.start) * src.stride + u64(quarter.columns.start) * src.channels;
    PushedColumns columns;
    for (i64 done = 0; done < width; done += columns.count) {
        columns.count = 0;
        while (columns.count < PushedColumns::kMost && done + columns.count < width) {
            StartColumn(quarter, done + columns.count, columns);
        }
        Kernels<PushImageKernels>().drawColumns(src, columns, u32(height), corner + u64(done) * src.channels);
    }
}

}  // namespace

ZLV_EXPORT u32 ZLV40_PushImage(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, u8* dst,
                               const point* fromPoint, const point* toPoint)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || !fromPoint || !toPoint) return frame.Fail(Error::BadArgument);
        if (width == 0 || height == 0 || bytesPerPixel == 0) return frame.Fail(Error::BadArgument);
        const point from = *fromPoint, to = *toPoint;
        std::memcpy(dst, src, size_t(height) * rowStride);
        if (from.x == to.x && from.y == to.y) return 1;

        const ImageView<const u8> image = {src, width, height, bytesPerPixel, rowStride};
        const i64 reach = ReachOf(from, to);
        for (u32 i = 0; i < kQuarters; ++i) {
            DrawQuarter(MakeQuarter(i, from, to, reach, image), image, dst);
            if (!frame.Report(i + 1, kQuarters)) return 0;
        }
        return 1;
    });
}
