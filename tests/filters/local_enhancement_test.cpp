#include "filters/adaptive_cases.h"
#include "filters/spread_limits.h"
#include "support/guarded_buffer.h"
#include "support/test_hooks.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

const f64 kNan = std::numeric_limits<f64>::quiet_NaN(), kInfinity = std::numeric_limits<f64>::infinity();

struct Enhancement {
    u32 windowSize = 3;
    f64 meanFactor = 0.9, low = 0.2, high = 1.1, gain = 1.7;
    u32 flags = 255;
    std::vector<f64> means = std::vector<f64>(8, 120.5), deviations = std::vector<f64>(8, 70.25);

    PlainEnhancement Plain() const
    {
        return {int(windowSize), means.data(), deviations.data(), meanFactor, low, high, gain, flags};
    }
};

u32 Apply(const AdaptiveShape& shape, const u8* src, u8* dst, const Enhancement& e)
{
    return ZLV40_LocalHistogramEnhancement(src, shape.width, shape.height, shape.channels, shape.SrcStride(), dst,
                                           shape.DstStride(), e.windowSize, e.means.data(), e.deviations.data(),
                                           e.meanFactor, e.low, e.high, e.gain, e.flags);
}

void ExpectPlain(const AdaptiveShape& shape, const Bytes& src, const Enhancement& e)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "window", e.windowSize, "flags", e.flags, "mean",
          e.meanFactor, "low", e.low, "high", e.high, "gain", e.gain);
    Bytes wanted = shape.Target(), got = wanted;
    PlainLocalEnhancement(shape.Plain(src, wanted), e.Plain(), GoOn);
    EXPECT_EQ(Apply(shape, src.data(), got.data(), e), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(LocalEnhancement, EveryTargetEqualsPlain)
{
    OnEveryTarget([] {
        for (const u32 width : {1u, 2u, 7u, 16u, 17u, 33u, 50u}) {
            for (const u32 window : {1u, 2u, 3u, 4u, 7u, 8u, 15u, 16u, 17u}) {
                for (const u32 mode : {0u, u32(ZLV40_DARK_REGIONS)}) {
                    Enhancement e;
                    e.windowSize = window;
                    e.flags |= mode;
                    const AdaptiveShape gray = {width, 5, 1, 2, 1}, rgb = {width, 6, 3, 0, 3};
                    ExpectPlain(gray, gray.Source(), e);
                    ExpectPlain(rgb, rgb.Source(), e);
                }
            }
        }
    });
}

TEST(LocalEnhancement, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu, 0xFFFFFEFFu}) {
            for (const u32 window : {3u, 6u}) {
                Enhancement e;
                e.windowSize = window;
                e.flags = mask;
                for (u32 c = 0; c < 8; ++c) e.means[c] = 100 + 10 * c, e.deviations[c] = 60 + 5 * c;
                const AdaptiveShape shape = {23, 4, channels, 1, 2};
                ExpectPlain(shape, shape.Source(), e);
            }
        }
    }
}

// Where numbers get wider: 15, 226 and 257 are the last sizes of a kind.
TEST(LocalEnhancement, LargeWindowsEqualPlain)
{
    const AdaptiveShape shape = {9, 6, 1};
    for (const u32 window :
         {13u, 14u, 15u, 16u, 17u, 19u, 99u, 225u, 226u, 227u, 228u, 255u, 256u, 257u, 258u, 259u, 300u}) {
        for (const u32 levels : {2u, 256u}) {
            Enhancement e;
            e.windowSize = window;
            e.deviations[0] = levels == 2 ? 0.5 : 75;
            e.means[0] = 120;
            e.low = 0.95;
            ExpectPlain(shape, shape.Source(levels == 2 ? 120 : 0, levels), e);
        }
    }
}

TEST(LocalEnhancement, TheLargestWindowOverOnePixelIsFlat)
{
    Enhancement e;
    e.windowSize = 65535;
    e.low = e.high = 0;
    const u8 sample = 130;
    u8 out = kFill;
    EXPECT_EQ(Apply({1, 1, 1}, &sample, &out, e), 1u);
    EXPECT_EQ(out, 221) << "130 * 1.7";
}

TEST(LocalEnhancement, AGainOf1CopiesTheSelectedChannels)
{
    const AdaptiveShape shape = {40, 9, 4};
    const Bytes src = shape.Source();
    for (const u32 flags : {15u, 15u | ZLV40_DARK_REGIONS}) {
        Enhancement e;
        e.gain = 1;
        e.flags = flags;
        Bytes dst = shape.Target();
        EXPECT_EQ(Apply(shape, src.data(), dst.data(), e), 1u);
        EXPECT_EQ(dst, src);
    }
}

// 200 * 1.5 = 300 is 44, 100 * 2.559 = 255.9 is 255, and -1.5 is -1, which is 255.
TEST(LocalEnhancement, ProductsAreTruncatedAndWrap)
{
    const struct {
        u8 sample;
        f64 gain;
        u8 wanted;
    } rows[] = {{200, 1.5, 44}, {100, 2.559, 255}, {1, -1.5, 255}, {2, -0.4, 0}, {255, 8421504, 128}, {1, 256, 0}};
    for (const auto& row : rows) {
        SCOPE(u32(row.sample), row.gain);
        Enhancement e;
        e.meanFactor = e.low = e.high = kNan;  // nothing is left as it is
        e.gain = row.gain;
        u8 out = kFill;
        EXPECT_EQ(Apply({1, 1, 1}, &row.sample, &out, e), 1u);
        EXPECT_EQ(u32(out), u32(row.wanted));
    }
}

// ---- Limits -------------------------------------------------------------------------------------------------------

TEST(LocalEnhancement, LimitsOfEveryKindEqualPlain)
{
    const f64 limits[] = {kNan, -kInfinity, -1, -0.0, 0, 1e-300, 1e-9, 0.5, 1, 2, 100, 1e9, 1e300, kInfinity};
    const AdaptiveShape shape = {20, 5, 1};
    const Bytes flat = Bytes(100, 77), two = shape.Source(60, 2), any = shape.Source();
    for (const u32 window : {3u, 4u, 17u}) {
        for (const f64 low : limits) {
            for (const f64 high : limits) {
                for (const Bytes* const src : {&flat, &two, &any}) {
                    Enhancement e;
                    e.windowSize = window;
                    e.meanFactor = 0;
                    e.deviations[0] = 1;
                    e.low = low;
                    e.high = high;
                    ExpectPlain(shape, *src, e);
                }
            }
        }
        for (const f64 mean : limits) {
            for (const u32 mode : {0u, u32(ZLV40_DARK_REGIONS)}) {
                Enhancement e;
                e.windowSize = window;
                e.means[0] = 61;
                e.meanFactor = mean;
                e.low = 0;
                e.flags = 1 | mode;
                ExpectPlain(shape, two, e);
                ExpectPlain(shape, any, e);
            }
        }
    }
}

// The deviation of windows of the image itself as a limit: near it the order of the additions decides.
TEST(LocalEnhancement, LimitsAtDeviationsThatOccurEqualPlain)
{
    const AdaptiveShape shape = {30, 12, 1};
    for (const u32 levels : {2u, 3u, 10u, 256u}) {
        const Bytes src = shape.Source(100, std::min(levels, 156u));
        for (const u32 window : {2u, 3u, 4u, 5u, 9u, 17u, 18u}) {
            const i64 half = window / 2;
            Bytes none;
            const PlainAdaptiveImages plain = shape.Plain(src, none);
            const f64 area = f64(window) * window;
            for (const int x : {0, 7, 15, 29}) {
                f64 m = 0, s = 0;
                for (i64 j = -half; j <= half; ++j) {
                    for (i64 i = -half; i <= half; ++i) m += plain.At(x + int(i), 6 + int(j), 0);
                }
                m /= area;
                for (i64 j = -half; j <= half; ++j) {
                    for (i64 i = -half; i <= half; ++i) {
                        const f64 d = plain.At(x + int(i), 6 + int(j), 0) - m;
                        s += d * d;
                    }
                }
                s = std::sqrt(s / area);
                for (const f64 limit : {s, std::nextafter(s, 0), std::nextafter(s, 1e9)}) {
                    Enhancement e;
                    e.windowSize = window;
                    e.meanFactor = 0;
                    e.deviations[0] = limit;
                    e.low = 1;
                    e.high = kNan;
                    ExpectPlain(shape, src, e);
                    e.low = kNan;
                    e.high = 1;
                    ExpectPlain(shape, src, e);
                }
                Enhancement atMean;
                atMean.windowSize = window;
                atMean.means[0] = m;
                atMean.meanFactor = 1;
                atMean.low = atMean.high = kNan;
                ExpectPlain(shape, src, atMean);
                atMean.flags |= ZLV40_DARK_REGIONS;
                ExpectPlain(shape, src, atMean);
            }
        }
    }
}

// Brute force: no limit at a rounded deviation, or a rounding beside it, may call the spread of that window sure on the
// wrong side.
TEST(LocalEnhancement, SureSpreadsAreOnTheRightSideOfTheRoundedDeviation)
{
    Random random(5);
    u64 sure = 0, all = 0;
    for (u32 round = 0; round < 4000; ++round) {
        const u32 window = 1 + random.Below(24), side = window | 1;
        const SpreadOf spread(window);
        const u32 levels = 1 + random.Below(random.Below(2) ? 4 : 256), lowest = random.Below(257 - levels);
        u64 sum = 0, squares = 0;
        std::vector<f64> samples(side * side);
        for (f64& sample : samples) {
            const u32 level = lowest + random.Below(levels);
            sample = level;
            sum += level;
            squares += level * level;
        }
        const i64 measured = i64(spread.SquareFactor() * squares - u64(spread.SumFactor()) * (sum * sum));
        const f64 mean = f64(sum) / f64(spread.area);
        f64 deviation = 0;
        for (const f64 sample : samples) deviation += (sample - mean) * (sample - mean);
        deviation = std::sqrt(deviation / f64(spread.area));
        for (i32 away = -40; away <= 40; ++away) {
            const f64 limit = deviation * (1 + away * 0x1p-52);
            const i64 top = std::numeric_limits<i64>::max();
            const auto low = FindSpreadLimits<i64>(spread, limit, kNan, top);
            const auto high = FindSpreadLimits<i64>(spread, kNan, limit, top);
            EXPECT_TRUE(measured < low.sure.least || !(deviation < limit)) << window;
            EXPECT_TRUE(measured >= low.possible.least || deviation < limit) << window;
            EXPECT_TRUE(measured > high.sure.largest || !(deviation > limit)) << window;
            EXPECT_TRUE(measured <= high.possible.largest || deviation > limit) << window;
            sure += measured >= low.sure.least || measured < low.possible.least;
            ++all;
        }
        // A part in a million away nothing is in doubt.
        for (const f64 limit : {deviation * (1 - 1e-6), deviation * (1 + 1e-6)}) {
            const auto low = FindSpreadLimits<i64>(spread, limit, kNan, std::numeric_limits<i64>::max());
            EXPECT_TRUE(measured < 2000000 || measured >= low.sure.least || measured < low.possible.least) << window;
        }
    }
    EXPECT_LT(sure, all);
}

TEST(LocalEnhancement, StaysInsideItsBuffers)
{
    OnEveryTarget([] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 window : {3u, 4u, 31u}) {
                for (const u32 mask : {7u, 2u}) {
                    const AdaptiveShape shape = {67, 5, 3};
                    GuardedBuffer src(shape.Source().size(), flush, 9), dst(src.Size(), flush, kFill);
                    Enhancement e;
                    e.windowSize = window;
                    e.flags = mask;
                    EXPECT_EQ(Apply(shape, src.Data(), dst.Data(), e), 1u);
                }
            }
        }
    });
}

// ---- Calls --------------------------------------------------------------------------------------------------------

struct RefusedRow {
    const char* shows;
    bool hasSrc = true, hasDst = true, hasMeans = true, hasDeviations = true;
    u32 width = 4, height = 3, channels = 3, srcStride = 12, dstStride = 12, windowSize = 3;
    f64 gain = 1;
};
const RefusedRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "no means", .hasMeans = false},
    {.shows = "no deviations", .hasDeviations = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "no window", .windowSize = 0},
    {.shows = "a window whose area has more than 32 bits", .windowSize = 65536},
    {.shows = "the largest number as a window", .windowSize = 0xFFFFFFFF},
    {.shows = "a gain that is not a number", .gain = kNan},
    {.shows = "an infinite gain", .gain = kInfinity},
    {.shows = "a gain whose products have more than 32 bits", .gain = 8421505},
    {.shows = "the same below 0", .gain = -8421505},
};

TEST(LocalEnhancement, RefusesWithNothingWritten)
{
    for (const RefusedRow& row : kRefused) {
        SCOPE(row.shows);
        const Bytes src = RandomBytes(36, 1);
        Bytes dst(36, kFill);
        const f64 numbers[3] = {1, 1, 1};
        ClearLastError();
        EXPECT_EQ(ZLV40_LocalHistogramEnhancement(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                  row.channels, row.srcStride, row.hasDst ? dst.data() : nullptr,
                                                  row.dstStride, row.windowSize, row.hasMeans ? numbers : nullptr,
                                                  row.hasDeviations ? numbers : nullptr, 1, 1, 1, row.gain, 7),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(36, kFill));
    }
}

TEST(LocalEnhancement, RefusesOneImageForBoth)
{
    const Bytes before = RandomBytes(36, 1);
    Bytes image = before;
    EXPECT_EQ(Apply({4, 3, 3}, image.data(), image.data(), {}), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(image, before);
}

TEST(LocalEnhancement, ReportsRowsAndKeepsWhatIsDoneAfterACancel)
{
    const AdaptiveShape shape = {7, 5, 3};
    const Bytes src = shape.Source();
    for (const u32 mask : {7u, 2u, 0u}) {
        for (size_t at = 0; at <= 5; ++at) {
            SCOPE(mask, at);
            Enhancement e;
            e.flags = mask;
            Bytes wanted = shape.Target(), got = wanted;
            PlainProgress plain(at);
            PlainLocalEnhancement(shape.Plain(src, wanted), e.Plain(),
                                  [&](u32 current, u32 total) { return plain(current, total); });
            ClientProgress client(at);
            EXPECT_EQ(Apply(shape, src.data(), got.data(), e), at == 0 ? 1u : 0u);
            EXPECT_EQ(ZLV40_GetLastError(), at == 0 ? 0u : u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports, plain.reports);
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(LocalEnhancement, EveryFailedAllocationIsReported)
{
    const AdaptiveShape shape = {7, 5, 3};
    const Bytes src = shape.Source();
    for (const u32 window : {3u, 4u, 301u}) {
        u32 failed = 0;
        for (u32 succeeding = 0;; ++succeeding) {
            Enhancement e;
            e.windowSize = window;
            Bytes dst = shape.Target();
            ClearLastError();
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            const u32 result = Apply(shape, src.data(), dst.data(), e);
            if (failing.Failed() == 0) break;
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
            EXPECT_EQ(dst, shape.Target());
            ++failed;
        }
        EXPECT_EQ(failed, 13u);
    }
}

}  // namespace
}  // namespace zlv
