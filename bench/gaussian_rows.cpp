// The Gaussian blur: its direct engine, and the recursion in both precisions.
#include "base/gaussian_blur.h"
#include "bench_row.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 0xFF;

u32 GoOn(u32, u32, u64) { return 1; }

Work Blur(const Shape& shape, f64 sigma)
{
    const u32 flags = kAllChannels | (shape.bytesPerSample == 2 ? kSixteenBitSamples : 0);
    return [shape, sigma, flags](const Buffers& buffers) {
        const u32 stride = shape.width * shape.channels;
        MV40_GaussianBlurImage(buffers.image, shape.width, shape.height, shape.channels, stride, buffers.output, stride,
                               sigma, flags);
    };
}

// With somebody who listens: channel by channel, a report a line.
Work BlurReporting(const Shape& shape, f64 sigma)
{
    return [work = Blur(shape, sigma)](const Buffers& buffers) {
        MV40_SetCallback(GoOn, 0);
        work(buffers);
        MV40_SetCallback(nullptr, 0);
    };
}

// A Gaussian of the same sigma in its own fixed-point arithmetic: comparable work, other bytes.
Peer CvGaussianBlur([[maybe_unused]] const Shape& shape, [[maybe_unused]] f64 sigma)
{
#ifdef ZLV_BENCH_OPENCV
    const int type = CV_MAKETYPE(shape.bytesPerSample == 2 ? CV_16U : CV_8U, int(shape.channels));
    const auto work = [shape, type, sigma](const Buffers& buffers) {
        const cv::Mat image(int(shape.height), int(shape.width), type, buffers.image);
        cv::Mat output(int(shape.height), int(shape.width), type, buffers.output);
        cv::GaussianBlur(image, output, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
    };
    return {"cv::GaussianBlur", work, false};
#else
    return {};
#endif
}

std::string Name(const std::string& layout, const Shape& shape, const std::string& sigma)
{
    return "GaussianBlur/" + layout + "/" + std::to_string(shape.width) + "x" + std::to_string(shape.height) +
           "/sigma=" + sigma;
}

BenchRow Row(const std::string& layout, const Shape& shape, const std::string& sigma)
{
    const f64 value = std::stod(sigma);
    return {Name(layout, shape, sigma), shape, shape.Bytes(), Blur(shape, value), CvGaussianBlur(shape, value)};
}

BenchRow ReportingRow(const std::string& layout, const Shape& shape, const std::string& sigma)
{
    return {Name(layout, shape, sigma), shape, shape.Bytes(), BlurReporting(shape, std::stod(sigma))};
}

}  // namespace

std::vector<BenchRow> GaussianRows()
{
    constexpr Shape kSmall = {16, 16, 3}, kGray = {kFullWidth, kFullHeight, 1}, kRgb = {kFullWidth, kFullHeight, 3};
    constexpr Shape kRgb16 = {kFullWidth, kFullHeight, 3, 2};
    return {
        Row("rgb8", kSmall, "0.8"),
        Row("rgb8", kSmall, "2"),
        Row("rgb8", kSmall, "10"),
        Row("gray8", kGray, "2"),
        Row("gray8", kGray, "10"),
        Row("rgb8", kRgb, "0.8"),
        Row("rgb8", kRgb, "2"),
        Row("rgb8", kRgb, "10"),
        Row("rgb8", kRgb, "50"),
        Row("rgb16", kRgb16, "10"),
        ReportingRow("gray8_reporting", kGray, "2"),
        ReportingRow("gray8_reporting", kGray, "10"),
        ReportingRow("rgb8_reporting", kRgb, "0.8"),
        ReportingRow("rgb8_reporting", kRgb, "2"),
        ReportingRow("rgb8_reporting", kRgb, "10"),
    };
}

}  // namespace zlvbench
