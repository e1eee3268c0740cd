// Pictures of three components a pixel to pictures of palette indices, and back.
//
// A palette is an array of entries of four bytes. Byte 3 of an entry is never written or used. The first component of
// a pixel pairs with byte 2 of the entry and the third with byte 0: the entries of a picture in red, green, blue order
// are blue, green, red. kSameComponentOrder reverses this. Only as many entries are read as `colors` says, or as the
// indices ask for. Strides are in bytes.
#pragma once

#include "runtime/base_call.h"

namespace zlv {

inline constexpr u32 kLargestPalette = 256;

// Flags of the functions below. The last three tell MV40_QuantizeRGBTo8Bit how to find a palette.
inline constexpr u32 kSameComponentOrder = 1;  // the first component pairs with byte 0, the third with byte 2
inline constexpr u32 kFourBytePixels = 2;      // while colours are counted, a pixel of the source has four bytes
inline constexpr u32 kSkipTransparent = 4;     // the same, and a pixel whose fourth byte is below 8 does not count
inline constexpr u32 kIncrementalOctree = 8;   // the octree that is reduced while it grows; it counts all pixels

// The byte of an entry that pairs with the first component; the third pairs with the other of 0 and 2.
constexpr u32 FirstByteOfEntry(u32 flags) { return flags & kSameComponentOrder ? 0 : 2; }

// Finds a palette for a picture and maps the picture onto it, with diffusion of the error.
//   source       height rows of width pixels; the mapping takes them as three bytes each, whatever the flags say
//   destination  height rows of width indices
//   colors       how many entries to use: 0 is taken as 1, more than 256 as 256
//   palette      receives the colours; room for 256 entries, all of which are written, those without a colour black;
//                with kIncrementalOctree for `colors`, of which those that were found are written
//   ditherKind, limit, flags  as of MV40_RGBTo8BitDithered
// The picture is mapped onto all `colors` entries, also those without a colour.
// Returns 1, or 0 with a code: 5 for a null pointer (nothing is written); 1 without memory; 14 for a cancel, which
// leaves what was written. Reports (0, 4) to (3, 4), or (row, height) with kIncrementalOctree, while it looks for the
// palette, and (row, height) once more while it maps. A cancel at (3, 4) comes before the palette is written. Works on
// the calling thread.
// Source: M. Gervautz, W. Purgathofer, "A simple method for color quantization: octree quantization", in: New trends
// in computer graphics (1988).
ZLV_BASE u32 MV40_QuantizeRGBTo8Bit(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                    u32 destStride, u32 colors, u8* palette, u32 ditherKind, u8 limit, u32 flags);

// Maps a picture onto a palette and hands the error of each pixel on to its neighbours, to and fro from row to row.
//   colors      entries of the palette, more than 256 are taken as 256; without entries every index is 0
//   ditherKind  0: half of the error to the next pixel, half to the one below; else: the weights of Floyd and
//               Steinberg, 7, 3, 5 and 1 sixteenths
//   limit       of the error of a component, either way; above 127 the errors beyond it wrap to the other sign
// Colours that share their upper five bits in every component share an index too: that of the first one that comes.
// Returns 1, or 0 with a code: 5 for a null pointer (nothing is written); 1 without memory; 14 for a cancel, rows done
// so far stay. Reports (row, height). Works on the calling thread.
// Source: R. W. Floyd, L. Steinberg, "An adaptive algorithm for spatial greyscale", Proc. SID 17 (1976).
ZLV_BASE u32 MV40_RGBTo8BitDithered(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                    u32 destStride, u32 colors, const u8* palette, u32 ditherKind, u8 limit, u32 flags);

// Maps each pixel onto the entry of the palette that is nearest to it; among equally near ones, onto the first.
//   colors  entries of the palette; without entries every index is 0
// Returns 1, or 0 with a code: 5 for a null pointer or more than 256 colours (nothing is written); 1 without memory;
// 14 for a cancel, pixels done so far stay. Reports (row, height) after every pixel. Works on the calling thread.
ZLV_BASE u32 MV40_RGBTo8BitBestFit(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                                   u32 destStride, u32 colors, const u8* palette, u32 flags);

// Gives each index the colour of its entry, three bytes a pixel. `colors` is not used.
// Returns 1, or 0 with a code: 5 for a null pointer (nothing is written); 14 for a cancel, rows done so far stay.
// Reports (row, height). Works on the calling thread.
ZLV_BASE u32 MV40_8BitToRGB(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination, u32 destStride,
                            u32 colors, const u8* palette, u32 flags);

}  // namespace zlv
