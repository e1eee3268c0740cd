#include "base/polygon_fill.h"

#include "base/polygon_bounds.h"
#include "base/polygon_mask.h"
#include "base/polygon_painters.h"
#include "base/polygon_painting.h"

#include <utility>

namespace zlv {

namespace {

constexpr u32 kFewestVertices = 3;
constexpr u32 kCoarseSamples = 4;
constexpr u32 kFineSamples = 16;

struct Polygon {
    const f64* points;
    u32 count;
};

struct FillStyle {
    FillTile tile;  // without data, the colour is used
    u32 color;
    f64 opacity;
    const u8* palette;  // may be null
    u32 paletteCount;
    u32 flags;

    bool Has(u32 flag) const { return (flags & flag) != 0; }
    bool HasTile() const { return tile.data != nullptr; }
};

// The colour's bytes as pixels have them.
PixelBytes PixelOf(const FillStyle& style)
{
    PixelBytes pixel(style.color);
    if (style.Has(kPolygonSwapColor)) std::swap(pixel.bytes[0], pixel.bytes[2]);
    return pixel;
}

PixelBytes ColorOfIndex(const FillStyle& style, const FillPalette& palette)
{
    PixelBytes color(style.color);
    const u8* const entry = palette.entries[u8(style.color)].bytes;
    for (u32 c = 0; c < 3; ++c) color.bytes[c] = entry[2 - c];
    if (style.Has(kPolygonSwapColor)) std::swap(color.bytes[0], color.bytes[2]);
    return color;
}

void FillWith(ScanConverter& scan, const ImageView<u8>& image, const FillStyle& style, u32 boundsLeft)
{
    const auto paint = [&](auto&& painter) { PaintPolygon(scan, image.width, image.height, painter); };
    const PixelBytes pixel = image.channels == 1 ? PixelBytes(style.color) : PixelOf(style);
    if (style.HasTile()) {
        paint(TilePainter(image, style.tile, boundsLeft));
    } else if (!style.Has(kPolygonBlend)) {
        paint(SolidPainter(image, pixel));
    } else if (image.channels == 1 && style.palette) {
        const FillPalette palette(style.palette, style.paletteCount);
        paint(IndexMixPainter(image, palette, ColorOfIndex(style, palette), style.opacity));
    } else {
        paint(MixPainter(image, pixel, style.opacity));
    }
}

Error FillPlain(const ImageView<u8>& image, const Polygon& polygon, const FillStyle& style)
{
    if (style.HasTile() && style.tile.width == 0) return Error::BadArgument;
    if (style.Has(kPolygonBlend) && !IsMixable(style.opacity)) return Error::BadArgument;
    if (image.width == 0 || image.height == 0) return Error::None;
    ScanConverter scan;
    const Error preparing = scan.Prepare(polygon.points, polygon.count);
    if (preparing == Error::None) FillWith(scan, image, style, BoundsOf(polygon.points, polygon.count, image).left);
    return preparing;
}

Error FillAntialiased(const ImageView<u8>& image, const Polygon& polygon, const FillStyle& style)
{
    const CoverageFill fill = {style.Has(kPolygonFineSamples) ? kFineSamples : kCoarseSamples,
                               style.Has(kPolygonBlend) ? style.opacity : 1, PixelOf(style)};
    return FillByCoverage(image, polygon.points, polygon.count, fill);
}

u32 Fill(MVThreadContext& context, Error& error, const ImageView<u8>& image, const Polygon& polygon,
         const FillStyle& style)
{
    BaseWork work(context, error);
    const bool isChannelCountGood = image.channels == 1 || image.channels == 3 || image.channels == 4;
    if (!image.data || !polygon.points || !isChannelCountGood) return work.Fail(Error::BadArgument);
    if (polygon.count < kFewestVertices || !AreCoordinates(polygon.points, polygon.count)) {
        return work.Fail(Error::BadArgument);
    }
    if (style.Has(kPolygonBlend) && style.HasTile()) return work.Fail(Error::BadArgument);
    const auto fill = style.Has(kPolygonAntialias) ? FillAntialiased : FillPlain;
    const Error filling = fill(image, polygon, style);
    return filling == Error::None ? 1 : work.Fail(filling);
}

}  // namespace

u32 MV40_PolygonFillImage(u8* image, u32 width, u32 height, u32 channels, u32 stride, const f64* points, u32 count,
                          const u8* pattern, u32 patternWidth, u32 patternHeight, u32 patternStride, u32 color,
                          f64 opacity, const u8* palette, u32 paletteCount, u32 flags)
{
    return InBaseCall("MV40_PolygonFillImage", [&](MVThreadContext& context, Error& error) {
        const FillStyle style = {
            {pattern, patternWidth, patternHeight, patternStride}, color, opacity, palette, paletteCount, flags};
        return Fill(context, error, {image, width, height, channels, stride}, {points, count}, style);
    });
}

}  // namespace zlv
