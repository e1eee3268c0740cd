// Overlays with a transparent colour or index.
#include "base/image_view.h"
#include "base/opacity.h"
#include "base/overlay.h"
#include "base/overlay_clip.h"

#include <cmath>
#include <utility>

namespace zlv {

namespace {

// Mixes a byte of the base with one of the overlay, truncating each share.
class TruncatedShares {
public:
    explicit TruncatedShares(f64 opacity) { shares_.Set(opacity); }

    using Share = u8;
    Share Over(u8 value) const { return shares_.over.table[value]; }
    u8 Mix(u8 base, Share over) const { return u8(shares_.under.table[base] + over); }

private:
    ByteShares shares_;
};

// Truncates their sum.
class ExactShares {
public:
    explicit ExactShares(f64 opacity) : shares_(opacity) {}

    using Share = f64;
    Share Over(u8 value) const { return shares_.over[value]; }
    u8 Mix(u8 base, Share over) const { return u8(i32(over + shares_.under[base])); }

private:
    const DoubleShares shares_;
};

template <class Shares>
void MixPixel(u8* base, const typename Shares::Share (&over)[3], const Shares& shares)
{
    const u8 mixed[3] = {shares.Mix(base[0], over[0]), shares.Mix(base[1], over[1]), shares.Mix(base[2], over[2])};
    for (size_t c = 0; c < 3; ++c) base[c] = mixed[c];
}

// The colour that is not drawn.
struct KeyColor {
    u8 bytes[3];
    u32 tolerance;

    KeyColor(u32 color, u32 largestDistance, bool isSwapped)
        : bytes{u8(color), u8(color >> 8), u8(color >> 16)}, tolerance(largestDistance)
    {
        if (isSwapped) std::swap(bytes[0], bytes[2]);
    }

    bool Hides(const u8* pixel) const
    {
        u32 distance = 0;
        for (u32 c = 0; c < 3; ++c) {
            const i32 difference = pixel[c] - bytes[c];
            distance += u32(difference * difference);
        }
        return distance <= tolerance;
    }
};

template <class Shares>
u32 DrawKeyed(BaseWork& work, const OverlayScene<u8>& scene, const KeyColor& key, const Shares& shares)
{
    for (u32 row = 0; row < scene.clip.rows; ++row) {
        u8* base = scene.BaseRow(row);
        const u8* overlay = scene.OverlayRow(row);
        for (size_t i = 0; i < scene.clip.columns; ++i) {
            if (!key.Hides(overlay)) {
                MixPixel(base, {shares.Over(overlay[0]), shares.Over(overlay[1]), shares.Over(overlay[2])}, shares);
            }
            base += scene.base.channels;
            overlay += scene.overlay.channels;
        }
        if (!work.Report(row, scene.clip.rows)) return 0;
    }
    return 1;
}

constexpr u32 kNoIndex = 256;

// The palette's shares are looked up once an entry, not once a pixel.
template <class Shares>
u32 DrawIndexed(BaseWork& work, const OverlayScene<u8>& scene, const u8* palette, bool isSwapped, u32 transparentIndex,
                const Shares& shares)
{
    typename Shares::Share over[256][3];
    for (size_t i = 0; i < 256; ++i) {
        for (size_t c = 0; c < 3; ++c) over[i][c] = shares.Over(palette[i * 4 + (isSwapped ? 2 - c : c)]);
    }
    for (u32 row = 0; row < scene.clip.rows; ++row) {
        u8* base = scene.BaseRow(row);
        const u8* const overlay = scene.OverlayRow(row);
        for (size_t i = 0; i < scene.clip.columns; ++i, base += 3) {
            const u8 index = overlay[i];
            if (index != transparentIndex) MixPixel(base, over[index], shares);
        }
        if (!work.Report(row, scene.clip.rows)) return 0;
    }
    return 1;
}

// The common course: refuse, clip, and draw with the shares that the flags ask for. `hasSources` tells that nothing
// that would be read is null.
template <class Draw>
u32 OverlayWithShares(BaseWork& work, const OverlayScene<u8>& scene, bool hasSources, f64 opacity, bool isTruncated,
                      Draw draw)
{
    if (scene.clip.IsEmpty()) return 1;
    if (!hasSources || std::isnan(opacity)) return work.Fail(Error::BadArgument);
    return isTruncated ? draw(TruncatedShares(opacity)) : draw(ExactShares(opacity));
}

}  // namespace

u32 MV40_OverlayRGBTrans(u8* base, u32 baseWidth, u32 baseHeight, u32 baseStride, const u8* overlay, u32 overlayWidth,
                         u32 overlayHeight, u32 overlayStride, i32 x, i32 y, f64 opacity, u32 transparentColor,
                         u32 tolerance, u32 flags)
{
    return InBaseCall("MV40_OverlayRGBTrans", [&](MVThreadContext& context, Error& error) {
        BaseWork work(context, error);
        if (!base || base == overlay) return work.Fail(Error::BadArgument);
        const ImageView<u8> to = {base, baseWidth, baseHeight, flags & kKeyedFourByteBase ? 4u : 3u, baseStride};
        const ImageView<const u8> from = {overlay, overlayWidth, overlayHeight, flags & kKeyedFourByteOverlay ? 4u : 3u,
                                          overlayStride};
        const OverlayScene<u8> scene(to, from, x, y);
        const KeyColor key(transparentColor, tolerance, (flags & kKeyedSwapColor) != 0);
        return OverlayWithShares(work, scene, overlay, LimitOpacity(opacity), (flags & kKeyedByteShares) != 0,
                                 [&](const auto& shares) { return DrawKeyed(work, scene, key, shares); });
    });
}

u32 MV40_Overlay8BitToRGB(u8* base, u32 baseWidth, u32 baseHeight, u32 baseStride, const u8* overlay, u32 overlayWidth,
                          u32 overlayHeight, u32 overlayStride, const u8* palette, i32 x, i32 y, f64 opacity,
                          u32 transparentIndex, u32 flags)
{
    return InBaseCall("MV40_Overlay8BitToRGB", [&](MVThreadContext& context, Error& error) {
        BaseWork work(context, error);
        if (!base || !overlay || base == overlay) return work.Fail(Error::BadArgument);
        const ImageView<u8> to = {base, baseWidth, baseHeight, 3, baseStride};
        const ImageView<const u8> from = {overlay, overlayWidth, overlayHeight, 1, overlayStride};
        const OverlayScene<u8> scene(to, from, x, y);
        const u32 hidden = flags & kIndexedTransparent ? transparentIndex : kNoIndex;
        const bool isSwapped = !(flags & kIndexedSameOrder);
        return OverlayWithShares(
            work, scene, palette, LimitOpacity(opacity), (flags & kIndexedByteShares) != 0,
            [&](const auto& shares) { return DrawIndexed(work, scene, palette, isSwapped, hidden, shares); });
    });
}

}  // namespace zlv
