// Edges and bilateral smoothing.
#include "golden/golden.h"
#include "plain/plain_bilateral.h"
#include "plain/plain_canny.h"
#include "plain/plain_sobel.h"

#include <cmath>

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

GoldenRow BilateralRow(const char* name, std::uint32_t size, std::uint32_t kind, double sigma, std::uint32_t flags,
                       std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_BilateralFilterImage(p.image.data(), kWidth, kHeight, p.stride, 3, p.output.data(),
                                                  p.stride, size, kind, sigma, flags);
            },
            [=](GoldenPicture& p) {
                PlainBilateral({p.image.data(), int(kWidth), int(kHeight), p.stride, 3, p.output.data(), p.stride,
                                int(size), kind, sigma, flags},
                               {std::exp, std::cos})
                    .Run([](std::uint32_t, std::uint32_t) { return true; });
            },
            checksum};
}

GoldenRow SobelRow(const char* name, std::uint32_t channels, std::uint32_t flags, std::uint64_t checksum)
{
    constexpr auto kRows = kHeight / 2;  // the magnitudes take twice the room
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                const std::uint32_t result = ZLV40_SobelFilter(p.image.data(), kWidth, kRows, channels, p.stride,
                                                               p.Output<std::uint16_t>(), p.stride, flags);
                return flags & ZLV40_WORKER_THREADS ? std::uint32_t(result == 0) : result;
            },
            [=](GoldenPicture& p) {
                PlainSobel({p.image.data(), int(kWidth), int(kRows), int(channels), p.stride, p.Output<std::uint16_t>(),
                            p.stride, flags},
                           [](std::uint32_t, std::uint32_t) { return true; });
            },
            checksum};
}

GoldenRow CannyRow(const char* name, double sigma, std::uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_CannyEdgeDetector(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride,
                                               sigma, 0.4, 0.7);
            },
            [=](GoldenPicture& p) {
                PlainCannyDetector(
                    {p.image.data(), int(kWidth), int(kHeight), p.stride, p.output.data(), p.stride, sigma, 0.4, 0.7},
                    std::pow, [](std::uint32_t, std::uint32_t) { return true; });
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> EdgesGolden()
{
    constexpr std::uint32_t kThreads = ZLV40_WORKER_THREADS, kCombined = ZLV40_COMBINED;
    return {
        BilateralRow("BilateralFilterImage, Gaussian", 9, ZLV40_WEIGHTS_GAUSSIAN, 30, 7, 0x47F28953D7E0B74B),
        BilateralRow("BilateralFilterImage, linear, two channels", 6, ZLV40_WEIGHTS_LINEAR, 60, 5, 0x8C061B4CAA9F3431),
        BilateralRow("BilateralFilterImage, cosine, separable", 9, ZLV40_WEIGHTS_COSINE, 45, 7 | ZLV40_SEPARABLE,
                     0x38F43372D00CC5DF),
        BilateralRow("BilateralFilterImage, box", 5, ZLV40_WEIGHTS_BOX, 80, 7, 0x5FD6FA532B320627),
        BilateralRow("BilateralFilterImage, on threads", 9, ZLV40_WEIGHTS_GAUSSIAN, 30, 6 | kThreads,
                     0xEBC37CB7A788BEFB),
        SobelRow("SobelFilter, two channels of three", 3, 6, 0x9AF79CC8D249A6AB),
        SobelRow("SobelFilter, combined RGBA", 4, kCombined, 0x30B75DD73C9143A5),
        SobelRow("SobelFilter, combined RGB on threads", 3, kCombined | kThreads, 0xFE655DB705BE2E99),
        CannyRow("CannyEdgeDetector, narrow", 0.6, 0x66C2A1A3B6FACE63),
        CannyRow("CannyEdgeDetector, wide", 2.5, 0xC737E885C2D3ADDA),
    };
}

}  // namespace zlvtest
