// The last stage of the Canny edge detector: strong edges, and weaker ones that touch them.
#pragma once

#include "filters/canny.kernels.h"
#include "runtime/array.h"

namespace zlv {

// The possible edges of an image: each pixel is kNoEdge, kEdge or the magnitude of a possible edge.
class RidgePlane {
public:
    // All pixels begin as kNoEdge. False when memory is out.
    [[nodiscard]] bool Resize(u32 width, u32 height);

    // Pixels from one row to the next: rows have room for whole groups of the thinning.
    size_t Pitch() const { return pitch_; }
    i16* Row(u32 y) { return ridges_.GetData() + y * pitch_; }

    // Counts the ridges of a row, which is complete now.
    void CountRidges(u32 y);

    // Turns possible edges into edges. Of the possible edges, `highFraction` lie under the magnitude that begins an
    // edge; others join above `lowFraction` of that magnitude. The outermost pixels are no possible edges. False when
    // memory is out.
    [[nodiscard]] bool TraceEdges(f32 lowFraction, f32 highFraction);

private:
    u32 width_ = 0, height_ = 0;
    size_t pitch_ = 0;
    MVBuffer<i16> ridges_;
    MVBuffer<u32> histogram_;  // of the magnitudes of possible edges
    MVBuffer<u32> found_;      // in a row
};

}  // namespace zlv
