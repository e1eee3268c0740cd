// A warp that lets points swirl around the contours of a field of noise.
#include "generators/perlin.h"
#include "warp/add_transform.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CPerlinDispPoints : public CXFormer {
public:
    [[nodiscard]] Error SetUp(f64 newStrength, f64 newScaleX, f64 newScaleY)
    {
        strength = newStrength;
        scaleX = newScaleX;
        scaleY = newScaleY;
        noise.Build();
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override
    {
        Displace(x, y);
        *outX = x;
        *outY = y;
        return true;
    }

    void MapRun(PointRun& run) override
    {
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) Displace(run.x[i], run.y[i]);
        }
    }

private:
    // x by the slope along y and y by the one along x, unlike a relief, where points would flow down.
    void Displace(f64& x, f64& y)
    {
        const f64 left = (x - 1) / scaleX, middle = x / scaleX, right = (x + 1) / scaleX;
        const f64 above = (y - 1) / scaleY, level = y / scaleY, below = (y + 1) / scaleY;
        const f64 topLeft = noise.Noise2(left, above), topRight = noise.Noise2(right, above);
        const f64 bottomLeft = noise.Noise2(left, below), bottomRight = noise.Noise2(right, below);
        x = (noise.Noise2(middle, above) + topLeft + topRight - bottomLeft - noise.Noise2(middle, below) -
             bottomRight) *
                strength +
            x;
        y = (noise.Noise2(right, level) + topRight + bottomRight - topLeft - noise.Noise2(left, level) - bottomLeft) *
                strength +
            y;
    }

protected:
    PerlinNoise noise;
    f64 strength = 0;
    f64 scaleX = 1;
    f64 scaleY = 1;
};

ZLV_EXPORT u32 ZLV40_AddPerlinDisplacementTransform(u32 width, u32 height, f64 strength, f64 scaleX, f64 scaleY)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        // Not the code of a bad argument: clients know a field without a size by this one.
        if (scaleX == 0 || scaleY == 0) return frame.Fail(Error::OutOfMemory);
        return AddTransform<CZLVTransform::CPerlinDispPoints>(
            frame, width, height,
            [&](CZLVTransform::CPerlinDispPoints& points) { return points.SetUp(strength, scaleX, scaleY); });
    });
}
