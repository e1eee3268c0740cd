// A warp that shifts the picture, with what leaves it on one side coming back on the other if wanted.
#include "warp/add_transform.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::COffsetPoints : public CXFormer {
public:
    Error SetUp(f64 newShiftX, f64 newShiftY, u32 newWrap)
    {
        shiftX = newShiftX;
        shiftY = newShiftY;
        wrap = newWrap;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override
    {
        *outX = x - shiftX;
        *outY = y - shiftY;
        if (wrap == ZLV40_WRAP_BOTH || wrap == ZLV40_WRAP_X) *outX = Wrapped(*outX, width);
        if (wrap == ZLV40_WRAP_BOTH || wrap == ZLV40_WRAP_Y) *outY = Wrapped(*outY, height);
        return true;
    }

private:
    // One step, not a remainder: what is shifted by more than a picture stays outside.
    static f64 Wrapped(f64 coordinate, u32 size)
    {
        if (coordinate < 0) coordinate += size;
        return coordinate > f64(size) - 1 ? coordinate - size : coordinate;
    }

protected:
    f64 shiftX = 0;
    f64 shiftY = 0;
    u32 wrap = 0;
};

ZLV_EXPORT u32 ZLV40_AddOffsetTransform(u32 width, u32 height, f64 shiftX, f64 shiftY, u32 wrap)
{
    return AddTransformInFrame<CZLVTransform::COffsetPoints>(
        width, height, [&](CZLVTransform::COffsetPoints& points) { return points.SetUp(shiftX, shiftY, wrap); });
}
