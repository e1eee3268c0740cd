// Statistics of square windows. The peers repeat border pixels as ours do; means of theirs are rounded.
#include "bench_row.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cmath>
#endif

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 255;
constexpr i32 kOrder = 2;
constexpr f64 kBlurAmount = 0.5;

// Calls an export of the family, with its own argument before the mask if it has one.
template <class Export, class... Extra>
Work Filter(Export function, const Shape& shape, i32 side, Extra... extra)
{
    return [=](const Buffers& buffers) {
        const u32 stride = shape.width * shape.channels;
        function(buffers.image, shape.width, shape.height, buffers.output, shape.channels, stride, stride, side,
                 extra..., kAllChannels);
    };
}

f64 SharpenAmount(i32 side) { return 1.0 / (side * side); }

#ifdef ZLV_BENCH_OPENCV

cv::Mat View(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

// A peer that makes the second image of the first.
template <class Make>
Peer CvPeer(const char* name, const Shape& shape, bool isBitEqual, Make make)
{
    return {name,
            [=](const Buffers& buffers) {
                const cv::Mat from = View(shape, buffers.image);
                cv::Mat to = View(shape, buffers.output);
                make(from, to);
            },
            isBitEqual};
}

const cv::Point kCentre(-1, -1);

cv::Mat Square(i32 side) { return cv::getStructuringElement(cv::MORPH_RECT, cv::Size(side, side)); }

Peer CvErode(const Shape& shape, i32 side)
{
    return CvPeer("cv::erode", shape, true, [=](const cv::Mat& from, cv::Mat& to) {
        cv::erode(from, to, Square(side), kCentre, 1, cv::BORDER_REPLICATE);
    });
}

Peer CvDilate(const Shape& shape, i32 side)
{
    return CvPeer("cv::dilate", shape, true, [=](const cv::Mat& from, cv::Mat& to) {
        cv::dilate(from, to, Square(side), kCentre, 1, cv::BORDER_REPLICATE);
    });
}

Peer CvMidpoint(const Shape& shape, i32 side)
{
    return CvPeer("cv erode+dilate+addWeighted", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::Mat largest;
        cv::erode(from, to, Square(side), kCentre, 1, cv::BORDER_REPLICATE);
        cv::dilate(from, largest, Square(side), kCentre, 1, cv::BORDER_REPLICATE);
        cv::addWeighted(to, 0.5, largest, 0.5, 0, to);
    });
}

Peer CvBlur(const Shape& shape, i32 side)
{
    return CvPeer("cv::blur", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::blur(from, to, cv::Size(side, side), kCentre, cv::BORDER_REPLICATE);
    });
}

// Ours with an amount of one part of the area is twice the sample less the mean.
Peer CvWeightedBlur(const Shape& shape, i32 side, f64 own, f64 mean)
{
    return CvPeer("cv::blur+addWeighted", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::blur(from, to, cv::Size(side, side), kCentre, cv::BORDER_REPLICATE);
        cv::addWeighted(from, own, to, mean, 0, to);
    });
}

Peer CvSharpenFilter(const Shape& shape, i32 side)
{
    const f64 weight = -1.0 / (side * side);
    cv::Mat kernel(side, side, CV_32F, cv::Scalar(weight));
    kernel.at<f32>(side / 2, side / 2) = f32(2 + weight);
    return CvPeer("cv::filter2D", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::filter2D(from, to, -1, kernel, kCentre, 0, cv::BORDER_REPLICATE);
    });
}

template <class Value>
cv::Mat FloatTable(Value value)
{
    cv::Mat table(1, 256, CV_32F);
    for (int i = 0; i < 256; ++i) table.at<f32>(i) = f32(value(i));
    return table;
}

Peer CvGeometricMean(const Shape& shape, i32 side)
{
    const cv::Mat table = FloatTable([](int i) { return i == 0 ? -1e6 : std::log(i); });
    return CvPeer("cv LUT(log)+blur+exp f32", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::Mat numbers;
        cv::LUT(from, table, numbers);
        cv::blur(numbers, numbers, cv::Size(side, side), kCentre, cv::BORDER_REPLICATE);
        cv::exp(numbers, numbers);
        numbers.convertTo(to, CV_8U);
    });
}

Peer CvHarmonicMean(const Shape& shape, i32 side)
{
    const cv::Mat table = FloatTable([](int i) { return i == 0 ? 1e6 : 1.0 / i; });
    return CvPeer("cv LUT(1/v)+blur f32", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::Mat numbers;
        cv::LUT(from, table, numbers);
        cv::blur(numbers, numbers, cv::Size(side, side), kCentre, cv::BORDER_REPLICATE);
        cv::divide(1.0, numbers, numbers);
        numbers.convertTo(to, CV_8U);
    });
}

Peer CvQuadraticMean(const Shape& shape, i32 side)
{
    return CvPeer("cv::sqrBoxFilter+sqrt f32", shape, false, [=](const cv::Mat& from, cv::Mat& to) {
        cv::Mat numbers;
        cv::sqrBoxFilter(from, numbers, CV_32F, cv::Size(side, side), kCentre, true, cv::BORDER_REPLICATE);
        cv::sqrt(numbers, numbers);
        numbers.convertTo(to, CV_8U);
    });
}

#else

Peer CvErode(const Shape&, i32) { return {}; }
Peer CvDilate(const Shape&, i32) { return {}; }
Peer CvMidpoint(const Shape&, i32) { return {}; }
Peer CvBlur(const Shape&, i32) { return {}; }
Peer CvWeightedBlur(const Shape&, i32, f64, f64) { return {}; }
Peer CvSharpenFilter(const Shape&, i32) { return {}; }
Peer CvGeometricMean(const Shape&, i32) { return {}; }
Peer CvHarmonicMean(const Shape&, i32) { return {}; }
Peer CvQuadraticMean(const Shape&, i32) { return {}; }

#endif

}  // namespace

std::vector<BenchRow> WindowRows()
{
    std::vector<BenchRow> rows;
    const Shape tiny = {16, 16, 3}, rgb = {kFullWidth, kFullHeight, 3}, gray = {kFullWidth, kFullHeight, 1};
    const auto add = [&](const std::string& name, const Shape& shape, i32 side, Work ours, Peer peer) {
        const std::string layout = shape.channels == 1 ? "/gray8/" : "/rgb8/";
        const std::string size = std::to_string(shape.width) + "x" + std::to_string(shape.height);
        rows.push_back({name + layout + size + "/window=" + std::to_string(side), shape, shape.Bytes(), std::move(ours),
                        std::move(peer)});
    };
    const auto addExtremes = [&](const Shape& shape, i32 side) {
        add("MinimumFilter", shape, side, Filter(ZLV40_MinimumFilter, shape, side), CvErode(shape, side));
        add("MaximumFilter", shape, side, Filter(ZLV40_MaximumFilter, shape, side), CvDilate(shape, side));
        add("MidpointFilter", shape, side, Filter(ZLV40_MidpointFilter, shape, side), CvMidpoint(shape, side));
    };
    const auto addMean = [&](const Shape& shape, i32 side) {
        add("ArithmeticMeanFilter", shape, side, Filter(ZLV40_ArithmeticMeanFilter, shape, side), CvBlur(shape, side));
    };
    const auto addBlur = [&](const Shape& shape, i32 side) {
        add("BlurImage/half", shape, side, Filter(ZLV40_BlurImage, shape, side, kBlurAmount),
            CvWeightedBlur(shape, side, 1 - kBlurAmount, kBlurAmount));
    };
    const auto addSharpen = [&](const Shape& shape, i32 side) {
        add("SharpenImage", shape, side, Filter(ZLV40_SharpenImage, shape, side, SharpenAmount(side)),
            side == 3 ? CvSharpenFilter(shape, side) : CvWeightedBlur(shape, side, 2, -1));
    };
    const auto addMeansOfPowers = [&](const Shape& shape, i32 side) {
        add("GeometricMeanFilter", shape, side, Filter(ZLV40_GeometricMeanFilter, shape, side),
            CvGeometricMean(shape, side));
        add("HarmonicMeanFilter", shape, side, Filter(ZLV40_HarmonicMeanFilter, shape, side),
            CvHarmonicMean(shape, side));
        add("YpMeanFilter/order2", shape, side, Filter(ZLV40_YpMeanFilter, shape, side, kOrder),
            CvQuadraticMean(shape, side));
    };
    addExtremes(tiny, 7);
    addMean(tiny, 7);
    for (const i32 side : {3, 7, 15, 51}) addExtremes(rgb, side);
    for (const i32 side : {5, 15, 51}) addMean(rgb, side);
    for (const i32 side : {5, 15, 51}) addBlur(rgb, side);
    for (const i32 side : {3, 7, 51}) addSharpen(rgb, side);
    for (const i32 side : {5, 15, 51}) addMeansOfPowers(rgb, side);
    add("YpMeanFilter/order-1", rgb, 5, Filter(ZLV40_YpMeanFilter, rgb, 5, -1), CvHarmonicMean(rgb, 5));
    addExtremes(gray, 7);
    addMean(gray, 51);
    return rows;
}

}  // namespace zlvbench
