#include "tone_peers.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

#ifdef ZLV_BENCH_OPENCV

namespace {

cv::Mat View(const Shape& shape, u8* pixels, u32 channels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(channels)), pixels);
}

cv::Mat RandomColors()
{
    cv::Mat colors(256, 1, CV_8UC3);
    const std::vector<u8> bytes = RandomTable<u8>(1);
    for (int i = 0; i < 768; ++i) colors.data[i] = bytes[size_t(i) % 256];
    return colors;
}

}  // namespace

Peer CvThreshold(const Shape& shape)
{
    return {"cv::threshold", [shape](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image, shape.channels);
                cv::threshold(image, image, 127, 255, cv::THRESH_BINARY);
            }};
}

Peer CvTransform(const Shape& shape, i32 angle)
{
    const float turn = float(angle) / 360;  // any matrix costs the same
    const cv::Mat matrix = (cv::Mat_<float>(3, 3) << 1 - turn, turn, 0, 0, 1 - turn, turn, turn, 0, 1 - turn);
    return {"cv::transform",
            [=](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image, shape.channels);
                cv::transform(image, image, matrix);
            },
            false};
}

Peer CvColorMap(const Shape& gray)
{
    const cv::Mat colors = RandomColors();
    return {"cv::applyColorMap",
            [=](const Buffers& buffers) {
                cv::Mat to = View(gray, buffers.output, 3);
                cv::applyColorMap(View(gray, buffers.image, 1), to, colors);
            },
            false};
}

Peer CvGrayColorMap(const Shape& rgb)
{
    const cv::Mat colors = RandomColors();
    return {"cvtColor+applyColorMap",
            [=](const Buffers& buffers) {
                cv::Mat image = View(rgb, buffers.image, 3), gray;
                cv::cvtColor(image, gray, cv::COLOR_RGB2GRAY);
                cv::applyColorMap(gray, image, colors);
            },
            false};
}

Peer CvContrastMask(const Shape& rgb, f64 sigma)
{
    return {"cv composite",
            [=](const Buffers& buffers) {
                cv::Mat image = View(rgb, buffers.image, 3), gray, mask, inverted, darker, lost;
                cv::cvtColor(image, gray, cv::COLOR_RGB2GRAY);
                cv::GaussianBlur(gray, gray, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
                cv::cvtColor(gray, mask, cv::COLOR_GRAY2RGB);
                cv::bitwise_not(mask, inverted);
                cv::multiply(image, inverted, darker, 1.0 / 255);
                cv::bitwise_not(image, lost);
                cv::multiply(lost, mask, lost, 1.0 / 255);
                cv::add(lost, darker, lost);
                cv::bitwise_not(lost, lost);
                cv::multiply(image, lost, lost, 1.0 / 255);
                cv::add(darker, lost, image);
            },
            false};
}

Peer CvFloodFill(const Shape& shape, const std::vector<f64>& picture, f64 tolerance)
{
    cv::Mat pixels(int(shape.height), int(shape.width), CV_32FC3);
    for (size_t i = 0; i < picture.size(); ++i) reinterpret_cast<float*>(pixels.data)[i] = float(picture[i]);
    const cv::Scalar range(tolerance * 360, tolerance, tolerance);
    return {"cv::floodFill",
            [=](const Buffers&) {
                cv::Mat image = pixels, mask = cv::Mat::zeros(image.rows + 2, image.cols + 2, CV_8U);
                cv::floodFill(image, mask, cv::Point(image.cols / 2, image.rows / 2), cv::Scalar(), nullptr, range,
                              range, 4 | cv::FLOODFILL_MASK_ONLY | cv::FLOODFILL_FIXED_RANGE);
            },
            false};
}

#else

Peer CvThreshold(const Shape&) { return {}; }
Peer CvTransform(const Shape&, i32) { return {}; }
Peer CvColorMap(const Shape&) { return {}; }
Peer CvGrayColorMap(const Shape&) { return {}; }
Peer CvContrastMask(const Shape&, f64) { return {}; }
Peer CvFloodFill(const Shape&, const std::vector<f64>&, f64) { return {}; }

#endif

}  // namespace zlvbench
