// Tone and colour.
#include "bench_row.h"
#include "opencv_peers.h"

#include "zlv40.h"

namespace zlvbench {

namespace {

Work Invert(const Shape& shape, u32 flags)
{
    return [shape, flags](const Buffers& buffers) {
        ZLV40_InvertImage(buffers.image, shape.width, shape.height, i32(shape.channels), shape.width * shape.channels,
                          flags);
    };
}

std::vector<std::vector<u8>> InvertedColourTables()
{
    std::vector<std::vector<u8>> tables(4, std::vector<u8>(256));
    for (u32 i = 0; i < 256; ++i) {
        for (u32 c = 0; c < 3; ++c) tables[c][i] = u8(255 - i);
        tables[3][i] = u8(i);
    }
    return tables;
}

}  // namespace

std::vector<BenchRow> ToneRows()
{
    const Shape rgb = {kFullWidth, kFullHeight, 3};
    const Shape rgba = {kFullWidth, kFullHeight, 4};
    const Shape small = {16, 16, 3};
    return {
        {"InvertImage/rgb8/16x16", small, 0, Invert(small, 0), CvBitwiseNot(small)},
        {"InvertImage/rgb8/1920x1080", rgb, 0, Invert(rgb, 0), CvBitwiseNot(rgb)},
        {"InvertImage/rgba8_keep_alpha/1920x1080", rgba, 0, Invert(rgba, ZLV40_PROTECT_ALPHA),
         CvLut(rgba, InvertedColourTables())},
    };
}

}  // namespace zlvbench
