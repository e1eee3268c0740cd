// Kernels of the harmonic and the power means. Lanes are samples side by side; sums of theirs keep their own order.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Rows of numbers can be read and written this far behind their last one.
inline constexpr size_t kOrderedSlack = 32;

// The largest window whose sum of squares is a number of 32 bits with a sign.
inline constexpr u32 kLargestSideOfSquares = 181;

// area / sum + half, for sums in 2^-32, and how far another such mean may be away from it.
struct ReciprocalMean {
    f64 area, half, band;
};

struct PowerMeanKernels {
    // out[i] = the sum over rows, from left to right, of rows[j][i + k * step] for each k from 0 to reach; the first
    // and the last one count 1 + extra times.
    void (*orderedSums)(const f64* const* rows, size_t side, size_t reach, size_t extra, size_t step, size_t count,
                        f64* out);

    // out[i] = numbers[i] / divisor.
    void (*divide)(const f64* numbers, f64 divisor, size_t count, f64* out);

    // out[i] = numbers[i] limited to 0..255, truncated.
    void (*truncate)(const f64* numbers, size_t count, u8* out);

    // out[i] = the root of sums[i] / area, truncated. Sums of squares of windows up to kLargestSideOfSquares.
    void (*quadraticMeans)(const u32* sums, f64 area, size_t count, u8* out);

    // out[i] = the mean of sums[i], truncated. isDoubtful[i] tells whether one within the band might give something
    // else.
    void (*reciprocalMeans)(const u64* sums, const ReciprocalMean& mean, size_t count, u8* out, u8* isDoubtful);
};

ZLV_DECLARE_KERNELS(PowerMeanKernels, kPowerMeanKernels);

}  // namespace zlv
