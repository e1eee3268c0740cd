// Runs of points that stand in a row like pixels, as those do that come to the first warp of a list.
#pragma once

#include "runtime/transform.h"

namespace zlv {

// Each point is 1 to the right of the one before, and that one 1 to its left: the very same numbers both ways.
inline bool IsPixelRow(const PointRun& run)
{
    bool isRow = run.count > 0;
    for (u32 i = 0; i < run.count; ++i) isRow = isRow && !run.isLost[i] && run.y[i] == run.y[0];
    for (u32 i = 1; i < run.count; ++i) isRow = isRow && run.x[i] == run.x[i - 1] + 1 && run.x[i] - 1 == run.x[i - 1];
    return isRow;
}

}  // namespace zlv
