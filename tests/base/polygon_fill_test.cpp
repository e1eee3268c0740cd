#include "base/polygon_fill.h"

#include "base/polygon_support.h"

#include <cstring>
#include <memory>

namespace zlv {
namespace {

using zlvtest::Bytes;

constexpr u32 kColor = 0xE0402011;
constexpr u32 kPaletteCount = 100;  // images hold indices beyond

struct Style {
    const char* shows;
    u32 flags;
    f64 opacity;
    bool hasPattern = false, hasPalette = false;
};

constexpr Style kStyles[] = {
    {"solid", 0, 0.3},
    {"solid, swapped; the opacity is not used", kPolygonSwapColor, kNaN},
    {"an opacity of 0.5", kPolygonBlend, 0.5},
    {"an opacity of 0.7, swapped", kPolygonBlend | kPolygonSwapColor, 0.7},
    {"an opacity of 0", kPolygonBlend, 0},
    {"an opacity of 1", kPolygonBlend, 1},
    {"an opacity above 1 wraps", kPolygonBlend, 2.6},
    {"an opacity below 0 wraps", kPolygonBlend, -1.3},
    {"a pattern", 0, 1, true},
    {"a pattern does not swap", kPolygonSwapColor, 1, true},
    {"a palette", 0, 1, false, true},
    {"a palette at an opacity", kPolygonBlend, 0.4, false, true},
    {"a palette at an opacity, swapped", kPolygonBlend | kPolygonSwapColor, 0.6, false, true},
    {"a palette at an opacity above 1", kPolygonBlend, 1.5, false, true},
};

struct Tile {
    Tile(u32 theWidth, u32 theHeight, u32 channels)
        : width(theWidth),
          height(theHeight),
          stride(width * channels + 1),
          bytes(zlvtest::RandomBytes(size_t(stride) * std::max(height, 1u), width + height))
    {
    }

    u32 width, height, stride;
    Bytes bytes;
};

// Few components: many entries are equally near to a colour, and some are the same.
Bytes Palette()
{
    Bytes palette = zlvtest::RandomBytes(kPaletteCount * 4, 5);
    for (u8& byte : palette) byte &= 0xC0;
    return palette;
}

void ExpectPlain(const Style& style, const Tile& tile, Canvas& canvas, const Polygon& polygon)
{
    const Bytes palette = Palette();
    const u8* const pattern = style.hasPattern ? tile.bytes.data() : nullptr;
    const u8* const entries = style.hasPalette ? palette.data() : nullptr;
    Bytes wanted = canvas.Before();
    PlainFillPolygon(wanted.data(), canvas.Width(), canvas.Height(), canvas.Channels(), canvas.Stride(), polygon,
                     {pattern, tile.width, tile.height, tile.stride, kColor, style.opacity, entries, kPaletteCount,
                      (style.flags & kPolygonBlend) != 0, (style.flags & kPolygonSwapColor) != 0});
    const Vertices vertices(polygon);
    ASSERT_EQ(MV40_PolygonFillImage(canvas.Data(), canvas.Width(), canvas.Height(), canvas.Channels(), canvas.Stride(),
                                    vertices.Data(), vertices.Count(), pattern, tile.width, tile.height, tile.stride,
                                    kColor, style.opacity, entries, kPaletteCount, style.flags),
              1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    EXPECT_EQ(canvas.DifferenceTo(wanted), "");
}

TEST(PolygonFill, EveryStyleEqualsPlain)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const Style& style : kStyles) {
            for (const u32 channels : {1u, 3u, 4u}) {
                SCOPE(zlvtest::NameOf(target), style.shows, channels);
                u32 run = 0;
                ForPolygons(6, [&](const Polygon& polygon) {
                    const u32 sizes[][2] = {{1, 1}, {3, 2}, {5, 7}, {64, 3}};
                    const auto [width, height] = sizes[++run % 4];
                    Canvas canvas(u32(kSceneWidth), u32(kSceneHeight), channels, run % 3);
                    ExpectPlain(style, Tile(width, height, channels), canvas, polygon);
                });
                if (HasFailure()) return;
            }
        }
    }
}

TEST(PolygonFill, EveryImageSizeEqualsPlain)
{
    constexpr u32 kSizes[][2] = {{1, 1}, {1, 40}, {40, 1}, {2, 3}, {17, 16}, {700, 9}, {1600, 4}};
    for (const auto [width, height] : kSizes) {
        for (const Style& style : kStyles) {
            for (const u32 channels : {1u, 3u, 4u}) {
                SCOPE(width, height, style.shows, channels);
                for (u32 seed = 0; seed < 6; ++seed) {
                    Polygon polygon = RandomPolygon(PolygonKind::Around, 3 + seed, seed);
                    for (PlainVertex& v : polygon) {
                        v = {v.x * width / kSceneWidth, v.y * height / kSceneHeight};
                    }
                    Canvas canvas(width, height, channels, seed);
                    ExpectPlain(style, Tile(31, 5, channels), canvas, polygon);
                }
                if (HasFailure()) return;
            }
        }
    }
}

// Rows above the image are painted onto its first row, in far fewer steps than there are rows.
TEST(PolygonFill, RowsFarAboveEqualPlain)
{
    for (const Style& style : kStyles) {
        for (const u32 channels : {1u, 3u}) {
            for (u32 seed = 0; seed < 12; ++seed) {
                SCOPE(style.shows, channels, seed);
                Canvas canvas(u32(kSceneWidth), u32(kSceneHeight), channels, 2);
                ExpectPlain(style, Tile(4, 6, channels), canvas, RandomPolygon(PolygonKind::LongAbove, 4 + seed, seed));
                // A sliver that leaves the image on the left.
                ExpectPlain(style, Tile(4, 6, channels), *std::make_unique<Canvas>(20u, 3u, channels, 0u),
                            {{-3000.3, -6000}, {-3000.9, -6000}, {12.2, 2.2 + seed}});
            }
        }
    }
}

// Images of 6 x 4 bytes; what is filled, row after row.
const struct {
    const char* shows;
    Polygon polygon;
    const char* filled;
} kFills[] = {
    {"a rectangle",
     {{1, 1}, {4, 1}, {4, 3}, {1, 3}},
     "......"
     ".###.."
     ".###.."
     "......"},
    {"the whole image",
     {{0, 0}, {6, 0}, {6, 4}, {0, 4}},
     "######"
     "######"
     "######"
     "######"},
    {"what lies beyond the right and bottom edges is cut",
     {{4, 2}, {90, 2}, {90, 90}, {4, 90}},
     "......"
     "......"
     "....##"
     "....##"},
    {"what lies to the right falls on nothing", {{7, 1}, {9, 1}, {9, 3}, {7, 3}}, "........................"},
    {"what lies below falls on nothing", {{1, 5}, {3, 5}, {3, 9}, {1, 9}}, "........................"},
    {"what lies above is painted onto the first row",
     {{1, -9}, {3, -9}, {3, -5}, {1, -5}},
     ".##..."
     "......"
     "......"
     "......"},
    {"what lies to the left is painted onto the first column",
     {{-9, 1}, {-5, 1}, {-5, 3}, {-9, 3}},
     "......"
     "#....."
     "#....."
     "......"},
    {"what lies above on the left is painted onto the first pixel",
     {{-9, -9}, {-5, -9}, {-5, -3}, {-9, -3}},
     "#....."
     "......"
     "......"
     "......"},
    {"a polygon around the image",
     {{-1e9, -1e9}, {1e9, -1e9}, {1e9, 1e9}, {-1e9, 1e9}},
     "######"
     "######"
     "######"
     "######"},
    {"a huge triangle whose tip is in the image",
     {{-0x1p30, 2 - 0x1p30}, {0x1p30, 2 - 0x1p30}, {0, 2}},
     "######"
     "#....."
     "......"
     "......"},
    {"a long sliver that holds a pixel centre in every row",
     {{0.8 - 0x1p30, 2 - 0x1p30}, {1.2 - 0x1p30, 2 - 0x1p30}, {3.2, 4}, {2.8, 4}},
     "#....."
     "#....."
     ".#...."
     "..#..."},
    {"a long sliver between the centres",
     {{0.6 - 0x1p30, 2 - 0x1p30}, {0.9 - 0x1p30, 2 - 0x1p30}, {2.9, 4}, {2.6, 4}},
     "........................"},
};

TEST(PolygonFill, ByHand)
{
    for (const auto& row : kFills) {
        SCOPE(row.shows);
        Bytes image(24, 77), wanted(24, 77);
        for (u32 i = 0; i < 24; ++i) {
            if (row.filled[i] == '#') wanted[i] = 0x11;
        }
        const Vertices vertices(row.polygon);
        EXPECT_EQ(MV40_PolygonFillImage(image.data(), 6, 4, 1, 6, vertices.Data(), vertices.Count(), nullptr, 0, 0, 0,
                                        kColor, 1, nullptr, 0, 0),
                  1u);
        EXPECT_EQ(image, wanted);
    }
}

u32 FillAll(u8* pixel, u32 channels, f64 opacity, const u8* palette, u32 paletteCount, u32 flags)
{
    const Vertices square({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    return MV40_PolygonFillImage(pixel, 1, 1, channels, channels, square.Data(), 4, nullptr, 0, 0, 0, kColor, opacity,
                                 palette, paletteCount, flags);
}

const struct {
    const char* shows;
    Bytes pixel;
    f64 opacity;
    u32 flags;
    Bytes result;
} kPixels[] = {
    {"one channel takes the low byte", {9}, 1, 0, {0x11}},
    {"one channel does not swap", {9}, 1, kPolygonSwapColor, {0x11}},
    {"three channels, low byte first", {9, 9, 9}, 1, 0, {0x11, 0x20, 0x40}},
    {"three channels, swapped", {9, 9, 9}, 1, kPolygonSwapColor, {0x40, 0x20, 0x11}},
    {"four channels", {9, 9, 9, 9}, 1, 0, {0x11, 0x20, 0x40, 0xE0}},
    {"without the flag the opacity is not used", {9, 9, 9}, 0.1, 0, {0x11, 0x20, 0x40}},
    // trunc(9 / 2) = 4 and trunc(17 / 2) = 8: the two halves lose one together
    {"half a byte each, truncated", {9}, 0.5, kPolygonBlend, {12}},
    {"the fourth byte mixes too", {9, 10, 20, 30}, 0.5, kPolygonBlend, {12, 21, 42, 127}},
    // trunc(17 * 2) = 34 and trunc(9 * -1) = -9
    {"an opacity of 2 is not limited", {9}, 2, kPolygonBlend, {25}},
    // trunc(17 * 20) = 340 and trunc(9 * -19) = -171: low bytes 84 and 85
    {"low bytes are added", {9}, 20, kPolygonBlend, {169}},
};

TEST(PolygonFill, PixelsByHand)
{
    for (const auto& row : kPixels) {
        SCOPE(row.shows);
        Bytes pixel = row.pixel;
        EXPECT_EQ(FillAll(pixel.data(), u32(pixel.size()), row.opacity, nullptr, 0, row.flags), 1u);
        EXPECT_EQ(pixel, row.result);
    }
}

// Entry 0x11, which the colour's low byte names, is 200, 100, 40 with the last component first.
const struct {
    const char* shows;
    u32 count;
    f64 opacity;
    u32 flags;
    u8 index, result;
} kIndices[] = {
    {"solid is the index itself", 20, 1, 0, 3, 0x11},
    {"a solid index may lie beyond the palette", 5, 1, 0, 3, 0x11},
    {"full opacity is the entry", 20, 1, kPolygonBlend, 3, 0x11},
    {"half of entry 3 and half of the entry is entry 4", 20, 0.5, kPolygonBlend, 3, 4},
    {"swapped it is entry 5", 20, 0.5, kPolygonBlend | kPolygonSwapColor, 3, 5},
    {"of equal entries the lowest", 20, 0, kPolygonBlend, 7, 6},
    {"an index beyond the palette is black, entry 0", 20, 0, kPolygonBlend, 99, 0},
    {"a colour beyond the palette is black: half of entry 3 is entry 2", 17, 0.5, kPolygonBlend, 3, 2},
    {"no entries", 0, 0.5, kPolygonBlend, 3, 0},
};

TEST(PolygonFill, IndicesByHand)
{
    Bytes palette(20 * 4, 255);
    const auto set = [&](u32 index, u8 first, u8 second, u8 third) {
        palette[index * 4] = third;
        palette[index * 4 + 1] = second;
        palette[index * 4 + 2] = first;
    };
    set(0, 0, 0, 0);
    set(2, 10, 20, 30);
    set(3, 20, 40, 60);
    set(0x11, 200, 100, 40);
    set(4, 110, 70, 50);
    set(5, 30, 70, 130);
    set(6, 90, 10, 90);
    set(7, 90, 10, 90);
    for (const auto& row : kIndices) {
        SCOPE(row.shows);
        u8 index = row.index;
        EXPECT_EQ(FillAll(&index, 1, row.opacity, palette.data(), row.count, row.flags), 1u);
        EXPECT_EQ(index, row.result);
    }
}

TEST(PolygonFill, APaletteOfMoreThan256EntriesIsLimited)
{
    Bytes palette(300 * 4, 0);
    std::fill(palette.begin() + 256 * 4, palette.end(), u8(90));
    palette[0x11 * 4] = palette[0x11 * 4 + 1] = palette[0x11 * 4 + 2] = 90;
    u8 index = 1;
    EXPECT_EQ(FillAll(&index, 1, 1, palette.data(), 300, kPolygonBlend), 1u);
    EXPECT_EQ(index, 0x11);
}

// Tiles of one channel whose pixel in row r, column c is 10 * r + c.
Bytes CountingTile(u32 width, u32 height)
{
    Bytes tile(size_t(width) * height);
    for (u32 i = 0; i < tile.size(); ++i) tile[i] = u8(10 * (i / width) + i % width);
    return tile;
}

const struct {
    const char* shows;
    Polygon polygon;
    u32 tileWidth, tileHeight;
    Bytes image;  // of 5 x 4
} kTilings[] = {
    {"the tile begins at the bounding rectangle", {{1, 1}, {5, 1}, {5, 4}, {1, 4}}, 3, 2, {77, 77, 77, 77, 77, 77, 0,
                                                                                           1,  2,  0,  77, 10, 11, 12,
                                                                                           10, 77, 0,  1,  2,  0}},
    {"rows above the image move it on: the fourth row of the polygon is row 1 of the tile",
     {{1, -3}, {3, -3}, {3, 2}, {1, 2}},
     3,
     2,
     {77, 10, 11, 77, 77, 77, 0, 1, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77}},
    {"columns left of the image do not", {{-4, 0}, {4, 0}, {4, 1}, {-4, 1}}, 3, 2, {0,  1,  2,  0,  77, 77, 77,
                                                                                    77, 77, 77, 77, 77, 77, 77,
                                                                                    77, 77, 77, 77, 77, 77}},
    {"a fraction in front of the first pixel moves the tile",
     {{0.9, 0}, {4, 0}, {4, 1}, {0.9, 1}},
     3,
     2,
     {77, 1, 2, 0, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77}},
    {"rows without spans do not count",
     {{1, 0}, {2, 0}, {2, 1}, {1.6, 1}, {1.6, 3}, {2, 3}, {2, 4}, {1, 4}, {1, 3}, {1.55, 3}, {1.55, 1}, {1, 1}},
     3,
     3,
     {77, 0, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 77, 10, 77, 77, 77}},
    {"a tile without height is one row", {{1, 0}, {3, 0}, {3, 3}, {1, 3}}, 3, 0, {77, 0,  1,  77, 77, 77, 0,
                                                                                  1,  77, 77, 77, 0,  1,  77,
                                                                                  77, 77, 77, 77, 77, 77}},
};

TEST(PolygonFill, TilesByHand)
{
    for (const auto& row : kTilings) {
        SCOPE(row.shows);
        Bytes image(20, 77);
        const Bytes tile = CountingTile(row.tileWidth, std::max(row.tileHeight, 1u));
        const Vertices vertices(row.polygon);
        EXPECT_EQ(MV40_PolygonFillImage(image.data(), 5, 4, 1, 5, vertices.Data(), vertices.Count(), tile.data(),
                                        row.tileWidth, row.tileHeight, row.tileWidth, kColor, 1, nullptr, 0, 0),
                  1u);
        EXPECT_EQ(image, row.image);
    }
}

// 2^31 rows above the image, painted onto its first row one after the other.
TEST(PolygonFill, BillionsOfRowsMixUntilNothingChanges)
{
    const Vertices column({{1, kLowest}, {2, kLowest}, {2, 2}, {1, 2}});
    Bytes image(6, 200);
    EXPECT_EQ(MV40_PolygonFillImage(image.data(), 3, 2, 1, 3, column.Data(), 4, nullptr, 0, 0, 0, 100, 0.25, nullptr, 0,
                                    kPolygonBlend),
              1u);
    // From 200 down to the first v with trunc(0.75 * v) + 25 = v: 101 gives 75 + 25, and so does 100.
    EXPECT_EQ(image, (Bytes{200, 100, 200, 200, 175, 200}));
}

TEST(PolygonFill, BillionsOfRowsMoveATileOn)
{
    const Vertices column({{1, kLowest}, {2, kLowest}, {2, 2}, {1, 2}});
    const Bytes tile = CountingTile(1, 7);
    Bytes image(6, 200);
    EXPECT_EQ(
        MV40_PolygonFillImage(image.data(), 3, 2, 1, 3, column.Data(), 4, tile.data(), 1, 7, 1, 0, 1, nullptr, 0, 0),
        1u);
    // Row 0 of the image is row 2^31 of the polygon, and 2^31 = 7 * 306783378 + 2.
    EXPECT_EQ(image, (Bytes{200, 20, 200, 200, 30, 200}));
}

const struct {
    const char* shows;
    bool hasImage, hasPoints;
    u32 count, channels;
    bool hasPattern;
    u32 patternWidth;
    f64 opacity;
    u32 flags;
} kRefused[] = {
    {"a null image", false, true, 4, 3, false, 1, 1, 0},
    {"null points", true, false, 4, 3, false, 1, 1, 0},
    {"no vertices", true, true, 0, 3, false, 1, 1, 0},
    {"two vertices", true, true, 2, 3, false, 1, 1, 0},
    {"no channels", true, true, 4, 0, false, 1, 1, 0},
    {"two channels", true, true, 4, 2, false, 1, 1, 0},
    {"five channels", true, true, 4, 5, false, 1, 1, 0},
    {"a pattern at an opacity", true, true, 4, 3, true, 1, 1, kPolygonBlend},
    {"a pattern at an opacity, antialiased", true, true, 4, 3, true, 1, 1, kPolygonBlend | kPolygonAntialias},
    {"a pattern without columns", true, true, 4, 3, true, 0, 1, 0},
    {"an opacity that is no number", true, true, 4, 3, false, 1, kNaN, kPolygonBlend},
    {"an infinite opacity", true, true, 4, 3, false, 1, kInfinity, kPolygonBlend},
    {"an opacity out of the integers", true, true, 4, 3, false, 1, -1e7, kPolygonBlend},
    {"an antialiased null image", false, true, 4, 3, false, 1, 1, kPolygonAntialias},
};

TEST(PolygonFill, RefusalsWriteNothing)
{
    const Vertices square({{0, 0}, {3, 0}, {3, 3}, {0, 3}});
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        Bytes image(80, 77);
        const Bytes tile(80, 5);
        EXPECT_EQ(MV40_PolygonFillImage(row.hasImage ? image.data() : nullptr, 3, 3, row.channels, 15,
                                        row.hasPoints ? square.Data() : nullptr, row.count,
                                        row.hasPattern ? tile.data() : nullptr, row.patternWidth, 1, 15, kColor,
                                        row.opacity, nullptr, 0, row.flags),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(image, Bytes(80, 77));
    }
}

TEST(PolygonFill, BadCoordinatesAreRefused)
{
    for (const f64 bad : kBadCoordinates) {
        for (const u32 flags : {0u, kPolygonAntialias}) {
            for (u32 place = 0; place < 6; ++place) {
                SCOPE(bad, flags, place);
                Polygon polygon = {{0, 0}, {3, 0}, {3, 3}};
                (place % 2 ? polygon[place / 2].y : polygon[place / 2].x) = bad;
                const Vertices vertices(polygon);
                Bytes image(27, 77);
                EXPECT_EQ(MV40_PolygonFillImage(image.data(), 3, 3, 3, 9, vertices.Data(), 3, nullptr, 0, 0, 0, kColor,
                                                1, nullptr, 0, flags),
                          0u);
                EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
                EXPECT_EQ(image, Bytes(27, 77));
            }
        }
    }
}

TEST(PolygonFill, AnImageWithoutPixelsIsLeftAlone)
{
    const Vertices around({{-5, -5}, {5, -5}, {5, 5}, {-5, 5}});
    for (const auto& [width, height] : {std::pair{0u, 3u}, std::pair{3u, 0u}, std::pair{0u, 0u}}) {
        SCOPE(width, height);
        u8 image = 77;
        EXPECT_EQ(MV40_PolygonFillImage(&image, width, height, 1, 3, around.Data(), 4, nullptr, 0, 0, 0, kColor, 1,
                                        nullptr, 0, 0),
                  1u);
        EXPECT_EQ(image, 77);
    }
}

// The vertices are read before anything is painted, and so is the palette.
TEST(PolygonFill, VerticesInsideTheImageAreReadFirst)
{
    Bytes image(200, 0);
    const f64 points[] = {0, 0, 14, 0, 14, 14, 0, 14};
    std::memcpy(image.data(), points, sizeof points);
    EXPECT_EQ(MV40_PolygonFillImage(image.data(), 14, 14, 1, 14, reinterpret_cast<const f64*>(image.data()), 4, nullptr,
                                    0, 0, 0, 5, 1, nullptr, 0, 0),
              1u);
    EXPECT_TRUE(std::all_of(image.begin(), image.begin() + 196, [](u8 byte) { return byte == 5; }));
}

TEST(PolygonFill, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const Vertices square({{0, 0}, {3, 0}, {3, 3}, {0, 3}});
    for (const u32 succeeding : {0u, 1u, 2u}) {
        SCOPE(succeeding);
        Bytes image(27, 77);
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
        EXPECT_EQ(MV40_PolygonFillImage(image.data(), 3, 3, 3, 9, square.Data(), 4, nullptr, 0, 0, 0, kColor, 1,
                                        nullptr, 0, 0),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(image, Bytes(27, 77));
    }
}

TEST(PolygonFill, NeverReports)
{
    const Vertices square({{0, 0}, {3, 0}, {3, 3}, {0, 3}});
    for (const u32 flags : {0u, kPolygonBlend, kPolygonAntialias, kPolygonAntialias | kPolygonFineSamples}) {
        SCOPE(flags);
        Bytes image(48, 77);
        const zlvtest::Recording recording(1);
        EXPECT_EQ(MV40_PolygonFillImage(image.data(), 4, 4, 3, 12, square.Data(), 4, nullptr, 0, 0, 0, kColor, 1,
                                        nullptr, 0, flags),
                  1u);
        EXPECT_TRUE(recording.recorder.reports.empty());
        EXPECT_NE(image, Bytes(48, 77));
    }
}

}  // namespace
}  // namespace zlv
