// A warp that pinches a round area together, or blows it up.
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CPinchPoints : public CXFormer {
public:
    Error SetUp(f64 newRadius, f64 newStrength, i32 newOffsetX, i32 newOffsetY)
    {
        if (!HasSize() || newRadius == 0) return Error::BadArgument;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        strength = newStrength;
        radius = newRadius;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {centerX, centerY, f64(offsetX), f64(offsetY)}, radius);
        const f64* const radii = touched.Radii();
        f64* const newRadii = touched.NewRadii();
        for (u32 i = 0; i < touched.Count(); ++i) {
            newRadii[i] = AtLeast0((1 - radii[i] / halfDiagonal) * strength + radii[i]);
        }
        touched.MoveAlongBearings();
    }

protected:
    i32 offsetX = 0;
    i32 offsetY = 0;
    f64 strength = 0;  // in pixels
    f64 radius = 0;
};

ZLV_EXPORT u32 ZLV40_AddPinchTransform(u32 width, u32 height, f64 radius, f64 strength, i32 offsetX, i32 offsetY)
{
    return AddTransformInFrame<CZLVTransform::CPinchPoints>(width, height, [&](CZLVTransform::CPinchPoints& points) {
        return points.SetUp(radius, strength, offsetX, offsetY);
    });
}
