#include "base/gaussian_blur.h"

#include "base/gaussian_coefficients.h"
#include "base/sample.h"
#include "plain/plain_gaussian_blur.h"
#include "runtime/math.h"
#include "support/base_layer.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Flush;
using zlvtest::ForBothWidths;
using zlvtest::ForTargetsAndWidths;
using zlvtest::GuardedBuffer;
using zlvtest::kWidthFlag;
using zlvtest::ProgressRecorder;
using zlvtest::Recording;
using zlvtest::Report;

constexpr PlainBlurMath kMath = {Exp, Sin, Cos, Pow};
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

struct Shape {
    u32 width, height, channels;
    u32 sourcePadding = 0, destinationPadding = 0;

    u32 SourceStride() const { return width * channels + sourcePadding; }
    u32 DestinationStride() const { return width * channels + destinationPadding; }
    PlainBlurSize Size() const { return {width, height, channels}; }
};

// What is in the pictures: noise everywhere, or flat areas with a few steps and black parts between.
enum class Content { Noise, Shapes };

template <class T>
std::vector<T> Picture(const Shape& shape, Content content, u64 seed)
{
    zlvtest::Random random(seed);
    std::vector<T> samples(size_t(shape.SourceStride()) * shape.height);
    T level = T(kTop<T>);
    for (T& sample : samples) {
        if (content == Content::Noise) {
            sample = T(random.Next() >> 7);
            continue;
        }
        if (random.Below(40) == 0) level = random.Below(3) ? T(0) : T(random.Next() >> 7);
        sample = level;
    }
    return samples;
}

template <class T>
std::vector<T> Fill(const Shape& shape, u8 fill)
{
    std::vector<T> samples(size_t(shape.DestinationStride()) * shape.height);
    std::memset(samples.data(), fill, samples.size() * sizeof(T));
    return samples;
}

template <class T>
u32 Blur(const Shape& shape, const std::vector<T>& source, std::vector<T>& destination, f64 sigma, u32 flags)
{
    return MV40_GaussianBlurImage(source.data(), shape.width, shape.height, shape.channels, shape.SourceStride(),
                                  destination.data(), shape.DestinationStride(), sigma, flags | kWidthFlag<T>);
}

// The twin; report number `cancelAt` is answered by 0.
template <class T>
std::vector<Report> BlurPlainly(const Shape& shape, const std::vector<T>& source, std::vector<T>& destination,
                                f64 sigma, u32 flags, size_t cancelAt = 0)
{
    std::vector<Report> reports;
    PlainBlur<T>({source.data(), shape.SourceStride()}, shape.Size(), {destination.data(), shape.DestinationStride()},
                 sigma, flags, kMath, [&](u32 current, u32 total) {
                     reports.push_back({current, total});
                     return reports.size() != cancelAt;
                 });
    return reports;
}

template <class T>
void ExpectEqualsPlain(const Shape& shape, Content content, f64 sigma, u32 flags)
{
    SCOPE(shape.width, shape.height, shape.channels, "sigma", sigma, "flags", flags, int(content));
    const std::vector<T> source = Picture<T>(shape, content, shape.width * 31 + shape.height);
    std::vector<T> wanted = Fill<T>(shape, 0x5A), got = wanted;
    BlurPlainly(shape, source, wanted, sigma, flags);
    EXPECT_EQ(Blur(shape, source, got, sigma, flags), 1u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

constexpr Shape kShapes[] = {
    {5, 5, 1},  {6, 7, 3, 2, 5},   {31, 33, 1, 1, 0}, {32, 32, 3},       {33, 9, 4, 0, 3},
    {9, 70, 2}, {100, 5, 1, 3, 0}, {5, 100, 3, 0, 1}, {65, 40, 3, 7, 9}, {130, 129, 1, 0, 2},
};
// Both sides of the limits between the engines and their precisions, and a few that show no round number.
constexpr f64 kSigmas[] = {-1, 0, 0.3, 0.8, 0.99, 1.0, 1.3, 2, 3.7, 4.499999999, 4.5, 5, 10, 50, 1000};

TEST(GaussianBlur, EqualsPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (const Shape& shape : kShapes) {
            for (const f64 sigma : kSigmas) {
                for (const Content content : {Content::Noise, Content::Shapes}) {
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
                    ExpectEqualsPlain<T>({width, 6, channels, 1, 2}, Content::Noise, sigma, 0xFF);
                    ExpectEqualsPlain<T>({6, width, channels, 1, 2}, Content::Noise, sigma, 0xFF);
                }
            }
        }
    });
}

TEST(GaussianBlur, TheDirectEngineOnDemandEqualsPlain)
{
    ForTargetsAndWidths([]<class T>() {
        for (const Shape& shape : kShapes) {
            for (const f64 sigma : {0.0, 0.5, 1.0, 2.0, 4.5, 7.7, 40.0}) {
                for (const u32 flags : {0u, kBlurTruncates}) {
                    ExpectEqualsPlain<T>(shape, Content::Noise, sigma, 0xFF | kBlurDirectly | flags);
                }
            }
        }
    });
}

TEST(GaussianBlur, TheTruncatingBitIsNothingToTheRecursion)
{
    ForBothWidths([]<class T>() {
        ExpectEqualsPlain<T>({20, 20, 1}, Content::Noise, 2, 1 | kBlurTruncates);
        ExpectEqualsPlain<T>({20, 20, 1}, Content::Noise, 6, 1 | kBlurTruncates);
    });
}

TEST(GaussianBlur, WritesSelectedChannelsOnly)
{
    ForTargetsAndWidths([]<class T>() {
        for (const u32 channels : {1u, 2u, 3u, 4u, 8u}) {
            for (const u32 mask : {0u, 1u, 2u, 5u, 0x6u, 0x80u, 0xFEu, 0xFFu}) {
                for (const f64 sigma : {0.0, 0.7, 1.5, 9.0}) {
                    ExpectEqualsPlain<T>({21, 37, channels, 3, 2}, Content::Noise, sigma, mask);
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
                    ExpectEqualsPlain<T>({width, height, 3, 1, 1}, Content::Noise, sigma, 7);
                }
            }
        }
    });
}

TEST(GaussianBlur, LargeSigmasAreDefined)
{
    ForTargetsAndWidths([]<class T>() {
        for (const f64 sigma : {1e4, 1e6, 1e8, 1e20, 1e38}) {
            ExpectEqualsPlain<T>({90, 60, 1}, Content::Noise, sigma, 1);
            ExpectEqualsPlain<T>({5000, 3, 1}, Content::Noise, sigma, 1);
            ExpectEqualsPlain<T>({3, 5000, 1}, Content::Noise, sigma, 1);
        }
        ExpectEqualsPlain<T>({40, 30, 1}, Content::Noise, 1000, 1 | kBlurDirectly);
    });
}

// The direct engine's kernel of sigma 0.99 has 7 entries; of the recursion, a point of light leaves a longer trail.
TEST(GaussianBlur, SigmaOneTakesTheRecursion)
{
    const Shape shape = {21, 1, 1};
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
std::vector<T> Stripes(const Shape& shape, u32 rowHeight, u32 columnWidth, u32 odd)
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
        for (const Shape& shape : {Shape{300, 40, 1}, Shape{200, 9, 3, 4, 2}, Shape{90, 100, 4},
                                   Shape{40, 200, 2, 1, 0}, Shape{3, 70, 3}, Shape{500, 1, 1}}) {
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
    const Shape shape = {200, 200, 1};
    const std::vector<u16> source = Picture<u16>(shape, Content::Noise, 5);
    const auto twin = [&](f32 sigma, bool isSingle) {
        std::vector<u16> blurred = Fill<u16>(shape, 0);
        const PlainBlurImage<const u16> from = {source.data(), 200};
        const auto goOn = [](u32, u32) { return true; };
        if (isSingle)
            PlainBlurRecursively<float, u16>(from, shape.Size(), {blurred.data(), 200}, sigma, 1, kMath, goOn);
        else PlainBlurRecursively<double, u16>(from, shape.Size(), {blurred.data(), 200}, sigma, 1, kMath, goOn);
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
        const Shape shape = {23, 11, 3, 2, 4};
        for (const f64 sigma : {0.0, -0.0, -3.0, -1e300, 1e-300, 1e-40, 5e-324}) {
            for (const u32 flags : {0u, kBlurTruncates, kBlurDirectly}) {
                SCOPE(sigma, flags);
                const std::vector<T> source = Picture<T>(shape, Content::Noise, 8);
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
                const Shape shape = {45, 50, 3, 2, 2};
                std::vector<T> image = Picture<T>(shape, Content::Noise, 3), wanted = image;
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

TEST(GaussianBlur, ReadsAndWritesNothingOutsideTheImages)
{
    ForTargetsAndWidths([]<class T>() {
        for (const Shape& shape : {Shape{7, 9, 3, 2, 1}, Shape{33, 34, 1}, Shape{1, 1, 4}, Shape{70, 3, 2, 0, 5}}) {
            // The padding of the last row is not the image's.
            const size_t sourceSize = size_t(shape.SourceStride()) * shape.height - shape.sourcePadding;
            const size_t destinationSize = size_t(shape.DestinationStride()) * shape.height - shape.destinationPadding;
            for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                GuardedBuffer source(sourceSize * sizeof(T), flush, 0xC3);
                GuardedBuffer destination(destinationSize * sizeof(T), flush);
                for (const f64 sigma : {0.0, 0.9, 2.0, 7.0}) {
                    for (const u32 mask : {1u, 0xFFu}) {
                        EXPECT_EQ(MV40_GaussianBlurImage(source.Data(), shape.width, shape.height, shape.channels,
                                                         shape.SourceStride(), destination.Data(),
                                                         shape.DestinationStride(), sigma, mask | kWidthFlag<T>),
                                  1u);
                    }
                }
            }
        }
    });
}

// A row or column a report, in order, with the same result as without anybody listening.
TEST(GaussianBlur, ReportsEveryLineOfTheRecursionAndEachDirectPass)
{
    ForTargetsAndWidths([]<class T>() {
        for (const f64 sigma : {0.8, 2.0, 6.0}) {
            for (const u32 mask : {1u, 5u, 7u}) {
                SCOPE(sigma, mask);
                const Shape shape = {40, 35, 3, 1, 2};
                const std::vector<T> source = Picture<T>(shape, Content::Noise, 6);
                std::vector<T> wanted = Fill<T>(shape, 0x21), got = wanted;
                const std::vector<Report> reports = BlurPlainly(shape, source, wanted, sigma, mask);
                const Recording recording;
                EXPECT_EQ(Blur(shape, source, got, sigma, mask), 1u);
                EXPECT_EQ(recording.recorder.reports, reports);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

TEST(GaussianBlur, ReportsByHand)
{
    const std::vector<u8> source(2 * 3 * 2);
    std::vector<u8> got(source.size());
    {
        const Recording recording;
        EXPECT_EQ(Blur({2, 3, 2}, source, got, 1, 2), 1u);
        EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{0, 3}, {1, 3}, {2, 3}, {0, 2}, {1, 2}}));
    }
    const Recording recording;
    EXPECT_EQ(Blur({2, 3, 3}, std::vector<u8>(18), got = std::vector<u8>(18), 0.5, 5), 1u);
    EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{0, 6}, {1, 6}, {4, 6}, {5, 6}}));
}

TEST(GaussianBlur, ACancelKeepsTheColumnsDoneAndWritesNoOthers)
{
    ForBothWidths([]<class T>() {
        const Shape shape = {40, 6, 2, 1, 2};
        const std::vector<T> source = Picture<T>(shape, Content::Noise, 6);
        for (const f64 sigma : {0.8, 2.0, 6.0}) {
            const size_t reportCount = sigma < 1 ? 4 : 2 * (40 + 6);
            for (size_t cancelAt = 1; cancelAt <= reportCount; ++cancelAt) {
                SCOPE(sigma, cancelAt);
                std::vector<T> wanted = Fill<T>(shape, 0x21), got = wanted;
                const std::vector<Report> reports = BlurPlainly(shape, source, wanted, sigma, 3, cancelAt);
                ASSERT_EQ(reports.size(), cancelAt);
                const Recording recording(cancelAt);
                EXPECT_EQ(Blur(shape, source, got, sigma, 3), 0u);
                EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
                EXPECT_EQ(recording.recorder.reports, reports);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

// What is written when a report comes is what a cancel there would leave.
TEST(GaussianBlur, NoColumnIsWrittenAheadOfItsReport)
{
    const Shape shape = {40, 6, 1};
    const std::vector<u8> source(40 * 6, u8(100));
    for (const f64 sigma : {0.8, 2.0}) {
        std::vector<u8> got(source.size(), u8(1));
        Recording recording;
        std::vector<u32> columnsWritten;
        // The first row tells.
        recording.recorder.atReport = [&] {
            columnsWritten.push_back(u32(std::count_if(&got[0], &got[40], [](u8 v) { return v != 1; })));
        };
        EXPECT_EQ(Blur(shape, source, got, sigma, 1), 1u);
        std::vector<u32> wanted = {0, 40};
        if (sigma >= 1) {
            wanted.assign(6, 0);
            for (u32 x = 1; x <= 40; ++x) wanted.push_back(x);
        }
        EXPECT_EQ(columnsWritten, wanted);
    }
}

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height, channels;
    f64 sigma;
    u32 flags;
    Error error;
} kRefusals[] = {
    {"a null source, direct", false, true, 4, 4, 1, 0.5, 1, Error::BadArgument},
    {"a null source, recursive", false, true, 4, 4, 1, 2, 1, Error::BadArgument},
    {"a null destination, direct", true, false, 4, 4, 1, 0.5, 1, Error::BadArgument},
    {"a null destination, recursive", true, false, 4, 4, 1, 2, 1, Error::BadArgument},
    {"a sigma that is no number", true, true, 4, 4, 1, std::numeric_limits<f64>::quiet_NaN(), 1, Error::BadArgument},
    {"no number in the direct engine", true, true, 4, 4, 1, std::numeric_limits<f64>::quiet_NaN(), 257,
     Error::BadArgument},
    {"an infinite sigma", true, true, 4, 4, 1, kInfinity, 1, Error::BadArgument},
    {"an infinite sigma below 0", true, true, 4, 4, 1, -kInfinity, 1, Error::BadArgument},
    {"a sigma that no float holds", true, true, 4, 4, 1, 1e39, 1, Error::BadArgument},
    {"a direct kernel of too many entries", true, true, 4, 4, 1, 3355443.3, 257, Error::BadArgument},
    {"a direct kernel without end", true, true, 4, 4, 1, 1e300, 257, Error::BadArgument},
    {"more channels than mask bits", true, true, 1, 1, 9, 2, 1, Error::BadArgument},
    {"more channels than mask bits, direct", true, true, 1, 1, 9, 0.5, 1, Error::BadArgument},
    {"no width", true, true, 0, 4, 1, 2, 1, Error::OutOfMemory},
    {"no height", true, true, 4, 0, 1, 2, 1, Error::OutOfMemory},
    {"no channels", true, true, 4, 4, 0, 2, 1, Error::OutOfMemory},
    {"no width, direct", true, true, 0, 4, 1, 0.5, 1, Error::OutOfMemory},
    {"a plane beyond any memory", true, true, 0xFFFFFFFF, 0xFFFFFFFF, 8, 2, 1, Error::OutOfMemory},
};

TEST(GaussianBlur, Refusals)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        const Bytes source(16, 5);
        Bytes destination(16, 6);
        EXPECT_EQ(MV40_GaussianBlurImage(row.hasSource ? source.data() : nullptr, row.width, row.height, row.channels,
                                         row.width * row.channels, row.hasDestination ? destination.data() : nullptr,
                                         row.width * row.channels, row.sigma, row.flags),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(row.error));
        EXPECT_EQ(destination, Bytes(16, 6));
    }
}

TEST(GaussianBlur, TheDirectEngineRefusesTheSameImageTwice)
{
    Bytes image(16, 5);
    for (const auto& [sigma, flags] : {std::pair{0.5, 1u}, {3.0, 257u}}) {
        EXPECT_EQ(MV40_GaussianBlurImage(image.data(), 4, 4, 1, 4, image.data(), 4, sigma, flags), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    }
}

TEST(GaussianBlur, WithoutMemoryItIsCodeOneAndNothingIsWritten)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const f64 sigma : {0.8, 2.0, 6.0}) {
        bool hasFailed = true;
        for (u32 succeeding = 0; hasFailed; ++succeeding) {
            ASSERT_LT(succeeding, 10u);
            SCOPE(sigma, succeeding);
            const std::vector<u8> source(60 * 60 * 3, u8(9));
            std::vector<u8> got(source.size(), u8(44));
            u32 result;
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                result = Blur({60, 60, 3}, source, got, sigma, 7);
                hasFailed = failing.Failed() > 0;
            }
            EXPECT_EQ(result, hasFailed ? 0u : 1u);
            EXPECT_EQ(MV40_GetLastError(), u32(hasFailed ? Error::OutOfMemory : Error::None));
            EXPECT_EQ(got == std::vector<u8>(source.size(), u8(44)), hasFailed);
        }
    }
}

// sigma 2: k = 1 / (sqrt(2 pi) * 2) = 0.19947; n0 = (1.68 - 0.6803) * k = 0.19941; the poles' product d4 =
// e^(2 * (-1.783 - 1.723) / 2) = e^-3.506 = 0.03002.
TEST(RecursiveGaussian, CoefficientsByHand)
{
    const auto filter = MakeRecursiveGaussian<f64>(2);
    EXPECT_NEAR(filter.n[0], 0.19941, 1e-5);
    EXPECT_NEAR(filter.d[4], 0.03002, 1e-5);
    EXPECT_EQ(filter.n[4], 0);
    EXPECT_EQ(filter.d[0], 0);
    EXPECT_EQ(filter.m[0], 0);
    EXPECT_EQ(filter.m[4], -filter.d[4] * filter.n[0]);
}

// A filter without end on a flat line: both directions together give the level back.
TEST(RecursiveGaussian, SteadyStatesAddUpToOne)
{
    for (const f32 sigma : {1.0f, 2.0f, 4.5f, 20.0f, 100.0f}) {
        const auto filter = MakeRecursiveGaussian<f64>(sigma);
        const f64 forward = filter.forwardBoundary[1] / filter.d[1],
                  backward = filter.backwardBoundary[1] / filter.d[1];
        EXPECT_NEAR(forward + backward, 1, 2e-3) << sigma;
    }
}

// The sum of the poles' coefficients is -1 in doubles: the divisor would be 0.
TEST(RecursiveGaussian, TheSteadyStateIsFiniteWhereThePolesMeetOne)
{
    const auto filter = MakeRecursiveGaussian<f64>(1e20f);
    for (u32 i = 0; i < 5; ++i) {
        EXPECT_TRUE(std::isfinite(filter.forwardBoundary[i])) << i;
        EXPECT_TRUE(std::isfinite(filter.backwardBoundary[i])) << i;
    }
}

}  // namespace
}  // namespace zlv
