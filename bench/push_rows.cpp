// Pushing.
#include "bench_row.h"

#include "zlv40.h"

#include <cmath>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

Work Push(const Shape& shape, const point& from, const point& to)
{
    return [=](const Buffers& buffers) {
        ZLV40_PushImage(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                        buffers.output, &from, &to);
    };
}

#ifdef ZLV_BENCH_OPENCV

// Maps of the square around `to`, column by column, and cubic sampling with weights in 1/32. Nothing is clipped.
Peer CvPush(const Shape& shape, const point& from, const point& to)
{
    const int reach = 2 * int(std::hypot(from.x - to.x, from.y - to.y));
    return {"copy+maps+cv::remap",
            [=](const Buffers& buffers) {
                const int type = CV_8UC(int(shape.channels));
                const cv::Mat src(int(shape.height), int(shape.width), type, buffers.image);
                cv::Mat dst(src.size(), type, buffers.output);
                src.copyTo(dst);
                cv::Mat mapX(2 * reach, 2 * reach, CV_32F), mapY(mapX.size(), CV_32F);
                for (int column = 0; column < 2 * reach; ++column) {
                    // A column's middle is pulled towards `from` by a share that falls to both sides.
                    const float x = float(to.x - reach + column);
                    const float share = 1 - std::fabs(float(column - reach)) / float(reach);
                    const float middleX = x + share * float(from.x - to.x);
                    const float middleY = float(to.y) + share * float(from.y - to.y);
                    for (int row = 0; row < reach; ++row) {
                        const float t = float(row) / float(reach);
                        mapX.at<float>(row, column) = x + t * (middleX - x);
                        mapY.at<float>(row, column) = float(to.y - reach) + t * (middleY - float(to.y - reach));
                        mapX.at<float>(reach + row, column) = middleX + t * (x - middleX);
                        mapY.at<float>(reach + row, column) = middleY + t * (float(to.y + reach) - middleY);
                    }
                }
                cv::Mat square = dst(cv::Rect(to.x - reach, to.y - reach, 2 * reach, 2 * reach));
                cv::remap(src, square, mapX, mapY, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
            },
            false};
}

#else

Peer CvPush(const Shape&, const point&, const point&) { return {}; }

#endif

BenchRow PushRow(const std::string& layout, const Shape& shape, const point& from, const point& to)
{
    const std::string size = std::to_string(shape.width) + "x" + std::to_string(shape.height);
    const i32 distance = i32(std::hypot(from.x - to.x, from.y - to.y));
    return {"PushImage/" + layout + "/" + size + "/" + std::to_string(distance) + "px", shape, shape.Bytes(),
            Push(shape, from, to), CvPush(shape, from, to)};
}

}  // namespace

std::vector<BenchRow> PushRows()
{
    const Shape tiny = {16, 16, 3}, gray = {kFullWidth, kFullHeight, 1}, rgb = {kFullWidth, kFullHeight, 3};
    const Shape rgba = {kFullWidth, kFullHeight, 4};
    return {
        PushRow("rgb8", tiny, {6, 6}, {8, 8}),          PushRow("rgb8", rgb, {900, 480}, {960, 540}),
        PushRow("rgb8", rgb, {960, 270}, {960, 540}),   PushRow("gray8", gray, {900, 480}, {960, 540}),
        PushRow("rgba8", rgba, {900, 480}, {960, 540}),
    };
}

}  // namespace zlvbench
