// Geometric mean of a square window: the product of each sample's root.
//
// What counts is the product in double precision. The last bit of it decides whether a flat area keeps its level, so
// the order is part of the result: columns from top to bottom, then the columns in the order of a ring, in which the
// one that enters takes the place of the one that leaves and the first column of a row stands first.
//
// Integers of logarithms give nearly the same mean at a cost that does not grow with the window. Only where that leaves
// two levels to choose from, the product is made as it is meant; for windows of one level once and for all.
#include "base/running_extremes.h"
#include "filters/doubtful_samples.h"
#include "filters/window_sums.h"
#include "runtime/math.h"

#include "zlv40.h"

using namespace zlv;

namespace {

// The levels that sums of logarithms come to, and where that is not sure.
//
// Sums go by steps of a power of 2, less than a 256th of an octave. Neighbouring levels are more than a 180th of an
// octave apart, so there is one level at most that begins within a step or close to it.
class LogLevels {
public:
    explicit LogLevels(u32 area)
    {
        const f64 unit = area * kOne, logOfTwo = Log(2);
        // Truncated integers, then what double precision does to the product: 3.1 parts in 2^53 for each sample of
        // the window, 6 more for all of them; 1.5 times that in its logarithm; and what it does to the logarithms here.
        band_ = u64(1.001 * area + unit * (5.0 * area + 64) * 0x1p-53) + 1;
        logarithms_[0] = 0;
        for (u32 level = 1; level < 256; ++level) {
            const f64 logarithm = Log(level) / logOfTwo;
            firstSums_[level] = u64(unit * logarithm);
            logarithms_[level] = u64(logarithm * kOne);
        }
        firstSums_[256] = ~u64(0) / 2;
        while ((u64(kStepsPerOctave) << (shift_ + 1)) <= u64(unit)) ++shift_;
        u32 before = 0;
        for (u64 step = 0; step < kSteps; ++step) {
            while (before < 255 && firstSums_[before + 1] + band_ < step << shift_) ++before;
            levelsBefore_[step] = u8(before);
        }
    }

    // What each sample counts in a sum; 0 counts nothing.
    const u64* Logarithms() const { return logarithms_; }

    void LevelsOf(const u64* __restrict sums, size_t count, u8* __restrict out, u8* __restrict isDoubtful) const
    {
        const u64 band = band_;
        const u32 shift = shift_;
        for (size_t i = 0; i < count; ++i) {
            const u32 before = levelsBefore_[sums[i] >> shift];
            const u64 first = firstSums_[before + 1];
            out[i] = u8(before + (sums[i] >= first));
            isDoubtful[i] = sums[i] - first + band <= 2 * band;
        }
    }

private:
    static constexpr f64 kOne = 0x1p28;  // a logarithm of 1 to base 2 as it is added up
    static constexpr u32 kStepsPerOctave = 256;
    static constexpr u32 kSteps = 2 * 8 * kStepsPerOctave;

    u64 band_ = 0;
    u32 shift_ = 0;
    u64 logarithms_[256];
    u64 firstSums_[257];
    u8 levelsBefore_[kSteps];
};

class GeometricMean {
public:
    explicit GeometricMean(const WindowCall& call)
        : call_(call),
          levels_(call.Area()),
          sums_(call, TableCounts{levels_.Logarithms()}),
          smallest_(call.src, call.Radius(), Extreme::Smallest),
          largest_(call.src, call.Radius(), Extreme::Largest)
    {
        for (u32 i = 0; i < 256; ++i) {
            roots_[i] = Pow(i, 1.0 / call.Area());
            flatLevels_[i] = FlatLevel(roots_[i], call.Side());
        }
    }

    [[nodiscard]] bool Prepare(u32 channelsAtOnce)
    {
        const u64 rowBytes = u64(call_.src.width) * channelsAtOnce;
        if (!sums_.Prepare(channelsAtOnce) || !smallest_.Prepare(channelsAtOnce)) return false;
        if (!largest_.Prepare(channelsAtOnce) || !row_.Resize(rowBytes)) return false;
        return smallestRow_.Resize(rowBytes) && largestRow_.Resize(rowBytes) && isDoubtful_.Resize(rowBytes);
    }

    void Run(const ChannelList& channels)
    {
        sums_.Start(channels);
        smallest_.Start(channels);
        largest_.Start(channels);
        for (u32 y = 0; y < call_.src.height; ++y) {
            MakeSelectedSamples(call_.dst, y, channels, row_.GetData(), [&](u8* out) { MakeRow(y, channels, out); });
        }
    }

private:
    static u8 Truncated(f64 product) { return u8(std::min(product, 255.0)); }

    static u8 FlatLevel(f64 root, u32 side)
    {
        f64 column = 1, product = 1;
        for (u32 j = 0; j < side; ++j) column *= root;
        for (u32 i = 0; i < side; ++i) product *= column;
        return Truncated(product);
    }

    void MakeRow(u32 y, const ChannelList& channels, u8* out)
    {
        const size_t count = size_t(call_.src.width) * channels.Count();
        const u64* const sums = sums_.Next();
        levels_.LevelsOf(sums, count, out, isDoubtful_.GetData());
        smallest_.Next(smallestRow_.GetData());
        largest_.Next(largestRow_.GetData());
        if (!KeepDoubtOutsideZeros(smallestRow_.GetData(), count, out, isDoubtful_.GetData())) return;
        MakeDoubtfulSamples(isDoubtful_.GetData(), call_.src.width, channels, out,
                            [&](size_t place, u32 x, u32 channel) {
                                // Sums of flat windows always leave a doubt.
                                const u8 smallest = smallestRow_[place];
                                if (smallest == largestRow_[place]) return flatLevels_[smallest];
                                return Truncated(OrderedProduct(x, y, channel));
                            });
    }

    f64 OrderedProduct(u32 x, u32 y, u32 channel) const
    {
        const i64 side = call_.Side(), radius = call_.Radius();
        const i64 replaced = x % side;  // the first places of the ring hold what has entered since it began
        f64 product = 1;
        for (i64 i = 0; i < side; ++i) {
            const i64 left = x - radius + i - replaced;
            product *= ColumnProduct(i < replaced ? left + side : left, y, channel);
        }
        return product;
    }

    f64 ColumnProduct(i64 x, u32 y, u32 channel) const
    {
        const i64 radius = call_.Radius(), lastX = i64(call_.src.width) - 1, lastY = i64(call_.src.height) - 1;
        const size_t place = size_t(std::clamp<i64>(x, 0, lastX)) * call_.src.channels + channel;
        f64 product = 1;
        for (i64 j = y - radius; j <= y + radius; ++j) {
            product *= roots_[call_.src.Row(u32(std::clamp<i64>(j, 0, lastY)))[place]];
        }
        return product;
    }

    const WindowCall& call_;
    const LogLevels levels_;
    f64 roots_[256];
    u8 flatLevels_[256];  // of windows of one level
    WindowSums<TableCounts> sums_;
    RunningExtremes smallest_, largest_;
    MVBuffer<u8> row_, smallestRow_, largestRow_, isDoubtful_;
};

}  // namespace

ZLV_EXPORT u32 ZLV40_GeometricMeanFilter(const u8* src, u32 width, u32 height, u8* dst, u32 bytesPerPixel,
                                         u32 srcRowStride, u32 dstRowStride, i32 filterSize, u32 channelMask)
{
    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, filterSize, channelMask);
    return InWindowFilter(call, kLargestSideOfSignedArea,
                          [&](CallFrame& frame) { return RunOverChannels(frame, call, GeometricMean(call)); });
}
