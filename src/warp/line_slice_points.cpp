// A warp that bends the middle line of a picture to a slanted one.
#include "warp/add_transform.h"
#include "warp/center_shift_points.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CLineSlicePoints : public CCenterShiftPoints {
public:
    [[nodiscard]] Error SetUp(i32 newStart, i32 newEnd, u32 newMode)
    {
        if (!HasSize()) return Error::BadArgument;
        start = newStart;
        end = newEnd;
        return SetUpTable(newMode, ShiftLookup(newMode));
    }

    // From `start` in the first column or row to `end` in the last one. Both ways to compute it stay apart: they round
    // differently.
    bool BuildShiftTable() override
    {
        const f64 rise = f64(end) - start, run = f64(TableLength()) - 1;
        if (rise == 0 || run == 0) return FillTable([&](f64) { return f64(start); });
        if (lookup == Lookup::ByColumn) {
            const f64 slope = rise / run;
            return FillTable([&](f64 i) { return i * slope + start; });
        }
        const f64 slope = run / rise;
        return FillTable([&](f64 i) { return (i + start * slope) / slope; });
    }

protected:
    i32 start = 0;
    i32 end = 0;
};

ZLV_EXPORT u32 ZLV40_AddLineSliceTransform(u32 width, u32 height, i32 start, i32 end, u32 mode)
{
    return AddTransformInFrame<CZLVTransform::CLineSlicePoints>(
        width, height, [&](CZLVTransform::CLineSlicePoints& points) { return points.SetUp(start, end, mode); });
}
