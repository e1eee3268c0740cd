// Palettes: the searches for one, the mappings onto it, and back.
#include "base/palette.h"
#include "bench_row.h"
#include "imagequant_peer.h"

#include <memory>

namespace zlvbench {

namespace {

constexpr u32 kFloydSteinberg = 1;
constexpr u8 kLimit = 20;

std::string Name(const std::string& function, const Shape& shape)
{
    return function + "/" + std::to_string(shape.width) + "x" + std::to_string(shape.height);
}

std::vector<u8> RandomPalette(u32 colors)
{
    RandomBytes random(5);
    std::vector<u8> palette(size_t(colors) * 4);
    for (u8& value : palette) value = u8(random.Next());
    return palette;
}

Work Quantize(const Shape& shape, u32 colors, u32 flags)
{
    const auto palette = std::make_shared<std::vector<u8>>(4 * kLargestPalette);
    return [=](const Buffers& buffers) {
        MV40_QuantizeRGBTo8Bit(buffers.image, shape.width, shape.height, shape.width * 3, buffers.output, shape.width,
                               colors, palette->data(), kFloydSteinberg, kLimit, flags);
    };
}

Work Dither(const Shape& shape, u32 colors)
{
    return [shape, palette = RandomPalette(colors), colors](const Buffers& buffers) {
        MV40_RGBTo8BitDithered(buffers.image, shape.width, shape.height, shape.width * 3, buffers.output, shape.width,
                               colors, palette.data(), kFloydSteinberg, kLimit, 0);
    };
}

Work BestFit(const Shape& shape, u32 colors)
{
    return [shape, palette = RandomPalette(colors), colors](const Buffers& buffers) {
        MV40_RGBTo8BitBestFit(buffers.image, shape.width, shape.height, shape.width * 3, buffers.output, shape.width,
                              colors, palette.data(), 0);
    };
}

Work Expand(const Shape& shape)
{
    return [shape, palette = RandomPalette(kLargestPalette)](const Buffers& buffers) {
        MV40_8BitToRGB(buffers.image, shape.width, shape.height, shape.width, buffers.output, shape.width * 3,
                       kLargestPalette, palette.data(), 0);
    };
}

// A look at every entry, as the compiler makes vectors of it.
Peer PlainLoop(const Shape& shape, u32 colors)
{
    const auto work = [shape, palette = RandomPalette(colors), colors](const Buffers& buffers) {
        for (size_t i = 0; i < shape.Pixels(); ++i) {
            const u8* const pixel = buffers.image + 3 * i;
            i32 best = INT32_MAX;
            for (u32 k = 0; k < colors; ++k) {
                const i32 d0 = pixel[0] - palette[4 * k + 2], d1 = pixel[1] - palette[4 * k + 1];
                const i32 d2 = pixel[2] - palette[4 * k];
                const i32 rank = (d0 * d0 + d1 * d1 + d2 * d2) << 8 | i32(k);
                best = rank < best ? rank : best;
            }
            buffers.output[i] = u8(best);
        }
    };
    return {"plain C++ loop", work, true};
}

Peer ImageQuant(const Shape& shape, u32 colors)
{
    return {"libimagequant speed 10, dithered", ImageQuantWork(shape, colors, true), false};
}

}  // namespace

std::vector<BenchRow> PaletteRows()
{
    constexpr Shape kSmall = {16, 16, 3}, kFull = {kFullWidth, kFullHeight, 3};
    constexpr Shape kIndices = {kFullWidth, kFullHeight, 1};
    const std::string quantize = "QuantizeRGBTo8Bit/256_fs20", bestFit = "RGBTo8BitBestFit/256";
    return {
        {Name(quantize, kSmall), kSmall, kSmall.Pixels(), Quantize(kSmall, 256, 0), ImageQuant(kSmall, 256)},
        {Name(quantize, kFull), kFull, kFull.Pixels(), Quantize(kFull, 256, 0), ImageQuant(kFull, 256)},
        {Name("QuantizeRGBTo8Bit/256_fs20_incremental", kFull), kFull, kFull.Pixels(),
         Quantize(kFull, 256, kIncrementalOctree)},
        {Name("RGBTo8BitDithered/256_fs20", kFull), kFull, kFull.Pixels(), Dither(kFull, 256)},
        {Name("RGBTo8BitDithered/2_fs20", kFull), kFull, kFull.Pixels(), Dither(kFull, 2)},
        {Name(bestFit, kSmall), kSmall, kSmall.Pixels(), BestFit(kSmall, 256), PlainLoop(kSmall, 256)},
        {Name(bestFit, kFull), kFull, kFull.Pixels(), BestFit(kFull, 256), PlainLoop(kFull, 256)},
        {Name("RGBTo8BitBestFit/8", kFull), kFull, kFull.Pixels(), BestFit(kFull, 8), PlainLoop(kFull, 8)},
        {Name("8BitToRGB", kFull), kIndices, 3 * kFull.Pixels(), Expand(kFull)},
    };
}

}  // namespace zlvbench
