#include "generators/hugo_noise.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Reals = RealsOf<f64>;
constexpr size_t kLanes = Lanes<f64>::kCount;

void AddOctave(const f64* upper, const f64* lower, f64 weight, f64 amplitude, f64* total, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        total[i] = total[i] + amplitude * ((1.0 - weight) * upper[i] + weight * lower[i]);
    }
}

// NaN counts as -1, which is 0 in the image.
u8 ToByte(f64 v)
{
    const f64 limited = !(v > -1) ? -1 : v < 1 ? v : 1;
    const i32 level = 127 - i32(limited * -128.0);
    return u8(level < 0 ? 0 : level);
}

void ToBytes(const f64* total, u8* out, size_t count)
{
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Reals v = Load<Reals>(total + i);
        v = v > -1.0 ? v : Reals{} - 1.0;
        v = (v < 1.0 ? v : Reals{} + 1.0) * -128.0;
        for (size_t k = 0; k < kLanes; ++k) {
            const i32 level = 127 - i32(v[k]);
            out[i + k] = u8(level < 0 ? 0 : level);
        }
    }
    for (; i < count; ++i) out[i] = ToByte(total[i]);
}

}  // namespace

constinit const HugoKernels kHugoKernels = {AddOctave, ToBytes};

}  // namespace zlv::ZLV_TARGET
