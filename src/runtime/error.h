// The codes that a call leaves behind. Both layers share one numbering.
#pragma once

#include "platform/types.h"

namespace zlv {

enum class Error : u32 {
    None = 0,
    OutOfMemory = 1,  // also a computed size of zero or less
    BadArgument = 5,
    Cancelled = 14,
    CouldNotRun = 17,
    NoBaseContext = 55,
    UnusablePolygon = 61,
    TargetTooSmall = 68,
    TimeOut = 84,
};

}  // namespace zlv
