// Stipple: Perlin noise added to an image, before a window filter or after it.
#include "artistic/recipe.h"
#include "runtime/clamp.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

constexpr u32 kSparsest = 0, kDensest = 100;
constexpr f64 kPercent = 100.0, kScaleShare = 0.9;
constexpr u32 kDensestOfSmallWindow = 50, kDensestOfMiddleWindow = 80;
constexpr i32 kSmallWindow = 3, kMiddleWindow = 5, kLargeWindow = 7;
constexpr i32 kArithmetic = 1;

// Half of all levels of noise darken.
constexpr i32 kNeutralNoise = 128;
constexpr i32 kBlack = 0, kWhite = 255;

// In blocks with a level of noise for every sample: such loops become vectors.
void AddNoiseToRow(const u8* from, const u8* noise, u32 width, u8* to)
{
    constexpr u32 kBlock = 256;
    u8 levels[kBlock * kRgbChannels];
    for (u32 x = 0; x < width; x += kBlock) {
        const u32 count = std::min(width - x, kBlock);
        for (u32 i = 0; i < count; ++i) {
            for (u32 c = 0; c < kRgbChannels; ++c) levels[i * kRgbChannels + c] = noise[x + i];
        }
        const size_t start = size_t(x) * kRgbChannels;
        for (u32 i = 0; i < count * kRgbChannels; ++i) {
            to[start + i] = u8(ClampInt(from[start + i] + levels[i] - kNeutralNoise, &kBlack, &kWhite));
        }
    }
}

struct Stipple {
    const u8* source;
    u32 width, height, sourceStride;
    u8* destination;
    u32 destinationStride;
    u32 density;
    u32 filterKind;

    f64 NoiseScale() const { return 1.0 - density / kPercent * kScaleShare; }
    bool HasFilter() const { return filterKind <= ZLV40_STIPPLE_POWER; }

    i32 WindowSide() const
    {
        if (density <= kDensestOfSmallWindow) return kSmallWindow;
        return density <= kDensestOfMiddleWindow ? kMiddleWindow : kLargeWindow;
    }

    u32 MakeNoise(PackedImage& noise) const
    {
        return ZLV40_GeneratePerlinNoise(noise.Data(), width, height, i32(noise.Stride()), NoiseScale());
    }

    // Without a filter `to` stays as it is.
    u32 Filter(const u8* from, u32 fromStride, u8* to, u32 toStride) const
    {
        const auto filter = [&](auto step, auto... order) {
            return step(from, width, height, to, kRgbChannels, fromStride, toStride, WindowSide(), order..., kRgbMask);
        };
        switch (filterKind) {
        case ZLV40_STIPPLE_MEAN: return filter(ZLV40_ArithmeticMeanFilter);
        case ZLV40_STIPPLE_MINIMUM: return filter(ZLV40_MinimumFilter);
        case ZLV40_STIPPLE_MAXIMUM: return filter(ZLV40_MaximumFilter);
        case ZLV40_STIPPLE_GEOMETRIC: return filter(ZLV40_GeometricMeanFilter);
        case ZLV40_STIPPLE_POWER: return filter(ZLV40_YpMeanFilter, kArithmetic);
        default: return 1;
        }
    }

    // A geometric mean knows no 0.
    void CopyRaised(PackedImage& raised) const
    {
        for (u32 y = 0; y < height; ++y) {
            const u8* const from = source + size_t(y) * sourceStride;
            u8* const to = raised.Data() + size_t(y) * raised.Stride();
            for (u32 i = 0; i < raised.Stride(); ++i) to[i] = std::max(from[i], u8(1));
        }
    }

    // The filter goes through the packed copy by the source's stride: padded sources come out slanted, and presets are
    // made by that look. No row begins behind the copy's last one.
    void Slant(PackedImage& packed) const
    {
        const size_t rowBytes = packed.Stride(), lastRow = rowBytes * (height - 1);
        const auto move = [&](size_t y) {
            std::memmove(packed.Data() + y * rowBytes, packed.Data() + std::min(y * sourceStride, lastRow), rowBytes);
        };
        // In the order that reads each row before it is written over.
        if (sourceStride > rowBytes) {
            for (size_t y = 0; y < height; ++y) move(y);
        } else if (sourceStride < rowBytes) {
            for (size_t y = height; y > 0; --y) move(y - 1);
        }
    }

    // The step that reports. `isWritten` false: it reports all the same.
    u32 AddNoise(const u8* from, u32 fromStride, PackedImage& noise, u8* to, u32 toStride, bool isWritten,
                 CallFrame& frame) const
    {
        for (u32 y = 0; y < height; ++y) {
            if (isWritten) {
                AddNoiseToRow(from + size_t(y) * fromStride, noise.Data() + size_t(y) * noise.Stride(), width,
                              to + size_t(y) * toStride);
            }
            if (!frame.Report(y, height)) return 0;
        }
        return 1;
    }
};

u32 FilterNoisy(const Stipple& call, PackedImage& noise, PackedImage& work, CallFrame& frame)
{
    if (!call.AddNoise(call.source, call.sourceStride, noise, work.Data(), work.Stride(), true, frame)) return 0;
    return call.Filter(work.Data(), work.Stride(), call.destination, call.destinationStride);
}

u32 AddNoiseToFiltered(const Stipple& call, PackedImage& noise, PackedImage& work, CallFrame& frame)
{
    PackedImage raised;
    if (!raised.Resize(call.width, call.height, kRgbChannels)) return frame.Fail(Error::OutOfMemory);
    call.CopyRaised(raised);
    call.Slant(raised);
    if (!call.Filter(raised.Data(), raised.Stride(), work.Data(), work.Stride())) return 0;
    return call.AddNoise(work.Data(), work.Stride(), noise, call.destination, call.destinationStride, call.HasFilter(),
                         frame);
}

u32 MakeStipple(const Stipple& call, bool isNoiseFirst, CallFrame& frame)
{
    PackedImage noise, work;
    if (!noise.Resize(call.width, call.height, kGrayChannels)) return frame.Fail(Error::OutOfMemory);
    if (!call.MakeNoise(noise)) return 0;
    if (!work.Resize(call.width, call.height, kRgbChannels)) return frame.Fail(Error::OutOfMemory);
    return isNoiseFirst ? FilterNoisy(call, noise, work, frame) : AddNoiseToFiltered(call, noise, work, frame);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_Stipple(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination,
                             u32 destinationStride, u32 density, u32 filterKind, u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !destination || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        const Stipple call = {source,
                              width,
                              height,
                              sourceStride,
                              destination,
                              destinationStride,
                              ClampUInt(density, &kSparsest, &kDensest),
                              filterKind};
        return MakeStipple(call, flags & ZLV40_STIPPLE_NOISE_FIRST, frame);
    });
}
