// The two-dimensional Fourier transform of a grid, and the grid of a picture.
#include "fft/fourier_plan.h"
#include "runtime/frame.h"

#include <algorithm>

#include "zlv40.h"

using namespace zlv;

namespace {

// Clients know a transform without a grid by this result; their last error stays 0.
constexpr u32 kNoGrid = u32(Error::BadArgument);

struct Grid {
    f64* values;
    u32 width, height;

    f64* Row(size_t y) const { return values + 2 * y * width; }
};

// Rows, then columns, in place. `fill(y, count)` is called for all rows once, each before its transform and so near to
// it that they are in the cache.
template <class Fill>
Error Transform(const Grid& grid, FourierDirection direction, Fill fill)
{
    FourierPlan plan(direction);
    if (plan.Prepare(grid.width) != Error::None) {
        fill(0, grid.height);
        return Error::BadArgument;  // for want of memory too: clients tell the passes by it
    }
    for (size_t y = 0; y < grid.height; y += plan.Lines()) {
        const size_t count = std::min(plan.Lines(), grid.height - y);
        fill(y, count);
        plan.Transform({grid.Row(y), 2, 2 * size_t(grid.width), count});
    }

    if (const Error error = plan.Prepare(grid.height); error != Error::None) return error;
    for (size_t x = 0; x < grid.width; x += plan.Lines()) {
        const size_t count = std::min(plan.Lines(), grid.width - x);
        plan.Transform({grid.values + 2 * x, 2 * size_t(grid.width), 2, count});
    }
    return Error::None;
}

// Whole numbers: exact in any order.
u64 SumOfRow(const u8* samples, size_t count, u64 sum)
{
    for (size_t x = 0; x < count; ++x) sum += samples[x];
    return sum;
}

// One after the other: sums of doubles depend on the order.
f64 SumOfRow(const f64* samples, size_t count, f64 sum)
{
    for (size_t x = 0; x < count; ++x) sum += samples[x];
    return sum;
}

template <class Sample, class Sum>
f64 MeanOf(const Sample* source, const Grid& grid, size_t stride, Sum sum)
{
    for (size_t y = 0; y < grid.height; ++y) sum = SumOfRow(source + y * stride, grid.width, sum);
    return f64(sum) / f64(u64(grid.width) * grid.height);
}

template <class Sample>
Error TransformPicture(const Sample* source, size_t stride, f64 mean, const Grid& grid)
{
    return Transform(grid, FourierDirection::Forward, [&](size_t y, size_t count) {
        for (const size_t end = y + count; y < end; ++y) {
            const Sample* const from = source + y * stride;
            f64* const to = grid.Row(y);
            for (size_t x = 0; x < grid.width; ++x) {
                to[2 * x] = f64(from[x]) - mean;
                to[2 * x + 1] = 0.0;
            }
        }
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_DoFFT(const u8* srcBytes, const f64* srcDoubles, u32 width, u32 height, u32 srcRowStride,
                           f64* grid)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!grid) return kNoGrid;
        if (!srcBytes == !srcDoubles) return frame.Fail(Error::BadArgument);
        // Rows of nothing are not walked through: a client may say billions.
        const Grid values = {grid, width, width == 0 ? 0 : height};
        if (srcBytes) {
            const f64 mean = MeanOf(srcBytes, values, srcRowStride, u64(0));
            frame.SetLastError(TransformPicture(srcBytes, srcRowStride, mean, values));
        } else {
            const f64 mean = MeanOf(srcDoubles, values, srcRowStride, 0.0);
            frame.SetLastError(TransformPicture(srcDoubles, srcRowStride, mean, values));
        }
        return 1;  // whatever became of the transform: clients look at the last error
    });
}

ZLV_EXPORT u32 ZLV40_DoFFTInverse(u32 width, u32 height, f64* grid)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!grid) return kNoGrid;
        const Error error = Transform({grid, width, height}, FourierDirection::Inverse, [](size_t, size_t) {});
        return error == Error::None ? 1 : frame.Fail(error);
    });
}
