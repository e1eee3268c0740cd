// The double-window modified trimmed mean: the median of a small window chooses the samples of a larger one whose mean
// is taken (Y. H. Lee and S. A. Kassam, Generalized Median Filtering and Related Nonlinear Filtering Techniques, 1985).
#include "base/channel_list.h"
#include "base/image_view.h"
#include "base/row_ring.h"
#include "base/sample.h"
#include "filters/median_networks.kernels.h"
#include "filters/trimmed_mean.kernels.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <algorithm>
#include <iterator>

using namespace zlv;

namespace {

// Pixels on each side that the window does not fit, which are not written.
constexpr u32 kBorder = 2;

struct Call {
    ImageView<const u8> src;
    ImageView<u8> dst;
    u32 channelMask;
};

// The band around each median: the samples s with m - q <= s <= m + q in double precision.
class Bands {
public:
    explicit Bands(f64 halfWidth)
    {
        for (u32 m = 0; m < 256; ++m) {
            starts_[m] = u8(Ceil(std::max(m - halfWidth, 0.0)));
            ends_[m] = u8(std::min(m + halfWidth, 255.0));
        }
        below_ = u8(255 - starts_[255]);
        above_ = ends_[0];
        for (u32 m = 0; m < 256; ++m) {
            isEven_ = isEven_ && starts_[m] == m - std::min<u32>(m, below_);
            isEven_ = isEven_ && ends_[m] == std::min<u32>(m + above_, 255);
        }
    }

    void Find(const u8* medians, size_t count, u8* starts, u8* extents) const
    {
        if (isEven_) {
            Kernels<TrimmedMeanKernels>().findBands(medians, below_, above_, count, starts, extents);
            return;
        }
        // A half-width just beside an integer: m + q is rounded to one for some medians, and for others it is not.
        for (size_t i = 0; i < count; ++i) {
            starts[i] = starts_[medians[i]];
            extents[i] = u8(ends_[medians[i]] - starts[i]);
        }
    }

private:
    u8 starts_[256], ends_[256];
    u8 below_, above_;
    bool isEven_ = true;  // whether bands of all medians reach as far, but for 0 and 255
};

class TrimmedMean {
public:
    TrimmedMean(const Call& call, f64 halfWidth)
        : call_(call), bands_(halfWidth), channels_(call.channelMask, call.src.channels)
    {
    }

    bool HasWork() const { return channels_.Count() > 0 && call_.src.width > 2 * kBorder; }

    // False when memory is out.
    [[nodiscard]] bool Start()
    {
        constexpr size_t kSlack = std::max(kMedianSlack, kTrimmedSlack);
        const u64 length = u64(call_.src.width) * channels_.Count() + kSlack;
        if (!rows_.Resize(kTrimmedRows, length)) return false;
        for (u32 i = 0; i < kTrimmedRows; ++i) std::fill_n(rows_.Row(i) + length - kSlack, kSlack, u8(0));
        for (MVBuffer<u8>* const row : {&medians_, &starts_, &extents_}) {
            if (!row->Resize(length)) return false;
            std::fill_n(row->GetData(), length, u8(0));
        }
        return true;
    }

    // Rows in order.
    void MakeRow(u32 y)
    {
        const u8* window[kTrimmedRows];
        const u8* middle[kTrimmedRows - 2];
        const size_t step = channels_.Count(), pixels = call_.src.width - 2 * kBorder, count = pixels * step;
        for (; begunRows_ <= y + kBorder; ++begunRows_) {
            channels_.Gather(call_.src.Row(begunRows_), call_.src.width, rows_.Row(begunRows_));
        }
        for (u32 j = 0; j < kTrimmedRows; ++j) window[j] = rows_.Row(y + j - kBorder);
        for (u32 j = 0; j < std::size(middle); ++j) middle[j] = window[j + 1] + step;
        u8 *const medians = medians_.GetData(), *const starts = starts_.GetData(), *const extents = extents_.GetData();
        Kernels<MedianNetworkKernels>().medians3(middle, step, count, 255, medians);
        bands_.Find(medians, count, starts, extents);
        u8* const means = medians;  // which are not needed any more
        Kernels<TrimmedMeanKernels>().means(window, step, starts, extents, count, means);
        channels_.Scatter(means, pixels, call_.dst.Row(y) + size_t(kBorder) * call_.dst.channels);
    }

private:
    const Call& call_;
    const Bands bands_;
    const ChannelList channels_;
    u32 begunRows_ = 0;
    RowRing<u8> rows_;
    MVBuffer<u8> medians_, starts_, extents_;
};

u32 Run(CallFrame& frame, const Call& call, f64 halfWidth)
{
    const u32 height = call.src.height;
    if (height <= 2 * kBorder) return 1;
    TrimmedMean filter(call, halfWidth);
    if (filter.HasWork() && !filter.Start()) return frame.Fail(Error::OutOfMemory);
    for (u32 y = kBorder; y < height - kBorder; ++y) {
        if (filter.HasWork()) filter.MakeRow(y);
        if (!frame.Report(y, height)) return 0;
    }
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_AdaptiveDWMTMFilter(const u8* src, i32 width, i32 height, u8* dst, u32 bytesPerPixel,
                                         u32 srcRowStride, u32 dstRowStride, f64 noiseLevel, f64 bandFactor,
                                         u32 channelMask)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || src == dst || width <= 0 || height <= 0) return frame.Fail(Error::BadArgument);
        if (bytesPerPixel == 0 || bytesPerPixel > kMaxMaskedChannels) return frame.Fail(Error::BadArgument);
        if (srcRowStride == 0 || dstRowStride == 0) return frame.Fail(Error::BadArgument);
        // Without a median in its own band there is nothing to average.
        const f64 halfWidth = noiseLevel * bandFactor;
        if (!(halfWidth >= 0)) return frame.Fail(Error::BadArgument);

        return Run(frame,
                   {{src, u32(width), u32(height), bytesPerPixel, srcRowStride},
                    {dst, u32(width), u32(height), bytesPerPixel, dstRowStride},
                    channelMask},
                   halfWidth);
    });
}
