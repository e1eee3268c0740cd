// The palette entry nearest to a colour, for callers that ask about the same few colours again and again.
#pragma once

#include "base/search_palette.h"
#include "runtime/base_call.h"

namespace zlv {

// An answer given before. The key is the colour: the first component in bits 0 to 7, and so on.
struct ColorMatchCacheEntry {
    u32 key;
    u32 index;
};

// Not for two threads at a time: a search writes the cache.
class CMVColorMatch {
public:
    CMVColorMatch() { ForgetAnswers(); }
    CMVColorMatch(const CMVColorMatch&) = delete;
    CMVColorMatch& operator=(const CMVColorMatch&) = delete;

    static void* operator new(size_t bytes) noexcept { return platform::Allocate(bytes); }
    static void operator delete(void* block) { platform::Free(block); }

    // Takes `count` entries of four bytes, of which more than 256 are taken as 256: byte 2 pairs with the first
    // component of a colour, byte 1 with the second, byte 0 with the third. Null keeps the palette as it is.
    void SetPalette(const u8* palette, u32 count);

    // The index of the entry with the least sum of squared differences, the lowest index among equal ones. 0 without
    // a palette or entries.
    u32 FindClosest(u8 first, u8 second, u8 third);

private:
    static constexpr u32 kSlotBits = 8;
    static constexpr u32 kNoKey = 0xFFFFFFFF;  // no colour has more than 24 bits

    void ForgetAnswers();

    SearchPalette palette_;
    // An answer's place follows from its colour: to look there costs less than a search even when it is not there.
    ColorMatchCacheEntry cache_[1u << kSlotBits];
};

// What the caller of the functions below holds.
struct ColorMatcherHandle {
    CMVColorMatch* matcher;
};

// A matcher on a palette, as of CMVColorMatch::SetPalette. With a null palette every answer is 0.
// Returns a handle that the caller gives back to MV40_DestroyColorMatcher; null without memory, with code 1 when not
// even the handle could be had, and no code when the matcher itself could not.
ZLV_BASE ColorMatcherHandle* MV40_CreateColorMatcher(const u8* palette, u32 count);

// Returns 1, or 0 with code 5 for a null handle.
ZLV_BASE u32 MV40_DestroyColorMatcher(ColorMatcherHandle* handle);

// Returns the index, 0 to 255, or -1 with code 5 for a null handle.
ZLV_BASE i32 MV40_FindClosestColor(ColorMatcherHandle* handle, u8 first, u8 second, u8 third);

}  // namespace zlv
