// A warp that bends a round area around a centre like a lens.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CLensPoints : public CXFormer {
public:
    Error SetUp(f64 newRadius, i32 newOffsetX, i32 newOffsetY)
    {
        if (!HasSize() || newRadius == 0) return Error::BadArgument;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        radius = newRadius;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    // The radius limits the area and nothing else: how strongly it bends is the picture's matter. The column through
    // the centre takes the offset once more, which other warps around a centre avoid; presets are drawn with it.
    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {centerX, centerY, f64(offsetX), f64(offsetY)}, radius);
        const f64* const radii = touched.Radii();
        f64* const newRadii = touched.NewRadii();
        for (u32 i = 0; i < touched.Count(); ++i) newRadii[i] = radii[i] / halfDiagonal * pi * 0.5;
        SinArray(newRadii, newRadii, touched.Count());
        for (u32 i = 0; i < touched.Count(); ++i) newRadii[i] *= radii[i];
        touched.MoveAlongBearings(RadialRun::Column::TakesOffset);
    }

protected:
    i32 offsetX = 0;
    i32 offsetY = 0;
    f64 radius = 0;
};

ZLV_EXPORT u32 ZLV40_AddLensTransform(u32 width, u32 height, f64 radius, i32 offsetX, i32 offsetY)
{
    return AddTransformInFrame<CZLVTransform::CLensPoints>(
        width, height, [&](CZLVTransform::CLensPoints& points) { return points.SetUp(radius, offsetX, offsetY); });
}
