// A warp that displaces points by the slopes of a relief of the client's.
#include "warp/add_transform.h"
#include "warp/point_walk.h"

#include "zlv40.h"

using namespace zlv;

namespace {

struct Heights {
    f64 of[256];

    constexpr Heights() : of()
    {
        for (u32 level = 0; level < 256; ++level) of[level] = level / 255.0;
    }
};

constexpr Heights kHeights;

// The place of a coordinate, truncated, on an axis that repeats itself; 0 where it is no integer of 64 bits.
u32 Repeated(f64 coordinate, u32 size)
{
    if (coordinate >= 0 && coordinate < size) return u32(coordinate);
    if (!(-0x1p63 < coordinate && coordinate < 0x1p63)) return 0;
    const i64 rest = i64(coordinate) % i64(size);
    return u32(rest < 0 ? rest + size : rest);
}

}  // namespace

class CZLVTransform::CBumpMapDispPoints : public CXFormer {
public:
    [[nodiscard]] Error SetUp(f64 newStrength, const u8* newMap, u32 newWidth, u32 newHeight)
    {
        if (!newMap || newWidth == 0 || newHeight == 0) return Error::BadArgument;
        strength = newStrength;
        bumpMap = newMap;
        mapWidth = newWidth;
        mapHeight = newHeight;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) Displace(run.x[i], run.y[i]);
        }
    }

private:
    // Neighbours are truncated on their own: both those of 0.5 to the left and in the middle are in column 0.
    void Displace(f64& x, f64& y) const
    {
        const u32 left = Repeated(x - 1, mapWidth), middle = Repeated(x, mapWidth), right = Repeated(x + 1, mapWidth);
        const u8* const above = RowAt(y - 1);
        const u8* const row = RowAt(y);
        const u8* const below = RowAt(y + 1);
        const auto h = [](const u8* heights, u32 column) { return kHeights.of[heights[column]]; };
        x = (h(row, left) + h(above, left) + h(below, left) - (h(row, right) + h(above, right) + h(below, right))) *
                strength +
            x;
        y = (h(below, middle) + h(below, left) + h(below, right) -
             (h(above, middle) + h(above, left) + h(above, right))) *
                strength +
            y;
    }

    const u8* RowAt(f64 y) const { return bumpMap + u64(Repeated(y, mapHeight)) * mapWidth; }

protected:
    f64 strength = 0;
    const u8* bumpMap = nullptr;  // the client's
    u32 mapWidth = 0;
    u32 mapHeight = 0;
};

ZLV_EXPORT u32 ZLV40_AddBumpMapDisplacementTransform(u32 width, u32 height, f64 strength, const u8* bumpMap,
                                                     u32 mapWidth, u32 mapHeight)
{
    return AddTransformInFrame<CZLVTransform::CBumpMapDispPoints>(
        width, height, [&](CZLVTransform::CBumpMapDispPoints& points) {
            return points.SetUp(strength, bumpMap, mapWidth, mapHeight);
        });
}
