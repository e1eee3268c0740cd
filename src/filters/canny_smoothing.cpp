// Where the kernel reaches out of the image, what lies inside is scaled up to the whole weight. Kernel, sums and
// quotients are floats; the order of the sums is that of the entries.
#include "filters/canny_smoothing.h"

#include "base/gaussian_taps.kernels.h"
#include "base/inside_entries.h"
#include "filters/canny.kernels.h"
#include "runtime/math.h"

#include <algorithm>

namespace zlv {

namespace {

// Results show that these are not e and 2 pi.
constexpr f64 kShortE = 2.71828;
constexpr f64 kShortTwoPi = 6.2831853;
constexpr f64 kSigmasASide = 2.5;

// More entries than this take longer than anybody waits.
constexpr f64 kLargestRadius = 1 << 23;

}  // namespace

bool CannySmoothing::IsPossible(f32 sigma)
{
    return sigma > 0 && sigma * sigma > 0 && Ceil(kSigmasASide * f64(sigma)) <= kLargestRadius;
}

bool CannySmoothing::Make(const ImageView<const u8>& image, f32 sigma)
{
    image_ = image;
    if (!MakeKernel(sigma)) return false;
    const u64 width = image.width, height = image.height, entries = 2 * u64(radius_) + 1;
    reach_ = std::min<size_t>(radius_, width - 1);
    if (!columnWeights_.Resize(width) || !sums_.Resize(width) || !line_.Resize(width + 2 * reach_) ||
        !under_.Resize(std::max<u64>(2 * reach_ + 1, std::min(entries, height))) ||
        !averages_.Resize(std::min(entries, height), width)) {
        return false;
    }
    std::fill_n(line_.GetData(), line_.GetCount(), 0.0f);
    MakeColumnWeights();
    return true;
}

bool CannySmoothing::MakeKernel(f32 sigma)
{
    radius_ = size_t(Ceil(kSigmasASide * f64(sigma)));
    const size_t count = 2 * radius_ + 1;
    if (!kernel_.Resize(count)) return false;
    const f32 variance = sigma * sigma;
    f32 sum = 0;
    for (size_t at = 0; at < count; ++at) {
        const f64 i = f64(at) - f64(radius_);
        kernel_[at] = f32(Pow(kShortE, -0.5 * i * i / f64(variance)) / (f64(sigma) * Sqrt(kShortTwoPi)));
        sum += kernel_[at];
    }
    for (size_t at = 0; at < count; ++at) kernel_[at] /= sum;
    return true;
}

void CannySmoothing::MakeColumnWeights()
{
    const size_t width = image_.width;
    const size_t border = std::min(radius_, width), inside = width - border;
    if (border < inside) {
        std::fill(columnWeights_.GetData() + border, columnWeights_.GetData() + inside, WeightAt(radius_, 3 * radius_));
    }
    for (size_t x = 0; x < width; ++x) {
        if (x < border || x >= inside) columnWeights_[x] = WeightAt(x, width);
    }
}

f32 CannySmoothing::WeightAt(size_t position, size_t length) const
{
    const InsideEntries inside(position, length, radius_);
    f32 weight = 0;
    for (size_t k = 0; k < inside.count; ++k) weight += kernel_[inside.first + k];
    return weight;
}

// The zeros beside the row add nothing to a sum: all its columns are alike.
void CannySmoothing::AverageAlongRow(u32 y)
{
    const GaussianTapKernels& taps = Kernels<GaussianTapKernels>();
    taps.toFloats8(image_.Row(y), line_.GetData() + reach_, image_.width);
    const size_t count = 2 * reach_ + 1;
    for (size_t k = 0; k < count; ++k) under_[k] = line_.GetData() + k;
    taps.weigh(under_.GetData(), kernel_.GetData() + radius_ - reach_, count, sums_.GetData(), image_.width);
    Kernels<CannyKernels>().divide(sums_.GetData(), columnWeights_.GetData(), averages_.Row(y), image_.width);
}

void CannySmoothing::SmoothRow(i16* smoothed)
{
    const InsideEntries inside(nextRow_, image_.height, radius_);
    for (; nextAverage_ < inside.start + inside.count; ++nextAverage_) AverageAlongRow(nextAverage_);
    for (size_t k = 0; k < inside.count; ++k) under_[k] = averages_.Row(inside.start + k);
    Kernels<GaussianTapKernels>().weigh(under_.GetData(), kernel_.GetData() + inside.first, inside.count,
                                        sums_.GetData(), image_.width);
    Kernels<CannyKernels>().divideAndBoost(sums_.GetData(), WeightAt(nextRow_, image_.height), smoothed, image_.width);
    ++nextRow_;
}

}  // namespace zlv
