// Shadows, bevels and glows, beside compositions of OpenCV's parts.
#include "bench_row.h"

#include "zlv40.h"

#include <cstring>
#include <string>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr i32 kDistance = 10;
constexpr i32 kBlurPercent = 50;  // sigma 3
constexpr i32 kAngle = 135;
constexpr u32 kBackground = 0xFFFFFF, kColor = 0x404040;
constexpr f64 kShadowSigma = 3;
constexpr u32 kGlowSize = 10;
constexpr f64 kGlowSigma = 4;
constexpr u32 kBevelWidth = 20;

// A new image: its middle row is kept, to be compared.
struct Made {
    u8* image = nullptr;
    u32 width = 0, height = 0;

    void KeepRowAndFree(const Shape& shape, u8* kept)
    {
        const size_t row = size_t(width) * shape.channels;
        std::memcpy(kept, image + height / 2 * row, size_t(shape.width) * shape.channels);
        ZLV40_FreeBlock(image);
    }
};

Work Shadow(const Shape& shape, u32 flags)
{
    return [=](const Buffers& buffers) {
        Made made;
        ZLV40_DropShadowEx(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                           &made.image, &made.width, &made.height, kDistance, kBlurPercent, kBackground, kColor, kAngle,
                           nullptr, nullptr, flags);
        made.KeepRowAndFree(shape, buffers.output);
    };
}

Work PackedShadow(const Shape& shape)
{
    return [=](const Buffers& buffers) {
        Made made;
        ZLV40_DropShadow(buffers.image, shape.width, shape.height, shape.channels, &made.image, &made.width,
                         &made.height, kDistance, kBlurPercent, kBackground, kColor, kAngle, 0);
        made.KeepRowAndFree(shape, buffers.output);
    };
}

Work Bevel(const Shape& shape, f64 blur)
{
    return [=](const Buffers& buffers) {
        ZLV40_ShadeBevelEdge(buffers.image, shape.width, shape.height, shape.width * shape.channels, kBevelWidth,
                             shape.channels, 0, 130, 150, 70, 50, blur);
    };
}

Work Glow(const Shape& shape, decltype(&ZLV40_OuterGlowRGBA) glow)
{
    return [=](const Buffers& buffers) {
        glow(buffers.image, shape.width, shape.height, shape.width * shape.channels, kGlowSize, 0.8, kColor, nullptr);
    };
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat Mat(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

// A blurred rectangle with the picture copied onto it.
Peer CvShadow(const Shape& shape)
{
    return {"cv fill + GaussianBlur + copy",
            [=](const Buffers& buffers) {
                const cv::Mat image = Mat(shape, buffers.image);
                cv::Mat made(image.rows + 24, image.cols + 24, image.type(), cv::Scalar::all(255));
                made(cv::Rect(15, 15, image.cols, image.rows)).setTo(cv::Scalar::all(64));
                cv::GaussianBlur(made, made, {}, kShadowSigma);
                image.copyTo(made(cv::Rect(8, 8, image.cols, image.rows)));
            },
            false};
}

// The alpha blurred, and a weighted sum in floats.
Peer CvOver(const Shape& shape, f64 sigma)
{
    return {"cv extract + GaussianBlur + blend",
            [=](const Buffers& buffers) {
                const cv::Mat image = Mat(shape, buffers.image);
                cv::Mat alpha, soft, wide, weights;
                cv::extractChannel(image, alpha, 3);
                cv::GaussianBlur(alpha, soft, {}, sigma);
                cv::cvtColor(soft, weights, cv::COLOR_GRAY2BGRA);
                cv::multiply(image, weights, wide, 1 / 255.0);
                cv::Mat to = Mat(shape, buffers.output);
                cv::addWeighted(image, 0.5, wide, 0.5, 0, to);
            },
            false};
}

Peer CvBevel(const Shape& shape, f64 sigma)
{
    return {"cv plane + GaussianBlur + multiply",
            [=](const Buffers& buffers) {
                cv::Mat image = Mat(shape, buffers.image);
                cv::Mat plane(image.rows, image.cols, CV_8UC3, cv::Scalar::all(100));
                cv::rectangle(plane, {0, 0, image.cols, int(kBevelWidth)}, cv::Scalar::all(150), cv::FILLED);
                if (sigma > 0) cv::GaussianBlur(plane, plane, {}, sigma);
                cv::multiply(image, plane, image, 1 / 100.0);
            },
            false};
}

#else

Peer CvShadow(const Shape&) { return {}; }
Peer CvOver(const Shape&, f64) { return {}; }
Peer CvBevel(const Shape&, f64) { return {}; }

#endif

}  // namespace

std::vector<BenchRow> LayerStylesRows()
{
    const Shape rgb = {kFullWidth, kFullHeight, 3}, rgba = {kFullWidth, kFullHeight, 4};
    return {
        {"DropShadowEx/rgb8/1920x1080/opaque", rgb, rgb.Bytes(), Shadow(rgb, 0), CvShadow(rgb)},
        {"DropShadowEx/rgba8/1920x1080/alpha", rgba, rgba.Bytes(), Shadow(rgba, ZLV40_SHADOW_OF_ALPHA),
         CvOver(rgba, kShadowSigma)},
        {"DropShadow/rgb8/1920x1080/opaque", rgb, rgb.Bytes(), PackedShadow(rgb), CvShadow(rgb)},
        {"OuterGlowRGBA/rgba8/1920x1080/size=10", rgba, rgba.Bytes(), Glow(rgba, ZLV40_OuterGlowRGBA),
         CvOver(rgba, kGlowSigma)},
        {"InnerGlowRGBA/rgba8/1920x1080/size=10", rgba, rgba.Bytes(), Glow(rgba, ZLV40_InnerGlowRGBA),
         CvOver(rgba, kGlowSigma)},
        {"ShadeBevelEdge/rgb8/1920x1080/width=20", rgb, 0, Bevel(rgb, 0), CvBevel(rgb, 0)},
        {"ShadeBevelEdge/rgb8/1920x1080/width=20,blur=200", rgb, 0, Bevel(rgb, 200), CvBevel(rgb, 2)},
    };
}

}  // namespace zlvbench
