// Kernels of the gray morphology. Each stands twice in the table: for the dilation, which looks for the largest sum of
// sample and entry, and for the erosion, which looks for the smallest difference. Entries go from -255 to 255, results
// from 0 to 255.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// Rows given to `window` can be read this far behind their last sample.
inline constexpr size_t kMorphologyBlock = 256;

struct GrayMorphologyKernels {
    struct Operation {
        // Applies the entry to each sample.
        void (*apply)(u8* samples, i16 entry, size_t count);

        // out[i] = the extreme of rows[j][i + k], each with entries[j * side + k] applied to it.
        void (*window)(const u8* const* rows, const i16* entries, size_t side, size_t count, u8* out);
    };
    Operation dilation, erosion;
};

ZLV_DECLARE_KERNELS(GrayMorphologyKernels, kGrayMorphologyKernels);

}  // namespace zlv
