// A warp that bends the middle line of a picture to teeth.
#include "warp/add_transform.h"
#include "warp/center_shift_points.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CZigZagPoints : public CCenterShiftPoints {
public:
    [[nodiscard]] Error SetUp(f64 percent, i32 teeth, u32 newMode)
    {
        if (!HasSize() || teeth <= 0) return Error::BadArgument;
        const Lookup newLookup = ShiftLookup(newMode);
        if (newLookup != Lookup::None) {
            const u32 length = newLookup == Lookup::ByColumn ? width : height;
            if (length < u32(teeth)) return Error::BadArgument;
            period = length / u32(teeth);
        }
        amplitude = percent / 100;
        return SetUpTable(newMode, newLookup);
    }

    // A triangle wave. Its amplitude is a part of the size along the teeth, not of that in which they point. Periods of
    // 2 and 3 pixels divide by 0: where an entry is no number the picture is outside.
    bool BuildShiftTable() override
    {
        const u32 half = period / 2;
        const f64 peak = half - 1.0;
        u32 place = 0;  // i modulo the period
        return FillTable([&](f64) {
            const u32 up = place < half ? place : period - place - 1;
            place = place + 1 == period ? 0 : place + 1;
            return (up / peak - 0.5) * amplitude * TableLength() + BaseLine();
        });
    }

protected:
    f64 amplitude = 0;
    u32 period = 0;  // pixels
};

ZLV_EXPORT u32 ZLV40_AddZigZagTransform(u32 width, u32 height, f64 amplitudePercent, i32 teeth, u32 mode)
{
    return AddTransformInFrame<CZLVTransform::CZigZagPoints>(width, height, [&](CZLVTransform::CZigZagPoints& points) {
        return points.SetUp(amplitudePercent, teeth, mode);
    });
}
