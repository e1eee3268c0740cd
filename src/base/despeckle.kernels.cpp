// The passes of the despeckle filter, many lines side by side.
//
// A pass with offset o looks at a sample a and at b, the sample at o, and makes w; then at w itself, at p, the w at -o,
// and at n, the w at o. What lies outside the image is 0, for samples and for every w.
#include "base/despeckle.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

#if defined(ZLV_TARGET_avx512)

using Lanes = __m512i;
Lanes Load(const u8* from) { return _mm512_loadu_si512(from); }
void Store(Lanes a, u8* to) { _mm512_storeu_si512(to, a); }
Lanes Zero() { return _mm512_setzero_si512(); }
Lanes One() { return _mm512_set1_epi8(1); }
Lanes And(Lanes a, Lanes b) { return _mm512_and_si512(a, b); }
Lanes Min(Lanes a, Lanes b) { return _mm512_min_epu8(a, b); }
Lanes Max(Lanes a, Lanes b) { return _mm512_max_epu8(a, b); }
Lanes Next(Lanes a) { return _mm512_add_epi8(a, One()); }
// One more where b is above a, one less where it is below.
Lanes UpIfBelow(Lanes a, Lanes b) { return _mm512_mask_add_epi8(a, _mm512_cmplt_epu8_mask(a, b), a, One()); }
Lanes DownIfAbove(Lanes a, Lanes b) { return _mm512_mask_sub_epi8(a, _mm512_cmpgt_epu8_mask(a, b), a, One()); }

#elif defined(ZLV_TARGET_avx2)

using Lanes = __m256i;
Lanes Load(const u8* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
void Store(Lanes a, u8* to) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), a); }
Lanes Zero() { return _mm256_setzero_si256(); }
Lanes One() { return _mm256_set1_epi8(1); }
Lanes And(Lanes a, Lanes b) { return _mm256_and_si256(a, b); }
Lanes Min(Lanes a, Lanes b) { return _mm256_min_epu8(a, b); }
Lanes Max(Lanes a, Lanes b) { return _mm256_max_epu8(a, b); }
Lanes Next(Lanes a) { return _mm256_add_epi8(a, One()); }
// One more where b is above a, one less where it is below.
Lanes UpIfBelow(Lanes a, Lanes b) { return _mm256_add_epi8(a, Min(_mm256_subs_epu8(b, a), One())); }
Lanes DownIfAbove(Lanes a, Lanes b) { return _mm256_sub_epi8(a, Min(_mm256_subs_epu8(a, b), One())); }

#elif !defined(ZLV_PORTABLE)

using Lanes = __m128i;
Lanes Load(const u8* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
void Store(Lanes a, u8* to) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), a); }
Lanes Zero() { return _mm_setzero_si128(); }
Lanes One() { return _mm_set1_epi8(1); }
Lanes And(Lanes a, Lanes b) { return _mm_and_si128(a, b); }
Lanes Min(Lanes a, Lanes b) { return _mm_min_epu8(a, b); }
Lanes Max(Lanes a, Lanes b) { return _mm_max_epu8(a, b); }
Lanes Next(Lanes a) { return _mm_add_epi8(a, One()); }
// One more where b is above a, one less where it is below.
Lanes UpIfBelow(Lanes a, Lanes b) { return _mm_add_epi8(a, Min(_mm_subs_epu8(b, a), One())); }
Lanes DownIfAbove(Lanes a, Lanes b) { return _mm_sub_epi8(a, Min(_mm_subs_epu8(a, b), One())); }

#else

// The compiler's own vectors: it makes of them what the processor has.
using Lanes [[gnu::vector_size(16)]] = u8;
Lanes Load(const u8* from)
{
    Lanes a;
    __builtin_memcpy(&a, from, sizeof a);
    return a;
}
void Store(Lanes a, u8* to) { __builtin_memcpy(to, &a, sizeof a); }
Lanes Zero() { return Lanes{}; }
Lanes And(Lanes a, Lanes b) { return a & b; }
Lanes Min(Lanes a, Lanes b) { return a < b ? a : b; }
Lanes Max(Lanes a, Lanes b) { return a > b ? a : b; }
Lanes Next(Lanes a) { return a + 1; }
// One more where b is above a, one less where it is below. A comparison that holds is -1.
Lanes UpIfBelow(Lanes a, Lanes b) { return a - Lanes(a < b); }
Lanes DownIfAbove(Lanes a, Lanes b) { return a + Lanes(a > b); }

#endif

constexpr size_t kLanes = sizeof(Lanes);
static_assert(kLanes <= kSpeckleLanes);

struct Raise {
    static Lanes First(Lanes a, Lanes b) { return UpIfBelow(a, b); }
    static Lanes Second(Lanes w, Lanes p, Lanes n) { return UpIfBelow(w, Min(Next(p), n)); }
};

// The wrap of 255 + 1 to 0 is what it is: a sample of 255 is lowered next to another 255.
struct Lower {
    static Lanes First(Lanes a, Lanes b) { return DownIfAbove(a, Next(b)); }
    static Lanes Second(Lanes w, Lanes p, Lanes n) { return DownIfAbove(w, Max(Next(p), n)); }
};

// Rows come in one after the other. Row 0 is the one that comes in; rows before it are -1, -2, ...
// `keep(lanes, row)` makes 0 of lanes outside the image in that row.
//
// An offset to the next row: w of row -1 is known when row 0 comes in, and with it the result of row -2.
template <class Way>
struct ForwardPass {
    Lanes a, w, p;  // sample and w of the row before; w of the one before that

    void Load(const u8* states, size_t pitch)
    {
        a = ZLV_TARGET::Load(states);
        w = ZLV_TARGET::Load(states + pitch);
        p = ZLV_TARGET::Load(states + 2 * pitch);
    }
    void Store(u8* states, size_t pitch) const
    {
        ZLV_TARGET::Store(a, states);
        ZLV_TARGET::Store(w, states + pitch);
        ZLV_TARGET::Store(p, states + 2 * pitch);
    }

    template <class Keep>
    Lanes Step(Lanes in, size_t rowsBack, Keep keep)
    {
        const Lanes n = keep(Way::First(a, in), rowsBack + 1);
        const Lanes out = keep(Way::Second(w, p, n), rowsBack + 2);
        a = in;
        p = w;
        w = n;
        return out;
    }
};

// An offset to the row before: w of row 0 is known at once, and with it the result of row -1.
template <class Way>
struct BackwardPass {
    Lanes a, w, n;

    void Load(const u8* states, size_t pitch)
    {
        a = ZLV_TARGET::Load(states);
        w = ZLV_TARGET::Load(states + pitch);
        n = ZLV_TARGET::Load(states + 2 * pitch);
    }
    void Store(u8* states, size_t pitch) const
    {
        ZLV_TARGET::Store(a, states);
        ZLV_TARGET::Store(w, states + pitch);
        ZLV_TARGET::Store(n, states + 2 * pitch);
    }

    template <class Keep>
    Lanes Step(Lanes in, size_t rowsBack, Keep keep)
    {
        const Lanes p = keep(Way::First(in, a), rowsBack);
        const Lanes out = keep(Way::Second(w, p, n), rowsBack + 1);
        a = in;
        n = w;
        w = p;
        return out;
    }
};

// The passes of a direction: forward and back up, back and forward down. Each takes in what the one before it leaves.
struct Passes {
    ForwardPass<Raise> raiseForward;
    BackwardPass<Raise> raiseBackward;
    BackwardPass<Lower> lowerBackward;
    ForwardPass<Lower> lowerForward;

    void Load(const u8* states, size_t pitch)
    {
        raiseForward.Load(states, pitch);
        raiseBackward.Load(states + 3 * pitch, pitch);
        lowerBackward.Load(states + 6 * pitch, pitch);
        lowerForward.Load(states + 9 * pitch, pitch);
    }
    void Store(u8* states, size_t pitch) const
    {
        raiseForward.Store(states, pitch);
        raiseBackward.Store(states + 3 * pitch, pitch);
        lowerBackward.Store(states + 6 * pitch, pitch);
        lowerForward.Store(states + 9 * pitch, pitch);
    }

    template <class Keep>
    Lanes Step(Lanes in, Keep keep)
    {
        in = raiseForward.Step(in, 0, keep);
        in = raiseBackward.Step(in, 2, keep);
        in = lowerBackward.Step(in, 3, keep);
        return lowerForward.Step(in, 4, keep);
    }
};

// kLanes lines that begin at byte x of the band's first row. What can lie outside the image is tested for: lines of
// the edges, rows of the first and last bands.
template <bool kIsAtSide, bool kIsAtEnd>
void Strip(const SpeckleBand& band, std::ptrdiff_t x)
{
    const std::ptrdiff_t slope = band.direction * std::ptrdiff_t(band.step);
    const std::ptrdiff_t down = std::ptrdiff_t(band.pitch) + slope;
    const std::ptrdiff_t lag = kSpeckleLag;
    Passes passes;
    passes.Load(band.states + x, band.pitch);
    u8* place = band.firstRow + x;
    for (std::ptrdiff_t row = 0; row < std::ptrdiff_t(band.rowCount); ++row, place += down) {
        const auto keep = [&](Lanes lanes, size_t rowsBack) {
            const std::ptrdiff_t at = row - std::ptrdiff_t(rowsBack);
            if constexpr (kIsAtEnd) {
                if (band.first + at < 0 || band.first + at >= band.height) return Zero();
            }
            if constexpr (kIsAtSide) return And(lanes, Load(band.inside + x + at * slope));
            return lanes;
        };
        Store(passes.Step(Load(place), keep), place - lag * down);
    }
    passes.Store(band.states + x + std::ptrdiff_t(band.rowCount) * slope, band.pitch);
}

template <bool kIsAtEnd>
void Strips(const SpeckleBand& band)
{
    const std::ptrdiff_t lanes = kLanes;
    const std::ptrdiff_t width = std::ptrdiff_t(band.width), step = std::ptrdiff_t(band.step);
    // How far left and right of its first byte a line's rows lie, those of its results included.
    const std::ptrdiff_t in = (std::ptrdiff_t(band.rowCount) - 1) * step, out = std::ptrdiff_t(kSpeckleLag) * step;
    const std::ptrdiff_t left = band.direction == 0 ? 0 : band.direction > 0 ? out : in;
    const std::ptrdiff_t right = band.direction == 0 ? 0 : band.direction > 0 ? in : out;
    const auto strip = [&](std::ptrdiff_t x) {
        if (x - left >= 0 && x + lanes + right <= width) Strip<false, kIsAtEnd>(band, x);
        else Strip<true, kIsAtEnd>(band, x);
    };
    const std::ptrdiff_t count = (width + left + right + lanes - 1) / lanes;
    // A strip's states move with its lines, over those of its neighbour, which has read them by then.
    for (std::ptrdiff_t i = 0; i < count; ++i) strip((band.direction > 0 ? count - 1 - i : i) * lanes - right);
}

void PassesAcrossRows(const SpeckleBand& band)
{
    const i64 firstResult = band.first - i64(kSpeckleLag);
    const bool isInside = firstResult >= 0 && band.first + i64(band.rowCount) <= band.height;
    if (isInside) Strips<false>(band);
    else Strips<true>(band);
}

// Calls make(place) for vectors of a row; only bytes inside are stored.
template <class Make>
void ForRow(u8* row, size_t width, const u8* inside, Make make)
{
    size_t x = 0;
    for (; x + kLanes <= width; x += kLanes) Store(make(x), row + x);
    if (x < width) Store(And(make(x), Load(inside + x)), row + x);
}

template <class Way>
void PassAlongRow(u8* row, u8* work, size_t width, std::ptrdiff_t offset, const u8* inside)
{
    ForRow(work, width, inside, [&](size_t x) { return Way::First(Load(row + x), Load(row + x + offset)); });
    ForRow(row, width, inside,
           [&](size_t x) { return Way::Second(Load(work + x), Load(work + x - offset), Load(work + x + offset)); });
}

void PassesAlongRow(u8* row, u8* work, size_t width, size_t step, const u8* inside)
{
    const std::ptrdiff_t offset = std::ptrdiff_t(step);
    PassAlongRow<Raise>(row, work, width, offset, inside);
    PassAlongRow<Raise>(row, work, width, -offset, inside);
    PassAlongRow<Lower>(row, work, width, -offset, inside);
    PassAlongRow<Lower>(row, work, width, offset, inside);
}

}  // namespace

extern const DespeckleKernels kDespeckleKernels;
const DespeckleKernels kDespeckleKernels = {PassesAcrossRows, PassesAlongRow};

}  // namespace zlv::ZLV_TARGET
