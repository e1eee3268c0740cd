// Motion blur and noise.
#include "golden/golden.h"
#include "plain/plain_motion_blur.h"
#include "plain/plain_noise.h"

#include "zlv40.h"

#include <cmath>
#include <thread>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// Rounded from more digits: where an arc's positions are whole numbers but for roundings, the last bits decide.
constexpr PlainMotionMath kMath = {
    [](double x) { return double(std::sin(static_cast<long double>(x))); },
    [](double x) { return double(std::cos(static_cast<long double>(x))); },
    [](double y, double x) { return double(std::atan2(static_cast<long double>(y), static_cast<long double>(x))); },
};

GoldenRow BlurRow(const char* name, std::uint32_t channels, double angle, double amount, std::int32_t steps,
                  std::int32_t mode, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_MotionBlur(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, channels,
                                        angle, amount, steps, mode);
            },
            [=](GoldenPicture& p) {
                PlainMotionBlur({p.image.data(), kWidth, kHeight, p.stride, channels}, p.output.data(), p.stride,
                                {angle, amount, steps, mode, kMath});
            },
            checksum};
}

using Add = std::uint32_t (*)(std::uint8_t* image, std::uint32_t channels, std::uint32_t stride, std::int32_t mono);

// On threads of their own, whose random generators start from 1.
GoldenRow NoiseRow(const char* name, std::uint32_t channels, PlainNoise::Kind kind, bool isMonochrome, Add add,
                   std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                std::uint32_t result = 0;
                std::thread([&] { result = add(p.image.data(), channels, p.stride, isMonochrome); }).join();
                return result;
            },
            [=](GoldenPicture& p) {
                PlainGenerator generator;
                const double mean = kind == PlainNoise::Kind::Gaussian || kind == PlainNoise::Kind::Uniform ? 3.5 : 0;
                PlainAddNoise({p.image.data(), kWidth, kHeight, channels, p.stride},
                              {kind, 300, mean, {std::log, std::sin, std::cos}}, isMonochrome, 7, generator);
            },
            checksum};
}

std::uint32_t AddGaussian(std::uint8_t* image, std::uint32_t channels, std::uint32_t stride, std::int32_t mono)
{
    return ZLV40_AddGaussianNoise(image, kWidth, kHeight, channels, stride, 300, 3.5, mono, 7);
}

std::uint32_t AddUniform(std::uint8_t* image, std::uint32_t channels, std::uint32_t stride, std::int32_t mono)
{
    return ZLV40_AddUniformNoise(image, kWidth, kHeight, channels, stride, 300, 3.5, mono, 7);
}

std::uint32_t AddExponential(std::uint8_t* image, std::uint32_t channels, std::uint32_t stride, std::int32_t mono)
{
    return ZLV40_AddNegativeExpNoise(image, kWidth, kHeight, channels, stride, 300, mono, 7);
}

std::uint32_t AddRayleigh(std::uint8_t* image, std::uint32_t channels, std::uint32_t stride, std::int32_t mono)
{
    return ZLV40_AddRayleighNoise(image, kWidth, kHeight, channels, stride, 300, mono, 7);
}

}  // namespace

std::vector<GoldenRow> NoiseGolden()
{
    using Kind = PlainNoise::Kind;
    return {
        BlurRow("MotionBlur, a line", 3, 30, 1.2, 15, ZLV40_MOTION_LINEAR, 0x3AC215EE9292D14C),
        BlurRow("MotionBlur, a long line down", 4, 0, 1, 30, ZLV40_MOTION_LINEAR, 0x45282CF830D5107A),
        BlurRow("MotionBlur, a long line to the left", 1, -90, 1, 30, ZLV40_MOTION_LINEAR, 0xDEAA689E558D082B),
        BlurRow("MotionBlur, more samples than 16 bits sum", 3, 200, 0.1, 300, ZLV40_MOTION_LINEAR, 0x306F44AE3B86ABBA),
        BlurRow("MotionBlur, an arc", 3, 0, 1, 15, ZLV40_MOTION_SPIN, 0x97F291C897633587),
        BlurRow("MotionBlur, an arc, gray", 1, 0, -2, 12, ZLV40_MOTION_SPIN, 0x3C85E477EFD11CC6),
        BlurRow("MotionBlur, a ray", 3, 0, 2.5, 15, ZLV40_MOTION_ZOOM, 0x0ED69B6D1D520419),
        BlurRow("MotionBlur, a ray through the centre", 4, 0, 14, 15, ZLV40_MOTION_ZOOM, 0xA55954B87FBD6D08),
        NoiseRow("AddGaussianNoise", 3, Kind::Gaussian, false, AddGaussian, 0x3C3B32990F4E2D8A),
        NoiseRow("AddGaussianNoise, monochrome, alpha left alone", 4, Kind::Gaussian, true, AddGaussian,
                 0x51DBF6E5964A33BA),
        NoiseRow("AddUniformNoise", 3, Kind::Uniform, false, AddUniform, 0xB93E0061A0A72FED),
        NoiseRow("AddNegativeExpNoise", 3, Kind::NegativeExponential, false, AddExponential, 0x3C3F5AABD92A4935),
        NoiseRow("AddRayleighNoise, alpha left alone", 4, Kind::Rayleigh, false, AddRayleigh, 0x175DAB3875FF323B),
    };
}

}  // namespace zlvtest
