// A warp that moves each point a fixed way, in a direction that a field of noise tells.
#include "generators/perlin.kernels.h"
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/pixel_row.h"
#include "warp/point_walk.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CMarblePoints : public CXFormer {
public:
    [[nodiscard]] Error SetUp(f64 newCycles, f64 newScaleX, f64 newScaleY)
    {
        if (!HasSize()) return Error::BadArgument;
        cycles = newCycles;
        scaleX = newScaleX;
        scaleY = newScaleY;
        noise.Build();
        for (u32 i = 0; i < kDirections; ++i) {
            const f64 angle = pi * 2.0 * i * 0.00390625 * cycles;
            sinTable[i] = -Sin(angle) * scaleY;
            cosTable[i] = Cos(angle) * scaleY;
        }
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        if (IsPixelRow(run)) {
            MapPixelRow(run);
            return;
        }
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) Displace(run.x[i], run.y[i]);
        }
    }

private:
    static constexpr u32 kDirections = 256;

    void MapPixelRow(PointRun& run)
    {
        f64 places[PointRun::kMost], noiseOfRow[PointRun::kMost];
        for (u32 i = 0; i < run.count; ++i) places[i] = run.x[i] / scaleX;
        Kernels<PerlinKernels>().level(noise, places, run.y[0] / scaleY, noiseOfRow, run.count);
        for (u32 i = 0; i < run.count; ++i) DisplaceBy(noiseOfRow[i], run.x[i], run.y[i]);
    }

    void Displace(f64& x, f64& y) { DisplaceBy(noise.Noise2(x / scaleX, y / scaleY), x, y); }

    // The last entry is never read: noise of -1 to 1 leads to 0 to 254. Beyond the field's seam noise is stronger, and
    // limited here; where it is no number, a point stays.
    void DisplaceBy(f64 noiseThere, f64& x, f64& y) const
    {
        const f64 turn = (noiseThere + 1.0) * 127.0;
        if (turn != turn) return;
        const u32 i = turn < 0 ? 0 : turn > kDirections - 2 ? kDirections - 2 : u32(turn);
        x += sinTable[i];
        y += cosTable[i];
    }

protected:
    PerlinNoise noise;
    f64 sinTable[kDirections];
    f64 cosTable[kDirections];
    f64 scaleX = 1;
    f64 scaleY = 1;  // also how far points move
    f64 cycles = 0;
};

ZLV_EXPORT u32 ZLV40_AddMarbleTransform(u32 width, u32 height, f64 cycles, f64 scaleX, f64 scaleY)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        // Not the code of a bad argument: clients know a field without a size by this one.
        if (scaleX == 0 || scaleY == 0) return frame.Fail(Error::OutOfMemory);
        return AddTransform<CZLVTransform::CMarblePoints>(
            frame, width, height,
            [&](CZLVTransform::CMarblePoints& points) { return points.SetUp(cycles, scaleX, scaleY); });
    });
}
