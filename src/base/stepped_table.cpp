#include "base/stepped_table.h"

namespace zlv {

namespace {

constexpr u32 kEntries = 256;

// Where the longest stretch of this kind that begins at `first` ends.
u32 EndOfStretch(const u8* table, u32 first, u8 keep)
{
    const u8 flip = u8((first & keep) ^ table[first]);
    u32 end = first + 1;
    while (end < kEntries && u8((end & keep) ^ flip) == table[end]) ++end;
    return end;
}

}  // namespace

bool FindSteps(const u8* table, SteppedTable& steps)
{
    u32 first = 0;
    // Every part of a stretch is one as well, so the longest one is always the right choice.
    for (u32 k = 0; k < kMaxSteps; ++k) {
        if (first == kEntries) {  // fewer do: the last one again
            steps.first[k] = steps.first[k - 1];
            steps.keep[k] = steps.keep[k - 1];
            steps.flip[k] = steps.flip[k - 1];
            continue;
        }
        const u32 endOfFlipped = EndOfStretch(table, first, 255), endOfConstant = EndOfStretch(table, first, 0);
        steps.first[k] = u8(first);
        steps.keep[k] = endOfFlipped >= endOfConstant ? 255 : 0;
        steps.flip[k] = u8((first & steps.keep[k]) ^ table[first]);
        first = endOfFlipped >= endOfConstant ? endOfFlipped : endOfConstant;
    }
    return first == kEntries;
}

}  // namespace zlv
