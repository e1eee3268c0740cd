// The client's own function as a step of a warp list: any function of a test's.
#pragma once

#include "warp/warp_support.h"

namespace zlvtest {

using Function = std::function<bool(double x, double y, double* outX, double* outY)>;

// Calls a Function that userData points to.
inline std::int32_t CallFunction(double x, double y, double* outX, double* outY, void* userData)
{
    return (*static_cast<Function*>(userData))(x, y, outX, outY) ? 1 : 0;
}

inline std::uint32_t Add(Function& function) { return ZLV40_AddUserTransform(0, 0, CallFunction, &function); }

// A function that sends everything to one place.
inline Function To(double x, double y)
{
    return [=](double, double, double* outX, double* outY) {
        *outX = x;
        *outY = y;
        return true;
    };
}

inline bool Nowhere(double, double, double*, double*) { return false; }
inline bool Stay(double, double, double*, double*) { return true; }

// A gray picture of 4 x 3 that tells where a pixel comes from.
inline const Bytes kRamp = {0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 110, 130};

}  // namespace zlvtest
