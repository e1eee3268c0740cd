// Finds palettes and maps pictures of any shape onto them, on buffers of exactly the described size.
//
// Every mapping is checked against what it must come to: indices that the palette has, the padding untouched, the same
// bytes a second time, and for the best fit and the matcher the nearest entry.
#include "base/color_matcher.h"
#include "base/palette.h"
#include "fuzz/listener.h"
#include "fuzz/topics.h"

namespace {

using namespace zlv;
using zlvtest::Input;
using zlvtest::Require;

enum Function : u8 { kQuantize, kDither, kBestFit, kExpand, kMatch, kFunctions };

constexpr const char* kNames[] = {"MV40_QuantizeRGBTo8Bit", "MV40_RGBTo8BitDithered", "MV40_RGBTo8BitBestFit",
                                  "MV40_8BitToRGB", "MV40_CreateColorMatcher"};

struct Scene {
    Function function;
    u32 width, height, colors, ditherKind, flags, cancelAt;
    u8 limit, isNull;
    u32 pixelBytes, indexStride, pixelStride;

    size_t IndexBytes() const { return height == 0 ? 1 : size_t(indexStride) * (height - 1) + width + 1; }
    size_t PixelBytes() const { return height == 0 ? 1 : size_t(pixelStride) * (height - 1) + width * pixelBytes + 1; }
    // As many entries as the call may touch.
    u32 Entries() const
    {
        if (function == kExpand || (function == kQuantize && !(flags & kIncrementalOctree))) return kLargestPalette;
        const u32 wanted = function == kQuantize && colors == 0 ? 1 : colors;
        return wanted < kLargestPalette ? wanted : kLargestPalette;
    }
};

Scene ReadScene(Input& input)
{
    Scene scene{};
    scene.function = Function(input.Byte() % kFunctions);
    const bool isLarge = input.Byte() % 8 == 0;  // with a grid
    scene.width = input.Byte() % 40 * (isLarge ? 8 : 1);
    scene.height = input.Byte() % 20 * (isLarge ? 4 : 1);
    scene.colors = u32(input.Byte() % 4 == 0 ? input.Number(4) : input.Number(2) % 300);
    scene.ditherKind = input.Byte() % 3;
    scene.limit = input.Byte();
    scene.flags = input.Byte();
    scene.cancelAt = input.Byte() % 4 == 0 ? 1 + input.Byte() % 32 : 0;
    scene.isNull = input.Byte() % 8 == 0 ? input.Byte() & 7 : 0;
    scene.pixelBytes = scene.function == kQuantize && (scene.flags & (kFourBytePixels | kSkipTransparent)) ? 4 : 3;
    scene.indexStride = scene.width + input.Byte() % 4;
    scene.pixelStride = scene.width * scene.pixelBytes + input.Byte() % 4;
    return scene;
}

u32 NearestEntry(const u8* palette, u32 count, const u8* pixel, u32 firstByte)
{
    u32 nearest = 0;
    i32 best = INT32_MAX;
    for (u32 i = 0; i < count; ++i) {
        const u8* const entry = palette + 4 * i;
        const i32 d0 = pixel[0] - entry[firstByte], d1 = pixel[1] - entry[1], d2 = pixel[2] - entry[2 - firstByte];
        const i32 distance = d0 * d0 + d1 * d1 + d2 * d2;
        if (distance >= best) continue;
        best = distance;
        nearest = i;
    }
    return nearest;
}

u32 Match(const Scene& s, const u8* pixels, u8* indices, const u8* palette)
{
    ColorMatcherHandle* const handle = MV40_CreateColorMatcher(palette, s.colors);
    for (u32 y = 0; y < s.height; ++y) {
        for (u32 x = 0; x < s.width; ++x) {
            const u8* const pixel = pixels + size_t(y) * s.pixelStride + x * 3;
            const i32 index = MV40_FindClosestColor(handle, pixel[0], pixel[1], pixel[2]);
            Require(!palette || index == i32(NearestEntry(palette, s.Entries(), pixel, 2)));
            indices[size_t(y) * s.indexStride + x] = u8(index);
        }
    }
    return MV40_DestroyColorMatcher(handle);
}

u32 Run(const Scene& s, u8* pixels, u8* indices, u8* palette)
{
    switch (s.function) {
    case kQuantize:
        return MV40_QuantizeRGBTo8Bit(pixels, s.width, s.height, s.pixelStride, indices, s.indexStride, s.colors,
                                      palette, s.ditherKind, s.limit, s.flags);
    case kDither:
        return MV40_RGBTo8BitDithered(pixels, s.width, s.height, s.pixelStride, indices, s.indexStride, s.colors,
                                      palette, s.ditherKind, s.limit, s.flags);
    case kBestFit:
        return MV40_RGBTo8BitBestFit(pixels, s.width, s.height, s.pixelStride, indices, s.indexStride, s.colors,
                                     palette, s.flags);
    case kExpand:
        return MV40_8BitToRGB(indices, s.width, s.height, s.indexStride, pixels, s.pixelStride, s.colors, palette,
                              s.flags);
    default: return Match(s, pixels, indices, palette);
    }
}

u32 RunListening(Input& input, const Scene& s, u8* pixels, u8* indices, u8* palette)
{
    const zlvtest::Listener listener(input, zlvtest::kBaseLayer, s.cancelAt);
    const u32 result = Run(s, pixels, indices, palette);
    zlvtest::RequireResult(input, kNames[s.function], result, MV40_GetLastError());
    return result;
}

void CheckIndices(const Scene& s, const u8* pixels, const u8* indices, const u8* before, const u8* palette, bool isDone)
{
    const u32 entries = s.Entries() == 0 ? 1 : s.Entries();
    for (u32 y = 0; y < s.height; ++y) {
        const u8* const row = indices + size_t(y) * s.indexStride;
        for (u32 x = 0; isDone && x < s.width; ++x) {
            Require(row[x] < entries);
            if (s.function != kBestFit) continue;
            const u8* const pixel = pixels + size_t(y) * s.pixelStride + x * 3;
            Require(row[x] == NearestEntry(palette, s.Entries(), pixel, FirstByteOfEntry(s.flags)));
        }
        const size_t end = y + 1 < s.height ? s.indexStride : s.width + 1;
        Require(std::memcmp(row + s.width, before + size_t(y) * s.indexStride + s.width, end - s.width) == 0);
    }
}

std::unique_ptr<u8[]> Copy(const u8* bytes, size_t count)
{
    auto copy = std::make_unique<u8[]>(count);
    std::memcpy(copy.get(), bytes, count);
    return copy;
}

}  // namespace

void zlvtest::FuzzPalettes(Input& input)
{
    const Scene scene = ReadScene(input);
    const size_t paletteBytes = size_t(scene.Entries()) * 4;
    const auto palette = zlvtest::Buffer(paletteBytes, input);
    const auto indices = zlvtest::Buffer(scene.IndexBytes(), input);
    const auto pixels = zlvtest::Buffer(scene.PixelBytes(), input);
    const auto indicesBefore = Copy(indices.get(), scene.IndexBytes());
    const auto indicesAgain = Copy(indices.get(), scene.IndexBytes());
    const auto pixelsAgain = Copy(pixels.get(), scene.PixelBytes());
    const auto paletteAgain = Copy(palette.get(), paletteBytes);
    const bool mayBeNull = scene.function != kMatch;

    const u32 result = RunListening(input, scene, mayBeNull && scene.isNull & 1 ? nullptr : pixels.get(),
                                    mayBeNull && scene.isNull & 2 ? nullptr : indices.get(),
                                    scene.isNull & 4 ? nullptr : palette.get());
    const bool isRefused = scene.isNull != 0 || (scene.function == kBestFit && scene.colors > kLargestPalette);
    if (scene.function != kExpand) {
        CheckIndices(scene, pixels.get(), indices.get(), indicesBefore.get(), palette.get(), result == 1 && !isRefused);
    }
    if (isRefused || result == 0) return;

    // Without a listener rows go through at once.
    Require(Run(scene, pixelsAgain.get(), indicesAgain.get(), paletteAgain.get()) == 1);
    Require(std::memcmp(pixels.get(), pixelsAgain.get(), scene.PixelBytes()) == 0);
    Require(std::memcmp(indices.get(), indicesAgain.get(), scene.IndexBytes()) == 0);
    Require(std::memcmp(palette.get(), paletteAgain.get(), paletteBytes) == 0);
}
