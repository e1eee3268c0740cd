// Motion blur: the mean of samples along a path. Here are the checks; the paths are in motion_lines.cpp and
// motion_turns.cpp.
#include "filters/motion_blur.h"

#include "runtime/math.h"

#include "zlv40.h"

#include <cstring>

using namespace zlv;

namespace {

constexpr f64 kPi = 3.14159265358979323846;

bool IsFinite(f64 number) { return number - number == 0; }

// A walk of one step goes nowhere: angle and amount are not looked at.
bool CanWalk(f64 angle, f64 amount, i32 steps, bool isLinear)
{
    if (steps < 2) return true;
    if (!IsFinite(amount)) return false;
    return isLinear ? IsFinite(angle) : steps <= ZLV40_MOST_MOTION_STEPS;
}

u32 CopyRows(CallFrame& frame, const MotionImages& images)
{
    return BlurRows(frame, images,
                    [&](u32 y) { std::memcpy(images.dst.Row(y), images.src.Row(y), images.src.SamplesPerRow()); });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MotionBlur(const u8* src, i32 width, i32 height, u32 srcRowStride, u8* dst, u32 dstRowStride,
                                u32 bytesPerPixel, f64 angle, f64 amount, i32 steps, i32 mode)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || width <= 0 || height <= 0 || bytesPerPixel == 0) return frame.Fail(Error::BadArgument);
        const bool isLinear = mode != ZLV40_MOTION_SPIN && mode != ZLV40_MOTION_ZOOM;
        if (!CanWalk(angle, amount, steps, isLinear)) return frame.Fail(Error::BadArgument);

        const MotionImages images = {{src, u32(width), u32(height), bytesPerPixel, srcRowStride},
                                     {dst, u32(width), u32(height), bytesPerPixel, dstRowStride}};
        if (steps < 2) return CopyRows(frame, images);
        if (mode == ZLV40_MOTION_SPIN) return BlurAlongArcs(frame, images, amount, steps);
        if (mode == ZLV40_MOTION_ZOOM) return BlurAlongRays(frame, images, amount, steps);
        // The sine goes to the right and the cosine down: angles count from straight down.
        const f64 radians = angle / 180.0 * kPi;
        return BlurAlongLines(frame, images, Sin(radians), Cos(radians), amount, steps);
    });
}
