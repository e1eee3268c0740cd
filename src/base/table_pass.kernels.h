// Kernels of the table pass.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// The masks of an exclusive-or pass repeat after this many samples times the period: whole vectors of any target.
inline constexpr size_t kXorBlock = 64;

struct TablePassKernels {
    // Whether table[i] == (i ^ table[0]) for every i: then the table is an exclusive or, and no look-up is needed.
    bool (*isXorTable)(const u8* table);

    // samples[i] ^= masks[i % (period * kXorBlock)].
    void (*xorSamples)(u8* samples, size_t count, const u8* masks, size_t period);

    // samples[i] = table[samples[i]].
    void (*mapSamples)(u8* samples, size_t count, const u8* table);

    // Interleaved pixels with a table a channel; a null table leaves its channel alone.
    void (*mapPixels)(u8* samples, size_t pixels, size_t channels, const void* const* tables);
};

ZLV_DECLARE_KERNELS(TablePassKernels, kTablePassKernels);

}  // namespace zlv
