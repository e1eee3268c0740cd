// Kernel of the mapping with diffusion: one row of it.
#pragma once

#include "base/palette_search.kernels.h"

namespace zlv {

// What stays from row to row.
struct DitherState {
    static constexpr u32 kCells = 32 * 32 * 32;
    static constexpr u32 kPerhapsUnknown = 0xFFFFFFFF;

    // The entry for each cell of 8 x 8 x 8 colours, as the search knows it. kPerhapsUnknown is a cell without an answer
    // unless its bit says otherwise.
    u32 cells[kCells];
    u32 isAnswered[kCells / 32];

    bool isFloydSteinberg;
    u8 limit;
    const u32* entries;  // of the palette
    u32 entryCount;
    decltype(PaletteSearchKernels::findNearest) findNearest;
};

// A row in the order of its pixels' turns.
struct DitherRow {
    const u8* pixels;  // the first one
    u8* indices;
    i16* errors;          // four words a pixel: what the row above hands down, and then what goes down from here
    std::ptrdiff_t step;  // pixels from one turn to the next: 1 or -1
    size_t count;
};

struct PaletteDitherKernels {
    void (*ditherRow)(DitherState& state, const DitherRow& row);
};

ZLV_DECLARE_KERNELS(PaletteDitherKernels, kPaletteDitherKernels);

}  // namespace zlv
