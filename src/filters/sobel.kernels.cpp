// Gradient magnitudes in 16-bit lanes: they end at 2040.
#include "filters/sobel.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

i16 Absolute(i16 value) { return value < 0 ? i16(-value) : value; }

void Magnitudes(const SobelRows& rows, size_t step, u16* __restrict magnitudes, size_t count)
{
    const u8* const upperLeft = rows.above - step;
    const u8* const upper = rows.above;
    const u8* const upperRight = rows.above + step;
    const u8* const left = rows.middle - step;
    const u8* const right = rows.middle + step;
    const u8* const lowerLeft = rows.below - step;
    const u8* const lower = rows.below;
    const u8* const lowerRight = rows.below + step;
    for (size_t i = 0; i < count; ++i) {
        const i16 falling = i16(upperLeft[i] - lowerRight[i]), rising = i16(lowerLeft[i] - upperRight[i]);
        const i16 gx = i16(2 * (left[i] - right[i]) + falling + rising);
        const i16 gy = i16(2 * (upper[i] - lower[i]) + falling - rising);
        magnitudes[i] = u16(Absolute(gx) + Absolute(gy));
    }
}

template <size_t kStep>
void MeansOf(const u16* __restrict magnitudes, u16* __restrict means, size_t count)
{
    for (size_t x = 0; x < count; ++x) {
        const u16* const pixel = magnitudes + x * kStep;
        means[x] = u16(u16(pixel[0] + pixel[1] + pixel[2]) / 3);
    }
}

void Means(const u16* magnitudes, size_t step, u16* means, size_t count)
{
    if (step == 3) MeansOf<3>(magnitudes, means, count);
    else MeansOf<4>(magnitudes, means, count);
}

}  // namespace

extern const SobelKernels kSobelKernels;
const SobelKernels kSobelKernels = {Magnitudes, Means};

}  // namespace zlv::ZLV_TARGET
