#include "base/resize_filters.h"

#include "base/resize_images.h"
#include "runtime/math.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

constexpr f64 kPi = 3.14159265358979323846;

constexpr f64 Magnitude(f64 x) { return x < 0 ? -x : x; }

// Filters of the distance's magnitude a, one by one.

f64 Triangle(f64 a) { return a < 1 ? 1 - a : 0; }

f64 Bell(f64 a)
{
    if (a < 0.5) return 0.75 - a * a;
    return a < 1.5 ? 0.5 * (a - 1.5) * (a - 1.5) : 0;
}

f64 BSpline(f64 a)
{
    if (a < 1) return a * a * a / 2 - a * a + 2.0 / 3;
    return a < 2 ? (2 - a) * (2 - a) * (2 - a) / 6 : 0;
}

f64 Hermite(f64 a) { return a < 1 ? (2 * a - 3) * a * a + 1 : 0; }

f64 Mitchell(f64 a)
{
    if (a < 1) return (7 * a * a * a - 12 * a * a + 16.0 / 3) / 6;
    return a < 2 ? (-(7.0 / 3) * a * a * a + 12 * a * a - 20 * a + 32.0 / 3) / 6 : 0;
}

f64 CatmullRom(f64 a)
{
    if (a < 1) return ((3 * a - 5) * a * a + 2) / 2;
    return a < 2 ? (((5 - a) * a - 8) * a + 4) / 2 : 0;
}

template <f64 (*kFilter)(f64)>
void WeighMagnitudes(const f64* distances, f64* weights, size_t count)
{
    for (size_t i = 0; i < count; ++i) weights[i] = kFilter(Magnitude(distances[i]));
}

// The left end is open, the right one closed: a sample halfway between two pixels belongs to one of them.
void WeighBox(const f64* distances, f64* weights, size_t count)
{
    for (size_t i = 0; i < count; ++i) weights[i] = -0.5 < distances[i] && distances[i] <= 0.5 ? 1 : 0;
}

void WeighGaussian(const f64* distances, f64* weights, size_t count)
{
    for (size_t i = 0; i < count; ++i) weights[i] = -2 * distances[i] * distances[i];
    ExpArray(weights, weights, count);
    const f64 factor = Sqrt(2 / kPi);
    for (size_t i = 0; i < count; ++i) weights[i] *= factor;
}

void WeighCosine(const f64* distances, f64* weights, size_t count, f64 mean, f64 amplitude)
{
    for (size_t i = 0; i < count; ++i) weights[i] = kPi * distances[i];
    CosArray(weights, weights, count);
    for (size_t i = 0; i < count; ++i) weights[i] = mean + amplitude * weights[i];
}

void WeighHamming(const f64* distances, f64* weights, size_t count)
{
    WeighCosine(distances, weights, count, 0.54, 0.46);
}

void WeighHanning(const f64* distances, f64* weights, size_t count)
{
    WeighCosine(distances, weights, count, 0.5, 0.5);
}

void WeighSinc(const f64* distances, f64* weights, size_t count)
{
    for (size_t i = 0; i < count; ++i) weights[i] = kPi * distances[i];
    SinArray(weights, weights, count);
    for (size_t i = 0; i < count; ++i) weights[i] = distances[i] == 0 ? 1 : weights[i] / (kPi * distances[i]);
}

void WeighLanczos3(const f64* distances, f64* weights, size_t count)
{
    constexpr size_t kTogether = 64;
    f64 near[kTogether];
    f64 wide[kTogether];
    for (size_t at = 0; at < count; at += kTogether) {
        const size_t n = std::min(count - at, kTogether);
        for (size_t i = 0; i < n; ++i) {
            near[i] = Magnitude(distances[at + i]);
            wide[i] = near[i] / 3;
        }
        WeighSinc(wide, weights + at, n);
        std::copy_n(weights + at, n, wide);
        WeighSinc(near, weights + at, n);
        for (size_t i = 0; i < n; ++i) weights[at + i] = near[i] < 3 ? weights[at + i] * wide[i] : 0;
    }
}

constexpr ResizeFilter kFilters[] = {
    {0.5, WeighBox},
    {1, WeighMagnitudes<Triangle>},
    {1, WeighHamming},
    {1.25, WeighGaussian},
    {1.5, WeighMagnitudes<Bell>},
    {2, WeighMagnitudes<BSpline>},
    {1, WeighMagnitudes<Hermite>},
    {2, WeighMagnitudes<BSpline>},
    {3, WeighLanczos3},
    {2, WeighMagnitudes<Mitchell>},
    {4, WeighSinc},
    {1, WeighMagnitudes<Hermite>},
    {1, WeighHanning},
    {2, WeighMagnitudes<CatmullRom>},
};

// The source index of a position of the window: mirrored once at the ends, and kept inside for a window that is wider
// than the source.
u32 Mirror(i64 k, i64 size)
{
    if (k < 0) k = -k;
    else if (k >= size) k = 2 * size - k - 1;
    return u32(std::clamp<i64>(k, 0, size - 1));
}

constexpr f32 kLargestTolerance = 1.0f / 64;

// How far the sum of rounded weights can be from the one in double precision. Each product is off by its weight's
// rounding and its own, and by one more for each addition that follows; all of them are at most half a unit in the last
// place, 2^-24 of a value.
f32 ToleranceOf(const ResizeContributor* taps, u64 count)
{
    f64 roundings = 0;
    for (u64 i = 0; i < count; ++i) roundings += Magnitude(taps[i].weight) * f64(count - i + 2);
    const f64 slack = 1.01;  // second-order terms, the double sum's own roundings, those of the comparison
    return f32(255 * slack * 0x1p-24 * roundings);
}

}  // namespace

const ResizeFilter& ResizeFilterOf(u32 mode) { return kFilters[mode]; }

ResizeContribTable::ResizeContribTable(const ResizeFilter& filter, u32 sourceSize, u32 destSize)
    : filter_(filter),
      sourceSize_(sourceSize),
      scale_(f64(destSize) / sourceSize),
      halfWidth_(scale_ < 1 ? filter.support / scale_ : filter.support),
      filterScale_(scale_ < 1 ? 1 / scale_ : 1),
      capacity_(u64(2 * halfWidth_ + 2))
{
}

bool ResizeContribTable::Resize(u32 count)
{
    u64 taps;
    return !__builtin_mul_overflow(capacity_, u64(count), &taps) && taps_.Resize(taps) && lists_.Resize(count) &&
           distances_.Resize(capacity_) && weighedDistances_.Resize(capacity_) && weights_.Resize(capacity_);
}

void ResizeContribTable::Build(u32 first, u32 count)
{
    lowest_ = sourceSize_ - 1;
    highest_ = 0;
    for (u32 i = 0; i < count; ++i) BuildList(first + i, taps_.GetData() + i * capacity_, lists_[i]);
}

void ResizeContribTable::BuildList(u32 index, ResizeContributor* taps, ResizeContribList& list)
{
    const f64 centre = index / scale_;
    const i64 begin = i64(Ceil(centre - halfWidth_)), end = i64(Floor(centre + halfWidth_));
    const u64 count = u64(end - begin + 1);
    for (u64 i = 0; i < count; ++i) distances_[i] = (centre - f64(begin + i64(i))) / filterScale_;
    WeighDistances(count);
    for (u64 i = 0; i < count; ++i) {
        taps[i] = {Mirror(begin + i64(i), sourceSize_), f32(weights_[i]), weights_[i]};
        lowest_ = std::min(lowest_, taps[i].sourceIndex);
        highest_ = std::max(highest_, taps[i].sourceIndex);
    }
    const f32 tolerance = ToleranceOf(taps, count);
    list = {taps, count, tolerance, !(tolerance < kLargestTolerance)};
}

// Sets the weights of the distances. When the ratio is a whole number, they are those of the list before.
void ResizeContribTable::WeighDistances(u64 count)
{
    const size_t bytes = count * sizeof(f64);
    if (count == weighedCount_ && std::memcmp(distances_.GetData(), weighedDistances_.GetData(), bytes) == 0) return;
    std::memcpy(weighedDistances_.GetData(), distances_.GetData(), bytes);
    weighedCount_ = count;

    filter_.weigh(distances_.GetData(), weights_.GetData(), count);
    f64 sum = 0;
    for (u64 i = 0; i < count; ++i) {
        weights_[i] /= filterScale_;
        sum += weights_[i];
    }
    if (sum == 0) return;  // they stay as they are
    for (u64 i = 0; i < count; ++i) weights_[i] /= sum;
}

u64 ResizeContribTable::SpanOf(u32 count) const
{
    const f64 span = (count - 1) / scale_ + 2 * halfWidth_ + 3;
    return TruncateTo(sourceSize_, span);
}

}  // namespace zlv
