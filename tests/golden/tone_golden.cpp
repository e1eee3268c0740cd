// Tone and colour.
#include "golden/golden.h"
#include "plain/plain_channels.h"
#include "plain/plain_contrast_mask.h"
#include "plain/plain_gaussian_blur.h"
#include "plain/plain_hsv_match.h"
#include "plain/plain_table_pass.h"
#include "plain/plain_tone.h"

#include <cmath>

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr double kPi = 3.14159265358979323846;

// An effect in place: apply(image, stride) and plain(image, stride).
template <class Apply, class Plain>
GoldenRow InPlaceRow(const std::string& name, std::uint32_t channels, Apply apply, Plain plain, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) { return apply(p.image.data(), p.stride); },
            [=](GoldenPicture& p) { plain(p.image.data(), p.stride); },
            checksum};
}

GoldenRow InvertRow(const char* name, std::uint32_t channels, std::uint32_t flags, std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_InvertImage(image, kWidth, kHeight, std::int32_t(channels), stride, flags);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            PlainInvert(image, kWidth, kHeight, channels, stride, (flags & ZLV40_PROTECT_ALPHA) != 0);
        },
        checksum);
}

GoldenRow PosterizeRow(std::uint64_t checksum)
{
    return InPlaceRow(
        "PosterizeRGB", 3,
        [](std::uint8_t* image, std::uint32_t stride) { return ZLV40_PosterizeRGB(image, kWidth, kHeight, stride, 0); },
        [](std::uint8_t* image, std::uint32_t stride) { PlainPosterize(image, kWidth, kHeight, stride); }, checksum);
}

GoldenRow SolarizeRow(const char* name, std::uint32_t channels, std::uint8_t flags, std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_SolarizeImage(image, kWidth, kHeight, std::int32_t(channels), stride, flags);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            PlainSolarize(image, kWidth, kHeight, channels, stride, (flags & ZLV40_PROTECT_ALPHA) != 0);
        },
        checksum);
}

GoldenRow TintRow(const char* name, std::uint32_t channels, std::int32_t angle, std::uint32_t flags,
                  std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_AdjustTint(image, kWidth, kHeight, channels, stride, angle, flags);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            const double radians = kPi * angle / 180;
            PlainTint(image, kWidth, kHeight, channels, stride, std::cos(radians), std::sin(radians),
                      (flags & ZLV40_BGR) != 0);
        },
        checksum);
}

// A channel of an RGB picture's bytes as the source, its output as the destination.
GoldenRow TintGrayRow(const char* name, std::uint32_t color, std::uint8_t flags, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_TintGrayscale(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), 3, p.stride,
                                           color, flags);
            },
            [=](GoldenPicture& p) {
                PlainTintGray(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), 3, p.stride, color,
                              (flags & ZLV40_BGR) != 0);
            },
            checksum};
}

GoldenRow DuotoneRow(const char* name, std::uint32_t channels, std::uint32_t color, std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_DuotoneImage(image, kWidth, kHeight, std::int32_t(channels), stride, color, 0);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            PlainDuotone(image, kWidth, kHeight, channels, stride, color, false);
        },
        checksum);
}

GoldenRow ThresholdRow(const char* name, std::uint32_t channels, std::uint32_t mask, std::uint64_t checksum)
{
    constexpr std::uint32_t kLow = 60, kHigh = 190;
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_ThresholdFilter(image, kWidth, kHeight, std::int32_t(channels), stride, kLow, kHigh, mask);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            PlainThreshold(image, kWidth, kHeight, channels, stride, kLow, kHigh, mask);
        },
        checksum);
}

GoldenRow BalanceRow(const char* name, std::uint32_t channels, std::uint8_t flags, std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_AdjustImageColorBalance(image, kWidth, kHeight, std::int32_t(channels), stride, 20, -30, 40,
                                                 -10, 25, 60, 90, -5, 3, 2, flags);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            PlainBalance(image, kWidth, kHeight, channels, stride, {20, -30, 40}, {-10, 25, 60}, {90, -5, 3}, 2,
                         (flags & ZLV40_ALPHA_FIRST) != 0);
        },
        checksum);
}

GoldenRow ContrastRow(const char* name, std::uint32_t channels, std::uint32_t mode, double sigma,
                      std::uint64_t checksum)
{
    return InPlaceRow(
        name, channels,
        [=](std::uint8_t* image, std::uint32_t stride) {
            return ZLV40_ContrastMaskImage(image, kWidth, kHeight, channels, stride, mode, sigma);
        },
        [=](std::uint8_t* image, std::uint32_t stride) {
            const PlainBlurMath math = {std::exp, std::sin, std::cos, std::pow};
            Bytes gray(std::size_t(kWidth) * kHeight), mask(gray.size());
            PlainGray(image, kWidth, kHeight, channels, stride, gray.data(), kWidth, false);
            PlainBlur<std::uint8_t>({gray.data(), kWidth}, {kWidth, kHeight, 1}, {mask.data(), kWidth}, sigma, 1, math,
                                    [](std::uint32_t, std::uint32_t) { return true; });
            PlainContrastMask(image, kWidth, kHeight, channels, stride, mask.data(), mode);
        },
        checksum);
}

// The picture's bytes as few colours, so that regions come out of it.
std::vector<double> HsvOf(const GoldenPicture& p)
{
    std::vector<double> hsv(std::size_t(kWidth) * kHeight * 3);
    for (std::size_t i = 0; i < hsv.size(); ++i) hsv[i] = p.image[i] < 220 ? 10 : p.image[i];
    return hsv;
}

GoldenRow MatchRow(const char* name, std::uint32_t maskStride, std::uint32_t matchMode, double tolerance,
                   std::uint64_t checksum)
{
    constexpr std::uint32_t kX = 31, kY = 19;
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_GetHSVColorMatchMaskFromImage(HsvOf(p).data(), kWidth, kHeight, kWidth * 3,
                                                           p.output.data(), maskStride, kX, kY, 240, 10, 10, matchMode,
                                                           tolerance, tolerance, tolerance, ZLV40_MASK_255);
            },
            [=](GoldenPicture& p) {
                const std::vector<double> hsv = HsvOf(p);
                PlainMatchMask({hsv.data(),
                                kWidth,
                                kHeight,
                                kWidth * 3,
                                kX,
                                kY,
                                {240, 10, 10},
                                matchMode,
                                {tolerance, tolerance, tolerance},
                                ZLV40_MASK_255},
                               p.output.data(), maskStride);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> ToneGolden()
{
    return {
        InvertRow("InvertImage, gray", 1, 0, 0xC2AA3DA9453A1A44),
        InvertRow("InvertImage, RGB", 3, 0, 0x05D84B8F7AFC7362),
        InvertRow("InvertImage, RGBA", 4, 0, 0x6822EE8B527625B5),
        InvertRow("InvertImage, RGBA with alpha protected", 4, ZLV40_PROTECT_ALPHA, 0x51EB921406B0C348),
        InvertRow("InvertImage, eight channels", 8, 0, 0x4E4DF54841F6483B),
        PosterizeRow(0xCFABDE5D4D6ABCED),
        SolarizeRow("SolarizeImage, RGB", 3, 0, 0x56E9F934196DA3C7),
        SolarizeRow("SolarizeImage, RGBA with alpha protected", 4, ZLV40_PROTECT_ALPHA, 0x2DD2C8D405B9DF49),
        TintRow("AdjustTint, RGB", 3, 37, 0, 0x58B49639A5CECD6B),
        TintRow("AdjustTint, BGRA by half a circle", 4, 180, ZLV40_BGR, 0x86B8B84B64E4E030),
        TintGrayRow("TintGrayscale", 0x5080C0, 0, 0x12DFC184ACF72B94),
        TintGrayRow("TintGrayscale, the colour's bytes the other way round", 0x5080C0, ZLV40_BGR, 0x34CCC32160D6A208),
        DuotoneRow("DuotoneImage, RGB", 3, 0x3090F0, 0x795EFA351E0A6F34),
        DuotoneRow("DuotoneImage, RGBA, black", 4, 0, 0x1AF99350073BD878),
        ThresholdRow("ThresholdFilter, gray", 1, 1, 0xF65A576500B03DCD),
        ThresholdRow("ThresholdFilter, RGB, two channels", 3, 5, 0x147E540013689910),
        BalanceRow("AdjustImageColorBalance, RGB", 3, 0, 0x9E24A71B77BB2152),
        BalanceRow("AdjustImageColorBalance, RGBA with alpha first", 4, ZLV40_ALPHA_FIRST, 0x3337F48C753F7F08),
        ContrastRow("ContrastMaskImage, RGB, soft light", 3, ZLV40_CONTRAST_MASK_SOFT_LIGHT, 3.0, 0x9DD66F0F4E7D7763),
        ContrastRow("ContrastMaskImage, RGBA, overlay", 4, ZLV40_CONTRAST_MASK_OVERLAY, 10.0, 0x32501260534427BA),
        MatchRow("GetHSVColorMatchMaskFromImage, the seed's colour", kWidth, ZLV40_MATCH_SEED, 0, 0xBC818FADA9AAC6C5),
        MatchRow("GetHSVColorMatchMaskFromImage, up to a border", kWidth, ZLV40_MATCH_UP_TO_BORDER, 15,
                 0x7EC50C0915BCEF95),
        MatchRow("GetHSVColorMatchMaskFromImage, padded mask", kWidth + 5, ZLV40_MATCH_SEED, 0, 0x1D3F9ED18C78FD91),
    };
}

}  // namespace zlvtest
