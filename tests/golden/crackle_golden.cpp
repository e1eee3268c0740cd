// The crackle.
#include "golden/golden.h"
#include "plain/plain_crackle.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

GoldenRow CrackleRow(const char* name, std::uint32_t kind, std::int32_t strength, std::uint32_t flags,
                     std::uint64_t checksum)
{
    return {
        name,
        3,
        1,
        [=](GoldenPicture& p) {
            return ZLV40_CrackleRGB(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, kind,
                                    strength, flags);
        },
        [=](GoldenPicture& p) {
            PlainCrackle({p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, kind, strength, flags});
        },
        checksum};
}

}  // namespace

std::vector<GoldenRow> CrackleGolden()
{
    return {
        CrackleRow("CrackleRGB, opening", ZLV40_CRACKLE_OPEN, 50, 0, 0xCD8C47BE8D9D54BB),
        CrackleRow("CrackleRGB, top-hat, wide range", ZLV40_CRACKLE_TOPHAT, 20, ZLV40_WIDE_RANGE, 0x7BE7E5A0068E8EF1),
        CrackleRow("CrackleRGB, closing", ZLV40_CRACKLE_CLOSE, 100, 0, 0xB2B59D65E3D6E781),
        CrackleRow("CrackleRGB, dilation", ZLV40_CRACKLE_DILATE, 0, ZLV40_WIDE_RANGE, 0x561D177C1E17E828),
        CrackleRow("CrackleRGB, erosion", ZLV40_CRACKLE_ERODE, 75, 0, 0x4AEE10AB36A892E6),
    };
}

}  // namespace zlvtest
