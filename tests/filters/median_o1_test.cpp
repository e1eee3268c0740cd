// The median in constant time and the removal of dust and scratches by it.
#include "filters/median_cases.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

TEST(ConstantTimeMedian, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {15u, 16u, 33u, 70u}) {
            for (const u32 height : {15u, 19u, 40u}) {
                for (const i32 size : {3, 5, 7, 15}) {
                    for (u32 pads = 0; pads < 4; ++pads) {
                        const Kind kind = kKinds[(width + height + pads) % std::size(kKinds)];
                        MedianCall{.width = width,
                                   .height = height,
                                   .channels = 1 + height % 4,
                                   .filterSize = size,
                                   .padFlags = pads,
                                   .kind = kind}
                            .ExpectO1();
                    }
                }
            }
        }
    });
}

TEST(ConstantTimeMedian, WindowsAsLargeAsTheImageEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const i32 size : {3, 5, 7, 31, 127}) {
            for (u32 pads = 0; pads < 4; ++pads) {
                const u32 side = u32(size);
                MedianCall{.width = side, .height = side, .channels = 1, .filterSize = size, .padFlags = pads}
                    .ExpectO1();
            }
        }
    });
}

TEST(ConstantTimeMedian, TheLargestWindowEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        // All samples on one side of a bin: counts reach 65025 there, and nothing is left for the others.
        for (const Kind kind : {Kind::Noise, Kind::NearTop, Kind::BlackAndWhite}) {
            MedianCall{.width = 257, .height = 256, .channels = 1, .filterSize = 255, .kind = kind}.ExpectO1();
        }
    });
}

TEST(ConstantTimeMedian, TilesOfColumnsMeetWithoutASeam)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 pads = 0; pads < 4; ++pads) {
            MedianCall{.width = 1300, .height = 21, .channels = 1, .filterSize = 21, .padFlags = pads}.ExpectO1();
            MedianCall{.width = 531, .height = 7, .channels = 2, .filterSize = 7, .padFlags = pads}.ExpectO1();
        }
    });
}

TEST(ConstantTimeMedian, RandomSizesEqualPlain)
{
    Random random(16);
    zlvtest::OnEveryTarget([&] {
        for (u32 round = 0; round < 150; ++round) {
            const u32 half = 1 + random.Below(12);
            MedianCall{.width = 2 * half + 1 + random.Below(50),
                       .height = 2 * half + 1 + random.Below(20),
                       .channels = 1 + random.Below(4),
                       .filterSize = i32(2 * half + 1 + random.Below(2)),
                       .padFlags = random.Next(),
                       .blend = {random.Below(3) * random.Below(80), random.Below(6) / 5.0},
                       .padding = random.Below(5),
                       .kind = kKinds[random.Below(std::size(kKinds))]}
                .ExpectO1();
        }
    });
}

// Sorting networks are right for all samples when they are right for samples of 0 and 1, and sorted columns of those
// are told by how many ones they hold: here all the ways to fill five columns of five, or three of three.
TEST(ConstantTimeMedian, TheNetworksAreRightForEveryFillOfBlackAndWhite)
{
    for (const Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        for (const u32 side : {3u, 5u}) {
            SCOPE(NameOf(target), side);
            u32 fills = 1;
            for (u32 i = 0; i < side; ++i) fills *= side + 1;
            const u32 width = fills * side;
            Bytes src(size_t(width) * side), dst(src.size(), 77);
            std::vector<u32> ones(fills);
            for (u32 fill = 0; fill < fills; ++fill) {
                u32 rest = fill;
                for (u32 column = 0; column < side; ++column, rest /= side + 1) {
                    const u32 count = rest % (side + 1);
                    ones[fill] += count;
                    for (u32 y = 0; y < count; ++y) src[size_t(y) * width + fill * side + column] = 255;
                }
            }
            EXPECT_EQ(ZLV40_MedianFilterImage_O1(src.data(), width, side, dst.data(), 1, width, width, i32(side), 0),
                      1u);
            for (u32 fill = 0; fill < fills; ++fill) {
                const u8 wanted = ones[fill] > side * side / 2 ? 255 : 0;
                ASSERT_EQ(dst[size_t(side / 2) * width + fill * side + side / 2], wanted) << fill;
            }
        }
    }
}

TEST(ConstantTimeMedian, EvenSizesShrink)
{
    for (const i32 size : {4, 6, 8, 16}) {
        SCOPE(size);
        const MedianCall even{.width = 30, .height = 20, .channels = 3, .filterSize = size};
        const MedianCall odd{.width = 30, .height = 20, .channels = 3, .filterSize = size - 1};
        const Bytes src = even.Source();
        Bytes got = even.Target(), wanted = got;
        EXPECT_EQ(even.RunO1(src, got), 1u);
        EXPECT_EQ(odd.RunO1(src, wanted), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(ConstantTimeMedian, AMedianOf255StaysAtTheTop)
{
    for (const i32 size : {3, 5, 7}) {
        SCOPE(size);
        Bytes src(40 * 9, 9), dst(src.size(), 77);
        for (size_t i = 0; i < src.size(); ++i) src[i] = i % 40 < 20 ? 9 : 255;
        EXPECT_EQ(ZLV40_MedianFilterImage_O1(src.data(), 40, 9, dst.data(), 1, 40, 40, size, 3), 1u);
        EXPECT_EQ(dst, src);
    }
}

TEST(ConstantTimeMedian, WithoutPaddingTheColumnsAtTheSidesAreNotWritten)
{
    for (const i32 size : {3, 5, 9, 11}) {
        for (u32 pads = 0; pads < 4; ++pads) {
            SCOPE(size, pads);
            const u32 half = u32(size) / 2;
            const Bytes src(20 * 12, 9);
            Bytes dst(src.size(), 77);
            EXPECT_EQ(ZLV40_MedianFilterImage_O1(src.data(), 20, 12, dst.data(), 1, 20, 20, size, pads), 1u);
            for (size_t i = 0; i < dst.size(); ++i) {
                const u32 x = i % 20;
                const bool isWritten =
                    (x >= half || (pads & ZLV40_PAD_LEFT)) && (x < 20 - half || (pads & ZLV40_PAD_RIGHT));
                EXPECT_EQ(int(dst[i]), isWritten ? 9 : 77) << x;
            }
        }
    }
}

TEST(ConstantTimeMedian, OtherPadFlagsAreIgnored)
{
    MedianCall{.width = 20, .height = 9, .channels = 3, .filterSize = 7, .padFlags = 0xFFFFFFFC}.ExpectO1();
    MedianCall{.width = 20, .height = 9, .channels = 3, .filterSize = 7, .padFlags = 0xFFFFFFFF}.ExpectO1();
}

TEST(ConstantTimeDust, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 threshold : {0u, 1u, 20u, 254u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
            for (const f64 amount : {-3.0, 0.0, 0.003, 0.3, 0.5, 1.0, 2.0}) {
                for (const i32 size : {3, 5, 9}) {
                    MedianCall{.width = 45,
                               .height = 12,
                               .channels = 3,
                               .filterSize = size,
                               .padFlags = threshold % 4,
                               .blend = {threshold, amount},
                               .kind = Kind::Specks}
                        .ExpectO1();
                }
            }
        }
    });
}

TEST(ConstantTimeDust, AnAmountThatComesToNothingIsAPlainMedian)
{
    const MedianCall median{.width = 20, .height = 9, .channels = 3, .filterSize = 5};
    const Bytes src = median.Source();
    Bytes wanted = median.Target();
    EXPECT_EQ(median.RunO1(src, wanted), 1u);
    for (const f64 amount : {0.0, 0.0039, -1.0}) {
        SCOPE(amount);
        Bytes got = median.Target();
        EXPECT_EQ(ZLV40_DustAndScratches_O1(src.data(), 20, 9, got.data(), 3, median.SrcStride(), median.DstStride(), 5,
                                            8, amount, 3),
                  1u);
        EXPECT_EQ(got, wanted) << "the running median leaves every sample here";
    }
}

TEST(ConstantTimeDust, AThresholdOf0IsAPlainMedianWhateverTheAmountIs)
{
    const MedianCall median{.width = 20, .height = 9, .channels = 3, .filterSize = 5};
    const Bytes src = median.Source();
    Bytes wanted = median.Target();
    EXPECT_EQ(median.RunO1(src, wanted), 1u);
    for (const f64 amount : {-1.0, 0.25, 1.0, 1e9, std::numeric_limits<f64>::quiet_NaN()}) {
        SCOPE(amount);
        Bytes got = median.Target();
        EXPECT_EQ(ZLV40_DustAndScratches_O1(src.data(), 20, 9, got.data(), 3, median.SrcStride(), median.DstStride(), 5,
                                            0, amount, 3),
                  1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(ConstantTimeMedian, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {11u, 21u, 64u, 300u}) {
                for (const i32 size : {3, 5, 7, 11}) {
                    for (u32 pads = 0; pads < 4; ++pads) {
                        SCOPE(int(flush), width, size, pads);
                        GuardedBuffer src(size_t(width) * 3 * 11, flush, 200), dst(src.Size(), flush, 1);
                        EXPECT_EQ(ZLV40_DustAndScratches_O1(src.Data(), width, 11, dst.Data(), 3, width * 3, width * 3,
                                                            size, 2, 0.5, pads),
                                  1u);
                    }
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
