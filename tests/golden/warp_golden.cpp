// Pictures through warps. The warp that scatters is not among them: its results are those of the second.
#include "golden/golden.h"
#include "plain/plain_ellipse_points.h"
#include "plain/plain_offset_points.h"
#include "plain/plain_polygon_points.h"
#include "plain/plain_radial_points.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// Rounded from more digits.
constexpr PlainRadialMath kMath = {
    [](double x) { return double(std::sin(static_cast<long double>(x))); },
    [](double x) { return double(std::cos(static_cast<long double>(x))); },
    [](double x) { return double(std::atan(static_cast<long double>(x))); },
};

// Left of and above the picture's middle, so that no position is where the last bits of a sine decide.
constexpr PlainRadial kCenter = {kMath, kWidth, kHeight, -3, -2};

using Add = std::uint32_t (*)();

GoldenRow Row(const char* name, std::uint32_t channels, std::uint32_t flags, Add add, const PlainStep& plain,
              std::uint64_t checksum)
{
    constexpr std::uint32_t kBackground = 0xC0804020u;
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                ZLV40_ClearAllTransforms();
                std::uint32_t result = add();
                result &= ZLV40_TransformProcess(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride,
                                                 std::int32_t(channels), flags, kBackground);
                ZLV40_ClearAllTransforms();
                return result;
            },
            [=](GoldenPicture& p) {
                PlainTransformProcess({plain}, {p.image.data(), kWidth, kHeight, channels, p.stride}, p.output.data(),
                                      p.stride, flags, kBackground);
            },
            checksum};
}

constexpr point kPolygon[] = {{3, 1}, {58, 4}, {50, 35}, {9, 30}};
const std::vector<PlainPoint> kPlainPolygon = {{3, 1}, {58, 4}, {50, 35}, {9, 30}};

std::uint32_t AddPolygon(std::uint32_t mode) { return ZLV40_AddPolygonTransform(kWidth, kHeight, kPolygon, 4, mode); }

}  // namespace

std::vector<GoldenRow> WarpGolden()
{
    return {
        Row(
            "offset, bilinear", 3, 1, [] { return ZLV40_AddOffsetTransform(kWidth, kHeight, 7.25, -3.5, 1); },
            PlainOffset(7.25, -3.5, 1, kWidth, kHeight), 0x82E4F8C5957135E9),
        Row(
            "spin, nearest", 3, 0, [] { return ZLV40_AddSpinTransform(kWidth, kHeight, 17, 75, -3, -2); },
            PlainSpin(kCenter, 17, 75), 0xE64B8031C377C88D),
        Row(
            "spin, bilinear", 4, 1, [] { return ZLV40_AddSpinTransform(kWidth, kHeight, 17, 75, -3, -2); },
            PlainSpin(kCenter, 17, 75), 0x5B0C735BA88E7D04),
        Row(
            "spin, bicubic", 3, 2, [] { return ZLV40_AddSpinTransform(kWidth, kHeight, 17, 75, -3, -2); },
            PlainSpin(kCenter, 17, 75), 0x8DFFC0DC4BA73C58),
        Row(
            "spin wave, bilinear", 3, 1, [] { return ZLV40_AddSpinWaveTransform(kWidth, kHeight, 20, 40, 9, -3, -2); },
            PlainSpinWave(kCenter, 20, 40, 9), 0xD6E7C766A5750FA9),
        Row(
            "lens, bicubic", 1, 2, [] { return ZLV40_AddLensTransform(kWidth, kHeight, 25, -3, -2); },
            PlainLens(kCenter, 25), 0x888F14D05D94C243),
        Row(
            "pinch, bilinear, keeping", 3, 5, [] { return ZLV40_AddPinchTransform(kWidth, kHeight, 40, 9, -3, -2); },
            PlainPinch(kCenter, 40, 9), 0xD85424BDB9EDEB2F),
        Row(
            "attractor, bicubic, clamping", 3, 10,
            [] { return ZLV40_AddPointAttractorTransform(kWidth, kHeight, 6, -3, -2, 1, 2.5); },
            PlainAttractor(kCenter, 6, 1, 2.5), 0x1CA3A026033EB9C7),
        Row(
            "wow, bilinear", 2, 1, [] { return ZLV40_AddWowTransform(kWidth, kHeight, 22, 1); },
            PlainWow({kMath, kWidth, kHeight, 0, 0}, 22, 1), 0x43D108EC8B3F3931),
        Row(
            "ripple, bilinear", 3, 1, [] { return ZLV40_AddRippleTransform(kWidth, kHeight, 30, 3, 7, 1.5, -0.25, 2); },
            PlainRipple{kMath, 31.5, 17.75, 30, 3, 7, 2}, 0xB59A52826E5B1EBB),
        Row(
            "ellipse, bilinear", 3, 1, [] { return ZLV40_AddEllipticalTransform(kWidth, kHeight, 29, 17, 1, -1, 2); },
            PlainEllipse(kWidth, kHeight, 29, 17, 1, -1, 2), 0x3CA756AC0FB18196),
        Row(
            "polygon's rows, nearest", 5, 0, [] { return AddPolygon(0); },
            *PlainPolygonWarp(kWidth, kHeight, kPlainPolygon, 0), 0x63CAED57E5BBC639),
        Row(
            "polygon, bicubic", 3, 2, [] { return AddPolygon(2); },
            *PlainPolygonWarp(kWidth, kHeight, kPlainPolygon, 2), 0xB2032E71F989AE9D),
    };
}

}  // namespace zlvtest
