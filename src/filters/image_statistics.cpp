// Mean and standard deviation of each channel of an image.
//
// The mean is an integer: a sum of 32 bits, divided and truncated. So deviations from it are integers too, and their
// squares can be added up in any order: one pass finds the sums of the samples and of their squares, which give both.
#include "base/image_view.h"
#include "base/sample.h"
#include "filters/image_statistics.kernels.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

struct Call {
    ImageView<const u8> image;
    const f64* results;

    // The pixels are counted in 32 bits.
    bool IsUsable() const
    {
        if (!image.data || !results || image.stride == 0) return false;
        if (image.channels == 0 || image.channels > kMaxMaskedChannels) return false;
        const u64 pixels = u64(image.width) * image.height;
        return 0 < pixels && pixels <= 0xFFFFFFFF;
    }
    u32 Pixels() const { return image.width * image.height; }
};

// Lanes of whole columns of samples: short ones that are added to, and long ones for what those can't hold any more.
template <class Short>
class LaneSums {
public:
    static constexpr size_t kMostLanes = 1680;

    void Start(size_t lanes)
    {
        lanes_ = lanes;
        std::fill_n(short_, lanes, Short(0));
        std::fill_n(long_, lanes, u64(0));
    }
    Short* Lanes() { return short_; }
    void Flush()
    {
        for (size_t i = 0; i < lanes_; ++i) {
            long_[i] += short_[i];
            short_[i] = 0;
        }
    }
    void Total(u32 channels, u64* totals) const
    {
        for (size_t i = 0, c = 0; i < lanes_; ++i) {
            totals[c] += long_[i];
            if (++c == channels) c = 0;
        }
    }

private:
    size_t lanes_ = 0;
    Short short_[kMostLanes];
    u64 long_[kMostLanes];
};

// What the samples of each channel add up to.
struct ChannelTotals {
    u64 samples[kMaxMaskedChannels] = {};
    u64 squares[kMaxMaskedChannels] = {};
};

// Calls add(lines) for the whole image, with lines of `lanes` samples and shorter last ones, and flush() after as many
// of them as short lanes can hold, and at last.
template <class Add, class Flush>
void ForLanes(const ImageView<const u8>& image, size_t lanes, Add add, Flush flush)
{
    u32 room = kMostAdditions;
    const auto addLines = [&](const u8* samples, size_t width, u64 lines) {
        while (lines > 0) {
            const size_t count = size_t(std::min<u64>(lines, room));
            add(SampleLines{samples, width, count});
            samples += count * width;
            lines -= count;
            room -= u32(count);
            if (room > 0) continue;
            flush();
            room = kMostAdditions;
        }
    };
    // Rows without padding between them are one long row.
    const u64 count = image.IsContiguous() ? u64(image.SamplesPerRow()) * image.height : image.SamplesPerRow();
    const u32 rows = image.IsContiguous() ? 1 : image.height;
    for (u32 y = 0; y < rows; ++y) {
        const u64 whole = count / lanes, rest = count % lanes;
        addLines(image.Row(y), lanes, whole);
        if (rest > 0) addLines(image.Row(y) + whole * lanes, size_t(rest), 1);
    }
    flush();
}

// As many as there are samples to fill them, and a multiple of the channels: a lane has samples of one channel only.
// Few for small images, whose time goes by in adding up lanes.
size_t LanesOf(const ImageView<const u8>& image)
{
    constexpr u64 kSmall = 16384;
    constexpr size_t kFewPixels = 16;
    static_assert(LaneSums<u16>::kMostLanes % (3 * 5 * 7 * 8) == 0);
    const u64 samples = u64(image.SamplesPerRow()) * image.height;
    return samples < kSmall ? kFewPixels * image.channels : LaneSums<u16>::kMostLanes;
}

ChannelTotals AddSamples(const ImageView<const u8>& image)
{
    const size_t lanes = LanesOf(image);
    LaneSums<u16> sums;
    sums.Start(lanes);
    const auto add = [&](const SampleLines& lines) {
        Kernels<ImageStatisticsKernels>().addSamples(lines, sums.Lanes());
    };
    ForLanes(image, lanes, add, [&] { sums.Flush(); });
    ChannelTotals totals;
    sums.Total(image.channels, totals.samples);
    return totals;
}

ChannelTotals AddSamplesAndSquares(const ImageView<const u8>& image)
{
    const size_t lanes = LanesOf(image);
    LaneSums<u16> sums;
    LaneSums<u32> squares;
    sums.Start(lanes);
    squares.Start(lanes);
    const auto add = [&](const SampleLines& lines) {
        Kernels<ImageStatisticsKernels>().addSquares(lines, sums.Lanes(), squares.Lanes());
    };
    const auto flush = [&] {
        sums.Flush();
        squares.Flush();
    };
    ForLanes(image, lanes, add, flush);
    ChannelTotals totals;
    sums.Total(image.channels, totals.samples);
    squares.Total(image.channels, totals.squares);
    return totals;
}

// The sum has 32 bits: beyond 16.8 million pixels it may wrap, and bright images have means too low. Thresholds that
// callers derive from the mean depend on it.
u32 MeanOf(u64 sum, u32 pixels) { return u32(sum) / pixels; }

// From the truncated mean.
f64 DeviationOf(u64 sum, u64 squares, u32 pixels)
{
    const u64 mean = MeanOf(sum, pixels);
    const u64 deviations = squares - 2 * mean * sum + mean * mean * pixels;  // below 2^48
    return Sqrt(f64(deviations) / pixels);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_FindImageMean(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride, f64* means,
                                   u32 channelMask)
{
    const Call call = {{src, width, height, bytesPerPixel, rowStride}, means};
    if (!call.IsUsable()) return RefuseCall(Error::BadArgument);
    return InFrame(FrameKind::NoCallDepth, [&](CallFrame&) -> u32 {
        const ChannelTotals totals = AddSamples(call.image);
        for (u32 c = 0; c < bytesPerPixel; ++c) {
            if (IsSelected(channelMask, c)) means[c] = MeanOf(totals.samples[c], call.Pixels());
        }
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_FindImageStandardDeviation(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 rowStride,
                                                f64* deviations, u32 channelMask)
{
    const Call call = {{src, width, height, bytesPerPixel, rowStride}, deviations};
    if (!call.IsUsable()) return RefuseCall(Error::BadArgument);
    return InFrame(FrameKind::NoCallDepth, [&](CallFrame& frame) -> u32 {
        const ChannelTotals totals = AddSamplesAndSquares(call.image);
        for (u32 c = 0; c < bytesPerPixel; ++c) {
            if (!IsSelected(channelMask, c)) continue;
            deviations[c] = DeviationOf(totals.samples[c], totals.squares[c], call.Pixels());
            if (!frame.Report(c, bytesPerPixel)) return 0;
        }
        return 1;
    });
}
