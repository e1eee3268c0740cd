// The colours of palette indices.
#include "base/image_view.h"
#include "base/palette.h"

#include <cstring>

namespace zlv {

namespace {

// The three bytes of a pixel, the first one lowest, and above them a byte that nobody asked for.
template <bool kIsSameOrder>
u32 ColorOfEntry(const u8* palette, u8 index)
{
    u32 entry;
    std::memcpy(&entry, palette + size_t(index) * 4, sizeof entry);
    return kIsSameOrder ? entry : __builtin_bswap32(entry) >> 8;
}

template <bool kIsSameOrder>
void ExpandRow(const u8* indices, const u8* palette, u8* pixels, size_t count)
{
    if (count == 0) return;
    // The fourth byte falls on the pixel that comes next.
    for (; count > 1; --count, ++indices, pixels += 3) {
        const u32 color = ColorOfEntry<kIsSameOrder>(palette, *indices);
        std::memcpy(pixels, &color, sizeof color);
    }
    const u32 color = ColorOfEntry<kIsSameOrder>(palette, *indices);
    std::memcpy(pixels, &color, 3);
}

u32 Expand(MVThreadContext& context, Error& error, const ImageView<const u8>& source, const ImageView<u8>& destination,
           const u8* palette, u32 flags)
{
    BaseWork work(context, error);
    if (!source.data || !destination.data || !palette) return work.Fail(Error::BadArgument);
    const auto expandRow = flags & kSameComponentOrder ? ExpandRow<true> : ExpandRow<false>;
    for (u32 y = 0; y < source.height; ++y) {
        expandRow(source.Row(y), palette, destination.Row(y), source.width);
        if (!work.Report(y, source.height)) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_8BitToRGB(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination, u32 destStride,
                   [[maybe_unused]] u32 colors, const u8* palette, u32 flags)
{
    return InBaseCall("MV40_8BitToRGB", [&](MVThreadContext& context, Error& error) {
        return Expand(context, error, {source, width, height, 1, sourceStride},
                      {destination, width, height, 3, destStride}, palette, flags);
    });
}

}  // namespace zlv
