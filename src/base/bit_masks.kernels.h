// Kernels between planes of bytes and packed bits.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

struct BitMaskKernels {
    // Packs which of 8 * count samples are `value`: the leftmost of eight in a byte's top bit.
    void (*findValue)(const u8* samples, size_t count, u8 value, u8* mask);

    // Gives `value` to those of 8 * count samples whose bit is set in `count` bytes.
    void (*setValue)(const u8* mask, size_t count, u8 value, u8* samples);
};

ZLV_DECLARE_KERNELS(BitMaskKernels, kBitMaskKernels);

}  // namespace zlv
