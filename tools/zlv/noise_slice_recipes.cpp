// Planes through a field of Perlin noise, drawn in gray. Every call makes a field of its own.
#include "catalogue.h"
#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace zlv {

// Named by the catalogue.
uint32_t CallNoiseSlice(const EffectCall& call);
uint32_t CallNoiseContours(const EffectCall& call);
uint32_t CallNoiseTurned(const EffectCall& call);

namespace {

struct DestroyField {
    void operator()(void* field) const { ZLV40_DestroyPerlinNoise3D(field); }
};
using Field = std::unique_ptr<void, DestroyField>;

// The library's planes have no gaps between rows; a picture may.
template <typename Sample, typename Level>
void Draw(const ImageGroup& picture, const std::vector<Sample>& plane, Level level)
{
    for (uint32_t y = 0; y < picture.height; ++y) {
        const auto row = plane.begin() + static_cast<std::ptrdiff_t>(size_t{y} * picture.width);
        std::transform(row, row + picture.width, picture.samples + size_t{y} * picture.stride, level);
    }
}

template <typename Sample>
std::vector<Sample> PlaneFor(const ImageGroup& picture)
{
    return std::vector<Sample>(size_t{picture.width} * picture.height);
}

uint8_t Gray(double noise) { return static_cast<uint8_t>(std::clamp(noise * 127 + 128, 0.0, 255.0)); }

}  // namespace

uint32_t CallNoiseSlice(const EffectCall& call)
{
    const Field field(ZLV40_InitializePerlinNoise3D());
    auto levels = PlaneFor<uint8_t>(call.target);
    const uint32_t result = field
                                ? ZLV40_GetPerlinNoise3DSliceBYTE(field.get(), levels.data(), call.target.width,
                                                                  call.target.height, 0, call.values[0], call.values[1])
                                : 0;
    if (result) Draw(call.target, levels, [](uint8_t sample) { return sample; });
    return result;
}

// From one height to the next the levels rise from black to white.
uint32_t CallNoiseContours(const EffectCall& call)
{
    const Field field(ZLV40_InitializePerlinNoise3D());
    auto heights = PlaneFor<double>(call.target);
    const uint32_t result =
        field ? ZLV40_GetPerlinNoise3DSliceDouble(field.get(), heights.data(), call.target.width, call.target.height, 0,
                                                  call.values[0], call.values[1])
              : 0;
    const double steps = call.values[2];
    if (result) {
        Draw(call.target, heights, [steps](double height) {
            const double step = height * steps;
            return static_cast<uint8_t>((step - std::floor(step)) * 255);
        });
    }
    return result;
}

// The plane turns around the middle of the picture.
uint32_t CallNoiseTurned(const EffectCall& call)
{
    constexpr double kRadian = 3.14159265358979323846 / 180;
    const Field field(ZLV40_InitializePerlinNoise3D());
    auto heights = PlaneFor<double>(call.target);
    const double scale = call.values[0], z = call.values[1], offsetX = call.values[2], offsetY = call.values[3];
    const double pivotX = offsetX + scale * call.target.width / 2, pivotY = offsetY + scale * call.target.height / 2;
    const uint32_t result = field ? ZLV40_GetPerlinNoise3DSliceDoubleEx(
                                        field.get(), heights.data(), call.target.width, call.target.height, 0, scale, z,
                                        offsetX, offsetY, call.values[4] * kRadian, pivotX, pivotY)
                                  : 0;
    if (result) Draw(call.target, heights, Gray);
    return result;
}

}  // namespace zlv
