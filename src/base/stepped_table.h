// Tables of a few plain stretches: thresholds, solarisation, posterisation. Comparing beats looking up.
#pragma once

#include "platform/types.h"

namespace zlv {

inline constexpr u32 kMaxSteps = 3;

// An entry is (value & keep[k]) ^ flip[k], where k is how many of the later stretches' first values it has reached.
struct SteppedTable {
    u8 first[kMaxSteps];
    u8 keep[kMaxSteps];  // 255 for values with some of their bits turned over, 0 for a constant
    u8 flip[kMaxSteps];
};

// Whether 256 bytes are such a table of at most kMaxSteps stretches, and which one.
bool FindSteps(const u8* table, SteppedTable& steps);

}  // namespace zlv
