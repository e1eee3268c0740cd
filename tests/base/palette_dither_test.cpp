#include "base/palette_support.h"
#include "plain/plain_palette.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

using zlvtest::BlankIndices;
using zlvtest::Bytes;
using zlvtest::DitherSettings;
using zlvtest::kIndexPadding;
using zlvtest::PaletteKind;
using zlvtest::PictureKind;
using zlvtest::Recording;
using zlvtest::TestPicture;

u32 Map(const TestPicture& picture, Bytes& indices, const Bytes& palette, const DitherSettings& settings)
{
    return MV40_RGBTo8BitDithered(picture.bytes.data(), picture.width, picture.height, picture.stride, indices.data(),
                                  picture.width + kIndexPadding, settings.colors, palette.data(), settings.ditherKind,
                                  settings.limit, settings.flags);
}

Bytes Twin(const TestPicture& picture, const Bytes& palette, const DitherSettings& settings)
{
    Bytes indices = BlankIndices(picture);
    PlainDither(picture.bytes.data(), picture.width, picture.height, picture.stride, indices.data(),
                picture.width + kIndexPadding, settings.colors, palette.data(), settings.ditherKind, settings.limit,
                settings.flags & 1);
    return indices;
}

void ExpectPlain(const TestPicture& picture, const Bytes& palette, const DitherSettings& settings)
{
    const Bytes wanted = Twin(picture, palette, settings);
    zlvtest::OnEveryTarget([&] {
        Bytes got = BlankIndices(picture);
        EXPECT_EQ(Map(picture, got, palette, settings), 1u);
        EXPECT_EQ(MV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    });
}

TEST(PaletteDither, EveryPictureAndPaletteEqualsPlain)
{
    zlvtest::ForEveryKind<PictureKind>([](PictureKind pictureKind) {
        zlvtest::ForEveryKind<PaletteKind>([&](PaletteKind kind) {
            for (const u32 colors : {1u, 2u, 16u, 255u, 256u}) {
                SCOPE(NameOf(pictureKind), NameOf(kind), colors);
                const TestPicture picture(pictureKind, 70, 31, colors);
                const Bytes palette = zlvtest::MakePalette(kind, colors, colors);
                ExpectPlain(picture, palette, {colors, 0, 127, 0});
                ExpectPlain(picture, palette, {colors, 1, 20, kSameComponentOrder});
            }
        });
    });
}

// Errors beyond 127 wrap to the other sign.
TEST(PaletteDither, EveryLimitEqualsPlain)
{
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 7, 3);
    for (const u32 limit : {0u, 1u, 20u, 126u, 127u, 128u, 129u, 200u, 254u, 255u}) {
        for (const u32 ditherKind : {0u, 1u, 2u, 0xFFFFFFFFu}) {
            SCOPE(limit, ditherKind);
            ExpectPlain(TestPicture(PictureKind::Noise, 65, 20, limit), palette, {7, ditherKind, u8(limit), 0});
            ExpectPlain(TestPicture(PictureKind::NearWhite, 65, 20, limit), palette, {7, ditherKind, u8(limit), 0});
        }
    }
}

TEST(PaletteDither, EverySizeEqualsPlain)
{
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 40, 3);
    for (const u32 width : {0u, 1u, 2u, 3u, 4u, 17u, 200u}) {
        for (const u32 height : {0u, 1u, 2u, 3u, 4u, 33u}) {
            for (const u32 ditherKind : {0u, 1u}) {
                SCOPE(width, height, ditherKind);
                ExpectPlain(TestPicture(PictureKind::Gradient, width, height, width), palette, {40, ditherKind, 60, 0});
            }
        }
    }
}

// The last entry of a full palette is the answer to most of this: its index is not mistaken for a missing answer.
TEST(PaletteDither, TheLastIndexIsAnAnswerLikeAnother)
{
    Bytes palette = zlvtest::MakePalette(PaletteKind::Cluster, 256, 3);
    std::fill_n(palette.begin() + 4 * 255, 3, u8(250));
    std::fill_n(palette.begin() + 4 * 254, 3, u8(246));
    for (const u8 limit : {u8(0), u8(3), u8(127)}) {
        SCOPE(+limit);
        ExpectPlain(TestPicture(PictureKind::NearWhite, 90, 40, 5), palette, {256, 1, limit, 0});
    }
}

TEST(PaletteDither, MoreThan256ColorsAre256)
{
    const TestPicture picture(PictureKind::Noise, 40, 9, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 256, 3);
    const Bytes wanted = Twin(picture, palette, {256, 1, 20, 0});
    for (const u32 colors : {257u, 0xFFFFFFFFu}) {
        SCOPE(colors);
        Bytes got = BlankIndices(picture);
        EXPECT_EQ(Map(picture, got, palette, {colors, 1, 20, 0}), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(PaletteDither, NoEntriesMakeEveryIndexZero)
{
    ExpectPlain(TestPicture(PictureKind::Noise, 40, 9, 1), Bytes(4, 200), {0, 1, 127, 0});
}

TEST(PaletteDither, OtherFlagsChangeNothing)
{
    const TestPicture picture(PictureKind::Noise, 40, 9, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 9, 3);
    Bytes got = BlankIndices(picture);
    EXPECT_EQ(Map(picture, got, palette, {9, 1, 20, 0xFFFFFFFE}), 1u);
    EXPECT_EQ(got, Twin(picture, palette, {9, 1, 20, 0}));
}

// A gray palette, a picture of one row or column of gray: levels and indices by hand.
Bytes MapGray(const Bytes& levels, u32 width, u32 height, const Bytes& grays, u32 ditherKind, u8 limit)
{
    Bytes pixels, palette, indices(levels.size());
    for (const u8 level : levels) pixels.insert(pixels.end(), 3, level);
    for (const u8 gray : grays) palette.insert(palette.end(), {gray, gray, gray, 0});
    EXPECT_EQ(MV40_RGBTo8BitDithered(pixels.data(), width, height, width * 3, indices.data(), width, u32(grays.size()),
                                     palette.data(), ditherKind, limit, 0),
              1u);
    return indices;
}

TEST(PaletteDither, WithoutErrorsTheFirstColorOfACellDecides)
{
    // 8 to 15 share a cell. The entries are nearest to 9 and to 14; the cell's first pixel is 13, so all are 14's.
    EXPECT_EQ(MapGray({13, 9, 15, 8, 16}, 5, 1, {9, 14, 16}, 0, 0), (Bytes{1, 1, 1, 1, 2}));
    EXPECT_EQ(MapGray({9, 13, 15, 8, 16}, 5, 1, {9, 14, 16}, 0, 0), (Bytes{0, 0, 0, 0, 2}));
    // The second row runs from right to left: its last pixel comes first.
    EXPECT_EQ(MapGray({0, 0, 9, 13}, 2, 2, {0, 9, 14}, 0, 0), (Bytes{0, 0, 2, 2}));
}

TEST(PaletteDither, HalvesByHand)
{
    // Black and white. 100 -> black, error 100. 100 + 50 = 150 -> white, error -105. 100 + (-105 >> 1) = 47 -> black,
    // error 47. 100 + 23 = 123 -> black.
    EXPECT_EQ(MapGray({100, 100, 100, 100}, 4, 1, {0, 255}, 0, 127), (Bytes{0, 1, 0, 0}));
    // Downwards the same halves: the pixel below has no other neighbour.
    EXPECT_EQ(MapGray({100, 100, 100, 100}, 1, 4, {0, 255}, 0, 127), (Bytes{0, 1, 0, 0}));
}

TEST(PaletteDither, FloydSteinbergByHand)
{
    // 100 -> black, error 100. 100 + ((700 + 8) >> 4) = 144 -> white, error -111. 100 + ((-777 + 8) >> 4) = 51 ->
    // black, error 51. 100 + ((357 + 8) >> 4) = 122 -> black.
    EXPECT_EQ(MapGray({100, 100, 100, 100}, 4, 1, {0, 255}, 1, 127), (Bytes{0, 1, 0, 0}));
    // Downwards five sixteenths: 100 + ((500 + 8) >> 4) = 131 -> white, error -124. 100 + ((-620 + 8) >> 4) = 61 ->
    // black, error 61. 100 + ((305 + 8) >> 4) = 119 -> black.
    EXPECT_EQ(MapGray({100, 100, 100, 100}, 1, 4, {0, 255}, 1, 127), (Bytes{0, 1, 0, 0}));
    // Two columns: (0, 0) has error 90 -> 630 to the right, 450 below, 90 below and ahead. (1, 0): 0 + 39 = 39, error
    // 39 -> 195 below it on top of the 90, 117 below and behind on top of the 450. The second row begins on the
    // right: 110 + ((285 + 8) >> 4) = 128 -> white, error -127. Then 93 + ((567 - 889 + 8) >> 4) = 73 -> black; with
    // nothing of the right neighbour it would be 128.
    EXPECT_EQ(MapGray({90, 0, 93, 110}, 2, 2, {0, 255}, 1, 127), (Bytes{0, 0, 0, 1}));
    EXPECT_EQ(MapGray({90, 0, 93, 0}, 2, 2, {0, 255}, 1, 127), (Bytes{0, 0, 1, 0}));
}

TEST(PaletteDither, ErrorsBeyondTheLimitAreCut)
{
    // As halftones are made. 100 -> black, error 20: 100 + ((140 + 8) >> 4) = 109 -> black, and so on: all of the
    // error of four neighbours is no more than 20.
    EXPECT_EQ(MapGray(Bytes(30, 100), 6, 5, {0, 255}, 1, 20), Bytes(30, 0));
    // 128 is the first level nearer to white: nine more levels are what a neighbour hands on.
    EXPECT_EQ(MapGray({120, 115}, 2, 1, {0, 255}, 1, 20), (Bytes{0, 0}));  // 115 + 9
    EXPECT_EQ(MapGray({120, 119}, 2, 1, {0, 255}, 1, 20), (Bytes{0, 1}));  // 119 + 9
}

TEST(PaletteDither, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 width : {1u, 2u, 21u}) {
                for (const u32 colors : {1u, 3u, 256u}) {
                    SCOPE(int(flush), width, colors);
                    zlvtest::GuardedBuffer source(size_t(width) * 3 * 5, flush, 90);
                    zlvtest::GuardedBuffer destination(size_t(width) * 5, flush, 255);
                    zlvtest::GuardedBuffer palette(size_t(colors) * 4, flush, 80);
                    EXPECT_EQ(MV40_RGBTo8BitDithered(source.Data(), width, 5, width * 3, destination.Data(), width,
                                                     colors, palette.Data(), 1, 20, 0),
                              1u);
                    EXPECT_EQ(Bytes(destination.Data(), destination.Data() + destination.Size()),
                              Bytes(destination.Size(), 0));
                }
            }
        }
    });
}

TEST(PaletteDither, ReportsEveryRow)
{
    for (const u32 width : {0u, 1u, 6u}) {
        SCOPE(width);
        const TestPicture picture(PictureKind::Noise, width, 4, 1);
        const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 9, 3);
        Bytes got = BlankIndices(picture);
        const Recording recording;
        EXPECT_EQ(Map(picture, got, palette, {9, 1, 20, 0}), 1u);
        EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(4, 4));
        EXPECT_EQ(got, Twin(picture, palette, {9, 1, 20, 0}));
    }
}

TEST(PaletteDither, ACancelKeepsTheRowsDone)
{
    const TestPicture picture(PictureKind::Noise, 6, 4, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 9, 3);
    const Bytes all = Twin(picture, palette, {9, 1, 20, 0});
    for (u32 cancelAt = 1; cancelAt <= 4; ++cancelAt) {
        SCOPE(cancelAt);
        Bytes wanted = BlankIndices(picture), got = wanted;
        std::copy_n(all.begin(), cancelAt * (6 + kIndexPadding), wanted.begin());
        const Recording recording(cancelAt);
        EXPECT_EQ(Map(picture, got, palette, {9, 1, 20, 0}), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(cancelAt, 4));
        EXPECT_EQ(got, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(PaletteDither, RefusalsWriteNothing)
{
    for (const auto& row : zlvtest::kMissingPointers) {
        SCOPE(row.shows);
        const Bytes pixels(12, 1), palette(16, 1);
        Bytes indices(4, 77);
        EXPECT_EQ(MV40_RGBTo8BitDithered(row.hasSource ? pixels.data() : nullptr, 2, 2, 6,
                                         row.hasDestination ? indices.data() : nullptr, 2, 4,
                                         row.hasPalette ? palette.data() : nullptr, 1, 20, 0),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(indices, Bytes(4, 77));
    }
}

TEST(PaletteDither, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();
    const TestPicture picture(PictureKind::Noise, 6, 4, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 9, 3);
    for (const u32 succeeding : {0u, 1u}) {
        SCOPE(succeeding);
        Bytes got = BlankIndices(picture);
        {
            const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(Map(picture, got, palette, {9, 1, 20, 0}), 0u);
        }
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(got, BlankIndices(picture));
    }
}

TEST(PaletteDither, NothingToDoNeedsNoMemory)
{
    (void)MV40_GetLastError();
    const Bytes pixels(4), palette(4);
    Bytes indices(4, 77);
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(MV40_RGBTo8BitDithered(pixels.data(), 0xFFFFFFFF, 0, 0, indices.data(), 0, 1, palette.data(), 1, 20, 0),
              1u);
    EXPECT_EQ(MV40_RGBTo8BitDithered(pixels.data(), 0, 3, 0, indices.data(), 0, 1, palette.data(), 1, 20, 0), 1u);
    EXPECT_EQ(indices, Bytes(4, 77));
}

}  // namespace
}  // namespace zlv
