// The crackle. No library has anything like it; the chain's parts are measured by themselves, too.
#include "base/emboss.h"
#include "base/histograms.h"
#include "bench_row.h"

#include "zlv40.h"

namespace zlvbench {

namespace {

std::string Name(const std::string& what, const Shape& shape)
{
    return what + "/" + std::to_string(shape.width) + "x" + std::to_string(shape.height);
}

BenchRow Row(const Shape& shape, const std::string& kindName, u32 kind)
{
    return {Name("CrackleRGB/" + kindName, shape), shape, shape.Bytes(), [=](const Buffers& buffers) {
                const u32 stride = 3 * shape.width;
                ZLV40_CrackleRGB(buffers.image, shape.width, shape.height, stride, buffers.output, stride, kind, 50, 0);
            }};
}

// The image as its own texture, its first bytes as heights.
BenchRow EmbossRow(const Shape& shape)
{
    return {Name("EmbossRGB/texture", shape), shape, shape.Bytes(), [=](const Buffers& buffers) {
                const u32 stride = 3 * shape.width;
                MV40_EmbossRGB(buffers.image, shape.width, shape.height, shape.width, 0.5, 0.5, 5, buffers.image,
                               stride, buffers.output, stride, nullptr, 0, 0);
            }};
}

BenchRow EqualizeRow(const Shape& shape)
{
    return {Name("BrightnessHistogramEqualizeImage/rgb8", shape), shape, 0, [=](const Buffers& buffers) {
                MV40_BrightnessHistogramEqualizeImage(buffers.image, shape.width, shape.height, 3, 3 * shape.width, 50,
                                                      200);
            }};
}

}  // namespace

std::vector<BenchRow> CrackleRows()
{
    constexpr Shape kTiny = {16, 16, 3}, kFull = {kFullWidth, kFullHeight, 3};
    return {
        Row(kTiny, "open", ZLV40_CRACKLE_OPEN),
        Row(kFull, "open", ZLV40_CRACKLE_OPEN),
        Row(kFull, "tophat", ZLV40_CRACKLE_TOPHAT),
        Row(kFull, "dilate", ZLV40_CRACKLE_DILATE),
        EmbossRow(kFull),
        EqualizeRow(kFull),
    };
}

}  // namespace zlvbench
