// Scans and fills polygons of any coordinates, on images of exactly the described size; tests points for convexity and
// wraps them.
//
// Fills are done twice, on images that begin alike: what comes out must be the same, and the bytes between the rows
// untouched.
#include "base/convex.h"
#include "base/polygon_fill.h"
#include "base/polygon_fill_bits.h"
#include "base/polygon_scanlines.h"
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <cmath>
#include <optional>
#include <vector>

namespace {

using namespace zlv;
using zlvtest::Input;
using zlvtest::Listener;
using zlvtest::Require;

enum Function : u8 { kFill, kFillBits, kScanlines, kConvex, kHull, kFunctions };

// Around a small image mostly, any number sometimes.
f64 ReadCoordinate(Input& input)
{
    switch (input.Byte() % 8) {
    case 0: return input.Real();
    case 1: return i32(u32(input.Number(4)));
    case 2: return i16(u16(input.Number(2)));
    case 3: return i8(input.Byte());
    case 4: return input.Byte() % 30 + 0.5;
    default: return i16(u16(input.Number(2))) / 512.0;
    }
}

struct Canvas {
    u32 width, height, channels, stride;

    // A row of bits is as many bytes.
    size_t RowBytes(Function function) const
    {
        return function == kFillBits ? (size_t(width) + 7) / 8 : size_t(width) * channels;
    }
    size_t Bytes(Function function) const
    {
        return width == 0 || height == 0 ? 1 : size_t(stride) * (height - 1) + RowBytes(function);
    }
};

struct Tile {
    u32 width, height, stride;
    zlvtest::Buffer bytes;  // may be null
};

struct Style {
    Tile tile;
    u32 color, flags;
    f64 opacity;
    u32 paletteCount;
    zlvtest::Buffer palette;  // may be null
};

Canvas ReadCanvas(Input& input, Function function)
{
    constexpr u32 kChannels[] = {1, 3, 4, 3, 4, 1, 2, 0};
    Canvas canvas = {input.Byte() % 40u, input.Byte() % 20u, kChannels[input.Byte() % 8], 0};
    canvas.stride = u32(canvas.RowBytes(function)) + input.Byte() % 4;
    return canvas;
}

Style ReadStyle(Input& input, const Canvas& canvas)
{
    Style style{};
    style.flags = input.Byte() % 16;
    style.color = u32(input.Number(4));
    style.opacity = input.Byte() & 1 ? input.Real() : input.Byte() / 200.0;
    const u8 kind = input.Byte();
    if (kind & 1) {
        style.tile.width = input.Byte() % 9;
        style.tile.height = input.Byte() % 5;
        style.tile.stride = style.tile.width * canvas.channels + input.Byte() % 3;
        // A tile without height is one row.
        const size_t rowBytes = size_t(style.tile.width) * canvas.channels;
        const u32 rows = style.tile.height ? style.tile.height : 1;
        style.tile.bytes = zlvtest::Buffer(size_t(style.tile.stride) * (rows - 1) + rowBytes, input);
    }
    if (kind & 2) {
        style.paletteCount = u32(input.Size(40));
        if (style.paletteCount > 300) style.paletteCount = 300;
        style.palette = zlvtest::Buffer(size_t(style.paletteCount) * 4, input);
    }
    return style;
}

bool IsSignOfLife(u32 current, u32 total, u32) { return current == 0 && total != 0; }

void Fill(Input& input, Function function, const std::vector<f64>& points)
{
    const Canvas canvas = ReadCanvas(input, function);
    const Style style = ReadStyle(input, canvas);
    const u64 reports = input.Byte() % 4 * 100;  // 0 hears nothing
    const u32 count = u32(points.size() / 2);
    const size_t bytes = canvas.Bytes(function);
    const auto image = zlvtest::Buffer(bytes, input);
    const auto again = std::make_unique<u8[]>(bytes), before = std::make_unique<u8[]>(bytes);
    std::memcpy(again.get(), image.get(), bytes);
    std::memcpy(before.get(), image.get(), bytes);

    const auto run = [&](u8* to) {
        if (function == kFillBits) {
            return MV40_PolygonFill1Bit(to, canvas.width, canvas.height, canvas.stride, points.data(), count,
                                        style.color);
        }
        return MV40_PolygonFillImage(to, canvas.width, canvas.height, canvas.channels, canvas.stride, points.data(),
                                     count, style.tile.bytes.get(), style.tile.width, style.tile.height,
                                     style.tile.stride, style.color, style.opacity, style.palette.get(),
                                     style.paletteCount, style.flags);
    };
    std::optional<Listener> listener;
    if (reports > 0) listener.emplace(input, zlvtest::kBaseLayer, reports, IsSignOfLife);
    const u32 result = run(image.get());
    const u32 error = MV40_GetLastError();
    listener.reset();
    zlvtest::RequireResult(input, "fill", result, error);
    const bool wasCancelled = error == u32(Error::Cancelled);
    const u32 secondResult = run(again.get());
    Require(wasCancelled || secondResult == result);
    for (size_t i = 0; i < bytes; ++i) {
        const bool isPadding = canvas.stride != 0 && i % canvas.stride >= canvas.RowBytes(function);
        Require(wasCancelled || image[i] == again[i]);
        const bool mayChange = (result == 1 || wasCancelled) && !isPadding;
        Require(mayChange || image[i] == before[i]);
    }
}

// Polygons of many rows would fill the memory.
void MakeScanlines(Input& input, std::vector<f64>& points)
{
    for (f64& coordinate : points) {
        if (std::isfinite(coordinate)) coordinate = std::fmod(coordinate, 100000);
    }
    i32* rows = nullptr;
    f64 *lefts = nullptr, *rights = nullptr;
    u32 count = 1;
    const u32 result =
        MV40_GetPolygonScanlineArray(points.data(), u32(points.size() / 2), &rows, &lefts, &rights, &count);
    zlvtest::RequireResult(input, "scanlines", result, MV40_GetLastError());
    Require((count > 0) == (rows != nullptr) && (result == 1 || count == 0));
    for (u32 i = 0; i < count; ++i) {
        Require(lefts[i] <= rights[i] && (i == 0 || rows[i] >= rows[i - 1]));
    }
    platform::FreeClientBlock(rows);
    platform::FreeClientBlock(lefts);
    platform::FreeClientBlock(rights);
}

void TestConvexity(Input& input, const std::vector<f64>& coordinates, Function function)
{
    std::vector<i32> points;
    for (const f64 coordinate : coordinates) {
        points.push_back(std::abs(coordinate) < 2147483647 ? i32(coordinate) : INT32_MIN);
    }
    const u32 count = u32(points.size() / 2);
    if (function == kConvex) {
        const u32 result = MV40_PolygonIsConvex(points.data(), count);
        zlvtest::RequireResult(input, "convexity", result, MV40_GetLastError());
        return;
    }
    i32* hull = nullptr;
    u32 hullCount = 1;
    (void)MV40_GetCallback(nullptr);  // leaves no code behind
    const u32 result = MV40_GetConvexHull(points.data(), count, &hull, &hullCount);
    zlvtest::RequireResult(input, "hull", result, MV40_GetLastError());
    Require(result == 1 ? hullCount >= 3 && hullCount <= count : hullCount == 0 && !hull);
    platform::FreeClientBlock(hull);
}

}  // namespace

void zlvtest::FuzzPolygons(Input& input)
{
    const Function function = Function(input.Byte() % kFunctions);
    std::vector<f64> points(input.Byte() % 20 * 2);
    for (f64& coordinate : points) coordinate = ReadCoordinate(input);
    if (function <= kFillBits) Fill(input, function, points);
    else if (function == kScanlines) MakeScanlines(input, points);
    else TestConvexity(input, points, function);
}
