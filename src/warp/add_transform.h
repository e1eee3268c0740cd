// The shape of every Add export: make a warp, let it take its arguments, and put it at the end of the thread's list.
#pragma once

#include "runtime/frame.h"

namespace zlv {

// setUp(points) stores the arguments and returns the code that refuses them. Refused or without memory, the list stays
// as it was.
template <class Points, class SetUp>
u32 AddTransform(CallFrame& frame, u32 width, u32 height, SetUp setUp)
{
    Points* const points = new Points;
    if (!points) return frame.Fail(Error::OutOfMemory);
    points->SetSize(width, height);
    Error error = setUp(*points);
    if (error == Error::None && !frame.Context().transforms.Append(points)) error = Error::OutOfMemory;
    if (error == Error::None) return 1;
    delete points;
    return frame.Fail(error);
}

// The whole export, where nothing is checked ahead of the warp itself.
template <class Points, class SetUp>
u32 AddTransformInFrame(u32 width, u32 height, SetUp setUp)
{
    return InFrame(FrameKind::ErrorSlotOnly,
                   [&](CallFrame& frame) { return AddTransform<Points>(frame, width, height, setUp); });
}

}  // namespace zlv
