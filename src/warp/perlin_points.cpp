// A warp that lets points swirl around the contours of a field of noise.
#include "generators/perlin.kernels.h"
#include "warp/add_transform.h"
#include "warp/pixel_row.h"

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
        const Column left = ColumnAt(x - 1, y), middle = ColumnAt(x, y), right = ColumnAt(x + 1, y);
        Displace(x, y, left, middle, right, outX, outY);
        return true;
    }

    void MapRun(PointRun& run) override
    {
        if (IsPixelRow(run)) {
            MapPixelRow(run);
            return;
        }
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) MapPoint(run.x[i], run.y[i], &run.x[i], &run.y[i]);
        }
    }

private:
    // Noise at a point and at those above and below it.
    struct Column {
        f64 above, level, below;
    };

    Column ColumnAt(f64 x, f64 y)
    {
        const f64 place = x / scaleX;
        return {noise.Noise2(place, (y - 1) / scaleY), noise.Noise2(place, y / scaleY),
                noise.Noise2(place, (y + 1) / scaleY)};
    }

    // Pixels beside each other share two of their three columns: three rows of noise have all that is needed.
    void MapPixelRow(PointRun& run)
    {
        f64 places[PointRun::kMost + 2], noiseOfRow[3][PointRun::kMost + 2];
        const u32 count = run.count, columns = count + 2;
        places[0] = (run.x[0] - 1) / scaleX;
        for (u32 i = 0; i < count; ++i) places[i + 1] = run.x[i] / scaleX;
        places[count + 1] = (run.x[count - 1] + 1) / scaleX;
        for (i32 j = 0; j < 3; ++j) {
            Kernels<PerlinKernels>().level(noise, places, (run.y[0] + (j - 1)) / scaleY, noiseOfRow[j], columns);
        }
        const auto column = [&](u32 i) { return Column{noiseOfRow[0][i], noiseOfRow[1][i], noiseOfRow[2][i]}; };
        for (u32 i = 0; i < count; ++i) {
            Displace(run.x[i], run.y[i], column(i), column(i + 1), column(i + 2), &run.x[i], &run.y[i]);
        }
    }

    // x by the slope along y and y by the one along x, unlike a relief, where points would flow down.
    void Displace(f64 x, f64 y, const Column& left, const Column& middle, const Column& right, f64* outX,
                  f64* outY) const
    {
        *outX = (middle.above + left.above + right.above - left.below - middle.below - right.below) * strength + x;
        *outY = (right.level + right.above + right.below - left.above - left.level - left.below) * strength + y;
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
