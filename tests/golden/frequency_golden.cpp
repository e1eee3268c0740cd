// Frequencies and splines. Grids are rounded on their way into the picture: what is summed are samples.
#include "golden/golden.h"
#include "plain/plain_fourier.h"
#include "plain/plain_spline.h"

#include <cmath>
#include <cstring>

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr std::uint32_t kSide = 32;  // of the part of the picture that is transformed

// The bits of the grid itself, as the first rows of the output.
GoldenRow TransformRow(const char* name, bool isInverse, std::uint64_t checksum)
{
    constexpr std::uint32_t kWidth = 16, kHeight = 8;
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                std::vector<double> grid(2 * kWidth * kHeight);
                std::uint32_t done = ZLV40_DoFFT(p.image.data(), nullptr, kWidth, kHeight, p.stride, grid.data());
                if (isInverse) done &= ZLV40_DoFFTInverse(kWidth, kHeight, grid.data());
                std::memcpy(p.output.data(), grid.data(), grid.size() * sizeof(double));
                return done;
            },
            [=](GoldenPicture& p) {
                std::vector<double> grid(2 * kWidth * kHeight);
                PlainFourierOfPicture(p.image.data(), kWidth, kHeight, p.stride, grid.data());
                if (isInverse) PlainFourierGrid(false, kWidth, kHeight, grid.data());
                std::memcpy(p.output.data(), grid.data(), grid.size() * sizeof(double));
            },
            checksum};
}

// There, through a filter, and back.
GoldenRow FilterRow(const char* name, int kind, std::vector<double> params, bool isReal, bool isScaled,
                    std::uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                std::vector<double> grid(2 * kSide * kSide);
                return ZLV40_DoFFT(p.image.data(), nullptr, kSide, kSide, p.stride, grid.data()) == 1 &&
                       ZLV40_FilterFFT(grid.data(), kSide, kSide, kind, params.data()) == 1 &&
                       ZLV40_DoFFTInverse(kSide, kSide, grid.data()) == 1 &&
                       ZLV40_MakeGrayscaleFromFFT(p.output.data(), nullptr, grid.data(), kSide, kSide, p.stride, isReal,
                                                  isScaled) == 1;
            },
            [=](GoldenPicture& p) {
                std::vector<double> grid(2 * kSide * kSide);
                PlainFourierOfPicture(p.image.data(), kSide, kSide, p.stride, grid.data());
                PlainFilterGrid(grid.data(), kSide, kSide, kind, params.data(), {std::exp, std::pow});
                PlainFourierGrid(false, kSide, kSide, grid.data());
                PlainGrayscaleOfGrid(p.output.data(), nullptr, grid.data(), kSide, kSide, p.stride, isReal, isScaled);
            },
            checksum};
}

GoldenRow SplineRow(const char* name, std::uint32_t order, std::uint64_t checksum)
{
    constexpr std::uint32_t kControls = 9, kPoints = 40;
    const auto controls = [](const GoldenPicture& p) {
        return std::vector<double>(p.image.begin(), p.image.begin() + kControls + 2);
    };
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                const std::vector<double> in = controls(p);
                std::vector<double> out(3 * kPoints);
                const std::uint32_t done =
                    ZLV40_Get3DSplinePoints(kPoints, kControls, order, in.data(), in.data() + 1, in.data() + 2,
                                            out.data(), out.data() + kPoints, out.data() + 2 * kPoints);
                std::memcpy(p.output.data(), out.data(), out.size() * sizeof(double));
                return done;
            },
            [=](GoldenPicture& p) {
                const std::vector<double> in = controls(p);
                std::vector<double> out(3 * kPoints);
                PlainSpline(kControls, int(order))
                    .Evaluate(in.data(), in.data() + 1, in.data() + 2, kPoints, out.data(), out.data() + kPoints,
                              out.data() + 2 * kPoints);
                std::memcpy(p.output.data(), out.data(), out.size() * sizeof(double));
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> FrequencyGolden()
{
    return {
        TransformRow("DoFFT", false, 0x64ADEA8B2230035F),
        TransformRow("DoFFTInverse", true, 0x72BE3FFA33B1154B),
        FilterRow("FilterFFT, ideal low-pass", ZLV40_FFT_IDEAL_LOW_PASS, {6}, true, true, 0xB3DE58AFF055471E),
        FilterRow("FilterFFT, ideal band-pass", ZLV40_FFT_IDEAL_BAND_PASS, {2, 9}, true, false, 0x6C0D271D2C1F9988),
        FilterRow("FilterFFT, power law", ZLV40_FFT_POWER_LAW, {0.4}, true, true, 0x068EE2BBAF1855F8),
        FilterRow("FilterFFT, Butterworth low-pass", ZLV40_FFT_BUTTERWORTH_LOW_PASS, {5, 1.5}, true, true,
                  0xD90EFC0995A43314),
        FilterRow("FilterFFT, Butterworth emphasis", ZLV40_FFT_BUTTERWORTH_EMPHASIS, {5, 0.5, 2}, false, true,
                  0x641BE72ABBD12C90),
        FilterRow("FilterFFT, Gaussian high-pass", ZLV40_FFT_GAUSSIAN_HIGH_PASS, {4}, false, true, 0x2EF901F2D8046BB3),
        FilterRow("FilterFFT, homomorphic", ZLV40_FFT_HOMOMORPHIC, {5, 0.5, 2, 1}, false, false, 0x649C75FA2EFF98E0),
        SplineRow("Get3DSplinePoints, polyline", 2, 0x9BB7019F0124FA27),
        SplineRow("Get3DSplinePoints, cubic", 4, 0x4C31A5355B50712A),
    };
}

}  // namespace zlvtest
