// Overlays: one image drawn onto another one, in place, at a signed position.
//
// The overlay's top left pixel comes to (x, y) of the base; what sticks out is cut off, and an overlay that lies
// outside altogether leaves the base alone. Pixels of the base outside the overlay and padding stay as they were. All
// functions work on the calling thread, report (row, rows to be seen) after each row and return 1, or 0 with a code: 5
// for a refused argument (nothing is written), 14 for a cancel (rows done so far stay changed). Nothing is allocated.
//
// The two images must not share memory that is written. Should they, each sample (here) or pixel (elsewhere) is done
// after the one before it.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

// How MV40_OverlayImage makes a sample f from one of the base, d, and one of the overlay, s. M is the largest sample
// value, H its upper half, T the parameter P truncated. Integer divisions truncate; a division by 0 gives M or what is
// told beside it.
enum class OverlayMode : u32 {
    Replace,           // s
    ReplaceExactly,    // s; below full opacity the two shares are added before they are truncated
    And,               // bitwise, as the next two
    Or,                //
    Xor,               //
    Lighter,           // the larger
    Darker,            // the smaller
    Add,               // d + s, at most M
    Subtract,          // d - s, at least 0
    ReplaceAbove,      // s where s > T; elsewhere the base stays, at any opacity
    ReplaceBelow,      // s where s < T
    Difference,        // |d - s|
    Multiply,          // d * s / M
    ScaledMultiply,    // s * P * (d / M) in doubles, limited to 0 to M, truncated
    Screen,            // M - (M - d) * (M - s) / M
    AddWithBias,       // d - T + s, at most M; below 0 the low bits are stored, or 0 below full opacity
    SubtractWithBias,  // d - s + T, likewise
    NotAnd,            //
    NotOr,             //
    NotXor,            //
    ColorDodge,        // d * M / (M - s), at most M
    ColorBurn,         // M - (M - d) * M / s, at least 0; 0 for s = 0
    SoftDodge,         // d + s <= M: d * H / (M - s), at most M; else M - (M - s) * H / d, at least 0
    SoftBurn,          // the same with d and s exchanged
    Overlay,           // d < H: d * s / H; else M - (M - d) * (M - s) / H
    SoftLight,         // c + (e - c) * d / M, where c is Multiply and e is Screen
    HardLight,         // Overlay with d and s exchanged
    Reflect,           // d * d / (M - s), at most M
    Glow,              // Reflect with d and s exchanged
    Freeze,            // M - (M - d) * (M - d) / s, at least 0; 0 for s = 0
    Heat,              // Freeze with d and s exchanged
};
inline constexpr u32 kOverlayModes = 31;

inline constexpr u32 kOverlaySixteenBit = 1;  // samples are words, strides count words
// The overlay is read from its last row upwards; at full opacity in the two replacing modes alone. There a row that is
// cut off on the left is read from its first pixel all the same: clients place flipped overlays by it.
inline constexpr u32 kOverlayFlipped = 4;

// Blends an overlay of the same number of channels onto the base, each sample by itself.
//   opacity    limited to 0 to 1. At 1 a sample becomes f; below, trunc(d * (1 - opacity)) + trunc(f * opacity)
//   parameter  P of some modes; limited to the range of 32-bit integers where it is truncated
//   mode       an OverlayMode. At opacity 0 the replacing modes return at once and report nothing
// Code 5 for a null base or overlay, both the same, and, where there is something to draw: an unknown mode, an opacity
// or a parameter in use that is no number.
ZLV_BASE u32 MV40_OverlayImage(void* base, u32 baseWidth, u32 baseHeight, u32 channels, u32 baseStride,
                               const void* overlay, u32 overlayWidth, u32 overlayHeight, u32 overlayStride, i32 x,
                               i32 y, f64 opacity, f64 parameter, u32 mode, u32 flags);

inline constexpr u32 kKeyedByteShares = 1;       // truncate the two shares before they are added, not their sum
inline constexpr u32 kKeyedSwapColor = 2;        // exchange the first and the third byte of the transparent colour
inline constexpr u32 kKeyedFourByteBase = 4;     // a fourth byte of the base, left alone; else three bytes a pixel
inline constexpr u32 kKeyedFourByteOverlay = 8;  // a fourth byte of the overlay, not read; else three bytes a pixel

// Draws an overlay but for its transparent colour.
//   opacity           limited to 0 to 1
//   transparentColor  the first byte of a pixel in the low eight bits; the top eight are not used
//   tolerance         the largest sum of the three squared differences that still counts as transparent
// Code 5 for a null base, base and overlay the same, and, where there is something to draw, a null overlay or an
// opacity that is no number.
ZLV_BASE u32 MV40_OverlayRGBTrans(u8* base, u32 baseWidth, u32 baseHeight, u32 baseStride, const u8* overlay,
                                  u32 overlayWidth, u32 overlayHeight, u32 overlayStride, i32 x, i32 y, f64 opacity,
                                  u32 transparentColor, u32 tolerance, u32 flags);

inline constexpr u32 kIndexedByteShares = 1;   // as kKeyedByteShares
inline constexpr u32 kIndexedSameOrder = 2;    // byte 0 of an entry goes to byte 0 of a pixel; else byte 2 does
inline constexpr u32 kIndexedTransparent = 4;  // leave the base alone where the index is the transparent one

// Draws an overlay of one byte a pixel, an index into 256 palette entries of four bytes, onto three-byte pixels.
// Code 5 for a null base or overlay, both the same, and, where there is something to draw, a null palette or an
// opacity that is no number.
ZLV_BASE u32 MV40_Overlay8BitToRGB(u8* base, u32 baseWidth, u32 baseHeight, u32 baseStride, const u8* overlay,
                                   u32 overlayWidth, u32 overlayHeight, u32 overlayStride, const u8* palette, i32 x,
                                   i32 y, f64 opacity, u32 transparentIndex, u32 flags);

}  // namespace zlv
