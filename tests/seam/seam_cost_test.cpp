#include "seam/seam_cost.h"

#include "seam/seam_support.h"

namespace zlv {
namespace {

struct Costs {
    PlainSeamImage<u16> plainEnergy;
    PlainSeamImage<i32> plainBias, plainCost;
    CLImage<u16> energy;
    CLImage<i32> bias, cost;

    Costs(int width, int height, int columns, bool hasBias)
        : plainEnergy(RandomPlain<u16>(width, height, 1, columns, u64(width), 65536)),
          plainCost(RandomPlain<i32>(width, height, 1, columns, 3, 100))
    {
        if (hasBias) plainBias = RandomPlain<i32>(width, height, 1, columns, 2, 65025);
        for (i32& element : plainBias.elements) element -= 32640;
        CopyPlain(plainEnergy, energy);
        CopyPlain(plainBias, bias);
        CopyPlain(plainCost, cost);
    }
};

TEST(SeamCost, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (int width = 3; width <= 80; width += width < 40 ? 1 : 7) {
            for (const int spare : {0, 2}) {
                for (const bool hasBias : {false, true}) {
                    SCOPE(width, "spare", spare, "bias", hasBias);
                    Costs costs(width, 4, width + spare, hasBias);
                    PlainCosts(costs.plainEnergy, costs.plainBias, costs.plainCost, false);
                    EXPECT_EQ(ComputeCost(costs.energy, costs.bias, costs.cost), Error::None);
                    ExpectSameImage(costs.plainCost, costs.cost);
                }
            }
        }
    });
}

// Rows of 9 9 1 above a row of zeros: only straight above the last column it is cheap.
TEST(SeamCost, TheLastColumnLooksAsideWithABiasAlone)
{
    for (const bool hasBias : {false, true}) {
        SCOPE(hasBias);
        Costs costs(3, 3, 3, hasBias);
        const u16 energies[] = {9, 9, 1, 0, 0, 0, 0, 0, 0};
        std::copy_n(energies, 9, costs.energy.Data());
        if (hasBias) std::fill_n(costs.bias.Data(), 9, 0);
        EXPECT_EQ(ComputeCost(costs.energy, costs.bias, costs.cost), Error::None);
        const i32* const second = costs.cost.Row(1);
        EXPECT_EQ(second[0], 9);
        EXPECT_EQ(second[1], 1);
        EXPECT_EQ(second[2], hasBias ? 9 : 1);
    }
}

TEST(SeamCost, SumsBeyondTheLargestNumberWrap)
{
    zlvtest::OnEveryTarget([] {
        Costs costs(20, 3, 20, true);
        std::fill_n(costs.energy.Data(), 60, u16(65535));
        std::fill_n(costs.bias.Data(), 60, INT32_MAX);
        costs.plainEnergy.elements.assign(60, 65535);
        costs.plainBias.elements.assign(60, INT32_MAX);
        PlainCosts(costs.plainEnergy, costs.plainBias, costs.plainCost, false);
        EXPECT_EQ(ComputeCost(costs.energy, costs.bias, costs.cost), Error::None);
        ExpectSameImage(costs.plainCost, costs.cost);
    });
}

TEST(SeamCost, BothFormsRefuseSmallOrUnequalImages)
{
    const struct {
        const char* shows;
        u32 width, height, costWidth, costHeight;
    } kRows[] = {
        {"two columns", 2, 5, 2, 5},
        {"two rows", 5, 2, 5, 2},
        {"a narrower cost matrix", 5, 5, 4, 5},
        {"a lower cost matrix", 5, 5, 5, 4},
        {"a wider cost matrix", 5, 5, 6, 5},
    };
    for (const auto& row : kRows) {
        SCOPE(row.shows);
        CLImage<u16> energy;
        CLImage<i32> bias, cost;
        ASSERT_TRUE(energy.Create(row.width, row.height, 1, 8));
        ASSERT_TRUE(cost.Create(row.costWidth, row.costHeight, 1, 8));
        std::fill_n(cost.Data(), cost.pixels.GetCount(), 77);
        SeamContext context;
        EXPECT_EQ(ComputeCost(energy, bias, cost), Error::BadArgument);
        EXPECT_EQ(ComputeCostThreaded(context, energy, cost, bias), Error::BadArgument);
        for (i32 i = 0; i < cost.pixels.GetCount(); ++i) EXPECT_EQ(cost.Data()[i], 77);
    }
}

}  // namespace
}  // namespace zlv
