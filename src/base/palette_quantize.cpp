// A palette for a picture, and the picture mapped onto it.
#include "base/palette.h"
#include "base/palette_dither.h"
#include "base/quantizers.h"

#include <algorithm>

namespace zlv {

namespace {

// The search for the palette reports on a level of its own, and is over when the mapping begins.
bool FindPalette(MVThreadContext& context, Error& error, ImageView<const u8> source, u32 colors, u8* palette, u32 flags)
{
    BaseWork work(context, error);
    const bool isIncremental = flags & kIncrementalOctree;
    const u32 flagsOfFourBytes = isIncremental ? kFourBytePixels : kFourBytePixels | kSkipTransparent;
    source.channels = flags & flagsOfFourBytes ? 4 : 3;
    return (isIncremental ? QuantizeIncrementally : QuantizeByPopulation)(work, source, colors, palette, flags);
}

u32 Quantize(MVThreadContext& context, Error& error, const ImageView<const u8>& source,
             const ImageView<u8>& destination, u8* palette, DitherSettings settings)
{
    if (!source.data || !destination.data || !palette) {
        error = Error::BadArgument;
        return 0;
    }
    settings.colors = std::clamp(settings.colors, 1u, kLargestPalette);
    if (!FindPalette(context, error, source, settings.colors, palette, settings.flags)) return 0;
    return MapWithDiffusion(context, error, source, destination, settings);
}

}  // namespace

u32 MV40_QuantizeRGBTo8Bit(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination, u32 destStride,
                           u32 colors, u8* palette, u32 ditherKind, u8 limit, u32 flags)
{
    return InBaseCall("MV40_QuantizeRGBTo8Bit", [&](MVThreadContext& context, Error& error) {
        return Quantize(context, error, {source, width, height, 3, sourceStride},
                        {destination, width, height, 1, destStride}, palette,
                        {colors, palette, ditherKind, limit, flags});
    });
}

}  // namespace zlv
