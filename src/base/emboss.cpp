#include "base/emboss.h"

#include "base/emboss.kernels.h"
#include "base/image_view.h"
#include "runtime/math.h"

#include <algorithm>
#include <cmath>

namespace zlv {

namespace {

constexpr f64 kLightLength = 255.9;
constexpr u32 kSmallestSide = 4;
constexpr i32 kNormalHeight = 1530;  // 6 * 255: what three neighbours can differ by, both ways

EmbossLight MakeLight(f64 azimuth, f64 elevation, u32 depth)
{
    return {i32(Cos(azimuth) * Cos(elevation) * kLightLength), i32(Sin(azimuth) * Cos(elevation) * kLightLength),
            i32(Sin(elevation) * kLightLength), i32(u32(kNormalHeight) / depth)};
}

// What becomes of shades: themselves, or a texture under them.
struct Surface {
    ImageView<const u8> texture;
    ImageView<const u8> mask;
    bool isBright;

    void Paint(u32 x, u32 y, const i16* shades, u32 count, u8* out) const
    {
        if (texture.data && !mask.data && !isBright) {
            Kernels<EmbossKernels>().paintRow(texture.Row(y) + size_t(x) * 3, shades, count, out);
            return;
        }
        for (u32 i = 0; i < count; ++i) PaintPixel(x + i, y, shades[i], out + size_t(i) * 3);
    }

private:
    void PaintPixel(u32 x, u32 y, i32 shade, u8* pixel) const
    {
        if (!texture.data) {
            pixel[0] = pixel[1] = pixel[2] = u8(shade);
            return;
        }
        const u8* const source = texture.Row(y) + size_t(x) * 3;
        const bool isLeftAlone = mask.data && mask.Row(y)[x] == 0;
        for (u32 c = 0; c < 3; ++c) {
            if (isLeftAlone) pixel[c] = source[c];
            else if (isBright) pixel[c] = u8(std::min((source[c] * shade) >> 7, 255));
            else pixel[c] = u8((source[c] * shade) >> 8);
        }
    }
};

// One pixel whose neighbours stand elsewhere.
i16 ShadeAt(const EmbossLight& light, const BumpRows& rows, u32 left, u32 x, u32 right)
{
    const u8 above[] = {rows.above[left], rows.above[x], rows.above[right]};
    const u8 here[] = {rows.here[left], rows.here[x], rows.here[right]};
    const u8 below[] = {rows.below[left], rows.below[x], rows.below[right]};
    i16 shade;
    Kernels<EmbossKernels>().shadeRow(light, {above + 1, here + 1, below + 1}, 1, &shade);
    return shade;
}

u32 Emboss(MVThreadContext& context, Error& error, const ImageView<const u8>& bumpMap, const EmbossLight& light,
           const Surface& surface, const ImageView<u8>& destination, bool isWholeImage)
{
    constexpr u32 kBlock = 256;
    BaseWork work(context, error);
    const u32 lastX = bumpMap.width - 1, lastY = bumpMap.height - 1;
    const u32 margin = isWholeImage ? 0 : 1;
    for (u32 y = margin; y <= lastY - margin; ++y) {
        const BumpRows rows = {bumpMap.Row(y > 0 ? y - 1 : 0), bumpMap.Row(y), bumpMap.Row(std::min(y + 1, lastY))};
        const auto paint = [&](u32 x, const i16* shades, u32 count) {
            surface.Paint(x, y, shades, count, destination.Row(y) + size_t(x) * 3);
        };
        const auto paintAt = [&](u32 left, u32 x, u32 right) {
            const i16 shade = ShadeAt(light, rows, left, x, right);
            paint(x, &shade, 1);
        };
        if (isWholeImage) paintAt(0, 0, 1);
        for (u32 x = 1; x < lastX; x += kBlock) {
            const u32 count = std::min(kBlock, lastX - x);
            i16 shades[kBlock];
            Kernels<EmbossKernels>().shadeRow(light, {rows.above + x, rows.here + x, rows.below + x}, count, shades);
            paint(x, shades, count);
        }
        if (isWholeImage) paintAt(lastX - 1, lastX, lastX);
        if (!work.Report(y, bumpMap.height)) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_EmbossRGB(const u8* bumpMap, u32 width, u32 height, u32 bumpStride, f64 azimuth, f64 elevation, u32 depth,
                   const u8* texture, u32 textureStride, u8* destination, u32 destinationStride, const u8* mask,
                   u32 maskStride, u32 flags)
{
    return InBaseCall("MV40_EmbossRGB", [&](MVThreadContext& context, Error& error) -> u32 {
        const bool isGood = bumpMap && destination && depth > 0 && width >= kSmallestSide && height >= kSmallestSide &&
                            std::isfinite(azimuth) && std::isfinite(elevation);
        if (!isGood) {
            error = Error::BadArgument;
            return 0;
        }
        const Surface surface = {{texture, width, height, 3, textureStride},
                                 {mask, width, height, 1, maskStride},
                                 (flags & kEmbossBrightTexture) != 0};
        return Emboss(context, error, {bumpMap, width, height, 1, bumpStride}, MakeLight(azimuth, elevation, depth),
                      surface, {destination, width, height, 3, destinationStride}, (flags & kEmbossWholeImage) != 0);
    });
}

}  // namespace zlv
