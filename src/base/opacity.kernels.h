// Kernels that mix two rows by opacity.
#pragma once

#include "base/opacity.h"
#include "runtime/targets.h"

namespace zlv {

// The rows do not overlap.
struct OpacityKernels {
    // base[i] = under(base[i]) + over(overlay[i])
    void (*mixBytes)(u8* base, const u8* overlay, size_t count, const ByteShares& shares);

    // base[i] = trunc(base[i] * (1 - opacity)) + trunc(overlay[i] * opacity)
    void (*mixWords)(u16* base, const u16* overlay, size_t count, f64 opacity);

    // base[i] = trunc(base[i] * (1 - opacity) + overlay[i] * opacity), each operation rounded to a double; the opacity
    // is above 0 and below 1.
    void (*mixBytesExactly)(u8* base, const u8* overlay, size_t count, f64 opacity);
    void (*mixWordsExactly)(u16* base, const u16* overlay, size_t count, f64 opacity);
};

ZLV_DECLARE_KERNELS(OpacityKernels, kOpacityKernels);

}  // namespace zlv
