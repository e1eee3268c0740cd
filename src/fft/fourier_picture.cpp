// A gray picture of a grid: of its real parts, or of its magnitudes.
#include "fft/fourier_picture.kernels.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include "zlv40.h"

using namespace zlv;

namespace {

// Extremes start beyond what a grid of a picture holds, and stay there when it holds more.
constexpr f64 kBeyond = 1e32;
constexpr f64 kWidening = 0.01;
constexpr f64 kTop = 255.0;

struct ValueRange {
    f64 smallest, largest;  // real part
    f64 largestMagnitude;
};

// Of two zeros neither is smaller: the first that comes gives the sign, which can show in what is made of it.
f64 WithSignOfFirstZero(f64 extreme, const f64* grid, size_t count)
{
    if (extreme != 0.0) return extreme;
    for (size_t i = 0; i < count; ++i) {
        if (grid[2 * i] == 0.0) return grid[2 * i];
    }
    return extreme;
}

ValueRange RangeOf(const f64* grid, size_t count)
{
    FourierExtremes extremes = {kBeyond, -kBeyond, 0.0};
    Kernels<FourierPictureKernels>().findExtremes(grid, count, extremes);
    ValueRange range = {WithSignOfFirstZero(extremes.smallest, grid, count),
                        WithSignOfFirstZero(extremes.largest, grid, count), Sqrt(extremes.largestSquare)};
    // A grid of one value, or of none, has a range nevertheless, which can be divided by.
    if (!(range.smallest < range.largest)) {
        range.largest += kWidening;
        range.smallest -= kWidening;
    }
    return range;
}

FourierScale RealScale(const ValueRange& range, bool isScaled)
{
    if (!isScaled) return {range.smallest, 1.0, 1.0};
    return {range.smallest, kTop, range.largest - range.smallest};
}

// Without scaling the magnitudes go up to the largest real part.
FourierScale MagnitudeScale(const ValueRange& range, bool isScaled)
{
    return {0.0, isScaled ? kTop : range.largest, range.largestMagnitude};
}

template <class Sample, class Kernel>
void WriteRows(Sample* dst, u32 stride, const f64* grid, u32 width, u32 height, const FourierScale& scale,
               Kernel writeRow)
{
    if (width == 0) return;
    for (size_t y = 0; y < height; ++y) writeRow(grid + 2 * y * width, width, scale, dst + y * stride);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MakeGrayscaleFromFFT(u8* dstBytes, f64* dstDoubles, const f64* grid, u32 width, u32 height,
                                          u32 dstRowStride, i32 realPart, i32 scale)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!dstBytes == !dstDoubles || !grid) return frame.Fail(Error::BadArgument);
        const ValueRange range = RangeOf(grid, size_t(width) * height);
        const FourierScale formula = realPart ? RealScale(range, scale) : MagnitudeScale(range, scale);
        const auto& kernels = Kernels<FourierPictureKernels>();
        if (dstBytes) {
            WriteRows(dstBytes, dstRowStride, grid, width, height, formula,
                      realPart ? kernels.realBytes : kernels.magnitudeBytes);
        } else {
            WriteRows(dstDoubles, dstRowStride, grid, width, height, formula,
                      realPart ? kernels.realDoubles : kernels.magnitudeDoubles);
        }
        return 1;
    });
}
