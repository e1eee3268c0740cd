// Base layer: histograms and the tone curves that are made from them.
#include "base/histograms.h"
#include "golden/golden.h"
#include "plain/plain_histograms.h"
#include "support/base_layer.h"

#include <cstring>

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

template <class T>
PlainImageShape ShapeOf(const GoldenPicture& p)
{
    return {kWidth, kHeight, p.channels, p.Stride<T>()};
}

GoldenRow HistogramRow(const char* name, u64 checksum)
{
    return {name,
            3,
            1,
            [](GoldenPicture& p) {
                u32 counts[2][256];
                u32* const arrays[] = {counts[0], nullptr, counts[1]};
                const u32 result =
                    MV40_GetImageChannelHistograms(p.image.data(), kWidth, kHeight, 3, p.stride, arrays, 0);
                std::memcpy(p.output.data(), counts, sizeof counts);
                return result;
            },
            [](GoldenPicture& p) {
                for (const u32 channel : {0u, 2u}) {
                    const std::vector<u32> counts = PlainHistogram(p.image.data(), ShapeOf<u8>(p), channel);
                    std::memcpy(p.output.data() + channel / 2 * 1024, counts.data(), 1024);
                }
            },
            checksum};
}

template <class T>
GoldenRow EqualizeRow(const char* name, u32 low, u32 high, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_HistogramEqualizeImage(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), low, high,
                                                   5 | kWidthFlag<T>);
            },
            [=](GoldenPicture& p) {
                for (const u32 channel : {0u, 2u}) PlainEqualize(p.Image<T>(), ShapeOf<T>(p), channel, low, high);
            },
            checksum};
}

template <class T>
GoldenRow StretchRow(const char* name, int midpoint, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_HistogramStretchImage(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), 12, 7.5,
                                                  u32(midpoint),
                                                  7 | (midpoint < 0 ? 0 : kStretchMidpoint) | kWidthFlag<T>);
            },
            [=](GoldenPicture& p) {
                for (u32 c = 0; c < 3; ++c) PlainStretch(p.Image<T>(), ShapeOf<T>(p), c, 12, 7.5, midpoint);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> HistogramGolden()
{
    return {
        HistogramRow("GetImageChannelHistograms, two of three channels", 0x2B0E94526775BB67),
        EqualizeRow<u8>("HistogramEqualizeImage, bytes", 10, 200, 0x01A1DD73541B9E42),
        EqualizeRow<u16>("HistogramEqualizeImage, words", 300, 60000, 0x3DE1702E9F287243),
        {"BrightnessHistogramEqualizeImage", 4, 1,
         [](GoldenPicture& p) {
             return MV40_BrightnessHistogramEqualizeImage(p.image.data(), kWidth, kHeight, 4, p.stride, 30, 220);
         },
         [](GoldenPicture& p) { PlainEqualizeBrightness(p.image.data(), ShapeOf<u8>(p), 30, 220); },
         0x70B4CDA125E3601A},
        StretchRow<u8>("HistogramStretchImage, bytes", -1, 0x62E54CADE3DBB30A),
        StretchRow<u8>("HistogramStretchImage, bytes around a midpoint", 90, 0xA772C0777DBA9505),
        StretchRow<u16>("HistogramStretchImage, words around a midpoint", 20000, 0x2B17732EEB586429),
    };
}

}  // namespace zlvtest
