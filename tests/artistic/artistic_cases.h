// The artistic effects as rows of a table, every mode of them, with their plain twins.
#pragma once

#include "plain/plain_cells.h"
#include "plain/plain_reflection.h"
#include "plain/plain_sketches.h"
#include "plain/plain_stipple.h"
#include "runtime/math.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace zlvtest {

using zlv::f64;
using zlv::i32;
using zlv::u32;
using zlv::u8;

struct ArtisticShape {
    u32 width, height;
    u32 padding = 0;  // of both images; an effect on packed images has none
};

// One call: an image, and the one that is made from it or changed in place.
struct ArtisticCall {
    const u8* source;
    u8* destination;
    u32 width, height, stride;

    PlainRgbCall Plain() const { return {source, width, height, stride, destination, stride}; }
    PlainResizeImage<u8> InPlace() const { return {destination, width, height, stride}; }
};

struct ArtisticEffect {
    std::string name;
    u32 channels;
    bool isPacked;  // knows no strides
    std::function<u32(const ArtisticCall&)> apply;
    std::function<PlainOutcome(const ArtisticCall&, const PlainReport&)> plain;

    u32 Stride(const ArtisticShape& shape) const { return shape.width * channels + (isPacked ? 0 : shape.padding); }
    // The last row has no padding behind it.
    std::size_t Bytes(const ArtisticShape& shape) const
    {
        return std::size_t(shape.height - 1) * Stride(shape) + shape.width * channels;
    }
};

inline ArtisticEffect Halftone(u32 cellSize, i32 smooth)
{
    return {Join("halftone", cellSize, smooth), 3, false,
            [=](const ArtisticCall& c) {
                return ZLV40_HalftoneImage(c.destination, c.width, c.height, 3, c.stride, cellSize, smooth);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainHalftone(c.InPlace(), cellSize, smooth != 0, report);
            }};
}

inline ArtisticEffect Mosaic(u32 channels, u32 cellSize)
{
    return {Join("mosaic", channels, cellSize), channels, false,
            [=](const ArtisticCall& c) {
                return ZLV40_MosaicImage(c.destination, c.width, c.height, i32(channels), c.stride, cellSize);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainMosaic(c.InPlace(), channels, cellSize, report);
            }};
}

inline ArtisticEffect OilPaint(u32 radius, u32 levels, u32 flags)
{
    return {Join("oil paint", radius, levels, flags), 3, false,
            [=](const ArtisticCall& c) {
                return ZLV40_OilPaintRGB(c.source, c.width, i32(c.height), c.stride, c.destination, c.stride, radius,
                                         levels, flags);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainOilPaint(c.Plain(), radius, levels, flags, report);
            }};
}

inline ArtisticEffect Watercolor(f64 amount, u8 flags)
{
    return {Join("watercolour", amount, u32(flags)), 3, false,
            [=](const ArtisticCall& c) {
                return ZLV40_WatercolorTintRGB(c.source, c.width, c.height, c.stride, c.destination, c.stride, amount,
                                               flags);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainWatercolor(c.Plain(), amount, flags, report);
            }};
}

inline ArtisticEffect Gauzy(f64 blur, f64 sharpness, f64 opacity, u32 mode)
{
    return {Join("gauzy", blur, sharpness, opacity, mode), 3, false,
            [=](const ArtisticCall& c) {
                return ZLV40_GauzyRGB(c.source, c.width, c.height, c.stride, c.destination, c.stride, blur, sharpness,
                                      opacity, mode);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainGauzy(c.Plain(), blur, sharpness, opacity, mode, report);
            }};
}

inline ArtisticEffect Scribble(u32 baseKind, i32 edgesFromResult, u32 opacity)
{
    return {Join("scribble", baseKind, edgesFromResult, opacity), 3, true,
            [=](const ArtisticCall& c) {
                return ZLV40_Scribble(c.source, c.width, c.height, c.destination, baseKind, edgesFromResult, opacity);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainScribble(c.Plain(), baseKind, edgesFromResult != 0, opacity, report);
            }};
}

inline ArtisticEffect Fingerprint(f64 blur, u32 ridge, u32 flags)
{
    return {Join("fingerprint", blur, ridge, flags), 1, false,
            [=](const ArtisticCall& c) {
                return ZLV40_Fingerprint(c.source, c.width, c.height, c.stride, c.destination, c.stride, blur, ridge,
                                         flags);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                return PlainFingerprint(c.Plain(), blur, ridge, flags, report);
            }};
}

// What random effects draw from.
inline constexpr u32 kArtisticSeed = 20;
inline void SeedArtisticNoise() { zlv::SeedRandom(*zlv::baseContexts.Get(), kArtisticSeed); }

inline ArtisticEffect Stipple(u32 density, u32 filterKind, u8 flags)
{
    return {Join("stipple", density, filterKind, u32(flags)), 3, false,
            [=](const ArtisticCall& c) {
                SeedArtisticNoise();
                return ZLV40_Stipple(c.source, c.width, c.height, c.stride, c.destination, c.stride, density,
                                     filterKind, flags);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                PlainGenerator generator = {kArtisticSeed};
                return PlainStipple(c.Plain(), density, filterKind, flags, zlv::Pow, generator, report);
            }};
}

// A reflection, whose rows are those of the destination below the first `percent`, one at least.
inline ArtisticEffect Reflect(u32 percent, const PlainReflection& reflection)
{
    const auto on = [=](const ArtisticCall& c) {
        PlainReflection r = reflection;
        r.source = c.source;
        r.destination = c.destination;
        r.sourceStride = r.destinationStride = c.stride;
        r.width = c.width;
        r.height = c.height;
        r.splitRow = std::min(c.height * percent / 100, c.height - 1);
        r.reflectionHeight = c.height - r.splitRow;
        return r;
    };
    return {Join("reflect", percent, reflection.fadeStart, reflection.fadeEnd, reflection.fadeShape, reflection.ripple,
                 reflection.rippleScale, reflection.flags),
            3, false,
            [=](const ArtisticCall& c) {
                const PlainReflection r = on(c);
                SeedArtisticNoise();
                return ZLV40_ReflectImage(r.source, r.width, r.height, 3, u32(r.sourceStride), r.destination,
                                          u32(r.destinationStride), r.splitRow, r.reflectionHeight, r.fadeStart,
                                          r.fadeEnd, r.color, r.fadeShape, r.ripple, r.rippleScale, r.flags);
            },
            [=](const ArtisticCall& c, const PlainReport& report) {
                PlainGenerator generator = {kArtisticSeed};
                return on(c).Run(generator, report);
            }};
}

inline ArtisticEffect ReflectFlat(u32 percent, f64 fadeStart, f64 fadeEnd, u32 fadeShape)
{
    return Reflect(percent, {.fadeStart = fadeStart, .fadeEnd = fadeEnd, .color = 0xFF402010, .fadeShape = fadeShape});
}

inline ArtisticEffect ReflectRippled(f64 ripple, u32 rippleScale, u32 flags)
{
    return Reflect(60, {.fadeStart = 0.2,
                        .fadeEnd = 1.4,
                        .color = 0x00C0E010,
                        .fadeShape = 1,
                        .ripple = ripple,
                        .rippleScale = rippleScale,
                        .flags = flags});
}

// Every effect in every mode.
inline std::vector<ArtisticEffect> ArtisticEffects()
{
    std::vector<ArtisticEffect> effects = {
        Halftone(1, 0), Halftone(2, 0), Halftone(3, 1), Halftone(4, 0), Halftone(4, -1),
        Mosaic(1, 1),   Mosaic(1, 3),   Mosaic(3, 2),   Mosaic(3, 5),   Mosaic(4, 4),
    };
    for (const u32 flags : {0u, 1u, 2u, 3u}) {
        effects.push_back(OilPaint(3, 255, flags));
        effects.push_back(OilPaint(2, 4, flags));
        effects.push_back(Watercolor(0.1, u8(flags)));
    }
    for (const u32 radius : {0u, 1u, 7u, 8u, 10u}) effects.push_back(OilPaint(radius, 20, 1));
    effects.push_back(OilPaint(2, 0, 1));
    for (const f64 amount : {0.0, 0.02, 1.0}) effects.push_back(Watercolor(amount, 1));
    for (u32 mode = 0; mode <= 5; ++mode) {
        effects.push_back(Gauzy(0.2, 1, 0.7, mode));
        effects.push_back(Gauzy(0.02, 0.4, 1, mode));
    }
    effects.push_back(Gauzy(0.05, 0.5, 0, 1));
    for (const u32 baseKind : {0u, 1u, 2u, 3u}) {
        for (const i32 edgesFromResult : {0, 1}) effects.push_back(Scribble(baseKind, edgesFromResult, 60));
    }
    for (const u32 flags : {0u, 1u}) {
        effects.push_back(Fingerprint(0, 3, flags));
        effects.push_back(Fingerprint(20, 8, flags));
    }
    effects.push_back(Fingerprint(100, 25, 0));
    for (u32 filterKind = 0; filterKind <= 5; ++filterKind) {
        for (const u8 flags : {0, 1}) effects.push_back(Stipple(60, filterKind, flags));
    }
    for (const u32 density : {0u, 50u, 51u, 80u, 81u, 100u, 250u}) {
        for (const u8 flags : {2, 255}) effects.push_back(Stipple(density, 0, flags));
    }
    for (u32 fadeShape = 0; fadeShape <= 3; ++fadeShape) {
        effects.push_back(ReflectFlat(54, 0, 1, fadeShape));
        effects.push_back(ReflectFlat(50, 0.3, 1.5, fadeShape));
        effects.push_back(ReflectFlat(20, -0.25, 0.75, fadeShape));
    }
    for (const u32 percent : {0u, 5u, 90u, 100u}) effects.push_back(ReflectFlat(percent, 0, 1, 0));
    effects.push_back(ReflectFlat(54, 0, 0, 0));
    effects.push_back(ReflectFlat(54, -2, -1, 1));
    effects.push_back(ReflectFlat(54, 1, -1, 2));
    for (const f64 ripple : {-1.0, 0.0, 0.4, 1.0, 3.0}) effects.push_back(ReflectRippled(ripple, 7, 1));
    for (const u32 rippleScale : {0u, 1u, 50u}) effects.push_back(ReflectRippled(0.6, rippleScale, 0xFFFFFFFF));
    effects.push_back(ReflectRippled(0.6, 7, 2));
    return effects;
}

// A picture with flat areas, edges and noise: on noise alone every level is as frequent as any other.
inline Bytes ArtisticPicture(std::size_t count, u32 stride, u32 channels, std::uint64_t seed)
{
    Random random(seed);
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t x = i % stride / channels, y = i / stride;
        const u8 flat = u8((x / 5 * 37 + y / 4 * 61 + seed * 11) % 256);
        bytes[i] = random.Below(3) == 0 ? random.Byte() : flat;
    }
    return bytes;
}

// What a call leaves behind: the twin's, or ours.
struct ArtisticTrace {
    PlainOutcome outcome;
    std::vector<Report> reports;
    Bytes bytes;
};

// Both calls on the same picture. The destination begins with the source, for the effects that work in place.
class ArtisticComparison {
public:
    ArtisticComparison(const ArtisticEffect& effect, const ArtisticShape& shape)
        : effect_(effect),
          shape_(shape),
          source_(ArtisticPicture(effect.Bytes(shape), effect.Stride(shape), effect.channels, shape.width)),
          before_(source_)
    {
    }

    ArtisticTrace Wanted(std::size_t cancelAt) const
    {
        ArtisticTrace trace;
        trace.bytes = before_;
        const ArtisticCall call = {source_.data(), trace.bytes.data(), shape_.width, shape_.height,
                                   effect_.Stride(shape_)};
        trace.outcome = effect_.plain(call, [&](u32 current, u32 total) {
            trace.reports.push_back({current, total});
            return trace.reports.size() != cancelAt;
        });
        return trace;
    }

    ArtisticTrace Got(std::size_t cancelAt, bool hasClient) const
    {
        GuardedBuffer source(source_.size(), Flush::ToEnd), destination(before_.size(), Flush::ToEnd);
        std::memcpy(source.Data(), source_.data(), source_.size());
        std::memcpy(destination.Data(), before_.data(), before_.size());
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        if (hasClient) ZLV40_SetCallback(recorder.Function, recorder.Data());
        const u32 result =
            effect_.apply({source.Data(), destination.Data(), shape_.width, shape_.height, effect_.Stride(shape_)});
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(std::memcmp(source.Data(), source_.data(), source_.size()), 0) << "the source has changed";
        return {{result, ZLV40_GetLastError()},
                recorder.reports,
                Bytes(destination.Data(), destination.Data() + destination.Size())};
    }

    // Returns how many reports there were.
    std::size_t Expect(std::size_t cancelAt, bool hasClient) const
    {
        const ArtisticTrace wanted = Wanted(cancelAt), got = Got(cancelAt, hasClient);
        EXPECT_EQ(got.outcome.result, wanted.outcome.result);
        EXPECT_EQ(got.outcome.code, wanted.outcome.code);
        if (hasClient) {
            EXPECT_EQ(got.reports, wanted.reports);
        }
        EXPECT_EQ(Difference(wanted.bytes.data(), got.bytes.data(), wanted.bytes.size()), "");
        return wanted.reports.size();
    }

private:
    const ArtisticEffect& effect_;
    const ArtisticShape shape_;
    const Bytes source_, before_;
};

}  // namespace zlvtest
