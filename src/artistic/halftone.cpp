// Halftone: black and white dots, one a cell.
#include "artistic/recipe.h"
#include "base/palette.h"
#include "base/resize.h"

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u8 kBlackAndWhite[] = {0, 0, 0, 0, 255, 255, 255, 0};
constexpr u32 kColors = 2;
constexpr u32 kFloydSteinberg = 1;
constexpr u8 kErrorLimit = 20;

struct Halftone {
    u8* buffer;
    u32 width, height, stride;
    u32 columns, rows;  // cells
    ResizeMode growth;
};

// The cells as they are, then each of them black or white.
u32 MakeDots(const Halftone& call, PackedImage& cells, PackedImage& indices)
{
    return MV40_ResizeImage(call.buffer, call.width, call.height, call.stride, cells.Data(), call.columns, call.rows,
                            cells.Stride(), kRgbChannels, u32(ResizeMode::Bilinear), 0) &&
           MV40_RGBTo8BitDithered(cells.Data(), call.columns, call.rows, cells.Stride(), indices.Data(),
                                  indices.Stride(), kColors, kBlackAndWhite, kFloydSteinberg, kErrorLimit, 0) &&
           MV40_8BitToRGB(indices.Data(), call.columns, call.rows, indices.Stride(), cells.Data(), cells.Stride(),
                          kColors, kBlackAndWhite, 0);
}

u32 Grow(const Halftone& call, PackedImage& cells)
{
    return MV40_ResizeImage(cells.Data(), call.columns, call.rows, cells.Stride(), call.buffer, call.width, call.height,
                            call.stride, kRgbChannels, u32(call.growth), 0);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_HalftoneImage(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u32 cellSize,
                                   i32 smooth)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || bytesPerPixel != i32(kRgbChannels) || cellSize == 0) return frame.Fail(Error::BadArgument);
        const Halftone call = {buffer,
                               width,
                               height,
                               rowStride,
                               width / cellSize,
                               height / cellSize,
                               smooth ? ResizeMode::Bilinear : ResizeMode::Nearest};
        PackedImage cells, indices;
        if (!cells.Resize(call.columns, call.rows, kRgbChannels) ||
            !indices.Resize(call.columns, call.rows, kGrayChannels)) {
            return frame.Fail(Error::OutOfMemory);
        }
        if (!MakeDots(call, cells, indices)) return FailAsBase(frame);
        return InForwardingSpan(frame, [&] { return Grow(call, cells); });
    });
}
