#include "filters/adaptive_cases.h"
#include "runtime/frame.h"
#include "support/guarded_buffer.h"

#include <cmath>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kUntouched = -7.5;
using Numbers = std::vector<f64>;

u32 Mean(const AdaptiveShape& shape, const u8* src, f64* means, u32 mask)
{
    return ZLV40_FindImageMean(src, shape.width, shape.height, shape.channels, shape.SrcStride(), means, mask);
}

u32 Deviation(const AdaptiveShape& shape, const u8* src, f64* deviations, u32 mask)
{
    return ZLV40_FindImageStandardDeviation(src, shape.width, shape.height, shape.channels, shape.SrcStride(),
                                            deviations, mask);
}

void ExpectPlain(const AdaptiveShape& shape, u32 mask = 255)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "mask", mask);
    const Bytes src = shape.Source();
    Bytes none;
    const PlainAdaptiveImages plain = shape.Plain(src, none);
    Numbers means(8, kUntouched), deviations = means, wantedMeans = means, wantedDeviations = means;
    for (u32 c = 0; c < shape.channels; ++c) {
        if (!(mask >> c & 1)) continue;
        wantedMeans[c] = PlainMean(plain, int(c));
        wantedDeviations[c] = PlainDeviation(plain, int(c));
    }
    EXPECT_EQ(Mean(shape, src.data(), means.data(), mask), 1u);
    EXPECT_EQ(Deviation(shape, src.data(), deviations.data(), mask), 1u);
    EXPECT_EQ(means, wantedMeans);
    EXPECT_EQ(deviations, wantedDeviations);
}

TEST(ImageStatistics, EveryTargetEqualsPlain)
{
    OnEveryTarget([] {
        for (const u32 width : {1u, 2u, 15u, 33u, 70u, 560u, 561u, 900u}) {
            for (const u32 padding : {0u, 3u}) {
                ExpectPlain({width, 7, 1, padding});
                ExpectPlain({width, 7, 3, padding});
                ExpectPlain({width, 300, 4, padding}, 13);
            }
        }
    });
}

TEST(ImageStatistics, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu, 0xFFFFFFFFu})
            ExpectPlain({213, 9, channels, 1}, mask);
    }
}

// More additions than a short lane holds.
TEST(ImageStatistics, WhiteImagesHaveTheMean255AndNoDeviation)
{
    OnEveryTarget([] {
        for (const u32 height : {256u, 257u, 258u, 1000u}) {
            for (const u32 padding : {0u, 1u}) {
                SCOPE(height, padding);
                const AdaptiveShape shape = {1681, height, 1, padding};
                const Bytes src(size_t(shape.SrcStride()) * height, 255);
                f64 mean = kUntouched, deviation = kUntouched;
                EXPECT_EQ(Mean(shape, src.data(), &mean, 1), 1u);
                EXPECT_EQ(Deviation(shape, src.data(), &deviation, 1), 1u);
                EXPECT_EQ(mean, 255);
                EXPECT_EQ(deviation, 0);
            }
        }
    });
}

// 0, 0 and 2: the mean of 2 / 3 is truncated to 0, and the deviation from it is the root of 4 / 3.
TEST(ImageStatistics, TheDeviationIsFromTheTruncatedMean)
{
    const Bytes src = {0, 0, 2};
    f64 mean = kUntouched, deviation = kUntouched;
    EXPECT_EQ(Mean({3, 1, 1}, src.data(), &mean, 1), 1u);
    EXPECT_EQ(Deviation({3, 1, 1}, src.data(), &deviation, 1), 1u);
    EXPECT_EQ(mean, 0);
    EXPECT_EQ(deviation, std::sqrt(4.0 / 3));
}

// 25,000,000 * 255 is 6,375,000,000, which is 2,080,032,704 in 32 bits: 83 a pixel. From there it is 172 to each
// sample.
TEST(ImageStatistics, TheSumOfAPictureOf5000x5000Wraps)
{
    const AdaptiveShape shape = {5000, 5000, 1};
    const Bytes src(size_t(25000000), 255);
    f64 mean = kUntouched, deviation = kUntouched;
    EXPECT_EQ(Mean(shape, src.data(), &mean, 1), 1u);
    EXPECT_EQ(Deviation(shape, src.data(), &deviation, 1), 1u);
    EXPECT_EQ(mean, 83);
    EXPECT_EQ(deviation, 172);
}

TEST(ImageStatistics, StayInsideTheirBuffers)
{
    OnEveryTarget([] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 channels : {1u, 3u, 8u}) {
                const AdaptiveShape shape = {67, 5, channels};
                GuardedBuffer src(shape.Source().size(), flush, 9), numbers(channels * sizeof(f64), flush);
                f64* const found = reinterpret_cast<f64*>(numbers.Data());
                EXPECT_EQ(Mean(shape, src.Data(), found, 255), 1u);
                EXPECT_EQ(found[channels - 1], 9);
                EXPECT_EQ(Deviation(shape, src.Data(), found, 255), 1u);
                EXPECT_EQ(found[0], 0);
            }
        }
    });
}

// ---- Calls --------------------------------------------------------------------------------------------------------

struct RefusedRow {
    const char* shows;
    bool hasSrc = true, hasResults = true;
    u32 width = 4, height = 3, channels = 3, stride = 12;
};
const RefusedRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no place for the results", .hasResults = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "a stride of 0", .stride = 0},
    {.shows = "2^32 pixels", .width = 65536, .height = 65536},
    {.shows = "more pixels than 32 bits count", .width = 65537, .height = 65536},
};

TEST(ImageStatistics, RefuseWithNothingWritten)
{
    for (const RefusedRow& row : kRefused) {
        for (const auto function : {ZLV40_FindImageMean, ZLV40_FindImageStandardDeviation}) {
            SCOPE(row.shows);
            const Bytes src = RandomBytes(36, 1);
            Numbers results(3, kUntouched);
            ClearLastError();
            EXPECT_EQ(function(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.channels, row.stride,
                               row.hasResults ? results.data() : nullptr, 7),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(results, Numbers(3, kUntouched));
        }
    }
}

TEST(ImageStatistics, ASuccessLeavesAnOlderCode)
{
    const Bytes src = RandomBytes(36, 1);
    Numbers results(3);
    for (const auto function : {ZLV40_FindImageMean, ZLV40_FindImageStandardDeviation}) {
        EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
        EXPECT_EQ(function(src.data(), 4, 3, 3, 12, results.data(), 7), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        ClearLastError();
        EXPECT_EQ(function(src.data(), 4, 3, 3, 12, results.data(), 7), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
    }
}

TEST(ImageStatistics, TheMeanReportsNothing)
{
    const Bytes src = RandomBytes(36, 1);
    Numbers results(3);
    ClientProgress client(1);
    EXPECT_EQ(Mean({4, 3, 3}, src.data(), results.data(), 7), 1u);
    EXPECT_TRUE(client.recorder.reports.empty());
}

TEST(ImageStatistics, TheDeviationReportsSelectedChannelsAndCanBeCancelledAtEach)
{
    const AdaptiveShape shape = {4, 3, 6};
    const Bytes src = shape.Source();
    Bytes none;
    const std::vector<Report> all = {{1, 6}, {3, 6}, {4, 6}};
    for (size_t at = 0; at <= 3; ++at) {
        SCOPE(at);
        const size_t done = at == 0 ? 3 : at;
        Numbers wanted(6, kUntouched), got = wanted;
        for (size_t i = 0; i < done; ++i) {
            wanted[all[i].current] = PlainDeviation(shape.Plain(src, none), int(all[i].current));
        }
        ClearLastError();
        ClientProgress client(at);
        EXPECT_EQ(Deviation(shape, src.data(), got.data(), 0x1A), at == 0 ? 1u : 0u);
        EXPECT_EQ(ZLV40_GetLastError(), at == 0 ? 0u : u32(ZLV40_ERROR_CANCELLED));
        EXPECT_EQ(client.recorder.reports, std::vector<Report>(all.begin(), all.begin() + i64(done)));
        EXPECT_EQ(got, wanted);
    }
}

TEST(ImageStatistics, RaiseTheNestingCounterAlone)
{
    const AdaptiveShape shape = {4, 3, 3};
    const Bytes src = shape.Source();
    Numbers results(3);
    ClientProgress client;
    u32 nestCount = 0, callDepth = 99;
    client.recorder.atReport = [&] {
        nestCount = exportedContexts.Get()->nestCount;
        callDepth = exportedContexts.Get()->callDepth;
    };
    EXPECT_EQ(Deviation(shape, src.data(), results.data(), 1), 1u);
    EXPECT_EQ(nestCount, 1u);
    EXPECT_EQ(callDepth, 0u);
    EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
}

}  // namespace
}  // namespace zlv
