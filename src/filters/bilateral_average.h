// Averages whose weights fall with the distance in the image and with the difference in value: the bilateral filter's
// one formula, for whole rows.
#pragma once

#include "filters/bilateral.kernels.h"
#include "runtime/array.h"

namespace zlv {

// The weight of a distance, or of a difference. Beyond sigma all but the Gaussian are 0.
enum BilateralKind : u32 {
    kLinearWeights = 1,
    kCosineWeights = 2,
    kBoxWeights = 3,
    // Any other value is the Gaussian.
};
f64 BilateralWeight(f64 distance, f64 sigma, u32 weightKind);

// Whether sums of such weights over `visits` samples are numbers.
bool AreWeightsUsable(f64 sigma, u32 weightKind, f64 visits);

enum class WindowShape : u8 { Square, Line };

// Rows of pixels of one channel or more, which are averaged each on their own.
struct BilateralRow {
    u32 width;     // pixels
    u32 channels;  // samples a pixel

    size_t Samples() const { return size_t(width) * channels; }
    // Averages are made in whole groups.
    size_t PaddedSamples() const { return (Samples() / kBilateralGroup + 1) * kBilateralGroup; }
};

// Entries of the kernel, laid over rows of samples.
struct BilateralTaps {
    const u8* const* rows;  // rows[j] + x is what the first column lies on when the middle is at sample x
    size_t rowCount, columns;
    size_t left;        // columns before the middle
    size_t firstEntry;  // of the kernel: over the first column of rows[0]
};

class BilateralAverage {
public:
    // For windows `size` wide, an odd number not above the width. False when memory is out.
    [[nodiscard]] bool Make(const BilateralRow& row, u32 size, WindowShape shape, f64 sigma, u32 weightKind);

    // The averages around every sample of a row, rounded. All rows have room for PaddedSamples from their first one on,
    // and for Margin more on either side, where samples do not count.
    void Average(const BilateralTaps& taps, const u8* middle, u8* averages);

    static size_t Margin(const BilateralRow& row, u32 size)
    {
        return size_t(size) / 2 * row.channels + kBilateralGroup;
    }

private:
    [[nodiscard]] bool MakeSpatial(WindowShape shape, f64 sigma, u32 weightKind);
    void MakeFastTables();
    u8 ExactAverage(const BilateralTaps& taps, const u8* middle, size_t x) const;
    BilateralWindow FastWindow(const BilateralTaps& taps) const;

    BilateralRow row_ = {};
    u32 size_ = 0;
    size_t entryStride_ = 0;  // entries of the kernel from one row to the next
    size_t margin_ = 0;
    bool hasWeights_ = false, isFast_ = false;
    f64 range_[kRangeEntries];
    BilateralRange fastRange_;
    MVBuffer<f64> spatial_;
    MVBuffer<f32> fastSpatial_;
    MVBuffer<u8> inside_;  // Margin zeros, 255 for each sample of a row, zeros
    MVBuffer<u8> doubts_;
};

}  // namespace zlv
