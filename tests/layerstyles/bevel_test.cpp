#include "layerstyles/style_support.h"

namespace zlvtest {
namespace {

constexpr PlainBevelShades kShades = {3, 130.9, 150, 70, 50.2, 0};

std::uint32_t Call(std::uint8_t* image, const StyleImage& s, const PlainBevelShades& b, std::uint32_t flags = 0)
{
    return ZLV40_ShadeBevelEdge(image, s.width, s.height, s.Stride(), std::uint32_t(b.bevelWidth), s.channels, flags,
                                b.left, b.top, b.right, b.bottom, b.blur);
}

void ExpectPlain(const StyleImage& image, const PlainBevelShades& bevel, std::uint32_t flags = 0)
{
    SCOPE(image.width, "x", image.height, "x", image.channels, "bevel", bevel.bevelWidth, "blur", bevel.blur, flags);
    const Bytes before = RandomBytes(image.Size(), image.width + image.channels);
    GuardedBuffer got(before.size(), Flush::ToEnd);
    std::copy(before.begin(), before.end(), got.Data());
    EXPECT_EQ(Call(got.Data(), image, bevel, flags), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    Bytes wanted = before;
    PlainBevel(wanted.data(), image.width, image.height, image.channels, image.Stride(), flags & 1, bevel, kStyleMath);
    EXPECT_EQ(Difference(wanted.data(), got.Data(), wanted.size()), "");
}

constexpr StyleImage kImages[] = {{6, 6, 1}, {7, 6, 3, 2}, {13, 40, 4, 1}, {70, 9, 4}, {40, 12, 5}, {9, 9, 2}};

TEST(Bevel, EveryTargetEqualsPlain)
{
    OnEveryStyleTarget([] {
        for (const StyleImage& image : kImages) {
            for (const std::uint32_t flags : {0u, 1u, 2u}) {
                for (const double blur : {0.0, 30.0, 100.0, 200.0, 450.0, 2000.0, -5.0}) {
                    PlainBevelShades bevel = kShades;
                    bevel.blur = blur;
                    ExpectPlain(image, bevel, flags);
                }
            }
        }
    });
}

TEST(Bevel, EveryWidthEqualsPlain)
{
    for (const StyleImage& image : {StyleImage{12, 12, 1}, StyleImage{13, 13, 1}, StyleImage{12, 31, 3}}) {
        for (std::int64_t width = 0; width <= 6; ++width) {
            PlainBevelShades bevel = kShades;
            bevel.bevelWidth = width;
            ExpectPlain(image, bevel);
            bevel.blur = 80;
            ExpectPlain(image, bevel);
        }
    }
}

TEST(Bevel, RingsMeetInTheMiddle)
{
    const StyleImage image = {4, 4, 1};
    Bytes pixels(16, 100);
    EXPECT_EQ(Call(pixels.data(), image, {2, 10, 20, 30, 40, 0}), 1u);
    EXPECT_EQ(pixels, (Bytes{20, 20, 20, 20, 10, 20, 20, 30, 10, 40, 40, 30, 40, 40, 40, 40}));
}

TEST(Bevel, WithoutAWidthNothingChanges)
{
    for (const StyleImage& image : kImages) {
        const Bytes before = RandomBytes(image.Size(), 3);
        Bytes pixels = before;
        EXPECT_EQ(Call(pixels.data(), image, {0, 10, 20, 30, 40, 0}), 1u);
        EXPECT_EQ(pixels, before);
    }
}

TEST(Bevel, ShadesOf100ChangeNothing)
{
    const StyleImage image = {20, 20, 3};
    const Bytes before = RandomBytes(image.Size(), 3);
    Bytes pixels = before;
    EXPECT_EQ(Call(pixels.data(), image, {5, 100, 100.9, 100, 100, 0}), 1u);
    EXPECT_EQ(pixels, before);
}

TEST(Bevel, ShadesAreLimitedAndTruncated)
{
    const StyleImage image = {3, 3, 1};
    Bytes pixels(9, 100), limited(9, 100);
    EXPECT_EQ(Call(pixels.data(), image, {1, -50, 1e300, 255.9, -1e300, 0}), 1u);
    EXPECT_EQ(Call(limited.data(), image, {1, 0, 255, 255, 0, 0}), 1u);
    EXPECT_EQ(pixels, limited);
    EXPECT_EQ(pixels[1], 254) << "255 percent are a little less as a double";
}

TEST(Bevel, AlphaIsProtectedOrShaded)
{
    const StyleImage image = {1, 1, 4};
    // The frame of one pixel needs at least two.
    const StyleImage two = {2, 2, 4};
    Bytes pixels(two.Size(), 200);
    EXPECT_EQ(Call(pixels.data(), two, {1, 50, 50, 50, 50, 0}, ZLV40_PROTECT_ALPHA), 1u);
    EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 4), (Bytes{100, 100, 100, 200}));
    EXPECT_EQ(Call(pixels.data(), two, {1, 50, 50, 50, 50, 0}), 1u);
    EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 4), (Bytes{50, 50, 50, 100}));
    Bytes one(4, 7);
    EXPECT_EQ(Call(one.data(), image, {0, 50, 50, 50, 50, 0}), 1u);
    EXPECT_EQ(one, Bytes(4, 7));
}

TEST(Bevel, BadArgumentsAreRefused)
{
    Bytes pixels(400, 9);
    const double nan = kNotANumber;
    const struct {
        const char* why;
        std::uint8_t* image;
        StyleImage shape;
        PlainBevelShades bevel;
        std::uint32_t code;
    } rows[] = {
        {"no image", nullptr, {10, 10, 1}, kShades, 5},
        {"narrower than the frame", pixels.data(), {5, 10, 1}, kShades, 5},
        {"lower than the frame", pixels.data(), {10, 5, 1}, kShades, 5},
        {"a frame whose double wraps", pixels.data(), {10, 10, 1}, {0x80000001, 1, 2, 3, 4, 0}, 5},
        {"the largest frame", pixels.data(), {10, 10, 1}, {0xFFFFFFFF, 1, 2, 3, 4, 0}, 5},
        {"a left shade that is no number", pixels.data(), {10, 10, 1}, {1, nan, 2, 3, 4, 0}, 5},
        {"a top shade", pixels.data(), {10, 10, 1}, {1, 1, nan, 3, 4, 0}, 5},
        {"a right shade", pixels.data(), {10, 10, 1}, {1, 1, 2, nan, 4, 0}, 5},
        {"a bottom shade", pixels.data(), {10, 10, 1}, {1, 1, 2, 3, nan, 0}, 5},
        {"a blur", pixels.data(), {10, 10, 1}, {1, 1, 2, 3, 4, nan}, 5},
        {"an infinite blur", pixels.data(), {10, 10, 1}, {1, 1, 2, 3, 4, std::numeric_limits<double>::infinity()}, 5},
        {"no columns", pixels.data(), {0, 10, 1}, {0, 1, 2, 3, 4, 0}, 1},
        {"no rows", pixels.data(), {10, 0, 1}, {0, 1, 2, 3, 4, 0}, 1},
        {"no columns for a frame", pixels.data(), {0, 10, 1}, kShades, 5},
    };
    for (const auto& row : rows) {
        SCOPE(row.why);
        EXPECT_EQ(Call(row.image, row.shape, row.bevel), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.code);
    }
    EXPECT_EQ(pixels, Bytes(400, 9));
}

TEST(Bevel, CalledDirectlyItReportsNothing)
{
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Bytes pixels(36, 9);
    EXPECT_EQ(Call(pixels.data(), {6, 6, 1}, kShades), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(Bevel, WithinACallbackRowsAreReportedAndMayCancel)
{
    const StyleImage image = {6, 7, 4};
    for (const double blur : {0.0, 80.0}) {
        for (const std::uint32_t flags : {0u, 1u}) {
            for (std::size_t at = 0; at <= 7; ++at) {
                SCOPE(blur, flags, at);
                const Bytes before = RandomBytes(image.Size(), 1);
                Bytes pixels = before, wanted = before;
                PlainBevelShades bevel = kShades;
                bevel.blur = blur;
                ProgressRecorder recorder;
                recorder.cancelAt = at;
                std::uint32_t result = 9, code = 9;
                WithinACallback(recorder, [&] {
                    result = Call(pixels.data(), image, bevel, flags);
                    code = ZLV40_GetLastError();
                });
                EXPECT_EQ(result, at == 0 ? 1u : 0u);
                EXPECT_EQ(code, at == 0 ? 0u : std::uint32_t(ZLV40_ERROR_CANCELLED));
                const std::uint32_t rows = at == 0 ? 7 : std::uint32_t(at);
                EXPECT_EQ(recorder.reports, Rows(rows, 7));
                PlainBevel(wanted.data(), 6, 7, 4, image.Stride(), flags, bevel, kStyleMath);
                std::copy(before.begin() + rows * image.Stride(), before.end(), wanted.begin() + rows * image.Stride());
                EXPECT_EQ(pixels, wanted);
            }
        }
    }
}

TEST(Bevel, EveryAllocationThatFailsIsCodeOne)
{
    for (const double blur : {0.0, 80.0, 300.0}) {
        PlainBevelShades bevel = kShades;
        bevel.blur = blur;
        Bytes pixels(3600, 9);
        EveryAllocationFails(
            [&] {
                return Call(pixels.data(), {60, 60, 1}, bevel);
            },
            [&] { return pixels == Bytes(3600, 9); });
    }
}

}  // namespace
}  // namespace zlvtest
