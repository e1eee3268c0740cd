// Mosaic: squares of one colour, the mean of what they cover.
#include "artistic/recipe.h"
#include "base/image_view.h"
#include "base/resize.h"

#include "zlv40.h"

using namespace zlv;

ZLV_EXPORT u32 ZLV40_MosaicImage(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride, u32 cellSize)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!buffer || (bytesPerPixel != i32(kGrayChannels) && !IsColour(bytesPerPixel)) || cellSize == 0) {
            return frame.Fail(Error::BadArgument);
        }
        const u32 channels = u32(bytesPerPixel), columns = width / cellSize, rows = height / cellSize;
        PackedImage cells;
        // A picture without a whole cell goes on without memory: the base function refuses it.
        const bool hasCells = columns > 0 && rows > 0;
        if (hasCells && !cells.Resize(columns, rows, channels)) return frame.Fail(Error::OutOfMemory);
        if (!MV40_ResizeImage(buffer, width, height, rowStride, cells.Data(), columns, rows, cells.Stride(), channels,
                              u32(ResizeMode::AreaAverage), 0)) {
            return FailAsBase(frame);
        }
        return InForwardingSpan(frame, [&] {
            return MV40_ResizeImage(cells.Data(), columns, rows, cells.Stride(), buffer, width, height, rowStride,
                                    channels, u32(ResizeMode::Nearest), 0);
        });
    });
}
