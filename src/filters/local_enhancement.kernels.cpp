// Decisions about windows by the sums of their samples and of their squares: integers, compared with limits.
#include "filters/local_enhancement.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

// Vectors of as many numbers as a vector of Number has.
template <class Number>
struct LimitLanes;
template <>
struct LimitLanes<i32> {
    using Wrapping = u32;
    static constexpr size_t kCount = kVectorBytes / sizeof(i32);
    using Numbers __attribute__((vector_size(kVectorBytes))) = i32;
    using WrappingNumbers __attribute__((vector_size(kVectorBytes))) = u32;
    using Sums __attribute__((vector_size(kCount * sizeof(u16)))) = u16;
    using Squares __attribute__((vector_size(kCount * sizeof(u32)))) = u32;
    using Flags __attribute__((vector_size(kCount))) = i8;
};
template <>
struct LimitLanes<i64> {
    using Wrapping = u64;
    static constexpr size_t kCount = kVectorBytes / sizeof(i64);
    using Numbers __attribute__((vector_size(kVectorBytes))) = i64;
    using WrappingNumbers __attribute__((vector_size(kVectorBytes))) = u64;
    using Sums __attribute__((vector_size(kCount * sizeof(u32)))) = u32;
    using Squares __attribute__((vector_size(kCount * sizeof(u32)))) = u32;
    using Flags __attribute__((vector_size(kCount))) = i8;
};

// Products may wrap: their difference is right all the same.
template <class Number, class Sum>
u8 Decide(const Sum* __restrict sums, const u32* __restrict squares, const SpreadFactors<Number>& factors,
          const LimitRows<Number>& limits, size_t first, size_t count, u8* __restrict isEnhanced,
          u8* __restrict isDoubtful)
{
    using Wrapping = typename LimitLanes<Number>::Wrapping;
    const Wrapping squareFactor = Wrapping(factors.squareFactor), sumFactor = Wrapping(factors.sumFactor);
    u8 anyDoubtful = 0;
    for (size_t i = 0; i < count; ++i) {
        const size_t at = first + i;
        const Wrapping sum = sums[i];
        const Number spread = Number(squareFactor * squares[i] - sumFactor * (sum * sum));
        const bool hasSum = (Number(sum) >= limits.leastSum[at]) & (Number(sum) <= limits.largestSum[at]);
        const bool isSure = (spread >= limits.leastSpread[at]) & (spread <= limits.largestSpread[at]);
        const bool isPossible = (spread >= limits.leastPossible[at]) & (spread <= limits.largestPossible[at]);
        isEnhanced[i] = (hasSum & isSure) ? 255 : 0;
        isDoubtful[i] = (hasSum & isPossible & !isSure) ? 255 : 0;
        anyDoubtful |= isDoubtful[i];
    }
    return anyDoubtful;
}

// The same for a block, in vectors of numbers: compilers make none of a mixture of widths.
template <class Number, class Sum>
u8 DecideBlock(const Sum* sums, const u32* squares, const SpreadFactors<Number>& factors,
               const LimitRows<Number>& limits, size_t first, u8* isEnhanced, u8* isDoubtful)
{
    using Lanes = LimitLanes<Number>;
    using Wrapping = typename Lanes::Wrapping;
    using Numbers = typename Lanes::Numbers;
    using WrappingNumbers = typename Lanes::WrappingNumbers;
    using Flags = typename Lanes::Flags;
    constexpr size_t kLanes = Lanes::kCount;
    static_assert(kLimitBlock % kLanes == 0);
    const Wrapping squareFactor = Wrapping(factors.squareFactor), sumFactor = Wrapping(factors.sumFactor);
    u8 anyDoubtful = 0;
    for (size_t i = 0; i < kLimitBlock; i += kLanes) {
        const size_t at = first + i;
        const WrappingNumbers sum = __builtin_convertvector(Load<typename Lanes::Sums>(sums + i), WrappingNumbers);
        const WrappingNumbers square =
            __builtin_convertvector(Load<typename Lanes::Squares>(squares + i), WrappingNumbers);
        const Numbers spread = Numbers(square * squareFactor - sum * sum * sumFactor);
        const Numbers hasSum = (Numbers(sum) >= Load<Numbers>(limits.leastSum + at)) &
                               (Numbers(sum) <= Load<Numbers>(limits.largestSum + at));
        const Numbers isSure =
            (spread >= Load<Numbers>(limits.leastSpread + at)) & (spread <= Load<Numbers>(limits.largestSpread + at));
        const Numbers isPossible = (spread >= Load<Numbers>(limits.leastPossible + at)) &
                                   (spread <= Load<Numbers>(limits.largestPossible + at));
        const Flags doubts = __builtin_convertvector(hasSum & isPossible & ~isSure, Flags);
        Store(isEnhanced + i, __builtin_convertvector(hasSum & isSure, Flags));
        Store(isDoubtful + i, doubts);
    }
    for (size_t i = 0; i < kLimitBlock; ++i) anyDoubtful |= isDoubtful[i];
    return anyDoubtful;
}

template <class Number, class Sum>
bool DecideAll(const Sum* sums, const u32* squares, const SpreadFactors<Number>& factors,
               const LimitRows<Number>& limits, size_t period, size_t count, u8* isEnhanced, u8* isDoubtful)
{
    size_t i = 0, first = 0;
    u8 anyDoubtful = 0;
    for (; i + kLimitBlock <= count; i += kLimitBlock) {
        anyDoubtful |= DecideBlock(sums + i, squares + i, factors, limits, first, isEnhanced + i, isDoubtful + i);
        first += kLimitBlock;
        if (first == period) first = 0;
    }
    anyDoubtful |= Decide(sums + i, squares + i, factors, limits, first, count - i, isEnhanced + i, isDoubtful + i);
    return anyDoubtful != 0;
}

void Choose(const u8* __restrict samples, const u8* __restrict chosen, const u8* __restrict isChosen, size_t count,
            u8* __restrict out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8((chosen[i] & isChosen[i]) | (samples[i] & ~isChosen[i]));
}

}  // namespace

extern const LocalEnhancementKernels kLocalEnhancementKernels;
const LocalEnhancementKernels kLocalEnhancementKernels = {DecideAll<i32, u16>, DecideAll<i64, u32>, Choose};

}  // namespace zlv::ZLV_TARGET
