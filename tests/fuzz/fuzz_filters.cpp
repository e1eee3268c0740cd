// Blurs, convolves and despeckles images of any shape, on buffers of exactly the described size.
#include "base/convolution.h"
#include "base/despeckle.h"
#include "base/gaussian_blur.h"
#include "base/gray_morphology.h"
#include "base/sample.h"
#include "fuzz/topics.h"

#include <vector>

namespace {

using namespace zlv;
using zlvtest::Input;

enum Function : u8 { kBlur, kConvolve, kDespeckle, kDilate, kErode, kFunctions };
constexpr const char* kNames[] = {"blur", "convolution", "despeckle", "dilation", "erosion"};

struct Picture {
    u32 width, height, channels, stride, bytesPerSample;

    size_t Bytes() const
    {
        if (width == 0 || height == 0 || channels == 0) return 1;
        return (size_t(stride) * (height - 1) + size_t(width) * channels) * bytesPerSample;
    }
};

struct Filter {
    Function function;
    Picture source, destination;
    u32 flags;
    f64 sigma;  // the scale of a convolution
    u32 kernelWidth, kernelHeight;
};

// From 0.1 to 100 mostly; any number sometimes. Above some thousands the direct engine's kernel only costs time.
f64 ReadSigma(Input& input)
{
    if (input.Byte() & 1) return f64(input.Number(2) % 1000) / 10;
    const f64 sigma = input.Real();
    return sigma > 2000 ? 2000 : sigma;
}

Filter ReadFilter(Input& input)
{
    Filter filter{};
    filter.function = Function(input.Byte() % kFunctions);
    filter.flags = u32(input.Number(2));
    const u32 sampleBytes = filter.function <= kConvolve && (filter.flags & kSixteenBitSamples) ? 2 : 1;
    const u32 channels = filter.function >= kDilate ? 1 : input.Byte() % 10;
    filter.source = {u32(input.Byte() % 50), u32(input.Byte() % 30), channels, 0, sampleBytes};
    filter.source.stride = filter.source.width * channels;
    filter.destination = filter.source;
    filter.source.stride += input.Byte() % 4;
    filter.destination.stride += input.Byte() % 4;
    if (filter.function == kDespeckle) filter.destination = filter.source;
    filter.sigma = ReadSigma(input);
    filter.kernelWidth = input.Byte() % 12;
    filter.kernelHeight = filter.function >= kDilate ? filter.kernelWidth : input.Byte() % 12;
    return filter;
}

u32 Run(const Filter& f, const u8* source, u8* destination, const std::vector<f64>& kernel)
{
    const Picture &s = f.source, &d = f.destination;
    switch (f.function) {
    case kBlur:
        return MV40_GaussianBlurImage(source, s.width, s.height, s.channels, s.stride, destination, d.stride, f.sigma,
                                      f.flags);
    case kConvolve:
        return MV40_ApplyConvolutionFilterToImage(source, s.width, s.height, s.channels, s.stride, destination,
                                                  d.stride, f.kernelWidth, f.kernelHeight, kernel.data(), f.sigma,
                                                  f.flags);
    case kDespeckle: return MV40_DespeckleImage(destination, d.width, d.height, d.channels, d.stride, i32(f.flags));
    default: {
        std::vector<u32> element(kernel.size());
        for (size_t i = 0; i < element.size(); ++i) element[i] = u32(i32(kernel[i] * 100));
        return (f.function == kDilate ? MV40_MorphoDilationGray : MV40_MorphoErosionGray)(
            source, s.width, s.height, s.stride, element.data(), i32(f.kernelWidth), destination, d.stride);
    }
    }
}

bool IsPadding(const Picture& picture, size_t byte)
{
    return picture.stride != 0 && byte / picture.bytesPerSample % picture.stride >= picture.width * picture.channels;
}

}  // namespace

void zlvtest::FuzzFilters(Input& input)
{
    const Filter filter = ReadFilter(input);
    std::vector<f64> kernel(size_t(filter.kernelWidth) * filter.kernelHeight + 1);
    const bool isWild = input.Byte() % 4 == 0 && filter.function == kConvolve;
    for (f64& entry : kernel) entry = isWild ? input.Real() : (input.Byte() - 128) / 64.0;
    const auto source = zlvtest::Buffer(filter.source.Bytes(), input);
    const auto destination = zlvtest::Buffer(filter.destination.Bytes(), input);
    const std::vector<u8> before(destination.get(), destination.get() + filter.destination.Bytes());

    const u32 result = Run(filter, source.get(), destination.get(), kernel);
    zlvtest::RequireResult(input, kNames[filter.function], result, MV40_GetLastError());
    for (size_t i = 0; i < before.size(); ++i) {
        zlvtest::Require((result == 1 && !IsPadding(filter.destination, i)) || destination[i] == before[i]);
    }
}
