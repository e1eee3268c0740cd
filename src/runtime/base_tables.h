// Tables that the base layer shares among all threads; read-only once the library is loaded.
#pragma once

#include "platform/types.h"

namespace zlv {

struct PaletteEntry {
    u8 bytes[4];
};

struct BaseTables {
    u8 product[256][256];        // row b, column a: a * (b / 255.0), truncated
    PaletteEntry grayRamp[256];  // (i, i, i, 0)
    u8 bit[8];                   // 1 << i
    u8 bitFromTop[8];            // 1 << (7 - i)
    u8 bitCleared[8];            // all but 1 << i
    u8 reversed[256];            // the bits of a byte in reverse order
    u8 reversedInverted[256];    // and the complement of that
    u8 run[8][8];                // row r, column c: the bits c up to r
    u8 expanded[256][8];         // the bits of a byte, most significant first, one byte each, 0 or 1
    u32 expandedWords[256][2];   // the same bytes as 32-bit words of this processor
};

extern const BaseTables& baseTables;

// Runs once, when the library loads.
void InitBaseTables();

}  // namespace zlv
