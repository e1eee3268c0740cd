// Stipple and reflections. Each run draws the same noise.
#include "bench_row.h"
#include "runtime/random.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

// The rows that stay, of as many as the picture has.
constexpr f64 kSplit = 0.65, kFadeStart = 0.1, kFadeEnd = 1.3, kRipple = 0.4;
constexpr u32 kColor = 0x402010, kRippleScale = 24, kSeed = 1;

u32 SplitRow(const Shape& shape) { return u32(shape.height * kSplit); }
std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

#ifdef ZLV_BENCH_OPENCV

// A displacement that is there already, where ours makes noise.
struct CvRipples {
    cv::Mat x, y;

    explicit CvRipples(const Shape& shape) : x(int(shape.height), int(shape.width), CV_32FC1), y(x.size(), CV_32FC1)
    {
        for (int row = 0; row < x.rows; ++row) {
            for (int column = 0; column < x.cols; ++column) {
                x.at<float>(row, column) = float(column + (row * 7 + column * 3) % 16 * 0.5);
                y.at<float>(row, column) = float(row + (row * 3 + column * 5) % 16 * 0.5);
            }
        }
    }
};

Peer CvReflect(const Shape& shape, bool isRippled)
{
    const CvRipples ripples(shape);
    return {isRippled ? "cv: remap, resize, flip, blend" : "cv: resize, flip, blend",
            [=](const Buffers& buffers) {
                const int split = int(SplitRow(shape)), height = int(shape.height), width = int(shape.width);
                const cv::Mat image(height, width, CV_8UC3, buffers.image);
                cv::Mat made(height, width, CV_8UC3, buffers.output), warped, small,
                    mask(height - split, width, CV_32F);
                image.rowRange(0, split).copyTo(made.rowRange(0, split));
                if (isRippled) cv::remap(image, warped, ripples.x, ripples.y, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
                const cv::Mat& upper = isRippled ? warped : image;
                cv::resize(upper.rowRange(0, split), small, mask.size(), 0, 0, cv::INTER_LANCZOS4);
                cv::flip(small, small, 0);
                for (int y = 0; y < mask.rows; ++y) mask.row(y) = float(y) / float(mask.rows);
                const cv::Mat colour(small.size(), CV_8UC3, cv::Scalar(0x10, 0x20, 0x40));
                cv::blendLinear(small, colour, 1 - mask, mask, small);
                small.copyTo(made.rowRange(split, height));
            },
            false};
}

#else

Peer CvReflect(const Shape&, bool) { return {}; }

#endif

BenchRow ReflectRow(const Shape& shape, bool isRippled)
{
    return {"ReflectImage/rgb8/" + SizeOf(shape) + (isRippled ? "/ripple" : "/plain"), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                SeedRandom(*baseContexts.Get(), kSeed);
                const u32 stride = shape.width * 3, split = SplitRow(shape);
                ZLV40_ReflectImage(buffers.image, shape.width, shape.height, 3, stride, buffers.output, stride, split,
                                   shape.height - split, kFadeStart, kFadeEnd, kColor, 0, kRipple, kRippleScale,
                                   isRippled ? ZLV40_REFLECT_RIPPLED : 0);
            },
            CvReflect(shape, isRippled)};
}

BenchRow StippleRow(const Shape& shape, const std::string& form, u32 density, u32 filterKind, u8 flags)
{
    return {"Stipple/rgb8/" + SizeOf(shape) + "/" + form, shape, shape.Bytes(), [=](const Buffers& buffers) {
                SeedRandom(*baseContexts.Get(), kSeed);
                const u32 stride = shape.width * 3;
                ZLV40_Stipple(buffers.image, shape.width, shape.height, stride, buffers.output, stride, density,
                              filterKind, flags);
            }};
}

}  // namespace

std::vector<BenchRow> ReflectionRows()
{
    constexpr Shape kTiny = {16, 16, 3}, kRgb = {kFullWidth, kFullHeight, 3};
    return {
        ReflectRow(kTiny, false),
        ReflectRow(kRgb, false),
        ReflectRow(kRgb, true),
        StippleRow(kTiny, "mean_last", 50, ZLV40_STIPPLE_MEAN, 0),
        StippleRow(kRgb, "mean_last", 50, ZLV40_STIPPLE_MEAN, 0),
        StippleRow(kRgb, "mean_first", 50, ZLV40_STIPPLE_MEAN, ZLV40_STIPPLE_NOISE_FIRST),
        StippleRow(kRgb, "mean_last_dense", 100, ZLV40_STIPPLE_MEAN, 0),
    };
}

}  // namespace zlvbench
