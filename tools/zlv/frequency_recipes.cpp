// Effects on the frequencies of a gray picture.
//
// The library's transform takes sizes that are powers of two, and a grid goes on at its other side. The picture is laid
// into such a grid and each edge is continued by its mirror image, half-way to the opposite one: so edges hardly show
// as frequencies of their own.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallFrequencyFilter(const EffectCall& call);
uint32_t CallFrequencySpectrum(const EffectCall& call);

namespace {

struct FreeBlock {
    void operator()(double* block) const { ZLV40_FreeBlock(block); }
};

uint32_t SideFor(uint32_t length) { return ZLV40_NextPowerOfTwo(length - 1); }

// The picture's position that stands at a position of the grid's side.
uint32_t Continued(uint32_t position, uint32_t length, uint32_t side)
{
    if (position < length) return position;
    const uint32_t behindEnd = position - length, beforeStart = side - 1 - position, last = length - 1;
    return behindEnd < beforeStart ? last - std::min(behindEnd, last) : std::min(beforeStart, last);
}

// The frequencies of a picture. Every function returns what the library does.
class Spectrum {
public:
    explicit Spectrum(const ImageGroup& picture)
        : width_(SideFor(picture.width)), height_(SideFor(picture.height)), grid_(ZLV40_AllocFFTGrid(width_, height_))
    {
        if (!grid_) return;
        std::vector<uint8_t> samples(size_t{width_} * height_);
        for (uint32_t y = 0; y < height_; ++y) {
            const uint8_t* const row = picture.samples + size_t{Continued(y, picture.height, height_)} * picture.stride;
            for (uint32_t x = 0; x < width_; ++x) {
                samples[size_t{y} * width_ + x] = row[Continued(x, picture.width, width_)];
            }
        }
        isDone_ = ZLV40_DoFFT(samples.data(), nullptr, width_, height_, width_, grid_.get()) == 1 &&
                  ZLV40_GetLastError() == ZLV40_ERROR_NONE;
    }

    bool IsDone() const { return isDone_; }
    uint32_t Width() const { return width_; }
    uint32_t Height() const { return height_; }

    uint32_t Filter(int32_t kind, const double* params)
    {
        return ZLV40_FilterFFT(grid_.get(), width_, height_, kind, params);
    }

    // Back to a picture, from 0 to 255.
    uint32_t MakePicture(std::vector<uint8_t>& samples)
    {
        samples.resize(size_t{width_} * height_);
        return ZLV40_DoFFTInverse(width_, height_, grid_.get()) &&
               ZLV40_MakeGrayscaleFromFFT(samples.data(), nullptr, grid_.get(), width_, height_, width_, 1, 1);
    }

    // From 0 to 255.
    uint32_t MakeMagnitudes(std::vector<double>& magnitudes) const
    {
        magnitudes.resize(size_t{width_} * height_);
        return ZLV40_MakeGrayscaleFromFFT(nullptr, magnitudes.data(), grid_.get(), width_, height_, width_, 0, 1);
    }

private:
    uint32_t width_, height_;
    std::unique_ptr<double, FreeBlock> grid_;
    bool isDone_ = false;
};

// The parameters of a filter in the library's order.
std::vector<double> ParametersOf(int32_t kind, std::span<const double> values)
{
    const double radius = values[1], outerRadius = values[2], order = values[3], exponent = values[4];
    const double lowGain = values[5], gain = values[6], sharpness = values[7];
    switch (kind) {
    case ZLV40_FFT_IDEAL_BAND_PASS: return {radius, outerRadius};
    case ZLV40_FFT_POWER_LAW: return {exponent};
    case ZLV40_FFT_BUTTERWORTH_LOW_PASS:
    case ZLV40_FFT_BUTTERWORTH_HIGH_PASS: return {radius, order};
    case ZLV40_FFT_BUTTERWORTH_EMPHASIS: return {radius, order, gain};
    case ZLV40_FFT_GAUSSIAN_EMPHASIS: return {radius, lowGain, gain};
    case ZLV40_FFT_HOMOMORPHIC: return {radius, lowGain, gain, sharpness};
    default: return {radius};
    }
}

uint8_t Brightness(double magnitude, double contrast)
{
    if (std::isnan(magnitude)) return 0;  // a picture of one level has no frequencies
    const double share = magnitude / 255;
    const double bright =
        contrast > 0 ? std::log1p(contrast * contrast * share) / std::log1p(contrast * contrast) : share;
    return static_cast<uint8_t>(std::clamp(bright * 255 + 0.5, 0.0, 255.0));
}

// Where a position of the picture finds its frequency: the frequency 0 of the grid's corner goes to the middle.
uint32_t Centred(uint32_t position, uint32_t length, uint32_t side)
{
    const auto inGrid = static_cast<uint32_t>(uint64_t{position} * side / length);
    return (inGrid + side / 2) % side;
}

}  // namespace

uint32_t CallFrequencyFilter(const EffectCall& call)
{
    Spectrum spectrum(call.source);
    const auto kind = static_cast<int32_t>(call.values[0]);
    const std::vector<double> params = ParametersOf(kind, call.values);
    std::vector<uint8_t> samples;
    if (!spectrum.IsDone() || !spectrum.Filter(kind, params.data()) || !spectrum.MakePicture(samples)) return 0;
    for (uint32_t y = 0; y < call.target.height; ++y) {
        const auto row = samples.begin() + static_cast<std::ptrdiff_t>(size_t{y} * spectrum.Width());
        std::copy_n(row, call.target.width, call.target.samples + size_t{y} * call.target.stride);
    }
    return 1;
}

uint32_t CallFrequencySpectrum(const EffectCall& call)
{
    const Spectrum spectrum(call.source);
    std::vector<double> magnitudes;
    if (!spectrum.IsDone() || !spectrum.MakeMagnitudes(magnitudes)) return 0;
    const ImageGroup& target = call.target;
    for (uint32_t y = 0; y < target.height; ++y) {
        const size_t row = size_t{Centred(y, target.height, spectrum.Height())} * spectrum.Width();
        for (uint32_t x = 0; x < target.width; ++x) {
            const double magnitude = magnitudes[row + Centred(x, target.width, spectrum.Width())];
            target.samples[size_t{y} * target.stride + x] = Brightness(magnitude, call.values[0]);
        }
    }
    return 1;
}

}  // namespace zlv
