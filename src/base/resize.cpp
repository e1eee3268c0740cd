// The entry of resizing: what all modes check, and the way to each of them.
#include "base/resize.h"

#include "base/resize_images.h"

namespace zlv {

namespace {

template <class T>
bool IsUsable(const ResizeImages<T>& images, ResizeMode mode)
{
    const auto isEmpty = [](const auto& image) { return !image.data || image.width == 0 || image.height == 0; };
    const bool mayLackChannels = mode == ResizeMode::BlockAverage || mode == ResizeMode::Bicubic;
    return !isEmpty(images.source) && !isEmpty(images.destination) && (images.Channels() > 0 || mayLackChannels);
}

// Both ratios are whole numbers, though not always the same: the averages are then of squares all the same.
template <class T>
bool DividesEvenly(const ResizeImages<T>& images)
{
    return images.source.width % images.destination.width == 0 && images.source.height % images.destination.height == 0;
}

template <class T>
u32 Resize(MVThreadContext& context, Error& error, const ResizeImages<T>& images, u32 mode)
{
    constexpr bool kIsBytes = sizeof(T) == 1;
    BaseWork work(context, error);
    if (!IsUsable(images, ResizeMode(mode))) return work.Fail(Error::BadArgument);
    switch (ResizeMode(mode)) {
    case ResizeMode::BlockAverage: return ResizeBlockAverage(work, images);
    case ResizeMode::AreaAverage:
        return kIsBytes && DividesEvenly(images) ? ResizeBlockAverage(work, images) : ResizeAreaAverage(work, images);
    case ResizeMode::Bilinear: return ResizeBilinear(work, images);
    case ResizeMode::Bicubic: return ResizeBicubic(work, images);
    case ResizeMode::Nearest: return ResizeNearest(work, images);
    default: break;
    }
    if constexpr (kIsBytes) {
        if (mode <= u32(ResizeMode::CatmullRom)) return ResizeFiltered(work, images, mode);
    }
    return work.Fail(Error::BadArgument);
}

}  // namespace

u32 MV40_ResizeImage(const void* source, u32 sourceWidth, u32 sourceHeight, u32 sourceStride, void* destination,
                     u32 destWidth, u32 destHeight, u32 destStride, u32 channels, u32 mode, u32 flags)
{
    return InBaseCall("MV40_ResizeImage", [&](MVThreadContext& context, Error& error) {
        const auto resize = [&]<class T>(T* to) {
            const ImageView<const T> from = {static_cast<const T*>(source), sourceWidth, sourceHeight, channels,
                                             sourceStride};
            return Resize<T>(context, error, {from, {to, destWidth, destHeight, channels, destStride}}, mode);
        };
        return flags & kResizeSixteenBit ? resize(static_cast<u16*>(destination))
                                         : resize(static_cast<u8*>(destination));
    });
}

}  // namespace zlv
