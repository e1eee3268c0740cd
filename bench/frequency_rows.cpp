// Fourier transforms, filters of frequencies, pictures of them.
#include "bench_row.h"
#include "frequency_peers.h"

#include <cstring>

#include "zlv40.h"

namespace zlvbench {

namespace {

constexpr Shape kGray = {1024, 1024, 1};
constexpr size_t kGridBytes = size_t(kGray.width) * kGray.height * 2 * sizeof(f64);
constexpr f64 kWideSigma = 1e4;  // runs after runs must not end in subnormal numbers, which cost more than others

f64* GridOf(const Buffers& buffers) { return reinterpret_cast<f64*>(buffers.output); }

// Makes the grid of the image, once in the life of the buffers: a mark behind the grid tells.
void PrepareGrid(const Buffers& buffers)
{
    constexpr u64 kMark = 0x5A4C5634305A4C56;
    u8* const mark = buffers.output + kGridBytes;
    if (std::memcmp(mark, &kMark, sizeof kMark) == 0) return;
    for (size_t i = 0; i < kGray.Pixels(); ++i) {
        GridOf(buffers)[2 * i] = buffers.image[i] / 255.0;
        GridOf(buffers)[2 * i + 1] = 0;
    }
    std::memcpy(mark, &kMark, sizeof kMark);
}

BenchRow Row(const char* name, Work work, Peer peer)
{
    return {name, kGray, kGridBytes + sizeof(u64) + kGray.Pixels(), std::move(work), std::move(peer)};
}

}  // namespace

std::vector<BenchRow> FrequencyRows()
{
    constexpr u32 kSide = kGray.width;
    return {
        Row(
            "DoFFT/gray8/1024x1024",
            [](const Buffers& buffers) { ZLV40_DoFFT(buffers.image, nullptr, kSide, kSide, kSide, GridOf(buffers)); },
            FftwTransform(kGray, true, PrepareGrid)),
        Row(
            "DoFFTInverse/c128/1024x1024",
            [](const Buffers& buffers) {
                PrepareGrid(buffers);
                ZLV40_DoFFTInverse(kSide, kSide, GridOf(buffers));
            },
            FftwTransform(kGray, false, PrepareGrid)),
        Row(
            "FilterFFT/gaussian_low_pass/1024x1024",
            [](const Buffers& buffers) {
                PrepareGrid(buffers);
                ZLV40_FilterFFT(GridOf(buffers), kSide, kSide, ZLV40_FFT_GAUSSIAN_LOW_PASS, &kWideSigma);
            },
            CvGaussianMask(kGray, kWideSigma, PrepareGrid)),
        Row(
            "MakeGrayscaleFromFFT/real_scaled/1024x1024",
            [](const Buffers& buffers) {
                PrepareGrid(buffers);
                ZLV40_MakeGrayscaleFromFFT(buffers.output + kGridBytes + sizeof(u64), nullptr, GridOf(buffers), kSide,
                                           kSide, kSide, 1, 1);
            },
            CvNormalizeRealParts(kGray, kGridBytes + sizeof(u64), PrepareGrid)),
    };
}

}  // namespace zlvbench
