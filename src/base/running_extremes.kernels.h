// Kernels of the running extremes. Each stands twice in the table: for the largest and for the smallest of bytes.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// So many rows are compared at once; for more of them, going through blocks is faster (bench: MinimumFilter/rgb8).
inline constexpr u32 kMostRowsAtOnce = 5;

struct RunningExtremesKernels {
    struct Operation {
        // out[i] = the extreme of rows[0][i] to rows[rowCount - 1][i]; 1, 3 or 5 rows.
        void (*ofRows)(const u8* const* rows, size_t rowCount, size_t count, u8* out);

        // out[i] = the extreme of a[i] and b[i]. The output may be one of the inputs.
        void (*ofTwo)(const u8* a, const u8* b, size_t count, u8* out);

        // soFar[i] = the extreme of soFar[i] and next[i]; out[i] = that of it and rest[i].
        void (*join)(const u8* rest, u8* soFar, const u8* next, size_t count, u8* out);

        // out[i] = the extreme of samples[i], samples[i + step], ..., samples[i + (window - 1) * step]. Uses up the
        // samples and the work beside them, both of count + (window - 1) * step bytes.
        void (*span)(u8* samples, u8* work, size_t count, size_t window, size_t step, u8* out);
    };
    Operation largest, smallest;
};

ZLV_DECLARE_KERNELS(RunningExtremesKernels, kRunningExtremesKernels);

}  // namespace zlv
