// Kernels of the table pass.
#pragma once

#include "base/stepped_table.h"
#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// The masks of a pass repeat after this many samples times the period: whole vectors of any target.
inline constexpr size_t kMaskBlock = 64;

struct TablePassKernels {
    // Whether table[i] == (i ^ table[0]) for every i: then the table is an exclusive or, and no look-up is needed.
    bool (*isXorTable)(const u8* table);

    // samples[i] ^= masks[i % (period * kMaskBlock)].
    void (*xorSamples)(u8* samples, size_t count, const u8* masks, size_t period);

    // The same masks choose the bits of a sample that become those of its entry in the table.
    void (*mapSteps)(u8* samples, size_t count, const SteppedTable& table, const u8* masks, size_t period);

    // samples[i] = table[samples[i]].
    void (*mapSamples)(u8* samples, size_t count, const u8* table);

    // Interleaved pixels with a table a channel; a null table leaves its channel alone.
    void (*mapPixels)(u8* samples, size_t pixels, size_t channels, const void* const* tables);
};

ZLV_DECLARE_KERNELS(TablePassKernels, kTablePassKernels);

}  // namespace zlv
