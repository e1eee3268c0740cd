// The mask of a region of like colours: a flood from a seed through what matches it, or up to what matches a border.
#include "runtime/frame.h"
#include "tone/hsv_flood.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u8 kPlainMark = 1;
constexpr u8 kFullMark = 255;

Hsv ReadColor(const f64* pixel) { return {pixel[0], pixel[1], pixel[2]}; }

}  // namespace

ZLV_EXPORT u32 ZLV40_GetHSVColorMatchMaskFromImage(const f64* hsvImage, u32 width, u32 height, u32 rowStride, u8* mask,
                                                   u32 maskStride, u32 seedX, u32 seedY, f64 borderH, f64 borderS,
                                                   f64 borderV, u32 matchMode, f64 toleranceH, f64 toleranceS,
                                                   f64 toleranceV, u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!hsvImage || !mask) return frame.Fail(Error::BadArgument);
        if (seedX >= width || seedY >= height || maskStride < width) return frame.Fail(Error::BadArgument);

        const HsvImage image = {hsvImage, width, height, rowStride};
        const bool isLikeSeed = matchMode == ZLV40_MATCH_SEED;
        HsvMatch match;
        match.reference = isLikeSeed ? ReadColor(image.Pixel(seedX, seedY)) : Hsv{borderH, borderS, borderV};
        match.tolerance = {toleranceH, toleranceS, toleranceV};
        match.isExact = toleranceH == 0 && toleranceS == 0 && toleranceV == 0;
        match.takesMismatches = !isLikeSeed;

        const MatchMask region = {mask, maskStride, flags & ZLV40_MASK_255 ? kFullMark : kPlainMark};
        const auto fill = maskStride == width ? FillPackedMask : FillPaddedMask;
        const Error error = fill(image, region, match, {seedX, seedY});
        return error == Error::None ? 1 : frame.Fail(error);
    });
}
