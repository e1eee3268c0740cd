// Warps that turn the picture around a centre, less and less towards the rim or in waves.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CSpinPoints : public CXFormer {
public:
    Error SetUp(f64 newRadius, f64 angleDegrees, i32 newOffsetX, i32 newOffsetY)
    {
        if (!HasSize() || newRadius == 0) return Error::BadArgument;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        radius = newRadius;
        angle = angleDegrees * pi / 180;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    // Which part of the angle points at these radii turn by.
    virtual void SpinFactor(const f64* radii, f64* factors, u32 count) const
    {
        for (u32 i = 0; i < count; ++i) factors[i] = 1 - radii[i] / radius;
    }

    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {centerX, centerY, f64(offsetX), f64(offsetY)}, radius);
        f64 angles[PointRun::kMost];
        SpinFactor(touched.Radii(), angles, touched.Count());
        for (u32 i = 0; i < touched.Count(); ++i) angles[i] *= angle;
        touched.Turn(angles, pi);
    }

protected:
    i32 offsetX = 0;
    i32 offsetY = 0;
    f64 radius = 0;
    f64 angle = 0;  // in radians
};

class CZLVTransform::CSpinWavePoints : public CSpinPoints {
public:
    Error SetUp(f64 newRadius, f64 angleDegrees, f64 newFrequency, i32 newOffsetX, i32 newOffsetY)
    {
        frequency = newFrequency;
        return CSpinPoints::SetUp(newRadius, angleDegrees, newOffsetX, newOffsetY);
    }

    void SpinFactor(const f64* radii, f64* factors, u32 count) const override
    {
        for (u32 i = 0; i < count; ++i) factors[i] = radii[i] / radius * frequency;
        CosArray(factors, factors, count);
        for (u32 i = 0; i < count; ++i) factors[i] = 1 - factors[i] * (radii[i] / radius);
    }

protected:
    f64 frequency = 0;
};

ZLV_EXPORT u32 ZLV40_AddSpinTransform(u32 width, u32 height, f64 radius, f64 angleDegrees, i32 offsetX, i32 offsetY)
{
    return AddTransformInFrame<CZLVTransform::CSpinPoints>(width, height, [&](CZLVTransform::CSpinPoints& points) {
        return points.SetUp(radius, angleDegrees, offsetX, offsetY);
    });
}

ZLV_EXPORT u32 ZLV40_AddSpinWaveTransform(u32 width, u32 height, f64 radius, f64 angleDegrees, f64 frequency,
                                          i32 offsetX, i32 offsetY)
{
    return AddTransformInFrame<CZLVTransform::CSpinWavePoints>(
        width, height, [&](CZLVTransform::CSpinWavePoints& points) {
            return points.SetUp(radius, angleDegrees, frequency, offsetX, offsetY);
        });
}
