// Crackle: a relief of the picture's own bright and dark spots, lit from one side, with its brightness spread.
//
// The gray picture is reduced to spots by morphology, sharpened, and taken for heights. The outermost pixels of the
// destination take part in the last step alone: the relief has no border.
#include "base/channels.h"
#include "base/emboss.h"
#include "base/gray_morphology.h"
#include "base/histograms.h"
#include "runtime/array.h"
#include "runtime/clamp.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <iterator>

using namespace zlv;

namespace {

constexpr u32 kSpotSide = 7;
constexpr i32 kSharpenWindow = 5;
constexpr f64 kAzimuth = 0.5, kElevation = 0.5;  // radians
constexpr u32 kDepth = 5;

struct BrightnessRange {
    u32 low, high;
};
constexpr BrightnessRange kUsualRange = {50, 200}, kWideRange = {20, 230};

struct SpotElement {
    u32 entries[kSpotSide * kSpotSide];

    SpotElement() { std::fill(std::begin(entries), std::end(entries), 1u); }
};

// The exports among the steps report as if the client had called them, and their codes are theirs: a cancel is none to
// them. What happens to the base functions is this effect's.
u32 FindSpots(CallFrame& frame, u32 kind, const u8* gray, u32 width, u32 height, u8* spots)
{
    const SpotElement element;
    const auto asExport = [&](auto apply) {
        const ReportingStep step(frame);
        return apply(gray, width, height, width, element.entries, kSpotSide, spots, width);
    };
    const auto asBaseFunction = [&](auto apply) {
        ForwardingSpan progress(frame);
        const u32 done = apply(gray, width, height, width, element.entries, kSpotSide, spots, width);
        progress.KeepBaseError();
        return done;
    };
    switch (kind) {
    case ZLV40_CRACKLE_OPEN: return asExport(ZLV40_OpenGray);
    case ZLV40_CRACKLE_TOPHAT: return asExport(ZLV40_TophatGray);
    case ZLV40_CRACKLE_CLOSE: return asExport(ZLV40_CloseGray);
    case ZLV40_CRACKLE_DILATE: return asBaseFunction(MV40_MorphoDilationGray);
    case ZLV40_CRACKLE_ERODE: return asBaseFunction(MV40_MorphoErosionGray);
    default: return frame.Fail(Error(MV40_GetLastError()));  // none, as nothing has failed: clients know it by that
    }
}

}  // namespace

ZLV_EXPORT u32 ZLV40_CrackleRGB(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                u32 destinationStride, u32 morphKind, i32 strength, u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination) return frame.Fail(Error::BadArgument);
        const u64 pixels = u64(width) * height;
        ZLVArray<u8> relief, spots;
        if (pixels > INT32_MAX || !relief.Resize(i32(pixels)) || !spots.Resize(i32(pixels))) {
            return frame.Fail(Error::OutOfMemory);
        }
        // Rows that a cancelled step has not come to are black.
        spots.Fill(0);

        MV40_ImageToGrayScale8Bit(source, width, height, 3, sourceStride, relief.GetData(), width, 0);
        if (!FindSpots(frame, morphKind, relief.GetData(), width, height, spots.GetData())) return 0;

        constexpr i32 kNone = 0, kAll = 100;
        const f64 amount = ClampInt(strength, &kNone, &kAll) / 100.0;
        ZLV40_SharpenImage(spots.GetData(), width, height, relief.GetData(), 1, width, width, kSharpenWindow, amount,
                           1);
        if (!MV40_EmbossRGB(relief.GetData(), width, height, width, kAzimuth, kElevation, kDepth, source, sourceStride,
                            destination, destinationStride, nullptr, 0, 0)) {
            return frame.Fail(Error(MV40_GetLastError()));
        }
        const BrightnessRange range = flags & ZLV40_WIDE_RANGE ? kWideRange : kUsualRange;
        MV40_BrightnessHistogramEqualizeImage(destination, width, height, 3, destinationStride, range.low, range.high);
        return 1;
    });
}
