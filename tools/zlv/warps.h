// Warps: effects that say where a picture's pixels come from, alone or several in a list.
#ifndef ZLV_TOOLS_WARPS_H
#define ZLV_TOOLS_WARPS_H

#include "catalogue.h"
#include "chain.h"

#include <functional>

namespace zlv {

// How a picture goes through a list.
struct WarpSettings {
    uint32_t sampling = 1;  // bilinear
    bool clamps = false;    // the edge goes on outside; otherwise there is the background
    bool keeps = false;     // outside there is the picture as it was
    uint32_t background = 0;
};

// The call of an effect that is one warp; `add` does what an AddWarp does.
using AddOneWarp = std::function<uint32_t(uint32_t width, uint32_t height, std::span<const double> values)>;
uint32_t WarpOnce(const EffectCall& call, const AddOneWarp& add, const WarpSettings& settings = {});

// The warps, each with its values, as one call: the picture is sampled once.
uint32_t WarpByList(const EffectCall& call, const std::vector<ChainStep>& warps, const WarpSettings& settings);

// How far the warps spread the positions of such a picture's pixels.
struct WarpExtent {
    double minX, minY, maxX;
};

WarpExtent ExtentOf(const std::vector<ChainStep>& warps, uint32_t width, uint32_t height);

}  // namespace zlv

#endif
