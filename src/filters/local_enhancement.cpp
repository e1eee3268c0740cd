// Local histogram enhancement: samples of moderate local contrast, in regions that are darker or brighter than the
// image, are multiplied.
//
// Sample by sample that takes two scans of a window. But mean and deviation of a window only decide, and integers tell
// the decision: the sum of its samples and that of their squares, which move along with the window. The scans are made
// where the deviation is so near to a limit that the roundings of its sum count (spread_limits.h).
#include "base/repeated_sum.h"
#include "base/table_pass.kernels.h"
#include "filters/doubtful_samples.h"
#include "filters/local_enhancement.kernels.h"
#include "filters/spread_limits.h"
#include "filters/window_sums.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <cstring>
#include <limits>
#include <type_traits>

using namespace zlv;

namespace {

__extension__ using i128 = __int128;

constexpr u32 kLargestWindow = 65535;  // its area has 32 bits
constexpr u32 kChannelBits = 255;

// The largest windows, of odd and of even sizes, whose squares' sum has 32 bits and whose spread has 63.
constexpr u32 kLargestOddSize = 257;
constexpr u32 kLargestEvenSize = 226;

struct Factors {
    f64 mean, lowDeviation, highDeviation;
    bool isForDarkRegions;
};

// What decides about the samples of a channel.
struct ChannelLimits {
    f64 mean, low, high;
};

// The first sum up to `end` for which the predicate holds, which goes on holding; otherwise `end`.
template <class Predicate>
u64 FirstSum(u64 end, Predicate holds)
{
    u64 first = 0;
    while (first < end) {
        const u64 middle = first + (end - first) / 2;
        if (holds(middle)) end = middle;
        else first = middle + 1;
    }
    return first;
}

template <class Number>
constexpr Number kTop = std::numeric_limits<Number>::max();
template <>
constexpr i128 kTop<i128> = i128(1) << 126;

// The sums of windows that are not too dark, or not too bright.
template <class Number>
SpreadRange<Number> FindSums(const SpreadOf& spread, f64 limit, bool isForDarkRegions)
{
    const f64 area = f64(spread.area);
    const u64 end = 255 * spread.samples + 1;
    if (isForDarkRegions) return {0, Number(FirstSum(end, [=](u64 sum) { return f64(sum) / area > limit; })) - 1};
    return {Number(FirstSum(end, [=](u64 sum) { return !(f64(sum) / area < limit); })), kTop<Number>};
}

bool Decide(const u16* sums, const u32* squares, const SpreadFactors<i32>& factors, const LimitRows<i32>& limits,
            size_t period, size_t count, u8* isEnhanced, u8* isDoubtful)
{
    return Kernels<LocalEnhancementKernels>().decideNarrow(sums, squares, factors, limits, period, count, isEnhanced,
                                                           isDoubtful);
}

bool Decide(const u32* sums, const u32* squares, const SpreadFactors<i64>& factors, const LimitRows<i64>& limits,
            size_t period, size_t count, u8* isEnhanced, u8* isDoubtful)
{
    return Kernels<LocalEnhancementKernels>().decide(sums, squares, factors, limits, period, count, isEnhanced,
                                                     isDoubtful);
}

// Of large windows, which are rare.
bool Decide(const u64* sums, const u64* squares, const SpreadFactors<i128>& factors, const LimitRows<i128>& limits,
            size_t period, size_t count, u8* isEnhanced, u8* isDoubtful)
{
    bool anyDoubtful = false;
    for (size_t i = 0, at = 0; i < count; ++i) {
        const i128 sum = i128(sums[i]);
        const i128 spread = factors.squareFactor * i128(squares[i]) - factors.sumFactor * (sum * sum);
        const bool hasSum = sum >= limits.leastSum[at] && sum <= limits.largestSum[at];
        const bool isSure = spread >= limits.leastSpread[at] && spread <= limits.largestSpread[at];
        const bool isPossible = spread >= limits.leastPossible[at] && spread <= limits.largestPossible[at];
        isEnhanced[i] = hasSum && isSure ? 255 : 0;
        isDoubtful[i] = hasSum && isPossible && !isSure ? 255 : 0;
        anyDoubtful = anyDoubtful || isDoubtful[i];
        if (++at == period) at = 0;
    }
    return anyDoubtful;
}

// Number is what spreads are counted in.
template <class Number, class SumCounts, class SquareCounts>
class LocalEnhancement {
public:
    LocalEnhancement(const WindowCall& call, const Factors& factors, const f64* means, const f64* deviations,
                     const u8* gained, const SumCounts& sumCounts, const SquareCounts& squareCounts)
        : call_(call),
          gained_(gained),
          spread_(u32(call.filterSize)),
          factors_{Number(spread_.SquareFactor()), Number(spread_.SumFactor())},
          channels_(call.Selected()),
          sums_(call, sumCounts),
          squares_(call, squareCounts)
    {
        for (u32 i = 0; i < channels_.Count(); ++i) {
            const u32 c = channels_.At(i);
            limits_[c] = {means[c] * factors.mean, deviations[c] * factors.lowDeviation,
                          deviations[c] * factors.highDeviation};
            SetLimits(i, limits_[c], factors.isForDarkRegions);
        }
    }

    // False when memory is out.
    [[nodiscard]] bool Start()
    {
        const u32 count = channels_.Count();
        const u64 rowBytes = u64(call_.src.width) * count;
        if (!sums_.Prepare(count) || !squares_.Prepare(count)) return false;
        for (MVBuffer<u8>* const row : {&own_, &row_, &gainedRow_, &isEnhanced_, &isDoubtful_}) {
            if (!row->Resize(rowBytes)) return false;
        }
        sums_.Start(channels_);
        squares_.Start(channels_);
        return true;
    }

    void MakeRow(u32 y)
    {
        const size_t count = size_t(call_.src.width) * channels_.Count();
        const auto* const sums = sums_.Next();
        const auto* const squares = squares_.Next();
        u8* const isEnhanced = isEnhanced_.GetData();
        if (Decide(sums, squares, factors_, rows_, Period(), count, isEnhanced, isDoubtful_.GetData())) {
            MakeDoubtfulSamples(isDoubtful_.GetData(), call_.src.width, channels_, isEnhanced,
                                [&](size_t place, u32 x, u32 channel) {
                                    const f64 mean = f64(sums[place]) / f64(spread_.area);
                                    const f64 deviation = OrderedDeviation(x, y, channel, mean);
                                    const ChannelLimits& limits = limits_[channel];
                                    return deviation < limits.low || deviation > limits.high ? u8(0) : u8(255);
                                });
        }
        const u8* const own = SelectedSamples(call_.src, y, channels_, own_.GetData());
        u8* const gained = gainedRow_.GetData();
        std::memcpy(gained, own, count);
        Kernels<TablePassKernels>().mapSamples(gained, count, gained_);
        MakeSelectedSamples(call_.dst, y, channels_, row_.GetData(), [&](u8* out) {
            Kernels<LocalEnhancementKernels>().choose(own, gained, isEnhanced, count, out);
        });
    }

private:
    size_t Period() const { return channels_.Count() * kLimitBlock; }

    // For the samples of one of the selected channels.
    void SetLimits(u32 index, const ChannelLimits& limits, bool isForDarkRegions)
    {
        const auto sums = FindSums<Number>(spread_, limits.mean, isForDarkRegions);
        const auto spreads = FindSpreadLimits<Number>(spread_, limits.low, limits.high, kTop<Number>);
        for (size_t at = index; at < Period(); at += channels_.Count()) {
            rows_.leastSum[at] = sums.least;
            rows_.largestSum[at] = sums.largest;
            rows_.leastSpread[at] = spreads.sure.least;
            rows_.largestSpread[at] = spreads.sure.largest;
            rows_.leastPossible[at] = spreads.possible.least;
            rows_.largestPossible[at] = spreads.possible.largest;
        }
    }

    // Row by row, with the border pixels repeated.
    f64 OrderedDeviation(u32 x, u32 y, u32 channel, f64 mean) const
    {
        const i64 radius = call_.Radius(), lastX = i64(call_.src.width) - 1, lastY = i64(call_.src.height) - 1;
        const i64 left = x - radius, right = x + radius;
        const i64 firstInside = std::max<i64>(left, 0), lastInside = std::min(right, lastX);
        f64 sum = 0;
        for (i64 j = y - radius; j <= y + radius; ++j) {
            const u8* const row = call_.src.Row(u32(std::clamp<i64>(j, 0, lastY))) + channel;
            const auto square = [&](i64 i) {
                const f64 difference = row[size_t(i) * call_.src.channels] - mean;
                return difference * difference;
            };
            sum = AddRepeatedly(sum, square(0), u64(firstInside - left));
            for (i64 i = firstInside; i <= lastInside; ++i) sum += square(i);
            sum = AddRepeatedly(sum, square(lastX), u64(right - lastInside));
        }
        return Sqrt(sum / f64(spread_.area));
    }

    const WindowCall& call_;
    const u8* const gained_;  // what the levels become
    const SpreadOf spread_;
    const SpreadFactors<Number> factors_;
    const ChannelList channels_;
    ChannelLimits limits_[8] = {};
    LimitRows<Number> rows_;
    WindowSums<SumCounts> sums_;
    WindowSums<SquareCounts> squares_;
    MVBuffer<u8> own_, row_, gainedRow_, isEnhanced_, isDoubtful_;
};

// The low bytes of the levels times the gain. False when those are not all numbers of 32 bits.
bool MakeGained(f64 gain, u8 (&gained)[256])
{
    if (!(-0x1p31 < 255 * gain && 255 * gain < 0x1p31)) return false;
    for (u32 level = 0; level < 256; ++level) gained[level] = u8(i32(level * gain));
    return true;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_LocalHistogramEnhancement(const u8* src, u32 width, u32 height, u32 bytesPerPixel,
                                               u32 srcRowStride, u8* dst, u32 dstRowStride, u32 windowSize,
                                               const f64* means, const f64* deviations, f64 meanFactor,
                                               f64 lowDeviationFactor, f64 highDeviationFactor, f64 gain, u32 flags)
{
    u8 gained[256];
    if (!means || !deviations || srcRowStride == 0 || dstRowStride == 0) return RefuseCall(Error::BadArgument);
    if (windowSize == 0 || windowSize > kLargestWindow) return RefuseCall(Error::BadArgument);
    if (!MakeGained(gain, gained)) return RefuseCall(Error::BadArgument);

    const WindowCall call(src, width, height, dst, bytesPerPixel, srcRowStride, dstRowStride, i32(windowSize),
                          flags & kChannelBits);
    const Factors factors = {meanFactor, lowDeviationFactor, highDeviationFactor, (flags & ZLV40_DARK_REGIONS) != 0};
    return InWindowFilter(call, kLargestWindow, [&](CallFrame& frame) {
        const auto run = [&]<class Number>(Number, const auto& sumCounts, const auto& squareCounts) {
            return RunOverRows(
                frame, call,
                LocalEnhancement<Number, std::decay_t<decltype(sumCounts)>, std::decay_t<decltype(squareCounts)>>(
                    call, factors, means, deviations, gained, sumCounts, squareCounts));
        };
        const bool isOdd = windowSize % 2 == 1;
        if (isOdd && windowSize > 1 && windowSize <= kLargestNarrowSide) {
            return run(i32(0), SampleCounts<u16>(), SquareCounts());
        }
        if (windowSize <= (isOdd ? kLargestOddSize : kLargestEvenSize)) {
            return run(i64(0), SampleCounts<u32>(), SquareCounts());
        }
        u64 levels[256], squares[256];
        for (u32 level = 0; level < 256; ++level) {
            levels[level] = level;
            squares[level] = level * level;
        }
        return run(i128(0), TableCounts{levels}, TableCounts{squares});
    });
}
