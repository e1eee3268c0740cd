#include "base/channels.h"

#include "base/channels.kernels.h"
#include "base/image_view.h"
#include "base/sample.h"

#include <type_traits>

namespace zlv {

namespace {

void GrayRow(const u8* pixels, u8* gray, size_t count, size_t channels, const u32* weights)
{
    Kernels<ChannelKernels>().grayRow8(pixels, gray, count, channels, weights);
}

void GrayRow(const u16* pixels, u16* gray, size_t count, size_t channels, const u32* weights)
{
    Kernels<ChannelKernels>().grayRow16(pixels, gray, count, channels, weights);
}

template <class T>
u32 ToGray(MVThreadContext& context, Error& error, const ImageView<const T>& image, const ImageView<T>& gray, u32 flags)
{
    constexpr u32 kRgb[] = {kRedWeight, kGreenWeight, kBlueWeight};
    constexpr u32 kBgr[] = {kBlueWeight, kGreenWeight, kRedWeight};
    BaseWork work(context, error);
    if (!image.data || !gray.data) return work.Fail(Error::BadArgument);
    if (image.channels != 3 && image.channels != 4) return work.Fail(Error::BadArgument);
    const u32* const weights = flags & kGrayFromBgr ? kBgr : kRgb;
    for (u32 y = 0; y < image.height; ++y) {
        GrayRow(image.Row(y), gray.Row(y), image.width, image.channels, weights);
        if (!work.Report(y, image.height)) return 0;
    }
    return 1;
}

template <class T>
u32 Combine(MVThreadContext& context, Error& error, const void* const* planes, u32 planeStride,
            const ImageView<T>& image)
{
    BaseWork work(context, error);
    if (!planes || !image.data || image.channels == 0) return work.Fail(Error::BadArgument);
    for (u32 y = 0; y < image.height; ++y) {
        for (u32 c = 0; c < image.channels; ++c) {
            if (!planes[c]) continue;
            const T* const from = static_cast<const T*>(planes[c]) + size_t(y) * planeStride;
            T* to = image.Row(y) + c;
            for (u32 x = 0; x < image.width; ++x, to += image.channels) *to = from[x];
        }
    }
    return 1;
}

template <class T>
u32 Split(MVThreadContext& context, Error& error, const ImageView<const T>& image, const ImageView<T>& rgb,
          const ImageView<T>& alpha)
{
    BaseWork work(context, error);
    if (!image.data || (!rgb.data && !alpha.data)) return work.Fail(Error::BadArgument);
    for (u32 y = 0; y < image.height; ++y) {
        const T* const from = image.Row(y);
        if (T* const to = rgb.data ? rgb.Row(y) : nullptr) {
            for (size_t x = 0; x < image.width; ++x) {
                for (size_t c = 0; c < 3; ++c) to[x * 3 + c] = from[x * 4 + c];
            }
        }
        if (T* const to = alpha.data ? alpha.Row(y) : nullptr) {
            for (size_t x = 0; x < image.width; ++x) to[x] = from[x * 4 + 3];
        }
    }
    return 1;
}

}  // namespace

u32 MV40_ImageToGrayScale8Bit(const void* buffer, u32 width, u32 height, u32 channels, u32 rowStride, void* gray,
                              u32 grayStride, u32 flags)
{
    return InBaseCall("MV40_ImageToGrayScale8Bit", [&](MVThreadContext& context, Error& error) {
        return WithSamples(buffer, flags, [&]<class T>(const T* data) {
            const ImageView<const T> image = {data, width, height, channels, rowStride};
            return ToGray<T>(context, error, image, {static_cast<T*>(gray), width, height, 1, grayStride}, flags);
        });
    });
}

u32 MV40_CombineImageChannels(const void* const* planes, u32 width, u32 height, u32 channels, u32 planeStride,
                              void* destination, u32 destinationStride, u32 flags)
{
    return InBaseCall("MV40_CombineImageChannels", [&](MVThreadContext& context, Error& error) {
        return WithSamples(destination, flags, [&]<class T>(T* data) {
            return Combine<T>(context, error, planes, planeStride, {data, width, height, channels, destinationStride});
        });
    });
}

u32 MV40_SplitRGBAToRGBPlusA(const void* source, u32 width, u32 height, u32 sourceStride, void* rgb, u32 rgbStride,
                             void* alpha, u32 alphaStride, u32 flags)
{
    return InBaseCall("MV40_SplitRGBAToRGBPlusA", [&](MVThreadContext& context, Error& error) {
        return WithSamples(source, flags, [&]<class T>(const T* data) {
            return Split<T>(context, error, {data, width, height, 4, sourceStride},
                            {static_cast<T*>(rgb), width, height, 3, rgbStride},
                            {static_cast<T*>(alpha), width, height, 1, alphaStride});
        });
    });
}

}  // namespace zlv
