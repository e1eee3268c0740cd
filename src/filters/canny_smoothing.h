// The first stage of the Canny edge detector: a Gaussian blur into 16 bits.
#pragma once

#include "base/image_view.h"
#include "base/row_ring.h"

namespace zlv {

// Rows come out one after the other, from the top.
class CannySmoothing {
public:
    // Whether a kernel of this sigma has numbers for its entries, and not too many.
    static bool IsPossible(f32 sigma);

    // For an image that is not empty. False when memory is out.
    [[nodiscard]] bool Make(const ImageView<const u8>& image, f32 sigma);

    // The next row, 90 times the blurred levels.
    void SmoothRow(i16* smoothed);

private:
    [[nodiscard]] bool MakeKernel(f32 sigma);
    void MakeColumnWeights();
    void AverageAlongRow(u32 y);
    f32 WeightAt(size_t position, size_t length) const;

    ImageView<const u8> image_ = {};
    size_t radius_ = 0;
    size_t reach_ = 0;  // how much of the radius a row is long enough for
    u32 nextRow_ = 0, nextAverage_ = 0;
    MVBuffer<f32> kernel_;
    MVBuffer<f32> columnWeights_;  // of the entries that lie inside at each column
    MVBuffer<f32> line_;           // a row of the image, `reach_` zeros on either side
    MVBuffer<f32> sums_;
    MVBuffer<const f32*> under_;  // what each entry is laid over
    RowRing<f32> averages_;       // rows averaged along themselves
};

}  // namespace zlv
