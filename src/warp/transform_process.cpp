// The warp list at work: a picture through it, the extent of its grid, and its end.
#include "runtime/clamp.h"
#include "runtime/frame.h"
#include "warp/point_walk.h"
#include "warp/sampled_pixels.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

constexpr u32 kSamplingBits = 3;
constexpr u32 kNoSampling = 3;

// Infinite coordinates come back to the edge; those that are no number stay so, and outside.
void ClampRun(PointRun& run, u32 width, u32 height)
{
    const f64 zero = 0, right = f64(width) - 1, bottom = f64(height) - 1;
    for (u32 i = 0; i < run.count; ++i) run.x[i] = ClampDouble(run.x[i], &zero, &right);
    for (u32 i = 0; i < run.count; ++i) run.y[i] = ClampDouble(run.y[i], &zero, &bottom);
}

// Calls visit(run, x) for a row of points that have gone through the list.
template <class Map, class Visit>
void ForRuns(const PointWalk& walk, u32 width, Map map, Visit visit)
{
    PointRun run;
    const u32 pointsAtOnce = walk.PointsAtOnce();
    for (u32 x = 0; x < width;) {
        const u32 count = std::min(width - x, pointsAtOnce);
        map(run, x, count);
        visit(run, x);
        x += count;
    }
}

struct Extent {
    f64 minX, minY, maxX, maxY;

    void Add(f64 x, f64 y)
    {
        minX = Min(&minX, &x);
        minY = Min(&minY, &y);
        maxX = Max(&maxX, &x);
        // Not y: clients know the second maximum as the right edge's.
        maxY = Max(&maxY, &x);
    }
};

Extent FindExtent(const PointWalk& walk, u32 width, u32 height)
{
    Extent extent = {f64(width), f64(height), 0, 0};
    if (width == 0 || height == 0) return extent;
    if (walk.IsEmpty()) return {0, 0, f64(width) - 1, f64(width) - 1};
    for (u32 y = 0; y < height; ++y) {
        ForRuns(
            walk, width, [&](PointRun& run, u32 x, u32 count) { walk.MapPixelsToTheEnd(run, x, y, count); },
            [&](const PointRun& run, u32) {
                for (u32 i = 0; i < run.count; ++i) extent.Add(run.x[i], run.y[i]);
            });
    }
    return extent;
}

}  // namespace

ZLV_EXPORT void ZLV40_ClearAllTransforms()
{
    (void)InFrame(FrameKind::ErrorSlotOnly, [](CallFrame& frame) -> u32 {
        ClearTransforms(frame.Context());
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_GetTransformDimensions(u32 width, u32 height, f64* minX, f64* minY, f64* maxX, f64* maxY)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!minX || !minY || !maxX || !maxY) return frame.Fail(Error::BadArgument);
        const Extent extent = FindExtent(PointWalk(frame.Context().transforms), width, height);
        *minX = extent.minX;
        *minY = extent.minY;
        *maxX = extent.maxX;
        *maxY = extent.maxY;
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_TransformProcess(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst, u32 dstRowStride,
                                      i32 bytesPerPixel, u32 flags, u32 background)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || bytesPerPixel < 0) return frame.Fail(Error::BadArgument);
        const u32 channels = u32(bytesPerPixel);
        const WarpedImages images = {{src, width, height, channels, srcRowStride},
                                     {dst, width, height, channels, dstRowStride}};
        const u32 sampling = flags & kSamplingBits;
        const PixelSampler sampler(images, Sampling(sampling), flags & ZLV40_KEEP_DESTINATION ? nullptr : &background);
        const bool writes = sampling != kNoSampling && channels > 0;
        const PointWalk walk(frame.Context().transforms);
        // Rows may be of any length here, in no memory, and as many as there are numbers: without samples nothing
        // bounds them.
        const auto pointsInRow = [&] { return writes || walk.HasSideEffects() ? width : 0; };
        if (pointsInRow() == 0 && !frame.MayReport()) return 1;
        for (u32 y = 0; y < height; ++y) {
            const u32 points = pointsInRow();
            ForRuns(
                walk, points, [&](PointRun& run, u32 x, u32 count) { walk.MapPixels(run, x, y, count); },
                [&](PointRun& run, u32 x) {
                    if (!writes) return;
                    if (flags & ZLV40_CLAMP_POINTS) ClampRun(run, width, height);
                    sampler.Write(run, x, y);
                });
            if (!frame.Report(y, height)) return 0;
        }
        return 1;
    });
}
