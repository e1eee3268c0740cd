// A checksum of every export on fixed inputs. Every build, instruction set and thread reproduces them.
//
// The values come from tests/golden/checksums.py, which computes them without the library.
#include "support/bytes.h"

#include "zlv40.h"

#include <functional>
#include <thread>
#include <vector>

#ifdef ZLV_TESTS_SEE_INSIDE
#include "support/targets.h"
#endif

namespace zlvtest {
namespace {

// A picture of 61 x 37 pixels with rows that are padded by 5 bytes.
struct Picture {
    explicit Picture(std::uint32_t theChannels)
        : channels(theChannels),
          stride(kWidth * channels + 5),
          bytes(RandomBytes(std::size_t(stride) * kHeight, channels))
    {
    }
    static constexpr std::uint32_t kWidth = 61, kHeight = 37;
    std::uint32_t channels, stride;
    Bytes bytes;
};

std::uint32_t Invert(Picture& picture, std::uint32_t flags)
{
    return ZLV40_InvertImage(picture.bytes.data(), Picture::kWidth, Picture::kHeight, std::int32_t(picture.channels),
                             picture.stride, flags);
}

const struct {
    const char* name;
    std::uint32_t channels;
    std::function<std::uint32_t(Picture&)> apply;
    std::uint64_t checksum;
} kGolden[] = {
    {"InvertImage, gray", 1, [](Picture& p) { return Invert(p, 0); }, 0xADDA38DD41F1D39B},
    {"InvertImage, RGB", 3, [](Picture& p) { return Invert(p, 0); }, 0xF0599DA861F77FA6},
    {"InvertImage, RGBA", 4, [](Picture& p) { return Invert(p, 0); }, 0x55D15E3493D79C0E},
    {"InvertImage, RGBA with alpha protected", 4, [](Picture& p) { return Invert(p, ZLV40_PROTECT_ALPHA); },
     0x52207BA65A4A57C1},
    {"InvertImage, eight channels", 8, [](Picture& p) { return Invert(p, 0); }, 0xF09547931A22CC7B},
};

void CheckAll()
{
    for (const auto& row : kGolden) {
        SCOPE(row.name);
        Picture picture(row.channels);
        EXPECT_EQ(row.apply(picture), 1u);
        EXPECT_EQ(Checksum(picture.bytes.data(), picture.bytes.size()), row.checksum);
    }
}

TEST(Golden, Checksums)
{
#ifdef ZLV_TESTS_SEE_INSIDE
    for (const zlv::Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        SCOPE(NameOf(target));
        CheckAll();
    }
#else
    CheckAll();
#endif
}

TEST(Golden, ChecksumsFromSeveralThreads)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(CheckAll);
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace zlvtest
