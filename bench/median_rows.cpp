// Medians of square windows, of samples and of bits.
#include "bench_row.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#ifdef ZLV_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif

#include <memory>

namespace zlvbench {

namespace {

constexpr u32 kAllChannels = 255;
constexpr u32 kThreshold = 40;
constexpr f64 kAmount = 0.7;

std::string NameOf(const char* function, const char* layout, const Shape& shape, u32 side)
{
    return std::string(function) + "/" + layout + "/" + std::to_string(shape.width) + "x" +
           std::to_string(shape.height) + "/window=" + std::to_string(side);
}

#ifdef ZLV_BENCH_OPENCV

cv::Mat View(const Shape& shape, u8* pixels)
{
    return cv::Mat(int(shape.height), int(shape.width), CV_8UC(int(shape.channels)), pixels);
}

// The running median is the same but for the top level.
Peer CvMedian(const Shape& shape, u32 side, bool isBitEqual)
{
    constexpr u32 kLargestSide = 255;
    if (side > kLargestSide) return {};
    return {"cv::medianBlur",
            [=](const Buffers& buffers) {
                cv::Mat to = View(shape, buffers.output);
                cv::medianBlur(View(shape, buffers.image), to, int(side));
            },
            isBitEqual};
}

Peer CvDust(const Shape& shape, u32 side)
{
    return {"cv::medianBlur, absdiff, addWeighted",
            [=](const Buffers& buffers) {
                const cv::Mat from = View(shape, buffers.image);
                cv::Mat to = View(shape, buffers.output);
                cv::Mat median, difference, blend;
                cv::medianBlur(from, median, int(side));
                cv::absdiff(from, median, difference);
                cv::addWeighted(from, 1 - kAmount, median, kAmount, 0, blend);
                from.copyTo(to);
                blend.reshape(1).copyTo(to.reshape(1), difference.reshape(1) > int(kThreshold));
            },
            false};
}

#else

Peer CvMedian(const Shape&, u32, bool) { return {}; }
Peer CvDust(const Shape&, u32) { return {}; }

#endif

#ifdef ZLV_BENCH_LEPTONICA

// Its image is a copy: it wants rows of whole words, in the processor's byte order.
Peer LeptonicaRank(const Shape& shape, u32 side)
{
    const std::shared_ptr<Pix> image(pixCreate(int(shape.width), int(shape.height), 1),
                                     [](Pix* pix) { pixDestroy(&pix); });
    RandomBytes random(20);
    const u32 words = u32(pixGetWpl(image.get())) * shape.height;
    for (u32 i = 0; i < words; ++i) pixGetData(image.get())[i] = random.Next() << 16 ^ random.Next();
    return {"pixBlockrank",
            [=](const Buffers&) {
                Pix* majority = pixBlockrank(image.get(), nullptr, int(side / 2), int(side / 2), 0.5f);
                pixDestroy(&majority);
            },
            false};
}

#else

Peer LeptonicaRank(const Shape&, u32) { return {}; }

#endif

BenchRow RunningRow(const char* layout, const Shape& shape, u32 side)
{
    return {NameOf("MedianFilterImage", layout, shape, side), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * shape.channels;
                ZLV40_MedianFilterImage(buffers.image, shape.width, shape.height, buffers.output, shape.channels,
                                        stride, stride, i32(side), kAllChannels);
            },
            CvMedian(shape, side, false)};
}

BenchRow ConstantTimeRow(const char* layout, const Shape& shape, u32 side)
{
    return {NameOf("MedianFilterImage_O1", layout, shape, side), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * shape.channels;
                ZLV40_MedianFilterImage_O1(buffers.image, shape.width, shape.height, buffers.output, shape.channels,
                                           stride, stride, i32(side), ZLV40_PAD_LEFT | ZLV40_PAD_RIGHT);
            },
            CvMedian(shape, side, true)};
}

BenchRow DustRow(const char* layout, const Shape& shape, u32 side)
{
    return {NameOf("DustAndScratches", layout, shape, side), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * shape.channels;
                ZLV40_DustAndScratches(buffers.image, shape.width, shape.height, buffers.output, shape.channels, stride,
                                       stride, i32(side), kThreshold, kAmount, kAllChannels);
            },
            CvDust(shape, side)};
}

BenchRow ConstantTimeDustRow(const char* layout, const Shape& shape, u32 side)
{
    return {NameOf("DustAndScratches_O1", layout, shape, side), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width * shape.channels;
                ZLV40_DustAndScratches_O1(buffers.image, shape.width, shape.height, buffers.output, shape.channels,
                                          stride, stride, i32(side), kThreshold, kAmount,
                                          ZLV40_PAD_LEFT | ZLV40_PAD_RIGHT);
            },
            CvDust(shape, side)};
}

BenchRow BitRow(const Shape& shape, u32 side)
{
    return {NameOf("MedianFilter1Bit", "bits", shape, side), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width / 8;
                ZLV40_MedianFilter1Bit(buffers.image, shape.width, shape.height, stride, buffers.output, stride, side);
            },
            LeptonicaRank(shape, side)};
}

}  // namespace

std::vector<BenchRow> MedianRows()
{
    const Shape tiny = {16, 16, 3}, rgb = {kFullWidth, kFullHeight, 3}, gray = {kFullWidth, kFullHeight, 1};
    const Shape bits = {kFullWidth, kFullHeight, 1, 1, 8};
    std::vector<BenchRow> rows;
    for (const u32 side : {3u, 5u, 7u}) rows.push_back(RunningRow("rgb8", tiny, side));
    for (const u32 side : {3u, 5u, 7u, 11u, 15u, 21u, 51u, 255u, 301u}) rows.push_back(RunningRow("rgb8", rgb, side));
    rows.push_back(RunningRow("gray8", gray, 11));
    for (const u32 side : {5u, 15u, 51u}) rows.push_back(ConstantTimeRow("rgb8", rgb, side));
    rows.push_back(DustRow("rgb8", rgb, 5));
    rows.push_back(DustRow("rgb8", rgb, 21));
    rows.push_back(ConstantTimeDustRow("rgb8", rgb, 5));
    rows.push_back(ConstantTimeDustRow("rgb8", rgb, 21));
    for (const u32 side : {3u, 5u, 11u, 51u}) rows.push_back(BitRow(bits, side));
    return rows;
}

}  // namespace zlvbench
