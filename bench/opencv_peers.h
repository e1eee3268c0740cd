// Peers from OpenCV, on one thread and in place. Without OpenCV they have no work.
#pragma once

#include "bench_row.h"

namespace zlvbench {

void PrepareOpenCv();

Peer CvBitwiseNot(const Shape& shape);

// A table for each channel, or one for all.
Peer CvLut(const Shape& shape, const std::vector<std::vector<u8>>& tables);

}  // namespace zlvbench
