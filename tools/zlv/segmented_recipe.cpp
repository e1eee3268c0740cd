// The segmented colourise as a picture: the library gives indices and a palette, the user wants colours.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallSegmentedColorize(const EffectCall& call);

namespace {

constexpr size_t kEntryBytes = 4;
using Palette = std::array<uint8_t, 256 * kEntryBytes>;

// The library takes rows without padding.
std::vector<uint8_t> PackedRows(const ImageGroup& picture)
{
    const size_t rowBytes = size_t{picture.width} * picture.channels;
    std::vector<uint8_t> packed(rowBytes * picture.height);
    for (uint32_t y = 0; y < picture.height; ++y) {
        std::copy_n(picture.samples + size_t{y} * picture.stride, rowBytes, packed.data() + y * rowBytes);
    }
    return packed;
}

// An entry begins with the last component.
void PaintPixel(const uint8_t* entry, uint8_t* pixel) { std::reverse_copy(entry, entry + 3, pixel); }

}  // namespace

uint32_t CallSegmentedColorize(const EffectCall& call)
{
    const ImageGroup& target = call.target;
    const std::vector<uint8_t> source = PackedRows(call.source);
    std::vector<uint8_t> indices(size_t{target.width} * target.height);
    Palette palette{};
    const uint32_t result = ZLV40_SegmentedColorizeRGBImage(
        source.data(), target.width, target.height, 0, indices.data(), static_cast<int32_t>(target.width),
        palette.data(), static_cast<uint32_t>(call.values[0]), static_cast<uint32_t>(call.values[1]),
        static_cast<uint32_t>(call.values[2]), 0);
    if (!result) return result;
    for (uint32_t y = 0; y < target.height; ++y) {
        const uint8_t* const row = indices.data() + size_t{y} * target.width;
        for (uint32_t x = 0; x < target.width; ++x) {
            uint8_t* const pixel = target.samples + size_t{y} * target.stride + size_t{x} * target.channels;
            PaintPixel(palette.data() + row[x] * kEntryBytes, pixel);
        }
    }
    return result;
}

}  // namespace zlv
