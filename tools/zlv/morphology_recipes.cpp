// Morphology: of the light parts of a gray picture as a picture of bits, and of the gray picture itself.
#include "bitmap.h"
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallDilateBits(const EffectCall& call);
uint32_t CallErodeBits(const EffectCall& call);
uint32_t CallOpenBits(const EffectCall& call);
uint32_t CallCloseBits(const EffectCall& call);
uint32_t CallFindBits(const EffectCall& call);
uint32_t CallOutlineBits(const EffectCall& call);
uint32_t CallThinBits(const EffectCall& call);
uint32_t CallOpenGray(const EffectCall& call);
uint32_t CallCloseGray(const EffectCall& call);
uint32_t CallTophatGray(const EffectCall& call);
uint32_t CallGradientGray(const EffectCall& call);

namespace {

using Entries = std::vector<uint32_t>;

bool IsInShape(uint32_t shape, int x, int y, int radius)
{
    enum { Square, Disc, Cross };
    switch (shape) {
    case Square: return true;
    case Disc: return x * x + y * y <= radius * (radius + 1);
    default: return x == 0 || y == 0;
    }
}

// A structuring element of 1 within the shape and 0 around it.
Entries MakeElement(uint32_t shape, int32_t size)
{
    const int radius = size / 2;
    Entries entries;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x) entries.push_back(IsInShape(shape, x, y, radius) ? 1 : 0);
    return entries;
}

using BitMorphology = uint32_t(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride, uint8_t* dst,
                               uint32_t dstRowStride, const uint32_t* element, int32_t elementWidth,
                               int32_t elementHeight, uint32_t reserved);

uint32_t ChangeBits(const EffectCall& call, BitMorphology* morphology, uint32_t width)
{
    const auto size = static_cast<int32_t>(call.values[2]);
    const Entries element = MakeElement(static_cast<uint32_t>(call.values[1]), size);
    const Bitmap light(call.source, call.values[0], width);
    Bitmap changed(light.Width(), light.Height());
    const uint32_t result = morphology(light.Bytes(), light.Width(), light.Height(), light.Stride(), changed.Bytes(),
                                       changed.Stride(), element.data(), size, size, 0);
    changed.Draw(call.target);
    return result;
}

uint32_t ChangeBits(const EffectCall& call, BitMorphology* morphology)
{
    return ChangeBits(call, morphology, call.source.width);
}

// ---- Thinning ------------------------------------------------------------------------------------------------------

constexpr int kSide = 3;
using Cell = std::array<uint32_t, size_t{kSide} * kSide>;

Cell Turned(const Cell& cell)
{
    Cell turned{};
    for (size_t y = 0; y < kSide; ++y)
        for (size_t x = 0; x < kSide; ++x) turned[y * kSide + x] = cell[(kSide - 1 - x) * kSide + y];
    return turned;
}

// Where a shape can lose a pixel and stays in one piece: at its sides and at its corners, from all four directions.
struct ThinningElements {
    std::vector<Cell> hits = {{0, 0, 0, 0, 1, 0, 1, 1, 1}, {0, 0, 0, 1, 1, 0, 0, 1, 0}};
    std::vector<Cell> misses = {{1, 1, 1, 0, 0, 0, 0, 0, 0}, {0, 1, 1, 0, 0, 1, 0, 0, 0}};

    ThinningElements()
    {
        constexpr size_t kDirections = 4;
        while (hits.size() < kDirections * 2) {
            hits.push_back(Turned(hits[hits.size() - 2]));
            misses.push_back(Turned(misses[misses.size() - 2]));
        }
    }
};

std::vector<const uint32_t*> PointersTo(const std::vector<Cell>& cells)
{
    std::vector<const uint32_t*> pointers(cells.size());
    std::transform(cells.begin(), cells.end(), pointers.begin(), [](const Cell& cell) { return cell.data(); });
    return pointers;
}

// ---- Gray morphology -----------------------------------------------------------------------------------------------

using GrayMorphology = uint32_t(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                const uint32_t* element, uint32_t elementSize, uint8_t* dst, uint32_t dstRowStride);

uint32_t ChangeGray(const EffectCall& call, GrayMorphology* morphology)
{
    const auto size = static_cast<uint32_t>(call.values[0]);
    const Entries flat(size_t{size} * size, 0);
    return morphology(call.source.samples, call.source.width, call.source.height, call.source.stride, flat.data(), size,
                      call.target.samples, call.target.stride);
}

}  // namespace

uint32_t CallDilateBits(const EffectCall& call) { return ChangeBits(call, ZLV40_MorphoDilation1Bit); }

uint32_t CallErodeBits(const EffectCall& call) { return ChangeBits(call, ZLV40_MorphoErosion1Bit); }

uint32_t CallOpenBits(const EffectCall& call) { return ChangeBits(call, ZLV40_MorphoOpen1Bit); }

uint32_t CallCloseBits(const EffectCall& call) { return ChangeBits(call, ZLV40_MorphoClose1Bit); }

// The library puts the last pixels of a row into its first byte unless they fill theirs.
uint32_t CallOutlineBits(const EffectCall& call)
{
    constexpr uint32_t kByteBits = 8;
    return ChangeBits(call, ZLV40_MorphoBoundaryExtraction1Bit,
                      (call.source.width + kByteBits - 1) / kByteBits * kByteBits);
}

// Foreground that has background so many pixels away on one side.
uint32_t CallFindBits(const EffectCall& call)
{
    enum { Left, Right, Top, Bottom };
    const auto side = static_cast<uint32_t>(call.values[1]);
    const auto distance = static_cast<size_t>(call.values[2]), size = 2 * distance + 1;
    const size_t x = side == Left ? 0 : side == Right ? size - 1 : distance;
    const size_t y = side == Top ? 0 : side == Bottom ? size - 1 : distance;
    Entries miss(size * size, 0);
    miss[y * size + x] = 1;
    const uint32_t hit = 1;

    const Bitmap light(call.source, call.values[0]);
    Bitmap found(light.Width(), light.Height());
    const uint32_t result = ZLV40_MorphoHitOrMiss1Bit(light.Bytes(), light.Width(), light.Height(), light.Stride(),
                                                      found.Bytes(), found.Stride(), &hit, 1, 1, miss.data(),
                                                      static_cast<int32_t>(size), static_cast<int32_t>(size), 0);
    found.Draw(call.target);
    return result;
}

uint32_t CallThinBits(const EffectCall& call)
{
    const ThinningElements elements;
    const std::vector<const uint32_t*> hits = PointersTo(elements.hits), misses = PointersTo(elements.misses);
    const Bitmap light(call.source, call.values[0]);
    Bitmap thin(light.Width(), light.Height());
    const uint32_t result = ZLV40_MorphoThinning1Bit(
        light.Bytes(), light.Width(), light.Height(), light.Stride(), thin.Bytes(), hits.data(), kSide, misses.data(),
        kSide, static_cast<uint32_t>(hits.size()), static_cast<uint32_t>(call.values[1]), 0);
    thin.Draw(call.target);
    return result;
}

uint32_t CallOpenGray(const EffectCall& call) { return ChangeGray(call, ZLV40_OpenGray); }

uint32_t CallCloseGray(const EffectCall& call) { return ChangeGray(call, ZLV40_CloseGray); }

uint32_t CallTophatGray(const EffectCall& call) { return ChangeGray(call, ZLV40_TophatGray); }

uint32_t CallGradientGray(const EffectCall& call) { return ChangeGray(call, ZLV40_MorphoGradientGray); }

}  // namespace zlv
