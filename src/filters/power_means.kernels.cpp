// Harmonic and power means.
#include "filters/power_means.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Reals = RealsOf<f64>;

constexpr size_t kLanes = Lanes<f64>::kCount;
constexpr size_t kVectors = 4;  // side by side: an addition is done when its result is wanted
constexpr size_t kStrip = kVectors * kLanes;
static_assert(kStrip <= kOrderedSlack);

// sum + value + value + ..., rounded each time. `value` is not negative.
//
// Between two powers of 2 the sums are multiples of one unit, and each addition adds the same multiple of it. Only the
// first may differ: a value halfway between two multiples leads to an even sum, and from even ones on always as far.
f64 AddRepeatedly(f64 sum, f64 value, size_t times)
{
    constexpr u64 kExponentBits = 0x7FF0000000000000;
    while (times >= 3) {
        const f64 first = sum + value;
        const f64 second = first + value;
        sum = second + value;
        times -= 3;
        if (sum == second) return sum;
        const f64 step = sum - second;
        const f64 end = 2 * __builtin_bit_cast(f64, __builtin_bit_cast(u64, first) & kExponentBits);
        // One step less than there is room for, as a value can be more than its step.
        const f64 room = (end - sum) / step - 1;
        if (!(room >= 1)) continue;
        const size_t steps = room < f64(times) ? size_t(room) : times;
        sum += f64(steps) * step;
        times -= steps;
    }
    for (; times > 0; --times) sum += value;
    return sum;
}

struct StripSums {
    Reals sums[kVectors] = {};

    void AddMany(const f64* from, size_t times)
    {
        constexpr size_t kFew = 64;  // up to here, adding them one by one is faster
        if (times <= kFew) {
            for (size_t k = 0; k < times; ++k) Add(from);
            return;
        }
        for (size_t i = 0; i < kStrip; ++i) {
            f64& sum = reinterpret_cast<f64*>(sums)[i];
            sum = AddRepeatedly(sum, from[i], times);
        }
    }

    void Add(const f64* from)
    {
#pragma GCC unroll 4
        for (size_t v = 0; v < kVectors; ++v) sums[v] += Load<Reals>(from + v * kLanes);
    }
};

void OrderedSums(const f64* const* rows, size_t side, size_t reach, size_t extra, size_t step, size_t count, f64* out)
{
    for (size_t i = 0; i < count; i += kStrip) {
        StripSums strip;
        for (size_t j = 0; j < side; ++j) {
            const f64* const first = rows[j] + i;
            const f64* const last = first + reach * step;
            strip.AddMany(first, extra);
            for (const f64* from = first; from <= last; from += step) strip.Add(from);
            strip.AddMany(last, extra);
        }
        for (size_t v = 0; v < kVectors; ++v) Store(out + i + v * kLanes, strip.sums[v]);
    }
}

void Divide(const f64* __restrict numbers, f64 divisor, size_t count, f64* __restrict out)
{
    for (size_t i = 0; i < count; ++i) out[i] = numbers[i] / divisor;
}

u8 Truncated(f64 number)
{
    const f64 notNegative = number > 0 ? number : 0;
    return u8(i32(notNegative < 255 ? notNegative : 255));
}

void Truncate(const f64* __restrict numbers, size_t count, u8* __restrict out)
{
    for (size_t i = 0; i < count; ++i) out[i] = Truncated(numbers[i]);
}

// The mean of the squares can be truncated before its root is taken. With half a unit added to its sum, it is at least
// 0.5 / area away from any integer, which double precision resolves. Single precision resolves the roots: those of the
// numbers below a square are at least 1 / 510 away from an integer.
void QuadraticMeans(const u32* __restrict sums, f64 area, size_t count, u8* __restrict out)
{
    const f64 reciprocal = 1 / area;
    for (size_t i = 0; i < count; ++i) {
        const i32 mean = i32((i32(sums[i]) + 0.5) * reciprocal);
        out[i] = u8(i32(__builtin_sqrtf(f32(mean))));
    }
}

void ReciprocalMeans(const u64* __restrict sums, const ReciprocalMean& reciprocal, size_t count, u8* __restrict out,
                     u8* __restrict isDoubtful)
{
    constexpr f64 kRounding = 0x1p52;  // a number added to this is rounded to an integer
    const f64 scaledArea = reciprocal.area * 0x1p32, half = reciprocal.half, band = reciprocal.band;
    for (size_t i = 0; i < count; ++i) {
        const f64 mean = scaledArea / f64(i64(sums[i])) + half;
        const f64 distance = mean - ((mean + kRounding) - kRounding);
        isDoubtful[i] = (distance < band) & (distance > -band);
        out[i] = Truncated(mean);
    }
}

}  // namespace

extern const PowerMeanKernels kPowerMeanKernels;
const PowerMeanKernels kPowerMeanKernels = {OrderedSums, Divide, Truncate, QuadraticMeans, ReciprocalMeans};

}  // namespace zlv::ZLV_TARGET
