// Halftone and mosaic: what they refuse, and their cells.
#include "artistic/artistic_cases.h"

namespace zlv {
namespace {

using namespace zlvtest;

const struct {
    const char* shows;
    bool hasBuffer;
    u32 width, height;
    i32 channels;
    u32 stride, cellSize;
    u32 halftone, mosaic;  // the codes
} kRefused[] = {
    {"a null buffer", false, 8, 8, 3, 24, 2, 5, 5},
    {"no channels", true, 8, 8, 0, 24, 2, 5, 5},
    {"two channels", true, 8, 8, 2, 24, 2, 5, 5},
    {"five channels", true, 4, 4, 5, 24, 2, 5, 5},
    {"a negative count of channels", true, 8, 8, -3, 24, 2, 5, 5},
    {"a cell of no size", true, 8, 8, 3, 24, 0, 5, 5},
    {"a cell of no size in an image of none", true, 0, 0, 3, 0, 0, 5, 5},
    {"a cell wider than the image", true, 7, 8, 3, 24, 8, 1, 5},
    {"a cell higher than the image", true, 8, 7, 3, 24, 8, 1, 5},
    {"the largest cell", true, 8, 8, 3, 24, 0xFFFFFFFF, 1, 5},
    {"no columns", true, 0, 8, 3, 24, 1, 1, 5},
    {"no rows", true, 8, 0, 3, 24, 1, 1, 5},
    {"rows that overlap", true, 8, 8, 3, 23, 2, 5, 5},
    {"the largest image", true, 0xFFFFFFFF, 0xFFFFFFFF, 3, 24, 1, 1, 1},
};

TEST(HalftoneImage, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes before = RandomBytes(8 * 24, 4);
        Bytes image = before;
        EXPECT_EQ(ZLV40_HalftoneImage(row.hasBuffer ? image.data() : nullptr, row.width, row.height, row.channels,
                                      row.stride, row.cellSize, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.halftone);
        EXPECT_EQ(image, before);
    }
}

TEST(MosaicImage, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes before = RandomBytes(8 * 24, 4);
        Bytes image = before;
        EXPECT_EQ(ZLV40_MosaicImage(row.hasBuffer ? image.data() : nullptr, row.width, row.height, row.channels,
                                    row.stride, row.cellSize),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.mosaic);
        EXPECT_EQ(image, before);
    }
}

TEST(HalftoneImage, OneOrFourChannelsAreForTheMosaic)
{
    for (const i32 channels : {1, 4}) {
        Bytes image(8 * 8 * 4, 9);
        EXPECT_EQ(ZLV40_HalftoneImage(image.data(), 8, 8, channels, 32, 2, 0), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(ZLV40_MosaicImage(image.data(), 8, 8, channels, 32, 2), 1u);
    }
}

TEST(MosaicImage, ACellIsTheMeanOfItsPixels)
{
    Bytes image = {10, 20, 1, 1,    //
                   30, 41, 1, 255,  //
                   0,  0,  7, 7,    //
                   0,  3,  7, 7};
    EXPECT_EQ(ZLV40_MosaicImage(image.data(), 4, 4, 1, 4, 2), 1u);
    EXPECT_EQ(image, (Bytes{25, 25, 64, 64, 25, 25, 64, 64, 0, 0, 7, 7, 0, 0, 7, 7}));
}

TEST(MosaicImage, OnePixelCellsChangeNothing)
{
    const Bytes before = RandomBytes(9 * 5 * 3, 1);
    Bytes image = before;
    EXPECT_EQ(ZLV40_MosaicImage(image.data(), 9, 5, 3, 27, 1), 1u);
    EXPECT_EQ(image, before);
}

TEST(HalftoneImage, HardDotsAreBlackOrWhite)
{
    Bytes image = RandomBytes(20 * 12 * 3, 1);
    EXPECT_EQ(ZLV40_HalftoneImage(image.data(), 20, 12, 3, 60, 4, 0), 1u);
    for (std::size_t i = 0; i < image.size(); i += 3) {
        EXPECT_TRUE(image[i] == 0 || image[i] == 255) << i;
        EXPECT_TRUE(image[i] == image[i + 1] && image[i] == image[i + 2]) << i;
    }
}

TEST(HalftoneImage, WhiteAndBlackStay)
{
    for (const u8 level : {u8(0), u8(255)}) {
        Bytes image(15 * 9 * 3, level);
        EXPECT_EQ(ZLV40_HalftoneImage(image.data(), 15, 9, 3, 45, 3, 0), 1u);
        EXPECT_EQ(image, Bytes(15 * 9 * 3, level));
    }
}

// Weights of four pixels that do not add up to 1 exactly, and a truncation.
TEST(HalftoneImage, SmoothWhiteMayLoseALevel)
{
    Bytes image(15 * 9 * 3, 255);
    EXPECT_EQ(ZLV40_HalftoneImage(image.data(), 15, 9, 3, 45, 3, 1), 1u);
    EXPECT_EQ(image.front(), 255);
    for (const u8 sample : image) EXPECT_GE(sample, 254);
}

TEST(HalftoneImage, OnlyTheGrowthReports)
{
    for (const i32 smooth : {0, 1}) {
        Bytes image = RandomBytes(20 * 12 * 3, 1);
        ProgressRecorder client;
        ZLV40_SetCallback(client.Function, client.Data());
        EXPECT_EQ(ZLV40_HalftoneImage(image.data(), 20, 12, 3, 60, 4, smooth), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(client.reports, smooth ? Rows(12, 12) : Rows(3, 3));
    }
}

}  // namespace
}  // namespace zlv
