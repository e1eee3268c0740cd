// The median of 1-bit images.
#include "filters/median_cases.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

namespace zlv {
namespace {

using namespace zlvtest;

struct BitCall {
    u32 width, height, filterSize;
    u32 padding = 2;
    u32 density = 128;  // set bits of 256

    u32 RowBytes() const { return (width + 7) / 8; }
    u32 SrcStride() const { return RowBytes() + padding; }
    u32 DstStride() const { return RowBytes() + 2 * padding; }

    // The bits behind a row's last pixel are noise too: none of it may come through.
    Bytes Source() const
    {
        Random random(width * 7 + height + filterSize);
        Bytes src(size_t(SrcStride()) * height);
        for (u8& byte : src) {
            for (u32 bit = 0; bit < 8; ++bit) byte = u8(byte << 1 | (random.Below(256) < density));
        }
        return src;
    }

    void ExpectPlain() const
    {
        SCOPE(width, "x", height, "window", filterSize, "density", density);
        const Bytes src = Source();
        Bytes wanted = RandomBytes(size_t(DstStride()) * height, 3), got = wanted;
        PlainMedian1Bit(src.data(), width, height, SrcStride(), wanted.data(), DstStride(), filterSize);
        EXPECT_EQ(ZLV40_MedianFilter1Bit(src.data(), width, height, SrcStride(), got.data(), DstStride(), filterSize),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

TEST(MedianFilter1Bit, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 7u, 8u, 9u, 31u, 63u, 64u, 65u, 127u, 128u, 129u, 200u}) {
            for (const u32 height : {1u, 2u, 5u, 12u}) {
                for (const u32 size : {1u, 3u, 5u, 7u, 11u, 21u}) BitCall{width, height, size}.ExpectPlain();
            }
        }
    });
}

TEST(MedianFilter1Bit, RareAndFrequentBitsEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 density : {0u, 1u, 60u, 110u, 146u, 200u, 255u, 256u}) {
            for (const u32 size : {3u, 5u, 9u}) BitCall{100, 20, size, 0, density}.ExpectPlain();
        }
    });
}

TEST(MedianFilter1Bit, BlocksOfWordsMeetWithoutASeam)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {4095u, 4096u, 4097u, 4160u, 4200u}) {
            for (const u32 size : {3u, 5u, 7u}) BitCall{width, 3, size}.ExpectPlain();
        }
    });
}

TEST(MedianFilter1Bit, RandomSizesEqualPlain)
{
    Random random(26);
    zlvtest::OnEveryTarget([&] {
        for (u32 round = 0; round < 200; ++round) {
            BitCall{1 + random.Below(150), 1 + random.Below(20), random.Below(30), random.Below(4), random.Below(257)}
                .ExpectPlain();
        }
    });
}

// From 257 on a window has more pixels than 16 bits count; the last size is the largest that is taken.
TEST(MedianFilter1Bit, WindowsThatCoverTheImageManyTimesEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 size : {61u, 253u, 255u, 257u, 301u, 1001u, 9999u, 46339u}) {
            for (const u32 width : {1u, 2u, 13u, 70u}) BitCall{width, 5, size}.ExpectPlain();
        }
    });
}

TEST(MedianFilter1Bit, EvenSizesGrowAnd0Becomes1)
{
    for (const u32 size : {0u, 2u, 4u, 6u, 100u}) {
        SCOPE(size);
        const BitCall call{50, 9, size};
        const Bytes src = call.Source();
        Bytes got(size_t(call.DstStride()) * 9, 1), wanted = got;
        for (const auto& [filterSize, dst] : {std::pair(size, &got), std::pair(size + 1, &wanted)}) {
            EXPECT_EQ(
                ZLV40_MedianFilter1Bit(src.data(), 50, 9, call.SrcStride(), dst->data(), call.DstStride(), filterSize),
                1u);
        }
        EXPECT_EQ(got, wanted);
    }
}

TEST(MedianFilter1Bit, AWindowOfOnePixelIsACopy)
{
    const Bytes src = {0xA5, 0x3C};
    Bytes dst = {0, 0};
    EXPECT_EQ(ZLV40_MedianFilter1Bit(src.data(), 8, 2, 1, dst.data(), 1, 1), 1u);
    EXPECT_EQ(dst, src);
}

TEST(MedianFilter1Bit, TheHighestBitIsTheLeftmostPixel)
{
    // Five pixels set on the left: the window of 3 around the fifth still has two columns of them.
    const Bytes src = {0xF8, 0x00};
    Bytes dst = {0, 0};
    EXPECT_EQ(ZLV40_MedianFilter1Bit(src.data(), 16, 1, 2, dst.data(), 2, 3), 1u);
    EXPECT_EQ(dst, (Bytes{0xF8, 0x00}));
    // A single pixel goes.
    EXPECT_EQ(ZLV40_MedianFilter1Bit(Bytes{0x10, 0x80}.data(), 16, 1, 2, dst.data(), 2, 3), 1u);
    EXPECT_EQ(dst, (Bytes{0x00, 0x00}));
}

TEST(MedianFilter1Bit, PaddingBitsOfTheLastByteKeepTheirValue)
{
    for (u32 width = 1; width <= 70; ++width) {
        for (const u32 size : {1u, 3u, 5u, 7u}) {
            for (const u8 before : {u8(0x00), u8(0xFF)}) {
                SCOPE(width, size, int(before));
                const u32 row = (width + 7) / 8;
                const Bytes src(row, u8(~before));
                Bytes dst(row + 9, before);
                EXPECT_EQ(ZLV40_MedianFilter1Bit(src.data(), width, 1, row, dst.data(), row, size), 1u);
                for (u32 bit = 0; bit < 8 * dst.size(); ++bit) {
                    const bool isSet = dst[bit / 8] & (0x80 >> bit % 8);
                    ASSERT_EQ(isSet, (bit < width) != (before != 0)) << bit;
                }
            }
        }
    }
}

TEST(MedianFilter1Bit, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {1u, 8u, 21u, 64u, 65u, 300u}) {
                for (const u32 size : {1u, 3u, 5u, 7u, 99u}) {
                    SCOPE(int(flush), width, size);
                    const u32 row = (width + 7) / 8;
                    GuardedBuffer src(size_t(row) * 4, flush, 200), dst(src.Size(), flush, 1);
                    EXPECT_EQ(ZLV40_MedianFilter1Bit(src.Data(), width, 4, row, dst.Data(), row, size), 1u);
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
