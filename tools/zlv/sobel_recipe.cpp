// Gradient magnitudes as a picture: they have 16 bits and go up to 2040.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallSobelPicture(const EffectCall& call);

uint32_t CallSobelPicture(const EffectCall& call)
{
    constexpr uint32_t kAllChannels = 255;
    const ImageGroup &source = call.source, &target = call.target;
    const uint32_t samples = source.width * source.channels;
    std::vector<uint16_t> magnitudes(size_t{samples} * source.height);
    const uint32_t result = ZLV40_SobelFilter(source.samples, source.width, source.height, source.channels,
                                              source.stride, magnitudes.data(), samples, kAllChannels);
    if (!result) return result;
    for (uint32_t y = 0; y < target.height; ++y) {
        for (uint32_t i = 0; i < samples; ++i) {
            const double level = magnitudes[size_t{y} * samples + i] * call.values[0];
            target.samples[size_t{y} * target.stride + i] = static_cast<uint8_t>(std::min(level, 255.0));
        }
    }
    return result;
}

}  // namespace zlv
