// What the segmented colourise makes of pictures.
#include "artistic/segmented_cases.h"

#include "platform/types.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

namespace zlv {
namespace {

using namespace zlvtest;

constexpr u32 kModes = 4;
constexpr u32 kSizes = 13;  // 0 to 12: every element, and one number beyond

TEST(SegmentedColorize, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 mode = 0; mode < kModes; ++mode) {
            for (const u32 width : {40u, 61u, 71u, 130u}) {
                for (const u32 size : {0u, 2u, 3u, 5u}) ExpectPlain({width, 17, 8, mode, size});
            }
        }
    });
}

TEST(SegmentedColorize, EveryModeAndFilterSizeEqualsPlain)
{
    for (u32 mode = 0; mode < kModes; ++mode) {
        for (u32 size = 0; size < kSizes; ++size) {
            ExpectPlain({48, 37, 5, mode, size, 0});
            ExpectPlain({53, 37, 5, mode, size});
        }
    }
}

TEST(SegmentedColorize, TinyPicturesEqualPlain)
{
    for (u32 width = 1; width <= 8; ++width) {
        for (u32 height = 1; height <= 8; ++height) {
            for (u32 mode = 0; mode < kModes; ++mode) {
                for (u32 size = 0; size < kSizes; ++size) ExpectPlain({width, height, 3, mode, size, width % 3});
            }
        }
    }
}

TEST(SegmentedColorize, EveryNumberOfColorsEqualsPlain)
{
    for (u32 mode = 0; mode < kModes; ++mode) {
        for (const u32 colors : {1u, 2u, 3u, 12u, 13u, 255u, 256u}) ExpectPlain({33, 9, colors, mode, 3});
    }
}

TEST(SegmentedColorize, ColorsAbove256ActAs256)
{
    for (const u32 colors : {257u, 512u, 0x80000000u, 0xFFFFFFFFu}) ExpectPlain({33, 9, colors, 0, 3});
}

TEST(SegmentedColorize, WindowsLargerThanThePictureEqualPlain)
{
    for (const u32 size : {21u, 100u, 301u}) ExpectPlain({13, 5, 6, ZLV40_SEGMENT_MEDIAN, size});
    for (u32 mode = 0; mode < kModes; ++mode) {
        for (const u32 size : {9u, 10u, 11u}) ExpectPlain({9, 3, 6, mode, size});
    }
}

TEST(SegmentedColorize, TheSizeOfTheMedianIsNoElementButAWindow)
{
    for (const auto& [even, odd] : {std::pair(4u, 5u), std::pair(0u, 1u), std::pair(10u, 11u)}) {
        SCOPE(even, odd);
        const SegmentCase evenCase{60, 20, 6, ZLV40_SEGMENT_MEDIAN, even},
            oddCase{60, 20, 6, ZLV40_SEGMENT_MEDIAN, odd};
        SegmentResult a(evenCase), b(oddCase);
        EXPECT_EQ(Apply(evenCase, evenCase.Source(), a), 1u);
        EXPECT_EQ(Apply(oddCase, oddCase.Source(), b), 1u);
        ExpectSame(b, a);
    }
}

// A median of 1 pixel changes nothing: the picture comes out as it was quantised.
TEST(SegmentedColorize, AMedianOfSize0IsThePictureItself)
{
    const SegmentCase c{31, 14, 5, ZLV40_SEGMENT_MEDIAN, 0, 0};
    const Bytes source = c.Source();
    SegmentResult got(c);
    EXPECT_EQ(Apply(c, source, got), 1u);
    Bytes wanted(got.image.size());
    PlainDither(source.data(), 31, 14, 93, wanted.data(), 31, 5, got.palette.data(), 0, 0, false);
    EXPECT_EQ(Difference(wanted.data(), got.image.data(), wanted.size()), "");
}

TEST(SegmentedColorize, AClosingOfSize0TakesTheBlockOf3)
{
    const SegmentCase zero{60, 20, 6, ZLV40_SEGMENT_CLOSE, 0}, beyond{60, 20, 6, ZLV40_SEGMENT_CLOSE, 12};
    SegmentResult a(zero), b(beyond);
    EXPECT_EQ(Apply(zero, zero.Source(), a), 1u);
    EXPECT_EQ(Apply(beyond, beyond.Source(), b), 1u);
    ExpectSame(b, a);
}

// ---- Pictures of two colours, by hand ----

constexpr u8 kDark[] = {16, 32, 48}, kBright[] = {200, 210, 220};

// '#' is dark.
Bytes PictureOf(const std::vector<std::string>& rows)
{
    Bytes picture;
    for (const std::string& row : rows) {
        for (const char pixel : row) {
            const u8* const color = pixel == '#' ? kDark : kBright;
            picture.insert(picture.end(), color, color + 3);
        }
    }
    return picture;
}

// Entries have the third component first.
bool IsEntry(const Bytes& palette, size_t index, const u8* color)
{
    return palette[4 * index] == color[2] && palette[4 * index + 1] == color[1] && palette[4 * index + 2] == color[0];
}

// The result of two colours, as it was drawn; '?' for an index of neither.
std::vector<std::string> Segmented(const std::vector<std::string>& rows, u32 mode, u32 filterSize)
{
    const u32 width = u32(rows[0].size()), height = u32(rows.size());
    const SegmentCase c{width, height, 2, mode, filterSize, 0};
    SegmentResult result(c);
    EXPECT_EQ(Apply(c, PictureOf(rows), result), 1u);
    std::vector<std::string> drawn(height);
    for (u32 y = 0; y < height; ++y) {
        for (u32 x = 0; x < width; ++x) {
            const u8 index = result.image[size_t(y) * width + x];
            drawn[y] += IsEntry(result.palette, index, kDark)     ? '#'
                        : IsEntry(result.palette, index, kBright) ? '.'
                                                                  : '?';
        }
    }
    return drawn;
}

const std::vector<std::string> kSpot = {
    ".........", ".........", ".........", "...###...", "...###...", "...###...", ".........", ".........", ".........",
};

TEST(SegmentedColorize, TheMedianLetsALargeRegionSwallowASmallOne)
{
    EXPECT_EQ(Segmented(kSpot, ZLV40_SEGMENT_MEDIAN, 5), std::vector<std::string>(9, "........."));
}

TEST(SegmentedColorize, PixelsThatNoMaskCoversKeepTheRarestColor)
{
    // A block of 5 x 5 does not fit into the spot, and around it only along the edges.
    const std::vector<std::string> wanted = {
        ".........", ".#######.", ".#######.", ".#######.", ".#######.",
        ".#######.", ".#######.", ".#######.", ".........",
    };
    EXPECT_EQ(Segmented(kSpot, ZLV40_SEGMENT_HIT_OR_MISS, 2), wanted);
}

// 32 + 32 pixels: equal counts. The colour of index 0 is the background, and the octree puts the brighter one there.
TEST(SegmentedColorize, BoundariesStandOnTheRarestColorAndEqualCountsGoByIndex)
{
    const std::vector<std::string> halves(4, "########........"), wanted(4, ".......#........");
    EXPECT_EQ(Segmented(halves, ZLV40_SEGMENT_BOUNDARY, 0), wanted);
    const SegmentCase c{16, 4, 2, ZLV40_SEGMENT_BOUNDARY, 0, 0};
    SegmentResult result(c);
    EXPECT_EQ(Apply(c, PictureOf(halves), result), 1u);
    EXPECT_EQ(Bytes(result.image.begin(), result.image.begin() + 16),
              (Bytes{0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

// The boundary extraction puts what a row has behind its last whole byte over the row's first pixels. Here the dark
// boundary of pixel 8 comes out at pixel 0, and takes the one of pixel 3 away.
TEST(SegmentedColorize, BoundariesBehindTheLastWholeByteLandOnTheRowsFirstPixels)
{
    EXPECT_EQ(Segmented({"####....#######"}, ZLV40_SEGMENT_BOUNDARY, 0), std::vector<std::string>{"#.............."});
}

// ---- Buffers ----

TEST(SegmentedColorize, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {1u, 8u, 13u, 64u, 77u}) {
                for (u32 mode = 0; mode < kModes; ++mode) {
                    SCOPE(int(flush), width, mode);
                    GuardedBuffer source(size_t(width) * 3 * 5, flush), image(size_t(width + 2) * 4 + width, flush);
                    GuardedBuffer palette(1024, flush);
                    const Bytes picture = PatchedPicture(width, 5, width);
                    std::copy(picture.begin(), picture.end(), source.Data());
                    EXPECT_EQ(ZLV40_SegmentedColorizeRGBImage(source.Data(), width, 5, 1, image.Data(), i32(width + 2),
                                                              palette.Data(), 6, mode, 9, 0),
                              1u);
                }
            }
        }
    });
}

TEST(SegmentedColorize, TheSourcesStrideAndTheReservedNumberAreIgnored)
{
    const SegmentCase c{20, 10, 4, ZLV40_SEGMENT_CLOSE, 3};
    const Bytes source = c.Source();
    SegmentResult wanted(c);
    EXPECT_EQ(Apply(c, source, wanted), 1u);
    for (const u64 any : {u64{1}, u64{60}, u64{4096}, ~u64{0}}) {
        SegmentResult got(c);
        EXPECT_EQ(ZLV40_SegmentedColorizeRGBImage(source.data(), 20, 10, any, got.image.data(), 23, got.palette.data(),
                                                  4, c.mode, 3, any),
                  1u);
        ExpectSame(wanted, got);
    }
}

TEST(SegmentedColorize, TheShorterEntryHasTwoOfTheModes)
{
    for (const i32 useMedian : {0, 1, 2, -1, INT32_MIN}) {
        SCOPE(useMedian);
        const SegmentCase c{40, 20, 6, useMedian ? u32(ZLV40_SEGMENT_MEDIAN) : u32(ZLV40_SEGMENT_CLOSE), 3};
        const Bytes source = c.Source();
        SegmentResult wanted(c), got(c);
        PlainSegmentedColorize(PlainCallOf(c, source, wanted));
        EXPECT_EQ(ZLV40_SegmentedColorizeRGB(source.data(), 40, 20, 7, got.image.data(), 43, got.palette.data(), 6, 3,
                                             useMedian),
                  1u);
        ExpectSame(wanted, got);
    }
}

}  // namespace
}  // namespace zlv
