// One point through a warp, with the client's own functions before and behind it.
#pragma once

#include "warp/warp_support.h"

namespace zlvtest {

struct MappedPoint {
    double x, y;

    // Sends any point to *this.
    static std::int32_t Set(double, double, double* outX, double* outY, void* userData)
    {
        const MappedPoint& self = *static_cast<const MappedPoint*>(userData);
        *outX = self.x;
        *outY = self.y;
        return 1;
    }

    // Keeps where a point has come to.
    static std::int32_t Get(double x, double y, double*, double*, void* userData)
    {
        *static_cast<MappedPoint*>(userData) = {x, y};
        return 1;
    }
};

// Where (x, y) goes in the warps that add() puts into the list.
template <class Add>
MappedPoint MapThrough(double x, double y, Add add)
{
    const WarpList list;
    MappedPoint from = {x, y}, to = {-1, -1};
    EXPECT_EQ(ZLV40_AddUserTransform(1, 1, MappedPoint::Set, &from), 1u);
    EXPECT_EQ(add(), 1u);
    EXPECT_EQ(ZLV40_AddUserTransform(1, 1, MappedPoint::Get, &to), 1u);
    double unused[4];
    EXPECT_EQ(ZLV40_GetTransformDimensions(1, 1, unused, unused + 1, unused + 2, unused + 3), 1u);
    return to;
}

}  // namespace zlvtest
