// What the window statistic filters write.
#include "filters/window_filter_cases.h"

#include "runtime/frame.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <cstring>

namespace zlv {
namespace {

using namespace zlvtest;

TEST(WindowFilters, RandomShapesOnEveryTargetEqualPlain)
{
    constexpr i32 kSizes[] = {1, 2, 3, 5, 6, 7, 9, 11, 13, 15, 17, 19, 25};
    zlvtest::OnEveryTarget([&] {
        for (const WindowFilter& filter : AllWindowFilters()) {
            Random random(filter.name.size());
            for (int i = 0; i < 40; ++i) {
                const u32 width = 1 + random.Below(i % 4 ? 12 : 50), height = 1 + random.Below(9);
                const u32 channels = 1 + random.Below(8), mask = i % 3 ? random.Next() : 0xFFFFFFFF;
                const i32 size = kSizes[random.Below(u32(std::size(kSizes)))];
                WindowComparison{width, height, channels, size, mask, random.Below(4)}.Expect(filter);
            }
        }
    });
}

TEST(WindowFilters, LongRowsOnEveryTargetEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const WindowFilter& filter : WindowFilters()) {
            for (const i32 size : {3, 5, 15, 17}) {
                for (const u32 channels : {1u, 2u, 3u, 4u, 8u}) {
                    WindowComparison{131, 4, channels, size}.Expect(filter);
                }
            }
        }
    });
}

TEST(WindowFilters, WindowsThatCoverTheImageSeveralTimesEqualPlain)
{
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 7u}, {7u, 1u}, {5u, 3u}, {2u, 12u}, {12u, 2u}}) {
            for (const i32 size : {5, 13, 15, 17, 23, 41}) WindowComparison{width, height, 3, size, 5}.Expect(filter);
        }
    }
}

// Where most of a window lies beyond the image, the same numbers are added again and again.
TEST(WindowFilters, PowersOfWindowsFarLargerThanTheImageEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const i32 order : {-1, -2, -3, -7, -200, 7, 13, 200}) {
            for (const auto& [width, height] : {std::pair{1u, 1u}, {3u, 2u}, {2u, 1u}}) {
                for (const auto& [lowest, levels] : {std::pair{1u, 255u}, {1u, 3u}, {128u, 128u}, {0u, 256u}}) {
                    for (const i32 size : {135, 301}) {
                        WindowComparison{width, height, 1, size, 1, 0, lowest, levels}.Expect(PowerMean(order));
                    }
                }
            }
        }
    });
}

TEST(WindowFilters, LargeWindowsEqualPlain)
{
    for (const WindowFilter& filter : WindowFilters()) {
        for (const i32 size : {51, 99, 101, 103, 127}) WindowComparison{9, 4, 1, size}.Expect(filter);
        WindowComparison{60, 40, 1, 31}.Expect(filter);
    }
}

TEST(WindowFilters, ImagesOfFewLevelsEqualPlain)
{
    constexpr std::pair<u32, u32> kRanges[] = {{0, 2}, {0, 3}, {1, 2}, {1, 3}, {2, 5}, {126, 3}, {253, 3}, {254, 2}};
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (const auto& [lowest, levels] : kRanges) {
            for (const i32 size : {3, 5, 17}) {
                WindowComparison{23, 8, 2, size, 3, 1, lowest, levels}.Expect(filter);
            }
        }
    }
}

// Means that come out whole, where a sum's last bit decides: the geometric mean of 1, 1 and 8 is 2.
TEST(WindowFilters, MeansThatAreNearlyWholeEqualPlain)
{
    constexpr u8 kLevels[][3] = {{1, 8, 8}, {1, 27, 8},    {2, 16, 128}, {3, 6, 6},
                                 {2, 3, 6}, {255, 85, 51}, {250, 125, 1}};
    zlvtest::OnEveryTarget([&] {
        for (const WindowFilter& filter : AllWindowFilters()) {
            for (const auto& levels : kLevels) {
                for (const i32 size : {3, 5, 9}) {
                    SCOPE(filter.name, int(levels[0]), int(levels[1]), size);
                    Bytes src = RandomBytes(39 * 7, levels[1]), wanted(src.size()), got(src.size());
                    for (u8& sample : src) sample = levels[sample % 3];
                    const WindowCase call = {src.data(), 39, 7, got.data(), 1, 39, 39, size, 1};
                    filter.plain(call.Plain(wanted.data()));
                    EXPECT_EQ(filter.apply(call), 1u);
                    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
                }
            }
        }
    });
}

TEST(WindowFilters, FlatImagesOfEveryLevelEqualPlain)
{
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (u32 level = 0; level < 256; ++level) {
            for (const i32 size : {1, 3, 5, 7, 17}) WindowComparison{6, 2, 1, size, 1, 0, level, 1}.Expect(filter);
        }
    }
}

TEST(WindowFilters, OneDarkPixelInAFlatImageEqualsPlain)
{
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (const u8 dark : {u8(0), u8(1), u8(199)}) {
            for (const u32 place : {0u, 37u, 63u, 149u}) {
                SCOPE(filter.name, int(dark), place);
                Bytes src(150, 200), wanted(150), got(150);
                src[place] = dark;
                const WindowCase call = {src.data(), 15, 10, got.data(), 1, 15, 15, 5, 1};
                filter.plain(call.Plain(wanted.data()));
                EXPECT_EQ(filter.apply(call), 1u);
                EXPECT_EQ(got, wanted);
            }
        }
    }
}

TEST(WindowFilters, StayInsideTheirBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const WindowFilter& filter : WindowFilters()) {
            for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                for (const u32 width : {1u, 5u, 21u, 64u}) {
                    for (const u32 channels : {1u, 3u, 5u}) {
                        for (const i32 size : {1, 3, 15, 17, 161}) {
                            SCOPE(filter.name, int(flush), width, channels, size);
                            GuardedBuffer src(size_t(width) * channels * 3, flush, 9);
                            GuardedBuffer dst(src.Size(), flush);
                            const u32 stride = width * channels;
                            EXPECT_EQ(
                                filter.apply({src.Data(), width, 3, dst.Data(), channels, stride, stride, size, 0xFF}),
                                1u);
                        }
                    }
                }
            }
        }
    });
}

// One row of three pixels, then what becomes of it.
struct ByHand {
    const char* shows;
    WindowFilter filter;
    i32 size;
    Bytes before, after;
};

const ByHand kByHand[] = {
    {"0 becomes a window of 1", Minimum(), 0, {9, 5, 7}, {9, 5, 7}},
    {"2 becomes a window of 3", Minimum(), 2, {9, 5, 7}, {5, 5, 5}},
    {"a negative size becomes 1", Minimum(), -7, {9, 5, 7}, {9, 5, 7}},
    {"the lowest size becomes 1", Maximum(), INT32_MIN, {9, 5, 7}, {9, 5, 7}},
    {"the largest size is a window like any other", Maximum(), INT32_MAX, {9, 5, 7}, {9, 9, 9}},
    {"an even size just below the largest too", Midpoint(), INT32_MAX - 1, {9, 5, 8}, {7, 7, 7}},
    {"the midpoint truncates", Midpoint(), 3, {0, 255, 255}, {127, 127, 255}},
    {"the mean truncates: 9, 14 and 19 thirds", ArithmeticMean(), 3, {3, 3, 8}, {3, 4, 6}},
    {"the geometric mean truncates: the cube roots of 1, 9 and 81", GeometricMean(), 3, {1, 1, 9}, {1, 2, 4}},
    {"one 0 makes the geometric mean 0", GeometricMean(), 3, {1, 1, 0}, {1, 0, 0}},
    {"the harmonic mean of 3, 3, 7 is 3.7, that of 3, 7, 7 is 4.8", HarmonicMean(), 3, {3, 3, 7}, {3, 4, 5}},
    {"one 0 makes the harmonic mean 0", HarmonicMean(), 3, {200, 200, 0}, {200, 0, 0}},
    {"one 0 makes a negative power mean 0", PowerMean(-2), 3, {200, 0, 100}, {0, 0, 0}},
    {"order 0 makes every sample 1", PowerMean(0), 3, {0, 9, 255}, {1, 1, 1}},
    {"order 2: the root of 1, 17 and 33", PowerMean(2), 3, {1, 1, 7}, {1, 4, 5}},
    {"powers that overflow give 255", PowerMean(2000), 1, {0, 1, 2}, {0, 1, 255}},
    {"a sum of powers that underflows gives 0", PowerMean(-2000), 1, {1, 2, 200}, {1, 0, 0}},
    {"sharpening truncates: 10 - 7.5, 20 + 15, 10 - 7.5", Sharpen(0.25), 3, {10, 20, 10}, {2, 35, 2}},
    {"sharpening limits: -1.5, 4, -1.5", Sharpen(0.5), 3, {0, 1, 0}, {0, 4, 0}},
    {"a negative amount blurs: 9, 9 - 3.4, 0 + 3.4", Sharpen(-0.125), 3, {9, 9, 0}, {9, 5, 3}},
    {"sharpening by the whole excess: 3, -6, 3", Sharpen(1), 3, {100, 101, 100}, {97, 107, 97}},
    {"sharpening a flat image changes nothing", Sharpen(1e300), 5, {77, 77, 77}, {77, 77, 77}},
    {"blurring truncates both terms", Blur(0.5), 3, {255, 255, 255}, {254, 254, 254}},
    {"blurring by 0 copies", Blur(0), 3, {9, 5, 7}, {9, 5, 7}},
    {"blurring by 1 is the mean", Blur(1), 3, {9, 0, 0}, {6, 3, 0}},
    {"less than 0 counts as 0", Blur(-1), 3, {9, 5, 7}, {9, 5, 7}},
    {"more than 1 counts as 1", Blur(2), 3, {9, 0, 0}, {6, 3, 0}},
};

TEST(WindowFilters, ByHand)
{
    for (const ByHand& row : kByHand) {
        SCOPE(row.shows);
        Bytes out(3, 77);
        EXPECT_EQ(row.filter.apply({row.before.data(), 3, 1, out.data(), 1, 3, 3, row.size, 1}), 1u);
        EXPECT_EQ(out, row.after);
    }
}

// One window of a wide image whose mean is whole, and a level area: nearly all others are settled quickly.
TEST(WindowFilters, AFewNearlyWholeMeansOfAWideRowEqualPlain)
{
    constexpr u32 kWidth = 600, kHeight = 9;
    constexpr u8 kBlock[] = {2, 3, 6};  // whose reciprocals are 1 together
    Bytes src = RandomBytes(kWidth * kHeight, 4);
    for (u8& sample : src) sample = u8(sample | 64);
    for (u32 y = 3; y < 6; ++y) {
        for (u32 i = 0; i < 3; ++i) src[y * kWidth + 300 + i] = kBlock[(i + y) % 3];
        for (u32 x = 400; x < 410; ++x) src[y * kWidth + x] = 81;
    }
    OnEveryTarget([&] {
        for (const WindowFilter& filter : AllWindowFilters()) {
            SCOPE(filter.name);
            Bytes wanted(src.size()), got(src.size());
            const WindowCase call = {src.data(), kWidth, kHeight, got.data(), 1, kWidth, kWidth, 3, 1};
            filter.plain(call.Plain(wanted.data()));
            EXPECT_EQ(filter.apply(call), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), wanted.size()), "");
        }
    });
}

TEST(WindowFilters, AWindowOfOneGivesTheSampleItself)
{
    Bytes all(256);
    for (u32 i = 0; i < 256; ++i) all[i] = u8(i);
    for (const WindowFilter& filter : {Minimum(), Maximum(), Midpoint(), ArithmeticMean(), GeometricMean(),
                                       HarmonicMean(), PowerMean(1), PowerMean(2), Sharpen(0.7), Blur(0), Blur(1)}) {
        for (const i32 size : {1, 0}) {
            SCOPE(filter.name, size);
            Bytes out(256, 77);
            EXPECT_EQ(filter.apply({all.data(), 256, 1, out.data(), 1, 256, 256, size, 1}), 1u);
            EXPECT_EQ(out, all);
        }
    }
}

TEST(WindowFilters, OnePixelUnderAWindowOfFive)
{
    for (const WindowFilter& filter :
         {Minimum(), Maximum(), Midpoint(), ArithmeticMean(), HarmonicMean(), PowerMean(2), Sharpen(0.7), Blur(1)}) {
        SCOPE(filter.name);
        const u8 sample = 201;
        u8 out = 0;
        EXPECT_EQ(filter.apply({&sample, 1, 1, &out, 1, 1, 1, 5, 1}), 1u);
        EXPECT_EQ(out, 201);
    }
}

TEST(WindowFilters, NoSelectedChannelLeavesTheDestinationAlone)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        const Bytes src = RandomBytes(48, 1);
        for (const u32 mask : {0u, 0xFFFFFFF8u}) {
            Bytes dst(48, 77);
            EXPECT_EQ(filter.apply({src.data(), 4, 4, dst.data(), 3, 12, 12, 3, mask}), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
            EXPECT_EQ(dst, Bytes(48, 77));
        }
    }
}

TEST(WindowFilters, AChannelThatIsNotSelectedIsNotCopied)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        const Bytes src(36, 100);
        Bytes dst(36, 77);
        EXPECT_EQ(filter.apply({src.data(), 4, 3, dst.data(), 3, 12, 12, 3, 5}), 1u);
        for (size_t i = 1; i < dst.size(); i += 3) EXPECT_EQ(dst[i], 77);
        EXPECT_NE(dst[0], 77);
        EXPECT_NE(dst[2], 77);
    }
}

TEST(WindowFilters, TheLargestWindowsOfOnePixelGiveItsSample)
{
    struct {
        WindowFilter filter;
        u8 sample, result;
    } const rows[] = {
        {PowerMean(-1), 1, 1},  {PowerMean(-1), 64, 64},  {ArithmeticMean(), 255, 255},
        {Blur(1), 255, 255},    {Sharpen(1), 255, 255},   {HarmonicMean(), 255, 255},
        {HarmonicMean(), 1, 1}, {PowerMean(1), 255, 255}, {PowerMean(2), 255, 255},
    };
    for (const auto& row : rows) {
        SCOPE(row.filter.name);
        u8 out = 0;
        EXPECT_EQ(row.filter.apply({&row.sample, 1, 1, &out, 1, 1, 1, row.filter.largestSize, 1}), 1u);
        EXPECT_EQ(out, row.result);
    }
}

// Sums and excesses at the ends of their ranges: black with a white pixel, and the other way round.
TEST(WindowFilters, LargeSumsOfUnevenImagesEqualPlain)
{
    for (const WindowFilter& filter : {ArithmeticMean(), Blur(0.5), Sharpen(1e-9), Sharpen(-1e-9)}) {
        for (const u8 ground : {u8(0), u8(255)}) {
            SCOPE(filter.name, int(ground));
            const Bytes src = {u8(255 - ground), ground};
            Bytes wanted(2), got(2);
            const WindowCase call = {src.data(), 2, 1, got.data(), 1, 2, 2, filter.largestSize, 1};
            filter.plain(call.Plain(wanted.data()));
            EXPECT_EQ(filter.apply(call), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

}  // namespace
}  // namespace zlv
