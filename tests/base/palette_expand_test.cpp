#include "base/palette_support.h"
#include "plain/plain_palette.h"
#include "support/guarded_buffer.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Recording;

TEST(PaletteExpand, EqualsPlain)
{
    const Bytes palette = zlvtest::RandomBytes(1024, 1);
    for (const u32 width : {0u, 1u, 2u, 3u, 15u, 16u, 17u, 100u}) {
        for (const u32 height : {0u, 1u, 2u, 5u}) {
            for (const u32 flags : {0u, kSameComponentOrder, 0xFFFFFFFEu}) {
                SCOPE(width, height, flags);
                const u32 sourceStride = width + 3, destStride = 3 * width + 2;
                const Bytes indices = zlvtest::RandomBytes(size_t(sourceStride) * height + 1, width);
                Bytes wanted(size_t(destStride) * height + 1, 77), got = wanted;
                PlainExpand(indices.data(), width, height, sourceStride, wanted.data(), destStride, palette.data(),
                            flags & 1);
                // The count of colours is not looked at.
                EXPECT_EQ(MV40_8BitToRGB(indices.data(), width, height, sourceStride, got.data(), destStride, flags,
                                         palette.data(), flags),
                          1u);
                EXPECT_EQ(MV40_GetLastError(), 0u);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
            }
        }
    }
}

TEST(PaletteExpand, FlagBitZeroTakesTheBytesInTheirOrder)
{
    const Bytes palette = {1, 2, 3, 4};
    const u8 index = 0;
    Bytes pixel(3, 0);
    EXPECT_EQ(MV40_8BitToRGB(&index, 1, 1, 1, pixel.data(), 3, 1, palette.data(), 0), 1u);
    EXPECT_EQ(pixel, (Bytes{3, 2, 1}));
    EXPECT_EQ(MV40_8BitToRGB(&index, 1, 1, 1, pixel.data(), 3, 1, palette.data(), kSameComponentOrder), 1u);
    EXPECT_EQ(pixel, (Bytes{1, 2, 3}));
}

// A palette of two entries serves indices 0 and 1.
TEST(PaletteExpand, StaysInsideItsBuffers)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        for (const u32 width : {1u, 2u, 9u, 40u}) {
            SCOPE(int(flush), width);
            zlvtest::GuardedBuffer source(size_t(width) * 4, flush, 1);
            zlvtest::GuardedBuffer destination(size_t(width) * 3 * 4, flush);
            zlvtest::GuardedBuffer palette(8, flush, 60);
            EXPECT_EQ(
                MV40_8BitToRGB(source.Data(), width, 4, width, destination.Data(), width * 3, 2, palette.Data(), 0),
                1u);
            EXPECT_EQ(Bytes(destination.Data(), destination.Data() + destination.Size()),
                      Bytes(destination.Size(), 60));
        }
    }
}

TEST(PaletteExpand, ReportsEveryRow)
{
    const Bytes indices(20, 0), palette(4, 9);
    for (const u32 width : {0u, 4u}) {
        SCOPE(width);
        Bytes pixels(60);
        const Recording recording;
        EXPECT_EQ(MV40_8BitToRGB(indices.data(), width, 5, 4, pixels.data(), 12, 1, palette.data(), 0), 1u);
        EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(5, 5));
    }
}

TEST(PaletteExpand, ACancelKeepsTheRowsDone)
{
    const Bytes indices(6, 0), palette(4, 9);
    for (u32 cancelAt = 1; cancelAt <= 3; ++cancelAt) {
        SCOPE(cancelAt);
        Bytes got(18, 77), wanted(18, 77);
        std::fill_n(wanted.begin(), 6 * cancelAt, u8(9));
        const Recording recording(cancelAt);
        EXPECT_EQ(MV40_8BitToRGB(indices.data(), 2, 3, 2, got.data(), 6, 1, palette.data(), 0), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(cancelAt, 3));
        EXPECT_EQ(got, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(PaletteExpand, RefusalsWriteNothing)
{
    for (const auto& row : zlvtest::kMissingPointers) {
        SCOPE(row.shows);
        const Bytes indices(4, 0), palette(4, 1);
        Bytes pixels(12, 77);
        EXPECT_EQ(MV40_8BitToRGB(row.hasSource ? indices.data() : nullptr, 2, 2, 2,
                                 row.hasDestination ? pixels.data() : nullptr, 6, 1,
                                 row.hasPalette ? palette.data() : nullptr, 0),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(pixels, Bytes(12, 77));
    }
}

}  // namespace
}  // namespace zlv
