// What warps around a centre share: of a run of points those that a warp touches, and their new places.
//
//     RadialRun touched(run, {centerX, centerY, offsetX, offsetY}, radius);
//     ... touched.NewRadii() from touched.Radii() ...
//     touched.MoveAlongBearings();
//
// A bearing is an arc tangent of dy / dx with its sign mended, not a two-argument one: the last bits differ.
#pragma once

#include "runtime/transform.h"
#include "warp/radial_run.kernels.h"

namespace zlv {

class RadialRun {
public:
    // Does the radius hold the centre itself?
    enum class Holds : bool { AllButCenter, Center };
    // What points above and below the centre have in x afterwards.
    enum class Column : bool { Stays, TakesOffset };

    // Distances are those from the centre with its offset. Points move relative to the centre alone, and are shifted by
    // the offset last.
    RadialRun(PointRun& run, const RadialPlace& place, f64 radius, Holds holds = Holds::AllButCenter);

    u32 Count() const { return touched_.count; }
    const f64* Radii() const { return radii_; }
    f64* NewRadii() { return newRadii_; }

    // To the new radii, and back into the run.
    void MoveAlongBearings(Column column = Column::Stays);
    // By these angles around the centre, and back into the run.
    void Turn(const f64* angles, f64 pi);

private:
    void FindBearings(f64* bearings) const;
    void StoreInRun(const f64* newX, const f64* newY);

    PointRun& run_;
    const RadialPlace place_;
    TouchedPoints touched_;
    u32 indices_[PointRun::kMost];
    f64 dx_[PointRun::kMost], dy_[PointRun::kMost];
    f64 radii_[PointRun::kMost], newRadii_[PointRun::kMost];
};

// A radius that a formula may not bring to the other side of the centre.
inline f64 AtLeast0(f64 radius) { return radius < 0 ? 0 : radius; }

}  // namespace zlv
