// Tone and colour.
#include "base/hsv.h"
#include "bench_row.h"
#include "opencv_peers.h"
#include "tone_peers.h"

#include <memory>

#include "zlv40.h"

namespace zlvbench {

namespace {

constexpr i32 kAngle = 30;
constexpr u32 kColor = 0x2060C0;
constexpr f64 kMaskSigma = 10;

// What every effect in place takes first.
template <class Effect, class... Arguments>
Work InPlace(const Shape& shape, Effect effect, Arguments... arguments)
{
    return [=](const Buffers& buffers) {
        effect(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels, arguments...);
    };
}

template <class Level>
std::vector<u8> TableOf(Level level)
{
    std::vector<u8> table(256);
    for (u32 i = 0; i < 256; ++i) table[i] = u8(level(i));
    return table;
}

std::vector<std::vector<u8>> InvertedColourTables()
{
    const std::vector<u8> inverted = TableOf([](u32 i) { return 255 - i; });
    return {inverted, inverted, inverted, TableOf([](u32 i) { return i; })};
}

BenchRow TintGrayscaleRow(const Shape& gray)
{
    return {"TintGrayscale/gray8_to_rgb8/1920x1080", gray, gray.Pixels() * 3,
            [gray](const Buffers& buffers) {
                ZLV40_TintGrayscale(buffers.image, gray.width, gray.height, gray.width, buffers.output, 3,
                                    gray.width * 3, kColor, 0);
            },
            CvColorMap(gray)};
}

BenchRow BalanceRow(const Shape& rgb)
{
    // The sliders of no channel do anything but its own high tones: three tables that any reader can check.
    const auto lifted = [](i32 slider) { return TableOf([=](i32 i) { return std::min(i + slider * i / 255, 255); }); };
    return {"AdjustImageColorBalance/rgb8/1920x1080", rgb, 0,
            InPlace(rgb, ZLV40_AdjustImageColorBalance, 0, 0, 0, 0, 0, 0, 5, 60, 0, 0, u8(0)),
            CvLut(rgb, {lifted(5), lifted(60), lifted(0)})};
}

// A picture of soft colours: the image's bytes are not used, the mask is the output.
BenchRow MatchRow(const std::string& name, const Shape& shape, f64 tolerance)
{
    const auto picture = std::make_shared<std::vector<f64>>(shape.Pixels() * 3);
    for (size_t i = 0; i < shape.Pixels(); ++i) {
        const f64 x = f64(i % shape.width) / shape.width, y = f64(i / shape.width) / shape.height;
        const Hsv color = RGBToHSV(x, y, 0.5 * x + 0.3 * y * y);
        (*picture)[i * 3] = color.h, (*picture)[i * 3 + 1] = color.s, (*picture)[i * 3 + 2] = color.v;
    }
    return {"GetHSVColorMatchMaskFromImage/" + name + "/1920x1080", shape, shape.Pixels(),
            [=](const Buffers& buffers) {
                ZLV40_GetHSVColorMatchMaskFromImage(picture->data(), shape.width, shape.height, shape.width * 3,
                                                    buffers.output, shape.width, shape.width / 2, shape.height / 2, 0,
                                                    0, 0, ZLV40_MATCH_SEED, tolerance * 360, tolerance, tolerance, 0);
            },
            CvFloodFill(shape, *picture, tolerance)};
}

}  // namespace

std::vector<BenchRow> ToneRows()
{
    const Shape rgb = {kFullWidth, kFullHeight, 3};
    const Shape rgba = {kFullWidth, kFullHeight, 4};
    const Shape gray = {kFullWidth, kFullHeight, 1};
    const Shape small = {16, 16, 3};
    return {
        {"InvertImage/rgb8/16x16", small, 0, InPlace(small, ZLV40_InvertImage, 0u), CvBitwiseNot(small)},
        {"InvertImage/rgb8/1920x1080", rgb, 0, InPlace(rgb, ZLV40_InvertImage, 0u), CvBitwiseNot(rgb)},
        {"InvertImage/rgba8_keep_alpha/1920x1080", rgba, 0, InPlace(rgba, ZLV40_InvertImage, u32(ZLV40_PROTECT_ALPHA)),
         CvLut(rgba, InvertedColourTables())},
        {"SolarizeImage/rgb8/16x16", small, 0, InPlace(small, ZLV40_SolarizeImage, u8(0)),
         CvLut(small, {TableOf([](u32 i) { return i < 127 ? i : 255 - i; })})},
        {"SolarizeImage/rgb8/1920x1080", rgb, 0, InPlace(rgb, ZLV40_SolarizeImage, u8(0)),
         CvLut(rgb, {TableOf([](u32 i) { return i < 127 ? i : 255 - i; })})},
        {"SolarizeImage/rgba8_keep_alpha/1920x1080", rgba, 0,
         InPlace(rgba, ZLV40_SolarizeImage, u8(ZLV40_PROTECT_ALPHA))},
        {"ThresholdFilter/rgb8/1920x1080", rgb, 0, InPlace(rgb, ZLV40_ThresholdFilter, 60u, 190u, 7u),
         CvLut(rgb, {TableOf([](u32 i) { return i < 60    ? 0
                                                : i < 190 ? i
                                                          : 255; })})},
        {"ThresholdFilter/rgb8_one_channel/1920x1080", rgb, 0, InPlace(rgb, ZLV40_ThresholdFilter, 60u, 190u, 2u)},
        {"PosterizeRGB/rgb8/1920x1080", rgb, 0,
         [rgb](const Buffers& buffers) { ZLV40_PosterizeRGB(buffers.image, rgb.width, rgb.height, rgb.width * 3, 0); },
         CvThreshold(rgb)},
        BalanceRow(rgb),
        {"AdjustTint/rgb8/16x16", small, 0, InPlace(small, ZLV40_AdjustTint, kAngle, 0u)},
        {"AdjustTint/rgb8/1920x1080", rgb, 0, InPlace(rgb, ZLV40_AdjustTint, kAngle, 0u), CvTransform(rgb, kAngle)},
        {"AdjustTint/rgba8/1920x1080", rgba, 0, InPlace(rgba, ZLV40_AdjustTint, kAngle, 0u)},
        {"DuotoneImage/rgb8/1920x1080", rgb, 0, InPlace(rgb, ZLV40_DuotoneImage, kColor, u8(0)), CvGrayColorMap(rgb)},
        {"DuotoneImage/rgba8/1920x1080", rgba, 0, InPlace(rgba, ZLV40_DuotoneImage, kColor, u8(0))},
        TintGrayscaleRow(gray),
        {"ContrastMaskImage/rgb8_soft_light/1920x1080/sigma=10", rgb, 0,
         InPlace(rgb, ZLV40_ContrastMaskImage, u32(ZLV40_CONTRAST_MASK_SOFT_LIGHT), kMaskSigma),
         CvContrastMask(rgb, kMaskSigma)},
        {"ContrastMaskImage/rgb8_overlay/1920x1080/sigma=10", rgb, 0,
         InPlace(rgb, ZLV40_ContrastMaskImage, u32(ZLV40_CONTRAST_MASK_OVERLAY), kMaskSigma)},
        {"ContrastMaskImage/rgba8_soft_light/1920x1080/sigma=10", rgba, 0,
         InPlace(rgba, ZLV40_ContrastMaskImage, u32(ZLV40_CONTRAST_MASK_SOFT_LIGHT), kMaskSigma)},
        MatchRow("f64_all", gray, 1),
        MatchRow("f64_spot", gray, 0.02),
    };
}

}  // namespace zlvbench
