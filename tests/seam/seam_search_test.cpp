#include "seam/seam_search.h"

#include "runtime/random.h"
#include "seam/seam_support.h"

namespace zlv {
namespace {

constexpr i32 kHigh = 50;

// A state after which the next draw has that lowest bit.
u32 StateWithCoin(bool coin)
{
    for (u32 state = 1;; ++state) {
        u32 drawn = state;
        if (bool(PlainDraw(drawn) & 1) == coin) return state;
    }
}

std::vector<u32> SeamOf(const CLImage<i32>& cost, MVThreadContext& random)
{
    ZLVArray<u32> seam;
    EXPECT_TRUE(seam.Resize(i32(cost.height)));
    FindSeam(cost, seam, random);
    return std::vector<u32>(seam.GetData(), seam.GetData() + cost.height);
}

// Two rows of three: the walk begins below `from` and goes up to one of the costs.
struct StepRow {
    const char* shows;
    u32 from;
    i32 above[3];
    u32 heads, tails;  // the next column, by the coin
    bool draws;
};
const StepRow kSteps[] = {
    {"the left one is cheapest", 1, {1, 2, 3}, 0, 0, false},
    {"the right one is cheapest", 1, {3, 2, 1}, 2, 2, false},
    {"the center is cheapest", 1, {3, 1, 3}, 1, 1, false},
    {"the center is cheapest between unequal ones", 1, {3, 1, 2}, 1, 1, false},
    {"left and center tie", 1, {1, 1, 2}, 0, 1, true},
    {"left and right tie", 1, {1, 2, 1}, 0, 2, true},
    {"center and right tie", 1, {2, 1, 1}, 1, 2, true},
    {"all three tie: never straight up", 1, {1, 1, 1}, 0, 2, true},
    {"the center at the left edge", 0, {1, 2, 0}, 0, 0, false},
    {"the right one at the left edge", 0, {2, 1, 0}, 1, 1, false},
    {"a tie at the left edge", 0, {1, 1, 0}, 0, 1, true},
    {"the left one at the right edge", 2, {0, 1, 2}, 1, 1, false},
    {"the center at the right edge", 2, {0, 2, 1}, 2, 2, false},
    {"a tie at the right edge", 2, {0, 1, 1}, 1, 2, true},
    {"costs as high as what is outside: clamped at the left edge", 0, {INT32_MAX, INT32_MAX, 0}, 0, 1, true},
    {"costs as high as what is outside: clamped at the right edge", 2, {0, INT32_MAX, INT32_MAX}, 1, 2, true},
    {"negative costs", 1, {-5, -7, -6}, 1, 1, false},
};

TEST(SeamSearch, EveryStep)
{
    for (const StepRow& row : kSteps) {
        for (const bool coin : {false, true}) {
            SCOPE(row.shows, coin ? "heads" : "tails");
            CLImage<i32> cost;
            ASSERT_TRUE(cost.Create(3, 2, 1, 3));
            std::copy_n(row.above, 3, cost.Row(0));
            std::fill_n(cost.Row(1), 3, kHigh);
            cost.Row(1)[row.from] = kHigh - 1;
            MVThreadContext random;
            random.randomState = StateWithCoin(coin);
            const u32 before = random.randomState;
            EXPECT_EQ(SeamOf(cost, random), (std::vector<u32>{coin ? row.heads : row.tails, row.from}));
            EXPECT_EQ(random.randomState, row.draws ? kOneDraw.From(before) : before);
        }
    }
}

TEST(SeamSearch, BeginsAtTheLeftmostOfTheCheapest)
{
    CLImage<i32> cost;
    ASSERT_TRUE(cost.Create(6, 2, 1, 8));
    const i32 lowest[] = {5, 3, 4, 3, 3, 9, -100, -100};
    std::fill_n(cost.Row(0), 8, 0);
    std::copy_n(lowest, 8, cost.Row(1));
    MVThreadContext random;
    EXPECT_EQ(SeamOf(cost, random)[1], 1u) << "what lies beyond the width does not count";
}

TEST(SeamSearch, WalksEqualPlain)
{
    for (const u32 levels : {1u, 2u, 3u, 1000u}) {
        for (const int width : {3, 4, 9, 40}) {
            for (u32 state = 1; state < 20; ++state) {
                SCOPE(levels, "levels, width", width, "state", state);
                const PlainSeamImage<i32> plain = RandomPlain<i32>(width, 30, 1, width + 1, state, levels);
                CLImage<i32> cost;
                CopyPlain(plain, cost);
                u32 plainState = state;
                MVThreadContext random;
                random.randomState = state;
                EXPECT_EQ(SeamOf(cost, random), PlainSeam(plain, plainState));
                EXPECT_EQ(random.randomState, plainState);
            }
        }
    }
}

}  // namespace
}  // namespace zlv
