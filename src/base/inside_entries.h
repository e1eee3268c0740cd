// A kernel laid over a line: which of its entries lie on samples.
#pragma once

#include "platform/types.h"

#include <algorithm>

namespace zlv {

// The entries of a kernel of 2 * radius + 1 that lie in a line of `length` samples when its middle is at `position`.
struct InsideEntries {
    size_t first, count;  // entries of the kernel
    size_t start;         // the sample under the first of them

    InsideEntries(size_t position, size_t length, size_t radius)
        : first(position < radius ? radius - position : 0), start(position < radius ? 0 : position - radius)
    {
        count = std::min(position + radius, length - 1) - start + 1;
    }
};

}  // namespace zlv
