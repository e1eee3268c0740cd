// Kernels of the morphology on packed rows: unions and intersections of rows that are moved by pixels.
//
// Rows are bytes as they lie in memory, the leftmost pixel in a byte's highest bit. Rows of the window's own memory may
// be read and written kBitSlack bytes behind what is asked for, unless told otherwise.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr size_t kBitSlack = 512;

// Rows that are moved alike.
struct BitColumn {
    i64 bytes;   // to the right
    u32 pixels;  // and this many more, 0 to 7
    u32 rows;
};

struct BitWindowKernels {
    struct Operation {
        // out = the row with the one that begins `distance` pixels to the right.
        void (*span)(const u8* row, size_t distance, size_t count, u8* out);

        // out = two rows.
        void (*join)(const u8* a, const u8* b, size_t count, u8* out);

        // out = all rows, each moved as its column says. Without columns all bits are 0, or all are 1.
        void (*window)(const u8* const* rows, const BitColumn* columns, size_t columnCount, size_t count, u8* out);
    };
    Operation unite, intersect;

    // The pixels that a pass which jumps over empty bytes leaves out: those of each byte that is 0, and the first one
    // behind it. Reads row[-1].
    void (*findSkipped)(const u8* row, size_t count, u8* skipped);

    // values with no bit set that is in `skipped`, in place.
    void (*clearSkipped)(const u8* skipped, size_t count, u8* values);

    // out = values but for the bits in `skipped`, which stay. Writes exactly `count` bytes.
    void (*putVisited)(const u8* values, const u8* skipped, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(BitWindowKernels, kBitWindowKernels);

}  // namespace zlv
