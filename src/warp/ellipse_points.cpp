// A warp that squeezes the picture into an ellipse.
#include "runtime/math.h"
#include "warp/add_transform.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CEllipsePoints : public CXFormer {
public:
    Error SetUp(f64 newSemiAxisX, f64 newSemiAxisY, i32 newOffsetX, i32 newOffsetY, i32 newMode)
    {
        if (newMode > i32(ZLV40_SQUEEZE_BOTH)) return Error::BadArgument;
        mode = newMode;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        semiAxisX = newSemiAxisX;
        semiAxisY = newSemiAxisY;
        semiAxisXSquared = semiAxisX * semiAxisX;
        semiAxisYSquared = semiAxisY * semiAxisY;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override
    {
        *outX = x;
        *outY = y;
        const f64 px = x - offsetX, py = y - offsetY;
        if (px < 0 || py < 0 || py > height || px > width) return false;
        switch (mode) {
        case ZLV40_SQUEEZE_HORIZONTAL:
            if (!Squeeze(Horizontal(), px, py, outX)) return false;
            *outY = py;
            return true;
        case ZLV40_SQUEEZE_VERTICAL:
            if (!Squeeze(Vertical(), py, px, outY)) return false;
            *outX = px;
            return true;
        case ZLV40_SQUEEZE_BOTH:
            // y stays squeezed where x can't be.
            return Squeeze(Vertical(), py, px, outY) && Squeeze(Horizontal(), px, py, outX);
        default: return true;  // below 0
        }
    }

private:
    // One axis, and the other one, which decides how wide the ellipse is there.
    struct Axes {
        f64 center, squared, size;
        f64 otherCenter, otherSquared;
    };

    Axes Horizontal() const { return {centerX, semiAxisXSquared, f64(width), centerY, semiAxisYSquared}; }
    Axes Vertical() const { return {centerY, semiAxisYSquared, f64(height), centerX, semiAxisXSquared}; }

    // The whole size, not size - 1, comes from within the ellipse. False where it is not.
    static bool Squeeze(const Axes& axes, f64 along, f64 other, f64* out)
    {
        const f64 fromCenter = other - axes.otherCenter;
        const f64 square = (1 - fromCenter * fromCenter / axes.otherSquared) * axes.squared;
        if (square <= 0) return false;
        const f64 half = Sqrt(square);
        const f64 first = axes.center - half, last = axes.center + half;
        *out = (along - first) / (last - first) * axes.size;
        return true;
    }

protected:
    i32 mode = 0;
    f64 offsetX = 0;
    f64 offsetY = 0;
    f64 semiAxisX = 0;
    f64 semiAxisY = 0;
    f64 semiAxisXSquared = 0;
    f64 semiAxisYSquared = 0;
};

ZLV_EXPORT u32 ZLV40_AddEllipticalTransform(u32 width, u32 height, f64 semiAxisX, f64 semiAxisY, i32 offsetX,
                                            i32 offsetY, i32 mode)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (semiAxisX == 0 || semiAxisY == 0) return frame.Fail(Error::BadArgument);
        return AddTransform<CZLVTransform::CEllipsePoints>(
            frame, width, height, [&](CZLVTransform::CEllipsePoints& points) {
                return points.SetUp(semiAxisX, semiAxisY, offsetX, offsetY, mode);
            });
    });
}
