// Generators.
#include "golden/golden.h"
#include "plain/plain_colored_noise.h"
#include "plain/plain_gradient.h"
#include "plain/plain_perlin.h"

#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <thread>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr std::uint8_t kColors[] = {255, 200, 0, 255, 20, 20, 90, 7, 200, 30, 60, 9};
constexpr double kPositions[] = {0, 100, 40};

double Power(double base, double exponent)
{
    return double(std::pow(static_cast<long double>(base), static_cast<long double>(exponent)));
}

// On threads of their own, whose random generators start from 1.
std::uint32_t OnAFreshThread(const std::function<std::uint32_t()>& call)
{
    std::uint32_t result = 0;
    std::thread([&] { result = call(); }).join();
    return result;
}

PlainPerlin FirstField()
{
    PlainGenerator generator;
    return PlainPerlin(generator);
}

void Put(GoldenPicture& p, const void* from, std::size_t bytes) { std::memcpy(p.image.data(), from, bytes); }

GoldenRow PerlinRow(const char* name, double scale, std::uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return OnAFreshThread([&] {
                    return ZLV40_GeneratePerlinNoise(p.image.data(), kWidth, kHeight, std::int32_t(kWidth), scale);
                });
            },
            [=](GoldenPicture& p) {
                const Bytes plane = PlainPerlinBytes(FirstField(), kWidth, kHeight, scale, 0);
                Put(p, plane.data(), plane.size());
            },
            checksum};
}

// Not turned: sines and cosines differ between C run-times.
GoldenRow SliceRow(const char* name, double scale, double z, double offsetX, double offsetY, std::uint64_t checksum)
{
    return {name,
            8,
            1,
            [=](GoldenPicture& p) {
                return OnAFreshThread([&] {
                    void* const field = ZLV40_InitializePerlinNoise3D();
                    const std::uint32_t result = ZLV40_GetPerlinNoise3DSliceDoubleEx(
                        field, p.Image<double>(), kWidth, kHeight, 0, scale, z, offsetX, offsetY, 0, 0, 0);
                    return result & ZLV40_DestroyPerlinNoise3D(field);
                });
            },
            [=](GoldenPicture& p) {
                const auto numbers = PlainPerlinSlice(FirstField(), kWidth, kHeight, {scale, z, offsetX, offsetY});
                Put(p, numbers.data(), numbers.size() * sizeof(double));
            },
            checksum};
}

GoldenRow ColoredRow(const char* name, std::uint32_t color, std::uint32_t amount, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return OnAFreshThread([&] {
                    return ZLV40_GenerateColoredNoise(p.image.data(), kWidth, kHeight, p.stride, color, amount,
                                                      ZLV40_NOISE_PERLIN);
                });
            },
            [=](GoldenPicture& p) {
                const double scale = 1.0 - (amount / 100.0) * 0.99;
                const Bytes plane = PlainPerlinBytes(FirstField(), kWidth, kHeight, scale, 0);
                for (std::size_t i = 0; i < plane.size(); ++i) {
                    PlainColorOfValue(color, plane[i], &p.image[i / kWidth * p.stride + i % kWidth * 3]);
                }
            },
            checksum};
}

GoldenRow LineRow(const char* name, std::uint32_t channels, std::uint32_t mode, double gamma, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_GradientFillImageLinear(p.image.data(), kWidth, kHeight, channels, p.stride, 10.5, 7, 50,
                                                     31, kColors, kPositions, 3, mode, gamma, 0);
            },
            [=](GoldenPicture& p) {
                const PlainLinearGradient plain = {{kColors, kPositions, 3, gamma, 0, Power}, 10.5, 7, 50, 31, mode};
                PlainFill(plain, p.image.data(), kWidth, kHeight, channels, p.stride);
            },
            checksum};
}

GoldenRow DiscRow(const char* name, std::uint32_t channels, double gamma, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_GradientFillImageRadial(p.image.data(), kWidth, kHeight, channels, p.stride, 28.5, 30, 18,
                                                     kColors, kPositions, 3, 0, gamma, ZLV40_COLORS_AS_IMAGE);
            },
            [=](GoldenPicture& p) {
                const PlainRadialGradient plain = {{kColors, kPositions, 3, gamma, 1, Power}, 28.5, 30, 18};
                PlainFill(plain, p.image.data(), kWidth, kHeight, channels, p.stride);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> GenerateGolden()
{
    return {
        PerlinRow("GeneratePerlinNoise", 0.07, 0x0E4D2B2D9459F369),
        PerlinRow("GeneratePerlinNoise, a cell a pixel", 1.03, 0x67B1DA05717CA011),
        SliceRow("GetPerlinNoise3DSliceDoubleEx", 0.07, 0.5, 3, -4.25, 0x24CD85321855D5D1),
        {"GenerateHugoNoise, no octave", 1, 1,
         [](GoldenPicture& p) {
             return ZLV40_GenerateHugoNoise(p.image.data(), kWidth, kHeight, p.stride, 1, 0.5, 0.1);
         },
         [](GoldenPicture& p) {
             for (std::size_t y = 0; y < kHeight; ++y) std::fill_n(&p.image[y * p.stride], kWidth, std::uint8_t(127));
         },
         0xDDB19AE2F3D58139},
        ColoredRow("GenerateColoredNoise", 0xC08040, 90, 0xD738549692495351),
        LineRow("GradientFillImageLinear", 3, ZLV40_GRADIENT_MIRRORED, 1, 0x25F0B1DD690CD642),
        LineRow("GradientFillImageLinear, one-sided, gamma 2.2", 4, ZLV40_GRADIENT_ONE_SIDED, 2.2, 0xE6D3CA5DD9689FF3),
        DiscRow("GradientFillImageRadial", 3, 1, 0xC0BA050FDB51529F),
        DiscRow("GradientFillImageRadial, gray, gamma 0.5", 1, 0.5, 0xDC551D162E1AA675),
    };
}

}  // namespace zlvtest
