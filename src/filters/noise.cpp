// The noise adders: random values of a distribution on top of an image.
//
// Values are drawn pixel after pixel in the order of the samples, one a sample or one a pixel, from the random
// generator of the calling thread. Draws do not wait for each other: the state after any number of them is a product
// and a sum of the state now. A block of values is made as whole levels to add (noise.kernels.h); the few whose level
// single precision cannot tell are made again from their draws by the formula.
#include "base/channel_list.h"
#include "base/image_view.h"
#include "base/sample.h"
#include "filters/noise_distributions.h"
#include "runtime/frame.h"
#include "runtime/random.h"

#include "zlv40.h"

using namespace zlv;

namespace {

// The way from a state to the first draw of each value of a block.
struct DrawTable {
    u32 multipliers[kNoiseBlock] = {};
    u32 increments[kNoiseBlock] = {};

    explicit constexpr DrawTable(u32 drawsPerValue)
    {
        const RandomJump oneValue = JumpOf(drawsPerValue);
        RandomJump jump = kOneDraw;
        for (size_t i = 0; i < kNoiseBlock; ++i) {
            multipliers[i] = jump.multiplier;
            increments[i] = jump.increment;
            jump = jump.Then(oneValue);
        }
    }
};

constexpr DrawTable kDrawTables[] = {DrawTable(1), DrawTable(2)};

u8 WithNoise(u8 sample, f64 value)
{
    const f64 sum = sample + value;
    if (sum < 0) return 0;
    return sum > 255 ? u8(255) : u8(sum);
}

// Values of a distribution and the samples that they go to. A value goes to `span` samples that follow each other.
class NoiseSource {
public:
    NoiseSource(const NoiseDistribution& noise, u32 span)
        : noise_(noise), table_(kDrawTables[noise.drawsPerValue - 1]), span_(span)
    {
    }

    // Adds count values from this state on, at most kNoiseBlock, to count * span dense samples.
    void Add(u32 state, u8* samples, size_t count) const
    {
        i16 levels[kNoiseBlock], spread[kNoiseBlock * kMaxMaskedChannels];
        const NoiseKernels& kernels = Kernels<NoiseKernels>();
        if (MakeLevels(kernels, state, levels, count) > 0) AddDoubtful(state, samples, levels, count);
        if (span_ > 1) kernels.spreadLevels(levels, spread, count, span_);
        kernels.addLevels(samples, span_ > 1 ? spread : levels, count * span_);
    }

    // The generator's state after so many values.
    u32 StateAfter(u32 state, u64 count) const { return JumpOf(count * noise_.drawsPerValue).From(state); }

private:
    u32 MakeLevels(const NoiseKernels& kernels, u32 state, i16* levels, size_t count) const
    {
        if (noise_.levels) {
            return (kernels.*noise_.levels)({state, table_.multipliers, table_.increments, count, noise_.curveScale,
                                             noise_.curveShift, noise_.bound},
                                            levels);
        }
        for (size_t i = 0; i < count; ++i) levels[i] = kDoubtfulLevel;
        return u32(count);
    }

    // Adds the values whose levels are in doubt, and makes these levels 0.
    void AddDoubtful(u32 state, u8* samples, i16* levels, size_t count) const
    {
        u32 first[kNoiseBlock], second[kNoiseBlock], places[kNoiseBlock];
        f64 values[kNoiseBlock];
        size_t doubtful = 0;
        for (size_t i = 0; i < count; ++i) {
            if (levels[i] != kDoubtfulLevel) continue;
            levels[i] = 0;
            const u32 drawn = RandomJump{table_.multipliers[i], table_.increments[i]}.From(state);
            first[doubtful] = DrawOf(drawn);
            second[doubtful] = DrawOf(kOneDraw.From(drawn));
            places[doubtful++] = u32(i);
        }
        noise_.values(noise_, first, second, values, doubtful);
        for (size_t i = 0; i < doubtful; ++i) {
            u8* const sample = samples + size_t(places[i]) * span_;
            for (u32 k = 0; k < span_; ++k) sample[k] = WithNoise(sample[k], values[i]);
        }
    }

    const NoiseDistribution noise_;
    const DrawTable& table_;
    const u32 span_;
};

class NoisyImage {
public:
    NoisyImage(const ImageView<u8>& image, u32 channelMask, bool isMonochrome, const NoiseDistribution& noise)
        : image_(image),
          selected_(channelMask, image.channels),
          valuesPerPixel_(isMonochrome ? 1 : selected_.Count()),
          source_(noise, isMonochrome ? selected_.Count() : 1)
    {
    }

    // Returns the generator's state after the row.
    u32 AddToRow(u32 y, u32 state) const
    {
        if (selected_.Count() == 0) return source_.StateAfter(state, u64(image_.width) * valuesPerPixel_);
        const u32 pixelsAtOnce = kNoiseBlock / (selected_.IsAll() ? valuesPerPixel_ : selected_.Count());
        u8* pixels = image_.Row(y);
        for (u32 left = image_.width; left > 0;) {
            const u32 count = left < pixelsAtOnce ? left : pixelsAtOnce;
            AddToPixels(pixels, count, state);
            state = source_.StateAfter(state, u64(count) * valuesPerPixel_);
            pixels += size_t(count) * image_.channels;
            left -= count;
        }
        return state;
    }

private:
    void AddToPixels(u8* pixels, u32 count, u32 state) const
    {
        u8 gathered[kNoiseBlock];
        u8* const samples = selected_.IsAll() ? pixels : gathered;
        if (!selected_.IsAll()) selected_.Gather(pixels, count, samples);
        source_.Add(state, samples, size_t(count) * valuesPerPixel_);
        if (!selected_.IsAll()) selected_.Scatter(samples, count, pixels);
    }

    const ImageView<u8> image_;
    const ChannelList selected_;
    const u32 valuesPerPixel_;
    const NoiseSource source_;
};

// The shape of all four. The distribution is made inside the frame, in its floating-point environment.
template <class MakeDistribution>
u32 AddNoise(const ImageView<u8>& image, i32 monochrome, u32 channelMask, MakeDistribution makeDistribution)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!image.data || image.width == 0 || image.height == 0) return frame.Fail(Error::BadArgument);
        if (image.channels == 0 || image.channels > kMaxMaskedChannels) return frame.Fail(Error::BadArgument);
        const NoiseDistribution noise = makeDistribution();
        if (!noise.isPossible) return frame.Fail(Error::BadArgument);

        const NoisyImage noisy(image, channelMask, monochrome != 0, noise);
        u32& randomState = baseContexts.Get()->randomState;  // the callback may draw too
        for (u32 y = 0; y < image.height; ++y) {
            randomState = noisy.AddToRow(y, randomState);
            if (!frame.Report(y, image.height)) return 0;
        }
        return 1;
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_AddGaussianNoise(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, f64 variance,
                                      f64 mean, i32 monochrome, u32 channelMask)
{
    return AddNoise({image, width, height, bytesPerPixel, rowStride}, monochrome, channelMask,
                    [=] { return GaussianNoise(variance, mean); });
}

ZLV_EXPORT u32 ZLV40_AddUniformNoise(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, f64 variance,
                                     f64 mean, i32 monochrome, u32 channelMask)
{
    return AddNoise({image, width, height, bytesPerPixel, rowStride}, monochrome, channelMask,
                    [=] { return UniformNoise(variance, mean); });
}

ZLV_EXPORT u32 ZLV40_AddNegativeExpNoise(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride,
                                         f64 variance, i32 monochrome, u32 channelMask)
{
    return AddNoise({image, width, height, bytesPerPixel, rowStride}, monochrome, channelMask,
                    [=] { return NegativeExponentialNoise(variance); });
}

ZLV_EXPORT u32 ZLV40_AddRayleighNoise(u8* image, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, f64 variance,
                                      i32 monochrome, u32 channelMask)
{
    return AddNoise({image, width, height, bytesPerPixel, rowStride}, monochrome, channelMask,
                    [=] { return RayleighNoise(variance); });
}
