#include "base/histograms.h"

#include "base/sample.h"
#include "plain/plain_histograms.h"
#include "support/base_layer.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <tuple>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForBothWidths;
using zlvtest::kWidthFlag;
using zlvtest::ProgressRecorder;
using zlvtest::Recording;
using zlvtest::Report;
using zlvtest::Rows;

// A picture of samples of either width with rows that are padded; samples crowd around the middle.
template <class T>
struct Picture {
    Picture(u32 width, u32 height, u32 channels, u32 padding, u64 seed)
        : shape{width, height, channels, size_t(width) * channels + padding}, samples(shape.stride * height)
    {
        zlvtest::Random random(seed);
        for (T& sample : samples)
            sample = T((random.Below(65536) / 2 + random.Below(65536) / 2) >> (sizeof(T) == 1 ? 8 : 0));
    }
    u32 Width() const { return u32(shape.width); }
    u32 Height() const { return u32(shape.height); }
    u32 Channels() const { return u32(shape.channels); }
    u32 Stride() const { return u32(shape.stride); }

    PlainImageShape shape;
    std::vector<T> samples;
};

TEST(GetImageChannelHistograms, CountsEqualPlain)
{
    ForBothWidths([]<class T>() {
        for (const u32 channels : {1u, 3u, 4u, 9u}) {
            for (const u32 width : {1u, 3u, 4u, 7u, 50u}) {
                SCOPE(channels, width);
                const Picture<T> picture(width, 9, channels, 2, width);
                std::vector<std::vector<u32>> counts(channels, std::vector<u32>(kTop<T> + 1, 12345));
                std::vector<u32*> set;
                for (auto& one : counts) set.push_back(one.data());
                EXPECT_EQ(MV40_GetImageChannelHistograms(picture.samples.data(), width, 9, channels, picture.Stride(),
                                                         set.data(), kWidthFlag<T>),
                          1u);
                for (u32 c = 0; c < channels; ++c) {
                    EXPECT_EQ(counts[c], PlainHistogram(picture.samples.data(), picture.shape, c)) << c;
                }
            }
        }
    });
}

TEST(GetImageChannelHistograms, ASkippedChannelIsReportedToo)
{
    const Picture<u8> picture(5, 4, 3, 0, 1);
    std::array<u32, 256> first, third;
    u32* const set[] = {first.data(), nullptr, third.data()};
    Recording recording;
    EXPECT_EQ(MV40_GetImageChannelHistograms(picture.samples.data(), 5, 4, 3, 15, set, 0), 1u);
    EXPECT_EQ(recording.recorder.reports, Rows(3, 3));
}

TEST(GetImageChannelHistograms, AnImageWithoutRowsHasEmptyHistograms)
{
    const u8 nothing = 0;
    std::array<u32, 256> counts;
    counts.fill(9);
    u32* const set[] = {counts.data()};
    EXPECT_EQ(MV40_GetImageChannelHistograms(&nothing, 5, 0, 1, 5, set, 0), 1u);
    EXPECT_EQ(counts, (std::array<u32, 256>{}));
}

TEST(GetImageChannelHistograms, ACancelStopsAfterItsChannel)
{
    const Picture<u8> picture(5, 4, 3, 0, 1);
    std::array<u32, 256> counts[3];
    u32* const set[] = {counts[0].data(), counts[1].data(), counts[2].data()};
    Recording recording(2);
    EXPECT_EQ(MV40_GetImageChannelHistograms(picture.samples.data(), 5, 4, 3, 15, set, 0), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
    EXPECT_EQ(recording.recorder.reports, Rows(2, 3));
    EXPECT_EQ(counts[2], (std::array<u32, 256>{})) << "cleared, not counted";
}

TEST(HistogramEqualize, EqualsPlain)
{
    ForBothWidths([]<class T>() {
        const std::pair<u32, u32> ranges[] = {{0, kTop<T>},     {kTop<T> / 4, kTop<T> / 2},
                                              {kTop<T>, 0},     {kTop<T> / 2, kTop<T> / 2},
                                              {0, 0xFFFFFFFFu}, {kTop<T> + 1, kTop<T> + 9}};
        for (const auto& [low, high] : ranges) {
            for (const u32 mask : {1u, 5u, 7u, 0xFFu}) {
                SCOPE(low, high, mask);
                Picture<T> wanted(40, 11, 3, 4, low % 97 + mask);
                Picture<T> got = wanted;
                for (u32 c = 0; c < 3; ++c) {
                    if (mask >> c & 1) {
                        PlainEqualize(wanted.samples.data(), wanted.shape, c, std::min(low, high), std::max(low, high));
                    }
                }
                EXPECT_EQ(MV40_HistogramEqualizeImage(got.samples.data(), 40, 11, 3, got.Stride(), low, high,
                                                      mask | kWidthFlag<T>),
                          1u);
                EXPECT_EQ(got.samples, wanted.samples);
            }
        }
    });
}

TEST(HistogramEqualize, TheDarkestSampleGoesToItsShareOfTheTotal)
{
    Bytes image = {10, 20, 30, 40};
    EXPECT_EQ(MV40_HistogramEqualizeImage(image.data(), 4, 1, 1, 4, 0, 255, 1), 1u);
    EXPECT_EQ(image, (Bytes{63, 127, 191, 255}));  // 255 * 1/4 = 63.75, 127.5, 191.25, 255
}

TEST(HistogramEqualize, AChannelWithNoSampleInTheRangeStays)
{
    Bytes image = {10, 20, 30, 40};
    EXPECT_EQ(MV40_HistogramEqualizeImage(image.data(), 4, 1, 1, 4, 100, 200, 1), 1u);
    EXPECT_EQ(image, (Bytes{10, 20, 30, 40}));
}

TEST(HistogramEqualize, NoChannelBitIsNothingToDo)
{
    Recording recording;
    Bytes image = {10, 20, 30, 40};
    EXPECT_EQ(MV40_HistogramEqualizeImage(image.data(), 4, 1, 1, 4, 0, 255, 0), 1u);
    EXPECT_EQ(image, (Bytes{10, 20, 30, 40}));
    EXPECT_TRUE(recording.recorder.reports.empty());
}

TEST(HistogramEqualize, ReportsSelectedChannelsOnly)
{
    Picture<u8> picture(5, 4, 4, 0, 1);
    Recording recording;
    EXPECT_EQ(MV40_HistogramEqualizeImage(picture.samples.data(), 5, 4, 4, 20, 0, 255, 0b1010), 1u);
    EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{1, 4}, {3, 4}}));
}

TEST(HistogramEqualize, ACancelKeepsTheChannelsDone)
{
    Picture<u8> wanted(20, 4, 3, 0, 1);
    Picture<u8> got = wanted;
    PlainEqualize(wanted.samples.data(), wanted.shape, 0, 0, 255);
    Recording recording(1);
    EXPECT_EQ(MV40_HistogramEqualizeImage(got.samples.data(), 20, 4, 3, 60, 0, 255, 7), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
    EXPECT_EQ(got.samples, wanted.samples);
}

TEST(BrightnessEqualize, EqualsPlain)
{
    for (const u32 channels : {3u, 4u}) {
        for (const auto& [low, high] : {std::pair{20u, 230u}, {200u, 50u}, {0u, 255u}, {300u, 400u}}) {
            SCOPE(channels, low, high);
            Picture<u8> wanted(40, 30, channels, 3, low);
            Picture<u8> got = wanted;
            PlainEqualizeBrightness(wanted.samples.data(), wanted.shape, std::min(low, high), std::max(low, high));
            EXPECT_EQ(
                MV40_BrightnessHistogramEqualizeImage(got.samples.data(), 40, 30, channels, got.Stride(), low, high),
                1u);
            EXPECT_EQ(got.samples, wanted.samples);
        }
    }
}

// Rows are done in blocks of 128 pixels.
TEST(BrightnessEqualize, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 channels : {3u, 4u}) {
            for (const u32 width : {1u, 2u, 7u, 127u, 128u, 129u, 300u}) {
                SCOPE(channels, width);
                Picture<u8> wanted(width, 6, channels, 5, width);
                Picture<u8> got = wanted;
                PlainEqualizeBrightness(wanted.samples.data(), wanted.shape, 50, 200);
                EXPECT_EQ(MV40_BrightnessHistogramEqualizeImage(got.samples.data(), width, 6, channels, got.Stride(),
                                                                50, 200),
                          1u);
                EXPECT_EQ(got.samples, wanted.samples);
            }
        }
    });
}

TEST(BrightnessEqualize, ARangeThatNoPixelFallsInDarkensEachByItsBrightness)
{
    Bytes image = {10, 20, 33, 200, 100, 0};  // brightness 21 and 100
    EXPECT_EQ(MV40_BrightnessHistogramEqualizeImage(image.data(), 2, 1, 3, 6, 110, 120), 1u);
    EXPECT_EQ(image, (Bytes{0, 0, 12, 100, 0, 0}));
}

TEST(BrightnessEqualize, NeverReports)
{
    Picture<u8> picture(5, 4, 3, 0, 1);
    Recording recording(1);
    EXPECT_EQ(MV40_BrightnessHistogramEqualizeImage(picture.samples.data(), 5, 4, 3, 15, 0, 255), 1u);
    EXPECT_TRUE(recording.recorder.reports.empty());
}

TEST(BrightnessEqualize, TheShareOfALargePictureWrapsIn32Bits)
{
    // 9,000,000 pixels of one brightness: 9,000,000 * 255 - 2^32 = -1,999,967,296, over 9,000,000 is -222.
    constexpr u32 kWidth = 3000, kHeight = 3000;
    Bytes image(size_t(kWidth) * kHeight * 3, 1);
    EXPECT_EQ(MV40_BrightnessHistogramEqualizeImage(image.data(), kWidth, kHeight, 3, kWidth * 3, 0, 255), 1u);
    EXPECT_EQ(image[0], 0);  // 1 - (1 + 222)
}

TEST(HistogramStretch, EqualsPlain)
{
    ForBothWidths([]<class T>() {
        const std::pair<f64, f64> ends[] = {{0, 0},    {5, 5},   {1, 0.5},      {0, 10},    {10, 0},
                                            {50, 50},  {100, 0}, {0, 100},      {33.3, 12}, {-5, 7},
                                            {7, -100}, {90, 10}, {0.001, 0.001}};
        for (const auto& [low, high] : ends) {
            for (const int midpoint : {-1, 0, 1, 100, int(kTop<T> / 2), int(kTop<T>) - 1, int(kTop<T>)}) {
                SCOPE(low, high, midpoint);
                Picture<T> wanted(30, 12, 3, 4, u64(midpoint + 1));
                Picture<T> got = wanted;
                for (const u32 c : {0u, 2u}) {
                    PlainStretch(wanted.samples.data(), wanted.shape, c, std::clamp(low, 0.0, 100.0),
                                 std::clamp(high, 0.0, 100.0), midpoint);
                }
                const u32 flags = 0b101 | kWidthFlag<T> | (midpoint < 0 ? 0 : kStretchMidpoint);
                EXPECT_EQ(MV40_HistogramStretchImage(got.samples.data(), 30, 12, 3, got.Stride(), low, high,
                                                     u32(midpoint), flags),
                          1u);
                EXPECT_EQ(got.samples, wanted.samples);
            }
        }
    });
}

const struct {
    const char* shows;
    f64 low, high;
    Bytes before, after;
} kStretches[] = {
    {"a high end of everything is the top", 0, 100, {1, 2, 3, 250}, {255, 255, 255, 255}},
    {"a low end of everything is 0", 100, 0, {1, 2, 3, 250}, {0, 0, 0, 0}},
    // The black point stays at 0, the white point moves to 150: 100 * 255 / 150 = 170, 50 -> 85.
    {"without ends the white point moves and the black point does not", 0, 0, {50, 100, 150, 100}, {85, 170, 255, 170}},
    // lowCount 0 and highCount 3: the black point is found at 0, the running sum reaches 3 at 100. The scale 255 /
    // 100 is rounded down, so 100 gives 254.99..., and 50 gives 127.49...
    {"the high end moves to where the sum reaches its share", 0, 25, {50, 100, 150, 100}, {127, 254, 255, 254}},
    // Both ends ask for 1 of 20: the low index is found at 80, which is not looked at again, the high one at 81.
    {"a flat picture spans one level", 5, 5, Bytes(20, 80), Bytes(20, 0)},
    // Of 4 samples 5 percent are none: the low index is 0, and the flat level is the white point.
    {"a small flat picture spans all levels below", 5, 5, Bytes(4, 80), Bytes(4, 255)},
};

TEST(HistogramStretch, ByHand)
{
    for (const auto& row : kStretches) {
        SCOPE(row.shows);
        Bytes image = row.before;
        const u32 width = u32(image.size());
        EXPECT_EQ(MV40_HistogramStretchImage(image.data(), width, 1, 1, width, row.low, row.high, 0, 1), 1u);
        EXPECT_EQ(image, row.after);
    }
}

TEST(HistogramStretch, TheMidpointComesOutInTheMiddle)
{
    Bytes image = {0, 100, 200, 255};  // 255 and 0 are there: the stretch itself changes nothing
    EXPECT_EQ(MV40_HistogramStretchImage(image.data(), 4, 1, 1, 4, 0, 0, 100, 1 | kStretchMidpoint), 1u);
    // 100 * 127.5 / 100 = 127.5; (200 - 100) * 127.5 / 155 + 127.5 = 209.75...; the top stays.
    EXPECT_EQ(image, (Bytes{0, 127, 209, 255}));
}

TEST(HistogramStretch, OnlyTheLowBitsOfTheMidpointCount)
{
    Bytes image = {0, 100, 200, 255};
    EXPECT_EQ(MV40_HistogramStretchImage(image.data(), 4, 1, 1, 4, 0, 0, 256 + 100, 1 | kStretchMidpoint), 1u);
    EXPECT_EQ(image, (Bytes{0, 127, 209, 255}));
}

TEST(HistogramStretch, ReportsSelectedChannelsAndCancels)
{
    Picture<u8> picture(5, 4, 4, 0, 1);
    {
        Recording recording;
        EXPECT_EQ(MV40_HistogramStretchImage(picture.samples.data(), 5, 4, 4, 20, 1, 1, 0, 0b0110), 1u);
        EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{1, 4}, {2, 4}}));
    }
    Recording recording(1);
    EXPECT_EQ(MV40_HistogramStretchImage(picture.samples.data(), 5, 4, 4, 20, 1, 1, 0, 0b0110), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
}

// Each call answers 1, or 0 with its code, and writes nothing.
struct Call {
    const char* shows;
    u32 (*run)(u8* image);
    u32 result;
    Error error;
};

constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

const Call kCalls[] = {
    {"histograms of a null buffer",
     [](u8*) {
         u32* set[1] = {};
         return MV40_GetImageChannelHistograms(nullptr, 1, 1, 1, 1, set, 0);
     },
     0, Error::BadArgument},
    {"histograms into nothing", [](u8* image) { return MV40_GetImageChannelHistograms(image, 1, 1, 1, 1, nullptr, 0); },
     0, Error::BadArgument},
    {"equalise a null buffer", [](u8*) { return MV40_HistogramEqualizeImage(nullptr, 1, 1, 1, 1, 0, 255, 1); }, 0,
     Error::BadArgument},
    {"equalise nine channels", [](u8* image) { return MV40_HistogramEqualizeImage(image, 1, 1, 9, 9, 0, 255, 1); }, 0,
     Error::BadArgument},
    {"equalise no rows", [](u8* image) { return MV40_HistogramEqualizeImage(image, 4, 0, 1, 4, 0, 255, 1); }, 1,
     Error::None},
    {"brightness of a null buffer",
     [](u8*) { return MV40_BrightnessHistogramEqualizeImage(nullptr, 1, 1, 3, 3, 0, 255); }, 0, Error::BadArgument},
    {"brightness of two channels",
     [](u8* image) { return MV40_BrightnessHistogramEqualizeImage(image, 1, 1, 2, 2, 0, 255); }, 0, Error::BadArgument},
    {"brightness of five channels",
     [](u8* image) { return MV40_BrightnessHistogramEqualizeImage(image, 1, 1, 5, 5, 0, 255); }, 0, Error::BadArgument},
    {"stretch a null buffer", [](u8*) { return MV40_HistogramStretchImage(nullptr, 1, 1, 1, 1, 0, 0, 0, 1); }, 0,
     Error::BadArgument},
    {"stretch nine channels", [](u8* image) { return MV40_HistogramStretchImage(image, 1, 1, 9, 9, 0, 0, 0, 1); }, 0,
     Error::BadArgument},
    {"stretch by more than all", [](u8* image) { return MV40_HistogramStretchImage(image, 4, 1, 1, 4, 60, 41, 0, 1); },
     0, Error::BadArgument},
    {"stretch by all at both ends",
     [](u8* image) { return MV40_HistogramStretchImage(image, 4, 1, 1, 4, 100, 100, 0, 1); }, 0, Error::BadArgument},
    {"stretch by no number below",
     [](u8* image) { return MV40_HistogramStretchImage(image, 4, 1, 1, 4, kNaN, 0, 0, 1); }, 0, Error::BadArgument},
    {"stretch by no number above",
     [](u8* image) { return MV40_HistogramStretchImage(image, 4, 1, 1, 4, 0, kNaN, 0, 1); }, 0, Error::BadArgument},
    {"stretch no columns, by any percentage",
     [](u8* image) { return MV40_HistogramStretchImage(image, 0, 4, 1, 4, 100, 100, 0, 1); }, 1, Error::None},
    {"stretch no rows", [](u8* image) { return MV40_HistogramStretchImage(image, 4, 0, 1, 4, 0, 0, 0, 1); }, 1,
     Error::None},
    {"stretch no channel", [](u8* image) { return MV40_HistogramStretchImage(image, 4, 1, 1, 4, 0, 0, 0, 0); }, 1,
     Error::None},
};

TEST(Histograms, EdgesWriteNothing)
{
    for (const Call& call : kCalls) {
        SCOPE(call.shows);
        const Bytes before = zlvtest::RandomBytes(16, 3);
        Bytes image = before;
        EXPECT_EQ(call.run(image.data()), call.result);
        EXPECT_EQ(MV40_GetLastError(), u32(call.error));
        EXPECT_EQ(image, before);
    }
}

TEST(Histograms, WithoutMemoryTheyAreCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const u32 succeeding : {0u, 1u, 2u}) {
        Bytes image = {1, 2, 3, 4};
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
        EXPECT_EQ(MV40_HistogramStretchImage(image.data(), 4, 1, 1, 4, 0, 0, 0, 1), 0u) << succeeding;
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory)) << succeeding;
        if (succeeding < 2) {
            EXPECT_EQ(MV40_HistogramEqualizeImage(image.data(), 4, 1, 1, 4, 0, 255, 1), 0u) << succeeding;
            EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory)) << succeeding;
        }
        EXPECT_EQ(image, (Bytes{1, 2, 3, 4}));
    }
}

}  // namespace
}  // namespace zlv
