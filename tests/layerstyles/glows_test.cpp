#include "layerstyles/style_support.h"

namespace zlvtest {
namespace {

using Glow = decltype(&ZLV40_OuterGlowRGBA);
using Plain = decltype(&PlainOuterGlow);

constexpr struct {
    const char* name;
    Glow apply;
    Plain plain;
} kGlows[] = {{"outer", ZLV40_OuterGlowRGBA, PlainOuterGlow}, {"inner", ZLV40_InnerGlowRGBA, PlainInnerGlow}};

constexpr std::uint32_t kColor = 0x80F03CA0;

std::uint32_t Call(Glow glow, std::uint8_t* image, const StyleImage& s, const PlainGlow& g)
{
    return glow(image, s.width, s.height, s.Stride(), g.size, g.opacity, g.color, g.curve);
}

void ExpectPlain(const StyleImage& image, const PlainGlow& glow)
{
    for (const auto& kind : kGlows) {
        SCOPE(kind.name, image.width, "x", image.height, "size", glow.size, "opacity", glow.opacity);
        const Bytes before = StylePixels(image, image.width);
        GuardedBuffer got(before.size(), Flush::ToEnd);
        std::copy(before.begin(), before.end(), got.Data());
        EXPECT_EQ(Call(kind.apply, got.Data(), image, glow), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        Bytes wanted = before;
        kind.plain(wanted.data(), image.width, image.height, image.Stride(), glow, kStyleMath);
        EXPECT_EQ(Difference(wanted.data(), got.Data(), wanted.size()), "");
    }
}

constexpr StyleImage kImages[] = {{1, 1, 4}, {2, 9, 4, 3}, {17, 13, 4, 5}, {70, 30, 4}, {130, 3, 4, 1}};

TEST(Glows, EveryTargetEqualsPlain)
{
    const Bytes curve = RandomBytes(256, 2);
    OnEveryStyleTarget([&] {
        for (const StyleImage& image : kImages) {
            for (const std::uint32_t size : {0u, 1u, 2u, 3u, 7u, 11u, 12u, 50u, 2000u}) {
                for (const double opacity : {1.0, 0.3}) {
                    ExpectPlain(image, {size, opacity, kColor, nullptr});
                    ExpectPlain(image, {size, opacity, kColor, curve.data()});
                }
            }
        }
    });
}

TEST(Glows, OpacityIsLimited)
{
    for (const double opacity : {-1.0, 0.0, 2.0, 1e300, -1e300})
        ExpectPlain({17, 13, 4}, {6, opacity, kColor, nullptr});
}

TEST(Glows, WithoutOpacityTheInnerGlowChangesNothing)
{
    const StyleImage image = {17, 13, 4};
    const Bytes before = StylePixels(image, 1);
    Bytes pixels = before;
    EXPECT_EQ(Call(ZLV40_InnerGlowRGBA, pixels.data(), image, {6, 0, kColor, nullptr}), 1u);
    EXPECT_EQ(pixels, before);
}

TEST(Glows, WithoutOpacityTheOuterGlowKeepsTheShape)
{
    const StyleImage image = {17, 13, 4};
    const Bytes before = StylePixels(image, 1);
    const Bytes zeros(256, 0);
    for (const PlainGlow& glow : {PlainGlow{6, 0, kColor, nullptr}, PlainGlow{6, 1, kColor, zeros.data()}}) {
        Bytes pixels = before;
        EXPECT_EQ(Call(ZLV40_OuterGlowRGBA, pixels.data(), image, glow), 1u);
        for (std::size_t i = 3; i < pixels.size(); i += 4) EXPECT_EQ(pixels[i], before[i]);
    }
}

TEST(Glows, AnOpaqueImageHasNoInnerGlowAndStaysOpaque)
{
    const StyleImage image = {17, 13, 4};
    Bytes before = RandomBytes(image.Size(), 1);
    for (std::size_t i = 3; i < before.size(); i += 4) before[i] = 255;
    Bytes pixels = before;
    EXPECT_EQ(Call(ZLV40_InnerGlowRGBA, pixels.data(), image, {6, 1, kColor, nullptr}), 1u);
    EXPECT_EQ(pixels, before);
    EXPECT_EQ(Call(ZLV40_OuterGlowRGBA, pixels.data(), image, {6, 1, kColor, nullptr}), 1u);
    EXPECT_EQ(pixels, before);
}

TEST(Glows, TransparentPixelsHaveNoInnerGlow)
{
    const StyleImage image = {17, 13, 4};
    const Bytes before = StylePixels(image, 1);
    Bytes pixels = before;
    EXPECT_EQ(Call(ZLV40_InnerGlowRGBA, pixels.data(), image, {6, 1, kColor, nullptr}), 1u);
    bool hasChanged = false;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        EXPECT_EQ(pixels[i + 3], before[i + 3]);
        const bool isSame = std::equal(pixels.begin() + i, pixels.begin() + i + 4, before.begin() + i);
        EXPECT_TRUE(isSame || before[i + 3] != 0);
        hasChanged |= !isSame;
    }
    EXPECT_TRUE(hasChanged);
}

TEST(Glows, TheDefaultCurveGoesFrom0To255)
{
    EXPECT_EQ(int(PlainGlowCurve(0, kStyleMath)), 0);
    EXPECT_EQ(int(PlainGlowCurve(255, kStyleMath)), 255);
}

TEST(Glows, BadArgumentsAreRefused)
{
    for (const auto& kind : kGlows) {
        SCOPE(kind.name);
        Bytes pixels(64, 9);
        EXPECT_EQ(Call(kind.apply, nullptr, {4, 4, 4}, {6, 1, kColor, nullptr}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(Call(kind.apply, pixels.data(), {4, 4, 4}, {6, kNotANumber, kColor, nullptr}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(Call(kind.apply, pixels.data(), {0, 4, 4}, {6, 1, kColor, nullptr}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        EXPECT_EQ(Call(kind.apply, pixels.data(), {4, 0, 4}, {6, 1, kColor, nullptr}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        EXPECT_EQ(pixels, Bytes(64, 9));
    }
}

// A row of the halo would be longer than any stride can tell. Nothing is read before that is seen.
TEST(Glows, RowsBeyondAnyStrideHaveNoMemory)
{
    std::uint8_t pixel[4] = {1, 2, 3, 4};
    EXPECT_EQ(ZLV40_OuterGlowRGBA(pixel, 0x40000000, 1, 0, 1, 1, kColor, nullptr), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
}

TEST(Glows, CalledDirectlyTheyReportNothing)
{
    for (const auto& kind : kGlows) {
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes pixels(64, 9);
        EXPECT_EQ(Call(kind.apply, pixels.data(), {4, 4, 4}, {6, 1, kColor, nullptr}), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_TRUE(recorder.reports.empty());
    }
}

TEST(Glows, WithinACallbackTheBlurReportsAndACancelIsNotAskedFor)
{
    for (const auto& kind : kGlows) {
        for (const std::size_t at : {0u, 1u, 5u}) {
            SCOPE(kind.name, at);
            ProgressRecorder recorder;
            recorder.cancelAt = at;
            Bytes pixels(24 * 4, 9);
            std::uint32_t result = 9, code = 9;
            WithinACallback(recorder, [&] {
                result = Call(kind.apply, pixels.data(), {6, 4, 4}, {6, 1, kColor, nullptr});
                code = ZLV40_GetLastError();
            });
            EXPECT_EQ(Join(result, code), Join(1, 0));
            EXPECT_EQ(recorder.reports.size(), at == 0 ? 6u + 4u : at);
        }
    }
}

TEST(Glows, EveryAllocationThatFailsIsCodeOne)
{
    for (const auto& kind : kGlows) {
        SCOPE(kind.name);
        const Bytes before = StylePixels({20, 20, 4}, 1);
        Bytes pixels = before;
        EveryAllocationFails(
            [&] {
                pixels = before;
                return Call(kind.apply, pixels.data(), {20, 20, 4}, {6, 1, kColor, nullptr});
            },
            [&] { return pixels == before; });
    }
}

}  // namespace
}  // namespace zlvtest
