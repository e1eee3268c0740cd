#include "base/palette_support.h"
#include "plain/plain_palette.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

using zlvtest::BlankIndices;
using zlvtest::Bytes;
using zlvtest::kIndexPadding;
using zlvtest::PaletteKind;
using zlvtest::PictureKind;
using zlvtest::Recording;
using zlvtest::TestPicture;

// Pictures from this size on are mapped with a grid.
constexpr u32 kLargeWidth = 163, kLargeHeight = 103;
u32 Map(const TestPicture& picture, Bytes& indices, const Bytes& palette, u32 colors, u32 flags)
{
    return MV40_RGBTo8BitBestFit(picture.bytes.data(), picture.width, picture.height, picture.stride, indices.data(),
                                 picture.width + kIndexPadding, colors, palette.data(), flags);
}

Bytes Twin(const TestPicture& picture, const Bytes& palette, u32 colors, u32 flags)
{
    Bytes indices = BlankIndices(picture);
    PlainBestFit(picture.bytes.data(), picture.width, picture.height, picture.stride, indices.data(),
                 picture.width + kIndexPadding, colors, palette.data(), flags & 1);
    return indices;
}

void ExpectPlain(const TestPicture& picture, const Bytes& palette, u32 colors, u32 flags)
{
    const Bytes wanted = Twin(picture, palette, colors, flags);
    zlvtest::OnEveryTarget([&] {
        Bytes got = BlankIndices(picture);
        EXPECT_EQ(Map(picture, got, palette, colors, flags), 1u);
        EXPECT_EQ(MV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    });
}

TEST(BestFit, EveryPaletteEqualsPlain)
{
    zlvtest::ForEveryKind<PaletteKind>([](PaletteKind kind) {
        for (const u32 colors : {1u, 2u, 5u, 15u, 16u, 17u, 100u, 256u}) {
            for (const u32 flags : {0u, kSameComponentOrder}) {
                SCOPE(NameOf(kind), colors, flags);
                const Bytes palette = zlvtest::MakePalette(kind, colors, colors);
                ExpectPlain(TestPicture(PictureKind::Noise, 40, 11, colors), palette, colors, flags);
                ExpectPlain(TestPicture(PictureKind::Noise, kLargeWidth, kLargeHeight, 1), palette, colors, flags);
            }
        }
    });
}

TEST(BestFit, EveryPictureEqualsPlain)
{
    zlvtest::ForEveryKind<PictureKind>([](PictureKind pictureKind) {
        zlvtest::ForEveryKind<PaletteKind>([&](PaletteKind kind) {
            SCOPE(NameOf(pictureKind), NameOf(kind));
            const Bytes palette = zlvtest::MakePalette(kind, 256, 9);
            ExpectPlain(TestPicture(pictureKind, kLargeWidth, kLargeHeight, 2), palette, 256, 0);
        });
    });
}

// Every colour of some cells: the corners, where candidates change over, among them.
TEST(BestFit, EveryColorOfACellEqualsPlain)
{
    zlvtest::ForEveryKind<PaletteKind>([](PaletteKind kind) {
        for (const u32 seed : {1u, 2u, 3u}) {
            SCOPE(NameOf(kind), seed);
            TestPicture picture(PictureKind::Noise, 512, 40, seed, 3, 0);
            zlvtest::Random random(seed);
            for (u32 y = 0; y < picture.height; ++y) {
                const u32 cell = random.Below(32768);
                for (u32 x = 0; x < 512; ++x) {
                    for (u32 c = 0; c < 3; ++c) {
                        picture.bytes[(size_t(y) * 512 + x) * 3 + c] = u8((cell >> 5 * c & 31) * 8 + (x >> 3 * c & 7));
                    }
                }
            }
            ExpectPlain(picture, zlvtest::MakePalette(kind, 256, seed), 256, 0);
        }
    });
}

TEST(BestFit, EveryWidthEqualsPlain)
{
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 37, 4);
    for (const u32 width : {1u, 2u, 3u, 15u, 16u, 17u, 65u, 300u}) {
        for (const u32 height : {1u, 2u, 7u, 60u}) {
            SCOPE(width, height);
            ExpectPlain(TestPicture(PictureKind::Noise, width, height, width), palette, 37, 0);
        }
    }
}

TEST(BestFit, NoEntriesMakeEveryIndexZero)
{
    const Bytes palette(4, 1);
    ExpectPlain(TestPicture(PictureKind::Noise, 9, 4, 1), palette, 0, 0);
    ExpectPlain(TestPicture(PictureKind::Noise, kLargeWidth, kLargeHeight, 1), palette, 0, 0);
}

TEST(BestFit, FlagBitZeroPairsTheFirstComponentWithByteZero)
{
    const Bytes palette = {200, 0, 0, 0, 0, 0, 200, 0};
    const Bytes pixel = {200, 0, 0};
    u8 index = 9;
    EXPECT_EQ(MV40_RGBTo8BitBestFit(pixel.data(), 1, 1, 3, &index, 1, 2, palette.data(), 0), 1u);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(MV40_RGBTo8BitBestFit(pixel.data(), 1, 1, 3, &index, 1, 2, palette.data(), kSameComponentOrder), 1u);
    EXPECT_EQ(index, 0);
}

TEST(BestFit, OtherFlagsChangeNothing)
{
    const TestPicture picture(PictureKind::Noise, 20, 4, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 50, 1);
    Bytes got = BlankIndices(picture);
    EXPECT_EQ(Map(picture, got, palette, 50, 0xFFFFFFFE), 1u);
    EXPECT_EQ(got, Twin(picture, palette, 50, 0));
}

TEST(BestFit, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 width : {1u, 21u, 200u}) {
                for (const u32 colors : {1u, 3u, 17u, 256u}) {
                    SCOPE(int(flush), width, colors);
                    const u32 height = width;
                    zlvtest::GuardedBuffer source(size_t(width) * 3 * height, flush, 90);
                    zlvtest::GuardedBuffer destination(size_t(width) * height, flush, 255);
                    zlvtest::GuardedBuffer palette(size_t(colors) * 4, flush, 80);
                    EXPECT_EQ(MV40_RGBTo8BitBestFit(source.Data(), width, height, width * 3, destination.Data(), width,
                                                    colors, palette.Data(), 0),
                              1u);
                    EXPECT_EQ(Bytes(destination.Data(), destination.Data() + destination.Size()),
                              Bytes(destination.Size(), 0));
                }
            }
        }
    });
}

// Every pixel tells the row: a row comes as many times as it is wide.
std::vector<zlvtest::Report> PixelReports(u32 width, u32 height)
{
    std::vector<zlvtest::Report> reports;
    for (u32 y = 0; y < height; ++y) reports.insert(reports.end(), width, {y, height});
    return reports;
}

TEST(BestFit, ReportsEveryPixel)
{
    for (const u32 width : {0u, 1u, 4u}) {
        for (const u32 height : {0u, 1u, 3u}) {
            SCOPE(width, height);
            const TestPicture picture(PictureKind::Noise, width, height, 1);
            const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 9, 1);
            Bytes got = BlankIndices(picture);
            const Recording recording;
            EXPECT_EQ(Map(picture, got, palette, 9, 0), 1u);
            EXPECT_EQ(recording.recorder.reports, PixelReports(width, height));
            EXPECT_EQ(got, Twin(picture, palette, 9, 0));
        }
    }
}

TEST(BestFit, ALargePictureIsTheSameWithAListener)
{
    const TestPicture picture(PictureKind::Gradient, kLargeWidth, kLargeHeight, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Lattice, 256, 1);
    Bytes got = BlankIndices(picture);
    const Recording recording;
    EXPECT_EQ(Map(picture, got, palette, 256, 0), 1u);
    EXPECT_EQ(recording.recorder.reports, PixelReports(kLargeWidth, kLargeHeight));
    EXPECT_EQ(got, Twin(picture, palette, 256, 0));
}

TEST(BestFit, ACancelKeepsThePixelsDone)
{
    const TestPicture picture(PictureKind::Noise, 5, 3, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 200, 1);
    const Bytes all = Twin(picture, palette, 200, 0);
    for (u32 cancelAt = 1; cancelAt <= 15; ++cancelAt) {
        SCOPE(cancelAt);
        Bytes wanted = BlankIndices(picture);
        for (u32 i = 0; i < cancelAt; ++i) {
            const size_t place = i / 5 * (5 + kIndexPadding) + i % 5;
            wanted[place] = all[place];
        }
        Bytes got = BlankIndices(picture);
        {
            const Recording recording(cancelAt);
            EXPECT_EQ(Map(picture, got, palette, 200, 0), 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
            EXPECT_EQ(recording.recorder.reports.size(), cancelAt);
        }
        EXPECT_EQ(got, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(BestFit, AsAStepItIsSilent)
{
    const TestPicture picture(PictureKind::Noise, 5, 3, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 20, 1);
    Bytes got = BlankIndices(picture);
    const Recording recording(1);
    MVThreadContext& context = *baseContexts.Get();
    ++context.nestCount;
    EXPECT_EQ(Map(picture, got, palette, 20, 0), 1u);
    --context.nestCount;
    EXPECT_TRUE(recording.recorder.reports.empty());
    EXPECT_EQ(got, Twin(picture, palette, 20, 0));
}

const struct {
    const char* shows;
    bool hasSource, hasDestination, hasPalette;
    u32 colors;
} kRefusals[] = {
    {"a null source", false, true, true, 4},
    {"a null destination", true, false, true, 4},
    {"a null palette", true, true, false, 4},
    {"a null palette without entries", true, true, false, 0},
    {"more than 256 colours", true, true, true, 257},
    {"as many colours as there are numbers", true, true, true, 0xFFFFFFFF},
};

TEST(BestFit, RefusalsWriteNothing)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        const Bytes pixels(12, 1), palette(16, 1);
        Bytes indices(4, 77);
        EXPECT_EQ(MV40_RGBTo8BitBestFit(row.hasSource ? pixels.data() : nullptr, 2, 2, 6,
                                        row.hasDestination ? indices.data() : nullptr, 2, row.colors,
                                        row.hasPalette ? palette.data() : nullptr, 0),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(indices, Bytes(4, 77));
    }
}

TEST(BestFit, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();
    const TestPicture picture(PictureKind::Noise, kLargeWidth, kLargeHeight, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 20, 1);
    Bytes got = BlankIndices(picture);
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(Map(picture, got, palette, 20, 0), 0u);
    }
    EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
    EXPECT_EQ(got, BlankIndices(picture));
}

TEST(BestFit, ASmallPictureNeedsNoMemory)
{
    (void)MV40_GetLastError();
    const TestPicture picture(PictureKind::Noise, 20, 20, 1);
    const Bytes palette = zlvtest::MakePalette(PaletteKind::Random, 20, 1);
    Bytes got = BlankIndices(picture);
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(Map(picture, got, palette, 20, 0), 1u);
}

}  // namespace
}  // namespace zlv
