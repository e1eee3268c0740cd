#include "warp/radial_run.h"

#include "runtime/math.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

constexpr u32 kMost = PointRun::kMost;

// The arc tangent of a number is the angle of the point that it is to the right of.
struct Ones {
    f64 values[kMost];
    constexpr Ones() : values()
    {
        for (f64& value : values) value = 1;
    }
};
constexpr Ones kOnes;

}  // namespace

RadialRun::RadialRun(PointRun& run, const RadialPlace& place, f64 radius, Holds holds)
    : run_(run), place_(place), touched_{0, indices_, dx_, dy_, radii_}
{
    const RadialArea area = {place.centerX + place.offsetX, place.centerY + place.offsetY, radius,
                             holds == Holds::Center};
    Kernels<RadialRunKernels>().findTouched(run.x, run.y, run.isLost, run.count, area, touched_);
}

void RadialRun::FindBearings(f64* bearings) const
{
    Kernels<RadialRunKernels>().findSlopes(touched_, bearings);
    Atan2Array(bearings, kOnes.values, bearings, Count());
}

void RadialRun::MoveAlongBearings(Column column)
{
    if (Count() == 0) return;
    f64 bearings[kMost], newX[kMost], newY[kMost];
    FindBearings(bearings);
    CosArray(bearings, newX, Count());
    SinArray(bearings, newY, Count());
    Kernels<RadialRunKernels>().placeLeftOf0(touched_, newRadii_, place_, newX, newY);
    for (u32 i = 0; i < Count(); ++i) {
        if (dx_[i] != 0) continue;
        const f64 x = run_.x[indices_[i]];
        newX[i] = column == Column::TakesOffset ? x + place_.offsetX : x;
        newY[i] = (dy_[i] >= 0 ? place_.centerY + newRadii_[i] : place_.centerY - newRadii_[i]) + place_.offsetY;
    }
    StoreInRun(newX, newY);
}

void RadialRun::Turn(const f64* angles, f64 pi)
{
    if (Count() == 0) return;
    f64 bearings[kMost], newX[kMost], newY[kMost];
    FindBearings(bearings);
    for (u32 i = 0; i < Count(); ++i) {
        // Turned round afterwards, like all that is not to the right of the centre.
        const f64 bearing = dx_[i] != 0 ? bearings[i] : dy_[i] > 0 ? pi * -0.5 : pi * 0.5;
        bearings[i] = bearing + angles[i];
    }
    CosArray(bearings, newX, Count());
    SinArray(bearings, newY, Count());
    Kernels<RadialRunKernels>().placeUpTo0(touched_, radii_, place_, newX, newY);
    StoreInRun(newX, newY);
}

void RadialRun::StoreInRun(const f64* newX, const f64* newY)
{
    const u32 first = indices_[0];
    if (indices_[Count() - 1] - first == Count() - 1) {
        std::copy_n(newX, Count(), run_.x + first);
        std::copy_n(newY, Count(), run_.y + first);
        return;
    }
    for (u32 i = 0; i < Count(); ++i) {
        run_.x[indices_[i]] = newX[i];
        run_.y[indices_[i]] = newY[i];
    }
}

}  // namespace zlv
