// Shadows, bevels and glows.
#include "golden/golden.h"
#include "plain/plain_layer_styles.h"

#include "zlv40.h"

#include <cstring>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr PlainBlurMath kMath = {std::exp, std::sin, std::cos, std::pow};
constexpr std::uint32_t kColor = 0x2080C0;

// The start of the new image, as far as the output holds it.
void Keep(GoldenPicture& p, const std::uint8_t* pixels, std::size_t count)
{
    std::memcpy(p.output.data(), pixels, std::min(count, p.output.size()));
}

// Of the picture's upper left part, so that most of the result fits.
GoldenRow ShadowRow(const char* name, std::uint32_t channels, std::uint32_t flags, std::uint64_t checksum)
{
    constexpr std::uint32_t kPartWidth = 40, kPartHeight = 20;
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                std::uint8_t* made = nullptr;
                std::uint32_t width = 0, height = 0;
                const std::uint32_t result =
                    ZLV40_DropShadowEx(p.image.data(), kPartWidth, kPartHeight, channels, p.stride, &made, &width,
                                       &height, 7, 50, 0xF0F0F0, kColor, 135, nullptr, nullptr, flags);
                Keep(p, made, std::size_t(width) * height * channels);
                ZLV40_FreeBlock(made);
                return result;
            },
            [=](GoldenPicture& p) {
                const PlainShadowResult made =
                    PlainDropShadow({p.image.data(), kPartWidth, kPartHeight, channels, p.stride},
                                    {7, 50, 135, 0xF0F0F0, kColor, flags}, kMath);
                Keep(p, made.pixels.data(), made.pixels.size());
            },
            checksum};
}

GoldenRow BevelRow(const char* name, std::uint32_t channels, double blur, std::uint64_t checksum)
{
    return {
        name,
        channels,
        1,
        [=](GoldenPicture& p) {
            return ZLV40_ShadeBevelEdge(p.image.data(), kWidth, kHeight, p.stride, 6, channels, 1, 130, 150, 70, 50,
                                        blur);
        },
        [=](GoldenPicture& p) {
            PlainBevel(p.image.data(), kWidth, kHeight, channels, p.stride, true, {6, 130, 150, 70, 50, blur}, kMath);
        },
        checksum};
}

GoldenRow GlowRow(const char* name, decltype(&ZLV40_OuterGlowRGBA) apply, decltype(&PlainOuterGlow) plain,
                  std::uint64_t checksum)
{
    return {
        name,
        4,
        1,
        [=](GoldenPicture& p) { return apply(p.image.data(), kWidth, kHeight, p.stride, 10, 0.8, kColor, nullptr); },
        [=](GoldenPicture& p) {
            plain(p.image.data(), kWidth, kHeight, p.stride, {10, 0.8, kColor, nullptr}, kMath);
        },
        checksum};
}

}  // namespace

std::vector<GoldenRow> LayerStylesGolden()
{
    return {
        ShadowRow("DropShadowEx, opaque", 3, 0, 0x5E36D4EB38A41C1C),
        ShadowRow("DropShadowEx, alpha", 4, 3, 0x2A3AC74D52C9A729),
        BevelRow("ShadeBevelEdge", 4, 0, 0x7EF5C20E6314052D),
        BevelRow("ShadeBevelEdge, blurred", 3, 150, 0xDB24B315E21FAB90),
        GlowRow("OuterGlowRGBA", ZLV40_OuterGlowRGBA, PlainOuterGlow, 0x00F7E413B4310761),
        GlowRow("InnerGlowRGBA", ZLV40_InnerGlowRGBA, PlainInnerGlow, 0xA94DC2BCB87B769A),
    };
}

}  // namespace zlvtest
