// Power mean of a square window.
//
// The sum of powers is meant in double precision, row by row. For the lower positive orders it is a whole number that a
// double holds, whatever the order of additions, and the result goes up with it: sums that move along the image, and a
// table that knows from which sum on each level is reached. For other orders the sums are made in their order.
#include "base/repeated_sum.h"
#include "base/running_extremes.h"
#include "filters/doubtful_samples.h"
#include "filters/reciprocal_counts.h"
#include "filters/sum_filters.kernels.h"
#include "filters/value_rows.h"
#include "filters/window_sums.h"
#include "runtime/math.h"

#include "zlv40.h"

using namespace zlv;

namespace {

// The sample that a sum of powers comes to.
struct PowerRoot {
    f64 area, exponent;

    PowerRoot(u32 samples, i32 order) : area(samples), exponent(order == 0 ? __builtin_inf() : 1.0 / order) {}

    u32 LevelOf(f64 sum) const { return sum == 0 ? 0 : u32(std::min(Pow(sum / area, exponent), 255.0)); }
};

// From which whole sum on each level is reached.
//
// Sums are looked up by the leading bits of one more than the sum, as a double: a bin is less than 2^-9 of its sums
// wide, and the sums of neighbouring levels are at least 1/255 apart, so a bin needs one comparison.
class LevelTable {
public:
    // Sums times their order stay below this: the root of the next sum is then at least 2^-48 of it away, and what
    // rounding does to a root, 2^-50 of it at most, matters for the sums of flat windows alone. Those are tried out
    // here.
    static constexpr u64 kLargestProduct = u64(1) << 48;

    // False when memory is out.
    [[nodiscard]] bool Make(const u64* powers, u32 area, const PowerRoot& root)
    {
        for (u32 level = 1; level < 256; ++level) {
            const u64 flatSum = powers[level] * area;
            keys_[level] = (root.LevelOf(f64(flatSum)) >= level ? flatSum : flatSum + 1) + 1;
        }
        keys_[256] = ~u64(0);
        firstBin_ = BinOf(keys_[1]);
        const u64 bins = BinOf(keys_[255]) - firstBin_ + 1;
        if (!levels_.Resize(bins)) return false;
        u32 level = 0;
        for (u64 bin = 0; bin < bins; ++bin) {
            while (level < 255 && BinOf(keys_[level + 1]) < bin + firstBin_) ++level;
            levels_[bin] = u8(level);
        }
        return true;
    }

    u8 LevelOf(u64 sum) const
    {
        const u64 key = sum + 1;
        const u32 below = levels_[std::max(BinOf(key), firstBin_) - firstBin_];
        return u8(below + (key >= keys_[below + 1]));
    }

private:
    static u64 BinOf(u64 key) { return __builtin_bit_cast(u64, f64(i64(key))) >> (52 - 9); }

    u64 keys_[257];  // one more than the first sum of each level
    u64 firstBin_ = 0;
    MVBuffer<u8> levels_;  // of sums before each bin
};

// Powers that are whole numbers. finish(sums, count, out) makes samples of their sums.
template <class Counts, class Finish>
class WholePowerMean {
public:
    WholePowerMean(const WindowCall& call, const Counts& counts, const Finish& finish)
        : call_(call), finish_(finish), channels_(call.Selected()), sums_(call, counts)
    {
    }

    [[nodiscard]] bool Start()
    {
        if (!sums_.Prepare(channels_.Count())) return false;
        if (!row_.Resize(u64(call_.src.width) * channels_.Count())) return false;
        sums_.Start(channels_);
        return true;
    }

    void MakeRow(u32 y)
    {
        const auto* const sums = sums_.Next();
        MakeSelectedSamples(call_.dst, y, channels_, row_.GetData(),
                            [&](u8* out) { finish_(sums, size_t(call_.src.width) * channels_.Count(), out); });
    }

private:
    const WindowCall& call_;
    const Finish& finish_;
    const ChannelList channels_;
    WindowSums<Counts> sums_;
    MVBuffer<u8> row_;
};

// Order 1: quotients of whole numbers, far enough from the next whole number to be truncated as such.
u32 RunLinearMean(CallFrame& frame, const WindowCall& call)
{
    const auto finish = [&](const u32* sums, size_t count, u8* out) {
        Kernels<AllSumFilterKernels>().wide.mean(sums, call.Area(), count, out);
    };
    return RunOverRows(frame, call, WholePowerMean(call, SampleCounts<u32>(), finish));
}

u32 RunQuadraticMean(CallFrame& frame, const WindowCall& call)
{
    const auto finish = [&](const u32* sums, size_t count, u8* out) {
        Kernels<PowerMeanKernels>().quadraticMeans(sums, call.Area(), count, out);
    };
    return RunOverRows(frame, call, WholePowerMean(call, SquareCounts(), finish));
}

bool HasWholeLevels(u32 area, i32 order)
{
    constexpr i32 kHighestOrder = 6;
    if (order < 1 || order > kHighestOrder) return false;
    f64 largest = f64(order) * area;
    for (i32 k = 0; k < order; ++k) largest *= 255;
    return largest < f64(LevelTable::kLargestProduct);
}

u32 RunWholePowerMean(CallFrame& frame, const WindowCall& call, i32 order)
{
    u64 powers[256];
    for (u32 i = 0; i < 256; ++i) {
        powers[i] = 1;
        for (i32 k = 0; k < order; ++k) powers[i] *= i;
    }
    LevelTable levels;
    if (!levels.Make(powers, call.Area(), PowerRoot(call.Area(), order))) return frame.Fail(Error::OutOfMemory);
    const auto finish = [&](const u64* sums, size_t count, u8* out) {
        for (size_t i = 0; i < count; ++i) out[i] = levels.LevelOf(sums[i]);
    };
    return RunOverRows(frame, call, WholePowerMean(call, TableCounts{powers}, finish));
}

// Any powers.
class OrderedPowerMean {
public:
    OrderedPowerMean(const WindowCall& call, i32 order)
        : call_(call),
          root_(call.Area(), order),
          channels_(call.Selected()),
          margin_(std::min(call.Radius(), call.src.width - 1)),
          rows_(call, powers_, margin_)
    {
        for (u32 i = 0; i < 256; ++i) powers_[i] = Pow(i, order);
    }

    [[nodiscard]] bool Start()
    {
        const u64 rowLength = u64(call_.src.width) * channels_.Count();
        if (!rows_.Prepare(channels_.Count()) || !row_.Resize(rowLength)) return false;
        if (!sums_.Resize(rowLength + kOrderedSlack) || !roots_.Resize(rowLength)) return false;
        rows_.Start(channels_);
        return true;
    }

    void MakeRow(u32 y)
    {
        MakeSelectedSamples(call_.dst, y, channels_, row_.GetData(), [&](u8* out) { MakeSamples(out); });
    }

    // The selected samples of the next row.
    void MakeSamples(u8* out)
    {
        const PowerMeanKernels& kernels = Kernels<PowerMeanKernels>();
        const size_t step = channels_.Count(), count = call_.src.width * step;
        f64* const sums = sums_.GetData();
        f64* const roots = roots_.GetData();
        kernels.orderedSums(rows_.Next(), call_.Side(), 2 * size_t(margin_), call_.Radius() - margin_, step, count,
                            sums);
        kernels.divide(sums, root_.area, count, roots);
        PowArray(roots, root_.exponent, roots, count);
        for (size_t i = 0; i < count; ++i) roots[i] = sums[i] == 0 ? 0 : roots[i];
        kernels.truncate(roots, count, out);
    }

    void SkipRow() { rows_.Skip(); }

    // One sample.
    u8 MakeSample(u32 x, u32 y, u32 channel) const
    {
        const f64 sum = call_.SumAround(x, y, channel, [&](u8 sample) { return powers_[sample]; });
        return u8(root_.LevelOf(sum));
    }

    // That of a window of one level.
    u8 FlatSample(u8 level) const { return u8(root_.LevelOf(AddRepeatedly(0, powers_[level], call_.Area()))); }

private:
    const WindowCall& call_;
    const PowerRoot root_;
    const ChannelList channels_;
    const u32 margin_;  // pixels beyond it are those at its ends again
    f64 powers_[256];
    ValueRows rows_;
    MVBuffer<f64> sums_, roots_;
    MVBuffer<u8> row_;
};

// Order -1: integers of reciprocals leave few samples in doubt. Flat windows always are, and those of some levels that
// lie next to each other: where there are many of these, a row is made as it is meant.
class ReciprocalPowerMean {
public:
    static constexpr u32 kLargestSide = 255;  // of windows whose samples are made one by one

    explicit ReciprocalPowerMean(const WindowCall& call)
        : call_(call),
          ordered_(call, -1),
          channels_(call.Selected()),
          sums_(call, TableCounts{reciprocals_.values}),
          smallest_(call.src, call.Radius(), Extreme::Smallest),
          largest_(call.src, call.Radius(), Extreme::Largest)
    {
        for (u32 i = 0; i < 256; ++i) flatSamples_[i] = ordered_.FlatSample(u8(i));
    }

    [[nodiscard]] bool Start()
    {
        const u32 count = channels_.Count();
        const u64 rowBytes = u64(call_.src.width) * count;
        if (!ordered_.Start() || !sums_.Prepare(count)) return false;
        if (!smallest_.Prepare(count) || !largest_.Prepare(count) || !row_.Resize(rowBytes)) return false;
        if (!smallestRow_.Resize(rowBytes) || !largestRow_.Resize(rowBytes) || !isDoubtful_.Resize(rowBytes)) {
            return false;
        }
        sums_.Start(channels_);
        smallest_.Start(channels_);
        largest_.Start(channels_);
        return true;
    }

    void MakeRow(u32 y)
    {
        MakeSelectedSamples(call_.dst, y, channels_, row_.GetData(), [&](u8* out) {
            constexpr size_t kFew = 64;  // one of so many
            const size_t count = size_t(call_.src.width) * channels_.Count();
            const size_t doubtful = MakeMostSamples(count, out);
            if (doubtful > count / kFew) {
                ordered_.MakeSamples(out);
                return;
            }
            ordered_.SkipRow();
            if (doubtful == 0) return;
            MakeDoubtfulSamples(isDoubtful_.GetData(), call_.src.width, channels_, out,
                                [&](size_t, u32 x, u32 channel) { return ordered_.MakeSample(x, y, channel); });
        });
    }

private:
    // Returns how many are still in doubt.
    size_t MakeMostSamples(size_t count, u8* out)
    {
        const u64* const sums = sums_.Next();
        smallest_.Next(smallestRow_.GetData());
        largest_.Next(largestRow_.GetData());
        u8* const isDoubtful = isDoubtful_.GetData();
        const ReciprocalMean mean = {f64(call_.Area()), 0, ReciprocalCounts::BandOf(call_.Area())};
        Kernels<PowerMeanKernels>().reciprocalMeans(sums, mean, count, out, isDoubtful);
        if (!KeepDoubtOutsideZeros(smallestRow_.GetData(), count, out, isDoubtful)) return 0;
        size_t doubtful = 0;
        for (size_t i = 0; i < count; ++i) {
            if (!isDoubtful[i]) continue;
            const u8 smallest = smallestRow_[i];
            isDoubtful[i] = smallest != largestRow_[i];
            if (isDoubtful[i]) ++doubtful;
            else out[i] = flatSamples_[smallest];
        }
        return doubtful;
    }

    const WindowCall& call_;
    OrderedPowerMean ordered_;
    const ChannelList channels_;
    const ReciprocalCounts reciprocals_;
    u8 flatSamples_[256];  // of windows of one level
    WindowSums<TableCounts> sums_;
    RunningExtremes smallest_, largest_;
    MVBuffer<u8> row_, smallestRow_, largestRow_, isDoubtful_;
};

}  // namespace

ZLV_EXPORT u32 ZLV40_YpMeanFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel, u32 srcRowStride,
                                  u32 dstRowStride, i32 filterSize, i32 order, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSignedArea, [&](CallFrame& frame) {
        if (order == 1 && call.Side() <= kLargestSideOfSum) return RunLinearMean(frame, call);
        if (order == 2 && call.Side() <= kLargestSideOfSquares) return RunQuadraticMean(frame, call);
        if (HasWholeLevels(call.Area(), order)) return RunWholePowerMean(frame, call, order);
        if (order == -1 && call.Side() <= ReciprocalPowerMean::kLargestSide) {
            return RunOverRows(frame, call, ReciprocalPowerMean(call));
        }
        return RunOverRows(frame, call, OrderedPowerMean(call, order));
    });
}
