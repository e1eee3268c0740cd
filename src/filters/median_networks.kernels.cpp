// Medians by sorting networks, for as many windows at once as a vector has bytes.
//
// The columns of a window are sorted first, once for all windows that share them. Then the samples of equal rank stand
// side by side, and what cannot be the median any more is left out on the way: a network that is right for samples of 0
// and 1 is right for all, and there are few enough ways to fill sorted columns with those to try them all.
#include "filters/median_networks.kernels.h"

#include "base/kernel_vectors.h"

#include <algorithm>

namespace zlv::ZLV_TARGET {

namespace {

using Samples __attribute__((vector_size(kVectorBytes))) = u8;

Samples Min(Samples a, Samples b) { return a < b ? a : b; }
Samples Max(Samples a, Samples b) { return a > b ? a : b; }

void Sort(Samples& a, Samples& b)
{
    const Samples smaller = Min(a, b);
    b = Max(a, b);
    a = smaller;
}

// Which end of an order a network looks for.
struct Upwards {
    static Samples First(Samples a, Samples b) { return Min(a, b); }
    static Samples Last(Samples a, Samples b) { return Max(a, b); }
};
struct Downwards {
    static Samples First(Samples a, Samples b) { return Max(a, b); }
    static Samples Last(Samples a, Samples b) { return Min(a, b); }
};

Samples MedianOf3(Samples a, Samples b, Samples c) { return Max(Min(a, b), Min(Max(a, b), c)); }

// ---- Columns ----

void SortColumn(Samples (&s)[3])
{
    Sort(s[0], s[1]);
    Sort(s[1], s[2]);
    Sort(s[0], s[1]);
}

void SortColumn(Samples (&s)[5])
{
    Sort(s[0], s[3]);
    Sort(s[1], s[4]);
    Sort(s[0], s[2]);
    Sort(s[1], s[3]);
    Sort(s[0], s[1]);
    Sort(s[2], s[4]);
    Sort(s[1], s[2]);
    Sort(s[3], s[4]);
    Sort(s[2], s[3]);
}

// ---- Samples of equal rank, from five columns ----

struct LastTwo {
    Samples last, second;
};
struct LastThree {
    Samples last, second, third;
};
struct MiddleThree {
    Samples lower, middle, upper;
};

// The two pairs on either side of the middle, merged.
template <class Way>
struct Pairs {
    Samples first, second, third, last;

    explicit Pairs(const Samples (&s)[5])
    {
        const Samples a = Way::First(s[0], s[1]), b = Way::Last(s[0], s[1]);
        const Samples c = Way::First(s[3], s[4]), d = Way::Last(s[3], s[4]);
        const Samples inner = Way::Last(a, c), other = Way::First(b, d);
        first = Way::First(a, c);
        second = Way::First(inner, other);
        third = Way::Last(inner, other);
        last = Way::Last(b, d);
    }
};

template <class Way>
LastTwo FindLastTwo(const Samples (&s)[5])
{
    const Pairs<Way> pairs(s);
    const Samples candidate = Way::Last(pairs.third, s[2]);
    return {Way::Last(pairs.last, candidate), Way::First(pairs.last, candidate)};
}

template <class Way>
LastThree FindLastThree(const Samples (&s)[5])
{
    const Pairs<Way> pairs(s);
    const Samples candidate = Way::Last(pairs.third, s[2]);
    const Samples rest = Way::First(pairs.third, s[2]);
    return {Way::Last(pairs.last, candidate), Way::First(pairs.last, candidate), Way::Last(pairs.second, rest)};
}

MiddleThree FindMiddleThree(const Samples (&s)[5])
{
    const Pairs<Upwards> pairs(s);
    const Samples candidate = Max(pairs.first, s[2]);
    const Samples fromBelow = Min(pairs.third, candidate);
    return {Min(pairs.second, fromBelow), Max(pairs.second, fromBelow), Min(pairs.last, Max(pairs.third, candidate))};
}

// ---- Windows ----

Samples WindowMedian(const Samples (&ranks)[3][3])
{
    const auto& [low, middle, high] = ranks;
    return MedianOf3(Max(Max(low[0], low[1]), low[2]), MedianOf3(middle[0], middle[1], middle[2]),
                     Min(Min(high[0], high[1]), high[2]));
}

// Of each rank only those samples count that have neither 13 others surely below nor 13 surely above them.
Samples WindowMedian(const Samples (&ranks)[5][5])
{
    const LastTwo lowest = FindLastTwo<Upwards>(ranks[0]);
    const LastThree low = FindLastThree<Upwards>(ranks[1]);
    const MiddleThree middle = FindMiddleThree(ranks[2]);
    const LastThree high = FindLastThree<Downwards>(ranks[3]);
    const LastTwo highest = FindLastTwo<Downwards>(ranks[4]);

    // The six of the second and the fourth rank leave two, between which the median lies if it is among them,
    Samples a = Max(low.third, high.last), b = Min(low.last, high.third);
    Sort(a, b);
    a = Max(a, Min(low.second, high.second));
    b = Min(b, Max(low.second, high.second));
    // the first rank makes three of them,
    a = Max(a, lowest.second);
    Samples c = Max(b, lowest.last);
    b = Min(b, lowest.last);
    Sort(b, a);
    // which the third one confines,
    a = Min(Max(a, middle.lower), middle.upper);
    c = Min(c, middle.middle);
    Sort(b, c);
    Sort(c, a);
    // and the last one decides.
    return Max(Min(c, highest.second), Min(a, Max(b, highest.last)));
}

// A block's sorted columns stay in the first-level cache.
constexpr size_t kBlock = 1024;
static_assert(kBlock % kVectorBytes == 0 && kVectorBytes <= kMedianSlack);

template <size_t kSide>
void BlockMedians(const u8* const* rows, size_t begin, size_t step, size_t count, u8 top, u8* medians)
{
    alignas(kVectorBytes) u8 ranks[kSide][kBlock + (kSide - 1) * kMostMedianStep + kMedianSlack];
    for (size_t x = 0; x < count + (kSide - 1) * step; x += kVectorBytes) {
        Samples column[kSide];
#pragma GCC unroll 5
        for (size_t i = 0; i < kSide; ++i) column[i] = Load<Samples>(rows[i] + begin + x);
        SortColumn(column);
#pragma GCC unroll 5
        for (size_t i = 0; i < kSide; ++i) Store(ranks[i] + x, column[i]);
    }
    const Samples tops = Samples{} + top;
    for (size_t x = 0; x < count; x += kVectorBytes) {
        Samples window[kSide][kSide];
#pragma GCC unroll 5
        for (size_t i = 0; i < kSide; ++i) {
#pragma GCC unroll 5
            for (size_t k = 0; k < kSide; ++k) window[i][k] = Load<Samples>(ranks[i] + x + k * step);
        }
        const Samples found = Min(WindowMedian(window), tops);
        if (x + kVectorBytes <= count) Store(medians + begin + x, found);
        else __builtin_memcpy(medians + begin + x, &found, count - x);
    }
}

template <size_t kSide>
void Medians(const u8* const* rows, size_t step, size_t count, u8 top, u8* medians)
{
    for (size_t begin = 0; begin < count; begin += kBlock) {
        BlockMedians<kSide>(rows, begin, step, std::min(kBlock, count - begin), top, medians);
    }
}

}  // namespace

extern const MedianNetworkKernels kMedianNetworkKernels;
const MedianNetworkKernels kMedianNetworkKernels = {Medians<3>, Medians<5>};

}  // namespace zlv::ZLV_TARGET
