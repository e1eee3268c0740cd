// Adaptive filters, and statistics of whole images.
#include "bench_row.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

#include <algorithm>

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 255;
constexpr u32 kMostChannels = 8;

// Numbers that are found go to the start of the output.
constexpr size_t kFoundBytes = kMostChannels * sizeof(f64);
f64* FoundIn(const Buffers& buffers) { return reinterpret_cast<f64*>(buffers.output); }

Work Unsharp(const Shape& shape, i32 flags)
{
    const u32 stride = shape.width * shape.channels;
    return [=](const Buffers& buffers) {
        ZLV40_AdaptiveUnsharpMask(buffers.image, shape.width, shape.height, i32(shape.channels), stride, stride,
                                  buffers.output, 8, 0.6, i8(flags));
    };
}

constexpr f64 kNoiseLevel = 20, kBandFactor = 2;

Work TrimmedMean(const Shape& shape)
{
    const u32 stride = shape.width * shape.channels;
    return [=](const Buffers& buffers) {
        ZLV40_AdaptiveDWMTMFilter(buffers.image, i32(shape.width), i32(shape.height), buffers.output, shape.channels,
                                  stride, stride, kNoiseLevel, kBandFactor, kAllChannels);
    };
}

Work Statistic(const Shape& shape, decltype(ZLV40_FindImageMean)* function)
{
    return [=](const Buffers& buffers) {
        function(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                 FoundIn(buffers), kAllChannels);
    };
}

// Random bytes have a mean of 127.5 and a deviation of 73.9: about half of the samples are enhanced.
constexpr f64 kMean = 127.5, kDeviation = 73.9, kMeanFactor = 0.9, kLow = 0.5, kHigh = 1.05, kGain = 1.4;

Work Enhancement(const Shape& shape, u32 windowSize)
{
    const u32 stride = shape.width * shape.channels;
    return [=](const Buffers& buffers) {
        f64 means[kMostChannels], deviations[kMostChannels];
        std::fill_n(means, kMostChannels, kMean);
        std::fill_n(deviations, kMostChannels, kDeviation);
        ZLV40_LocalHistogramEnhancement(buffers.image, shape.width, shape.height, shape.channels, stride,
                                        buffers.output, stride, windowSize, means, deviations, kMeanFactor, kLow, kHigh,
                                        kGain, kAllChannels);
    };
}

// The filter as it is told, sample by sample.
void TrimmedMeanLoop(const Shape& shape, const u8* src, u8* dst)
{
    const i64 step = shape.channels, stride = i64(shape.width) * step;
    const f64 q = kNoiseLevel * kBandFactor;
    for (i64 y = 2; y < i64(shape.height) - 2; ++y) {
        for (i64 i = 2 * step; i < stride - 2 * step; ++i) {
            const u8* const at = src + y * stride + i;
            u8 nine[9];
            size_t n = 0;
            for (i64 row = -1; row <= 1; ++row) {
                for (i64 column = -1; column <= 1; ++column) {
                    const u8 sample = at[row * stride + column * step];
                    size_t place = n++;
                    for (; place > 0 && nine[place - 1] > sample; --place) nine[place] = nine[place - 1];
                    nine[place] = sample;
                }
            }
            i32 sum = 0, count = 0;
            for (i64 row = -2; row <= 2; ++row) {
                for (i64 column = -2; column <= 1; ++column) {
                    const i32 sample = at[row * stride + column * step];
                    if (sample < nine[4] - q || sample > nine[4] + q) continue;
                    sum += sample;
                    ++count;
                }
            }
            dst[y * stride + i] = u8(f64(sum) / count);
        }
    }
}

Peer PlainTrimmedMean(const Shape& shape)
{
    return {"plain loop", [=](const Buffers& buffers) { TrimmedMeanLoop(shape, buffers.image, buffers.output); },
            false};  // the border is whatever was there
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat Mat(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

Peer CvUnsharp(const Shape& shape)
{
    return {"cv::GaussianBlur + addWeighted",
            [=](const Buffers& buffers) {
                const cv::Mat from = Mat(shape, buffers.image);
                cv::Mat smooth, to = Mat(shape, buffers.output);
                cv::GaussianBlur(from, smooth, cv::Size(3, 3), 0);
                cv::addWeighted(from, 1.6, smooth, -0.6, 0, to);
            },
            false};
}

Peer CvMean(const Shape& shape)
{
    return {"cv::mean",
            [=](const Buffers& buffers) {
                const cv::Scalar mean = cv::mean(Mat(shape, buffers.image));
                std::copy_n(mean.val, 4, FoundIn(buffers));
            },
            false};
}

Peer CvDeviation(const Shape& shape)
{
    return {"cv::meanStdDev",
            [=](const Buffers& buffers) {
                cv::Scalar mean, deviation;
                cv::meanStdDev(Mat(shape, buffers.image), mean, deviation);
                std::copy_n(deviation.val, 4, FoundIn(buffers));
            },
            false};
}

Peer CvEnhancement(const Shape& shape, u32 windowSize)
{
    return {"cv::boxFilter + sqrBoxFilter + masks",
            [=](const Buffers& buffers) {
                const cv::Mat from = Mat(shape, buffers.image);
                const cv::Size window = {int(windowSize), int(windowSize)};
                cv::Mat mean, square, multiplied, to = Mat(shape, buffers.output);
                cv::boxFilter(from, mean, CV_32F, window, cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
                cv::sqrBoxFilter(from, square, CV_32F, window, cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
                const cv::Mat variance = square - mean.mul(mean);
                const cv::Scalar low = cv::Scalar::all(kLow * kLow * kDeviation * kDeviation);
                const cv::Scalar high = cv::Scalar::all(kHigh * kHigh * kDeviation * kDeviation);
                const cv::Mat isChosen =
                    (variance >= low) & (variance <= high) & (mean >= cv::Scalar::all(kMeanFactor * kMean));
                from.convertTo(multiplied, CV_8U, kGain);
                to = (multiplied & isChosen) | (from & ~isChosen);
            },
            false};
}

#else

Peer CvUnsharp(const Shape&) { return {}; }
Peer CvMean(const Shape&) { return {}; }
Peer CvDeviation(const Shape&) { return {}; }
Peer CvEnhancement(const Shape&, u32) { return {}; }

#endif

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

BenchRow UnsharpRow(const std::string& set, const std::string& layout, const Shape& shape, i32 flags)
{
    return {"AdaptiveUnsharpMask/" + layout + "/" + SizeOf(shape) + "/" + set, shape, shape.Bytes(),
            Unsharp(shape, flags), CvUnsharp(shape)};
}

BenchRow TrimmedRow(const std::string& layout, const Shape& shape)
{
    return {"AdaptiveDWMTMFilter/" + layout + "/" + SizeOf(shape), shape, shape.Bytes(), TrimmedMean(shape),
            PlainTrimmedMean(shape)};
}

BenchRow MeanRow(const std::string& layout, const Shape& shape)
{
    return {"FindImageMean/" + layout + "/" + SizeOf(shape), shape, kFoundBytes, Statistic(shape, ZLV40_FindImageMean),
            CvMean(shape)};
}

BenchRow DeviationRow(const std::string& layout, const Shape& shape)
{
    return {"FindImageStandardDeviation/" + layout + "/" + SizeOf(shape), shape, kFoundBytes,
            Statistic(shape, ZLV40_FindImageStandardDeviation), CvDeviation(shape)};
}

BenchRow EnhancementRow(const std::string& layout, const Shape& shape, u32 windowSize)
{
    return {"LocalHistogramEnhancement/" + layout + "/" + SizeOf(shape) + "/" + std::to_string(windowSize), shape,
            shape.Bytes(), Enhancement(shape, windowSize), CvEnhancement(shape, windowSize)};
}

}  // namespace

std::vector<BenchRow> AdaptiveRows()
{
    constexpr Shape kTiny = {16, 16, 3}, kGray = {kFullWidth, kFullHeight, 1}, kRgb = {kFullWidth, kFullHeight, 3};
    constexpr Shape kRgba = {kFullWidth, kFullHeight, 4};
    return {
        UnsharpRow("8_kernels", "rgb8", kTiny, ZLV40_UNSHARP_EIGHT_KERNELS),
        UnsharpRow("2_kernels", "rgb8", kRgb, 0),
        UnsharpRow("8_kernels", "rgb8", kRgb, ZLV40_UNSHARP_EIGHT_KERNELS),
        UnsharpRow("8_kernels_keep_alpha", "rgba8", kRgba, ZLV40_UNSHARP_EIGHT_KERNELS | ZLV40_UNSHARP_KEEP_ALPHA),
        TrimmedRow("rgb8", kTiny),
        TrimmedRow("gray8", kGray),
        TrimmedRow("rgb8", kRgb),
        MeanRow("rgb8", kTiny),
        MeanRow("gray8", kGray),
        MeanRow("rgb8", kRgb),
        DeviationRow("rgb8", kTiny),
        DeviationRow("gray8", kGray),
        DeviationRow("rgb8", kRgb),
        EnhancementRow("rgb8", kTiny, 3),
        EnhancementRow("gray8", kGray, 3),
        EnhancementRow("rgb8", kRgb, 3),
        EnhancementRow("rgb8", kRgb, 4),
        EnhancementRow("rgb8", kRgb, 7),
        EnhancementRow("rgb8", kRgb, 31),
        EnhancementRow("rgb8", kRgb, 301),
    };
}

}  // namespace zlvbench
