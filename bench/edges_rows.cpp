// Edges and bilateral smoothing.
#include "bench_row.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 255;
constexpr f64 kBilateralSigma = 30;

Work Bilateral(const Shape& shape, u32 size, u32 flags)
{
    return [=](const Buffers& buffers) {
        const u32 stride = shape.width * shape.channels;
        ZLV40_BilateralFilterImage(buffers.image, shape.width, shape.height, stride, shape.channels, buffers.output,
                                   stride, size, ZLV40_WEIGHTS_GAUSSIAN, kBilateralSigma, kAllChannels | flags);
    };
}

Work Sobel(const Shape& shape, u32 flags)
{
    const u32 stride = shape.width * (flags & ZLV40_COMBINED ? 1 : shape.channels);
    return [=](const Buffers& buffers) {
        ZLV40_SobelFilter(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                          reinterpret_cast<u16*>(buffers.output), stride, flags);
    };
}

Work Canny(const Shape& shape, f64 sigma)
{
    return [=](const Buffers& buffers) {
        ZLV40_CannyEdgeDetector(buffers.image, shape.width, shape.height, shape.width, buffers.output, shape.width,
                                sigma, 0.5, 0.8);
    };
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat Mat(const Shape& shape, u8* pixels, int type)
{
    return cv::Mat(int(shape.height), int(shape.width), type, pixels);
}

// Round windows, weights in floats, and one range weight for all channels of a pixel.
Peer CvBilateral(const Shape& shape, u32 size, int threads)
{
    const int type = CV_8UC(int(shape.channels));
    return {threads > 1 ? "cv::bilateralFilter, 2 threads" : "cv::bilateralFilter",
            [=](const Buffers& buffers) {
                cv::Mat to = Mat(shape, buffers.output, type);
                cv::setNumThreads(threads);
                cv::bilateralFilter(Mat(shape, buffers.image, type), to, int(size), kBilateralSigma, kBilateralSigma,
                                    cv::BORDER_REPLICATE);
                cv::setNumThreads(1);
            },
            false};
}

cv::Mat CvMagnitudes(const Shape& shape, u8* image)
{
    const cv::Mat from = Mat(shape, image, CV_8UC(int(shape.channels)));
    cv::Mat gx, gy;
    cv::Sobel(from, gx, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
    cv::Sobel(from, gy, CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE);
    return cv::abs(gx) + cv::abs(gy);
}

Peer CvSobel(const Shape& shape)
{
    return {"cv::Sobel x2 + abs + add", [=](const Buffers& buffers) {
                cv::Mat to = Mat(shape, buffers.output, CV_16SC(int(shape.channels)));
                CvMagnitudes(shape, buffers.image).copyTo(to);
            }};
}

Peer CvCombinedSobel(const Shape& shape, int threads)
{
    return {threads > 1 ? "cv::Sobel x2 + abs + transform, 2 threads" : "cv::Sobel x2 + abs + transform",
            [=](const Buffers& buffers) {
                cv::setNumThreads(threads);
                cv::Mat to = Mat(shape, buffers.output, CV_16SC1);
                const cv::Mat third = (cv::Mat_<float>(1, 3) << 1 / 3.f, 1 / 3.f, 1 / 3.f);
                cv::transform(CvMagnitudes(shape, buffers.image), to, third);
                cv::setNumThreads(1);
            },
            false};
}

Peer CvCanny(const Shape& shape, f64 sigma)
{
    return {"cv::GaussianBlur + cv::Canny",
            [=](const Buffers& buffers) {
                cv::Mat smooth, to = Mat(shape, buffers.output, CV_8UC1);
                cv::GaussianBlur(Mat(shape, buffers.image, CV_8UC1), smooth, cv::Size(), sigma, sigma,
                                 cv::BORDER_REPLICATE);
                cv::Canny(smooth, to, 40, 80, 3, true);
            },
            false};
}

#else

Peer CvBilateral(const Shape&, u32, int) { return {}; }
Peer CvSobel(const Shape&) { return {}; }
Peer CvCombinedSobel(const Shape&, int) { return {}; }
Peer CvCanny(const Shape&, f64) { return {}; }

#endif

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

BenchRow BilateralRow(const std::string& form, const std::string& layout, const Shape& shape, u32 size, u32 flags)
{
    const int threads = flags & ZLV40_WORKER_THREADS ? 2 : 1;
    return {"BilateralFilterImage/" + layout + "/" + SizeOf(shape) + "/" + std::to_string(size) + "_" + form, shape,
            shape.Bytes(), Bilateral(shape, size, flags), CvBilateral(shape, size, threads)};
}

BenchRow SobelRow(const std::string& layout, const Shape& shape)
{
    return {"SobelFilter/per_channel/" + layout + "/" + SizeOf(shape), shape, 2 * shape.Bytes(),
            Sobel(shape, kAllChannels), CvSobel(shape)};
}

BenchRow CombinedSobelRow(const std::string& mode, const std::string& layout, const Shape& shape, u32 flags)
{
    const int threads = flags & ZLV40_WORKER_THREADS ? 2 : 1;
    return {"SobelFilter/" + mode + "/" + layout + "/" + SizeOf(shape), shape, 2 * shape.Pixels(),
            Sobel(shape, ZLV40_COMBINED | flags), shape.channels == 3 ? CvCombinedSobel(shape, threads) : Peer{}};
}

BenchRow CannyRow(const Shape& shape, const std::string& sigma)
{
    return {"CannyEdgeDetector/gray8/" + SizeOf(shape) + "/sigma=" + sigma, shape, shape.Bytes(),
            Canny(shape, std::stod(sigma)), CvCanny(shape, std::stod(sigma))};
}

}  // namespace

std::vector<BenchRow> EdgesRows()
{
    constexpr Shape kTinyGray = {16, 16, 1}, kTiny = {16, 16, 3};
    constexpr Shape kGray = {kFullWidth, kFullHeight, 1}, kRgb = {kFullWidth, kFullHeight, 3};
    constexpr Shape kRgba = {kFullWidth, kFullHeight, 4};
    return {
        BilateralRow("2d", "rgb8", kTiny, 9, 0),
        BilateralRow("2d", "gray8", kGray, 5, 0),
        BilateralRow("2d", "gray8", kGray, 9, 0),
        BilateralRow("2d", "gray8", kGray, 25, 0),
        BilateralRow("2d", "rgb8", kRgb, 9, 0),
        BilateralRow("2d_threads", "rgb8", kRgb, 9, ZLV40_WORKER_THREADS),
        BilateralRow("separable", "rgb8", kRgb, 9, ZLV40_SEPARABLE),
        BilateralRow("separable", "rgb8", kRgb, 25, ZLV40_SEPARABLE),
        SobelRow("rgb8", kTiny),
        SobelRow("gray8", kGray),
        SobelRow("rgb8", kRgb),
        CombinedSobelRow("combined", "rgb8", kRgb, 0),
        CombinedSobelRow("combined", "rgba8", kRgba, 0),
        CombinedSobelRow("combined_threads", "rgb8", kRgb, ZLV40_WORKER_THREADS),
        CannyRow(kTinyGray, "1.4"),
        CannyRow(kGray, "0.5"),
        CannyRow(kGray, "1.4"),
        CannyRow(kGray, "10"),
    };
}

}  // namespace zlvbench
