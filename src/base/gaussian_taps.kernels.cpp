// Weighted sums of rows. Sums stay in registers over all taps; neighbouring samples go side by side.
#include "base/gaussian_taps.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Floats = RealsOf<f32>;
constexpr size_t kLanes = Lanes<f32>::kCount;

// The sums of kVectors vectors from sample `at` on.
template <size_t kVectors>
void WeighVectors(const f32* const* rows, const f32* taps, size_t tapCount, f32* out, size_t at)
{
    Floats sums[kVectors] = {};
    for (size_t k = 0; k < tapCount; ++k) {
        const f32* const row = rows[k] + at;
        for (size_t v = 0; v < kVectors; ++v) sums[v] += Load<Floats>(row + v * kLanes) * taps[k];
    }
    for (size_t v = 0; v < kVectors; ++v) Store(out + at + v * kLanes, sums[v]);
}

// The small kernels of sigma below 1: everything but the samples stays in registers. Returns where it stopped.
template <size_t kTaps>
size_t WeighFew(const f32* const* rows, const f32* taps, f32* __restrict out, size_t count)
{
    const f32* row[kTaps];
    Floats tap[kTaps];
    for (size_t k = 0; k < kTaps; ++k) {
        row[k] = rows[k];
        tap[k] = Floats{} + taps[k];
    }
    size_t at = 0;
    for (; at + kLanes <= count; at += kLanes) {
        Floats sum = Load<Floats>(row[0] + at) * tap[0];
        for (size_t k = 1; k < kTaps; ++k) sum += Load<Floats>(row[k] + at) * tap[k];
        Store(out + at, sum);
    }
    return at;
}

size_t WeighMany(const f32* const* rows, const f32* taps, size_t tapCount, f32* out, size_t count)
{
    constexpr size_t kTogether = 4;
    size_t at = 0;
    for (; at + kTogether * kLanes <= count; at += kTogether * kLanes) {
        WeighVectors<kTogether>(rows, taps, tapCount, out, at);
    }
    for (; at + kLanes <= count; at += kLanes) WeighVectors<1>(rows, taps, tapCount, out, at);
    return at;
}

void Weigh(const f32* const* rows, const f32* taps, size_t tapCount, f32* out, size_t count)
{
    size_t at;
    switch (tapCount) {
    case 3: at = WeighFew<3>(rows, taps, out, count); break;
    case 5: at = WeighFew<5>(rows, taps, out, count); break;
    case 7: at = WeighFew<7>(rows, taps, out, count); break;
    default: at = WeighMany(rows, taps, tapCount, out, count); break;
    }
    for (; at < count; ++at) {
        f32 sum = 0;
        for (size_t k = 0; k < tapCount; ++k) sum += rows[k][at] * taps[k];
        out[at] = sum;
    }
}

template <class T>
void ToFloats(const T* __restrict from, f32* __restrict to, size_t count)
{
    for (size_t i = 0; i < count; ++i) to[i] = f32(from[i]);
}

template <class T>
void ToSamples(const f32* __restrict from, f32 rounding, T* __restrict to, size_t count)
{
    constexpr f32 kLargest = sizeof(T) == 1 ? 255 : 65535;
    for (size_t i = 0; i < count; ++i) {
        const f32 value = from[i] + rounding;
        to[i] = T(i32(value > kLargest ? kLargest : value));
    }
}

}  // namespace

extern const GaussianTapKernels kGaussianTapKernels;
const GaussianTapKernels kGaussianTapKernels = {Weigh, ToFloats<u8>, ToFloats<u16>, ToSamples<u8>, ToSamples<u16>};

}  // namespace zlv::ZLV_TARGET
