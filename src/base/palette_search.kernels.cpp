// The nearest entry for one colour and for rows of pixels.
//
// The grid: an entry j can be nearest to a colour v of a cube only if no other entry i is nearer to all of the cube.
// How much farther j is than i, |v - j|^2 - |v - i|^2, is linear in v, so its least value over the cube is that at a
// corner: the lower end of each component where j is below i, the upper one where it is above. Where that is above 0
// (or is 0 while j has the higher index), j is out. Measured against one i alone, the entry nearest to the cube's
// middle, this leaves two candidates a cell on average for 256 random entries; they decide with their exact distances.
#include "base/palette_search.kernels.h"

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

// What an entry is to a colour: its distance in the upper 24 bits, its index in the lower 8. The least one wins.
constexpr i32 kDistanceShift = 8;

// Eight entries at a time are enough for most cells, and so 512-bit vectors would be half empty.
constexpr u32 kSearchBytes = kVectorBytes < 32 ? kVectorBytes : 32;
constexpr u32 kSearchLanes = kSearchBytes / sizeof(i32);
static_assert(kSearchLanes <= kMostSearchLanes);
using Ints [[gnu::vector_size(kSearchBytes)]] = i32;
using Words [[gnu::vector_size(kSearchBytes)]] = i16;
using FourInts [[gnu::vector_size(16)]] = i32;

#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)

Ints SumOfPairs(Words a, Words b) { return Ints(_mm256_madd_epi16(__m256i(a), __m256i(b))); }
u32 LanesAbove(Ints a, Ints b) { return u32(_mm256_movemask_ps(__m256(a > b))); }
FourInts LeastFour(Ints a)
{
    const FourInts first = __builtin_shufflevector(a, a, 0, 1, 2, 3);
    const FourInts second = __builtin_shufflevector(a, a, 4, 5, 6, 7);
    return first < second ? first : second;
}

#elif !defined(ZLV_PORTABLE)

Ints SumOfPairs(Words a, Words b) { return Ints(_mm_madd_epi16(__m128i(a), __m128i(b))); }
u32 LanesAbove(Ints a, Ints b) { return u32(_mm_movemask_ps(__m128(a > b))); }
FourInts LeastFour(Ints a) { return a; }

#else

Ints SumOfPairs(Words a, Words b)
{
    const Ints x = Ints(a), y = Ints(b);
    return (x << 16 >> 16) * (y << 16 >> 16) + (x >> 16) * (y >> 16);
}
u32 LanesAbove(Ints a, Ints b)
{
    u32 lanes = 0;
    for (u32 i = 0; i < kSearchLanes; ++i) lanes |= u32(a[i] > b[i]) << i;
    return lanes;
}
FourInts LeastFour(Ints a) { return a; }

#endif

Ints Least(Ints a, Ints b) { return a < b ? a : b; }

i32 LeastOf(Ints ints)
{
    FourInts least = LeastFour(ints);
    const FourInts halves = __builtin_shufflevector(least, least, 2, 3, 0, 1);
    least = least < halves ? least : halves;
    return least[0] < least[1] ? least[0] : least[1];
}

Ints IndexOf(Ints entries) { return (entries >> kIndexShift) & 0xFF; }

// The components as words: the first and the third share a lane, the second has one of its own.
struct Components {
    Words outer, middle;

    explicit Components(Ints entries) : outer(Words(entries & 0x00FF00FF)), middle(Words(entries >> 8 & 0xFF)) {}
    Components(Words theOuter, Words theMiddle) : outer(theOuter), middle(theMiddle) {}

    // The same colour in all lanes.
    static Components Of(u32 color) { return Components(Ints{} + i32(color)); }
};

Components operator-(const Components& a, const Components& b) { return {a.outer - b.outer, a.middle - b.middle}; }

Words AboveZero(Words a) { return a > 0 ? a : Words{}; }
Components AboveZero(const Components& a) { return {AboveZero(a.outer), AboveZero(a.middle)}; }

// The sum over the components of a times b.
Ints SumOfProducts(const Components& a, const Components& b)
{
    return SumOfPairs(a.outer, b.outer) + SumOfPairs(a.middle, b.middle);
}

Ints SquareDistance(const Components& a, const Components& b) { return SumOfProducts(a - b, a - b); }

Ints RankOf(Ints distance, Ints entries) { return distance << kDistanceShift | IndexOf(entries); }

// The index of the nearest of `count` entries, above 0.
[[gnu::always_inline]] inline u32 NearestOf(const u32* entries, u32 count, u32 color)
{
    const Components components = Components::Of(color);
    const auto rank = [&](u32 i) {
        const Ints some = Load<Ints>(entries + i);
        return RankOf(SquareDistance(Components(some), components), some);
    };
    Ints least = rank(0);
    for (u32 i = kSearchLanes; i < count; i += kSearchLanes) least = Least(least, rank(i));
    return u32(LeastOf(least)) & 0xFF;
}

u32 FindNearest(const u32* entries, u32 count, u32 color) { return NearestOf(entries, count, color); }

u32 ColorOf(const u8* pixel) { return u32(pixel[0]) | u32(pixel[1]) << 8 | u32(pixel[2]) << 16; }

u32 CellOf(u32 color) { return (color >> 3 & 31) | (color >> 6 & 31u << 5) | (color >> 9 & 31u << 10); }
u32 BlockOf(u32 color) { return (color >> 5 & 7) | (color >> 10 & 7u << 3) | (color >> 15 & 7u << 6); }

// A cube of colours: its lowest one, and what is added to a component to come to its end.
struct Cube {
    u32 corner, span;

    Cube(u32 color, u32 theSpan) : corner(color & ~(theSpan * 0x010101)), span(theSpan) {}
    u32 Middle() const { return corner + (span + 1) / 2 * 0x010101; }
};

struct EntryList {
    const u32* entries;
    u32 count;
};

// Puts down those of a list that can be nearest to a colour of the cube, and fills the last vector up. Returns how many
// there are; more than `room` may be left, and they are not put down.
u32 FindCandidates(const u32* byIndex, const EntryList& list, const Cube& cube, u32* candidates, u32 room)
{
    const u32 rival = FindNearest(list.entries, list.count, cube.Middle());
    const Components low = Components::Of(cube.corner), opponent = Components::Of(byIndex[rival] & kColorBits);
    const Components twiceSpan = Components::Of(2 * cube.span * 0x010101);
    const Ints rivalDistance = SquareDistance(opponent, low);
    // Candidates have a negative difference, or none and an index up to the rival's.
    const Ints limit = Ints{} + i32(rival + 1);

    u32 found = 0;
    for (u32 i = 0; i < list.count; i += kSearchLanes) {
        const Ints entries = Load<Ints>(list.entries + i);
        const Components components(entries);
        const Ints atLow = SquareDistance(components, low) - rivalDistance;
        const Ints least = atLow - SumOfProducts(AboveZero(components - opponent), twiceSpan);
        for (u32 lanes = LanesAbove(limit, RankOf(least, entries)); lanes != 0; lanes &= lanes - 1) {
            const u32 at = i + u32(__builtin_ctz(lanes));
            if (at >= list.count) break;
            if (found < room) candidates[found] = list.entries[at];
            ++found;
        }
    }
    for (u32 i = found; i < room && i % kMostSearchLanes != 0; ++i) candidates[i] = candidates[0];
    return found;
}

// The candidates of the block around a colour.
EntryList ListOfBlock(NearestGrid& grid, u32 color)
{
    NearestGrid::Block& block = grid.blocks[BlockOf(color)];
    if (block.count == 0) {
        block.first = grid.poolUsed;
        block.count = FindCandidates(grid.byIndex, {grid.entries, grid.count}, Cube(color, 31), grid.pool + block.first,
                                     kMostEntries);
        grid.poolUsed += (block.count + kMostSearchLanes - 1) / kMostSearchLanes * kMostSearchLanes;
    }
    return {grid.pool + block.first, block.count};
}

// The nearest entry when the cell has not been looked at, or has too many candidates.
[[gnu::noinline]] u32 NearestByBlock(NearestGrid& grid, u32 color)
{
    const EntryList list = ListOfBlock(grid, color);
    const u32 cell = CellOf(color);
    if (grid.counts[cell] == NearestGrid::kUnknown) {
        const u32 found =
            FindCandidates(grid.byIndex, list, Cube(color, 7),
                           grid.candidates + size_t(cell) * NearestGrid::kMostCandidates, NearestGrid::kMostCandidates);
        grid.counts[cell] = found <= NearestGrid::kMostCandidates ? u8(found) : NearestGrid::kTooMany;
    }
    return FindNearest(list.entries, list.count, color);
}

void MapByGrid(NearestGrid& grid, const u8* pixels, u8* indices, size_t count)
{
    for (size_t x = 0; x < count; ++x, pixels += 3) {
        const u32 color = ColorOf(pixels), cell = CellOf(color);
        const u32* const candidates = grid.candidates + size_t(cell) * NearestGrid::kMostCandidates;
        const bool hasFew = grid.counts[cell] - 1u < NearestGrid::kMostCandidates;
        indices[x] =
            u8(hasFew ? NearestOf(candidates, NearestGrid::kMostCandidates, color) : NearestByBlock(grid, color));
    }
}

void MapByEntries(const u32* entries, u32 entryCount, const u8* pixels, u8* indices, size_t count)
{
    const auto map = [=](u32 length) {
        for (size_t x = 0; x < count; ++x) indices[x] = u8(NearestOf(entries, length, ColorOf(pixels + 3 * x)));
    };
    // A short list is one of a length that the compiler knows.
    if (entryCount <= kMostSearchLanes) map(kMostSearchLanes);
    else map(entryCount);
}

}  // namespace

extern const PaletteSearchKernels kPaletteSearchKernels;
const PaletteSearchKernels kPaletteSearchKernels = {FindNearest, MapByEntries, MapByGrid};

}  // namespace zlv::ZLV_TARGET
