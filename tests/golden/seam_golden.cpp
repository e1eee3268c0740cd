// Seam carving.
#include "golden/golden.h"
#include "plain/plain_seam.h"

#include "zlv40.h"

#include <thread>

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr std::uint16_t kPenalty = 150;

// The mask is the picture's own beginning. On threads of their own, whose random generators start from 1.
GoldenRow CarveRow(const char* name, std::uint32_t channels, std::int32_t seams, bool hasMask, std::uint32_t flags,
                   std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                const std::uint8_t* const mask = hasMask ? p.image.data() : nullptr;
                std::uint32_t result = 0;
                std::thread([&] {
                    result = ZLV40_SeamCarve(p.image.data(), kWidth, kHeight, channels, p.stride, mask, kWidth,
                                             p.output.data(), p.stride, seams, kPenalty, flags);
                }).join();
                return result;
            },
            [=](GoldenPicture& p) {
                PlainCarver({p.image.data(), int(kWidth), int(kHeight), int(channels), p.stride,
                             hasMask ? p.image.data() : nullptr, kWidth, p.output.data(), p.stride, seams, kPenalty,
                             !(flags & ZLV40_ONE_THREAD)})
                    .Run();
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> SeamGolden()
{
    return {
        CarveRow("SeamCarve, removal", 3, -20, false, ZLV40_ONE_THREAD, 0x9E3515CFFBAA7694),
        CarveRow("SeamCarve, removal with a mask", 3, -20, true, ZLV40_ONE_THREAD, 0xEBC9F84EC469908A),
        CarveRow("SeamCarve, removal on two threads", 3, -20, false, 0, 0xBBBCFB180D2E3E4A),
        CarveRow("SeamCarve, insertion", 3, 2, false, ZLV40_ONE_THREAD, 0x4288C0E6BED42ED8),
        CarveRow("SeamCarve, insertion into RGBA with a mask on two threads", 4, 20, true, 0, 0x8EF54F6357639AAB),
    };
}

}  // namespace zlvtest
