#include "opencv_peers.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace zlvbench {

#ifdef ZLV_BENCH_OPENCV

namespace {

cv::Mat View(const Shape& shape, u8* image)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), image);
}

}  // namespace

void PrepareOpenCv() { cv::setNumThreads(1); }

Peer CvBitwiseNot(const Shape& shape)
{
    return {"cv::bitwise_not", [shape](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image);
                cv::bitwise_not(image, image);
            }};
}

Peer CvLut(const Shape& shape, const std::vector<std::vector<u8>>& tables)
{
    cv::Mat table(1, 256, CV_8UC(int(tables.size())));
    for (size_t i = 0; i < 256; ++i) {
        for (size_t c = 0; c < tables.size(); ++c) table.data[i * tables.size() + c] = tables[c][i];
    }
    return {"cv::LUT", [shape, table](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image);
                cv::LUT(image, table, image);
            }};
}

#else

void PrepareOpenCv() {}
Peer CvBitwiseNot(const Shape&) { return {}; }
Peer CvLut(const Shape&, const std::vector<std::vector<u8>>&) { return {}; }

#endif

}  // namespace zlvbench
