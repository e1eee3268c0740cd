// Pictures for the tests of the Gaussian blur, through the library and through its plain twin.
#pragma once

#include "base/gaussian_blur.h"
#include "base/sample.h"
#include "plain/plain_gaussian_blur.h"
#include "runtime/math.h"
#include "support/base_layer.h"
#include "support/bytes.h"

#include <cstring>

namespace zlv {

inline constexpr PlainBlurMath kBlurMath = {Exp, Sin, Cos, Pow};

struct BlurShape {
    u32 width, height, channels;
    u32 sourcePadding = 0, destinationPadding = 0;

    u32 SourceStride() const { return width * channels + sourcePadding; }
    u32 DestinationStride() const { return width * channels + destinationPadding; }
    PlainBlurSize Size() const { return {width, height, channels}; }
};

// What is in the pictures: noise everywhere, or flat areas with a few steps and black parts between.
enum class BlurContent { Noise, Shapes };

template <class T>
std::vector<T> Picture(const BlurShape& shape, BlurContent content, u64 seed)
{
    zlvtest::Random random(seed);
    std::vector<T> samples(size_t(shape.SourceStride()) * shape.height);
    T level = T(kTop<T>);
    for (T& sample : samples) {
        if (content == BlurContent::Noise) {
            sample = T(random.Next() >> 7);
            continue;
        }
        if (random.Below(40) == 0) level = random.Below(3) ? T(0) : T(random.Next() >> 7);
        sample = level;
    }
    return samples;
}

template <class T>
std::vector<T> Fill(const BlurShape& shape, u8 fill)
{
    std::vector<T> samples(size_t(shape.DestinationStride()) * shape.height);
    std::memset(samples.data(), fill, samples.size() * sizeof(T));
    return samples;
}

template <class T>
u32 Blur(const BlurShape& shape, const std::vector<T>& source, std::vector<T>& destination, f64 sigma, u32 flags)
{
    return MV40_GaussianBlurImage(source.data(), shape.width, shape.height, shape.channels, shape.SourceStride(),
                                  destination.data(), shape.DestinationStride(), sigma, flags | zlvtest::kWidthFlag<T>);
}

// The twin; report number `cancelAt` is answered by 0.
template <class T>
std::vector<zlvtest::Report> BlurPlainly(const BlurShape& shape, const std::vector<T>& source,
                                         std::vector<T>& destination, f64 sigma, u32 flags, size_t cancelAt = 0)
{
    std::vector<zlvtest::Report> reports;
    PlainBlur<T>({source.data(), shape.SourceStride()}, shape.Size(), {destination.data(), shape.DestinationStride()},
                 sigma, flags, kBlurMath, [&](u32 current, u32 total) {
                     reports.push_back({current, total});
                     return reports.size() != cancelAt;
                 });
    return reports;
}

}  // namespace zlv
