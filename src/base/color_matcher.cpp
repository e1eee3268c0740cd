#include "base/color_matcher.h"

#include "base/palette.h"

#include <algorithm>

namespace zlv {

namespace {

ColorMatcherHandle* CreateHandle(MVThreadContext& context, const u8* palette, u32 count)
{
    constexpr const char* kName = "MV40_CreateColorMatcher";
    auto* const handle = static_cast<ColorMatcherHandle*>(platform::AllocateClientBlock(sizeof(ColorMatcherHandle)));
    if (!handle) {
        ReportBaseError(context, Error::OutOfMemory, kName, nullptr);
        return nullptr;
    }
    handle->matcher = new CMVColorMatch;
    if (!handle->matcher) {
        ReportBaseError(context, Error::OutOfMemory, kName, nullptr);
        platform::FreeClientBlock(handle);
        // The call ends like any other, and so the log alone keeps the code.
        ReportBaseError(context, Error::None, kName, nullptr);
        return nullptr;
    }
    handle->matcher->SetPalette(palette, count);
    ReportBaseError(context, Error::None, kName, nullptr);
    return handle;
}

}  // namespace

void CMVColorMatch::SetPalette(const u8* palette, u32 count)
{
    if (palette) palette_.Set(palette, std::min(count, kMostEntries), FirstByteOfEntry(0));
    ForgetAnswers();
}

u32 CMVColorMatch::FindClosest(u8 first, u8 second, u8 third)
{
    const u32 key = PackColor(first, second, third);
    ColorMatchCacheEntry& entry = cache_[(key * 0x9E3779B1u) >> (32 - kSlotBits)];
    if (entry.key != key) entry = {key, palette_.FindNearest(key)};
    return entry.index;
}

void CMVColorMatch::ForgetAnswers()
{
    for (ColorMatchCacheEntry& entry : cache_) entry.key = kNoKey;
}

ColorMatcherHandle* MV40_CreateColorMatcher(const u8* palette, u32 count)
{
    MVThreadContext* const context = baseContexts.Get();
    return context ? CreateHandle(*context, palette, count) : nullptr;
}

u32 MV40_DestroyColorMatcher(ColorMatcherHandle* handle)
{
    return InBaseCall("MV40_DestroyColorMatcher", [&](MVThreadContext&, Error& error) {
        if (!handle) {
            error = Error::BadArgument;
            return 0u;
        }
        delete handle->matcher;
        platform::FreeClientBlock(handle);
        return 1u;
    });
}

i32 MV40_FindClosestColor(ColorMatcherHandle* handle, u8 first, u8 second, u8 third)
{
    constexpr u32 kNoIndex = 0xFFFFFFFF;
    return i32(InBaseCall("MV40_FindClosestColor", [&](MVThreadContext&, Error& error) {
        if (handle) return handle->matcher->FindClosest(first, second, third);
        error = Error::BadArgument;
        return kNoIndex;
    }));
}

}  // namespace zlv
