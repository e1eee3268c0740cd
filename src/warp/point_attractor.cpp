// A warp that draws the whole picture towards a centre, or drives it away, by one of several curves of the radius.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"
#include "warp/radial_run.h"

#include "zlv40.h"

#include <limits>

using namespace zlv;

class CZLVTransform::CPointAttractor : public CXFormer {
public:
    Error SetUp(f64 newStrength, i32 newOffsetX, i32 newOffsetY, u32 newMode, f64 newFrequency)
    {
        if (!HasSize()) return Error::BadArgument;
        offsetX = newOffsetX;
        offsetY = newOffsetY;
        mode = newMode;
        strength = newStrength;
        frequency = newFrequency;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        RadialRun touched(run, {centerX, centerY, f64(offsetX), f64(offsetY)}, std::numeric_limits<f64>::infinity());
        f64 shape[PointRun::kMost];
        FindShape(touched.Radii(), shape, touched.Count());
        for (u32 i = 0; i < touched.Count(); ++i) {
            touched.NewRadii()[i] = AtLeast0(shape[i] * strength + touched.Radii()[i]);
        }
        touched.MoveAlongBearings();
    }

private:
    void FindShape(const f64* radii, f64* shape, u32 count) const
    {
        const auto fill = [&](auto valueAt) {
            for (u32 i = 0; i < count; ++i) shape[i] = valueAt(radii[i]);
        };
        switch (mode) {
        case ZLV40_ATTRACT_LINEAR: return fill([this](f64 r) { return 1 - r * frequency / halfDiagonal; });
        case ZLV40_ATTRACT_SINE:
            fill([this](f64 r) { return frequency * pi * r / halfDiagonal; });
            return SinArray(shape, shape, count);
        case ZLV40_ATTRACT_COSINE:
            fill([this](f64 r) { return r / halfDiagonal * pi * frequency; });
            CosArray(shape, shape, count);
            for (u32 i = 0; i < count; ++i) shape[i] = shape[i] * 0.5 + 0.5;
            return;
        case ZLV40_ATTRACT_SQUARE:
            return fill([this](f64 r) {
                const f64 v = -(r / halfDiagonal * frequency);
                return v + v * v;
            });
        case ZLV40_ATTRACT_CUBIC:
            return fill([this](f64 r) {
                const f64 w = r / halfDiagonal - 0.7;
                return (18 * w * w * w + 12 * w * w + w - 2) * 0.5 + 1.5;
            });
        case ZLV40_ATTRACT_ARC: return fill([this](f64 r) { return Atan(r * frequency / halfDiagonal); });
        default: return fill([](f64) { return 0.0; });
        }
    }

protected:
    i32 offsetX = 0;
    i32 offsetY = 0;
    u32 mode = 0;
    f64 strength = 0;  // in pixels
    f64 frequency = 0;
};

ZLV_EXPORT u32 ZLV40_AddPointAttractorTransform(u32 width, u32 height, f64 strength, i32 offsetX, i32 offsetY, u32 mode,
                                                f64 frequency)
{
    return AddTransformInFrame<CZLVTransform::CPointAttractor>(
        width, height, [&](CZLVTransform::CPointAttractor& points) {
            return points.SetUp(strength, offsetX, offsetY, mode, frequency);
        });
}
