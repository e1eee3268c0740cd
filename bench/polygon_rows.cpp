// Polygons and convex hulls. OpenCV's fills draw the outline as well; its antialiasing smooths the outline alone.
#include "base/convex.h"
#include "base/polygon_fill.h"
#include "base/polygon_fill_bits.h"
#include "base/polygon_scanlines.h"
#include "bench_row.h"

#include <cmath>
#include <cstring>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zlvbench {

namespace {

constexpr u32 kColor = 0xFA3264C8;

using Points = std::vector<f64>;

// A star of `tips` tips that fills the image; its inner vertices lie at `depth` of the radius.
Points Star(const Shape& shape, u32 tips, f64 depth)
{
    Points points;
    for (u32 i = 0; i < 2 * tips; ++i) {
        const f64 angle = 3.141592653589793 * i / tips, radius = i % 2 ? depth : 1;
        points.push_back(shape.width * 0.5 * (1 + radius * std::sin(angle)) * 0.999);
        points.push_back(shape.height * 0.5 * (1 - radius * std::cos(angle)) * 0.999);
    }
    return points;
}

std::string PathOf(const std::string& name, const Shape& shape)
{
    const char* const layouts[] = {"", "gray8", "", "rgb8", "rgba8"};
    return name + "/" + layouts[shape.channels] + "/" + std::to_string(shape.width) + "x" +
           std::to_string(shape.height);
}

struct Style {
    f64 opacity = 1;
    u32 flags = 0;
    bool hasPattern = false;
};

Work Fill(const Shape& shape, const Points& points, const Style& style)
{
    constexpr u32 kTile = 40;
    const std::vector<u8> tile = [] {
        std::vector<u8> bytes(kTile * kTile * 4);
        RandomBytes random(9);
        for (u8& byte : bytes) byte = u8(random.Next());
        return bytes;
    }();
    return [=](const Buffers& buffers) {
        MV40_PolygonFillImage(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                              points.data(), u32(points.size() / 2), style.hasPattern ? tile.data() : nullptr, kTile,
                              kTile, kTile * 4, kColor, style.opacity, nullptr, 0, style.flags);
    };
}

#ifdef ZLV_BENCH_OPENCV

Peer CvFillPoly(const Shape& shape, const Points& points, bool isAntialiased)
{
    constexpr int kFractionBits = 8;
    std::vector<cv::Point> vertices;
    for (size_t i = 0; i < points.size(); i += 2) {
        vertices.emplace_back(int(points[i] * (1 << kFractionBits)), int(points[i + 1] * (1 << kFractionBits)));
    }
    const auto work = [=](const Buffers& buffers) {
        cv::Mat image(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), buffers.image);
        const std::vector<std::vector<cv::Point>> polygons = {vertices};
        cv::fillPoly(image, polygons, cv::Scalar(0xC8, 0x64, 0x32, 0xFA), isAntialiased ? cv::LINE_AA : cv::LINE_8,
                     kFractionBits);
    };
    return {isAntialiased ? "cv::fillPoly AA" : "cv::fillPoly", work, false};
}

// The image's bytes are the points.
Peer CvConvexHull(const Shape& shape)
{
    const auto work = [=](const Buffers& buffers) {
        const cv::Mat points(int(shape.Pixels()), 1, CV_32SC2, buffers.image);
        std::vector<cv::Point> hull;
        cv::convexHull(points, hull);
        buffers.output[0] = u8(hull.size());
    };
    return {"cv::convexHull", work, false};
}

#else

Peer CvFillPoly(const Shape&, const Points&, bool) { return {}; }
Peer CvConvexHull(const Shape&) { return {}; }

#endif

BenchRow FillRow(const std::string& name, const Shape& shape, const Points& points, const Style& style = {},
                 bool hasPeer = true)
{
    const bool isAntialiased = (style.flags & kPolygonAntialias) != 0;
    return {"PolygonFillImage/" + PathOf(name, shape), shape, 0, Fill(shape, points, style),
            hasPeer ? CvFillPoly(shape, points, isAntialiased) : Peer{}};
}

BenchRow BitsRow(const Shape& bytes, const Points& points)
{
    const auto ours = [=](const Buffers& buffers) {
        MV40_PolygonFill1Bit(buffers.image, bytes.width * 8, bytes.height, bytes.width, points.data(),
                             u32(points.size() / 2), 1);
    };
    return {"PolygonFill1Bit/star/" + std::to_string(bytes.width * 8) + "x" + std::to_string(bytes.height), bytes, 0,
            ours};
}

// The image has a pixel for each row of the polygon.
BenchRow ScanlinesRow(const std::string& name, const Shape& column, const Points& points)
{
    const auto ours = [=](const Buffers& buffers) {
        i32* rows = nullptr;
        f64 *lefts = nullptr, *rights = nullptr;
        u32 count = 0;
        MV40_GetPolygonScanlineArray(points.data(), u32(points.size() / 2), &rows, &lefts, &rights, &count);
        std::memcpy(buffers.image, lefts, column.Bytes());
        platform::FreeClientBlock(rows);
        platform::FreeClientBlock(lefts);
        platform::FreeClientBlock(rights);
    };
    return {"GetPolygonScanlineArray/" + name, column, 0, ours};
}

BenchRow HullRow(u32 count)
{
    const Shape points = {count, 1, 8};
    const auto ours = [=](const Buffers& buffers) {
        std::vector<i32> numbers(2 * size_t(count));
        std::memcpy(numbers.data(), buffers.image, points.Bytes());
        i32* hull = nullptr;
        u32 hullCount = 0;
        MV40_GetConvexHull(numbers.data(), count, &hull, &hullCount);
        buffers.output[0] = u8(hullCount);
        platform::FreeClientBlock(hull);
    };
    return {"GetConvexHull/points=" + std::to_string(count), points, 1, ours, CvConvexHull(points)};
}

}  // namespace

std::vector<BenchRow> PolygonRows()
{
    const auto full = [](u32 channels) { return Shape{kFullWidth, kFullHeight, channels}; };
    const Shape tiny = {16, 16, 3};
    constexpr f64 kHalf = 0.5;
    return {
        FillRow("star", tiny, Star(tiny, 5, 0.4)),
        FillRow("star", full(1), Star(full(1), 5, 0.4)),
        FillRow("star", full(3), Star(full(3), 5, 0.4)),
        FillRow("star", full(4), Star(full(4), 5, 0.4)),
        FillRow("star_of_2000_tips", full(3), Star(full(3), 2000, 0.7)),
        FillRow("star_half", full(3), Star(full(3), 5, 0.4), {kHalf, kPolygonBlend, false}, false),
        FillRow("star_pattern", full(3), Star(full(3), 5, 0.4), {1, 0, true}, false),
        FillRow("star_antialiased", tiny, Star(tiny, 5, 0.4), {1, kPolygonAntialias, false}),
        FillRow("star_antialiased", full(3), Star(full(3), 5, 0.4), {1, kPolygonAntialias, false}),
        FillRow("star_antialiased_fine", full(3), Star(full(3), 5, 0.4),
                {1, kPolygonAntialias | kPolygonFineSamples, false}),
        BitsRow({kFullWidth / 8, kFullHeight, 1}, Star(full(1), 5, 0.4)),
        ScanlinesRow("star", {1, kFullHeight, 8}, Star(full(1), 5, 0.4)),
        ScanlinesRow("star_of_2000_tips", {1, kFullHeight, 8}, Star(full(1), 2000, 0.7)),
        HullRow(100),
        HullRow(10000),
    };
}

}  // namespace zlvbench
