// Kernels of the local histogram enhancement.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// The limits of neighbouring samples repeat with the channels of a pixel: after so many blocks as there are channels.
inline constexpr size_t kLimitBlock = 16;
inline constexpr size_t kMostLimits = 8 * kLimitBlock;

// Which windows are enhanced: those with a sum and a spread in these ranges. A spread in the possible range alone
// leaves a doubt.
template <class Number>
struct LimitRows {
    Number leastSum[kMostLimits], largestSum[kMostLimits];
    Number leastSpread[kMostLimits], largestSpread[kMostLimits];
    Number leastPossible[kMostLimits], largestPossible[kMostLimits];
};

// The spread of a window: squareFactor * the sum of its squares - sumFactor * the square of its sum.
template <class Number>
struct SpreadFactors {
    Number squareFactor, sumFactor;
};

struct LocalEnhancementKernels {
    // isEnhanced[i] is 255 or 0; isDoubtful[i] is 255 where that may be wrong, otherwise 0. Limits repeat after
    // `period` samples, a multiple of kLimitBlock. Returns whether any sample is in doubt.
    // For sums and spreads of 31 bits,
    bool (*decideNarrow)(const u16* sums, const u32* squares, const SpreadFactors<i32>& factors,
                         const LimitRows<i32>& limits, size_t period, size_t count, u8* isEnhanced, u8* isDoubtful);
    // and for spreads of 63 bits.
    bool (*decide)(const u32* sums, const u32* squares, const SpreadFactors<i64>& factors, const LimitRows<i64>& limits,
                   size_t period, size_t count, u8* isEnhanced, u8* isDoubtful);

    // out[i] = chosen[i] where isChosen[i] is 255, and samples[i] where it is 0.
    void (*choose)(const u8* samples, const u8* chosen, const u8* isChosen, size_t count, u8* out);
};

ZLV_DECLARE_KERNELS(LocalEnhancementKernels, kLocalEnhancementKernels);

}  // namespace zlv
