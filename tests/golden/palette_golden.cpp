// Base layer: palettes, and the matcher of colours.
#include "base/color_matcher.h"
#include "base/palette.h"
#include "golden/golden.h"
#include "plain/plain_palette.h"
#include "plain/plain_quantizers.h"

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr std::size_t kPaletteAt = 4096;  // in the output, behind the indices

// 256 random entries in the output.
u8* PutPalette(GoldenPicture& p)
{
    const Bytes palette = RandomBytes(1024, 7);
    std::copy(palette.begin(), palette.end(), p.output.begin() + kPaletteAt);
    return p.output.data() + kPaletteAt;
}

GoldenRow QuantizeRow(const char* name, u32 channels, u32 colors, u32 ditherKind, u8 limit, u32 flags, u64 checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return MV40_QuantizeRGBTo8Bit(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth,
                                              colors, p.output.data() + kPaletteAt, ditherKind, limit, flags);
            },
            [=](GoldenPicture& p) {
                u8* const palette = p.output.data() + kPaletteAt;
                const auto search = flags & kIncrementalOctree ? PlainQuantizeIncrementally : PlainQuantizeByPopulation;
                search(p.image.data(), kWidth, kHeight, p.stride, colors, palette, flags);
                PlainDither(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth, colors, palette,
                            ditherKind, limit, flags & kSameComponentOrder);
            },
            checksum};
}

GoldenRow DitherRow(const char* name, u32 colors, u32 ditherKind, u8 limit, u32 flags, u64 checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return MV40_RGBTo8BitDithered(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth,
                                              colors, PutPalette(p), ditherKind, limit, flags);
            },
            [=](GoldenPicture& p) {
                PlainDither(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth, colors, PutPalette(p),
                            ditherKind, limit, flags & kSameComponentOrder);
            },
            checksum};
}

GoldenRow BestFitRow(const char* name, u32 colors, u32 flags, u64 checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return MV40_RGBTo8BitBestFit(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth, colors,
                                             PutPalette(p), flags);
            },
            [=](GoldenPicture& p) {
                PlainBestFit(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kWidth, colors, PutPalette(p),
                             flags & kSameComponentOrder);
            },
            checksum};
}

// Of the row's bytes the first 61 are taken as indices.
GoldenRow ExpandRow(const char* name, u32 flags, u64 checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                const Bytes palette = RandomBytes(1024, 7);
                return MV40_8BitToRGB(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, 256,
                                      palette.data(), flags);
            },
            [=](GoldenPicture& p) {
                const Bytes palette = RandomBytes(1024, 7);
                PlainExpand(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, palette.data(),
                            flags & kSameComponentOrder);
            },
            checksum};
}

GoldenRow MatcherRow(const char* name, u64 checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                ColorMatcherHandle* const handle = MV40_CreateColorMatcher(PutPalette(p), 256);
                for (u32 i = 0; i < 1000; ++i) {
                    const u8* const color = p.image.data() + 3 * i;
                    p.output[i] = u8(MV40_FindClosestColor(handle, color[0], color[1], color[2]));
                }
                return MV40_DestroyColorMatcher(handle);
            },
            [=](GoldenPicture& p) {
                const u8* const palette = PutPalette(p);
                for (u32 i = 0; i < 1000; ++i) {
                    const u8* const color = p.image.data() + 3 * i;
                    p.output[i] = u8(plain::NearestEntry(palette, 256, color[0], color[1], color[2]));
                }
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> PaletteGolden()
{
    return {
        QuantizeRow("QuantizeRGBTo8Bit, 256 colours", 3, 256, 1, 20, 0, 0xCE2F9FAECBCA4150),
        QuantizeRow("QuantizeRGBTo8Bit, 16 colours, halves, same order", 3, 16, 0, 127, kSameComponentOrder,
                    0xBF27AA0A9E940FC6),
        QuantizeRow("QuantizeRGBTo8Bit, four bytes, some transparent", 4, 100, 1, 60, kSkipTransparent,
                    0x1A56BED3DAB1E2CF),
        QuantizeRow("QuantizeRGBTo8Bit, incremental, 256 colours", 3, 256, 1, 20, kIncrementalOctree,
                    0x5C6E3D9766A876B0),
        QuantizeRow("QuantizeRGBTo8Bit, incremental, four bytes, 9 colours", 4, 9, 1, 20,
                    kIncrementalOctree | kFourBytePixels | kSameComponentOrder, 0x71094793D40EB323),
        DitherRow("RGBTo8BitDithered, 2 colours", 2, 1, 20, 0, 0x9FE8C669F8E1B28F),
        DitherRow("RGBTo8BitDithered, halves, no limit", 40, 0, 127, 0, 0x49F8CB9294760CE5),
        DitherRow("RGBTo8BitDithered, errors that wrap", 40, 1, 200, kSameComponentOrder, 0x94024EE037E8C091),
        BestFitRow("RGBTo8BitBestFit, 256 colours", 256, 0, 0xB35AB0D6B6B2D396),
        BestFitRow("RGBTo8BitBestFit, 8 colours, same order", 8, kSameComponentOrder, 0x8FC56C96153A1605),
        ExpandRow("8BitToRGB", 0, 0x71DF7CC3F3A65A9D),
        ExpandRow("8BitToRGB, same order", kSameComponentOrder, 0xF0937773195BF551),
        MatcherRow("FindClosestColor", 0x97AFD1A2FC723F5A),
    };
}

}  // namespace zlvtest
