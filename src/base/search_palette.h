// A palette as the search for the nearest entry wants it.
#pragma once

#include "base/palette_search.kernels.h"

namespace zlv {

// A colour as one number: the first component in bits 0 to 7, the second in 8 to 15, the third in 16 to 23.
constexpr u32 PackColor(u8 first, u8 second, u8 third) { return u32(first) | u32(second) << 8 | u32(third) << 16; }

class SearchPalette {
public:
    // Takes `count` entries of four bytes, at most kMostEntries. The first component of a colour pairs with byte
    // `firstByte` of an entry, 0 or 2, and the third with the other of them.
    void Set(const u8* palette, u32 count, u32 firstByte)
    {
        count_ = 0;
        for (u32 i = 0; i < count; ++i) {
            const u8* const entry = palette + size_t(i) * 4;
            Append(PackColor(entry[firstByte], entry[1], entry[2 - firstByte]) | i << kIndexShift);
        }
        Pad();
    }

    // Takes the entries of another palette, but for those that can't be an answer: an earlier one has their colour.
    void SetDistinct(const SearchPalette& other)
    {
        count_ = 0;
        for (u32 i = 0; i < other.count_; ++i) {
            const u32 entry = other.entries_[i];
            if (other.FindNearest(entry & kColorBits) == entry >> kIndexShift) Append(entry);
        }
        Pad();
    }

    u32 Count() const { return count_; }
    const u32* Entries() const { return entries_; }

    // The index of the entry nearest to the colour, the lowest among equally near ones; 0 without entries.
    u32 FindNearest(u32 color) const
    {
        return count_ == 0 ? 0 : Kernels<PaletteSearchKernels>().findNearest(entries_, count_, color);
    }

private:
    void Append(u32 entry) { entries_[count_++] = entry; }

    // To whole vectors, with an entry that is there already.
    void Pad()
    {
        for (u32 i = count_; i % kMostSearchLanes != 0; ++i) entries_[i] = entries_[0];
    }

    u32 count_ = 0;
    alignas(16) u32 entries_[kMostEntries];
};

}  // namespace zlv
