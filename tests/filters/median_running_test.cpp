// The running median and the removal of dust and scratches by it.
#include "filters/median_cases.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kNoNumber = std::numeric_limits<f64>::quiet_NaN();

TEST(RunningMedian, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 5u, 16u, 33u, 70u}) {
            for (const u32 height : {1u, 2u, 6u, 19u}) {
                for (const i32 size : {1, 3, 5, 7, 15, 31}) {
                    const Kind kind = kKinds[(width + height + u32(size)) % std::size(kKinds)];
                    MedianCall{.width = width, .height = height, .channels = 1, .filterSize = size, .kind = kind}
                        .ExpectRunning();
                }
            }
        }
    });
}

TEST(RunningMedian, EveryKindOfPictureEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const Kind kind : kKinds) {
            for (const i32 size : {1, 3, 5, 9}) {
                MedianCall{.width = 90, .height = 23, .channels = 3, .filterSize = size, .kind = kind}.ExpectRunning();
            }
        }
    });
}

TEST(RunningMedian, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0xAAu, 0xFFu, 0xFFFFFF02u}) {
            for (const i32 size : {1, 3, 5, 7}) {
                MedianCall{.width = 21,
                           .height = 9,
                           .channels = channels,
                           .filterSize = size,
                           .mask = mask,
                           .kind = Kind::NearTop}
                    .ExpectRunning();
            }
        }
    }
}

// Runs of the top level go on from one tile of columns to the next.
TEST(RunningMedian, TilesOfColumnsMeetWithoutASeam)
{
    zlvtest::OnEveryTarget([&] {
        for (const Kind kind : {Kind::Noise, Kind::MostlyTop, Kind::Stripes}) {
            for (const i32 size : {7, 21, 83}) {
                MedianCall{.width = 700, .height = 5, .channels = 2, .filterSize = size, .kind = kind}.ExpectRunning();
            }
        }
    });
}

TEST(RunningMedian, BlocksOfANetworkMeetWithoutASeam)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {341u, 342u, 343u, 700u}) {
            for (const i32 size : {3, 5}) {
                MedianCall{.width = width, .height = 4, .channels = 3, .filterSize = size}.ExpectRunning();
            }
        }
    });
}

TEST(RunningMedian, RandomSizesEqualPlain)
{
    Random random(6);
    zlvtest::OnEveryTarget([&] {
        for (u32 round = 0; round < 150; ++round) {
            MedianCall{.width = 1 + random.Below(60),
                       .height = 1 + random.Below(30),
                       .channels = 1 + random.Below(4),
                       .filterSize = i32(random.Below(40)),
                       .mask = random.Below(16),
                       .blend = {random.Below(3) * random.Below(80), random.Below(6) / 5.0},
                       .padding = random.Below(5),
                       .kind = kKinds[random.Below(std::size(kKinds))]}
                .ExpectRunning();
        }
    });
}

// From 257 on a window has more samples than 16 bits count; the last size is the largest that is taken.
TEST(RunningMedian, WindowsThatCoverTheImageManyTimesEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const i32 size : {61, 253, 255, 257, 301, 1001, 9999, 46339}) {
            for (const Kind kind : {Kind::Noise, Kind::NearTop, Kind::BlackAndWhite}) {
                MedianCall{.width = 1, .height = 1, .channels = 1, .filterSize = size, .kind = kind}.ExpectRunning();
                MedianCall{.width = 13, .height = 7, .channels = 1, .filterSize = size, .kind = kind}.ExpectRunning();
                MedianCall{.width = 4, .height = 11, .channels = 2, .filterSize = size, .kind = kind}.ExpectRunning();
            }
        }
    });
}

TEST(RunningMedian, WideCountsEqualPlainInsideTheImage)
{
    zlvtest::OnEveryTarget([&] {
        MedianCall{.width = 300, .height = 3, .channels = 1, .filterSize = 259}.ExpectRunning();
        MedianCall{.width = 3, .height = 300, .channels = 1, .filterSize = 259}.ExpectRunning();
    });
}

TEST(RunningMedian, SizesBelow1AndEvenSizesGrow)
{
    const struct {
        i32 size, like;
    } rows[] = {{0, 1}, {2, 3}, {4, 5}, {6, 7}, {-1, 1}, {-2, 1}, {INT32_MIN, 1}};
    for (const auto& row : rows) {
        SCOPE(row.size);
        const MedianCall call{.width = 15, .height = 9, .channels = 3, .filterSize = row.size};
        const MedianCall like{.width = 15, .height = 9, .channels = 3, .filterSize = row.like};
        const Bytes src = call.Source();
        Bytes got = call.Target(), wanted = got;
        EXPECT_EQ(call.RunRunning(src, got), 1u);
        EXPECT_EQ(like.RunRunning(src, wanted), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(RunningMedian, AWindowOfOneSampleIsACopyBelowTheTop)
{
    EXPECT_EQ(RunningMedianOfRow({3, 0, 254, 7, 7}, 1), (Bytes{3, 0, 254, 7, 7}));
    EXPECT_EQ(RunningMedianOfRow({3, 255, 255, 7, 255}, 1), (Bytes{3, 254, 254, 7, 254}));
}

TEST(RunningMedian, AFlatImageOf255StaysAtTheTop)
{
    for (const i32 size : {1, 3, 5, 7, 31, 301}) {
        SCOPE(size);
        const Bytes src(50 * 20 * 3, 255);
        Bytes dst(src.size(), 77);
        EXPECT_EQ(ZLV40_MedianFilterImage(src.data(), 50, 20, dst.data(), 3, 150, 150, size, 7), 1u);
        EXPECT_EQ(dst, src);
    }
}

TEST(RunningMedian, ARowThatChangesTo255InMidRowSettlesAt254)
{
    const Bytes row = {9, 9, 9, 9, 255, 255, 255, 255, 255, 255};
    EXPECT_EQ(RunningMedianOfRow(row, 1), (Bytes{9, 9, 9, 9, 254, 254, 254, 254, 254, 254}));
    EXPECT_EQ(RunningMedianOfRow(row, 3), (Bytes{9, 9, 9, 9, 254, 254, 254, 254, 254, 254}));
    EXPECT_EQ(RunningMedianOfRow(row, 5), (Bytes{9, 9, 9, 9, 254, 254, 254, 254, 254, 254}));
    EXPECT_EQ(RunningMedianOfRow(row, 7), (Bytes{9, 9, 9, 9, 254, 254, 254, 254, 254, 254}));
}

TEST(RunningMedian, ARowThatStartsWith255KeepsItUntilItLeavesIt)
{
    const Bytes row = {255, 255, 255, 255, 9, 9, 9, 255, 255, 255};
    for (const i32 size : {1, 3, 5}) {
        SCOPE(size);
        EXPECT_EQ(RunningMedianOfRow(row, size), (Bytes{255, 255, 255, 255, 9, 9, 9, 254, 254, 254}));
    }
}

TEST(RunningMedian, EachRowAndChannelHasARunOfItsOwn)
{
    // Two channels, two rows of three pixels: the first channel starts at the top in row 0, the second one in row 1.
    const Bytes src = {255, 1, 255, 255, 255, 255, 1, 255, 255, 255, 255, 255};
    Bytes dst(src.size(), 77);
    EXPECT_EQ(ZLV40_MedianFilterImage(src.data(), 3, 2, dst.data(), 2, 6, 6, 1, 3), 1u);
    EXPECT_EQ(dst, (Bytes{255, 1, 255, 254, 255, 254, 1, 255, 254, 255, 254, 255}));
}

TEST(DustAndScratches, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 threshold : {0u, 1u, 20u, 254u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
            for (const f64 amount : {-3.0, 0.0, 0.003, 0.3, 0.5, 1.0, 2.0, 1e300}) {
                for (const i32 size : {3, 5, 9}) {
                    MedianCall{.width = 45,
                               .height = 8,
                               .channels = 3,
                               .filterSize = size,
                               .mask = 5,
                               .blend = {threshold, amount},
                               .kind = Kind::Specks}
                        .ExpectRunning();
                }
            }
        }
    });
}

// A window of one sample settles at 254, so its sample of 255 differs from its median by 1, for all others by 0; a
// wide window brings all pairs.
TEST(DustAndScratches, EveryPairOfSampleAndMedianEqualsPlain)
{
    for (const u32 threshold : {1u, 7u}) {
        for (const f64 amount : {0.0, 0.2, 0.5, 1.0}) {
            SCOPE(threshold, amount);
            // Row m of three: the pixels between two of level m are the samples 0 to 255.
            constexpr u32 kWidth = 2 * 256 + 1;
            for (u32 m = 0; m < 256; ++m) {
                Bytes src(kWidth * 3, u8(m));
                for (u32 v = 0; v < 256; ++v) src[kWidth + 2 * v + 1] = u8(v);
                Bytes got(src.size(), 77), wanted = got;
                const PlainMedianBlend blend = {threshold, amount};
                EXPECT_EQ(ZLV40_DustAndScratches(src.data(), kWidth, 3, got.data(), 1, kWidth, kWidth, 3, threshold,
                                                 amount, 1),
                          1u);
                PlainDustAndScratches({src.data(), kWidth, 3, wanted.data(), 1, kWidth, kWidth, 3}, blend, 1);
                ASSERT_EQ(got, wanted) << m;
            }
        }
    }
}

TEST(DustAndScratches, AThresholdOf0IsAPlainMedianWhateverTheAmountIs)
{
    const MedianCall median{.width = 20, .height = 9, .channels = 3, .filterSize = 5};
    const Bytes src = median.Source();
    Bytes wanted = median.Target();
    EXPECT_EQ(median.RunRunning(src, wanted), 1u);
    for (const f64 amount : {-1.0, 0.0, 0.25, 1.0, 1e9, kNoNumber}) {
        SCOPE(amount);
        Bytes got = median.Target();
        EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 20, 9, got.data(), 3, median.SrcStride(), median.DstStride(), 5, 0,
                                         amount, 7),
                  1u);
        EXPECT_EQ(got, wanted);
    }
}

// A bright outlier stops one level short of it: 200 + (-100 * 255 + 128) / 255 = 200 - 99.5.
TEST(DustAndScratches, AnAmountOf1MovesAnOutlierToTheMedian)
{
    const struct {
        u8 outlier, wanted;
    } rows[] = {{0, 100}, {1, 100}, {200, 101}, {255, 101}};
    for (const auto& row : rows) {
        SCOPE(int(row.outlier));
        Bytes src(25, 100), wanted(25, 100), dst(25, 77);
        src[12] = row.outlier;
        wanted[12] = row.wanted;
        EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 5, 5, dst.data(), 1, 5, 5, 3, 98, 1.0, 1), 1u);
        EXPECT_EQ(dst, wanted);
    }
}

TEST(DustAndScratches, ADifferenceOfTheThresholdItselfStays)
{
    Bytes src(9, 100), dst(9, 77);
    src[4] = 130;
    EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 3, 3, dst.data(), 1, 3, 3, 3, 30, 1.0, 1), 1u);
    EXPECT_EQ(dst, src);
    EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 3, 3, dst.data(), 1, 3, 3, 3, 29, 1.0, 1), 1u);
    EXPECT_EQ(int(dst[4]), 101);
}

TEST(DustAndScratches, AnAmountThatComesToNothingLeavesEachSample)
{
    const Bytes src = RandomBytes(20 * 9, 4);
    for (const f64 amount : {0.0, 0.0039, -1.0}) {
        SCOPE(amount);
        Bytes dst(src.size(), 77);
        EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 20, 9, dst.data(), 1, 20, 20, 3, 5, amount, 1), 1u);
        EXPECT_EQ(dst, src);
    }
}

// Half of the way is w = 127. Up: 100 + (100 * 127 + 128) / 255 = 100 + 50.3. Down: 200 + (-100 * 127 + 128) / 255 =
// 200 - 49.3, where rounding alike would give 150.
TEST(DustAndScratches, ASampleMovesLessFarDownThanUp)
{
    const struct {
        u8 sample, median, wanted;
    } rows[] = {{100, 200, 150}, {200, 100, 151}, {10, 13, 11}, {13, 10, 13}, {10, 12, 11}, {12, 10, 12}};
    for (const auto& row : rows) {
        SCOPE(int(row.sample), int(row.median));
        Bytes src(9, row.median), dst(9, 77);
        src[4] = row.sample;
        EXPECT_EQ(ZLV40_DustAndScratches(src.data(), 3, 3, dst.data(), 1, 3, 3, 3, 1, 0.5, 1), 1u);
        EXPECT_EQ(int(dst[4]), int(row.wanted));
    }
}

TEST(RunningMedian, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {1u, 21u, 64u, 300u}) {
                for (const i32 size : {1, 3, 5, 7, 99}) {
                    for (const u32 mask : {7u, 2u}) {
                        SCOPE(int(flush), width, size, mask);
                        GuardedBuffer src(size_t(width) * 3 * 4, flush, 200), dst(src.Size(), flush, 1);
                        EXPECT_EQ(ZLV40_DustAndScratches(src.Data(), width, 4, dst.Data(), 3, width * 3, width * 3,
                                                         size, 2, 0.5, mask),
                                  1u);
                    }
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
