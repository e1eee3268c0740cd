#include "frequency_peers.h"

#include <memory>

#ifdef ZLV_BENCH_FFTW
#include <fftw3.h>
#endif
#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

#ifdef ZLV_BENCH_FFTW

namespace {

// Made in memory of its own, as measuring destroys what it works on.
fftw_plan MeasuredPlan(const Shape& shape, bool isForward)
{
    fftw_complex* const grid = fftw_alloc_complex(shape.Pixels());
    const fftw_plan plan = fftw_plan_dft_2d(int(shape.height), int(shape.width), grid, grid,
                                            isForward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_MEASURE);
    fftw_free(grid);
    return plan;
}

}  // namespace

Peer FftwTransform(const Shape& shape, bool isForward, const Work& prepare)
{
    const auto plan = std::make_shared<fftw_plan>();
    return {"FFTW c2c",
            [=](const Buffers& buffers) {
                if (!*plan) *plan = MeasuredPlan(shape, isForward);
                prepare(buffers);
                fftw_complex* const grid = reinterpret_cast<fftw_complex*>(buffers.output);
                fftw_execute_dft(*plan, grid, grid);
            },
            false};
}

#else

Peer FftwTransform(const Shape&, bool, const Work&) { return {}; }

#endif

#ifdef ZLV_BENCH_OPENCV

namespace {

cv::Mat Grid(const Shape& shape, u8* grid) { return cv::Mat(int(shape.height), int(shape.width), CV_64FC2, grid); }

}  // namespace

Peer CvGaussianMask(const Shape& shape, f64 sigma, const Work& prepare)
{
    return {"cv mask+multiply",
            [=](const Buffers& buffers) {
                prepare(buffers);
                const int width = int(shape.width), height = int(shape.height);
                const cv::Mat across = cv::getGaussianKernel(width, sigma), down = cv::getGaussianKernel(height, sigma);
                const cv::Mat mask = down * across.t();
                cv::Mat both, grid = Grid(shape, buffers.output);
                cv::merge(std::vector<cv::Mat>{mask, mask}, both);
                cv::multiply(grid, both, grid, 1 / mask.at<double>(height / 2, width / 2));
            },
            false};
}

Peer CvNormalizeRealParts(const Shape& shape, size_t gridBytes, const Work& prepare)
{
    return {"cv extractChannel+normalize",
            [=](const Buffers& buffers) {
                prepare(buffers);
                cv::Mat real, picture(int(shape.height), int(shape.width), CV_8U, buffers.output + gridBytes);
                cv::extractChannel(Grid(shape, buffers.output), real, 0);
                cv::normalize(real, picture, 0, 255, cv::NORM_MINMAX, CV_8U);
            },
            false};
}

#else

Peer CvGaussianMask(const Shape&, f64, const Work&) { return {}; }
Peer CvNormalizeRealParts(const Shape&, size_t, const Work&) { return {}; }

#endif

}  // namespace zlvbench
