// Artistic effects.
#include "bench_row.h"

#include "zlv40.h"

#include <algorithm>

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#ifdef ZLV_BENCH_XPHOTO
#include <opencv2/xphoto.hpp>
#endif

namespace zlvbench {

namespace {

constexpr f64 kWatercolorAmount = 0.33, kWatercolorSigma = kWatercolorAmount * 30;

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

#ifdef ZLV_BENCH_OPENCV

cv::Mat Mat(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

cv::Size CellsOf(const Shape& shape, u32 cellSize)
{
    return cv::Size(int(shape.width / cellSize), int(shape.height / cellSize));
}

Peer CvMosaic(const Shape& shape, u32 cellSize)
{
    return {"cv::resize AREA + NEAREST",
            [=](const Buffers& buffers) {
                cv::Mat image = Mat(shape, buffers.image), cells;
                cv::resize(image, cells, CellsOf(shape, cellSize), 0, 0, cv::INTER_AREA);
                cv::resize(cells, image, image.size(), 0, 0, cv::INTER_NEAREST);
            },
            false};
}

// Errors go to the right and below, in gray: the least that a dithering does.
void DitherToBlackAndWhite(cv::Mat& image)
{
    cv::Mat gray;
    cv::cvtColor(image, gray, cv::COLOR_RGB2GRAY);
    for (int y = 0; y < gray.rows; ++y) {
        u8* const row = gray.ptr(y);
        u8* const below = y + 1 < gray.rows ? gray.ptr(y + 1) : row;
        for (int x = 0; x + 1 < gray.cols; ++x) {
            const int level = row[x] < 128 ? 0 : 255, error = row[x] - level;
            row[x] = u8(level);
            row[x + 1] = u8(std::clamp(row[x + 1] + error / 2, 0, 255));
            below[x] = u8(std::clamp(below[x] + error / 2, 0, 255));
        }
    }
    cv::cvtColor(gray, image, cv::COLOR_GRAY2RGB);
}

Peer CvHalftone(const Shape& shape, u32 cellSize, bool isSmooth)
{
    return {"cv::resize + dither + cv::resize",
            [=](const Buffers& buffers) {
                cv::Mat image = Mat(shape, buffers.image), cells;
                cv::resize(image, cells, CellsOf(shape, cellSize), 0, 0, cv::INTER_LINEAR);
                DitherToBlackAndWhite(cells);
                cv::resize(cells, image, image.size(), 0, 0, isSmooth ? cv::INTER_LINEAR : cv::INTER_NEAREST);
            },
            false};
}

Peer CvAscii(const Shape& shape, u32 columns, u32 rows)
{
    cv::Mat table(1, 256, CV_8UC1);
    for (int i = 0; i < 256; ++i) table.data[i] = u8("WM$@#%^x*o=+:~. "[i / 16]);
    return {"cv::resize + cv::LUT",
            [=](const Buffers& buffers) {
                cv::Mat cells, text(int(rows), int(columns), CV_8UC1, buffers.output, columns + 1);
                cv::resize(Mat(shape, buffers.image), cells, text.size(), 0, 0, cv::INTER_LINEAR);
                cv::LUT(cells, table, text);
            },
            false};
}

Peer CvWatercolor(const Shape& shape)
{
    return {"cv: gray, blur, LUT, min",
            [=](const Buffers& buffers) {
                const cv::Mat image = Mat(shape, buffers.image);
                cv::Mat gray, blurred, tint, made = Mat(shape, buffers.output);
                cv::cvtColor(image, gray, cv::COLOR_RGB2GRAY);
                cv::GaussianBlur(gray, blurred, cv::Size(), kWatercolorSigma, kWatercolorSigma, cv::BORDER_REPLICATE);
                cv::normalize(blurred, blurred, 0, 255, cv::NORM_MINMAX);
                cv::cvtColor(blurred, tint, cv::COLOR_GRAY2RGB);
                cv::min(image, tint, made);
            },
            false};
}

#else

Peer CvMosaic(const Shape&, u32) { return {}; }
Peer CvHalftone(const Shape&, u32, bool) { return {}; }
Peer CvAscii(const Shape&, u32, u32) { return {}; }
Peer CvWatercolor(const Shape&) { return {}; }

#endif

#ifdef ZLV_BENCH_XPHOTO

Peer CvOilPaint(const Shape& shape, u32 radius, u32 levels)
{
    return {"cv::xphoto::oilPainting",
            [=](const Buffers& buffers) {
                cv::Mat made = Mat(shape, buffers.output);
                cv::xphoto::oilPainting(Mat(shape, buffers.image), made, int(radius), int(256 / (levels + 1)),
                                        cv::COLOR_RGB2GRAY);
            },
            false};
}

#else

Peer CvOilPaint(const Shape&, u32, u32) { return {}; }

#endif

BenchRow MosaicRow(const std::string& layout, const Shape& shape, u32 cellSize)
{
    return {"MosaicImage/" + layout + "/" + SizeOf(shape) + "/cell=" + std::to_string(cellSize), shape, 0,
            [=](const Buffers& buffers) {
                ZLV40_MosaicImage(buffers.image, shape.width, shape.height, i32(shape.channels),
                                  shape.width * shape.channels, cellSize);
            },
            CvMosaic(shape, cellSize)};
}

BenchRow HalftoneRow(const std::string& form, const Shape& shape, u32 cellSize, bool isSmooth)
{
    return {"HalftoneImage/rgb8/" + SizeOf(shape) + "/" + std::to_string(cellSize) + "_" + form, shape, 0,
            [=](const Buffers& buffers) {
                ZLV40_HalftoneImage(buffers.image, shape.width, shape.height, 3, shape.width * 3, cellSize, isSmooth);
            },
            CvHalftone(shape, cellSize, isSmooth)};
}

BenchRow AsciiRow(const Shape& shape, u32 columns, u32 rows)
{
    return {
        "ASCIIizeGrayscaleImage/gray8/" + SizeOf(shape) + "/" + std::to_string(columns) + "x" + std::to_string(rows),
        shape, size_t(columns + 1) * rows + 1,
        [=](const Buffers& buffers) {
            ZLV40_ASCIIizeGrayscaleImage(buffers.image, shape.width, shape.height, shape.width, buffers.output, columns,
                                         rows, nullptr);
        },
        CvAscii(shape, columns, rows)};
}

BenchRow OilPaintRow(const Shape& shape, u32 radius, u32 levels, u32 flags, const std::string& form)
{
    return {
        "OilPaintRGB/rgb8/" + SizeOf(shape) + "/r" + std::to_string(radius) + "_levels" + std::to_string(levels) + form,
        shape, shape.Bytes(),
        [=](const Buffers& buffers) {
            const u32 stride = shape.width * 3;
            ZLV40_OilPaintRGB(buffers.image, shape.width, i32(shape.height), stride, buffers.output, stride, radius,
                              levels, flags);
        },
        CvOilPaint(shape, radius, levels)};
}

BenchRow WatercolorRow(const Shape& shape)
{
    return {"WatercolorTintRGB/rgb8/" + SizeOf(shape) + "/0.33_stretch", shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * 3;
                ZLV40_WatercolorTintRGB(buffers.image, shape.width, shape.height, stride, buffers.output, stride,
                                        kWatercolorAmount, ZLV40_WATERCOLOR_STRETCH);
            },
            CvWatercolor(shape)};
}

BenchRow GauzyRow(const Shape& shape, u32 mode)
{
    return {"GauzyRGB/rgb8/" + SizeOf(shape) + "/mode" + std::to_string(mode), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * 3;
                ZLV40_GauzyRGB(buffers.image, shape.width, shape.height, stride, buffers.output, stride, 0.33, 0.5, 0.5,
                               mode);
            }};
}

BenchRow ScribbleRow(const std::string& base, const Shape& shape, u32 baseKind)
{
    return {"Scribble/rgb8/" + SizeOf(shape) + "/" + base, shape, shape.Bytes(), [=](const Buffers& buffers) {
                ZLV40_Scribble(buffers.image, shape.width, shape.height, buffers.output, baseKind, 0, 80);
            }};
}

BenchRow FingerprintRow(const Shape& shape, u32 ridge)
{
    return {"Fingerprint/gray8/" + SizeOf(shape) + "/ridge=" + std::to_string(ridge), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                ZLV40_Fingerprint(buffers.image, shape.width, shape.height, shape.width, buffers.output, shape.width,
                                  20, ridge, 0);
            }};
}

}  // namespace

std::vector<BenchRow> ArtisticRows()
{
    constexpr Shape kTiny = {16, 16, 3};
    constexpr Shape kGray = {kFullWidth, kFullHeight, 1}, kRgb = {kFullWidth, kFullHeight, 3};
    return {
        MosaicRow("rgb8", kTiny, 4),
        MosaicRow("rgb8", kRgb, 16),
        HalftoneRow("hard", kTiny, 4, false),
        HalftoneRow("hard", kRgb, 4, false),
        HalftoneRow("smooth", kRgb, 4, true),
        AsciiRow(kGray, 160, 60),
        OilPaintRow(kTiny, 3, 20, 0, ""),
        OilPaintRow(kRgb, 3, 255, 0, ""),
        OilPaintRow(kRgb, 3, 20, 0, ""),
        OilPaintRow(kRgb, 7, 20, 0, ""),
        OilPaintRow(kRgb, 10, 20, 0, ""),
        OilPaintRow(kRgb, 3, 255, ZLV40_OIL_PAINT_BLEND, "_blended"),
        WatercolorRow(kRgb),
        GauzyRow(kRgb, 0),
        GauzyRow(kRgb, 3),
        ScribbleRow("blurred", kRgb, 0),
        ScribbleRow("midpoints", kRgb, 1),
        FingerprintRow(kGray, 3),
        FingerprintRow(kGray, 9),
        FingerprintRow(kGray, 45),
    };
}

}  // namespace zlvbench
