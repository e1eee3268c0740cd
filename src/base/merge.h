// Pixels merged by an alpha of their own: an overlay's fourth byte, or a mask.
//
// Both functions draw onto the base in place, at a signed position; what sticks out is cut off. They work on the
// calling thread, report (row, rows to be seen) after each row and return 1, or 0 with a code: 5 for a refused argument
// (nothing is written), 14 for a cancel (rows done so far stay changed). Nothing is allocated.
//
// A colour byte becomes table[255 - a][base] + table[a][overlay] for an alpha of a, by the table of products of bytes:
// where that is one below a * b / 255, so is the result.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// What a merge does to a base of four bytes a pixel. Pixels under an alpha of 0 stay as they are.
enum class MergeMode : u32 {
    KeepAlpha,  // also every value that is not here
    ReplaceAlpha,
    LargerAlpha,
    AddAlpha,  // at most 255
    Over,      // composited with the base's alpha: colours by their shares of the new alpha
};

// Draws an overlay of four-byte pixels by its own alpha.
//   baseChannels  4, or any other value for three bytes a pixel
//   opacity       not limited. Other than 1, the overlay's alpha a becomes the low byte of a * opacity, truncated
//   mergeMode     a MergeMode
// Code 5 for a null base or overlay, both the same, and, where there is something to draw: MergeMode::Over on three
// bytes a pixel, or an opacity that is no number or takes an alpha out of the range of 32-bit integers.
ZLV_BASE u32 MV40_MergeRGBA(u8* base, u32 baseWidth, u32 baseHeight, u32 baseChannels, u32 baseStride,
                            const u8* overlay, u32 overlayWidth, u32 overlayHeight, u32 overlayStride, i32 x, i32 y,
                            f64 opacity, u32 mergeMode);

inline constexpr u32 kColorSwapped = 1;  // exchange the colour's first and third byte

// What painting does to the alpha of a four-byte base: the highest of these flags counts. Without any, it stays.
inline constexpr u32 kColorBlendAlpha = 2;   // blended with the colour's fourth byte
inline constexpr u32 kColorSetAlpha = 4;     // becomes the colour's fourth byte where the mask is not 0
inline constexpr u32 kColorMaskToAlpha = 8;  // becomes the mask where that is not 0
inline constexpr u32 kColorReplace = 16;     // becomes the mask everywhere, and the colour is written unblended
inline constexpr u32 kColorOver = 32;        // stays; colours are composited by the base's alpha where that is not 0

// Paints one colour through a mask of one byte a pixel.
//   channels  3 or 4; with any other number nothing is painted
//   color     the first byte of a pixel in the low eight bits
// Code 5 for a null base or mask. Both may be the same memory: each pixel is painted after the one before it.
ZLV_BASE u32 MV40_AlphaBlendColor(u8* base, u32 baseWidth, u32 baseHeight, u32 channels, u32 baseStride, const u8* mask,
                                  u32 maskWidth, u32 maskHeight, u32 maskStride, u32 color, i32 x, i32 y, u32 flags);

}  // namespace zlv
