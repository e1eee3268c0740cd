// Resizing a full picture: to a half, to two thirds and half again as large. Times are for pixels of the result.
#include "base/resize.h"
#include "bench_row.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

struct Kind {
    const char* name;
    ResizeMode mode;
    int peer;  // OpenCV's number of what comes near
};

#ifdef ZLV_BENCH_OPENCV
constexpr int kLanczosPeer = cv::INTER_LANCZOS4, kAreaPeer = cv::INTER_AREA, kLinearPeer = cv::INTER_LINEAR,
              kCubicPeer = cv::INTER_CUBIC, kNearestPeer = cv::INTER_NEAREST;
#else
constexpr int kLanczosPeer = 0, kAreaPeer = 0, kLinearPeer = 0, kCubicPeer = 0, kNearestPeer = 0;
#endif

constexpr Kind kLanczos = {"lanczos3", ResizeMode::Lanczos3, kLanczosPeer};
constexpr Kind kArea = {"area", ResizeMode::AreaAverage, kAreaPeer};
constexpr Kind kBilinear = {"bilinear", ResizeMode::Bilinear, kLinearPeer};
constexpr Kind kBicubic = {"bicubic", ResizeMode::Bicubic, kCubicPeer};
constexpr Kind kNearest = {"nearest", ResizeMode::Nearest, kNearestPeer};

u32 GoOn(u32, u32, u64) { return 1; }

Work Resize(const Shape& from, const Shape& to, ResizeMode mode)
{
    const u32 flags = from.bytesPerSample == 2 ? kResizeSixteenBit : 0;
    return [=](const Buffers& buffers) {
        MV40_ResizeImage(buffers.image, from.width, from.height, from.width * from.channels, buffers.output, to.width,
                         to.height, to.width * to.channels, to.channels, u32(mode), flags);
    };
}

// With somebody who listens.
Work ResizeReporting(const Shape& from, const Shape& to, ResizeMode mode)
{
    return [work = Resize(from, to, mode)](const Buffers& buffers) {
        MV40_SetCallback(GoOn, 0);
        work(buffers);
        MV40_SetCallback(nullptr, 0);
    };
}

// Other positions, other kernels and rounded results: comparable work, other bytes.
Peer CvResize([[maybe_unused]] const Shape& from, [[maybe_unused]] const Shape& to, [[maybe_unused]] int interpolation)
{
#ifdef ZLV_BENCH_OPENCV
    const auto view = [](const Shape& shape, u8* pixels) {
        const int type = CV_MAKETYPE(shape.bytesPerSample == 2 ? CV_16U : CV_8U, int(shape.channels));
        return cv::Mat(int(shape.height), int(shape.width), type, pixels);
    };
    const auto work = [=](const Buffers& buffers) {
        const cv::Mat image = view(from, buffers.image);
        cv::Mat output = view(to, buffers.output);
        cv::resize(image, output, output.size(), 0, 0, interpolation);
    };
    return {"cv::resize", work, false};
#else
    return {};
#endif
}

std::string Name(const Kind& kind, const std::string& layout, const Shape& from, const Shape& to)
{
    const auto size = [](const Shape& shape) {
        return std::to_string(shape.width) + "x" + std::to_string(shape.height);
    };
    return "ResizeImage/" + std::string(kind.name) + "/" + layout + "/" + size(from) + "/to=" + size(to);
}

BenchRow Row(const Kind& kind, const std::string& layout, const Shape& from, const Shape& to)
{
    return {Name(kind, layout, from, to),  from,       to.Bytes(), Resize(from, to, kind.mode),
            CvResize(from, to, kind.peer), to.Pixels()};
}

BenchRow RowWithoutPeer(const Kind& kind, const std::string& layout, const Shape& from, const Shape& to)
{
    return {Name(kind, layout, from, to), from, to.Bytes(), Resize(from, to, kind.mode), {}, to.Pixels()};
}

BenchRow ReportingRow(const Kind& kind, const std::string& layout, const Shape& from, const Shape& to)
{
    return {Name(kind, layout, from, to), from, to.Bytes(), ResizeReporting(from, to, kind.mode), {}, to.Pixels()};
}

}  // namespace

std::vector<BenchRow> ResizeRows()
{
    constexpr Shape kFull = {kFullWidth, kFullHeight, 3}, kFullGray = {kFullWidth, kFullHeight, 1};
    constexpr Shape kFull16 = {kFullWidth, kFullHeight, 3, 2};
    constexpr Shape kHalf = {960, 540, 3}, kTwoThirds = {1280, 720, 3}, kLarger = {2880, 1620, 3};
    constexpr Shape kHalfGray = {960, 540, 1}, kTwoThirds16 = {1280, 720, 3, 2}, kLarger16 = {2880, 1620, 3, 2};
    constexpr Shape kTile = {32, 32, 3}, kThumbnail = {16, 16, 3}, kSmall = {120, 68, 3};
    return {
        Row(kLanczos, "rgb8", kTile, kThumbnail),
        Row(kLanczos, "rgb8", kFull, kHalf),
        Row(kLanczos, "rgb8", kFull, kTwoThirds),
        Row(kLanczos, "rgb8", kFull, kLarger),
        // The peer takes 8 x 8 pixels whatever the ratio is; ours takes them all.
        RowWithoutPeer(kLanczos, "rgb8", kFull, kSmall),
        Row(kLanczos, "gray8", kFullGray, kHalfGray),
        ReportingRow(kLanczos, "rgb8_reporting", kFull, kHalf),
        Row(kArea, "rgb8", kFull, kHalf),
        Row(kArea, "rgb8", kFull, kTwoThirds),
        Row(kArea, "rgb8", kFull, kSmall),
        Row(kArea, "rgb16", kFull16, kTwoThirds16),
        Row(kBilinear, "rgb8", kTile, kThumbnail),
        Row(kBilinear, "rgb8", kFull, kHalf),
        Row(kBilinear, "rgb8", kFull, kLarger),
        Row(kBilinear, "rgb16", kFull16, kLarger16),
        Row(kBicubic, "rgb8", kFull, kHalf),
        Row(kBicubic, "rgb8", kFull, kLarger),
        Row(kNearest, "rgb8", kFull, kHalf),
        Row(kNearest, "rgb8", kFull, kLarger),
        ReportingRow(kNearest, "rgb8_reporting", kFull, kLarger),
    };
}

}  // namespace zlvbench
