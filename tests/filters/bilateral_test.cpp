#include "filters/bilateral_average.h"
#include "filters/bilateral_cases.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();

TEST(Bilateral, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
            for (const u32 kind : {0u, 1u, 2u, 3u, 4u, 0xFFFFFFFFu}) {
                for (const f64 sigma : {0.4, 3.0, 21.7, 400.0}) {
                    for (const u32 size : {1u, 2u, 5u, 12u}) {
                        const BilateralContent content = BilateralContent((size + kind) % 4);
                        ExpectPlainBilateral({37, 19, 1, 2, 3}, content, {size, kind, sigma, 1 | flags});
                    }
                }
            }
        }
    });
}

// Around whole groups of pixels, where the sides of the image fall on every place of them.
TEST(Bilateral, EveryWidthEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 width = 3; width <= 150; ++width) {
            for (const u32 flags : {kBilateralSquare, kBilateralSeparable})
                ExpectPlainBilateral({width, 4}, BilateralContent::Noise, {3, 0, 30, 1 | flags});
        }
        for (const u32 width : {63u, 64u, 65u, 127u, 128u, 129u, 193u}) {
            ExpectPlainBilateral({width, 63}, BilateralContent::Steps, {61, 0, 30, 1 | kBilateralSeparable});
        }
    });
}

TEST(Bilateral, EveryHeightEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 height = 7; height <= 40; ++height) {
            for (const u32 flags : {kBilateralSquare, kBilateralSeparable})
                ExpectPlainBilateral({9, height}, BilateralContent::Noise, {7, 0, 40, 1 | flags});
        }
    });
}

TEST(Bilateral, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu}) {
            for (const u32 flags :
                 {kBilateralSquare, kBilateralSeparable, kBilateralThreads, kBilateralThreads | kBilateralSeparable}) {
                ExpectPlainBilateral({11, 8, channels, 3, 1}, BilateralContent::Noise, {5, 0, 25, mask | flags});
            }
        }
    }
}

// Large windows, where errors of single precision add up most.
TEST(Bilateral, LargeWindowsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const BilateralContent content :
             {BilateralContent::Noise, BilateralContent::Extremes, BilateralContent::FewLevels}) {
            for (const u32 kind : {0u, 2u, 3u}) {
                ExpectPlainBilateral({47, 46}, content, {45, kind, 300, 1});
                ExpectPlainBilateral({151, 150}, content, {149, kind, 300, 1 | kBilateralSeparable});
            }
        }
    });
}

// With equal weights and small levels, averages stand exactly between two levels again and again: there the order and
// the precision of the sums decide.
TEST(Bilateral, AveragesBetweenTwoLevelsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 sigma : {20.0, 300.0, 0.1 * 7000}) {
            for (const u32 size : {3u, 5u, 7u, 9u}) {
                for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
                    ExpectPlainBilateral({200, 30}, BilateralContent::FewLevels, {size, 3, sigma, 1 | flags});
                    ExpectPlainBilateral({200, 30}, BilateralContent::FewLevels, {size, 0, 1e6, 1 | flags});
                }
            }
        }
    });
}

// Weights that single precision does not hold: all in double precision.
TEST(Bilateral, SigmasOfAnySizeEqualPlain)
{
    for (const f64 sigma : {1e-100, 1e-3, 1e100, 1e155, 1e160, 1e200, 1e308, kInfinity, -0.5, -30.0}) {
        for (const u32 kind : {0u, 1u, 2u, 3u}) {
            const bool isSmallBox = kind == 3 && sigma > 0 && sigma < 1e-50;
            for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
                if (!isSmallBox) ExpectPlainBilateral({20, 9}, BilateralContent::Noise, {5, kind, sigma, 1 | flags});
            }
        }
    }
}

TEST(Bilateral, AWindowOfOneKeepsTheSource)
{
    const Bytes src = zlvtest::RandomBytes(70 * 3, 1);
    for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
        for (const u32 kind : {0u, 1u, 2u, 3u}) {
            SCOPE(flags, kind);
            Bytes dst(src.size());
            EXPECT_EQ(Smooth({70, 3}, src.data(), dst.data(), {1, kind, 2.5, 1 | flags}), 1u);
            EXPECT_EQ(dst, src);
        }
    }
}

TEST(Bilateral, WithoutAnyWeightTheSourceStays)
{
    const Bytes src = zlvtest::RandomBytes(70 * 9, 2);
    for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
        // A negative sigma has nothing in its reach, half a pixel only the sample itself, an infinite box weighs
        // nothing.
        for (const BilateralSettings& filter :
             {BilateralSettings{5, 1, -1, 1 | flags}, BilateralSettings{5, 2, -3, 1 | flags},
              BilateralSettings{5, 3, -1, 1 | flags}, BilateralSettings{5, 1, 0.5, 1 | flags},
              BilateralSettings{5, 3, kInfinity, 1 | flags}}) {
            SCOPE(filter.kind, filter.sigma, filter.flags);
            Bytes dst(src.size());
            EXPECT_EQ(Smooth({70, 9}, src.data(), dst.data(), filter), 1u);
            EXPECT_EQ(dst, src);
        }
    }
}

// A window of 3 has two rows and two columns: those of the sample, and those before it. With equal weights the sample
// counts 20 times: 230 / (20 + 3) = 10.
TEST(Bilateral, TheSquareWindowLacksItsLastRowAndColumn)
{
    Bytes src(25, 0), dst(25, 77);
    src[2 * 5 + 2] = 230;
    EXPECT_EQ(Smooth({5, 5}, src.data(), dst.data(), {3, 3, 300, 1}), 1u);
    Bytes wanted(25, 0);
    wanted[2 * 5 + 2] = 200;  // 20 * 230 / 23
    wanted[2 * 5 + 3] = wanted[3 * 5 + 2] = wanted[3 * 5 + 3] = 10;
    EXPECT_EQ(dst, wanted);
}

// Here the window has all three: 220 / (20 + 2) = 10 beside it, 20 * 220 / 22 = 200 in its place; and again downwards:
// 10 / 22 rounds to 0 beside a 10, 200 / 22 to 9.
TEST(Bilateral, TheSeparableWindowIsWhole)
{
    Bytes src(25, 0), dst(25, 77);
    src[2 * 5 + 2] = 220;
    EXPECT_EQ(Smooth({5, 5}, src.data(), dst.data(), {3, 3, 300, 1 | kBilateralSeparable}), 1u);
    const Bytes wanted = {
        0, 0, 0,   0, 0,  //
        0, 0, 9,   0, 0,  //
        0, 9, 182, 9, 0,  // 20 * 10 / 22, 20 * 200 / 22
        0, 0, 9,   0, 0,  //
        0, 0, 0,   0, 0,
    };
    EXPECT_EQ(dst, wanted);
}

struct SizeRow {
    const char* shows;
    u32 width, height, size, result;
};
constexpr SizeRow kSizes[] = {
    {"a window as large as the image", 5, 5, 5, 1},
    {"an even window that grows to the image's size", 5, 5, 4, 1},
    {"a window wider than the image", 4, 9, 5, 0},
    {"a window higher than the image", 9, 4, 5, 0},
    {"an even window that grows beyond the image", 4, 4, 4, 0},
    {"the largest number", 9, 9, 0xFFFFFFFF, 0},
    {"the largest even number", 9, 9, 0xFFFFFFFE, 0},
};

TEST(Bilateral, AWindowLargerThanTheImageIsRefused)
{
    for (const SizeRow& row : kSizes) {
        for (const u32 flags :
             {kBilateralSquare, kBilateralSeparable, kBilateralThreads, kBilateralThreads | kBilateralSeparable}) {
            SCOPE(row.shows, flags);
            const Bytes src = zlvtest::RandomBytes(81, 3), before = zlvtest::RandomBytes(81, 4);
            Bytes dst = before;
            EXPECT_EQ(Smooth({row.width, row.height}, src.data(), dst.data(), {row.size, 0, 20, 1 | flags}),
                      row.result);
            EXPECT_EQ(ZLV40_GetLastError(), row.result ? 0u : u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(dst == before, row.result == 0);
        }
    }
}

struct ArgumentRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 9, height = 9, srcStride = 9, channels = 1, dstStride = 9, size = 3, kind = 0;
    f64 sigma = 20;
};
const ArgumentRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "no window", .size = 0},
    {.shows = "a sigma of 0", .sigma = 0.0},
    {.shows = "a sigma of -0", .sigma = -0.0},
    {.shows = "no destination", .hasDst = false},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "a sigma that is no number", .sigma = kNan},
    {.shows = "nor for weights of limited reach", .kind = 1, .sigma = kNan},
    {.shows = "a sigma whose square is 0", .sigma = 1e-200},
    {.shows = "a sigma whose inverse is infinite", .kind = 3, .sigma = 1e-310},
    {.shows = "a sigma whose weights overflow when multiplied", .kind = 3, .sigma = 1e-160},
};

TEST(Bilateral, RefusesWithNothingWritten)
{
    for (const ArgumentRow& row : kRefused) {
        for (const u32 flags :
             {kBilateralSquare, kBilateralSeparable, kBilateralThreads, kBilateralThreads | kBilateralSeparable}) {
            SCOPE(row.shows, flags);
            const Bytes src = zlvtest::RandomBytes(81, 3), before = zlvtest::RandomBytes(81, 4);
            Bytes dst = before;
            EXPECT_EQ(ZLV40_BilateralFilterImage(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                 row.srcStride, row.channels, row.hasDst ? dst.data() : nullptr,
                                                 row.dstStride, row.size, row.kind, row.sigma, 1 | flags),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(dst, before);
        }
    }
    u8 sample = 7;
    EXPECT_EQ(ZLV40_BilateralFilterImage(&sample, 1, 1, 1, 1, &sample, 1, 1, 0, 1, 1), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u) << "a success clears the code";
}

// Rows of a larger picture, filtered as if they were the whole of it.
TEST(Bilateral, RowsAboveAndBelowAreRead)
{
    constexpr u32 kWidth = 33, kRows = 30, kFirst = 10, kCount = 8;
    constexpr BilateralSettings kFilter = {9, 0, 25, 1};
    const Bytes picture = zlvtest::RandomBytes(kWidth * kRows, 5);
    Bytes whole(picture.size());
    EXPECT_EQ(Smooth({kWidth, kRows}, picture.data(), whole.data(), kFilter), 1u);
    zlvtest::OnEveryTarget([&] {
        for (const u32 outside :
             {0u, u32(ZLV40_ROWS_ABOVE), u32(ZLV40_ROWS_BELOW), u32(ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW)}) {
            SCOPE(outside);
            BilateralSettings filter = kFilter;
            filter.flags |= outside;
            Bytes wanted(kWidth * kCount), got(kWidth * kCount);
            // The window is 9 high: a part of 9 rows can have it.
            const BilateralShape part = {kWidth, kCount + 1};
            wanted.resize(kWidth * (kCount + 1));
            got.resize(wanted.size());
            const u8* const src = picture.data() + kFirst * kWidth;
            Plain(part, src, wanted.data(), filter).Run([](u32, u32) { return true; });
            EXPECT_EQ(Smooth(part, src, got.data(), filter), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
            const bool isWhole = outside == (ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW);
            EXPECT_EQ(zlvtest::Difference(&whole[kFirst * kWidth], got.data(), got.size()).empty(), isWhole);
        }
    });
}

// 9 rows of a buffer that begins and ends with them: neither form reads the rows that the flags promise.
TEST(Bilateral, OnlyTheSquareFormWithoutThreadsLooksForRowsOutside)
{
    const u32 outside = ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW;
    for (const u32 flags : {kBilateralSeparable, kBilateralThreads, kBilateralThreads | kBilateralSeparable}) {
        SCOPE(flags);
        const BilateralShape shape = {30, 9};
        zlvtest::GuardedBuffer src(30 * 9, zlvtest::Flush::ToStart);
        const Bytes bytes = zlvtest::RandomBytes(30 * 9, 8);
        std::copy(bytes.begin(), bytes.end(), src.Data());
        Bytes wanted(30 * 9), got(30 * 9);
        EXPECT_EQ(Smooth(shape, src.Data(), wanted.data(), {9, 0, 25, 1 | flags}), 1u);
        EXPECT_EQ(Smooth(shape, src.Data(), got.data(), {9, 0, 25, 1 | flags | outside}), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(Bilateral, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 flags : {kBilateralSquare, kBilateralSeparable, kBilateralThreads}) {
                const BilateralShape shape = {70, 9, 3, 4, 2};
                zlvtest::GuardedBuffer src(shape.SrcStride() * 8 + 210, flush, 50);
                zlvtest::GuardedBuffer dst(shape.DstStride() * 8 + 210, flush, 0x5A);
                EXPECT_EQ(Smooth(shape, src.Data(), dst.Data(), {9, 0, 20, 7 | flags}), 1u);
                for (size_t i = 0; i < dst.Size(); ++i) {
                    ASSERT_EQ(dst.Data()[i], i % shape.DstStride() < 210 ? 50 : 0x5A) << i;
                }
            }
        }
    });
}

TEST(Bilateral, TheDestinationMayBeTheSource)
{
    const BilateralShape shape = {80, 30, 3, 1, 1};
    const Bytes src = zlvtest::RandomBytes(size_t(shape.SrcStride()) * shape.height, 6);
    for (const u32 flags :
         {kBilateralSquare, kBilateralSeparable, kBilateralThreads, kBilateralThreads | kBilateralSeparable}) {
        SCOPE(flags);
        Bytes wanted = src, got = src;
        EXPECT_EQ(Smooth(shape, src.data(), wanted.data(), {7, 0, 30, 7 | flags}), 1u);
        EXPECT_EQ(Smooth(shape, got.data(), got.data(), {7, 0, 30, 7 | flags}), 1u);
        EXPECT_EQ(got, wanted);
    }
}

// ---- The weights --------------------------------------------------------------------------------------------------

const struct {
    const char* shows;
    u32 kind;
    f64 distance, sigma, wanted;
} kWeights[] = {
    {"linear in the middle", kLinearWeights, 0, 4, 1},
    {"linear on the way", kLinearWeights, 1, 4, 0.75},
    {"linear at sigma", kLinearWeights, 4, 4, 0},
    {"linear beyond", kLinearWeights, 4.5, 4, 0},
    {"cosine in the middle", kCosineWeights, 0, 4, 1},
    {"cosine at sigma", kCosineWeights, 4, 4, 6.123233995736766e-17},
    {"cosine beyond", kCosineWeights, 4.5, 4, 0},
    {"box in the middle", kBoxWeights, 0, 4, 0.25},
    {"box at sigma", kBoxWeights, 4, 4, 0.25},
    {"box beyond", kBoxWeights, 4.5, 4, 0},
    {"gaussian in the middle", 0, 0, 4, 1},
    {"gaussian of any other number", 77, 0, 4, 1},
    {"gaussian has no end", 0, 8, 4, 0.1353352832366127},
    {"gaussian with a negative sigma", 0, 8, -4, 0.1353352832366127},
};

TEST(Bilateral, WeightsByHand)
{
    for (const auto& row : kWeights) {
        SCOPE(row.shows);
        EXPECT_DOUBLE_EQ(BilateralWeight(row.distance, row.sigma, row.kind), row.wanted);
    }
}

}  // namespace
}  // namespace zlv
