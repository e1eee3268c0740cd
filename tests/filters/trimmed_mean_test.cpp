#include "filters/adaptive_cases.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

u32 Apply(const AdaptiveShape& shape, const u8* src, u8* dst, f64 noiseLevel, f64 bandFactor, u32 mask)
{
    return ZLV40_AdaptiveDWMTMFilter(src, i32(shape.width), i32(shape.height), dst, shape.channels, shape.SrcStride(),
                                     shape.DstStride(), noiseLevel, bandFactor, mask);
}

void ExpectPlain(const AdaptiveShape& shape, f64 halfWidth, u32 mask = 255, u32 levels = 256)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "half width", halfWidth, "mask", mask);
    const Bytes src = shape.Source(0, levels);
    Bytes wanted = shape.Target(), got = wanted;
    PlainTrimmedMean(shape.Plain(src, wanted), halfWidth, 1, mask, GoOn);
    EXPECT_EQ(Apply(shape, src.data(), got.data(), halfWidth, 1, mask), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(TrimmedMean, EveryTargetEqualsPlain)
{
    OnEveryTarget([] {
        for (u32 width = 1; width <= 150; width += width < 40 ? 1 : 17) {
            for (const u32 height : {5u, 8u}) {
                ExpectPlain({width, height, 1, 2, 1}, 20);
                ExpectPlain({width, height, 3, 0, 3}, 60.5);
                ExpectPlain({width, height, 4, 1, 0}, 9, 5);
            }
        }
    });
}

TEST(TrimmedMean, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu, 0xFFFFFFFFu}) {
            ExpectPlain({13, 7, channels, 1, 2}, 30, mask);
        }
    }
}

// Beside integers m + q is rounded to one for large medians, and for small ones it is not.
TEST(TrimmedMean, BandsBesideIntegersEqualPlain)
{
    const f64 infinity = std::numeric_limits<f64>::infinity();
    OnEveryTarget([&] {
        for (const f64 q : {0.0, 1e-300, 0.5, 3 - 0x1p-52, 3.0, 3 + 0x1p-51, 1 - 0x1p-53, 100 - 0x1p-46, 100 + 0x1p-46,
                            254.9, 255.0, 300.0, 1e300, infinity}) {
            ExpectPlain({70, 20, 1}, q);
            ExpectPlain({70, 20, 1}, q, 1, 12);
        }
    });
}

// The median is 20, and in its band lie 10, 20 and 30. So does 25, whose column is not part of the window.
TEST(TrimmedMean, TheColumnTwoToTheRightDoesNotCount)
{
    Bytes src, dst(25, kFill);
    for (u32 y = 0; y < 5; ++y) src.insert(src.end(), {0, 10, 20, 30, 25});
    EXPECT_EQ(Apply({5, 5, 1}, src.data(), dst.data(), 5, 2, 1), 1u);
    EXPECT_EQ(dst[12], 20) << "with the fifth column it would be 21";
    dst[12] = kFill;
    EXPECT_EQ(dst, Bytes(25, kFill)) << "two pixels at each edge";
}

TEST(TrimmedMean, BothEndsOfTheBandCount)
{
    Bytes src(25, 100), dst(25);
    src[0] = 90;
    src[1] = 110;
    src[2] = 89;
    src[3] = 111;
    EXPECT_EQ(Apply({5, 5, 1}, src.data(), dst.data(), 10, 1, 1), 1u);
    EXPECT_EQ(dst[12], 100);
    src[1] = 100;
    EXPECT_EQ(Apply({5, 5, 1}, src.data(), dst.data(), 10, 1, 1), 1u);
    EXPECT_EQ(dst[12], 99) << "(90 + 17 * 100) / 18 = 99.4";
}

TEST(TrimmedMean, EverySumAndCountIsDividedAsWritten)
{
    OnEveryTarget([] {
        for (u32 levels = 1; levels <= 256; levels += 15) ExpectPlain({200, 9, 1}, levels / 2.0, 1, levels);
    });
}

TEST(TrimmedMean, AnImageUnderFivePixelsWritesNothingAndSucceeds)
{
    for (const auto& [width, height] : {std::pair{4u, 9u}, {9u, 4u}, {1u, 1u}, {4u, 4u}, {3u, 100u}}) {
        SCOPE(width, height);
        const AdaptiveShape shape = {width, height, 3};
        const Bytes src = shape.Source();
        Bytes dst = shape.Target();
        ClientProgress client;
        EXPECT_EQ(Apply(shape, src.data(), dst.data(), 5, 2, 7), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(dst, shape.Target());
        EXPECT_EQ(client.recorder.reports.size(), height < 5 ? 0 : height - 4) << "rows without a column are reported";
    }
}

TEST(TrimmedMean, StaysInsideItsBuffers)
{
    OnEveryTarget([] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 mask : {7u, 2u}) {
                const AdaptiveShape shape = {67, 6, 3};
                GuardedBuffer src(shape.Source().size(), flush, 9), dst(src.Size(), flush, kFill);
                EXPECT_EQ(Apply(shape, src.Data(), dst.Data(), 5, 1, mask), 1u);
            }
        }
    });
}

struct RefusedRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    i32 width = 6, height = 6;
    u32 channels = 1, srcStride = 6, dstStride = 6;
    f64 noiseLevel = 1, bandFactor = 1;
};
const RefusedRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "a negative width", .width = -6},
    {.shows = "a negative height", .height = -6},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "a band that holds nothing", .noiseLevel = -1},
    {.shows = "a factor that is not a number", .bandFactor = std::numeric_limits<f64>::quiet_NaN()},
    {.shows = "a product that is not a number", .noiseLevel = 0, .bandFactor = std::numeric_limits<f64>::infinity()},
};

TEST(TrimmedMean, RefusesWithNothingWritten)
{
    for (const RefusedRow& row : kRefused) {
        SCOPE(row.shows);
        const Bytes src = RandomBytes(36, 1);
        Bytes dst(36, kFill);
        ClearLastError();
        EXPECT_EQ(ZLV40_AdaptiveDWMTMFilter(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                            row.hasDst ? dst.data() : nullptr, row.channels, row.srcStride,
                                            row.dstStride, row.noiseLevel, row.bandFactor, 1),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(36, kFill));
    }
}

TEST(TrimmedMean, RefusesOneImageForBoth)
{
    const Bytes before = RandomBytes(36, 1);
    Bytes image = before;
    EXPECT_EQ(Apply({6, 6, 1}, image.data(), image.data(), 1, 1, 1), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(image, before);
}

TEST(TrimmedMean, ACancelAtAnyRowKeepsWhatIsDone)
{
    const AdaptiveShape shape = {7, 8, 3};
    const Bytes src = shape.Source();
    for (const u32 mask : {7u, 0u}) {
        for (size_t at = 0; at <= 4; ++at) {
            SCOPE(mask, at);
            Bytes wanted = shape.Target(), got = wanted;
            PlainProgress plain(at);
            PlainTrimmedMean(shape.Plain(src, wanted), 30, 1, mask,
                             [&](u32 current, u32 total) { return plain(current, total); });
            ClientProgress client(at);
            EXPECT_EQ(Apply(shape, src.data(), got.data(), 30, 1, mask), at == 0 ? 1u : 0u);
            EXPECT_EQ(ZLV40_GetLastError(), at == 0 ? 0u : u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports, plain.reports);
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(TrimmedMean, ReportsTheRowsThatCanBeWritten)
{
    const AdaptiveShape shape = {7, 8, 1};
    const Bytes src = shape.Source();
    Bytes dst = shape.Target();
    ClientProgress client;
    EXPECT_EQ(Apply(shape, src.data(), dst.data(), 30, 1, 1), 1u);
    EXPECT_EQ(client.recorder.reports, (std::vector<Report>{{2, 8}, {3, 8}, {4, 8}, {5, 8}}));
}

TEST(TrimmedMean, EveryFailedAllocationIsReported)
{
    const AdaptiveShape shape = {7, 8, 3};
    const Bytes src = shape.Source();
    const u32 allocations = zlvtest::ExpectCodeOneWithoutMemory(
        shape.Target(), [&](Bytes& dst) { return Apply(shape, src.data(), dst.data(), 3, 1, 7); });
    EXPECT_EQ(allocations, 4u);
}

}  // namespace
}  // namespace zlv
