// Points on an open uniform B-spline through control points in space.
//
// The blends are those of Cox and de Boor, evaluated as a triangle: at a parameter only `order` of them are not 0, and
// every one of them is made by the divisions of the recursion, so the numbers are those of the recursion.
#include "runtime/array.h"
#include "runtime/frame.h"

#include <algorithm>

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kFewestControls = 3;

// The three arrays of a curve's coordinates as the client holds them.
template <class Number>
struct Coordinates {
    Number* x;
    Number* y;
    Number* z;
};

class CZLVSpline {
public:
    [[nodiscard]] bool Prepare(const Coordinates<const f64>& controls, u32 count, u32 order);
    void Evaluate(const Coordinates<f64>& out, u32 outCount);

private:
    struct tag {  // NOLINT(readability-identifier-naming): the record's name
        f64 x, y, z;
    };

    // Of `order` zeros, one for each interval, and as many equal ones at the end.
    i64 Knot(i64 j) const { return j < order_ ? 0 : std::min(j, last_ + 1) - order_ + 1; }
    i64 Blend(f64 v);
    tag PointAt(f64 v);

    i64 order_ = 0;
    i64 last_ = 0;  // index of the last control point
    bool isFinite_ = false;
    MVBuffer<tag> controls_;
    MVBuffer<f64> blends_;
};

// A copy of the control points: results may replace them.
bool CZLVSpline::Prepare(const Coordinates<const f64>& controls, u32 count, u32 order)
{
    if (!controls_.Resize(count) || !blends_.Resize(order)) return false;
    order_ = order;
    last_ = i64(count) - 1;
    isFinite_ = true;
    for (size_t k = 0; k < count; ++k) {
        const tag point = {controls.x[k], controls.y[k], controls.z[k]};
        controls_[k] = point;
        isFinite_ = isFinite_ && point.x - point.x == 0 && point.y - point.y == 0 && point.z - point.z == 0;
    }
    return true;
}

// The blends that are not 0 at v: those of the control points first to first + order - 1. Returns first, or -1 when
// rounding has carried v behind the last knot, where all of them are 0.
i64 CZLVSpline::Blend(f64 v)
{
    const i64 intervals = last_ - order_ + 2;
    if (!(v < f64(intervals))) return -1;
    const i64 interval = order_ - 1 + i64(v);
    f64* const blends = blends_.GetData();
    blends[0] = 1.0;
    // blends[i] belongs to control point interval - t + 1 + i; a step goes from t - 1 to t.
    for (i64 t = 2; t <= order_; ++t) {
        blends[t - 1] = 0.0;
        f64 lower = 0.0;  // what the blend before this one contributes to this one
        for (i64 i = 0; i < t; ++i) {
            const i64 k = interval - t + 1 + i;
            f64 upper = 0.0, next = 0.0;
            if (i < t - 1) {
                const f64 from = f64(Knot(k + 1)), to = f64(Knot(k + t));
                const f64 length = to - from;
                upper = (to - v) / length * blends[i];
                next = (v - from) / length * blends[i];
            }
            blends[i] = upper + lower;
            lower = next;
        }
    }
    return interval - order_ + 1;
}

CZLVSpline::tag CZLVSpline::PointAt(f64 v)
{
    const i64 first = Blend(v);
    tag point = {0.0, 0.0, 0.0};
    const auto add = [&](f64 blend, const tag& control) {
        point.x += blend * control.x;
        point.y += blend * control.y;
        point.z += blend * control.z;
    };
    // A blend of 0 adds nothing, unless a control point is infinite or no number: then it adds that it is none.
    if (isFinite_) {
        for (i64 i = 0; first >= 0 && i < order_; ++i) add(blends_[size_t(i)], controls_[size_t(first + i)]);
    } else {
        for (i64 k = 0; k <= last_; ++k) {
            const bool isInside = first >= 0 && k >= first && k < first + order_;
            add(isInside ? blends_[size_t(k - first)] : 0.0, controls_[size_t(k)]);
        }
    }
    return point;
}

void CZLVSpline::Evaluate(const Coordinates<f64>& out, u32 outCount)
{
    const auto put = [&](size_t i, const tag& point) {
        out.x[i] = point.x;
        out.y[i] = point.y;
        out.z[i] = point.z;
    };
    const f64 step = f64(last_ - order_ + 2) / f64(outCount - 1);
    f64 v = 0.0;
    for (size_t i = 0; i + 1 < outCount; ++i, v += step) put(i, PointAt(v));
    put(outCount - 1, controls_[size_t(last_)]);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_Get3DSplinePoints(u32 outCount, u32 controlCount, u32 order, const f64* x, const f64* y,
                                       const f64* z, f64* outX, f64* outY, f64* outZ)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (outCount == 0 || controlCount <= order || controlCount < kFewestControls || order == 0 || !x || !y || !z ||
            !outX || !outY || !outZ) {
            return frame.Fail(Error::BadArgument);
        }
        CZLVSpline spline;
        if (!spline.Prepare({x, y, z}, controlCount, order)) return frame.Fail(Error::OutOfMemory);
        spline.Evaluate({outX, outY, outZ}, outCount);
        return 1;
    });
}
