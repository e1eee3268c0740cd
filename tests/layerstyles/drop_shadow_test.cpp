#include "layerstyles/style_support.h"

namespace zlvtest {
namespace {

constexpr std::uint32_t kBackground = 0x40C8F0E6, kColor = 0x8020304A;

struct Made {
    std::uint32_t result;
    std::uint8_t* pixels = nullptr;
    std::uint32_t width = 7777, height = 8888;
    point image = {-1, -2}, shadow = {-3, -4};

    ~Made() { ZLV40_FreeBlock(pixels); }
};

void Call(Made& made, const StyleImage& image, const std::uint8_t* src, const PlainShadow& s)
{
    made.result = ZLV40_DropShadowEx(src, image.width, image.height, image.channels, image.Stride(), &made.pixels,
                                     &made.width, &made.height, std::int32_t(s.distance), std::int32_t(s.blurPercent),
                                     s.background, s.color, std::int32_t(s.angle), &made.image, &made.shadow, s.flags);
}

void Call(Made& made, const StyleImage& image, const Bytes& src, const PlainShadow& s)
{
    Call(made, image, src.data(), s);
}

PlainShadow Shadow(std::int64_t distance, std::int64_t blurPercent, std::int64_t angle, std::uint32_t flags = 0)
{
    return {distance, blurPercent, angle, kBackground, kColor, flags};
}

void ExpectPlain(const StyleImage& image, const PlainShadow& s)
{
    SCOPE(image.width, "x", image.height, "x", image.channels, "distance", s.distance, "blur", s.blurPercent, "angle",
          s.angle, "flags", s.flags);
    const Bytes pixels = StylePixels(image, image.width);
    // The opaque way reads packed rows whatever the stride is: they lie within the source.
    GuardedBuffer src(pixels.size(), Flush::ToEnd);
    std::copy(pixels.begin(), pixels.end(), src.Data());
    Made made;
    Call(made, image, src.Data(), s);
    ASSERT_EQ(made.result, 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    const PlainShadowResult wanted =
        PlainDropShadow({pixels.data(), image.width, image.height, image.channels, image.Stride()}, s, kStyleMath);
    ASSERT_EQ(Join(made.width, made.height), Join(wanted.width, wanted.height));
    EXPECT_EQ(Join(made.image.x, made.image.y), Join(wanted.imageX, wanted.imageY));
    EXPECT_EQ(Join(made.shadow.x, made.shadow.y), Join(wanted.shadowX, wanted.shadowY));
    EXPECT_EQ(Difference(wanted.pixels.data(), made.pixels, wanted.pixels.size()), "");
}

TEST(DropShadow, EveryTargetEqualsPlain)
{
    OnEveryStyleTarget([] {
        for (const StyleImage& image : {StyleImage{1, 1, 3}, StyleImage{13, 7, 1}, StyleImage{13, 7, 3, 5},
                                        StyleImage{20, 30, 4, 3}, StyleImage{70, 9, 4}}) {
            for (const std::int64_t angle :
                 {0, 45, 90, 91, 135, 180, 181, 225, 270, 271, 315, 360, 361, 1000, -1, -90}) {
                for (const std::uint32_t flags : {0u, 1u, 2u, 3u}) {
                    if ((flags & 1) && image.channels != 4) continue;
                    ExpectPlain(image, Shadow(10, 50, angle, flags));
                }
            }
        }
    });
}

TEST(DropShadow, EveryBlurEqualsPlain)
{
    for (const std::int64_t blur : {-100, -25, -10, 0, 1, 50, 87, 88, 100, 400}) {
        for (const std::uint32_t flags : {0u, 3u}) {
            ExpectPlain({23, 17, 4}, Shadow(4, blur, 120, flags));
            ExpectPlain({23, 17, 3}, Shadow(-9, blur, 300));
        }
    }
}

TEST(DropShadow, WithoutDistanceAndBlurSevenPixelsAreAdded)
{
    Made made;
    Call(made, {20, 10, 3}, Bytes(600, 9), Shadow(0, 0, 0));
    EXPECT_EQ(Join(made.width, made.height), Join(27, 17));
    EXPECT_EQ(Join(made.image.x, made.image.y, made.shadow.x, made.shadow.y), Join(3, 3, 3, 3));
}

TEST(DropShadow, ADiagonalShiftIsTruncated)
{
    Made made;
    Call(made, {20, 10, 3}, Bytes(600, 9), Shadow(10, 0, 45));
    EXPECT_EQ(Join(made.width, made.height), Join(20 + 7 + 7, 10 + 7 + 7));
}

TEST(DropShadow, HalfATurnThrowsItStraightDown)
{
    Made made;
    Call(made, {20, 10, 3}, Bytes(600, 9), Shadow(10, 0, 180));
    EXPECT_EQ(Join(made.width, made.height), Join(27, 27));
    EXPECT_EQ(Join(made.image.x, made.image.y, made.shadow.x, made.shadow.y), Join(3, 3, 3, 13));
}

TEST(DropShadow, AFullBlurAdds27Pixels)
{
    Made made;
    Call(made, {20, 10, 3}, Bytes(600, 9), Shadow(0, 100, 0));
    EXPECT_EQ(Join(made.width, made.height), Join(47, 37));
}

TEST(DropShadow, AnAngleBelowZeroMayPlaceTheShadowOutside)
{
    Made made;
    Call(made, {6, 6, 3}, Bytes(108, 9), Shadow(50, 0, -90));
    ASSERT_EQ(made.result, 1u);
    EXPECT_EQ(made.shadow.x, 3 - 50);
    // Nothing is drawn there: away from the image there is nothing but the background.
    EXPECT_EQ(made.pixels[(made.height - 1) * made.width * 3], kBackground & 255);
}

TEST(DropShadow, AnyFlagWithAlphaFollowsIt)
{
    Made made;
    Call(made, {4, 4, 4}, Bytes(64, 0), Shadow(2, 0, 135, 2));
    ASSERT_EQ(made.result, 1u);
    for (std::size_t i = 0; i < std::size_t(made.width) * made.height; ++i) EXPECT_EQ(made.pixels[4 * i + 3], 0);
}

TEST(DropShadow, ThePackedFormIsTheSame)
{
    const StyleImage image = {20, 10, 4};
    const Bytes src = StylePixels(image, 1);
    Made made, packed;
    Call(made, image, src, Shadow(10, 50, 200, 3));
    packed.result = ZLV40_DropShadow(src.data(), 20, 10, 4, &packed.pixels, &packed.width, &packed.height, 10, 50,
                                     kBackground, kColor, 200, 3);
    ASSERT_EQ(packed.result, 1u);
    ASSERT_EQ(Join(packed.width, packed.height), Join(made.width, made.height));
    EXPECT_EQ(Difference(made.pixels, packed.pixels, std::size_t(made.width) * made.height * 4), "");
}

TEST(DropShadow, BadArgumentsAreRefused)
{
    const Bytes src(100, 9);
    std::uint8_t* out = nullptr;
    std::uint32_t width = 7777, height = 8888;
    const struct {
        const char* why;
        const std::uint8_t* src;
        std::uint8_t** out;
        std::uint32_t *width, *height;
        std::uint32_t channels, stride, flags;
    } rows[] = {
        {"no source", nullptr, &out, &width, &height, 3, 15, 0},
        {"nowhere for the image", src.data(), nullptr, &width, &height, 3, 15, 0},
        {"nowhere for its width", src.data(), &out, nullptr, &height, 3, 15, 0},
        {"nowhere for its height", src.data(), &out, &width, nullptr, 3, 15, 0},
        {"no channels", src.data(), &out, &width, &height, 0, 15, 0},
        {"two channels", src.data(), &out, &width, &height, 2, 15, 0},
        {"five channels", src.data(), &out, &width, &height, 5, 25, 0},
        {"no alpha to follow", src.data(), &out, &width, &height, 3, 15, 1},
        {"rows that overlap", src.data(), &out, &width, &height, 3, 14, 0},
    };
    for (const auto& row : rows) {
        SCOPE(row.why);
        EXPECT_EQ(ZLV40_DropShadowEx(row.src, 5, 4, row.channels, row.stride, row.out, row.width, row.height, 3, 50, 0,
                                     0, 0, nullptr, nullptr, row.flags),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(Join(width, height), Join(7777, 8888));
}

TEST(DropShadow, ImagesOfAnImpossibleSizeAreOutOfMemory)
{
    const struct {
        const char* why;
        std::int64_t distance, blur, angle;
    } rows[] = {
        {"a blur so far below 0 that nothing is left", 0, -1000, 0},
        {"a blur of millions", 0, INT32_MAX, 0},
        {"a shift beyond 32 bits", INT32_MIN, 0, 0},
        {"to the side", INT32_MIN, 0, 90},
    };
    for (const auto& row : rows) {
        SCOPE(row.why);
        for (const std::uint32_t channels : {3u, 4u}) {
            Made made;
            Call(made, {5, 4, channels}, Bytes(80, 9), Shadow(row.distance, row.blur, row.angle, channels == 4));
            EXPECT_EQ(made.result, 0u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
            EXPECT_EQ(made.pixels, nullptr);
            EXPECT_EQ(made.width, 7777u);
            EXPECT_NE(made.image.x, -1) << "the corners are told all the same";
        }
    }
}

TEST(DropShadow, EmptySourcesHaveAGroundButNoAlpha)
{
    for (const StyleImage& image : {StyleImage{0, 5, 3}, StyleImage{5, 0, 3}, StyleImage{0, 0, 3}}) {
        ExpectPlain(image, Shadow(3, 0, 0));
    }
    Made made;
    Call(made, {0, 5, 4}, Bytes(1), Shadow(3, 0, 0, 1));
    EXPECT_EQ(made.result, 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
}

TEST(DropShadow, CalledDirectlyItReportsNothing)
{
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Made made;
    Call(made, {5, 4, 3}, Bytes(60, 9), Shadow(3, 50, 0));
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(made.result, 1u);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(DropShadow, WithinACallbackTheBlurReports)
{
    for (const std::uint32_t flags : {0u, 1u}) {
        ProgressRecorder recorder;
        Made made;
        WithinACallback(recorder, [&] { Call(made, {5, 4, 4}, Bytes(80, 9), Shadow(3, 50, 0, flags)); });
        EXPECT_EQ(made.result, 1u);
        const std::size_t planes = flags ? 1 : 4;
        EXPECT_EQ(recorder.reports.size(), planes * (made.width + made.height));
    }
}

TEST(DropShadow, ACancelledBlurIsNotAskedFor)
{
    for (const std::uint32_t flags : {0u, 1u}) {
        for (const std::size_t at : {1u, 10u, 40u}) {
            ProgressRecorder recorder;
            recorder.cancelAt = at;
            Made made;
            std::uint32_t code = 99;
            WithinACallback(recorder, [&] {
                Call(made, {5, 4, 4}, Bytes(80, 9), Shadow(3, 50, 0, flags));
                code = ZLV40_GetLastError();
            });
            EXPECT_EQ(made.result, 1u);
            EXPECT_EQ(code, 0u);
            EXPECT_EQ(recorder.reports.size(), at);
        }
    }
}

TEST(DropShadow, EveryAllocationThatFailsIsCodeOne)
{
    const Bytes src = StylePixels({20, 10, 4}, 1);
    for (const std::uint32_t flags : {0u, 1u, 3u}) {
        SCOPE(flags);
        Made made;
        EveryAllocationFails(
            [&] {
                ZLV40_FreeBlock(made.pixels);
                made.pixels = nullptr;
                Call(made, {20, 10, 4}, src, Shadow(3, 50, 0, flags));
                return made.result;
            },
            [&] { return made.pixels == nullptr; });
    }
}

}  // namespace
}  // namespace zlvtest
