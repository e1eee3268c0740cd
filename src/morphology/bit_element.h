// A structuring element of bits as few unions of rectangles that double in size.
//
// Neighbouring entries make rectangles. A rectangle is the union of powers of two in each direction, which may overlap;
// those powers, the planes, are made once a row, each from the one of half its size, and serve all rectangles. So a
// rectangle costs the same few steps at any size, and other elements what their outline asks for. (The doubling is that
// of a sparse table, M. A. Bender and M. Farach-Colton, "The LCA Problem Revisited", LATIN 2000.)
#pragma once

#include "runtime/array.h"

namespace zlv {

inline constexpr u32 kBitLevels = 32;

// Which planes there are. Plane (0, k) is the union of 2^k neighbours in a row, from each pixel on to the right; plane
// (v, k) that of 2^v rows of it, from each row on down.
struct BitPlanes {
    u32 widest = 0;                // planes (0, 0) to (0, widest)
    u32 highest[kBitLevels] = {};  // for each k, planes (1, k) to (highest[k], k)

    u32 Count() const { return FirstHigh(kBitLevels); }
    // The place of plane (v, k) among all.
    u32 Of(u32 k, u32 v) const { return v == 0 ? k : FirstHigh(k) + v - 1; }

private:
    u32 FirstHigh(u32 k) const
    {
        u32 place = widest + 1;
        for (u32 i = 0; i < k; ++i) place += highest[i];
        return place;
    }
};

// One plane, that far away from a pixel; `row` counts from the highest row that the element reaches.
struct BitPiece {
    i32 column;
    u32 row;
    u32 plane;
};

// An element as clients give it: row after row.
struct ElementEntries {
    const u32* entries;
    i32 width, height;

    // There are entries, the sides are odd, and memory could hold them.
    bool IsValid() const;
};

class BitElement {
public:
    // Takes the entries that are `isMember` for images of that size: further away than the image is large, an element
    // finds the pixels of the border again. False when memory is out.
    [[nodiscard]] bool Prepare(const ElementEntries& element, bool (*isMember)(u32 entry), u32 imageWidth,
                               u32 imageHeight);

    u32 ReachX() const { return reachX_; }
    u32 ReachY() const { return reachY_; }
    bool HasCentre() const { return hasCentre_; }
    const BitPlanes& Planes() const { return planes_; }
    // By columns, from left to right.
    const BitPiece* Pieces() const { return pieces_.GetData(); }
    u32 PieceCount() const { return u32(pieces_.GetCount()); }

private:
    // A rectangle of members; rows and columns count from the first within the reach.
    struct Box {
        u32 row, rows, column, columns;
    };

    template <class Visit>
    void ForEachBox(const u8* members, Visit visit) const;
    [[nodiscard]] bool MakeBoxes(const u8* members);
    void ChoosePlanes();
    [[nodiscard]] bool MakePieces();

    u32 reachX_ = 0, reachY_ = 0;
    bool hasCentre_ = false;
    u32 highestLevel_ = 0, widestLevel_ = 0;  // of rectangles; larger ones are made of more of these
    MVBuffer<Box> boxes_;
    MVBuffer<BitPiece> pieces_;
    BitPlanes planes_;
};

}  // namespace zlv
