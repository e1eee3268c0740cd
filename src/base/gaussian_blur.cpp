#include "base/gaussian_blur.h"

#include "base/gaussian_coefficients.h"
#include "base/gaussian_direct.h"
#include "base/gaussian_recursive.h"
#include "base/sample.h"

#include <cmath>
#include <limits>

namespace zlv {

namespace {

constexpr f64 kRecursiveFrom = 1.0;
constexpr f64 kSinglePrecisionFrom = 4.5;

// Empty work memory is as good as none.
template <class T>
bool IsEmpty(const BlurImages<T>& images)
{
    return images.source.width == 0 || images.source.height == 0 || images.source.channels == 0;
}

template <class T>
u32 Blur(MVThreadContext& context, Error& error, const BlurImages<T>& images, f64 sigma, u32 flags)
{
    BaseWork work(context, error);
    if (!images.source.data || !images.destination.data) return work.Fail(Error::BadArgument);
    if (images.source.channels > kMaxMaskedChannels || !std::isfinite(sigma)) return work.Fail(Error::BadArgument);
    if (sigma < kRecursiveFrom || (flags & kBlurDirectly)) {
        const bool isInPlace = images.source.data == images.destination.data;
        if (isInPlace || !DirectGaussian::IsPossible(sigma)) return work.Fail(Error::BadArgument);
        return IsEmpty(images) ? work.Fail(Error::OutOfMemory) : BlurDirectly(work, images, sigma, flags);
    }
    if (sigma > f64(std::numeric_limits<f32>::max())) return work.Fail(Error::BadArgument);
    if (IsEmpty(images)) return work.Fail(Error::OutOfMemory);
    // The precision goes by sigma as it came; the filter by what a float keeps of it.
    if (sigma >= kSinglePrecisionFrom) return BlurRecursively<f32>(work, images, f32(sigma), flags);
    return BlurRecursively<f64>(work, images, f32(sigma), flags);
}

}  // namespace

u32 MV40_GaussianBlurImage(const void* source, u32 width, u32 height, u32 channels, u32 sourceStride, void* destination,
                           u32 destinationStride, f64 sigma, u32 flags)
{
    return InBaseCall("MV40_GaussianBlurImage", [&](MVThreadContext& context, Error& error) {
        return WithSamples(source, flags, [&]<class T>(const T* data) {
            const BlurImages<T> images = {{data, width, height, channels, sourceStride},
                                          {static_cast<T*>(destination), width, height, channels, destinationStride}};
            return Blur(context, error, images, sigma, flags);
        });
    });
}

}  // namespace zlv
