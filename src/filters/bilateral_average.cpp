// Most averages are made in single precision, many at a time, and end in the same byte as those in double precision.
// The few that come too near to the border between two bytes are made again, in double precision and in the order that
// decides what the filter gives.
#include "filters/bilateral_average.h"

#include "filters/bilateral_doubt.h"
#include "runtime/math.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace zlv {

namespace {

constexpr f64 kPi = 0x1.921FB54442D18p+1;

// The sample in the middle counts as twenty.
constexpr f64 kMiddleBoost = 20.0;
constexpr f64 kRounding = 0.5;

// Lighter windows are left to double precision: their products lose digits.
constexpr f64 kLightestFastMiddle = 0x1p-600;
constexpr f64 kMostFastVisits = 0x1p+24;
constexpr f64 kLargestDoubt = 0.25;

}  // namespace

f64 BilateralWeight(f64 distance, f64 sigma, u32 weightKind)
{
    switch (weightKind) {
    case kLinearWeights: return distance <= sigma ? 1 - distance / sigma : 0;
    case kCosineWeights: return distance <= sigma ? Cos(kPi * distance / (2 * sigma)) : 0;
    case kBoxWeights: return distance <= sigma ? 1 / sigma : 0;
    default: return Exp(-(distance * distance) / (2 * sigma * sigma));
    }
}

bool AreWeightsUsable(f64 sigma, u32 weightKind, f64 visits)
{
    const f64 largest = BilateralWeight(0, sigma, weightKind);
    const f64 sum = kMiddleBoost * largest * largest * 255 * visits;
    return sigma == sigma && sum <= std::numeric_limits<f64>::max();
}

bool BilateralAverage::Make(const BilateralRow& row, u32 size, WindowShape shape, f64 sigma, u32 weightKind)
{
    row_ = row;
    size_ = size;
    margin_ = Margin(row, size);
    if (!MakeSpatial(shape, sigma, weightKind) || !doubts_.Resize(row.PaddedSamples()) ||
        !inside_.Resize(row.PaddedSamples() + 2 * margin_)) {
        return false;
    }
    std::fill_n(inside_.GetData(), inside_.GetCount(), u8(0));
    std::fill_n(inside_.GetData() + margin_, row.Samples(), u8(255));
    for (u32 d = 0; d <= kRangeMiddle; ++d) {
        range_[kRangeMiddle + d] = range_[kRangeMiddle - d] = BilateralWeight(d, sigma, weightKind);
    }
    MakeFastTables();
    return true;
}

bool BilateralAverage::MakeSpatial(WindowShape shape, f64 sigma, u32 weightKind)
{
    const size_t rows = shape == WindowShape::Square ? size_ : 1, count = rows * size_, half = size_ / 2;
    entryStride_ = shape == WindowShape::Square ? size_ : 1;
    if (!spatial_.Resize(count) || !fastSpatial_.Resize(count)) return false;
    // The same weights left and right, above and below.
    for (size_t j = 0; j <= rows / 2; ++j) {
        for (size_t i = 0; i <= half; ++i) {
            const f64 weight = BilateralWeight(Sqrt(f64(j * j + i * i)), sigma, weightKind);
            for (const size_t row : {rows / 2 - j, rows / 2 + j}) {
                spatial_[row * size_ + half - i] = spatial_[row * size_ + half + i] = weight;
            }
        }
    }
    spatial_[count / 2] *= kMiddleBoost;
    return true;
}

void BilateralAverage::MakeFastTables()
{
    const f64 largest = range_[kRangeMiddle], middle = spatial_[spatial_.GetCount() / 2];
    hasWeights_ = largest * middle > 0;
    isFast_ = largest * middle >= kLightestFastMiddle && f64(spatial_.GetCount()) <= kMostFastVisits &&
              BilateralDoubt(f64(size_), f64(size_)) < kLargestDoubt;
    if (!isFast_) return;
    for (size_t i = 0; i < kRangeEntries; ++i) fastRange_.weights[i] = ShortWeight(range_[i] / largest);
    for (size_t d = 0; d <= kRangeMiddle; ++d) {
        const u32 bits = std::bit_cast<u32>(fastRange_.weights[kRangeMiddle + d]);
        for (u32 byte = 0; byte < 3; ++byte) fastRange_.bytes[byte][d] = u8(bits >> (8 * (byte + 1)));
    }
    for (size_t i = 0; i < fastSpatial_.GetCount(); ++i) fastSpatial_[i] = FastWeight(spatial_[i] / largest);
}

BilateralWindow BilateralAverage::FastWindow(const BilateralTaps& taps) const
{
    BilateralWindow window;
    window.rows = taps.rows;
    window.rowCount = taps.rowCount;
    window.columns = taps.columns;
    window.step = row_.channels;
    window.spatial = fastSpatial_.GetData() + taps.firstEntry;
    window.spatialStride = entryStride_;
    window.range = &fastRange_;
    window.inside = inside_.GetData() + margin_ - taps.left * row_.channels;
    window.wholeStart = taps.left * row_.channels;
    window.wholeEnd = (row_.width - taps.columns + taps.left + 1) * row_.channels;
    window.doubt = f32(BilateralDoubt(f64(taps.rowCount), f64(taps.columns)));
    return window;
}

u8 BilateralAverage::ExactAverage(const BilateralTaps& taps, const u8* middle, size_t x) const
{
    // The columns that lie on samples.
    const size_t pixel = x / row_.channels;
    const size_t first = pixel < taps.left ? taps.left - pixel : 0;
    const size_t end = std::min(taps.columns, row_.width + taps.left - pixel);
    const f64* const range = range_ + kRangeMiddle + middle[x];
    f64 sum = 0, weights = 0;
    for (size_t j = 0; j < taps.rowCount; ++j) {
        const f64* const spatial = spatial_.GetData() + taps.firstEntry + j * entryStride_;
        for (size_t i = first; i < end; ++i) {
            const u8 sample = taps.rows[j][x + i * row_.channels];
            const f64 weight = range[-i32(sample)] * spatial[i];
            sum += sample * weight;
            weights += weight;
        }
    }
    return weights > 0 ? u8(sum / weights + kRounding) : middle[x];
}

void BilateralAverage::Average(const BilateralTaps& taps, const u8* middle, u8* averages)
{
    const size_t samples = row_.Samples();
    // Without a weight every sample stays what it is.
    if (!hasWeights_ || taps.rowCount == 0) {
        std::memcpy(averages, middle, samples);
        return;
    }
    if (!isFast_) {
        for (size_t x = 0; x < samples; ++x) averages[x] = ExactAverage(taps, middle, x);
        return;
    }
    Kernels<BilateralKernels>().average(FastWindow(taps), middle, samples, averages, doubts_.GetData());
    for (size_t start = 0; start < samples; start += sizeof(u64)) {
        u64 eight;
        std::memcpy(&eight, &doubts_[start], sizeof eight);
        if (eight == 0) continue;
        for (size_t x = start; x < std::min(start + sizeof eight, samples); ++x) {
            if (doubts_[x]) averages[x] = ExactAverage(taps, middle, x);
        }
    }
}

}  // namespace zlv
