// The structuring elements of the segmented colourise.
#pragma once

#include "platform/types.h"

namespace zlv {

inline constexpr u32 kSegmentElements = 12;
inline constexpr u32 kLargestSegmentElement = 15;  // side

// A square, drawn row after row in 0 and 1.
struct SegmentElement {
    u32 side;
    const char* drawing;

    u32 Entries() const { return side * side; }
    // 1 where the element reaches.
    u32 At(u32 entry) const { return u32(drawing[entry] - '0'); }
};

// Numbers beyond the last one give number 0.
const SegmentElement& SegmentElementOf(u32 number);

}  // namespace zlv
