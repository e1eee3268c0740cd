#include "warps.h"

#include "errors.h"
#include "zlv40.h"

namespace zlv {
namespace {

// The library's list on this thread: empty before and after.
struct WarpList {
    WarpList() { ZLV40_ClearAllTransforms(); }
    ~WarpList() { ZLV40_ClearAllTransforms(); }
    WarpList(const WarpList&) = delete;
    WarpList& operator=(const WarpList&) = delete;

    bool Add(const std::vector<ChainStep>& warps, uint32_t width, uint32_t height)
    {
        for (const ChainStep& warp : warps)
            if (warp.effect->addWarp(width, height, warp.values) == 0) return false;
        return true;
    }
};

uint32_t Process(const EffectCall& call, const WarpSettings& settings)
{
    const uint32_t flags = settings.sampling | (settings.keeps ? uint32_t{ZLV40_KEEP_DESTINATION} : 0u) |
                           (settings.clamps ? uint32_t{ZLV40_CLAMP_POINTS} : 0u);
    return ZLV40_TransformProcess(call.source.samples, call.source.width, call.source.height, call.source.stride,
                                  call.target.samples, call.target.stride, static_cast<int32_t>(call.target.channels),
                                  flags, settings.background);
}

}  // namespace

uint32_t WarpOnce(const EffectCall& call, const AddOneWarp& add, const WarpSettings& settings)
{
    const WarpList list;
    if (add(call.source.width, call.source.height, call.values) == 0) return 0;
    return Process(call, settings);
}

uint32_t WarpByList(const EffectCall& call, const std::vector<ChainStep>& warps, const WarpSettings& settings)
{
    WarpList list;
    return list.Add(warps, call.source.width, call.source.height) ? Process(call, settings) : 0;
}

WarpExtent ExtentOf(const std::vector<ChainStep>& warps, uint32_t width, uint32_t height)
{
    WarpList list;
    WarpExtent extent{};
    double again;
    if (!list.Add(warps, width, height) ||
        ZLV40_GetTransformDimensions(width, height, &extent.minX, &extent.minY, &extent.maxX, &again) == 0)
        throw PictureError("The library does not take these warps for a picture of this size.");
    return extent;
}

}  // namespace zlv
