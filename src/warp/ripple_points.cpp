// A warp like the rings on water.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CRipplePoints : public CXFormer {
public:
    Error SetUp(f64 newRadius, f64 newAmplitude, f64 newFrequency, f64 newOffsetX, f64 newOffsetY, u32 newFalloff)
    {
        frequency = newFrequency;
        amplitude = newAmplitude;
        radius = newRadius;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        falloff = newFalloff;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    // The centre moves, too; and where the wave is deeper than the radius, points go to its other side.
    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {offsetX + centerX, offsetY + centerY, 0, 0}, radius, RadialRun::Holds::Center);
        const u32 count = touched.Count();
        const f64* const radii = touched.Radii();
        f64* const wave = touched.NewRadii();
        f64 parts[PointRun::kMost], weights[PointRun::kMost];
        for (u32 i = 0; i < count; ++i) parts[i] = radii[i] / radius;
        for (u32 i = 0; i < count; ++i) wave[i] = pi * parts[i] * frequency;
        SinArray(wave, wave, count);
        for (u32 i = 0; i < count; ++i) wave[i] *= amplitude;
        FindWeights(parts, weights, count);
        for (u32 i = 0; i < count; ++i) wave[i] *= weights[i];
        if (falloff == ZLV40_RIPPLE_SQUARE) {
            for (u32 i = 0; i < count; ++i) wave[i] *= weights[i];
        }
        for (u32 i = 0; i < count; ++i) wave[i] += radii[i];
        touched.MoveAlongBearings();
    }

private:
    // What the wave is multiplied by at these parts of the radius.
    void FindWeights(const f64* parts, f64* weights, u32 count) const
    {
        const bool isSine = falloff == ZLV40_RIPPLE_SINE, isCosine = falloff == ZLV40_RIPPLE_COSINE;
        if (isSine || isCosine) {
            for (u32 i = 0; i < count; ++i) weights[i] = pi * 0.5 * parts[i];
            (isSine ? SinArray : CosArray)(weights, weights, count);
            return;
        }
        const bool isFalling = falloff == ZLV40_RIPPLE_LINEAR || falloff == ZLV40_RIPPLE_SQUARE;
        for (u32 i = 0; i < count; ++i) weights[i] = isFalling ? 1 - parts[i] : 1;
    }

protected:
    f64 frequency = 0;
    f64 amplitude = 0;
    f64 radius = 0;
    f64 offsetX = 0;
    f64 offsetY = 0;
    u32 falloff = 0;
};

ZLV_EXPORT u32 ZLV40_AddRippleTransform(u32 width, u32 height, f64 radius, f64 amplitude, f64 frequency, f64 offsetX,
                                        f64 offsetY, u32 falloff)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (radius == 0) return frame.Fail(Error::BadArgument);
        return AddTransform<CZLVTransform::CRipplePoints>(
            frame, width, height, [&](CZLVTransform::CRipplePoints& points) {
                return points.SetUp(radius, amplitude, frequency, offsetX, offsetY, falloff);
            });
    });
}
