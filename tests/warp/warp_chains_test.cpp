// Chains of warps of all kinds against the plain walk.
#include "warp/warp_cases.h"

namespace zlvtest {
namespace {

TEST(WarpChains, UpToSixEqualPlain)
{
    constexpr int kChains = 150;
    const std::vector<WarpCase> warps = AllWarps();
    Random random(9);
    for (int chain = 0; chain < kChains; ++chain) {
        std::vector<WarpCase> chosen;
        for (std::uint32_t length = 1 + random.Below(6); length > 0; --length) {
            chosen.push_back(warps[random.Below(std::uint32_t(warps.size()))]);
        }
        const WarpImage& image = kWarpImages[random.Below(std::size(kWarpImages))];
        SCOPE("chain", chain);
        OnEveryTarget([&] { ExpectChainEqualsPlain(chosen, image); });
    }
}

TEST(WarpChains, EveryWarpIsAmongThem)
{
    const WarpList list;
    for (const WarpCase& warp : AllWarps()) {
        SCOPE(warp.name);
        EXPECT_EQ(warp.add(13, 7), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
    }
}

}  // namespace
}  // namespace zlvtest
