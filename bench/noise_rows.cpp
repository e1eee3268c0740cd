// Motion blur and noise.
#include "bench_row.h"
#include "runtime/random.h"

#include "zlv40.h"

#include <cmath>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr f64 kVariance = 400;
constexpr u32 kAllChannels = 255;
constexpr f64 kPi = 3.14159265358979323846;

struct Motion {
    f64 angle, amount;
    i32 steps, mode;
};

Work Blur(const Shape& shape, const Motion& motion)
{
    return [=](const Buffers& buffers) {
        const u32 stride = shape.width * shape.channels;
        ZLV40_MotionBlur(buffers.image, i32(shape.width), i32(shape.height), stride, buffers.output, stride,
                         shape.channels, motion.angle, motion.amount, motion.steps, motion.mode);
    };
}

// The same draws on every run: outputs are compared.
void StartDraws() { SeedRandom(*baseContexts.Get(), 1); }

using AddWithMean = u32 (*)(u8*, u32, u32, u32, u32, f64, f64, i32, u32);
using Add = u32 (*)(u8*, u32, u32, u32, u32, f64, i32, u32);

Work Noise(const Shape& shape, AddWithMean add, i32 monochrome = 0, f64 variance = kVariance)
{
    return [=](const Buffers& buffers) {
        StartDraws();
        add(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels, variance, 0,
            monochrome, kAllChannels);
    };
}

Work Noise(const Shape& shape, Add add)
{
    return [=](const Buffers& buffers) {
        StartDraws();
        add(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels, kVariance, 0,
            kAllChannels);
    };
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat View(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

// Rounds, and repeats the edge. Angles from 0 to 90 degrees.
Peer CvLine(const Shape& shape, const Motion& motion)
{
    const f64 radians = motion.angle / 180 * kPi, reach = (motion.steps - 1) * motion.amount;
    const int columns = int(reach * std::sin(radians)) + 1, rows = int(reach * std::cos(radians)) + 1;
    cv::Mat kernel = cv::Mat::zeros(rows, columns, CV_32F);
    for (i32 i = 0; i < motion.steps; ++i) {
        const f64 distance = i * motion.amount;
        kernel.at<float>(int(distance * std::cos(radians)), int(distance * std::sin(radians))) +=
            1.0F / float(motion.steps);
    }
    return {"cv::filter2D",
            [=](const Buffers& buffers) {
                cv::Mat to = View(shape, buffers.output);
                cv::filter2D(View(shape, buffers.image), to, -1, kernel, cv::Point(0, 0), 0, cv::BORDER_REPLICATE);
            },
            false};
}

// One affine map a step, and the mean of what they give. Black outside.
Peer CvMaps(const Shape& shape, i32 steps, const std::function<cv::Mat(i32)>& mapOfStep)
{
    return {"cv::warpAffine+add",
            [=](const Buffers& buffers) {
                const cv::Mat from = View(shape, buffers.image);
                cv::Mat to = View(shape, buffers.output), sum = cv::Mat::zeros(from.size(), CV_16UC(from.channels()));
                cv::Mat moved;
                for (i32 i = 0; i < steps; ++i) {
                    cv::warpAffine(from, moved, mapOfStep(i), from.size(), cv::INTER_NEAREST | cv::WARP_INVERSE_MAP);
                    cv::add(sum, moved, sum, cv::noArray(), sum.type());
                }
                sum.convertTo(to, CV_8U, 1.0 / steps);
            },
            false};
}

Peer CvSpin(const Shape& shape, const Motion& motion)
{
    const cv::Point2f centre(float(shape.width / 2), float(shape.height / 2));
    return CvMaps(shape, motion.steps, [=](i32 i) {
        return cv::getRotationMatrix2D(centre, (motion.steps / 2 - i) * motion.amount * 18 / kPi / kPi, 1);
    });
}

Peer CvZoom(const Shape& shape, const Motion& motion)
{
    const cv::Point2f centre(float(shape.width / 2), float(shape.height / 2));
    return CvMaps(shape, motion.steps,
                  [=](i32 i) { return cv::getRotationMatrix2D(centre, 0, 1 - i * motion.amount / 100); });
}

// Draws of OpenCV's own generator, as 16-bit levels.
Peer CvRandn(const Shape& shape)
{
    return {"cv::randn+add",
            [=](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image), noise(image.size(), CV_16SC(image.channels()));
                cv::randn(noise, 0, std::sqrt(kVariance));
                cv::add(image, noise, image, cv::noArray(), CV_8U);
            },
            false};
}

Peer CvRandu(const Shape& shape)
{
    return {"cv::randu+add",
            [=](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image), noise(image.size(), CV_16SC(image.channels()));
                const f64 reach = std::sqrt(3 * kVariance);
                cv::randu(noise, -reach, reach);
                cv::add(image, noise, image, cv::noArray(), CV_8U);
            },
            false};
}

Peer CvLogarithms(const Shape& shape, const char* name, f64 scale, bool hasRoot)
{
    return {name,
            [=](const Buffers& buffers) {
                cv::Mat image = View(shape, buffers.image), noise(image.size(), CV_32FC(image.channels()));
                cv::randu(noise, 3e-6, 1);
                cv::log(noise, noise);
                noise *= scale;
                if (hasRoot) cv::sqrt(noise, noise);
                cv::add(image, noise, image, cv::noArray(), CV_8U);
            },
            false};
}

#else

Peer CvLine(const Shape&, const Motion&) { return {}; }
Peer CvSpin(const Shape&, const Motion&) { return {}; }
Peer CvZoom(const Shape&, const Motion&) { return {}; }
Peer CvRandn(const Shape&) { return {}; }
Peer CvRandu(const Shape&) { return {}; }
Peer CvLogarithms(const Shape&, const char*, f64, bool) { return {}; }

#endif

Peer CvExponential(const Shape& shape)
{
    return CvLogarithms(shape, "cv::randu+log+add", -2 * std::sqrt(kVariance / 2), false);
}

Peer CvRayleigh(const Shape& shape)
{
    return CvLogarithms(shape, "cv::randu+log+sqrt+add", -2 * 2.3299 * kVariance, true);
}

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

BenchRow BlurRow(const std::string& layout, const Shape& shape, const std::string& path, const Motion& motion,
                 const Peer& peer)
{
    return {"MotionBlur/" + layout + "/" + SizeOf(shape) + "/" + path + "_" + std::to_string(motion.steps), shape,
            shape.Bytes(), Blur(shape, motion), peer};
}

}  // namespace

std::vector<BenchRow> NoiseRows()
{
    const Shape tiny = {16, 16, 3}, gray = {kFullWidth, kFullHeight, 1}, rgb = {kFullWidth, kFullHeight, 3};
    const Shape rgba = {kFullWidth, kFullHeight, 4};
    const auto line = [](const std::string& layout, const Shape& shape, f64 angle, i32 steps) {
        const Motion motion = {angle, 1, steps, ZLV40_MOTION_LINEAR};
        return BlurRow(layout, shape, "linear" + std::to_string(i32(angle)), motion, CvLine(shape, motion));
    };
    const auto spin = [](const std::string& layout, const Shape& shape, i32 steps) {
        const Motion motion = {0, 1, steps, ZLV40_MOTION_SPIN};
        return BlurRow(layout, shape, "spin", motion, CvSpin(shape, motion));
    };
    const auto zoom = [](const std::string& layout, const Shape& shape, i32 steps) {
        const Motion motion = {0, 1, steps, ZLV40_MOTION_ZOOM};
        return BlurRow(layout, shape, "zoom", motion, CvZoom(shape, motion));
    };
    return {
        line("rgb8", tiny, 45, 15),
        line("rgb8", rgb, 45, 5),
        line("rgb8", rgb, 45, 15),
        line("rgb8", rgb, 45, 60),
        line("rgb8", rgb, 45, 300),
        line("rgb8", rgb, 0, 60),
        line("rgb8", rgb, 90, 60),
        line("gray8", gray, 45, 15),
        spin("rgb8", tiny, 15),
        spin("rgb8", rgb, 3),
        spin("rgb8", rgb, 15),
        spin("gray8", gray, 15),
        spin("rgba8", rgba, 15),
        zoom("rgb8", tiny, 15),
        zoom("rgb8", rgb, 15),
        zoom("gray8", gray, 15),
        zoom("rgba8", rgba, 15),
        {"AddGaussianNoise/rgb8/16x16", tiny, 0, Noise(tiny, ZLV40_AddGaussianNoise), CvRandn(tiny)},
        {"AddGaussianNoise/rgb8/1920x1080", rgb, 0, Noise(rgb, ZLV40_AddGaussianNoise), CvRandn(rgb)},
        {"AddGaussianNoise/rgb8_monochrome/1920x1080", rgb, 0, Noise(rgb, ZLV40_AddGaussianNoise, 1)},
        {"AddGaussianNoise/rgb8_variance0/1920x1080", rgb, 0,
         [noise = Noise(rgb, ZLV40_AddGaussianNoise, 0, 0)](const Buffers& buffers) {
             buffers.image[0] = u8(~buffers.image[0]);  // a variance of 0 changes nothing by itself
             noise(buffers);
         }},
        {"AddUniformNoise/rgb8/16x16", tiny, 0, Noise(tiny, ZLV40_AddUniformNoise), CvRandu(tiny)},
        {"AddUniformNoise/rgb8/1920x1080", rgb, 0, Noise(rgb, ZLV40_AddUniformNoise), CvRandu(rgb)},
        {"AddNegativeExpNoise/rgb8/16x16", tiny, 0, Noise(tiny, ZLV40_AddNegativeExpNoise), CvExponential(tiny)},
        {"AddNegativeExpNoise/rgb8/1920x1080", rgb, 0, Noise(rgb, ZLV40_AddNegativeExpNoise), CvExponential(rgb)},
        {"AddRayleighNoise/rgb8/16x16", tiny, 0, Noise(tiny, ZLV40_AddRayleighNoise), CvRayleigh(tiny)},
        {"AddRayleighNoise/rgb8/1920x1080", rgb, 0, Noise(rgb, ZLV40_AddRayleighNoise), CvRayleigh(rgb)},
    };
}

}  // namespace zlvbench
