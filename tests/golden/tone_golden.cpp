// Tone and colour.
#include "golden/golden.h"
#include "plain/plain_table_pass.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

GoldenRow InvertRow(const char* name, std::uint32_t channels, std::uint32_t flags, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_InvertImage(p.image.data(), kWidth, kHeight, std::int32_t(channels), p.stride, flags);
            },
            [=](GoldenPicture& p) {
                PlainInvert(p.image.data(), kWidth, kHeight, channels, p.stride, (flags & ZLV40_PROTECT_ALPHA) != 0);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> ToneGolden()
{
    return {
        InvertRow("InvertImage, gray", 1, 0, 0xC2AA3DA9453A1A44),
        InvertRow("InvertImage, RGB", 3, 0, 0x05D84B8F7AFC7362),
        InvertRow("InvertImage, RGBA", 4, 0, 0x6822EE8B527625B5),
        InvertRow("InvertImage, RGBA with alpha protected", 4, ZLV40_PROTECT_ALPHA, 0x51EB921406B0C348),
        InvertRow("InvertImage, eight channels", 8, 0, 0x4E4DF54841F6483B),
    };
}

}  // namespace zlvtest
