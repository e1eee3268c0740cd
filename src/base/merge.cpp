#include "base/merge.h"

#include "base/image_view.h"
#include "base/merge.kernels.h"
#include "base/overlay_clip.h"
#include "runtime/base_tables.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace zlv {

namespace {

constexpr size_t kChunkPixels = 256;

// Merges rows by a rule, on bases of three or four bytes a pixel.
class Merger {
public:
    Merger(MergeRule rule, u32 baseChannels, u32 givenAlpha)
        : row_(Kernels<MergeKernels>().rows[u32(rule)]),
          terms_{baseTables.product, givenAlpha},
          baseChannels_(baseChannels)
    {
    }

    void Merge(u8* base, const u8* overlay, size_t count) const
    {
        if (baseChannels_ == 4) row_(base, overlay, count, terms_);
        else MergeThreeBytes(base, overlay, count);
    }

private:
    // At most a chunk of pixels.
    void MergeThreeBytes(u8* base, const u8* overlay, size_t count) const
    {
        u8 pixels[kChunkPixels * 4];
        for (size_t i = 0; i < count; ++i) {
            for (size_t c = 0; c < 3; ++c) pixels[i * 4 + c] = base[i * 3 + c];
            pixels[i * 4 + 3] = 0;
        }
        row_(pixels, overlay, count, terms_);
        for (size_t i = 0; i < count; ++i) {
            for (size_t c = 0; c < 3; ++c) base[i * 3 + c] = pixels[i * 4 + c];
        }
    }

    const MergeRow row_;
    const MergeTerms terms_;
    const u32 baseChannels_;
};

// Calls merge(base, overlay, pixels) over every row, in chunks.
template <class Merge>
u32 MergeRows(BaseWork& work, const OverlayScene<u8>& scene, Merge merge)
{
    const size_t columns = scene.clip.columns;
    const size_t baseStep = scene.base.channels, overlayStep = scene.overlay.channels;
    for (u32 row = 0; row < scene.clip.rows; ++row) {
        u8* const base = scene.BaseRow(row);
        const u8* const overlay = scene.OverlayRow(row);
        const size_t chunk = StretchOf(base, columns * baseStep, overlay, columns * overlayStep, kChunkPixels);
        for (size_t i = 0; i < columns; i += chunk) {
            merge(base + i * baseStep, overlay + i * overlayStep, std::min(chunk, columns - i));
        }
        if (!work.Report(row, scene.clip.rows)) return 0;
    }
    return 1;
}

MergeRule RuleOf(MergeMode mode)
{
    switch (mode) {
    case MergeMode::ReplaceAlpha: return MergeRule::ReplaceAlpha;
    case MergeMode::LargerAlpha: return MergeRule::LargerAlpha;
    case MergeMode::AddAlpha: return MergeRule::AddAlpha;
    case MergeMode::Over: return MergeRule::Over;
    default: return MergeRule::KeepAlpha;
    }
}

// Alphas at an opacity. False when some are no integers of 32 bits.
bool MakeAlphaTable(f64 opacity, u8 (&table)[256])
{
    if (!(std::abs(255 * opacity) <= std::numeric_limits<i32>::max())) return false;
    for (i32 i = 0; i < 256; ++i) table[i] = u8(i32(i * opacity));
    return true;
}

u32 MergeAtOpacity(BaseWork& work, const OverlayScene<u8>& scene, const Merger& merger, f64 opacity)
{
    u8 alphas[256];
    if (!MakeAlphaTable(opacity, alphas)) return work.Fail(Error::BadArgument);
    return MergeRows(work, scene, [&](u8* base, const u8* overlay, size_t count) {
        u8 pixels[kChunkPixels * 4];
        std::memcpy(pixels, overlay, count * 4);
        for (size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = alphas[pixels[i * 4 + 3]];
        merger.Merge(base, pixels, count);
    });
}

u32 Merge(MVThreadContext& context, Error& error, const ImageView<u8>& base, const ImageView<const u8>& overlay, i32 x,
          i32 y, f64 opacity, MergeMode mode)
{
    BaseWork work(context, error);
    if (!base.data || !overlay.data || base.data == overlay.data) return work.Fail(Error::BadArgument);
    const OverlayScene<u8> scene(base, overlay, x, y);
    if (scene.clip.IsEmpty()) return 1;
    if (mode == MergeMode::Over && base.channels != 4) return work.Fail(Error::BadArgument);

    const Merger merger(RuleOf(mode), base.channels, 0);
    if (opacity != 1) return MergeAtOpacity(work, scene, merger, opacity);
    return MergeRows(work, scene, [&](u8* to, const u8* from, size_t count) { merger.Merge(to, from, count); });
}

// The course of a call that draws nothing.
u32 ReportRows(BaseWork& work, u32 rows)
{
    for (u32 row = 0; row < rows; ++row) {
        if (!work.Report(row, rows)) return 0;
    }
    return 1;
}

MergeRule ColorRuleOf(u32 flags, u32 channels)
{
    if (channels != 4) return MergeRule::KeepAlpha;
    if (flags & kColorOver) return MergeRule::OverKeepAlpha;
    if (flags & kColorReplace) return MergeRule::Replace;
    if (flags & kColorMaskToAlpha) return MergeRule::ReplaceAlpha;
    if (flags & kColorSetAlpha) return MergeRule::GivenAlpha;
    return flags & kColorBlendAlpha ? MergeRule::BlendAlpha : MergeRule::KeepAlpha;
}

u32 PaintColor(MVThreadContext& context, Error& error, const ImageView<u8>& base, const ImageView<const u8>& mask,
               u32 color, i32 x, i32 y, u32 flags)
{
    BaseWork work(context, error);
    if (!base.data || !mask.data) return work.Fail(Error::BadArgument);
    const OverlayScene<u8> scene(base, mask, x, y);
    if (scene.clip.IsEmpty()) return 1;
    if (base.channels != 3 && base.channels != 4) return ReportRows(work, scene.clip.rows);

    u8 bytes[4] = {u8(color), u8(color >> 8), u8(color >> 16), u8(color >> 24)};
    if (flags & kColorSwapped) std::swap(bytes[0], bytes[2]);
    const Merger merger(ColorRuleOf(flags, base.channels), base.channels, bytes[3]);
    u8 pixels[kChunkPixels * 4];
    for (size_t i = 0; i < sizeof pixels; ++i) pixels[i] = bytes[i % 4];
    return MergeRows(work, scene, [&](u8* to, const u8* from, size_t count) {
        for (size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = from[i];
        merger.Merge(to, pixels, count);
    });
}

}  // namespace

u32 MV40_MergeRGBA(u8* base, u32 baseWidth, u32 baseHeight, u32 baseChannels, u32 baseStride, const u8* overlay,
                   u32 overlayWidth, u32 overlayHeight, u32 overlayStride, i32 x, i32 y, f64 opacity, u32 mergeMode)
{
    return InBaseCall("MV40_MergeRGBA", [&](MVThreadContext& context, Error& error) {
        const u32 channels = baseChannels == 4 ? 4 : 3;
        return Merge(context, error, {base, baseWidth, baseHeight, channels, baseStride},
                     {overlay, overlayWidth, overlayHeight, 4, overlayStride}, x, y, opacity, MergeMode(mergeMode));
    });
}

u32 MV40_AlphaBlendColor(u8* base, u32 baseWidth, u32 baseHeight, u32 channels, u32 baseStride, const u8* mask,
                         u32 maskWidth, u32 maskHeight, u32 maskStride, u32 color, i32 x, i32 y, u32 flags)
{
    return InBaseCall("MV40_AlphaBlendColor", [&](MVThreadContext& context, Error& error) {
        return PaintColor(context, error, {base, baseWidth, baseHeight, channels, baseStride},
                          {mask, maskWidth, maskHeight, 1, maskStride}, color, x, y, flags);
    });
}

}  // namespace zlv
