// Kernels of the search for the palette entry nearest to a colour.
//
// An entry is one number: its colour, the first component in bits 0 to 7, the second in 8 to 15, the third in 16 to 23,
// and its index in bits 24 to 31. The distance is the sum of the squares of the three differences; among equal ones
// the lowest index wins. Lists of entries are filled up to a multiple of kMostSearchLanes with any of their entries.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

inline constexpr u32 kMostEntries = 256;
inline constexpr u32 kMostSearchLanes = 8;
inline constexpr u32 kColorBits = 0xFFFFFF;
inline constexpr u32 kIndexShift = 24;

// For every cell of 8 x 8 x 8 colours the entries that are nearest to any of them, few as a rule. They are found when
// the cell's first colour comes, among those of the block of 32 x 32 x 32 around it.
struct NearestGrid {
    static constexpr u32 kCells = 32 * 32 * 32, kBlocks = 8 * 8 * 8;
    static constexpr u32 kMostCandidates = 8;
    static constexpr u8 kUnknown = 0, kTooMany = 255;

    struct Block {
        u32 first, count;  // in the pool; a count of 0 is not known yet
    };

    const u32* entries;  // no two of them of the same colour
    u32 count;
    const u32* byIndex;  // the same entries and more, each at its index
    u8* counts;          // kCells: how many candidates a cell has, kUnknown or kTooMany
    u32* candidates;     // kCells times kMostCandidates
    Block* blocks;       // kBlocks
    u32* pool;           // kBlocks times kMostEntries, if need be
    u32 poolUsed;
};

struct PaletteSearchKernels {
    // The index of the nearest of `count` entries, above 0.
    u32 (*findNearest)(const u32* entries, u32 count, u32 color);

    // The same for `count` pixels of three bytes, one after the other.
    void (*mapByEntries)(const u32* entries, u32 entryCount, const u8* pixels, u8* indices, size_t count);
    void (*mapByGrid)(NearestGrid& grid, const u8* pixels, u8* indices, size_t count);
};

ZLV_DECLARE_KERNELS(PaletteSearchKernels, kPaletteSearchKernels);

}  // namespace zlv
