// Medians.
#include "golden/golden.h"
#include "plain/plain_median.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr PlainMedianBlend kNoBlend = {0, 1.0};

PlainMedianImage Image(GoldenPicture& p, std::int32_t size)
{
    return {p.image.data(), kWidth, kHeight, p.output.data(), p.channels, p.stride, p.stride, size};
}

// Levels from 252 to 255 only, where a running median settles below the top.
void Brighten(GoldenPicture& p)
{
    for (std::uint8_t& sample : p.image) sample |= 0xFC;
}

GoldenRow RunningRow(const char* name, std::uint32_t channels, std::int32_t size, std::uint32_t mask,
                     const PlainMedianBlend& blend, bool isBright, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                if (isBright) Brighten(p);
                return ZLV40_DustAndScratches(p.image.data(), kWidth, kHeight, p.output.data(), channels, p.stride,
                                              p.stride, size, blend.threshold, blend.amount, mask);
            },
            [=](GoldenPicture& p) {
                if (isBright) Brighten(p);
                PlainDustAndScratches(Image(p, size), blend, mask);
            },
            checksum};
}

GoldenRow MedianRow(const char* name, std::uint32_t channels, std::int32_t size, std::uint64_t checksum)
{
    constexpr std::uint32_t kMask = 0xFD;
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_MedianFilterImage(p.image.data(), kWidth, kHeight, p.output.data(), channels, p.stride,
                                               p.stride, size, kMask);
            },
            [=](GoldenPicture& p) { PlainDustAndScratches(Image(p, size), kNoBlend, kMask); },
            checksum};
}

GoldenRow ConstantTimeRow(const char* name, std::uint32_t channels, std::int32_t size, std::uint32_t padFlags,
                          const PlainMedianBlend& blend, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                if (blend.threshold != 0) {
                    return ZLV40_DustAndScratches_O1(p.image.data(), kWidth, kHeight, p.output.data(), channels,
                                                     p.stride, p.stride, size, blend.threshold, blend.amount, padFlags);
                }
                return ZLV40_MedianFilterImage_O1(p.image.data(), kWidth, kHeight, p.output.data(), channels, p.stride,
                                                  p.stride, size, padFlags);
            },
            [=](GoldenPicture& p) { PlainDustAndScratchesO1(Image(p, size), blend, padFlags); },
            checksum};
}

// A row's bytes as pixels, but for the last three bits.
GoldenRow BitRow(const char* name, std::uint32_t size, std::uint64_t checksum)
{
    constexpr std::uint32_t kBits = 8 * kWidth - 3;
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_MedianFilter1Bit(p.image.data(), kBits, kHeight, p.stride, p.output.data(), p.stride,
                                              size);
            },
            [=](GoldenPicture& p) {
                PlainMedian1Bit(p.image.data(), kBits, kHeight, p.stride, p.output.data(), p.stride, size);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> MedianGolden()
{
    return {
        MedianRow("MedianFilterImage, gray", 1, 3, 0x2F6E4BAB8A8DB086),
        MedianRow("MedianFilterImage, RGB", 3, 5, 0xD0CEBE5FBB5E9C74),
        MedianRow("MedianFilterImage, eight channels", 8, 11, 0xEADB6BE28CB764C1),
        MedianRow("MedianFilterImage, larger than the picture", 1, 101, 0xE121E9D997E68DD5),
        RunningRow("DustAndScratches, RGB", 3, 5, 7, {40, 0.7}, false, 0x1C3A0C7DE2378DEC),
        RunningRow("DustAndScratches, two of four channels", 4, 9, 10, {20, 0.3}, false, 0x3C2983779601E832),
        RunningRow("DustAndScratches, near the top", 3, 3, 7, kNoBlend, true, 0x00437D688EEFF3D7),
        RunningRow("DustAndScratches, near the top, large", 3, 15, 7, {1, 1.0}, true, 0xD19FC36333044042),
        ConstantTimeRow("MedianFilterImage_O1, RGB", 3, 5, 3, kNoBlend, 0xB72330478F23886F),
        ConstantTimeRow("MedianFilterImage_O1, RGBA, not padded", 4, 15, 0, kNoBlend, 0xA57CC494D8FD9CF5),
        ConstantTimeRow("DustAndScratches_O1, gray", 1, 21, 1, {30, 0.6}, 0x93310E2076A9FF74),
        ConstantTimeRow("DustAndScratches_O1, RGB", 3, 3, 2, {10, 1.0}, 0x1630F3A82BA0BA5F),
        BitRow("MedianFilter1Bit, 3", 3, 0x2125A5D7AE85677D),
        BitRow("MedianFilter1Bit, 5", 5, 0x08906F9184FC4726),
        BitRow("MedianFilter1Bit, 21", 21, 0x0FA39FA71C84B774),
    };
}

}  // namespace zlvtest
