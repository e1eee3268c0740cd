// The way back up the cost matrix.
#pragma once

#include "runtime/contexts.h"
#include "seam/seam_context.h"

namespace zlv {

// Fills `seam`, one column a row, with a path of least cost. Between equally cheap ways up the thread's random
// generator decides.
void FindSeam(const CLImage<i32>& cost, ZLVArray<u32>& seam, MVThreadContext& random);

}  // namespace zlv
