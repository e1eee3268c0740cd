// The segmented colourise.
#include "bench_row.h"
#include "imagequant_peer.h"

#include "zlv40.h"

#include <memory>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

// A palette, and its indices smoothed by a median of 5 x 5.
Peer QuantizerAndMedian(const Shape& shape, u32 colors)
{
#ifdef ZLV_BENCH_OPENCV
    const Work quantize = ImageQuantWork(shape, colors, false);
    if (!quantize) return {};
    const auto work = [=](const Buffers& buffers) {
        quantize(buffers);
        const cv::Mat indices(int(shape.height), int(shape.width), CV_8UC1, buffers.output);
        cv::Mat smooth;
        cv::medianBlur(indices, smooth, 5);
        smooth.copyTo(indices);
    };
    return {"libimagequant speed 10 + cv::medianBlur", work, false};
#else
    static_cast<void>(shape), static_cast<void>(colors);
    return {};
#endif
}

BenchRow Row(const Shape& shape, const std::string& what, u32 colors, u32 mode, u32 filterSize)
{
    const std::string name = "SegmentedColorizeRGBImage/" + std::to_string(colors) + "_" + what + "/" +
                             std::to_string(shape.width) + "x" + std::to_string(shape.height);
    const auto palette = std::make_shared<std::vector<u8>>(1024);
    return {name, shape, shape.Pixels(),
            [=](const Buffers& buffers) {
                ZLV40_SegmentedColorizeRGBImage(buffers.image, shape.width, shape.height, 0, buffers.output,
                                                i32(shape.width), palette->data(), colors, mode, filterSize, 0);
            },
            QuantizerAndMedian(shape, colors)};
}

// The same by the shorter call.
BenchRow TwoModesRow(const Shape& shape)
{
    const auto palette = std::make_shared<std::vector<u8>>(1024);
    return {"SegmentedColorizeRGB/16_median5/" + std::to_string(shape.width) + "x" + std::to_string(shape.height),
            shape, shape.Pixels(),
            [=](const Buffers& buffers) {
                ZLV40_SegmentedColorizeRGB(buffers.image, shape.width, shape.height, 0, buffers.output,
                                           i32(shape.width), palette->data(), 16, 5, 1);
            },
            QuantizerAndMedian(shape, 16)};
}

}  // namespace

std::vector<BenchRow> SegmentedRows()
{
    constexpr Shape kTiny = {16, 16, 3}, kFull = {kFullWidth, kFullHeight, 3}, kOdd = {1001, 1001, 3};
    return {
        Row(kTiny, "median5", 16, ZLV40_SEGMENT_MEDIAN, 5),
        Row(kFull, "median5", 16, ZLV40_SEGMENT_MEDIAN, 5),
        Row(kFull, "median21", 16, ZLV40_SEGMENT_MEDIAN, 21),
        Row(kFull, "close5x5", 16, ZLV40_SEGMENT_CLOSE, 2),
        Row(kFull, "close_ring15", 16, ZLV40_SEGMENT_CLOSE, 11),
        Row(kFull, "hit_or_miss_cross", 16, ZLV40_SEGMENT_HIT_OR_MISS, 1),
        Row(kFull, "boundary5x5", 16, ZLV40_SEGMENT_BOUNDARY, 2),
        Row(kFull, "median5", 256, ZLV40_SEGMENT_MEDIAN, 5),
        Row(kOdd, "median5", 16, ZLV40_SEGMENT_MEDIAN, 5),
        TwoModesRow(kFull),
    };
}

}  // namespace zlvbench
