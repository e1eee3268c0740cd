// The crackle over a copy of the picture: the library's relief leaves the outermost pixels as it finds them.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>

namespace zlv {

// Named by the catalogue.
uint32_t CallCrackle(const EffectCall& call);

uint32_t CallCrackle(const EffectCall& call)
{
    const ImageGroup &source = call.source, &target = call.target;
    const size_t rowBytes = size_t{target.width} * target.channels;
    for (uint32_t y = 0; y < target.height; ++y) {
        std::copy_n(source.samples + size_t{y} * source.stride, rowBytes, target.samples + size_t{y} * target.stride);
    }
    return ZLV40_CrackleRGB(source.samples, source.width, source.height, source.stride, target.samples, target.stride,
                            static_cast<uint32_t>(call.values[0]), static_cast<int32_t>(call.values[1]),
                            static_cast<uint32_t>(call.values[2]));
}

}  // namespace zlv
