// A warp that bends the middle line of a picture to a wave.
#include "runtime/math.h"
#include "warp/add_transform.h"
#include "warp/center_shift_points.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CWavePoints : public CCenterShiftPoints {
public:
    [[nodiscard]] Error SetUp(f64 percent, f64 newCycles, u32 newMode)
    {
        if (!HasSize()) return Error::BadArgument;
        const Lookup newLookup = LookupOf(newMode);
        amplitude = percent / 100 * (newLookup == Lookup::ByColumn ? height : width);
        cycles = newCycles;
        return SetUpTable(newMode, newLookup);
    }

    // In a picture of one column or row no entry is a number: 0 / 0.
    bool BuildShiftTable() override
    {
        const bool isSine = mode == ZLV40_WAVE_SINE_Y || mode == ZLV40_WAVE_SINE_X;
        const f64 last = f64(TableLength()) - 1;
        return FillTable([&](f64 i) {
            const f64 angle = i / last * pi * cycles;
            return (isSine ? Sin(angle) : Cos(angle)) * amplitude + BaseLine();
        });
    }

private:
    static Lookup LookupOf(u32 mode)
    {
        switch (mode) {
        case ZLV40_WAVE_SINE_Y:
        case ZLV40_WAVE_COSINE_Y: return Lookup::ByColumn;
        case ZLV40_WAVE_SINE_X:
        case ZLV40_WAVE_COSINE_X: return Lookup::ByRow;
        default: return Lookup::None;
        }
    }

protected:
    f64 amplitude = 0;  // pixels
    f64 cycles = 0;     // half periods across the picture
};

ZLV_EXPORT u32 ZLV40_AddWaveTransform(u32 width, u32 height, f64 amplitudePercent, f64 cycles, u32 mode)
{
    return AddTransformInFrame<CZLVTransform::CWavePoints>(width, height, [&](CZLVTransform::CWavePoints& points) {
        return points.SetUp(amplitudePercent, cycles, mode);
    });
}
