#include "base/gaussian_cases.h"
#include "support/progress_recorder.h"

#include <cmath>

namespace zlv {
namespace {

using zlvtest::ForBothWidths;
using zlvtest::ForTargetsAndWidths;
using zlvtest::Recording;
using zlvtest::Report;

template <class T>
void ExpectEqualsPlain(const BlurShape& shape, BlurContent content, f64 sigma, u32 flags)
{
    SCOPE(shape.width, shape.height, shape.channels, "sigma", sigma, "flags", flags, int(content));
    const std::vector<T> source = Picture<T>(shape, content, shape.width * 31 + shape.height);
    std::vector<T> wanted = Fill<T>(shape, 0x5A), got = wanted;
    BlurPlainly(shape, source, wanted, sigma, flags);
    EXPECT_EQ(Blur(shape, source, got, sigma, flags), 1u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

constexpr BlurShape kShapes[] = {
    {5, 5, 1},  {6, 7, 3, 2, 5},   {31, 33, 1, 1, 0}, {32, 32, 3},       {33, 9, 4, 0, 3},
    {9, 70, 2}, {100, 5, 1, 3, 0}, {5, 100, 3, 0, 1}, {65, 40, 3, 7, 9}, {130, 129, 1, 0, 2},
};
// Both sides of the limits between the engines and their precisions, and a few that show no round number.
constexpr f64 kSigmas[] = {-1, 0, 0.3, 0.8, 0.99, 1.0, 1.3, 2, 3.7, 4.499999999, 4.5, 5, 10, 50, 1000};

TEST(GaussianBlur, EqualsPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (const BlurShape& shape : kShapes) {
            for (const f64 sigma : kSigmas) {
                for (const BlurContent content : {BlurContent::Noise, BlurContent::Shapes}) {
                    ExpectEqualsPlain<T>(shape, content, sigma, 0xFF);
                }
            }
        }
    });
}

// Rows of every length around whole groups of columns, in samples and in pixels.
TEST(GaussianBlur, EveryWidthEqualsPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (u32 width = 7; width <= 70; ++width) {
            for (u32 channels = 1; channels <= 4; ++channels) {
                for (const f64 sigma : {0.7, 1.2, 5.0}) {
                    ExpectEqualsPlain<T>({width, 6, channels, 1, 2}, BlurContent::Noise, sigma, 0xFF);
                    ExpectEqualsPlain<T>({6, width, channels, 1, 2}, BlurContent::Noise, sigma, 0xFF);
                }
            }
        }
    });
}

TEST(GaussianBlur, TheDirectEngineOnDemandEqualsPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (const BlurShape& shape : kShapes) {
            for (const f64 sigma : {0.0, 0.5, 1.0, 2.0, 4.5, 7.7, 40.0}) {
                for (const u32 flags : {0u, kBlurTruncates}) {
                    ExpectEqualsPlain<T>(shape, BlurContent::Noise, sigma, 0xFF | kBlurDirectly | flags);
                }
            }
        }
    });
}

TEST(GaussianBlur, TheTruncatingBitIsNothingToTheRecursion)
{
    ForBothWidths([]<class T>() {
        ExpectEqualsPlain<T>({20, 20, 1}, BlurContent::Noise, 2, 1 | kBlurTruncates);
        ExpectEqualsPlain<T>({20, 20, 1}, BlurContent::Noise, 6, 1 | kBlurTruncates);
    });
}

TEST(GaussianBlur, WritesSelectedChannelsOnly)
{
    ForTargetsAndWidths([]<class T>() {
        for (const u32 channels : {1u, 2u, 3u, 4u, 8u}) {
            for (const u32 mask : {0u, 1u, 2u, 5u, 0x6u, 0x80u, 0xFEu, 0xFFu}) {
                for (const f64 sigma : {0.0, 0.7, 1.5, 9.0}) {
                    ExpectEqualsPlain<T>({21, 37, channels, 3, 2}, BlurContent::Noise, sigma, mask);
                }
            }
        }
    });
}

TEST(GaussianBlur, LinesShorterThanTheRecursionLooksBackAreContinuedByTheirEnds)
{
    ForTargetsAndWidths([]<class T>() {
        for (u32 width = 1; width <= 6; ++width) {
            for (u32 height = 1; height <= 6; ++height) {
                for (const f64 sigma : {0.8, 1.0, 3.0, 4.5, 20.0}) {
                    ExpectEqualsPlain<T>({width, height, 3, 1, 1}, BlurContent::Noise, sigma, 7);
                }
            }
        }
    });
}

TEST(GaussianBlur, LargeSigmasAreDefined)
{
    ForTargetsAndWidths([]<class T>() {
        for (const f64 sigma : {1e4, 1e6, 1e8, 1e20, 1e38}) {
            ExpectEqualsPlain<T>({90, 60, 1}, BlurContent::Noise, sigma, 1);
            ExpectEqualsPlain<T>({5000, 3, 1}, BlurContent::Noise, sigma, 1);
            ExpectEqualsPlain<T>({3, 5000, 1}, BlurContent::Noise, sigma, 1);
        }
        ExpectEqualsPlain<T>({40, 30, 1}, BlurContent::Noise, 1000, 1 | kBlurDirectly);
    });
}

// The direct engine's kernel of sigma 0.99 has 7 entries; of the recursion, a point of light leaves a longer trail.
TEST(GaussianBlur, SigmaOneTakesTheRecursion)
{
    const BlurShape shape = {21, 1, 1};
    std::vector<u16> source(21, 0), direct(21), recursive(21);
    source[10] = 32767;
    EXPECT_EQ(Blur(shape, source, direct, 0.99, 1), 1u);
    EXPECT_EQ(Blur(shape, source, recursive, 1.0, 1), 1u);
    EXPECT_EQ(direct[6], 0);
    EXPECT_GT(direct[7], 0);
    EXPECT_GT(recursive[6], 0);
}

// Rows and columns like those beside them are done once: pictures of few different ones, in all arrangements.
template <class T>
std::vector<T> Stripes(const BlurShape& shape, u32 rowHeight, u32 columnWidth, u32 odd)
{
    std::vector<T> samples(size_t(shape.SourceStride()) * shape.height);
    for (u32 y = 0; y < shape.height; ++y) {
        for (u32 x = 0; x < shape.width; ++x) {
            for (u32 c = 0; c < shape.channels; ++c) {
                const u32 number = y / rowHeight * 37 + x / columnWidth * 91 + c * 55;
                samples[size_t(y) * shape.SourceStride() + x * shape.channels + c] = T(number * 257);
            }
        }
    }
    // A few pixels out of the order, in the first rows and in the last ones.
    for (u32 i = 0; i < odd; ++i) samples[(i * 7919) % samples.size()] = T(i * 1000);
    return samples;
}

TEST(GaussianBlur, RepeatedLinesEqualPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (const BlurShape& shape : {BlurShape{300, 40, 1}, BlurShape{200, 9, 3, 4, 2}, BlurShape{90, 100, 4},
                                       BlurShape{40, 200, 2, 1, 0}, BlurShape{3, 70, 3}, BlurShape{500, 1, 1}}) {
            for (const auto& [rowHeight, columnWidth] : {std::pair{1000u, 1000u}, std::pair{8u, 1u}, std::pair{1u, 9u},
                                                         std::pair{20u, 50u}, std::pair{3u, 2u}, std::pair{1u, 3u}}) {
                for (const u32 odd : {0u, 1u, 5u}) {
                    for (const f64 sigma : {1.5, 6.0}) {
                        for (const bool reports : {false, true}) {
                            SCOPE(shape.width, shape.height, shape.channels, rowHeight, columnWidth, odd, sigma,
                                  reports);
                            const std::vector<T> source = Stripes<T>(shape, rowHeight, columnWidth, odd);
                            std::vector<T> wanted = Fill<T>(shape, 0x5A), got = wanted;
                            const std::vector<Report> told = BlurPlainly(shape, source, wanted, sigma, 0xFF);
                            Recording recording;
                            if (!reports) MV40_SetCallback(nullptr, 0);
                            EXPECT_EQ(Blur(shape, source, got, sigma, 0xFF), 1u);
                            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
                            EXPECT_EQ(recording.recorder.reports, reports ? told : std::vector<Report>());
                        }
                    }
                }
            }
        }
    });
}

// Results of the precisions differ here; which sigma takes which is seen by the twins of both.
TEST(GaussianBlur, FromSigmaFourAndAHalfOnItIsSinglePrecision)
{
    const BlurShape shape = {200, 200, 1};
    const std::vector<u16> source = Picture<u16>(shape, BlurContent::Noise, 5);
    const auto twin = [&](f32 sigma, bool isSingle) {
        std::vector<u16> blurred = Fill<u16>(shape, 0);
        const PlainBlurImage<const u16> from = {source.data(), 200};
        const auto goOn = [](u32, u32) { return true; };
        if (isSingle)
            PlainBlurRecursively<float, u16>(from, shape.Size(), {blurred.data(), 200}, sigma, 1, kBlurMath, goOn);
        else PlainBlurRecursively<double, u16>(from, shape.Size(), {blurred.data(), 200}, sigma, 1, kBlurMath, goOn);
        return blurred;
    };
    ASSERT_NE(twin(4.5f, true), twin(4.5f, false));
    const f64 below = std::nextafter(4.5, 0.0);
    ASSERT_EQ(f32(below), 4.5f) << "the test is made before sigma is narrowed";
    std::vector<u16> got = Fill<u16>(shape, 0);
    EXPECT_EQ(Blur(shape, source, got, 4.5, 1), 1u);
    EXPECT_EQ(got, twin(4.5f, true));
    EXPECT_EQ(Blur(shape, source, got, below, 1), 1u);
    EXPECT_EQ(got, twin(4.5f, false));
}

// The fit adds up to 1 within two thousandths a pass: up to a level at 8 bits, some more at 16.
TEST(GaussianBlur, AFlatImageKeepsItsLevelUpToOne)
{
    ForTargetsAndWidths([]<class T>() {
        for (const i32 level : {0, 1, 100, 200, 255, 30000}) {
            if (u32(level) > kTop<T>) continue;
            const i32 tolerance = level <= 255 ? 1 : level / 250;
            for (const f64 sigma : {0.5, 1.0, 2.5, 4.5, 30.0}) {
                SCOPE(level, sigma);
                const std::vector<T> source(40 * 35, T(level));
                std::vector<T> got(source.size());
                EXPECT_EQ(Blur({40, 35, 1}, source, got, sigma, 1), 1u);
                for (const T sample : got) ASSERT_LE(std::abs(i32(sample) - level), tolerance);
            }
        }
    });
}

TEST(GaussianBlur, BlackStaysBlack)
{
    ForTargetsAndWidths([]<class T>() {
        for (const f64 sigma : {0.5, 2.0, 8.0}) {
            const std::vector<T> source(30 * 30, T(0));
            std::vector<T> got(source.size(), T(77));
            EXPECT_EQ(Blur({30, 30, 1}, source, got, sigma, 1), 1u);
            EXPECT_EQ(got, source);
        }
    });
}

// 40000 does not fit into the plane between the passes: it comes back as 40000 - 65536, which the end limits to 0.
TEST(GaussianBlur, WordsAbove32767WrapBetweenTheRecursivePasses)
{
    const std::vector<u16> source(20 * 20, u16(40000));
    std::vector<u16> got(source.size(), u16(1));
    EXPECT_EQ(Blur({20, 20, 1}, source, got, 2, 1), 1u);
    EXPECT_EQ(got, std::vector<u16>(source.size(), u16(0)));
    EXPECT_EQ(Blur({20, 20, 1}, source, got, 2, 1 | kBlurDirectly), 1u);
    EXPECT_EQ(got, source);
}

// Radius ceil(2.5 * 0.4) = 1. Entries e^(-1/0.32) : 1 : e^(-1/0.32) of e = 2.71828, that is 0.04394 : 1 : 0.04394;
// over their sum 0.0404, 0.9192, 0.0404. At the ends two entries share the weight: 0.9579 and 0.0421.
TEST(GaussianBlur, TheDirectKernelByHand)
{
    const std::vector<u8> source = {100, 0, 0, 100, 0};
    std::vector<u8> got(5);
    EXPECT_EQ(Blur({5, 1, 1}, source, got, 0.4, 1), 1u);
    EXPECT_EQ(got, (std::vector<u8>{96, 4, 4, 92, 4}));  // 95.79, 4.04, 4.04, 91.92, 4.21
    EXPECT_EQ(Blur({5, 1, 1}, source, got, 0.4, 1 | kBlurTruncates), 1u);
    EXPECT_EQ(got, (std::vector<u8>{95, 4, 4, 91, 4}));
}

TEST(GaussianBlur, SigmaZeroAndBelowCopies)
{
    ForBothWidths([]<class T>() {
        const BlurShape shape = {23, 11, 3, 2, 4};
        for (const f64 sigma : {0.0, -0.0, -3.0, -1e300, 1e-300, 1e-40, 5e-324}) {
            for (const u32 flags : {0u, kBlurTruncates, kBlurDirectly}) {
                SCOPE(sigma, flags);
                const std::vector<T> source = Picture<T>(shape, BlurContent::Noise, 8);
                std::vector<T> got = Fill<T>(shape, 0x11);
                EXPECT_EQ(Blur(shape, source, got, sigma, flags | 7), 1u);
                for (u32 y = 0; y < shape.height; ++y) {
                    const T* const from = source.data() + y * shape.SourceStride();
                    EXPECT_TRUE(std::equal(from, from + 69, got.data() + y * shape.DestinationStride())) << y;
                }
            }
        }
    });
}

TEST(GaussianBlur, TheRecursionWorksInPlace)
{
    ForTargetsAndWidths([]<class T>() {
        for (const bool isReporting : {false, true}) {
            for (const f64 sigma : {1.5, 6.0}) {
                const BlurShape shape = {45, 50, 3, 2, 2};
                std::vector<T> image = Picture<T>(shape, BlurContent::Noise, 3), wanted = image;
                BlurPlainly(shape, image, wanted, sigma, 7);
                if (isReporting) {
                    const Recording recording;
                    EXPECT_EQ(Blur(shape, image, image, sigma, 7), 1u);
                } else {
                    EXPECT_EQ(Blur(shape, image, image, sigma, 7), 1u);
                }
                EXPECT_EQ(image, wanted);
            }
        }
    });
}

TEST(GaussianBlur, NoChannelBitIsNothingToDo)
{
    for (const f64 sigma : {0.5, 2.0, 6.0}) {
        const Recording recording;
        const std::vector<u8> source(8 * 8 * 3, u8(9));
        std::vector<u8> got(source.size(), u8(44));
        EXPECT_EQ(Blur({8, 8, 3}, source, got, sigma, 0), 1u);
        EXPECT_EQ(got, std::vector<u8>(source.size(), u8(44)));
        EXPECT_TRUE(recording.recorder.reports.empty());
    }
}

}  // namespace
}  // namespace zlv
