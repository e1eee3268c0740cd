// Points on their way through this thread's warp list.
//
// A run of points goes through a step in one call where that gives what one point after the other would give. The list
// is read anew for every step: a function of the client's, which a step may call, can change it.
#pragma once

#include "runtime/contexts.h"

namespace zlv {

class PointWalk {
public:
    using Steps = MVPtrVector<CXFormer>;

    explicit PointWalk(const Steps& steps) : steps_(steps) {}

    bool IsEmpty() const { return steps_.GetCount() == 0; }
    // Whether anybody could tell that points have gone through the list without looking at them.
    bool HasSideEffects() const;
    // How many points may go together now.
    u32 PointsAtOnce() const;

    // The run's points become `count` pixels of row y from column x on, and go through the list.
    void MapPixels(PointRun& run, u32 x, u32 y, u32 count) const;
    // The same without regard to what is outside: every point goes through every step.
    void MapPixelsToTheEnd(PointRun& run, u32 x, u32 y, u32 count) const;

private:
    const Steps& steps_;
};

// How MapPoint works where MapRun is what a warp is written in.
bool MapOnePoint(CXFormer& former, f64 x, f64 y, f64* outX, f64* outY);

}  // namespace zlv
