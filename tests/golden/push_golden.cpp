// Pushing.
#include "golden/golden.h"
#include "plain/plain_push.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

GoldenRow PushRow(const char* name, std::uint32_t channels, point from, point to, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_PushImage(p.image.data(), GoldenPicture::kWidth, GoldenPicture::kHeight, channels,
                                       p.stride, p.output.data(), &from, &to);
            },
            [=](GoldenPicture& p) {
                PlainPush({p.image.data(), GoldenPicture::kWidth, GoldenPicture::kHeight, channels, p.stride},
                          p.output.data(), {double(from.x), double(from.y)}, {double(to.x), double(to.y)},
                          [](std::uint32_t, std::uint32_t) { return true; });
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> PushGolden()
{
    return {
        PushRow("PushImage, gray", 1, {25, 20}, {31, 17}, 0x2699B8F87A9F2EF4),
        PushRow("PushImage, RGB over the edges", 3, {10, 30}, {40, 11}, 0xABA164628430A252),
        PushRow("PushImage, RGBA from outside", 4, {-20, 50}, {3, 3}, 0x0AA36BB0E3721B7D),
        PushRow("PushImage, two channels, to the same point", 2, {7, 7}, {7, 7}, 0xB72CB5E2670376F1),
    };
}

}  // namespace zlvtest
