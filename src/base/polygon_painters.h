// What a polygon is filled with: a colour, a colour at an opacity, or a tile.
//
// Painters for PaintPolygon, on images of 1, 3 or 4 channels. None of them allocates.
#pragma once

#include "base/image_view.h"
#include "base/opacity.h"
#include "runtime/base_tables.h"

namespace zlv {

struct PixelBytes {
    explicit PixelBytes(u32 color) : bytes{u8(color), u8(color >> 8), u8(color >> 16), u8(color >> 24)} {}

    u8 bytes[4];
};

// The same pixel again and again.
class PixelTile {
public:
    PixelTile(const PixelBytes& pixel, u32 channels);

    static constexpr size_t kBytes = 1536;  // whole pixels of 1, 3 and 4 bytes
    const u8* Data() const { return bytes_; }

private:
    u8 bytes_[kBytes];
};

// What painting makes of each byte of a channel, or of each index.
class ByteMap {
public:
    u8 operator[](u8 value) const { return to_[value]; }
    void Set(u8 value, u8 painted) { to_[value] = painted; }
    const u8* Data() const { return to_; }

    // What the same map does `times` times over.
    ByteMap Repeated(u64 times) const;

private:
    u8 to_[256];
};

// A byte under a colour: trunc(old * (1 - opacity)) + trunc(color * opacity), the low eight bits of each.
ByteMap MixingMap(u8 color, f64 opacity);

// Whether every share of a byte at this opacity is a 32-bit integer once it is truncated.
bool IsMixable(f64 opacity);

class SolidPainter {
public:
    SolidPainter(const ImageView<u8>& image, const PixelBytes& pixel);

    static constexpr bool kCountsRows = false;
    void BeginRows(u64) {}
    void Paint(u32 row, u32 left, u32 right, u64 times);
    bool IsSettled(u32 row, u32 column) const;

private:
    const ImageView<u8> image_;
    const PixelTile tile_;
    const bool isOneByte_;
};

// The opacity is mixable.
class MixPainter {
public:
    MixPainter(const ImageView<u8>& image, const PixelBytes& pixel, f64 opacity);

    static constexpr bool kCountsRows = false;
    void BeginRows(u64) {}
    void Paint(u32 row, u32 left, u32 right, u64 times);
    bool IsSettled(u32 row, u32 column) const;

private:
    void MapPixels(u8* pixels, size_t count, const ByteMap* maps) const;

    const ImageView<u8> image_;
    const PixelTile tile_;
    const bool hasShares_;  // the opacity is one of 0 to 1, which have a kernel of their own
    ByteShares shares_;
    ByteMap maps_[4];
};

// The colours of an image of indices. Entries beyond those that are given are black.
struct FillPalette {
    // Of more than 256 entries the first ones are taken.
    FillPalette(const u8* given, u32 givenCount);

    PaletteEntry entries[256] = {};
    u32 count;
};

// Mixes the colour of an index with another one and looks for the nearest in the palette. The opacity is mixable.
class IndexMixPainter {
public:
    // Components in the order in which a pixel has them: the third is the first byte of an entry.
    IndexMixPainter(const ImageView<u8>& image, const FillPalette& palette, const PixelBytes& color, f64 opacity);

    static constexpr bool kCountsRows = false;
    void BeginRows(u64) {}
    void Paint(u32 row, u32 left, u32 right, u64 times);
    bool IsSettled(u32 row, u32 column) const;

private:
    void Learn(u8 index);
    void LearnAll();

    const ImageView<u8> image_;
    const FillPalette palette_;
    ByteMap components_[3];
    ByteMap indices_;
    bool isKnown_[256] = {};
};

struct FillTile {
    const u8* data;
    u32 width, height, stride;  // a height of 0 is one row that does not move on
};

// Copies a tile. Its rows follow the polygon's, whatever row of the image they fall on; its columns begin at `origin`.
class TilePainter {
public:
    TilePainter(const ImageView<u8>& image, const FillTile& tile, u32 origin)
        : image_(image), tile_(tile), origin_(origin)
    {
    }

    static constexpr bool kCountsRows = true;
    void BeginRows(u64 times);
    void Paint(u32 row, u32 left, u32 right, u64 times);
    bool IsSettled(u32, u32) const { return false; }

private:
    const ImageView<u8> image_;
    const FillTile tile_;
    const u32 origin_;
    u32 tileRow_ = 0;
    bool hasBegun_ = false;
};

}  // namespace zlv
