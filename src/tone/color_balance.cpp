// Colour balance: nine sliders and a brightness, as one table a channel.
#include "base/image_view.h"
#include "base/table_pass.h"
#include "runtime/clamp.h"
#include "runtime/frame.h"

#include <algorithm>

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr u32 kColours = 3;
constexpr i32 kMiddle = 128;

// One slider a colour, for one range of tones.
struct Sliders {
    i32 red, green, blue;

    Sliders Clamped() const
    {
        const i32 lower = -128, upper = 128;
        return {ClampInt(red, &lower, &upper), ClampInt(green, &lower, &upper), ClampInt(blue, &lower, &upper)};
    }

    // Moved up together until none is below 0.
    Sliders Raised() const
    {
        const i32 below = std::min({red, green, blue, 0});
        return {red - below, green - below, blue - below};
    }
};

// What moves the levels of one channel, in 1/255 of a level and a step of its weight.
struct Pull {
    i64 middle, shadow, highlight;
};

void FillTable(u8* table, const Pull& pull, i64 brightness)
{
    for (i64 i = 0; i < 256; ++i) {
        const i64 weight = i < kMiddle ? i : 2 * kMiddle - i;
        const i64 moved = pull.middle * weight - pull.shadow * (255 - i) + pull.highlight * i - 8 * weight * brightness;
        table[i] = u8(std::clamp<i64>(i + moved / 255, 0, 255));
    }
}

struct BalanceTables {
    u8 levels[kColours][256];

    BalanceTables(const Sliders& middle, const Sliders& shadow, const Sliders& highlight, i32 brightness)
    {
        // A middle and a shadow slider pull at the two other colours, the other way.
        const auto [red, green, blue] = middle;
        FillTable(levels[0], {red - green - blue, shadow.green + shadow.blue, highlight.red}, brightness);
        FillTable(levels[1], {green - red - blue, shadow.blue + shadow.red, highlight.green}, brightness);
        FillTable(levels[2], {blue - red - green, shadow.red + shadow.green, highlight.blue}, brightness);
    }
};

}  // namespace

ZLV_EXPORT u32 ZLV40_AdjustImageColorBalance(u8* buffer, u32 width, u32 height, i32 bytesPerPixel, u32 rowStride,
                                             i32 midRed, i32 midGreen, i32 midBlue, i32 shadowRed, i32 shadowGreen,
                                             i32 shadowBlue, i32 highRed, i32 highGreen, i32 highBlue, i32 brightness,
                                             u8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        // The base layer's code is not kept: a cancel returns 0 and leaves none.
        const ForwardingSpan progress(frame);
        if (!buffer || !IsColour(bytesPerPixel)) return frame.Fail(Error::BadArgument);

        const BalanceTables balance(Sliders{midRed, midGreen, midBlue}.Clamped(),
                                    Sliders{shadowRed, shadowGreen, shadowBlue}.Clamped().Raised(),
                                    Sliders{highRed, highGreen, highBlue}.Clamped().Raised(), brightness);
        const u8* const red = balance.levels[0];
        const u8* const green = balance.levels[1];
        const u8* const blue = balance.levels[2];
        // Alpha first means green and blue in their usual channels and red in the fourth.
        const bool isAlphaFirst = flags & ZLV40_ALPHA_FIRST;
        const void* const tables[] = {isAlphaFirst ? nullptr : red, green, blue, isAlphaFirst ? red : nullptr};
        return MV40_ApplyLUTsToImage(buffer, width, height, u32(bytesPerPixel), rowStride, tables, 0);
    });
}
