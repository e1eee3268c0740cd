// Segmented colourise.
#include "golden/golden.h"
#include "plain/plain_segmented.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr std::size_t kStride = kWidth + 2, kPaletteAt = 4096;  // in the output, behind the indices

// Regions instead of noise: each pixel is its neighbour above or to the left, mostly.
void Smooth(GoldenPicture& p)
{
    Random random(1);
    for (std::size_t i = 3; i < std::size_t{3} * kWidth * kHeight; i += 3) {
        const std::uint32_t draw = random.Below(8);
        const std::size_t back = draw < 4 || i < std::size_t{3} * kWidth ? 3 : std::size_t{3} * kWidth;
        if (draw > 0) std::copy_n(p.image.data() + i - back, 3, p.image.data() + i);
    }
}

GoldenRow SegmentedRow(const char* name, std::uint32_t colors, std::uint32_t mode, std::uint32_t filterSize,
                       std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                Smooth(p);
                return ZLV40_SegmentedColorizeRGBImage(p.image.data(), kWidth, kHeight, 0, p.output.data(), kStride,
                                                       p.output.data() + kPaletteAt, colors, mode, filterSize, 0);
            },
            [=](GoldenPicture& p) {
                Smooth(p);
                PlainSegmentedColorize({p.image.data(), kWidth, kHeight, p.output.data(), kStride,
                                        p.output.data() + kPaletteAt, colors, mode, filterSize});
            },
            checksum};
}

GoldenRow ShorterRow(const char* name, std::int32_t useMedian, std::uint64_t checksum)
{
    GoldenRow row = SegmentedRow(name, 6, useMedian ? ZLV40_SEGMENT_MEDIAN : ZLV40_SEGMENT_CLOSE, 3, checksum);
    row.apply = [=](GoldenPicture& p) {
        Smooth(p);
        return ZLV40_SegmentedColorizeRGB(p.image.data(), kWidth, kHeight, 0, p.output.data(), kStride,
                                          p.output.data() + kPaletteAt, 6, 3, useMedian);
    };
    return row;
}

}  // namespace

std::vector<GoldenRow> SegmentedGolden()
{
    return {
        SegmentedRow("SegmentedColorizeRGBImage, median 5", 8, ZLV40_SEGMENT_MEDIAN, 5, 0xD41730DACCF1FE00),
        SegmentedRow("SegmentedColorizeRGBImage, closing by an irregular element", 8, ZLV40_SEGMENT_CLOSE, 8,
                     0xC869CDDE52884CAB),
        SegmentedRow("SegmentedColorizeRGBImage, hit-or-miss by a cross", 4, ZLV40_SEGMENT_HIT_OR_MISS, 1,
                     0x2663BF4AE62A0137),
        SegmentedRow("SegmentedColorizeRGBImage, boundary by a ring", 8, ZLV40_SEGMENT_BOUNDARY, 11,
                     0x2A8BF57A1E411514),
        ShorterRow("SegmentedColorizeRGB, median 3", 1, 0xF47A4F54702F6D70),
        ShorterRow("SegmentedColorizeRGB, closing by a diamond", 0, 0x87F3D2748A6B49FE),
    };
}

}  // namespace zlvtest
