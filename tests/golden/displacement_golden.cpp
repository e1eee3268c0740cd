// Warps by tables, reliefs and fields of noise.
#include "golden/golden.h"
#include "plain/plain_center_shift.h"
#include "plain/plain_noise_points.h"

#include "zlv40.h"

#include <thread>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr std::uint32_t kBackground = 0x80402010;

// On threads of their own, whose lists are empty and whose random generators start from 1.
GoldenRow WarpRow(const char* name, std::uint32_t flags, std::function<std::uint32_t()> add,
                  std::function<PlainStep(PlainGenerator&)> plain, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                std::uint32_t result = 0;
                std::thread([&] {
                    result = add() & ZLV40_TransformProcess(p.image.data(), kWidth, kHeight, p.stride, p.output.data(),
                                                            p.stride, 3, flags, kBackground);
                }).join();
                return result;
            },
            [=](GoldenPicture& p) {
                PlainGenerator generator;
                PlainTransformProcess({plain(generator)}, {p.image.data(), kWidth, kHeight, 3, p.stride},
                                      p.output.data(), p.stride, flags, kBackground);
            },
            checksum};
}

// As many heights as there are in a relief of 7 x 5.
const std::uint8_t* Relief()
{
    static const Bytes relief = RandomBytes(35, 1);
    return relief.data();
}

}  // namespace

std::vector<GoldenRow> DisplacementGolden()
{
    constexpr PlainGlass kGlass = {20, 15, 3, 4, true, 0.6, 0.3, 0.05};
    return {
        WarpRow(
            "AddBumpMapDisplacementTransform, nearest", ZLV40_SAMPLING_NEAREST,
            [] { return ZLV40_AddBumpMapDisplacementTransform(kWidth, kHeight, 2.5, Relief(), 7, 5); },
            [](PlainGenerator&) { return PlainBumpMap(2.5, Relief(), 7, 5); }, 0x26FCB26D1B207B76),
        WarpRow(
            "AddGlassBlockTransform, bicubic", ZLV40_SAMPLING_BICUBIC,
            [=] {
                return ZLV40_AddGlassBlockTransform(kWidth, kHeight, kGlass.tileWidth, kGlass.tileHeight,
                                                    kGlass.bevelWidth, kGlass.bevelStrength, kGlass.flatBevel,
                                                    kGlass.zoom, kGlass.noiseScale, kGlass.bumpStrength);
            },
            [=](PlainGenerator& generator) { return PlainGlassBlocks(kGlass, kWidth, kHeight, generator); },
            0x8E10C94BAC5D0001),
        WarpRow(
            "AddLineSliceTransform, bilinear", ZLV40_SAMPLING_BILINEAR,
            [] { return ZLV40_AddLineSliceTransform(kWidth, kHeight, 5, 30, ZLV40_SHIFT_Y); },
            [](PlainGenerator&) { return PlainLineSlice(5, 30, ZLV40_SHIFT_Y, kWidth, kHeight); }, 0x2E2C77E664548A00),
        WarpRow(
            "AddMarbleTransform, bilinear", ZLV40_SAMPLING_BILINEAR,
            [] { return ZLV40_AddMarbleTransform(kWidth, kHeight, 1.5, 9, 7); },
            [](PlainGenerator& generator) {
                return PlainMarble(1.5, 9, 7, {std::sin, std::cos}, generator);
            },
            0x1F5E0B27C4C7001C),
        WarpRow(
            "AddPerlinDisplacementTransform, bicubic", ZLV40_SAMPLING_BICUBIC,
            [] { return ZLV40_AddPerlinDisplacementTransform(kWidth, kHeight, 4, 11, 8); },
            [](PlainGenerator& generator) { return PlainPerlinDisplacement(4, 11, 8, generator); }, 0xBBC4E7226FC6BE57),
        WarpRow(
            "AddWaveTransform, a cosine, bicubic", ZLV40_SAMPLING_BICUBIC,
            [] { return ZLV40_AddWaveTransform(kWidth, kHeight, 20, 3, ZLV40_WAVE_COSINE_X); },
            [](PlainGenerator&) {
                return PlainWave(20, 3, ZLV40_WAVE_COSINE_X, kWidth, kHeight, {std::sin, std::cos});
            },
            0x31F1F8099EF9A37A),
        WarpRow(
            "AddZigZagTransform, nearest", ZLV40_SAMPLING_NEAREST,
            [] { return ZLV40_AddZigZagTransform(kWidth, kHeight, 25, 4, ZLV40_SHIFT_X); },
            [](PlainGenerator&) { return PlainZigZag(25, 4, ZLV40_SHIFT_X, kWidth, kHeight); }, 0x7121CBDFBFB64307),
    };
}

}  // namespace zlvtest
