// Medians over column histograms, in constant time.
//
// Source: S. Perreault and P. Hebert, "Median filtering in constant time", IEEE Transactions on Image Processing 16
// (2007). The fine tier of a window is brought up to date only for the bin in which the median lies. While the median
// stays in a bin, both tiers stay in registers.
#include "filters/median_columns.kernels.h"

#include "base/kernel_vectors.h"
#include "filters/kernel_negative_lanes.h"

#include <algorithm>

namespace zlv::ZLV_TARGET {

namespace {

// Counts side by side, in vectors of the processor's own width: compilers take wider ones apart through memory. Two
// halves where one vector does not hold them, and no arrays: those go through memory too.
template <class Count, size_t kLanes>
struct Counts {
    using Half = Counts<Count, kLanes / 2>;
    Half lower, upper;

    static Counts Of(const u16* stored) { return {Half::Of(stored), Half::Of(stored + kLanes / 2)}; }

    void StoreTo(Count* counts) const
    {
        lower.StoreTo(counts);
        upper.StoreTo(counts + kLanes / 2);
    }

    // Calls change(vector, the vector of the other counts in these lanes) for each vector.
    template <class Change>
    void ChangeBy(const Counts& other, Change change)
    {
        lower.ChangeBy(other.lower, change);
        upper.ChangeBy(other.upper, change);
    }
};

template <class Count, size_t kLanes>
requires(kLanes * sizeof(Count) <= kVectorBytes) struct Counts<Count, kLanes> {
    using Vector __attribute__((vector_size(kLanes * sizeof(Count)))) = Count;
    using Stored __attribute__((vector_size(kLanes * sizeof(u16)))) = u16;
    Vector vector;

    static Counts Of(const u16* stored)
    {
        Stored counts;
        __builtin_memcpy(&counts, stored, sizeof counts);
        return {__builtin_convertvector(counts, Vector)};
    }

    // As a vector of any alignment: compilers turn a copy of its bytes into smaller ones, which later loads wait for.
    void StoreTo(Count* counts) const
    {
        using Anywhere __attribute__((vector_size(kLanes * sizeof(Count)), aligned(1), may_alias)) = Count;
        *reinterpret_cast<Anywhere*>(counts) = vector;
    }

    template <class Change>
    void ChangeBy(const Counts& other, Change change)
    {
        change(vector, other.vector);
    }
};

template <class Count>
using Tier = Counts<Count, kMedianBins>;

template <class Count>
void Add(Tier<Count>& sum, const Tier<Count>& counts)
{
    sum.ChangeBy(counts, [](auto& a, const auto& b) { a += b; });
}

template <class Count>
void Subtract(Tier<Count>& sum, const Tier<Count>& counts)
{
    sum.ChangeBy(counts, [](auto& a, const auto& b) { a -= b; });
}

template <class Count>
void AddTimes(Tier<Count>& sum, const Tier<Count>& counts, Count times)
{
    sum.ChangeBy(counts, [=](auto& a, const auto& b) { a += b * times; });
}

template <class Count>
void AddToAll(Tier<Count>& sum, Count number)
{
    sum.ChangeBy(sum, [=](auto& a, const auto&) { a += number; });
}

// ---- Columns ----

// What a sample adds to a tier: row v has a 1 in every lane above v.
struct alignas(64) TierTable {
    u16 rows[kMedianBins][kMedianBins];
};

constexpr TierTable MakeTierTable()
{
    TierTable table = {};
    for (size_t v = 0; v < kMedianBins; ++v) {
        for (size_t lane = 0; lane < kMedianBins; ++lane) table.rows[v][lane] = lane > v;
    }
    return table;
}

constexpr TierTable kTierTable = MakeTierTable();

constexpr size_t Upper(u32 sample) { return sample >> 4; }
constexpr size_t Lower(u32 sample) { return sample & 15; }

using ColumnTier = Tier<u16>;

ColumnTier OneMore(size_t value) { return ColumnTier::Of(kTierTable.rows[value]); }

void AddRow(const MedianColumns& columns, const u8* samples, size_t step, u32 times)
{
    const auto add = [=](u16* counts, size_t value) {
        ColumnTier tier = ColumnTier::Of(counts);
        AddTimes(tier, OneMore(value), u16(times));
        tier.StoreTo(counts);
    };
    const size_t lanes = columns.Lanes();
    for (size_t i = 0; i < lanes; i += kMedianBins, samples += step) {
        const u32 sample = *samples;
        add(columns.coarse + i, Upper(sample));
        add(columns.fine + Upper(sample) * lanes + i, Lower(sample));
    }
}

void MoveRow(const MedianColumns& columns, const u8* leaving, const u8* entering, size_t step)
{
    const auto move = [](u16* from, const ColumnTier& less, u16* to, const ColumnTier& more) {
        ColumnTier tier = ColumnTier::Of(from);
        Subtract(tier, less);
        tier.StoreTo(from);
        tier = ColumnTier::Of(to);
        Add(tier, more);
        tier.StoreTo(to);
    };
    const size_t lanes = columns.Lanes();
    u16* const coarse = columns.coarse;
    u16* const fine = columns.fine;
    for (size_t i = 0; i < lanes; i += kMedianBins, leaving += step, entering += step) {
        const u32 out = *leaving, in = *entering;
        move(coarse + i, OneMore(Upper(out)), coarse + i, OneMore(Upper(in)));
        move(fine + Upper(out) * lanes + i, OneMore(Lower(out)), fine + Upper(in) * lanes + i, OneMore(Lower(in)));
    }
}

// ---- Windows ----

// One bit for each negative count. They are the first ones: cumulative counts do not fall.
template <class Count, size_t kLanes>
u32 NegativeCounts(const Counts<Count, kLanes>& counts)
{
    if constexpr (requires { counts.vector; }) return NegativeLanes(counts.vector);
    else return NegativeCounts(counts.lower) | NegativeCounts(counts.upper) << (kLanes / 2);
}

// By the first lane that is not among them: the instruction for the last bit waits for its old result.
u32 LastLane(u32 lanes) { return u32(__builtin_ctz(~lanes)) - 1; }

template <class Count>
class Window {
public:
    // At the first window of the run.
    Window(const MedianColumns& columns, const MedianRun& run)
        : coarseColumns_(columns.coarse),
          fineColumns_(columns.fine),
          lanes_(columns.Lanes()),
          last_(i64(columns.count) - 1),
          left_(run.left),
          side_(run.side)
    {
        std::fill_n(places_, kMedianBins, kNever);
        coarse_ = SumOf(coarseColumns_, 0);
        // Less the rank of the median, less 1: negative where a count does not exceed the rank.
        AddToAll(coarse_, Count(-(side_ * side_ - 1) / 2 - 1));
        SetBin(NegativeCounts(coarse_));
        fine_ = SumOf(columnsOfBin_, 0);
    }

    u8 Median() const
    {
        alignas(kVectorBytes) Count before[kMedianBins];
        coarse_.StoreTo(before);
        Tier<Count> counts = fine_;
        AddToAll(counts, before[bin_]);
        return u8(bin_ * kMedianBins + LastLane(NegativeCounts(counts)));
    }

    // To window i from the one before it.
    template <bool kIsInside>
    void MoveTo(i64 i)
    {
        Move<kIsInside>(coarse_, coarseColumns_, i);
        const u32 lanes = NegativeCounts(coarse_);
        if (lanes != coarseLanes_) ChangeBin(lanes, i);
        else Move<kIsInside>(fine_, columnsOfBin_, i);
    }

    // Between these, a window and the one before it touch no column beyond the ends.
    i64 FirstInside() const { return std::max<i64>(1, 1 - left_); }
    i64 EndInside() const { return last_ - side_ - left_ + 2; }

private:
    static constexpr i64 kNever = -(i64(1) << 40);

    void SetBin(u32 coarseLanes)
    {
        coarseLanes_ = coarseLanes;
        bin_ = LastLane(coarseLanes);
        columnsOfBin_ = fineColumns_ + bin_ * lanes_;
    }

    static Tier<Count> ColumnAt(const u16* columns, i64 x) { return Tier<Count>::Of(columns + x * i64(kMedianBins)); }

    // Of window i.
    Tier<Count> SumOf(const u16* columns, i64 i) const
    {
        const i64 begin = left_ + i, end = begin + side_ - 1;
        const i64 first = std::max<i64>(begin, 0), last = std::min(end, last_);
        Tier<Count> sum = {};
        AddTimes(sum, ColumnAt(columns, first), Count(first - begin));
        AddTimes(sum, ColumnAt(columns, last), Count(end - last));
        for (i64 x = first; x <= last; ++x) Add(sum, ColumnAt(columns, x));
        return sum;
    }

    template <bool kIsInside>
    void Move(Tier<Count>& sum, const u16* columns, i64 i) const
    {
        i64 leaving = left_ + i - 1, entering = left_ + i + side_ - 1;
        if constexpr (!kIsInside) {
            leaving = std::max<i64>(leaving, 0);
            entering = std::min(entering, last_);
        }
        Add(sum, ColumnAt(columns, entering));
        Subtract(sum, ColumnAt(columns, leaving));
    }

    // The bin left behind keeps its counts: later windows may go on from them.
    void ChangeBin(u32 lanes, i64 i)
    {
        kept_[bin_] = fine_;
        places_[bin_] = i - 1;
        SetBin(lanes);
        const i64 place = places_[bin_];
        if (2 * (i - place) > std::min(side_, last_ + 1)) {
            fine_ = SumOf(columnsOfBin_, i);
            return;
        }
        fine_ = kept_[bin_];
        for (i64 k = place + 1; k <= i; ++k) Move<false>(fine_, columnsOfBin_, k);
    }

    const u16* const coarseColumns_;
    const u16* const fineColumns_;
    const size_t lanes_;
    const i64 last_;
    const i64 left_;
    const i64 side_;
    u32 coarseLanes_;
    u32 bin_;  // in which the median lies
    const u16* columnsOfBin_;
    Tier<Count> coarse_;
    Tier<Count> fine_;               // of bin_
    Tier<Count> kept_[kMedianBins];  // of the others, at the windows of places_
    i64 places_[kMedianBins];
};

template <class Count>
void Medians(const MedianColumns& columns, const MedianRun& run)
{
    Window<Count> window(columns, run);
    u8* const medians = run.medians;
    const i64 count = i64(run.count);
    const i64 firstInside = std::min(window.FirstInside(), count);
    const i64 endInside = std::clamp(window.EndInside(), firstInside, count);
    const auto step = [&]<bool kIsInside>(i64 i) {
        window.template MoveTo<kIsInside>(i);
        medians[i] = window.Median();
    };
    medians[0] = window.Median();
    for (i64 i = 1; i < firstInside; ++i) step.template operator()<false>(i);
    for (i64 i = firstInside; i < endInside; ++i) step.template operator()<true>(i);
    for (i64 i = endInside; i < count; ++i) step.template operator()<false>(i);
}

}  // namespace

extern const MedianColumnKernels kMedianColumnKernels;
const MedianColumnKernels kMedianColumnKernels = {AddRow, MoveRow, Medians<u16>, Medians<u32>};

}  // namespace zlv::ZLV_TARGET
