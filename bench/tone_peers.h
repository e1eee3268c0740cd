// OpenCV beside the tone effects: comparable work, on one thread. Without OpenCV they have no work.
#pragma once

#include "bench_row.h"

namespace zlvbench {

Peer CvThreshold(const Shape& shape);

// A rotation of the colours as one matrix.
Peer CvTransform(const Shape& shape, i32 angle);

// A colour for each gray level.
Peer CvColorMap(const Shape& gray);

// A gray image, and a colour for each of its levels.
Peer CvGrayColorMap(const Shape& rgb);

// Gray, blur, and the soft-light formula in a few whole-image steps.
Peer CvContrastMask(const Shape& rgb, f64 sigma);

// In single precision, without the circle of hues.
Peer CvFloodFill(const Shape& shape, const std::vector<f64>& picture, f64 tolerance);

}  // namespace zlvbench
