#include "seam/seam_edit.h"

#include "seam/seam_support.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

// ---- Images -----------------------------------------------------------------------------------------------------

TEST(SeamImage, OwnsItsPixelsAndForgetsThem)
{
    CLImage<u16> image;
    EXPECT_TRUE(image.IsEmpty());
    ASSERT_TRUE(image.Create(3, 4, 2, 5));
    EXPECT_EQ(image.width, 3u);
    EXPECT_EQ(image.height, 4u);
    EXPECT_EQ(image.channels, 2u);
    EXPECT_EQ(image.rowStride, 10u);
    EXPECT_EQ(image.pixels.GetCount(), 40);
    EXPECT_EQ(image.Data(), image.pixels.GetData());
    EXPECT_EQ(image.ConstData(), image.Data());
    EXPECT_EQ(image.Row(2), image.Data() + 20);
    image.Clear();
    EXPECT_TRUE(image.IsEmpty());
    EXPECT_EQ(image.width + image.height + image.channels + image.rowStride, 0u);
}

TEST(SeamImage, AFixedImageLeavesItsPixelsToTheirOwner)
{
    u8 pixels[12] = {};
    Zelvane::CLFixedImage<u8> image;
    image.width = 2, image.height = 2, image.channels = 3, image.rowStride = 6;
    image.external = pixels;
    CLImage<u8>& asImage = image;
    EXPECT_EQ(asImage.Data(), pixels);
    EXPECT_EQ(asImage.ConstData(), pixels);
    EXPECT_EQ(image.pixels.GetCount(), 0);
    asImage.Clear();
    EXPECT_EQ(image.width + image.height + image.channels + image.rowStride, 0u);
    EXPECT_EQ(asImage.Data(), pixels);
}

TEST(SeamImage, RefusesMoreElementsThanAnArrayCounts)
{
    const struct {
        const char* shows;
        u32 height, channels;
        u64 columns;
    } kRows[] = {
        {"a row too many", 0x80000000, 1, 1},
        {"columns that only fit one row", 2, 1, 0x40000000},
        {"channels that do not fit", 1, 4, 0x20000000},
        {"columns of 64 bits", 3, 4, 0x100000003},
        {"no rows", 0, 3, 5},
        {"no columns", 5, 3, 0},
    };
    for (const auto& row : kRows) {
        SCOPE(row.shows);
        CLImage<u8> image;
        EXPECT_FALSE(image.Create(1, row.height, row.channels, row.columns));
        EXPECT_TRUE(image.IsEmpty());
        EXPECT_EQ(image.width, 0u);
    }
}

TEST(SeamImage, IsEmptyWithoutMemory)
{
    CLImage<i32> image;
    ASSERT_TRUE(image.Create(4, 4, 1, 4));
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_FALSE(image.Create(5, 5, 1, 5));
    EXPECT_TRUE(image.IsEmpty());
    EXPECT_EQ(image.height, 0u);
}

// ---- Single pixels ----------------------------------------------------------------------------------------------

template <class T>
void ExpectPlainEdits(int channels, u32 levels)
{
    // One column of storage beyond the width, and none.
    for (const int spare : {0, 1, 3}) {
        for (int x = 0; x <= 8; ++x) {
            for (const bool blends : {false, true}) {
                SCOPE(channels, "channels, spare", spare, "x", x, blends);
                PlainSeamImage<T> wanted = RandomPlain<T>(7, 3, channels, 7 + spare, u64(x), levels);
                CLImage<T> got;
                CopyPlain(wanted, got);
                PlainRemovePixel(wanted, x, 1, blends);
                RemovePixel(got, u32(x), 1, blends);
                ExpectSameImage(wanted, got);
            }
            if (spare == 0) continue;
            SCOPE(channels, "channels, spare", spare, "x", x, "inserted");
            PlainSeamImage<T> wanted = RandomPlain<T>(7, 3, channels, 7 + spare, u64(x), levels);
            CLImage<T> got;
            CopyPlain(wanted, got);
            PlainInsertPixel(wanted, x, 1);
            InsertPixel(got, u32(x), 1);
            ExpectSameImage(wanted, got);
        }
    }
}

TEST(SeamEdit, PixelsEqualPlain)
{
    for (const int channels : {1, 3, 4}) {
        ExpectPlainEdits<u8>(channels, 256);
        ExpectPlainEdits<u16>(channels, 65536);
        ExpectPlainEdits<i32>(channels, 0xFFFFFFFF);
    }
}

TEST(SeamEdit, OtherChannelCountsStayAsTheyAre)
{
    for (const int channels : {2, 5}) {
        SCOPE(channels);
        const PlainSeamImage<u8> wanted = RandomPlain<u8>(4, 3, channels, 5, 1, 256);
        CLImage<u8> got;
        CopyPlain(wanted, got);
        RemovePixel(got, 1, 1, true);
        InsertPixel(got, 1, 1);
        ExpectSameImage(wanted, got);
    }
}

// 10 and 13 are merged into 11; the last column keeps what it was.
TEST(SeamEdit, ARemovalByHand)
{
    CLImage<u16> image;
    ASSERT_TRUE(image.Create(4, 1, 1, 4));
    const u16 before[] = {7, 10, 13, 20};
    std::copy_n(before, 4, image.Data());
    RemovePixel(image, 1, 0, true);
    const u16 after[] = {7, 11, 20, 20};
    EXPECT_TRUE(std::equal(after, after + 4, image.Data()));
}

// The last pixel is merged with what the removal before has left behind it: 20 and 30.
TEST(SeamEdit, TheLastPixelMeetsWhatLiesBehindIt)
{
    CLImage<u8> image;
    ASSERT_TRUE(image.Create(3, 1, 1, 4));
    const u8 before[] = {1, 2, 20, 30};
    std::copy_n(before, 4, image.Data());
    RemovePixel(image, 2, 0, true);
    EXPECT_EQ(image.Data()[2], 25);
    EXPECT_EQ(image.Data()[3], 30);
    image.width = 4;
    RemovePixel(image, 3, 0, true);
    EXPECT_EQ(image.Data()[3], 30) << "the row's storage ends here";
}

TEST(SeamEdit, SignedMeansAreTruncatedTowardsZero)
{
    CLImage<i32> image;
    ASSERT_TRUE(image.Create(2, 1, 1, 3));
    const i32 pairs[][3] = {{-3, 0, -1}, {3, 0, 1}, {-32640, 32385, -127}, {INT32_MIN, INT32_MIN, INT32_MIN}};
    for (const auto& pair : pairs) {
        SCOPE(pair[0], pair[1]);
        std::copy_n(pair, 2, image.Data());
        InsertPixel(image, 1, 0);
        EXPECT_EQ(image.Data()[1], pair[2]);
        std::copy_n(pair, 2, image.Data());
        RemovePixel(image, 0, 0, true);
        EXPECT_EQ(image.Data()[0], pair[2]);
    }
}

// ---- Energy and whole seams -------------------------------------------------------------------------------------

TEST(SeamEdit, EnergyEqualsPlainEverywhere)
{
    for (const int channels : {3, 4}) {
        for (const int width : {1, 2, 3, 6}) {
            for (const int height : {1, 2, 3, 5}) {
                const PlainSeamImage<u8> plain = RandomPlain<u8>(width, height, channels, width + 1, u64(width), 256);
                CLImage<u8> image;
                CopyPlain(plain, image);
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        SCOPE(channels, width, height, "at", x, y);
                        EXPECT_EQ(EnergyAt(image, u32(x), u32(y)), u32(PlainEnergyAt(plain, x, y)));
                    }
                }
            }
        }
    }
}

TEST(SeamEdit, TheFourthChannelIsNoEnergy)
{
    PlainSeamImage<u8> plain(4, 4, 4, 4);
    for (std::size_t i = 3; i < plain.elements.size(); i += 4) plain.elements[i] = u8(i * 37);
    CLImage<u8> image;
    CopyPlain(plain, image);
    for (u32 i = 0; i < 16; ++i) EXPECT_EQ(EnergyAt(image, i % 4, i / 4), 0u);
}

// Energies that no repair gives show which pixels are repaired.
TEST(SeamEdit, OnlyPixelsAlongTheSeamAreRepaired)
{
    constexpr u16 kStale = 60000;
    const struct {
        const char* shows;
        bool isInserted;
        u32 x;
        std::vector<u32> repaired;  // of the row after the change
    } kRows[] = {
        {"removed in the middle", false, 2, {2, 3}},        {"removed at the left edge", false, 0, {0, 1}},
        {"removed two from the right edge", false, 3, {3}}, {"removed one from the right edge", false, 4, {}},
        {"removed at the right edge", false, 5, {}},        {"inserted in the middle", true, 3, {2, 3, 4}},
        {"inserted at the left edge", true, 0, {0, 1}},     {"inserted before the last", true, 5, {4, 5, 6}},
    };
    for (const auto& row : kRows) {
        SCOPE(row.shows);
        CLImage<u8> working;
        CLImage<u16> energy;
        CLImage<i32> noBias;
        CopyPlain(RandomPlain<u8>(6, 3, 3, 7, 1, 256), working);
        CopyPlain(PlainSeamImage<u16>(6, 3, 1, 7), energy);
        std::fill_n(energy.Data(), 21, kStale);
        ZLVArray<u32> seam;
        ASSERT_TRUE(seam.Resize(3));
        for (u32 y = 0; y < 3; ++y) seam[y] = row.x;
        if (row.isInserted) InsertSeam({working, energy, noBias}, seam, 0);
        else RemoveSeam({working, energy, noBias}, seam);
        EXPECT_EQ(working.width, row.isInserted ? 7u : 5u);
        EXPECT_EQ(energy.width, working.width);
        EXPECT_EQ(noBias.width, 0u);
        std::vector<u32> repaired;
        for (u32 x = 0; x < working.width; ++x) {
            if (energy.Row(1)[x] != kStale) repaired.push_back(x);
        }
        EXPECT_EQ(repaired, row.repaired);
    }
}

TEST(SeamEdit, APenaltyEndsAtTheLargestEnergy)
{
    CLImage<u8> working;
    CLImage<u16> energy;
    CLImage<i32> noBias;
    CopyPlain(RandomPlain<u8>(6, 3, 3, 7, 1, 256), working);
    CopyPlain(PlainSeamImage<u16>(6, 3, 1, 7), energy);
    ZLVArray<u32> seam;
    ASSERT_TRUE(seam.Resize(3));
    for (u32 y = 0; y < 3; ++y) seam[y] = 3;
    InsertSeam({working, energy, noBias}, seam, 65535);
    for (u32 x = 2; x <= 4; ++x) EXPECT_EQ(energy.Row(1)[x], 65535);
}

}  // namespace
}  // namespace zlv
