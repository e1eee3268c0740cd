// One row of error diffusion.
//
// Each pixel waits for the error of the one before it, so what counts is how long that takes: from the error to the
// value, its cell, the index and the entry's colour, back to an error. The three components go through it side by side,
// and all that can be done ahead or later is: the value's other summands come first, and what goes down to the next
// row is summed up over three pixels and stored once.
#include "base/palette_dither.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

// The components of a pixel as words. The fourth takes part without being looked at.
#if !defined(ZLV_PORTABLE)

using Words [[gnu::vector_size(16)]] = i16;
Words LoadWords(const i16* from) { return Words(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from))); }
void StoreWords(Words words, i16* to) { _mm_storel_epi64(reinterpret_cast<__m128i*>(to), __m128i(words)); }
Words WordsOf(u32 bytes) { return Words(_mm_unpacklo_epi8(_mm_cvtsi32_si128(i32(bytes)), _mm_setzero_si128())); }
Words LoadBytes(const u32* from) { return Words(_mm_unpacklo_epi8(_mm_loadu_si32(from), _mm_setzero_si128())); }
// Limited to 0 to 255.
u32 BytesOf(Words words) { return u32(_mm_cvtsi128_si32(_mm_packus_epi16(__m128i(words), __m128i(words)))); }

#else

using Words [[gnu::vector_size(8)]] = i16;
Words LoadWords(const i16* from)
{
    Words words;
    __builtin_memcpy(&words, from, sizeof words);
    return words;
}
void StoreWords(Words words, i16* to) { __builtin_memcpy(to, &words, sizeof words); }
Words WordsOf(u32 bytes) { return Words{i16(bytes & 255), i16(bytes >> 8 & 255), i16(bytes >> 16 & 255)}; }
Words LoadBytes(const u32* from) { return WordsOf(*from); }
u32 ByteOf(i16 word) { return word < 0 ? 0 : word > 255 ? 255 : u32(word); }
// Limited to 0 to 255.
u32 BytesOf(Words words) { return ByteOf(words[0]) | ByteOf(words[1]) << 8 | ByteOf(words[2]) << 16; }

#endif

Words Least(Words a, Words b) { return a < b ? a : b; }
Words Greatest(Words a, Words b) { return a > b ? a : b; }

u32 CellOf(u32 color) { return (color >> 3 & 31) | (color >> 6 & 31u << 5) | (color >> 9 & 31u << 10); }

// The first colour of a cell decides for all that come later.
[[gnu::noinline]] void AnswerCell(DitherState& state, u32 cell, u32 color)
{
    u32& bits = state.isAnswered[cell / 32];
    const u32 bit = 1u << cell % 32;
    if (bits & bit) return;
    bits |= bit;
    state.cells[cell] = state.entries[state.findNearest(state.entries, state.entryCount, color)];
}

// What a pixel's value is made of, in sixteenths or halves, and the shift that makes it whole. `error` is the error of
// the pixel before.
struct FloydSteinberg {
    static Words Ahead(Words pixel, Words fromAbove) { return pixel * 16 + fromAbove + 8; }
    static Words Value(Words ahead, Words error) { return (ahead - error + error * 8) >> 4; }
    // What goes to the pixel below the one before, of whose neighbours these are the errors.
    static Words Below(Words before, Words own, Words behind) { return before + own * 5 + behind * 3; }
};

struct Halves {
    static Words Ahead(Words pixel, Words fromAbove) { return pixel * 2 + fromAbove; }
    static Words Value(Words ahead, Words error) { return (ahead + error) >> 1; }
    static Words Below(Words, Words own, Words) { return own; }
};

// Errors are bytes with a sign: limits above 127 let them wrap.
struct PlainLimit {
    static Words Of(Words difference, Words limit) { return Least(Greatest(difference, -limit), limit); }
};

struct WrappingLimit {
    static Words Of(Words difference, Words limit) { return PlainLimit::Of(difference, limit) << 8 >> 8; }
};

template <class Weights, class Limit>
void Dither(DitherState& state, const DitherRow& row)
{
    const Words limit = Words{} + i16(state.limit);
    const std::ptrdiff_t step = row.step;
    const u8* pixel = row.pixels;
    u8* index = row.indices;
    i16* errors = row.errors;
    Words error = {}, errorBefore = {};
    for (size_t count = row.count; count > 0; --count, pixel += 3 * step, index += step, errors += 4 * step) {
        const u32 source = u32(pixel[0]) | u32(pixel[1]) << 8 | u32(pixel[2]) << 16;
        const Words ahead = Weights::Ahead(WordsOf(source), LoadWords(errors));
        const u32 color = BytesOf(Weights::Value(ahead, error));
        const u32 cell = CellOf(color);
        if (state.cells[cell] == DitherState::kPerhapsUnknown) AnswerCell(state, cell, color);
        *index = u8(state.cells[cell] >> kIndexShift);
        const Words next = Limit::Of(WordsOf(color) - LoadBytes(state.cells + cell), limit);
        // Before the first pixel there is room for one more.
        StoreWords(Weights::Below(errorBefore, error, next), errors - 4 * step);
        errorBefore = error;
        error = next;
    }
    StoreWords(Weights::Below(errorBefore, error, Words{}), errors - 4 * step);
}

// Without errors a pixel is its own value, and need not wait for the one before.
void MapColors(DitherState& state, const DitherRow& row)
{
    const u8* pixel = row.pixels;
    u8* index = row.indices;
    for (size_t count = row.count; count > 0; --count, pixel += 3 * row.step, index += row.step) {
        const u32 color = u32(pixel[0]) | u32(pixel[1]) << 8 | u32(pixel[2]) << 16;
        const u32 cell = CellOf(color);
        if (state.cells[cell] == DitherState::kPerhapsUnknown) AnswerCell(state, cell, color);
        *index = u8(state.cells[cell] >> kIndexShift);
    }
}

void ChooseDither(DitherState& state, const DitherRow& row)
{
    if (state.limit == 0) {
        MapColors(state, row);
        return;
    }
    const bool wraps = state.limit > 127;
    if (state.isFloydSteinberg) {
        (wraps ? Dither<FloydSteinberg, WrappingLimit> : Dither<FloydSteinberg, PlainLimit>)(state, row);
    } else {
        (wraps ? Dither<Halves, WrappingLimit> : Dither<Halves, PlainLimit>)(state, row);
    }
}

}  // namespace

extern const PaletteDitherKernels kPaletteDitherKernels;
const PaletteDitherKernels kPaletteDitherKernels = {ChooseDither};

}  // namespace zlv::ZLV_TARGET
