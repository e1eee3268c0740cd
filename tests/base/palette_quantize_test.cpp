#include "base/palette_support.h"
#include "plain/plain_palette.h"
#include "plain/plain_quantizers.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

using zlvtest::BlankIndices;
using zlvtest::Bytes;
using zlvtest::DitherSettings;
using zlvtest::kIndexPadding;
using zlvtest::PictureKind;
using zlvtest::Recording;
using zlvtest::Report;
using zlvtest::TestPicture;

struct Result {
    Bytes indices, palette;

    explicit Result(const TestPicture& picture) : indices(BlankIndices(picture)), palette(zlvtest::RandomBytes(1024, 1))
    {
    }
};

u32 Quantize(const TestPicture& picture, Result& result, const DitherSettings& settings)
{
    return MV40_QuantizeRGBTo8Bit(picture.bytes.data(), picture.width, picture.height, picture.stride,
                                  result.indices.data(), picture.width + kIndexPadding, settings.colors,
                                  result.palette.data(), settings.ditherKind, settings.limit, settings.flags);
}

// Finds the palette alone; returns how many of its entries are colours of the picture.
size_t TwinPalette(const TestPicture& picture, Bytes& palette, const DitherSettings& settings)
{
    const auto search = settings.flags & kIncrementalOctree ? PlainQuantizeIncrementally : PlainQuantizeByPopulation;
    return search(picture.bytes.data(), picture.width, picture.height, picture.stride, settings.colors, palette.data(),
                  settings.flags);
}

void Twin(const TestPicture& picture, Result& result, const DitherSettings& settings)
{
    TwinPalette(picture, result.palette, settings);
    PlainDither(picture.bytes.data(), picture.width, picture.height, picture.stride, result.indices.data(),
                picture.width + kIndexPadding, settings.colors, result.palette.data(), settings.ditherKind,
                settings.limit, settings.flags & 1);
}

void ExpectPlain(const TestPicture& picture, const DitherSettings& settings)
{
    Result wanted(picture);
    Twin(picture, wanted, settings);
    zlvtest::OnEveryTarget([&] {
        Result got(picture);
        EXPECT_EQ(Quantize(picture, got, settings), 1u);
        EXPECT_EQ(MV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wanted.palette.data(), got.palette.data(), 1024), "");
        EXPECT_EQ(zlvtest::Difference(wanted.indices.data(), got.indices.data(), got.indices.size()), "");
    });
}

TEST(Quantize, EveryPictureAndCountEqualsPlain)
{
    zlvtest::ForEveryKind<PictureKind>([](PictureKind kind) {
        for (const u32 colors : {1u, 2u, 3u, 7u, 8u, 16u, 100u, 255u, 256u}) {
            for (const u32 flags : {0u, kIncrementalOctree}) {
                SCOPE(NameOf(kind), colors, flags);
                ExpectPlain(TestPicture(kind, 70, 41, colors), {colors, 1, 20, flags});
            }
        }
    });
}

TEST(Quantize, EveryFlagEqualsPlain)
{
    for (u32 flags = 0; flags < 16; ++flags) {
        for (const u32 ditherKind : {0u, 1u}) {
            SCOPE(flags, ditherKind);
            ExpectPlain(TestPicture(PictureKind::Noise, 50, 30, flags, 4), {30, ditherKind, 60, flags});
            ExpectPlain(TestPicture(PictureKind::FewColors, 50, 30, flags, 4), {30, ditherKind, 60, flags});
        }
    }
}

TEST(Quantize, ManyPixelsEqualPlain)
{
    for (const u32 flags : {0u, kIncrementalOctree}) {
        SCOPE(flags);
        ExpectPlain(TestPicture(PictureKind::Noise, 400, 300, 3), {256, 1, 20, flags});
        ExpectPlain(TestPicture(PictureKind::Gradient, 400, 300, 3), {64, 0, 127, flags});
    }
}

TEST(Quantize, EverySizeEqualsPlain)
{
    for (const u32 width : {0u, 1u, 2u, 9u}) {
        for (const u32 height : {0u, 1u, 2u, 5u}) {
            for (const u32 flags : {0u, kIncrementalOctree}) {
                SCOPE(width, height, flags);
                ExpectPlain(TestPicture(PictureKind::Noise, width, height, 3), {4, 1, 20, flags});
            }
        }
    }
}

// ---- By hand ---------------------------------------------------------------------------------------------------

// Pixels of three components in one row; the palette's entries as they stand in memory, without their fourth bytes.
Bytes PaletteOf(const Bytes& pixels, u32 colors, u32 flags, u32 entries)
{
    Bytes palette(1024, 99), indices(pixels.size() / 3), found;
    EXPECT_EQ(MV40_QuantizeRGBTo8Bit(pixels.data(), u32(pixels.size() / 3), 1, u32(pixels.size()), indices.data(),
                                     u32(pixels.size() / 3), colors, palette.data(), 0, 0, flags),
              1u);
    for (u32 i = 0; i < entries; ++i) {
        found.insert(found.end(), palette.begin() + 4 * i, palette.begin() + 4 * i + 3);
        EXPECT_EQ(palette[4 * i + 3], 99) << "the fourth byte stays";
    }
    return found;
}

TEST(Quantize, FewerCellsThanColorsAreNotReduced)
{
    // Two pixels in the lowest cell, 1 and 2 on average 1.5, one in the highest: it comes first.
    const Bytes pixels = {1, 1, 0, 255, 254, 253, 2, 1, 0};
    EXPECT_EQ(PaletteOf(pixels, 4, 0, 3), (Bytes{253, 254, 255, 0, 1, 2, 0, 0, 0}));
    EXPECT_EQ(PaletteOf(pixels, 4, kSameComponentOrder, 3), (Bytes{255, 254, 253, 2, 1, 0, 0, 0, 0}));
    // As many as there are.
    EXPECT_EQ(PaletteOf(pixels, 2, 0, 2), (Bytes{253, 254, 255, 0, 1, 2}));
}

TEST(Quantize, AveragesAreRoundedByPopulationAndTruncatedIncrementally)
{
    const Bytes pixels = {0, 0, 0, 0, 1, 3};
    EXPECT_EQ(PaletteOf(pixels, 1, 0, 1), (Bytes{2, 1, 0}));
    EXPECT_EQ(PaletteOf(pixels, 1, kIncrementalOctree, 1), (Bytes{1, 0, 0}));
}

TEST(Quantize, NoColorsAreOne)
{
    const TestPicture picture(PictureKind::Noise, 20, 9, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        SCOPE(flags);
        Result wanted(picture), got(picture);
        Twin(picture, wanted, {1, 1, 20, flags});
        EXPECT_EQ(Quantize(picture, got, {0, 1, 20, flags}), 1u);
        EXPECT_EQ(got.palette, wanted.palette);
        EXPECT_EQ(got.indices, wanted.indices);
    }
}

TEST(Quantize, MoreThan256ColorsAre256)
{
    const TestPicture picture(PictureKind::Noise, 40, 30, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        Result wanted(picture);
        Twin(picture, wanted, {256, 1, 20, flags});
        for (const u32 colors : {257u, 0xFFFFFFFFu}) {
            SCOPE(flags, colors);
            Result got(picture);
            EXPECT_EQ(Quantize(picture, got, {colors, 1, 20, flags}), 1u);
            EXPECT_EQ(got.palette, wanted.palette);
            EXPECT_EQ(got.indices, wanted.indices);
        }
    }
}

// One pixel each in three corners of the cube. The heap's top is the lowest cell: a tie keeps it there up to the root,
// whose population of 3 sinks below the left of the two others. That one follows into the root; the right one is left.
TEST(Quantize, ATieKeepsTheParentInPlaceAndPrefersTheLeftChild)
{
    const Bytes pixels = {0, 0, 0, 0, 0, 255, 255, 255, 255};
    EXPECT_EQ(PaletteOf(pixels, 2, 0, 2), (Bytes{255, 255, 255, 128, 0, 0}));
}

// The rarest goes first whatever its distance. The white pixel's branch is the smallest up to the root, which is a
// colour then. There is one too many still: 8 is folded into the parent that it shares with 0. The three pixels of 0
// are fewer than the five below that parent, and join it.
TEST(Quantize, AColorMayHaveChildrenThatAreColors)
{
    const Bytes pixels = {255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 8, 8, 8, 8, 8};
    EXPECT_EQ(PaletteOf(pixels, 3, 0, 3), (Bytes{255, 255, 255, 8, 8, 8, 0, 0, 0}));
    EXPECT_EQ(PaletteOf(pixels, 2, 0, 2), (Bytes{3, 3, 3, 255, 255, 255}));
}

TEST(Quantize, UnusedEntriesAreBlackAndCanBeChosen)
{
    // 2 and 7 share a cell and come to 5. 2 is the first, and nearer to the black of entry 1: so it is for the cell.
    const Bytes pixels = {2, 2, 2, 7, 7, 7};
    Bytes indices(2), palette(1024, 99);
    EXPECT_EQ(MV40_QuantizeRGBTo8Bit(pixels.data(), 2, 1, 6, indices.data(), 2, 2, palette.data(), 0, 0, 0), 1u);
    EXPECT_EQ(palette[0], 5);
    EXPECT_EQ(indices, (Bytes{1, 1}));
    for (u32 i = 1; i < 256; ++i) {
        for (u32 c = 0; c < 3; ++c) EXPECT_EQ(palette[4 * i + c], 0);
    }
    // A transparent picture counts nothing: all is black, the first entry is as near as any.
    const Bytes transparent(16, 7);
    Bytes four(4, 77);
    std::fill(palette.begin(), palette.end(), u8(99));
    EXPECT_EQ(
        MV40_QuantizeRGBTo8Bit(transparent.data(), 4, 1, 16, four.data(), 4, 2, palette.data(), 1, 0, kSkipTransparent),
        1u);
    EXPECT_EQ(four, Bytes(4, 0));
    EXPECT_EQ(palette[0], 0);
    EXPECT_EQ(palette[3], 99);
}

TEST(Quantize, AFourthByteOfEightCounts)
{
    const Bytes pixels = {200, 200, 200, 8, 10, 10, 10, 7};
    Bytes palette(1024), indices(2);
    EXPECT_EQ(
        MV40_QuantizeRGBTo8Bit(pixels.data(), 2, 1, 8, indices.data(), 2, 1, palette.data(), 0, 0, kSkipTransparent),
        1u);
    EXPECT_EQ(palette[0], 200);
    EXPECT_EQ(
        MV40_QuantizeRGBTo8Bit(pixels.data(), 2, 1, 8, indices.data(), 2, 1, palette.data(), 0, 0, kFourBytePixels),
        1u);
    EXPECT_EQ(palette[0], 105);
    EXPECT_EQ(MV40_QuantizeRGBTo8Bit(pixels.data(), 2, 1, 8, indices.data(), 2, 1, palette.data(), 0, 0,
                                     kIncrementalOctree | kFourBytePixels | kSkipTransparent),
              1u);
    EXPECT_EQ(palette[0], 105) << "the incremental octree skips nothing";
}

// The incremental octree knows nothing of the skipping flag: its pixels have three bytes then.
TEST(Quantize, TheSkippingFlagAloneLeavesThreeBytesToTheIncrementalOctree)
{
    const Bytes pixels = {10, 20, 30, 10, 20, 30};
    EXPECT_EQ(PaletteOf(pixels, 2, kIncrementalOctree | kSkipTransparent, 1), (Bytes{30, 20, 10}));
}

TEST(Quantize, TheIncrementalOctreeWritesOnlyWhatItFinds)
{
    const Bytes pixels = {255, 0, 0, 0, 0, 255};
    EXPECT_EQ(PaletteOf(pixels, 4, kIncrementalOctree, 3), (Bytes{255, 0, 0, 0, 0, 255, 99, 99, 99}));
    EXPECT_EQ(PaletteOf(pixels, 4, kIncrementalOctree | kSameComponentOrder, 3),
              (Bytes{255, 0, 0, 0, 0, 255, 99, 99, 99}))
        << "either order of components is the palette's own in memory";
}

TEST(Quantize, TheIncrementalOctreeReducesTheDeepestNodeMadeLast)
{
    // 0 and 1 part at the last level, in the node made first; so do 254 and 255, in the one made last. With three
    // colours the fourth pixel makes the latter a leaf: 254 and 255 come to 254.
    const Bytes pixels = {0, 0, 0, 1, 1, 1, 254, 254, 254, 255, 255, 255};
    EXPECT_EQ(PaletteOf(pixels, 3, kIncrementalOctree, 3), (Bytes{0, 0, 0, 1, 1, 1, 254, 254, 254}));
}

// ---- Reports, refusals, memory -------------------------------------------------------------------------------------

std::vector<Report> AllReports(u32 height, u32 flags)
{
    std::vector<Report> reports = flags & kIncrementalOctree ? zlvtest::Rows(height, height) : zlvtest::Rows(4, 4);
    for (const Report& report : zlvtest::Rows(height, height)) reports.push_back(report);
    return reports;
}

TEST(Quantize, ReportsTheSearchThenTheMapping)
{
    for (const u32 flags : {0u, kIncrementalOctree}) {
        for (const u32 width : {0u, 5u}) {
            SCOPE(flags, width);
            const TestPicture picture(PictureKind::Noise, width, 3, 1);
            Result wanted(picture), got(picture);
            Twin(picture, wanted, {16, 1, 20, flags});
            const Recording recording;
            EXPECT_EQ(Quantize(picture, got, {16, 1, 20, flags}), 1u);
            EXPECT_EQ(recording.recorder.reports, AllReports(3, flags));
            EXPECT_EQ(got.palette, wanted.palette);
            EXPECT_EQ(got.indices, wanted.indices);
        }
    }
}

TEST(Quantize, ACancelWhileItSearchesWritesNothing)
{
    const TestPicture picture(PictureKind::Noise, 5, 3, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        const u32 reports = flags & kIncrementalOctree ? 3 : 4;
        for (u32 cancelAt = 1; cancelAt <= reports; ++cancelAt) {
            SCOPE(flags, cancelAt);
            Result got(picture);
            const Recording recording(cancelAt);
            EXPECT_EQ(Quantize(picture, got, {16, 1, 20, flags}), 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
            EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(cancelAt, reports));
            EXPECT_EQ(got.palette, Result(picture).palette);
            EXPECT_EQ(got.indices, Result(picture).indices);
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(Quantize, ACancelWhileItMapsKeepsThePaletteAndTheRowsDone)
{
    const TestPicture picture(PictureKind::Noise, 5, 3, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        const u32 reports = flags & kIncrementalOctree ? 3 : 4;
        Result all(picture);
        Twin(picture, all, {16, 1, 20, flags});
        for (u32 row = 0; row < 3; ++row) {
            SCOPE(flags, row);
            Result got(picture), wanted(picture);
            std::copy_n(all.indices.begin(), (row + 1) * (5 + kIndexPadding), wanted.indices.begin());
            const Recording recording(reports + row + 1);
            EXPECT_EQ(Quantize(picture, got, {16, 1, 20, flags}), 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
            EXPECT_EQ(recording.recorder.reports.size(), reports + row + 1);
            EXPECT_EQ(got.palette, all.palette);
            EXPECT_EQ(got.indices, wanted.indices);
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(Quantize, AsAStepItIsSilent)
{
    const TestPicture picture(PictureKind::Noise, 5, 3, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        SCOPE(flags);
        Result got(picture);
        const Recording recording(1);
        MVThreadContext& context = *baseContexts.Get();
        ++context.nestCount;
        EXPECT_EQ(Quantize(picture, got, {16, 1, 20, flags}), 1u);
        --context.nestCount;
        EXPECT_TRUE(recording.recorder.reports.empty());
    }
}

TEST(Quantize, RefusalsWriteNothing)
{
    for (const u32 flags : {0u, kIncrementalOctree}) {
        for (const auto& row : zlvtest::kMissingPointers) {
            SCOPE(row.shows, flags);
            const Bytes pixels(12, 1);
            Bytes indices(4, 77), palette(1024, 77);
            const Recording recording;
            EXPECT_EQ(MV40_QuantizeRGBTo8Bit(row.hasSource ? pixels.data() : nullptr, 2, 2, 6,
                                             row.hasDestination ? indices.data() : nullptr, 2, 4,
                                             row.hasPalette ? palette.data() : nullptr, 1, 20, flags),
                      0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
            EXPECT_EQ(indices, Bytes(4, 77));
            EXPECT_EQ(palette, Bytes(1024, 77));
            EXPECT_TRUE(recording.recorder.reports.empty());
        }
    }
}

TEST(Quantize, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();
    const TestPicture picture(PictureKind::Noise, 6, 4, 1);
    for (const u32 flags : {0u, kIncrementalOctree}) {
        const u32 ofTheSearch = flags & kIncrementalOctree ? 2 : 1;
        for (u32 succeeding = 0; succeeding < ofTheSearch + 2; ++succeeding) {
            SCOPE(flags, succeeding);
            Result got(picture), wanted(picture);
            if (succeeding >= ofTheSearch) TwinPalette(picture, wanted.palette, {9, 1, 20, flags});
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                EXPECT_EQ(Quantize(picture, got, {9, 1, 20, flags}), 0u);
            }
            EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
            EXPECT_EQ(got.palette, wanted.palette);
            EXPECT_EQ(got.indices, wanted.indices);
        }
    }
}

// Missing memory for the population ends the search without a code and before its second report; it is the mapping
// that fails.
TEST(Quantize, WithoutMemoryForThePopulationTheSearchEndsSilently)
{
    const TestPicture picture(PictureKind::Noise, 6, 4, 1);
    Result got(picture);
    const Recording recording;
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(Quantize(picture, got, {}), 0u);
    }
    EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(1, 4));
    EXPECT_EQ(got.palette, Result(picture).palette);
}

TEST(Quantize, StaysInsideItsBuffers)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        for (const u32 width : {1u, 21u}) {
            for (u32 flags = 0; flags < 16; ++flags) {
                for (const u32 colors : {1u, 3u, 256u}) {
                    SCOPE(int(flush), width, flags, colors);
                    const bool isIncremental = flags & kIncrementalOctree;
                    const u32 stride = width * 4;
                    zlvtest::GuardedBuffer source(size_t(stride) * 5, flush, 90);
                    zlvtest::GuardedBuffer destination(size_t(width) * 5, flush, 255);
                    zlvtest::GuardedBuffer palette(isIncremental ? size_t(colors) * 4 : 1024, flush, 80);
                    EXPECT_EQ(MV40_QuantizeRGBTo8Bit(source.Data(), width, 5, stride, destination.Data(), width, colors,
                                                     palette.Data(), 1, 20, flags),
                              1u);
                }
            }
        }
    }
}

}  // namespace
}  // namespace zlv
