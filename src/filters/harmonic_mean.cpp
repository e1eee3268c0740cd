// Harmonic mean of a square window.
//
// What counts is the sum of reciprocals in double precision, added up row by row. Integers of reciprocals give nearly
// the same sum at a cost that does not grow with the window; only where that leaves two samples to choose from, one in
// some ten thousand, the sum is made as it is meant.
#include "base/running_extremes.h"
#include "filters/doubtful_samples.h"
#include "filters/power_means.kernels.h"
#include "filters/reciprocal_counts.h"
#include "filters/window_sums.h"

#include "zlv40.h"

using namespace zlv;

namespace {

class HarmonicMean {
public:
    explicit HarmonicMean(const WindowCall& call)
        : call_(call),
          channels_(call.Selected()),
          sums_(call, TableCounts{reciprocals_.values}),
          smallest_(call.src, call.Radius(), Extreme::Smallest)
    {
    }

    // False when memory is out.
    [[nodiscard]] bool Start()
    {
        const u32 count = channels_.Count();
        const u64 rowBytes = u64(call_.src.width) * count;
        if (!sums_.Prepare(count) || !smallest_.Prepare(count) || !row_.Resize(rowBytes)) return false;
        if (!smallestRow_.Resize(rowBytes) || !isDoubtful_.Resize(rowBytes)) return false;
        sums_.Start(channels_);
        smallest_.Start(channels_);
        return true;
    }

    void MakeRow(u32 y)
    {
        MakeSelectedSamples(call_.dst, y, channels_, row_.GetData(), [&](u8* out) {
            const size_t count = size_t(call_.src.width) * channels_.Count();
            const u64* const sums = sums_.Next();
            smallest_.Next(smallestRow_.GetData());
            Kernels<PowerMeanKernels>().reciprocalMeans(sums, Reciprocal(), count, out, isDoubtful_.GetData());
            if (!KeepDoubtOutsideZeros(smallestRow_.GetData(), count, out, isDoubtful_.GetData())) return;
            MakeDoubtfulSamples(isDoubtful_.GetData(), call_.src.width, channels_, out,
                                [&](size_t, u32 x, u32 channel) { return OrderedMean(x, y, channel); });
        });
    }

private:
    ReciprocalMean Reciprocal() const { return {f64(call_.Area()), 0.5, ReciprocalCounts::BandOf(call_.Area())}; }

    u8 OrderedMean(u32 x, u32 y, u32 channel) const
    {
        const f64 sum = call_.SumAround(x, y, channel, [](u8 sample) { return 1.0 / sample; });
        const f64 halfAbove = call_.Area() / sum + 0.5;
        return u8(std::min(halfAbove, 255.0));
    }

    const WindowCall& call_;
    const ChannelList channels_;
    const ReciprocalCounts reciprocals_;
    WindowSums<TableCounts> sums_;
    RunningExtremes smallest_;
    MVBuffer<u8> row_, smallestRow_, isDoubtful_;
};

}  // namespace

ZLV_EXPORT u32 ZLV40_HarmonicMeanFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel,
                                        u32 srcRowStride, u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSignedArea,
                          [&](CallFrame& frame) { return RunOverRows(frame, call, HarmonicMean(call)); });
}
