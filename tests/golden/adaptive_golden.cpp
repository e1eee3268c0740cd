// Adaptive filters.
#include "golden/golden.h"
#include "plain/plain_adaptive.h"

#include <cstring>

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

PlainAdaptiveImages Images(GoldenPicture& p)
{
    return {p.image.data(), int(kWidth), int(kHeight), int(p.channels), p.stride, p.output.data(), p.stride};
}

bool GoOn(std::uint32_t, std::uint32_t) { return true; }

GoldenRow UnsharpRow(const char* name, std::uint32_t channels, double amount, int flags, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_AdaptiveUnsharpMask(p.image.data(), kWidth, kHeight, std::int32_t(channels), p.stride,
                                                 p.stride, p.output.data(), 12, amount, std::int8_t(flags));
            },
            [=](GoldenPicture& p) { PlainUnsharpMask(Images(p), 12, amount, flags, GoOn); },
            checksum};
}

GoldenRow TrimmedRow(const char* name, double noiseLevel, double bandFactor, std::uint32_t mask, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_AdaptiveDWMTMFilter(p.image.data(), kWidth, kHeight, p.output.data(), 3, p.stride,
                                                 p.stride, noiseLevel, bandFactor, mask);
            },
            [=](GoldenPicture& p) { PlainTrimmedMean(Images(p), noiseLevel, bandFactor, mask, GoOn); },
            checksum};
}

// Numbers go to the start of the output.
template <class Export, class Plain>
GoldenRow StatisticsRow(const char* name, Export function, Plain plain, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                double numbers[3];
                const std::uint32_t result = function(p.image.data(), kWidth, kHeight, 3, p.stride, numbers, 7);
                std::memcpy(p.output.data(), numbers, sizeof numbers);
                return result;
            },
            [=](GoldenPicture& p) {
                for (int c = 0; c < 3; ++c) {
                    const double number = plain(Images(p), c);
                    std::memcpy(p.output.data() + std::size_t(c) * sizeof number, &number, sizeof number);
                }
            },
            checksum};
}

GoldenRow EnhancementRow(const char* name, int windowSize, std::uint32_t flags, std::uint64_t checksum)
{
    static const double means[] = {127, 120, 130}, deviations[] = {74, 70, 78};
    const PlainEnhancement e = {windowSize, means, deviations, 0.95, 0.6, 1.02, 1.6, flags};
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_LocalHistogramEnhancement(
                    p.image.data(), kWidth, kHeight, 3, p.stride, p.output.data(), p.stride, std::uint32_t(windowSize),
                    means, deviations, e.meanFactor, e.lowDeviationFactor, e.highDeviationFactor, e.gain, flags);
            },
            [=](GoldenPicture& p) { PlainLocalEnhancement(Images(p), e, GoOn); },
            checksum};
}

}  // namespace

std::vector<GoldenRow> AdaptiveGolden()
{
    return {
        UnsharpRow("AdaptiveUnsharpMask, two kernels", 3, 0.6, 0, 0xD25E4769B8470715),
        UnsharpRow("AdaptiveUnsharpMask, two kernels, alpha", 4, 1.4, ZLV40_UNSHARP_KEEP_ALPHA, 0xE164E5FFAA7DE8DD),
        UnsharpRow("AdaptiveUnsharpMask, eight kernels, softening", 1, -0.35, ZLV40_UNSHARP_EIGHT_KERNELS,
                   0x1AAFEAA44E469126),
        TrimmedRow("AdaptiveDWMTMFilter", 20, 2, 7, 0xFDF7BDE000947C6C),
        TrimmedRow("AdaptiveDWMTMFilter, two channels", 33.3, 3, 5, 0x77A57A123EB692E2),
        StatisticsRow("FindImageMean", ZLV40_FindImageMean, PlainMean, 0x7B523CEC2062E356),
        StatisticsRow("FindImageStandardDeviation", ZLV40_FindImageStandardDeviation, PlainDeviation,
                      0x9ABB25707DC2218C),
        EnhancementRow("LocalHistogramEnhancement", 3, 7, 0x4D798B03984BDDAC),
        EnhancementRow("LocalHistogramEnhancement, even window, dark regions", 6, 5 | ZLV40_DARK_REGIONS,
                       0xFF1906F0D0B1B055),
        EnhancementRow("LocalHistogramEnhancement, large window", 21, 7, 0x5BC8E6BE84E43E1D),
    };
}

}  // namespace zlvtest
