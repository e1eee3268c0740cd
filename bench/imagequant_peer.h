// A peer for what makes palettes. Without libimagequant it has no work.
#pragma once

#include "bench_row.h"

namespace zlvbench {

// Finds a palette for the image, three bytes a pixel, and writes indices to the output: comparable work, other bytes.
// It takes four bytes a pixel, so the image is copied first.
Work ImageQuantWork(const Shape& shape, u32 colors, bool isDithered);

}  // namespace zlvbench
