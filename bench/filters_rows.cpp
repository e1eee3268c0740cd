// Window filters of the base layer, and the small passes that effects are made of.
#include "base/channels.h"
#include "base/convolution.h"
#include "base/despeckle.h"
#include "base/gray_morphology.h"
#include "base/histograms.h"
#include "bench_row.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 255;

Work Convolve(const Shape& shape, u32 side, const std::vector<f64>& kernel)
{
    return [=](const Buffers& buffers) {
        const u32 stride = shape.width * shape.channels;
        MV40_ApplyConvolutionFilterToImage(
            buffers.image, shape.width, shape.height, shape.channels, stride, buffers.output, stride, side, side,
            kernel.data(), 1.0, kAllChannels | kPlainSum | (shape.bytesPerSample == 2 ? kSixteenBitSamples : 0));
    };
}

Work Dilate(const Shape& shape, u32 side, const std::vector<u32>& element)
{
    return [=](const Buffers& buffers) {
        MV40_MorphoDilationGray(buffers.image, shape.width, shape.height, shape.width, element.data(), i32(side),
                                buffers.output, shape.width);
    };
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat View(const Shape& shape, u8* pixels, u32 channels)
{
    const int depth = shape.bytesPerSample == 2 ? CV_16U : CV_8U;
    return cv::Mat(int(shape.height), int(shape.width), CV_MAKETYPE(depth, int(channels)), pixels);
}

// Rounds where ours truncates, in single precision.
Peer CvFilter2D(const Shape& shape, u32 side, const std::vector<f64>& kernel)
{
    const cv::Mat weights = cv::Mat(int(side), int(side), CV_64F, const_cast<f64*>(kernel.data())).clone();
    return {"cv::filter2D",
            [=](const Buffers& buffers) {
                const cv::Mat from = View(shape, buffers.image, shape.channels);
                cv::Mat to = View(shape, buffers.output, shape.channels);
                cv::filter2D(from, to, -1, weights, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
            },
            false};
}

Peer CvDilate(const Shape& shape, u32 side)
{
    const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(int(side), int(side)));
    return {"cv::dilate", [=](const Buffers& buffers) {
                cv::Mat to = View(shape, buffers.output, 1);
                cv::dilate(View(shape, buffers.image, 1), to, element);
            }};
}

Peer CvGray(const Shape& shape)
{
    return {"cv::cvtColor",
            [=](const Buffers& buffers) {
                cv::Mat to = View(shape, buffers.output, 1);
                cv::cvtColor(View(shape, buffers.image, shape.channels), to, cv::COLOR_RGB2GRAY);
            },
            false};
}

Peer CvEqualize(const Shape& shape)
{
    return {"cv::equalizeHist",
            [=](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image, 1);
                cv::equalizeHist(image, image);
            },
            false};
}

#else

Peer CvFilter2D(const Shape&, u32, const std::vector<f64>&) { return {}; }
Peer CvDilate(const Shape&, u32) { return {}; }
Peer CvGray(const Shape&) { return {}; }
Peer CvEqualize(const Shape&) { return {}; }

#endif

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

BenchRow ConvolutionRow(const std::string& layout, const Shape& shape, u32 side, const std::vector<f64>& kernel,
                        const char* kind)
{
    const std::string window = std::to_string(side) + "x" + std::to_string(side);
    return {"ApplyConvolutionFilter/" + layout + "/" + SizeOf(shape) + "/" + window + kind, shape, shape.Bytes(),
            Convolve(shape, side, kernel), CvFilter2D(shape, side, kernel)};
}

// The weights of a cone that add up to 1: none of them is a short binary fraction.
std::vector<f64> Cone(u32 side)
{
    std::vector<f64> kernel(size_t(side) * side);
    f64 sum = 0;
    for (u32 i = 0; i < side * side; ++i) {
        const i32 half = i32(side / 2), dx = i32(i % side) - half, dy = i32(i / side) - half;
        kernel[i] = 1.0 / (1 + dx * dx + dy * dy);
        sum += kernel[i];
    }
    for (f64& weight : kernel) weight /= sum;
    return kernel;
}

// Whole numbers from -8 to 8.
std::vector<f64> WholeNumbers(u32 side)
{
    std::vector<f64> kernel(size_t(side) * side);
    RandomBytes random(1);
    for (f64& weight : kernel) weight = f64(random.Next() % 17) - 8;
    return kernel;
}

BenchRow FlatDilationRow(const Shape& shape, u32 side)
{
    return {"MorphoDilationGray/gray8/" + SizeOf(shape) + "/flat" + std::to_string(side), shape, shape.Bytes(),
            Dilate(shape, side, std::vector<u32>(size_t(side) * side)), CvDilate(shape, side)};
}

BenchRow DilationRow(const Shape& shape, u32 side)
{
    std::vector<u32> element(size_t(side) * side);
    for (u32 i = 0; i < side * side; ++i) element[i] = i % 7;
    return {"MorphoDilationGray/gray8/" + SizeOf(shape) + "/entries" + std::to_string(side), shape, shape.Bytes(),
            Dilate(shape, side, element)};
}

BenchRow DespeckleRow(const std::string& layout, const Shape& shape)
{
    return {"DespeckleImage/" + layout + "/" + SizeOf(shape), shape, 0, [shape](const Buffers& buffers) {
                MV40_DespeckleImage(buffers.image, shape.width, shape.height, shape.channels,
                                    shape.width * shape.channels, kAllChannels);
            }};
}

// With a callback the channels go through one by one.
BenchRow ReportedDespeckleRow(const Shape& shape)
{
    return {"DespeckleImage/rgb8_reported/" + SizeOf(shape), shape, 0, [shape](const Buffers& buffers) {
                MV40_SetCallback([](u32, u32, u64) -> u32 { return 1; }, 0);
                MV40_DespeckleImage(buffers.image, shape.width, shape.height, shape.channels,
                                    shape.width * shape.channels, kAllChannels);
                MV40_SetCallback(nullptr, 0);
            }};
}

BenchRow GrayRow(const std::string& layout, const Shape& shape)
{
    return {"ImageToGrayScale8Bit/" + layout + "/" + SizeOf(shape), shape, shape.Pixels(),
            [shape](const Buffers& buffers) {
                MV40_ImageToGrayScale8Bit(buffers.image, shape.width, shape.height, shape.channels,
                                          shape.width * shape.channels, buffers.output, shape.width, 0);
            },
            CvGray(shape)};
}

BenchRow EqualizeRow(const Shape& shape)
{
    return {"HistogramEqualizeImage/gray8/" + SizeOf(shape), shape, 0,
            [shape](const Buffers& buffers) {
                MV40_HistogramEqualizeImage(buffers.image, shape.width, shape.height, 1, shape.width, 0, 255, 1);
            },
            CvEqualize(shape)};
}

}  // namespace

std::vector<BenchRow> FilterRows()
{
    const Shape tiny = {16, 16, 3}, tinyGray = {16, 16, 1};
    const Shape gray = {kFullWidth, kFullHeight, 1}, rgb = {kFullWidth, kFullHeight, 3};
    const Shape rgb16 = {kFullWidth, kFullHeight, 3, 2}, rgba = {kFullWidth, kFullHeight, 4};
    return {
        ConvolutionRow("rgb8", tiny, 5, Cone(5), ""),
        ConvolutionRow("rgb8", rgb, 3, Cone(3), ""),
        ConvolutionRow("rgb8", rgb, 5, Cone(5), ""),
        ConvolutionRow("rgb8", rgb, 9, Cone(9), ""),
        ConvolutionRow("rgb8", rgb, 5, WholeNumbers(5), "_whole"),
        ConvolutionRow("rgb16", rgb16, 5, Cone(5), ""),
        ConvolutionRow("rgb16", rgb16, 5, WholeNumbers(5), "_whole"),
        DespeckleRow("rgb8", tiny),
        DespeckleRow("rgb8", rgb),
        ReportedDespeckleRow(rgb),
        DespeckleRow("rgba8", rgba),
        DespeckleRow("gray8", gray),
        FlatDilationRow(tinyGray, 7),
        FlatDilationRow(gray, 3),
        FlatDilationRow(gray, 7),
        FlatDilationRow(gray, 31),
        DilationRow(gray, 3),
        DilationRow(gray, 7),
        GrayRow("rgb8", tiny),
        GrayRow("rgb8", rgb),
        EqualizeRow(tinyGray),
        EqualizeRow(gray),
    };
}

}  // namespace zlvbench
