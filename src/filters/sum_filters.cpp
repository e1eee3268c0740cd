// Arithmetic mean, sharpening and blurring by the sum of a square window.
#include "filters/sum_filters.kernels.h"
#include "filters/window_sums.h"
#include "runtime/clamp.h"

#include "zlv40.h"

using namespace zlv;

namespace {

const SumFilterKernels<u16>& TableFor(const u16*) { return Kernels<AllSumFilterKernels>().narrow; }
const SumFilterKernels<u32>& TableFor(const u32*) { return Kernels<AllSumFilterKernels>().wide; }

// finish(sums, own, count, out) makes a row: of the sums of its windows, and of its own samples.
template <class Sum, class Finish>
class SumFilter {
public:
    SumFilter(const WindowCall& call, const Finish& finish) : call_(call), finish_(finish), sums_(call) {}

    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        const u64 rowBytes = u64(call_.src.width) * channelsAtOnce;
        return sums_.Prepare(channelsAtOnce) && own_.Resize(rowBytes) && row_.Resize(rowBytes);
    }

    void Run(const ChannelList& channels)
    {
        const size_t count = size_t(call_.src.width) * channels.Count();
        sums_.Start(channels);
        for (u32 y = 0; y < call_.src.height; ++y) {
            const Sum* const sums = sums_.Next();
            const u8* const own = SelectedSamples(call_.src, y, channels, own_.GetData());
            MakeSelectedSamples(call_.dst, y, channels, row_.GetData(),
                                [&](u8* out) { finish_(sums, own, count, out); });
        }
    }

private:
    const WindowCall& call_;
    const Finish& finish_;
    WindowSums<SampleCounts<Sum>> sums_;
    MVBuffer<u8> own_, row_;
};

template <class Finish>
u32 RunSumFilter(CallFrame& frame, const WindowCall& call, const Finish& finish)
{
    const u32 side = call.Side();
    if (1 < side && side <= kLargestNarrowSide) {
        return RunOverChannels(frame, call, SumFilter<u16, Finish>(call, finish));
    }
    return RunOverChannels(frame, call, SumFilter<u32, Finish>(call, finish));
}

// One table of the blur: entry i is i * factor, truncated.
struct BlurTable {
    u8 entries[256];

    explicit BlurTable(f64 factor)
    {
        for (u32 i = 0; i < 256; ++i) entries[i] = u8(i * factor);
    }

    // The number w for which every entry i is i * w / 65536, truncated. There is one for the multiples of any real
    // number, as fractions with denominators up to 255 lie at least 1 / (255 * 254) apart. But products that are
    // rounded to 53 bits can be whole for a multiple only: 49 * (1.0 / 49) is below 1 while 245 * (1.0 / 49) is 5.
    bool FindWeight(u32& weight) const
    {
        weight = 0;
        for (u32 i = 1; i < 256; ++i) weight = std::max(weight, ((u32(entries[i]) << 16) + i - 1) / i);
        for (u32 i = 0; i < 256; ++i) {
            if ((i * weight) >> 16 != entries[i]) return false;
        }
        return true;
    }
};

// A mean and a pixel's own sample, each scaled and truncated on its own: half of a flat 255 is 127 + 127. Presets rely
// on the lost level; blending in one step would bring it back.
class BlurBlend {
public:
    explicit BlurBlend(f64 amount)
        : means_(amount),
          own_(1.0 - amount),
          hasWeights_(means_.FindWeight(weights_.mean) && own_.FindWeight(weights_.own))
    {
    }

    void Apply(u8* means, const u8* own, size_t count) const
    {
        if (hasWeights_) {
            Kernels<AllSumFilterKernels>().blend(means, own, weights_, count);
            return;
        }
        for (size_t i = 0; i < count; ++i) means[i] = u8(means_.entries[means[i]] + own_.entries[own[i]]);
    }

private:
    BlendWeights weights_ = {};
    const BlurTable means_, own_;
    const bool hasWeights_;
};

bool IsNumber(f64 value) { return value == value; }
bool IsFinite(f64 value) { return IsNumber(value - value); }

}  // namespace

ZLV_EXPORT u32 ZLV40_ArithmeticMeanFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel,
                                          u32 srcRowStride, u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSum, [&](CallFrame& frame) {
        return RunSumFilter(frame, call, [&](const auto* sums, const u8*, size_t count, u8* out) {
            TableFor(sums).mean(sums, call.Area(), count, out);
        });
    });
}

ZLV_EXPORT u32 ZLV40_SharpenImage(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                                  u32 dstRowStride, i32 filterSize, f64 amount, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSignedSum, [&](CallFrame& frame) -> u32 {
        if (!IsFinite(amount)) return frame.Fail(Error::BadArgument);
        return RunSumFilter(frame, call, [&](const auto* sums, const u8* own, size_t count, u8* out) {
            TableFor(sums).sharpen(sums, own, call.Area(), amount, count, out);
        });
    });
}

ZLV_EXPORT u32 ZLV40_BlurImage(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                               u32 dstRowStride, i32 filterSize, f64 amount, u32 channelMask)
{
    constexpr f64 kNone = 0.0, kAll = 1.0;
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSum, [&](CallFrame& frame) -> u32 {
        if (!IsNumber(amount)) return frame.Fail(Error::BadArgument);
        const BlurBlend blend(ClampDouble(amount, &kNone, &kAll));
        return RunSumFilter(frame, call, [&](const auto* sums, const u8* own, size_t count, u8* out) {
            TableFor(sums).mean(sums, call.Area(), count, out);
            blend.Apply(out, own, count);
        });
    });
}
