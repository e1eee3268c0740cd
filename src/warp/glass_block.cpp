// A warp that looks through a wall of glass blocks: each shows a part of the picture again, smaller or larger, with
// bevelled edges and a rippled surface of its own.
#include "runtime/array.h"
#include "runtime/clamp.h"
#include "runtime/math.h"
#include "warp/add_transform.h"

#include "zlv40.h"

#include <algorithm>

using namespace zlv;

namespace {

struct GlassBlocks {
    u32 tileWidth, tileHeight;
    u32 bevelWidth, bevelStrength;
    bool flatBevel;
    f64 zoom, noiseScale, bumpStrength;
};

f64 Truncated(f64 v) { return v < 0 ? Ceil(v) : Floor(v); }

// The counts of elements that an array takes.
bool IsCount(u64 count) { return count <= 0x7FFFFFFF; }

// Along one axis of the picture: the tile that a point is in, and how far from both of its edges.
struct TilePlace {
    f64 tile, fromStart, toEnd;

    TilePlace(f64 coordinate, u32 tileSize)
        : tile(Truncated(coordinate / tileSize)),
          fromStart(coordinate - tileSize * tile),
          toEnd((tile + 1) * tileSize - coordinate)
    {
    }
};

// Along one axis of a tile: the byte under a point and its neighbours, which end at the tile's edges.
struct TileTaps {
    u32 before, at, behind;

    TileTaps(f64 coordinate, u32 tileSize) : at(ByteUnder(coordinate, tileSize))
    {
        before = at > 0 ? at - 1 : 0;
        behind = std::min(at + 1, tileSize - 1);
    }

private:
    static u32 ByteUnder(f64 coordinate, u32 tileSize)
    {
        const bool isInteger = 0 <= coordinate && coordinate < 0x1p63;
        return isInteger ? u32(i64(coordinate) % tileSize) : 0;
    }
};

}  // namespace

class CZLVTransform::CGlassBlock : public CXFormer {
public:
    // To be called within a frame that raises the nest count: tiles are filled without a report.
    [[nodiscard]] Error SetUp(const GlassBlocks& newBlocks)
    {
        blocks = newBlocks;
        spreadX = width * (1 - blocks.zoom);
        spreadY = height * (1 - blocks.zoom);
        return FillTiles();
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override
    {
        Refract(x, y);
        *outX = x;
        *outY = y;
        return true;
    }

    void MapRun(PointRun& run) override
    {
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) Refract(run.x[i], run.y[i]);
        }
    }

private:
    // A field of noise for each tile. One column and row more than whole tiles: points on the far edge have a tile.
    [[nodiscard]] Error FillTiles()
    {
        const u64 across = u64(width / blocks.tileWidth) + 1, down = u64(height / blocks.tileHeight) + 1;
        const u64 bytes = u64(blocks.tileWidth) * blocks.tileHeight;
        if (!IsCount(across) || !IsCount(down) || !IsCount(across * down) || !IsCount(bytes)) return Error::OutOfMemory;
        tilesAcross = i32(across);
        tilesDown = i32(down);
        if (!tiles.Resize(tilesAcross * tilesDown)) return Error::OutOfMemory;
        for (i32 i = 0; i < tiles.GetCount(); ++i) {
            ZLVArray<u8>& tile = tiles[size_t(i)];
            if (!tile.Resize(i32(bytes))) return Error::OutOfMemory;
            if (ZLV40_GeneratePerlinNoise(tile.GetData(), blocks.tileWidth, blocks.tileHeight, i32(blocks.tileWidth),
                                          blocks.noiseScale) == 0) {
                return Error(ZLV40_GetLastError());
            }
        }
        return Error::None;
    }

    void Refract(f64& x, f64& y) const
    {
        if (!HasSize()) return;
        const TilePlace column(x, blocks.tileWidth), row(y, blocks.tileHeight);
        f64 outX = column.fromStart / blocks.tileWidth * spreadX + blocks.zoom * x;
        f64 outY = row.fromStart / blocks.tileHeight * spreadY + blocks.zoom * y;
        const bool isNearX = Bevel(column, outX), isNearY = Bevel(row, outY);
        if (!(blocks.flatBevel && (isNearX || isNearY))) Ripple(column.tile, row.tile, x, y, outX, outY);
        const f64 zero = 0, right = f64(width) - 1, bottom = f64(height) - 1;
        x = ClampDouble(outX, &zero, &right);
        y = ClampDouble(outY, &zero, &bottom);
    }

    // Whether the point is near one of the tile's edges on this axis.
    bool Bevel(const TilePlace& place, f64& out) const
    {
        const f64 bevel = blocks.bevelWidth, strength = blocks.bevelStrength;
        const bool isNearStart = place.fromStart < bevel, isNearEnd = place.toEnd < bevel;
        if (isNearStart) out += (bevel - place.fromStart) / bevel * strength;
        if (isNearEnd) out -= (bevel - place.toEnd) / bevel * strength;
        return isNearStart || isNearEnd;
    }

    // Far outside the picture there are no tiles, and no ripples.
    void Ripple(f64 tileColumn, f64 tileRow, f64 x, f64 y, f64& outX, f64& outY) const
    {
        const f64 index = tilesAcross * tileRow + tileColumn;
        if (!(index >= 0 && index < tiles.GetCount())) return;
        const TileTaps c(x, blocks.tileWidth), q(y, blocks.tileHeight);
        const u8* const bytes = tiles[size_t(index)].GetData();
        const auto p = [&](u32 column, u32 row) -> i32 { return bytes[size_t(row) * blocks.tileWidth + column]; };
        outX += (p(c.at, q.before) + p(c.before, q.before) + p(c.behind, q.before) - p(c.before, q.behind) -
                 p(c.at, q.behind) - p(c.behind, q.behind)) *
                blocks.bumpStrength;
        outY += (p(c.behind, q.at) + p(c.behind, q.before) + p(c.behind, q.behind) - p(c.before, q.before) -
                 p(c.before, q.at) - p(c.before, q.behind)) *
                blocks.bumpStrength;
    }

protected:
    GlassBlocks blocks = {};
    f64 spreadX = 0;
    f64 spreadY = 0;
    i32 tilesAcross = 0;
    i32 tilesDown = 0;
    ZLVArray<ZLVArray<u8>> tiles;  // row by row
};

ZLV_EXPORT u32 ZLV40_AddGlassBlockTransform(u32 width, u32 height, u32 tileWidth, u32 tileHeight, u32 bevelWidth,
                                            u32 bevelStrength, u32 flatBevel, f64 zoom, f64 noiseScale,
                                            f64 bumpStrength)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (tileWidth == 0 || tileHeight == 0) return frame.Fail(Error::BadArgument);
        const GlassBlocks blocks = {tileWidth,      tileHeight, bevelWidth, bevelStrength,
                                    flatBevel != 0, zoom,       noiseScale, bumpStrength};
        return AddTransform<CZLVTransform::CGlassBlock>(
            frame, width, height, [&](CZLVTransform::CGlassBlock& points) { return points.SetUp(blocks); });
    });
}
