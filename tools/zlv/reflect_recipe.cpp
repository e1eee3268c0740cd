// The reflection within a picture: its rows below the waterline become the reflection of those above.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>

namespace zlv {

// Named by the catalogue.
uint32_t CallReflection(const EffectCall& call);

uint32_t CallReflection(const EffectCall& call)
{
    constexpr double kPercent = 100;
    const ImageGroup &source = call.source, &target = call.target;
    const double fadeStart = call.values[1], fadeEnd = call.values[2];
    const auto color = static_cast<uint32_t>(call.values[3]), fadeShape = static_cast<uint32_t>(call.values[4]);
    const double ripple = call.values[5];
    const auto rippleScale = static_cast<uint32_t>(call.values[6]);
    // One row at least is reflection.
    const auto kept = static_cast<uint32_t>(source.height * (call.values[0] / kPercent));
    const uint32_t splitRow = std::min(kept, source.height - 1);
    return ZLV40_ReflectImage(source.samples, source.width, source.height, 3, source.stride, target.samples,
                              target.stride, splitRow, source.height - splitRow, fadeStart, fadeEnd, color, fadeShape,
                              ripple, rippleScale, ZLV40_REFLECT_RIPPLED);
}

}  // namespace zlv
