// Pictures through a list of warps.
#include "bench_row.h"

#include "zlv40.h"

#include <cmath>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr f64 kPi = 3.14159265358979323846;

// A part of the picture: with these radii warps touch 38% of 1920 x 1080.
f64 RadiusFor(const Shape& shape) { return shape.height * 500 / 1080.0; }

using Add = std::function<void(const Shape&)>;

void AddSpin(const Shape& shape) { ZLV40_AddSpinTransform(shape.width, shape.height, RadiusFor(shape), 90, 0, 0); }
void AddLens(const Shape& shape) { ZLV40_AddLensTransform(shape.width, shape.height, RadiusFor(shape), 0, 0); }
void AddRipple(const Shape& shape)
{
    ZLV40_AddRippleTransform(shape.width, shape.height, RadiusFor(shape), 10, 20, 0, 0, ZLV40_RIPPLE_LINEAR);
}

Work Warp(const Shape& shape, const Add& add, u32 sampling)
{
    return [=](const Buffers& buffers) {
        ZLV40_ClearAllTransforms();
        add(shape);
        const u32 stride = shape.width * shape.channels;
        ZLV40_TransformProcess(buffers.image, shape.width, shape.height, stride, buffers.output, stride,
                               i32(shape.channels), sampling, 0);
        ZLV40_ClearAllTransforms();
    };
}

// A position around the centre.
struct Polar {
    f64 angle, radius;
};

#ifdef ZLV_BENCH_OPENCV

// A map of every pixel's position, as a client of cv::remap writes it, and the remapping.
template <class BendAt>
Peer CvRemap(const Shape& shape, BendAt bend, u32 sampling)
{
    return {"map+cv::remap",
            [=](const Buffers& buffers) {
                const cv::Mat from(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), buffers.image);
                cv::Mat to(from.rows, from.cols, from.type(), buffers.output);
                cv::Mat mapX(from.rows, from.cols, CV_32F), mapY(from.rows, from.cols, CV_32F);
                const f64 centerX = (shape.width - 1) * 0.5, centerY = (shape.height - 1) * 0.5;
                const f64 limit = RadiusFor(shape);
                for (int y = 0; y < from.rows; ++y) {
                    float *const rowX = mapX.ptr<float>(y), *const rowY = mapY.ptr<float>(y);
                    for (int x = 0; x < from.cols; ++x) {
                        const f64 dx = x - centerX, dy = y - centerY, r = std::sqrt(dx * dx + dy * dy);
                        rowX[x] = float(x);
                        rowY[x] = float(y);
                        if (r == 0 || r > limit) continue;
                        const Polar bent = bend(Polar{std::atan2(dy, dx), r});
                        rowX[x] = float(centerX + std::cos(bent.angle) * bent.radius);
                        rowY[x] = float(centerY + std::sin(bent.angle) * bent.radius);
                    }
                }
                const int methods[] = {cv::INTER_NEAREST, cv::INTER_LINEAR, cv::INTER_CUBIC};
                cv::remap(from, to, mapX, mapY, methods[sampling], cv::BORDER_CONSTANT);
            },
            false};
}

#else

template <class BendAt>
Peer CvRemap(const Shape&, BendAt, u32)
{
    return {};
}

#endif

Peer PeerOf(const Shape& shape, const std::string& warp, u32 sampling)
{
    const f64 limit = RadiusFor(shape);
    const f64 halfDiagonal = std::hypot((shape.width - 1) * 0.5, (shape.height - 1) * 0.5);
    if (warp == "spin") {
        const auto bend = [=](Polar at) { return Polar{at.angle + (1 - at.radius / limit) * kPi / 2, at.radius}; };
        return CvRemap(shape, bend, sampling);
    }
    if (warp == "lens") {
        const auto bend = [=](Polar at) {
            return Polar{at.angle, std::sin(at.radius / halfDiagonal * kPi / 2) * at.radius};
        };
        return CvRemap(shape, bend, sampling);
    }
    const auto bend = [=](Polar at) {
        const f64 part = at.radius / limit;
        return Polar{at.angle, at.radius + std::sin(kPi * part * 20) * 10 * (1 - part)};
    };
    return CvRemap(shape, bend, sampling);
}

}  // namespace

std::vector<BenchRow> WarpRows()
{
    const struct {
        const char* name;
        Add add;
    } warps[] = {{"spin", AddSpin}, {"lens", AddLens}, {"ripple", AddRipple}};
    const char* const samplings[] = {"nearest", "bilinear", "bicubic"};
    const struct {
        const char* layout;
        Shape shape;
    } pictures[] = {{"rgb8", {16, 16, 3}},
                    {"rgb8", {kFullWidth, kFullHeight, 3}},
                    {"gray8", {kFullWidth, kFullHeight, 1}},
                    {"rgba8", {kFullWidth, kFullHeight, 4}}};
    std::vector<BenchRow> rows;
    for (const auto& [layout, shape] : pictures) {
        for (const auto& warp : warps) {
            for (u32 sampling = 0; sampling < 3; ++sampling) {
                rows.push_back({std::string("TransformProcess/") + warp.name + "_" + samplings[sampling] + "/" +
                                    layout + "/" + std::to_string(shape.width) + "x" + std::to_string(shape.height),
                                shape, shape.Bytes(), Warp(shape, warp.add, sampling),
                                PeerOf(shape, warp.name, sampling)});
            }
        }
    }
    return rows;
}

}  // namespace zlvbench
