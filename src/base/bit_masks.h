// Packed 1-bit rows: 8 pixels to the byte, the leftmost in the top bit; every row starts at a byte, and what is left of
// its last byte is 0.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// The bytes of a packed row of pixels of `depth` bits.
constexpr size_t PackedRowBytes(size_t width, u32 depth) { return (width * depth + 7) / 8; }

// Packs the low `depth` bits (1 to 8) of one byte a pixel. Code 5 for any other depth.
[[nodiscard]] Error PackRow(const u8* pixels, size_t width, u32 depth, u8* packed);

// One byte a pixel, 0 or 1.
void UnpackBits(const u8* packed, size_t width, u8* pixels);

// Makes a mask of the pixels of a one-byte plane that equal `value`. Reports (row, height). Codes: 5 for a null
// pointer, 1 for an empty image, 14. `flags` is not used.
ZLV_BASE u32 MV40_Create1BitMaskFromColor(const u8* plane, u32 width, u32 height, u32 rowStride, u8* mask,
                                          u32 maskStride, u8 value, u32 flags);

// Sets the pixels of a one-byte plane to `value` where the mask is set; the others stay. Reports (row, height). Codes
// as above.
ZLV_BASE u32 MV40_SetColorFrom1BitMask(const u8* mask, u32 width, u32 height, u32 maskStride, u8* plane, u32 rowStride,
                                       u8 value, u32 flags);

}  // namespace zlv
