// Stipple and reflections.
#include "golden/golden.h"
#include "plain/plain_reflection.h"
#include "plain/plain_stipple.h"

#include "zlv40.h"

#include <thread>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// On threads of their own, whose random generators start from 1.
GoldenRow ThreadRow(const char* name, std::function<std::uint32_t(GoldenPicture&)> apply,
                    std::function<void(GoldenPicture&, PlainGenerator&)> plain, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                std::uint32_t result = 0;
                std::thread([&] { result = apply(p); }).join();
                return result;
            },
            [=](GoldenPicture& p) {
                PlainGenerator generator;
                plain(p, generator);
            },
            checksum};
}

GoldenRow StippleRow(const char* name, std::uint32_t density, std::uint32_t filterKind, std::uint8_t flags,
                     std::uint64_t checksum)
{
    return ThreadRow(
        name,
        [=](GoldenPicture& p) {
            return ZLV40_Stipple(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, density,
                                 filterKind, flags);
        },
        [=](GoldenPicture& p, PlainGenerator& generator) {
            PlainStipple({p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride}, density, filterKind,
                         flags, std::pow, generator, PlainSilence);
        },
        checksum);
}

GoldenRow ReflectRow(const char* name, std::uint32_t splitRow, std::uint32_t fadeShape, std::uint32_t flags,
                     std::uint64_t checksum)
{
    constexpr double kFadeStart = 0.2, kFadeEnd = 1.3, kRipple = 0.4;
    constexpr std::uint32_t kColor = 0xFF603010, kRippleScale = 9;
    const std::uint32_t rows = kHeight - splitRow;
    return ThreadRow(
        name,
        [=](GoldenPicture& p) {
            return ZLV40_ReflectImage(p.image.data(), kWidth, kHeight, 3, p.stride, p.output.data(), p.stride, splitRow,
                                      rows, kFadeStart, kFadeEnd, kColor, fadeShape, kRipple, kRippleScale, flags);
        },
        [=](GoldenPicture& p, PlainGenerator& generator) {
            PlainReflection{p.image.data(), kWidth,   kHeight, p.stride,  p.output.data(), p.stride,     splitRow, rows,
                            kFadeStart,     kFadeEnd, kColor,  fadeShape, kRipple,         kRippleScale, flags}
                .Run(generator, PlainSilence);
        },
        checksum);
}

}  // namespace

std::vector<GoldenRow> ReflectionGolden()
{
    return {
        StippleRow("Stipple, means", 30, 0, 0, 0x5445C0114B0E0408),
        StippleRow("Stipple, noise first, means", 60, 0, 1, 0x68C714FD345BFC23),
        StippleRow("Stipple, minima", 90, 1, 0, 0xE3D8AD4AC1B08948),
        StippleRow("Stipple, noise first, maxima", 50, 2, 1, 0x6B4E8B619A392AE8),
        StippleRow("Stipple, geometric means", 70, 3, 0, 0x7E7F7D436264D418),
        StippleRow("Stipple, power means", 100, 4, 0, 0x9881636E00AC4BFF),
        ReflectRow("ReflectImage, linear", 20, 0, 0, 0xCFFF148D639FDF02),
        ReflectRow("ReflectImage, smooth, rippled", 25, 1, 1, 0xDAAF1B5424F8FED2),
        ReflectRow("ReflectImage, fast, rippled", 15, 2, 1, 0x841A88D30CA1731E),
    };
}

}  // namespace zlvtest
