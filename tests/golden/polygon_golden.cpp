// Base layer: polygons and convex hulls.
#include "base/convex.h"
#include "base/polygon_fill.h"
#include "base/polygon_fill_bits.h"
#include "base/polygon_scanlines.h"
#include "golden/golden.h"
#include "plain/plain_convex.h"
#include "plain/plain_polygon.h"

#include <cstring>

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// Concave, crossing itself, and sticking out on all sides.
const std::vector<PlainVertex> kPolygon = {{-7.3, 4.25},  {30.5, -9.75}, {75.125, 20},  {22.9, 12.5},
                                           {40.25, 44.5}, {3.0625, 30},  {58.5, 3.375}, {10, 10}};

std::vector<f64> Numbers(const std::vector<PlainVertex>& polygon)
{
    std::vector<f64> numbers;
    for (const PlainVertex& vertex : polygon) {
        numbers.push_back(vertex.x);
        numbers.push_back(vertex.y);
    }
    return numbers;
}

struct Style {
    bool hasPattern, hasPalette;
    f64 opacity;
    u32 flags;
};

constexpr u32 kColor = 0xB23A1E57;
constexpr u32 kTileWidth = 7, kTileHeight = 5, kPaletteCount = 200;

GoldenRow FillRow(const char* name, u32 channels, const Style& style, u64 checksum)
{
    const Bytes tile = RandomBytes(kTileWidth * channels * kTileHeight, 3);
    const Bytes palette = RandomBytes(kPaletteCount * 4, 4);
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return MV40_PolygonFillImage(
                    p.image.data(), kWidth, kHeight, channels, p.stride, Numbers(kPolygon).data(), u32(kPolygon.size()),
                    style.hasPattern ? tile.data() : nullptr, kTileWidth, kTileHeight, kTileWidth * channels, kColor,
                    style.opacity, style.hasPalette ? palette.data() : nullptr, kPaletteCount, style.flags);
            },
            [=](GoldenPicture& p) {
                const PlainFill fill = {style.hasPattern ? tile.data() : nullptr,
                                        kTileWidth,
                                        kTileHeight,
                                        kTileWidth * channels,
                                        kColor,
                                        style.opacity,
                                        style.hasPalette ? palette.data() : nullptr,
                                        kPaletteCount,
                                        (style.flags & kPolygonBlend) != 0,
                                        (style.flags & kPolygonSwapColor) != 0};
                if (style.flags & kPolygonAntialias) {
                    PlainFillAntialiased(p.image.data(), kWidth, kHeight, channels, p.stride, kPolygon, fill,
                                         style.flags & kPolygonFineSamples ? 16 : 4);
                } else {
                    PlainFillPolygon(p.image.data(), kWidth, kHeight, channels, p.stride, kPolygon, fill);
                }
            },
            checksum};
}

GoldenRow BitsRow(const char* name, u32 value, u64 checksum)
{
    constexpr u32 kBits = 4 * kWidth - 3;
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return MV40_PolygonFill1Bit(p.image.data(), kBits, kHeight, p.stride, Numbers(kPolygon).data(),
                                            u32(kPolygon.size()), value);
            },
            [=](GoldenPicture& p) {
                PlainFillBits(p.image.data(), kBits, kHeight, p.stride, kPolygon, value != 0, 1000000);
            },
            checksum};
}

// The spans, one after the other: row, then both crossings.
GoldenRow ScanlinesRow(const char* name, u64 checksum)
{
    const auto put = [](GoldenPicture& p, size_t i, i32 row, f64 left, f64 right) {
        if ((i + 1) * 20 > p.output.size()) return;
        std::memcpy(&p.output[i * 20], &row, 4);
        std::memcpy(&p.output[i * 20 + 4], &left, 8);
        std::memcpy(&p.output[i * 20 + 12], &right, 8);
    };
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                i32* rows = nullptr;
                f64 *lefts = nullptr, *rights = nullptr;
                u32 count = 0;
                const u32 result = MV40_GetPolygonScanlineArray(Numbers(kPolygon).data(), u32(kPolygon.size()), &rows,
                                                                &lefts, &rights, &count);
                for (u32 i = 0; i < count; ++i) put(p, i, rows[i], lefts[i], rights[i]);
                platform::FreeClientBlock(rows);
                platform::FreeClientBlock(lefts);
                platform::FreeClientBlock(rights);
                return result;
            },
            [=](GoldenPicture& p) {
                size_t i = 0;
                for (const PlainSpan& span : PlainScan(kPolygon).Spans()) {
                    put(p, i++, i32(span.row), span.leftX, span.rightX);
                }
            },
            checksum};
}

std::vector<PlainPoint> Points(const GoldenPicture& p)
{
    std::vector<PlainPoint> points;
    for (size_t i = 0; i < 400; i += 2) points.push_back({p.image[i], p.image[i + 1]});
    return points;
}

// The hull of points that are bytes of the picture, and whether it is convex as it comes and in reverse.
GoldenRow HullRow(const char* name, u64 checksum)
{
    return {name,
            1,
            1,
            [](GoldenPicture& p) {
                const std::vector<PlainPoint> points = Points(p);
                i32* hull = nullptr;
                u32 count = 0;
                const u32 result = MV40_GetConvexHull(&points[0].x, u32(points.size()), &hull, &count);
                if (result == 0) return result;
                std::memcpy(p.output.data(), hull, count * 8);
                p.output[1000] = u8(MV40_PolygonIsConvex(hull, count));
                for (u32 i = 0; i < count / 2; ++i) {
                    std::swap(hull[2 * i], hull[2 * (count - 1 - i)]);
                    std::swap(hull[2 * i + 1], hull[2 * (count - 1 - i) + 1]);
                }
                p.output[1001] = u8(MV40_PolygonIsConvex(hull, count));
                platform::FreeClientBlock(hull);
                return result;
            },
            [](GoldenPicture& p) {
                std::vector<PlainPoint> hull = PlainHull(Points(p));
                std::memcpy(p.output.data(), hull.data(), hull.size() * 8);
                p.output[1000] = PlainIsConvex(hull);
                std::reverse(hull.begin(), hull.end());
                p.output[1001] = PlainIsConvex(hull);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> PolygonGolden()
{
    return {
        FillRow("PolygonFillImage, solid", 3, {false, false, 1, 0}, 0x286FD20BE5A2FCB9),
        FillRow("PolygonFillImage, mixed and swapped", 4, {false, false, 0.37, kPolygonBlend | kPolygonSwapColor},
                0xC2CA7E1083650357),
        FillRow("PolygonFillImage, mixed indices", 1, {false, true, 0.6, kPolygonBlend}, 0x945D1F67BC4E60C0),
        FillRow("PolygonFillImage, pattern", 3, {true, false, 1, 0}, 0xAE52C2CC72D8989C),
        FillRow("PolygonFillImage, antialiased", 3, {false, false, 1, kPolygonAntialias}, 0xDA9088241D851865),
        FillRow("PolygonFillImage, antialiased in fine samples and mixed", 4,
                {false, false, 0.37, kPolygonBlend | kPolygonAntialias | kPolygonFineSamples}, 0x84D9131F7D4EB700),
        BitsRow("PolygonFill1Bit, set", 1, 0x74B298B06A655CD8),
        BitsRow("PolygonFill1Bit, clear", 0, 0x16F1FC38881B294F),
        ScanlinesRow("GetPolygonScanlineArray", 0xF0E1E9991C76F3B9),
        HullRow("GetConvexHull, PolygonIsConvex", 0x2FB010D43EABA419),
    };
}

}  // namespace zlvtest
