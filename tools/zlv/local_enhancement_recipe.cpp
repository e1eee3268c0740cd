// The enhancement of regions by their local mean and contrast, measured against the whole picture's.
#include "catalogue.h"
#include "zlv40.h"

#include <array>

namespace zlv {

// Named by the catalogue.
uint32_t CallLocalEnhancement(const EffectCall& call);

uint32_t CallLocalEnhancement(const EffectCall& call)
{
    constexpr uint32_t kMostChannels = 8, kAllChannels = 255;
    const ImageGroup &source = call.source, &target = call.target;
    std::array<double, kMostChannels> means{}, deviations{};
    const uint32_t isMeasured =
        ZLV40_FindImageMean(source.samples, source.width, source.height, source.channels, source.stride, means.data(),
                            kAllChannels) &&
        ZLV40_FindImageStandardDeviation(source.samples, source.width, source.height, source.channels, source.stride,
                                         deviations.data(), kAllChannels);
    if (!isMeasured) return 0;
    return ZLV40_LocalHistogramEnhancement(
        source.samples, source.width, source.height, source.channels, source.stride, target.samples, target.stride,
        static_cast<uint32_t>(call.values[0]), means.data(), deviations.data(), call.values[1], call.values[2],
        call.values[3], call.values[4], kAllChannels | static_cast<uint32_t>(call.values[5]));
}

}  // namespace zlv
