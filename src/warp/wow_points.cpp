// A warp that blows the picture's middle up, the more the further out.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CWowPoints : public CXFormer {
public:
    Error SetUp(f64 newRadius, u32 newMode)
    {
        if (!HasSize() || newRadius == 0) return Error::BadArgument;
        mode = newMode;
        radius = newRadius;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    // No lower limit: beyond the half diagonal points come from the other side of the centre.
    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {centerX, centerY, 0, 0}, radius);
        const f64* const radii = touched.Radii();
        f64* const newRadii = touched.NewRadii();
        for (u32 i = 0; i < touched.Count(); ++i) newRadii[i] = radii[i] / halfDiagonal;
        if (mode == ZLV40_WOW_SINE) {
            for (u32 i = 0; i < touched.Count(); ++i) newRadii[i] = newRadii[i] * pi * 0.125;
            SinArray(newRadii, newRadii, touched.Count());
        }
        for (u32 i = 0; i < touched.Count(); ++i) newRadii[i] = (1 - newRadii[i]) * radii[i];
        touched.MoveAlongBearings();
    }

protected:
    u32 mode = 0;
    f64 radius = 0;
};

ZLV_EXPORT u32 ZLV40_AddWowTransform(u32 width, u32 height, f64 radius, u32 mode)
{
    return AddTransformInFrame<CZLVTransform::CWowPoints>(
        width, height, [&](CZLVTransform::CWowPoints& points) { return points.SetUp(radius, mode); });
}
