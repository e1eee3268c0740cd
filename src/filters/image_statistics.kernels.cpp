// Samples and their squares, added up lane by lane.
#include "filters/image_statistics.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

void AddSamples(const u8* __restrict samples, size_t count, u16* __restrict sums)
{
    for (size_t i = 0; i < count; ++i) sums[i] = u16(sums[i] + samples[i]);
}

void AddSquares(const u8* __restrict samples, size_t count, u16* __restrict sums, u32* __restrict squares)
{
    for (size_t i = 0; i < count; ++i) {
        sums[i] = u16(sums[i] + samples[i]);
        squares[i] += u32(samples[i]) * samples[i];
    }
}

}  // namespace

extern const ImageStatisticsKernels kImageStatisticsKernels;
const ImageStatisticsKernels kImageStatisticsKernels = {AddSamples, AddSquares};

}  // namespace zlv::ZLV_TARGET
