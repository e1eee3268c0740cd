// Oil paint: every pixel takes the mean colour of the most frequent brightness in a square around it.
//
// The counts and sums are whole numbers, so a window that loses a column and gains one has those of a fresh count.
#include "artistic/oil_paint.kernels.h"
#include "artistic/recipe.h"
#include "base/channels.h"
#include "base/histograms.h"
#include "base/image_view.h"
#include "base/table_pass.h"
#include "runtime/clamp.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

constexpr u32 kNone = 0, kLargestLevel = 255, kLargestRadius = kLargestOilRadius;
constexpr u32 kDarkest = 10, kLightest = 245;

struct OilPaint {
    ImageView<const u8> source;
    ImageView<u8> destination;
    u32 radius;
    u32 levels;
    bool isEqualized, blends;
};

// The rows that the windows of a row cover, column by column.
class OilRing {
public:
    OilRing(const OilPaint& call, PackedImage& levels) : call_(call), levels_(levels), side_(2 * call.radius + 1) {}

    [[nodiscard]] bool Prepare()
    {
        const u64 count = u64(call_.source.width) * side_;
        if (!pixels_.Resize(count) || !places_.Resize(count)) return false;
        std::fill_n(places_.GetData(), count, kOutsideLevel);
        std::fill_n(pixels_.GetData(), count, OilSum(0));
        for (u32 y = 0; y < call_.radius; ++y) Enter(y);
        return true;
    }

    // To be called for the rows from the top.
    void PaintRow(u32 y)
    {
        Enter(u64(y) + call_.radius);
        const OilColumns columns = {pixels_.GetData(), places_.GetData(), side_, call_.source.width};
        Kernels<OilPaintKernels>().paintRow(columns, call_.levels, call_.blends, call_.destination.Row(y));
    }

private:
    // Takes the place of the row that leaves.
    void Enter(u64 y)
    {
        const size_t side = side_;
        u16* place = places_.GetData() + y % side;
        if (y >= call_.source.height) {
            for (u32 x = 0; x < call_.source.width; ++x, place += side) *place = kOutsideLevel;
            return;
        }
        const u8* rgb = call_.source.Row(u32(y));
        const u8* const level = levels_.Data() + y * levels_.Stride();
        OilSum* pixel = pixels_.GetData() + y % side;
        for (u32 x = 0; x < call_.source.width; ++x, place += side, pixel += side, rgb += kRgbChannels) {
            *place = level[x];
            *pixel = rgb[0] | OilSum(rgb[1]) << kOilSumBits | OilSum(rgb[2]) << (2 * kOilSumBits) |
                     OilSum(1) << kOilCountShift;
        }
    }

    const OilPaint& call_;
    PackedImage& levels_;
    const u32 side_;
    MVBuffer<OilSum> pixels_;
    MVBuffer<u16> places_;
};

// The brightness of each pixel in levels from 0 to call.levels.
u32 MakeLevels(const OilPaint& call, PackedImage& plane)
{
    const ImageView<const u8>& source = call.source;
    u8 quantized[256];
    for (u32 i = 0; i < 256; ++i) quantized[i] = u8(i * (call.levels / 255.0));
    const void* const tables[] = {quantized};
    return MV40_ImageToGrayScale8Bit(source.data, source.width, source.height, kRgbChannels, source.stride,
                                     plane.Data(), plane.Stride(), 0) &&
           (!call.isEqualized || MV40_HistogramEqualizeImage(plane.Data(), source.width, source.height, kGrayChannels,
                                                             plane.Stride(), kDarkest, kLightest, kGrayMask)) &&
           MV40_ApplyLUTsToImage(plane.Data(), source.width, source.height, kGrayChannels, plane.Stride(), tables, 0);
}

u32 Paint(const OilPaint& call, CallFrame& frame)
{
    PackedImage levels;
    if (!levels.Resize(call.source.width, call.source.height, kGrayChannels)) return frame.Fail(Error::OutOfMemory);
    if (!MakeLevels(call, levels)) return FailAsBase(frame);
    OilRing ring(call, levels);
    if (!ring.Prepare()) return frame.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < call.source.height; ++y) {
        ring.PaintRow(y);
        if (!frame.Report(y, call.source.height)) return 0;
    }
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_OilPaintRGB(const u8* source, u32 width, i32 height, u32 sourceStride, u8* destination,
                                 u32 destinationStride, u32 radius, u32 levels, u32 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination) return frame.Fail(Error::BadArgument);
        if (height <= 0) return frame.Fail(Error::OutOfMemory);
        const OilPaint call = {{source, width, u32(height), kRgbChannels, sourceStride},
                               {destination, width, u32(height), kRgbChannels, destinationStride},
                               ClampUInt(radius, &kNone, &kLargestRadius),
                               ClampUInt(levels, &kNone, &kLargestLevel),
                               (flags & ZLV40_OIL_PAINT_EQUALIZE) != 0,
                               (flags & ZLV40_OIL_PAINT_BLEND) != 0};
        return Paint(call, frame);
    });
}
