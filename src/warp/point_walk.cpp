#include "warp/point_walk.h"

#include <cstring>

namespace zlv {

namespace {

void SetPixels(PointRun& run, u32 x, u32 y, u32 count)
{
    run.count = count;
    const f64 firstX = x;
    for (i32 i = 0; i < i32(count); ++i) run.x[i] = firstX + i;  // signed: conversions that vectors have
    for (u32 i = 0; i < count; ++i) run.y[i] = y;
    std::memset(run.isLost, 0, count);
}

}  // namespace

bool PointWalk::HasSideEffects() const
{
    for (u32 i = 0; i < steps_.GetCount(); ++i) {
        if (steps_[i]->GetSideEffect() != CXFormer::SideEffect::None) return true;
    }
    return false;
}

// The client's function sees the points in their order, and all steps of one before the next. Draws go point by point,
// too; with one step that draws this is the order of a run.
u32 PointWalk::PointsAtOnce() const
{
    u32 drawing = 0;
    for (u32 i = 0; i < steps_.GetCount(); ++i) {
        const CXFormer::SideEffect effect = steps_[i]->GetSideEffect();
        if (effect == CXFormer::SideEffect::CallsClient) return 1;
        if (effect == CXFormer::SideEffect::DrawsRandomNumbers) ++drawing;
    }
    return drawing > 1 ? 1 : PointRun::kMost;
}

void PointWalk::MapPixels(PointRun& run, u32 x, u32 y, u32 count) const
{
    SetPixels(run, x, y, count);
    for (u32 i = 0; i < steps_.GetCount(); ++i) steps_[i]->MapRun(run);
}

void PointWalk::MapPixelsToTheEnd(PointRun& run, u32 x, u32 y, u32 count) const
{
    SetPixels(run, x, y, count);
    for (u32 i = 0; i < steps_.GetCount(); ++i) {
        steps_[i]->MapRun(run);
        std::memset(run.isLost, 0, run.count);
    }
}

bool MapOnePoint(CXFormer& former, f64 x, f64 y, f64* outX, f64* outY)
{
    PointRun run;
    run.count = 1;
    run.x[0] = x;
    run.y[0] = y;
    run.isLost[0] = false;
    former.MapRun(run);
    *outX = run.x[0];
    *outY = run.y[0];
    return !run.isLost[0];
}

}  // namespace zlv
