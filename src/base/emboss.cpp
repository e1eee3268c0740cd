#include "base/emboss.h"

#include "base/image_view.h"
#include "runtime/math.h"

#include <algorithm>
#include <cmath>

namespace zlv {

namespace {

constexpr f64 kLightLength = 255.9;
constexpr u32 kSmallestSide = 4;
constexpr i32 kNormalHeight = 1530;  // 6 * 255: what three neighbours can differ by, both ways

// Light from one direction on a surface whose steepness is given by differences of neighbours.
class Light {
public:
    Light(f64 azimuth, f64 elevation, u32 depth)
        : x_(i32(Cos(azimuth) * Cos(elevation) * kLightLength)),
          y_(i32(Sin(azimuth) * Cos(elevation) * kLightLength)),
          z_(i32(Sin(elevation) * kLightLength)),
          normalZ_(i32(u32(kNormalHeight) / depth))
    {
    }

    i32 Shade(i32 normalX, i32 normalY) const
    {
        if (normalX == 0 && normalY == 0) return z_;
        const i32 toLight = normalX * x_ + normalY * y_ + normalZ_ * z_;
        if (toLight < 0) return 0;
        return i32(toLight / Sqrt(f64(normalX * normalX + normalY * normalY + normalZ_ * normalZ_)));
    }

private:
    const i32 x_, y_, z_;
    const i32 normalZ_;
};

// Three rows of the bump map around a pixel.
struct BumpRows {
    const u8 *above, *here, *below;
};

i32 Shade(const Light& light, const BumpRows& rows, u32 left, u32 x, u32 right)
{
    const i32 leftSum = rows.above[left] + rows.here[left] + rows.below[left];
    const i32 rightSum = rows.above[right] + rows.here[right] + rows.below[right];
    const i32 aboveSum = rows.above[left] + rows.above[x] + rows.above[right];
    const i32 belowSum = rows.below[left] + rows.below[x] + rows.below[right];
    return light.Shade(leftSum - rightSum, belowSum - aboveSum);
}

// What becomes of a shade: itself, or a texture under it.
struct Surface {
    ImageView<const u8> texture;
    ImageView<const u8> mask;
    bool isBright;

    void Paint(u8* pixel, u32 x, u32 y, i32 shade) const
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

u32 Emboss(MVThreadContext& context, Error& error, const ImageView<const u8>& bumpMap, const Light& light,
           const Surface& surface, const ImageView<u8>& destination, bool isWholeImage)
{
    BaseWork work(context, error);
    const u32 lastX = bumpMap.width - 1, lastY = bumpMap.height - 1;
    const u32 margin = isWholeImage ? 0 : 1;
    for (u32 y = margin; y <= lastY - margin; ++y) {
        const BumpRows rows = {bumpMap.Row(y > 0 ? y - 1 : 0), bumpMap.Row(y), bumpMap.Row(std::min(y + 1, lastY))};
        u8* const out = destination.Row(y);
        const auto paint = [&](u32 left, u32 x, u32 right) {
            surface.Paint(out + size_t(x) * 3, x, y, Shade(light, rows, left, x, right));
        };
        if (isWholeImage) paint(0, 0, 1);
        for (u32 x = 1; x < lastX; ++x) paint(x - 1, x, x + 1);
        if (isWholeImage) paint(lastX - 1, lastX, lastX);
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
        return Emboss(context, error, {bumpMap, width, height, 1, bumpStride}, Light(azimuth, elevation, depth),
                      surface, {destination, width, height, 3, destinationStride}, (flags & kEmbossWholeImage) != 0);
    });
}

}  // namespace zlv
