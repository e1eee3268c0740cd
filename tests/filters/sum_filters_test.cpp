// The kernels that make samples of sums, over the whole of their small domains.
#include "filters/power_means.kernels.h"
#include "filters/sum_filters.kernels.h"

#include "support/bytes.h"
#include "support/targets.h"

namespace zlv {
namespace {

using namespace zlvtest;

template <class Sum>
void ExpectMeans(const SumFilterKernels<Sum>& kernels, const std::vector<Sum>& sums, u32 area)
{
    Bytes wanted(sums.size()), got(sums.size());
    for (size_t i = 0; i < sums.size(); ++i) wanted[i] = u8(sums[i] / area);
    kernels.mean(sums.data(), area, sums.size(), got.data());
    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(SumFilters, MeansOfSmallWindowsForEverySum)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 side = 3; side <= 15; side += 2) {
            SCOPE(side);
            std::vector<u16> sums(255 * side * side + 1);
            for (size_t i = 0; i < sums.size(); ++i) sums[i] = u16(i);
            ExpectMeans(Kernels<AllSumFilterKernels>().narrow, sums, side * side);
        }
    });
}

TEST(SumFilters, MeansOfLargeWindowsForSumsAroundEveryLevel)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 side = 1; side <= 4103; side += side < 301 ? 2 : 38) {
            SCOPE(side);
            const u32 area = side * side;
            std::vector<u32> sums = {0};
            for (u32 level = 1; level <= 255; ++level) {
                sums.push_back(level * area - 1);
                sums.push_back(level * area);
                if (level < 255) sums.push_back(level * area + 1);
            }
            ExpectMeans(Kernels<AllSumFilterKernels>().wide, sums, area);
        }
    });
}

TEST(SumFilters, QuadraticMeansForSumsAroundEveryLevel)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 side = 1; side <= kLargestSideOfSquares; side += 2) {
            SCOPE(side);
            const u32 area = side * side;
            std::vector<u32> sums = {0};
            Bytes wanted = {0};
            for (u32 level = 1; level <= 255; ++level) {
                for (const i32 offset : {-1, 0, 1}) {
                    if (level == 255 && offset > 0) continue;
                    sums.push_back(u32(i32(level * level * area) + offset));
                    wanted.push_back(u8(offset < 0 ? level - 1 : level));
                }
            }
            Bytes got(sums.size());
            Kernels<PowerMeanKernels>().quadraticMeans(sums.data(), area, sums.size(), got.data());
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    });
}

TEST(SumFilters, BlendsOfEveryPairForEdgesOfWeights)
{
    Bytes means, own;
    for (u32 i = 0; i < 65536; ++i) {
        means.push_back(u8(i));
        own.push_back(u8(i >> 8));
    }
    zlvtest::OnEveryTarget([&] {
        for (const auto& [mean, other] :
             {std::pair{0u, 65536u}, {65536u, 0u}, {32768u, 32768u}, {1u, 65535u}, {655u, 64881u}}) {
            SCOPE(mean, other);
            Bytes wanted(means.size()), got = means;
            for (size_t i = 0; i < means.size(); ++i) {
                wanted[i] = u8(((means[i] * mean) >> 16) + ((own[i] * other) >> 16));
            }
            Kernels<AllSumFilterKernels>().blend(got.data(), own.data(), {mean, other}, got.size());
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    });
}

}  // namespace
}  // namespace zlv
