#include "base/overlay.h"

#include "base/image_view.h"
#include "base/opacity.kernels.h"
#include "base/overlay_clip.h"
#include "base/overlay_modes.kernels.h"
#include "base/sample.h"
#include "runtime/clamp.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace zlv {

namespace {

constexpr size_t kChunkSamples = 2048;  // two of them stay in the first-level cache

// Opacity and parameter of a call, as given.
struct Blend {
    OverlayMode mode;
    f64 opacity;
    f64 parameter;
    bool isFlipped;

    bool IsReplacing() const { return mode == OverlayMode::Replace || mode == OverlayMode::ReplaceExactly; }
    bool IsSelecting() const { return mode == OverlayMode::ReplaceAbove || mode == OverlayMode::ReplaceBelow; }
    bool HasParameter() const
    {
        return IsSelecting() || mode == OverlayMode::ScaledMultiply || mode == OverlayMode::AddWithBias ||
               mode == OverlayMode::SubtractWithBias;
    }
    bool HasNumbers() const { return !std::isnan(opacity) && !(HasParameter() && std::isnan(parameter)); }
};

f64 LimitParameter(f64 parameter, f64 limit)
{
    const f64 lowest = -limit;
    return ClampDouble(parameter, &lowest, &limit);
}

i32 Truncated(f64 parameter) { return i32(LimitParameter(parameter, std::numeric_limits<i32>::max())); }

// A bias beyond twice the range makes every result one that is limited, or one of which the low bits are kept: a
// small bias that is the same to both keeps the sums short.
template <class T>
i32 ShortBias(i32 bias)
{
    constexpr i32 kRange = kLevels<T>;
    const i32 lowBits = bias & (kRange - 1);
    if (bias > 2 * kRange) return 2 * kRange + lowBits;
    return bias < -2 * kRange ? -3 * kRange + lowBits : bias;
}

template <class T>
OverlayTerms MakeTerms(const Blend& blend)
{
    OverlayTerms terms = {};
    if (!blend.HasParameter()) return terms;
    // A factor of 2^40 takes every product of samples above 0 to the top already.
    terms.factor = LimitParameter(blend.parameter, 0x1p40);
    const i32 threshold = Truncated(blend.parameter);
    terms.bias = ShortBias<T>(threshold);
    terms.lowest = blend.opacity < 1 ? 0 : -i32(8 * kLevels<T>);
    const bool isAbove = blend.mode == OverlayMode::ReplaceAbove;
    terms.first = isAbove ? u32(std::clamp<i64>(i64(threshold) + 1, 0, kLevels<T>)) : 0;
    terms.end = isAbove ? kLevels<T> : u32(std::clamp<i64>(threshold, 0, kLevels<T>));
    return terms;
}

// Mixes rows at less than full opacity, adding two truncated shares, or exactly.
class ByteMixer {
public:
    explicit ByteMixer(f64 opacity) : kernels_(Kernels<OpacityKernels>()), opacity_(opacity)
    {
        if (opacity < 1) shares_.Set(opacity);
    }
    void Mix(u8* base, const u8* overlay, size_t count) const { kernels_.mixBytes(base, overlay, count, shares_); }
    void MixExactly(u8* base, const u8* overlay, size_t count) const
    {
        kernels_.mixBytesExactly(base, overlay, count, opacity_);
    }

private:
    const OpacityKernels& kernels_;
    const f64 opacity_;
    ByteShares shares_;
};

class WordMixer {
public:
    explicit WordMixer(f64 opacity) : kernels_(Kernels<OpacityKernels>()), opacity_(opacity) {}
    void Mix(u16* base, const u16* overlay, size_t count) const { kernels_.mixWords(base, overlay, count, opacity_); }
    void MixExactly(u16* base, const u16* overlay, size_t count) const
    {
        kernels_.mixWordsExactly(base, overlay, count, opacity_);
    }

private:
    const OpacityKernels& kernels_;
    const f64 opacity_;
};

static_assert(sizeof OverlayRows<u8>::byMode == kOverlayModes * sizeof(OverlayRow<u8>));

const OverlayRows<u8>& RowsOf(const OverlayKernels& kernels, const u8*) { return kernels.bytes; }
const OverlayRows<u16>& RowsOf(const OverlayKernels& kernels, const u16*) { return kernels.words; }

// How a stretch of samples is done, chosen once a call.
template <class T>
class Blender {
public:
    explicit Blender(const Blend& blend)
        : rows_(RowsOf(Kernels<OverlayKernels>(), static_cast<const T*>(nullptr))),
          formula_(rows_.byMode[u32(blend.mode)]),
          terms_(MakeTerms<T>(blend)),
          mixer_(blend.opacity)
    {
        const bool isFull = blend.opacity == 1;
        if (blend.opacity == 0) way_ = &Blender::Keep;
        else if (blend.mode == OverlayMode::ReplaceExactly) way_ = &Blender::MixExactly;
        else if (blend.IsReplacing()) way_ = &Blender::Mix;
        else if (blend.IsSelecting()) way_ = isFull ? &Blender::Select : &Blender::SelectMixed;
        else way_ = isFull ? &Blender::Formula : &Blender::MixFormula;
    }

    void Do(T* base, const T* overlay, size_t count) const
    {
        const size_t chunk = StretchOf(base, count * sizeof(T), overlay, count * sizeof(T), kChunkSamples);
        for (size_t i = 0; i < count; i += chunk) (this->*way_)(base + i, overlay + i, std::min(chunk, count - i));
    }

private:
    void Keep(T*, const T*, size_t) const {}

    void Mix(T* base, const T* overlay, size_t count) const { mixer_.Mix(base, overlay, count); }

    void MixExactly(T* base, const T* overlay, size_t count) const { mixer_.MixExactly(base, overlay, count); }

    void Formula(T* base, const T* overlay, size_t count) const { formula_(base, overlay, count, terms_); }

    void MixFormula(T* base, const T* overlay, size_t count) const
    {
        T results[kChunkSamples];
        std::copy_n(base, count, results);
        formula_(results, overlay, count, terms_);
        mixer_.Mix(base, results, count);
    }

    void Select(T* base, const T* overlay, size_t count) const { rows_.select(base, overlay, overlay, count, terms_); }

    void SelectMixed(T* base, const T* overlay, size_t count) const
    {
        T mixed[kChunkSamples];
        std::copy_n(base, count, mixed);
        mixer_.Mix(mixed, overlay, count);
        rows_.select(base, mixed, overlay, count, terms_);
    }

    using Way = void (Blender::*)(T*, const T*, size_t) const;
    using Mixer = std::conditional_t<sizeof(T) == 1, ByteMixer, WordMixer>;

    const OverlayRows<T>& rows_;
    const OverlayRow<T> formula_;
    const OverlayTerms terms_;
    const Mixer mixer_;
    Way way_;
};

template <class T>
u32 CopyRows(BaseWork& work, const OverlayScene<T>& scene, bool isFlipped)
{
    for (u32 row = 0; row < scene.clip.rows; ++row) {
        const T* const from = isFlipped ? scene.FlippedOverlayRow(row) : scene.OverlayRow(row);
        std::memmove(scene.BaseRow(row), from, scene.SamplesPerRow() * sizeof(T));
        if (!work.Report(row, scene.clip.rows)) return 0;
    }
    return 1;
}

template <class T>
u32 BlendRows(BaseWork& work, const OverlayScene<T>& scene, const Blend& blend)
{
    const Blender<T> blender(blend);
    if (!work.MayReport() && scene.IsContiguous()) {
        blender.Do(scene.BaseRow(0), scene.OverlayRow(0), scene.SamplesPerRow() * scene.clip.rows);
        return 1;
    }
    for (u32 row = 0; row < scene.clip.rows; ++row) {
        blender.Do(scene.BaseRow(row), scene.OverlayRow(row), scene.SamplesPerRow());
        if (!work.Report(row, scene.clip.rows)) return 0;
    }
    return 1;
}

template <class T>
u32 OverlayImage(MVThreadContext& context, Error& error, const ImageView<T>& base, const ImageView<const T>& overlay,
                 i32 x, i32 y, const Blend& blend)
{
    BaseWork work(context, error);
    if (!base.data || !overlay.data || base.data == overlay.data) return work.Fail(Error::BadArgument);
    const OverlayScene<T> scene(base, overlay, x, y);
    if (scene.clip.IsEmpty()) return 1;
    if (u32(blend.mode) >= kOverlayModes || !blend.HasNumbers()) return work.Fail(Error::BadArgument);

    if (blend.IsReplacing() && blend.opacity == 1) return CopyRows(work, scene, blend.isFlipped);
    if (blend.IsReplacing() && blend.opacity == 0) return 1;
    return BlendRows(work, scene, blend);
}

}  // namespace

u32 MV40_OverlayImage(void* base, u32 baseWidth, u32 baseHeight, u32 channels, u32 baseStride, const void* overlay,
                      u32 overlayWidth, u32 overlayHeight, u32 overlayStride, i32 x, i32 y, f64 opacity, f64 parameter,
                      u32 mode, u32 flags)
{
    const Blend blend = {OverlayMode(mode), LimitOpacity(opacity), parameter, (flags & kOverlayFlipped) != 0};
    return InBaseCall("MV40_OverlayImage", [&](MVThreadContext& context, Error& error) {
        const u32 widthFlag = flags & kOverlaySixteenBit ? kSixteenBitSamples : 0;
        return WithSamples(base, widthFlag, [&]<class T>(T* data) {
            const ImageView<const T> from = {static_cast<const T*>(overlay), overlayWidth, overlayHeight, channels,
                                             overlayStride};
            return OverlayImage<T>(context, error, {data, baseWidth, baseHeight, channels, baseStride}, from, x, y,
                                   blend);
        });
    });
}

}  // namespace zlv
