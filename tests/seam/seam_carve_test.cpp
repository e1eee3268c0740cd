// What the seam carver makes of pictures. Suites are named after the export, calls that fail stand elsewhere.
#include "seam/seam_carve_cases.h"
#include "seam/seam_support.h"

#include <functional>
#include <thread>

namespace zlv {
namespace {

constexpr u32 kOneThread = ZLV40_ONE_THREAD, kTwoThreads = 0;

// One seam, two, three and so on: the result after each and the state of the random generator tell every seam.
TEST(SeamCarve, EverySeamOfSmallPicturesIsTheLiteralWalk)
{
    for (const u32 flags : {kOneThread, kTwoThreads}) {
        for (const bool hasMask : {false, true}) {
            for (const u32 levels : {1u, 2u, 256u}) {
                for (const u32 channels : {3u, 4u}) {
                    for (i32 seams = -6; seams <= 7; ++seams) {
                        if (seams == 0) continue;
                        ExpectPlainCarving({.width = 10,
                                            .height = 7,
                                            .channels = channels,
                                            .seams = seams,
                                            .flags = flags,
                                            .hasMask = hasMask,
                                            .levels = levels,
                                            .seed = u32(seams + 20)});
                    }
                }
            }
        }
    }
}

TEST(SeamCarve, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 width : {5u, 16u, 33u, 70u, 131u}) {
            for (const u32 height : {3u, 4u, 5u, 20u}) {
                ExpectPlainCarving({.width = width, .height = height, .seams = -1});
                ExpectPlainCarving({.width = width, .height = height, .channels = 4, .seams = 4, .hasMask = true});
            }
        }
        ExpectPlainCarving({.width = 90, .height = 40, .seams = -60});
        ExpectPlainCarving({.width = 50, .height = 40, .seams = 60});
    });
}

// Down to 4 columns, and up from 3: the left worker's half is one column wide there.
TEST(SeamCarve, TheSmallestPictures)
{
    for (const u32 flags : {kOneThread, kTwoThreads}) {
        for (const bool hasMask : {false, true}) {
            for (u32 seed = 1; seed < 12; ++seed) {
                ExpectPlainCarving(
                    {.width = 5, .height = 3, .seams = -1, .flags = flags, .hasMask = hasMask, .seed = seed});
                ExpectPlainCarving(
                    {.width = 3, .height = 3, .seams = 1, .flags = flags, .hasMask = hasMask, .seed = seed});
                ExpectPlainCarving(
                    {.width = 3, .height = 4, .seams = 9, .flags = flags, .hasMask = hasMask, .seed = seed});
                ExpectPlainCarving(
                    {.width = 12, .height = 4, .seams = -8, .flags = flags, .hasMask = hasMask, .seed = seed});
            }
        }
    }
}

// The picture's right column is flat and the rest is not: seams run down the last column again and again.
TEST(SeamCarve, SeamsInTheLastColumn)
{
    for (const u32 flags : {kOneThread, kTwoThreads}) {
        for (const i32 seams : {-1, -2, -5, 5}) {
            const CarveCase c = {.width = 11, .height = 9, .seams = seams, .flags = flags};
            Bytes src = c.Source();
            for (u32 y = 0; y < c.height; ++y) std::memset(&src[y * c.SrcStride() + 21], 90, 12);
            ExpectPlainCarving(c, src, c.Mask());
        }
    }
}

// ---- Paddings ---------------------------------------------------------------------------------------------------

TEST(SeamCarve, APaddedSourceIsMeasuredAsIfItWerePacked)
{
    for (const u32 padding : {1u, 3u, 40u}) {
        for (const u32 channels : {3u, 4u}) {
            for (const i32 seams : {-4, 4}) {
                ExpectPlainCarving({.channels = channels, .seams = seams, .srcPadding = padding});
            }
        }
    }
    const CarveCase packed = {.width = 20, .height = 12}, padded = {.width = 20, .height = 12, .srcPadding = 2};
    const Bytes src = packed.Source();
    Bytes wider(padded.SrcBytes(), 0);
    for (u32 y = 0; y < 12; ++y) std::copy_n(&src[y * 60], 60, &wider[y * 62]);
    EXPECT_NE(PlainCarve(packed, src, {}).dst, PlainCarve(padded, wider, {}).dst) << "the padding makes no difference";
    ExpectPlainCarving(padded, wider, {});
}

TEST(SeamCarve, AMaskHasAStrideOfItsOwn)
{
    for (const u32 padding : {1u, 30u}) {
        ExpectPlainCarving({.hasMask = true, .maskPadding = padding});
        ExpectPlainCarving({.seams = 3, .flags = kTwoThreads, .hasMask = true, .maskPadding = padding});
    }
}

TEST(SeamCarve, OneRowOfMaskMayServeAll)
{
    const CarveCase c = {.hasMask = true};
    const Bytes src = c.Source(), row = zlvtest::RandomBytes(c.width, 5);
    Bytes rows, wanted(c.DstBytes(), kFill);
    for (u32 y = 0; y < c.height; ++y) rows.insert(rows.end(), row.begin(), row.end());
    PlainCarver(PlainCallOf(c, src, rows, wanted)).Run();
    Bytes got(wanted.size(), kFill);
    SetRandomState(c.seed);
    EXPECT_EQ(ZLV40_SeamCarve(src.data(), c.width, c.height, c.channels, c.SrcStride(), row.data(), 0, got.data(),
                              c.DstStride(), c.seams, c.penalty, c.flags),
              1u);
    EXPECT_EQ(got, wanted);
}

// Rows of dst from nothing to wider than the source's: the columns that are gone come along where there is room, and a
// short row receives the beginning.
TEST(SeamCarve, TheDestinationTakesWhatItsStrideAllows)
{
    for (const i32 seams : {-3, 3}) {
        for (const i32 padding : {-17, -1, 1, 2, 8, 9, 10, 30}) {
            ExpectPlainCarving({.seams = seams, .dstPadding = padding});
            ExpectPlainCarving({.channels = 4, .seams = seams, .dstPadding = padding});
        }
        const CarveCase narrow = {.seams = seams, .dstPadding = -((9 + seams) * 3)};
        EXPECT_EQ(narrow.DstStride(), 0u);
        ExpectPlainCarving(narrow);
    }
}

TEST(SeamCarve, TheDestinationMayBeTheSource)
{
    const CarveCase c = {.dstPadding = 9};  // rows as wide as before
    Bytes image = c.Source();
    const Carved wanted = PlainCarve(c, image, {});
    SetRandomState(c.seed);
    EXPECT_EQ(Carve(c, image.data(), nullptr, image.data()), 1u);
    EXPECT_EQ(image, wanted.dst);
}

// ---- Copies -----------------------------------------------------------------------------------------------------

TEST(SeamCarve, NoSeamsAreACopyOfTheShorterRows)
{
    for (const u32 srcPadding : {0u, 5u}) {
        for (const i32 dstPadding : {-4, 0, 3, 9}) {
            SCOPE(srcPadding, dstPadding);
            const CarveCase c = {.seams = 0, .srcPadding = srcPadding, .dstPadding = dstPadding};
            const Bytes src = zlvtest::RandomBytes(size_t(c.SrcStride()) * c.height, 1);
            Bytes wanted(c.DstBytes(), kFill), got = wanted;
            for (u32 y = 0; y < c.height; ++y) {
                std::copy_n(&src[y * c.SrcStride()], std::min(c.SrcStride(), c.DstStride()),
                            &wanted[y * c.DstStride()]);
            }
            SetRandomState(77);
            EXPECT_EQ(Carve(c, src.data(), nullptr, got.data()), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
            EXPECT_EQ(got, wanted);
            EXPECT_EQ(RandomState(), 77u);
        }
    }
}

// ---- Masks ------------------------------------------------------------------------------------------------------

// A neutral mask is none, but for the rule of the last column, which alone is flat here and free straight down.
TEST(SeamCarve, ANeutralMaskTakesTheRuleOfTheLastColumn)
{
    const CarveCase bare = {.width = 11, .height = 9, .seams = -5},
                    masked = {.width = 11, .height = 9, .seams = -5, .hasMask = true};
    CarveCase threaded = bare;
    threaded.flags = kTwoThreads;
    const Bytes neutral(masked.MaskBytes(), 128);
    Bytes src = bare.Source();
    for (u32 y = 0; y < bare.height; ++y) std::memset(&src[y * bare.SrcStride() + 27], 90, 6);
    ExpectPlainCarving(masked, src, neutral);
    EXPECT_NE(PlainCarve(masked, src, neutral).dst, PlainCarve(bare, src, {}).dst);
    EXPECT_EQ(PlainCarve(masked, src, neutral).dst, PlainCarve(threaded, src, {}).dst);
}

// Columns of levels of their own; columns 4 to 7 are protected, or wanted. A seam beside them is merged with column 4.
TEST(SeamCarve, AMaskProtectsAndAttracts)
{
    const CarveCase c = {.width = 12, .height = 8, .seams = -4, .hasMask = true};
    const auto columnsLeft = [&](u8 middle) {
        Bytes src(c.SrcBytes()), mask(c.MaskBytes(), 128), dst(c.DstBytes());
        for (size_t i = 0; i < src.size(); ++i) src[i] = u8(i / 3 % 12 * 20);
        for (u32 y = 0; y < c.height; ++y) std::memset(&mask[y * 12 + 4], middle, 4);
        SetRandomState(c.seed);
        EXPECT_EQ(Carve(c, src.data(), mask.data(), dst.data()), 1u);
        u32 kept = 0;
        for (u32 x = 0; x < 8; ++x) kept += dst[x * 3] >= 100 && dst[x * 3] <= 140 && dst[x * 3] % 20 == 0;
        return kept;
    };
    EXPECT_EQ(columnsLeft(255), 3u);
    EXPECT_EQ(columnsLeft(0), 0u);
}

// ---- Ties -------------------------------------------------------------------------------------------------------

TEST(SeamCarve, AFlatPictureStaysFlat)
{
    for (const u32 flags : {kOneThread, kTwoThreads}) {
        for (const i32 seams : {-7, 12}) {
            const CarveCase c = {.width = 20, .height = 15, .channels = 4, .seams = seams, .flags = flags, .levels = 1};
            ExpectPlainCarving(c, Bytes(c.SrcBytes(), 99), {});
            EXPECT_EQ(PlainCarve(c, Bytes(c.SrcBytes(), 99), {}).dst, Bytes(c.DstBytes(), 99));
        }
    }
}

TEST(SeamCarve, OneStateOfTheGeneratorGivesOneResult)
{
    const CarveCase c = {.width = 20, .height = 15, .seams = -8, .levels = 2};
    const Bytes src = c.Source();
    const auto run = [&] {
        Bytes dst(c.DstBytes());
        EXPECT_EQ(Carve(c, src.data(), nullptr, dst.data()), 1u);
        return dst;
    };
    SetRandomState(5);
    const Bytes first = run(), second = run();
    EXPECT_NE(first, second) << "the state moves on";
    SetRandomState(5);
    EXPECT_EQ(run(), first);
}

TEST(SeamCarve, WithoutPenaltyOnePlaceWidens)
{
    for (const u16 penalty : {u16(0), u16(1), u16(65535)}) {
        ExpectPlainCarving({.width = 12, .height = 6, .seams = 20, .penalty = penalty});
        ExpectPlainCarving(
            {.width = 12, .height = 6, .seams = 20, .flags = kTwoThreads, .hasMask = true, .penalty = penalty});
    }
}

TEST(SeamCarve, OtherFlagsAreIgnored)
{
    const CarveCase c = {.flags = kOneThread | 0xFFFFFFF0};
    ExpectPlainCarving(c);
}

TEST(SeamCarve, ManyClientsCarveAtOnce)
{
    const CarveCase c = {.width = 40, .height = 30, .seams = -12, .flags = kTwoThreads, .levels = 4};
    const Bytes src = c.Source();
    const Carved wanted = PlainCarve(c, src, {});
    std::vector<Bytes> results(4, Bytes(c.DstBytes(), kFill));
    std::vector<std::thread> clients;
    for (Bytes& dst : results) {
        clients.emplace_back([&] {
            SetRandomState(c.seed);
            EXPECT_EQ(Carve(c, src.data(), nullptr, dst.data()), 1u);
        });
    }
    for (std::thread& client : clients) client.join();
    for (const Bytes& dst : results) EXPECT_EQ(dst, wanted.dst);
}

}  // namespace
}  // namespace zlv
