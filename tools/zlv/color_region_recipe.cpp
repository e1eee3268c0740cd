// The region of like colours around a place keeps its colours; the rest of the picture becomes gray.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallColorRegion(const EffectCall& call);

namespace {

constexpr size_t kComponents = 3;

// Hue in degrees, saturation and value in percent.
void WriteHsv(const uint8_t* pixel, double* hsv)
{
    constexpr double kDegreesOfSide = 60, kPercent = 100;
    const double red = pixel[0], green = pixel[1], blue = pixel[2];
    const double highest = std::max({red, green, blue}), spread = highest - std::min({red, green, blue});
    double sides = 0;
    if (spread > 0) {
        if (highest == red) sides = (green - blue) / spread;
        else if (highest == green) sides = 2 + (blue - red) / spread;
        else sides = 4 + (red - green) / spread;
    }
    hsv[0] = std::fmod(sides * kDegreesOfSide + 360, 360);
    hsv[1] = highest > 0 ? spread / highest * kPercent : 0;
    hsv[2] = highest / 255 * kPercent;
}

uint32_t PlaceOf(double percent, uint32_t size)
{
    return std::min(static_cast<uint32_t>(size * percent / 100), size - 1);
}

}  // namespace

uint32_t CallColorRegion(const EffectCall& call)
{
    const ImageGroup& picture = call.target;
    const size_t pixels = size_t{picture.width} * picture.height;
    const auto at = [&](size_t i) {
        return picture.samples + i / picture.width * picture.stride + i % picture.width * kComponents;
    };
    std::vector<double> hsv(pixels * kComponents);
    for (size_t i = 0; i < pixels; ++i) WriteHsv(at(i), hsv.data() + i * kComponents);

    std::vector<uint8_t> mask(pixels);
    const uint32_t result = ZLV40_GetHSVColorMatchMaskFromImage(
        hsv.data(), picture.width, picture.height, picture.width * uint32_t{kComponents}, mask.data(), picture.width,
        PlaceOf(call.values[0], picture.width), PlaceOf(call.values[1], picture.height), 0, 0, 0, ZLV40_MATCH_SEED,
        call.values[2], call.values[3], call.values[4], ZLV40_MASK_255);
    if (!result) return result;
    for (size_t i = 0; i < pixels; ++i) {
        if (mask[i] != 0) continue;
        uint8_t* const pixel = at(i);
        const double gray = 0.299 * pixel[0] + 0.587 * pixel[1] + 0.114 * pixel[2];
        std::fill_n(pixel, kComponents, static_cast<uint8_t>(std::lround(gray)));
    }
    return result;
}

}  // namespace zlv
