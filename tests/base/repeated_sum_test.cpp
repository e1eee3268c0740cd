#include "base/repeated_sum.h"

#include "support/bytes.h"

#include <bit>
#include <cmath>
#include <limits>

namespace zlv {
namespace {

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

f64 PlainSum(f64 x, f64 step, u64 times)
{
    for (u64 i = 0; i < times; ++i) x += step;
    return x;
}

void ExpectPlain(f64 x, f64 step, u64 times)
{
    SCOPE(std::hexfloat, x, step, times);
    EXPECT_EQ(std::bit_cast<u64>(AddRepeatedly(x, step, times)), std::bit_cast<u64>(PlainSum(x, step, times)));
}

TEST(AddRepeatedly, EqualsTheLoopAtAnyScale)
{
    zlvtest::Random random(1);
    for (u32 i = 0; i < 3000; ++i) {
        const f64 x = (f64(random.Next()) - 0x1p31) * std::exp2(-f64(random.Below(40)));
        const f64 step = (f64(random.Next()) - 0x1p31) * std::exp2(-f64(random.Below(70)));
        ExpectPlain(x, step, random.Below(5000));
    }
}

// Steps that end halfway between two doubles, where sums go to the even one.
TEST(AddRepeatedly, EqualsTheLoopOnTies)
{
    zlvtest::Random random(2);
    for (u32 i = 0; i < 3000; ++i) {
        const f64 ulp = std::exp2(f64(random.Below(20)) - 10);
        const f64 x = (0x1p52 + random.Below(2000) - (i % 3 ? 0 : 1000)) * ulp * (i % 2 ? 1 : -1);
        const f64 step = (random.Below(9) + 0.5) * ulp / (1 + random.Below(2)) * (random.Below(2) ? 1 : -1);
        ExpectPlain(x, step, random.Below(3000));
    }
}

TEST(AddRepeatedly, EqualsTheLoopAmongTheSmallestNumbers)
{
    zlvtest::Random random(3);
    for (u32 i = 0; i < 500; ++i) {
        const f64 x = 5e-324 * random.Below(100000) * (random.Below(2) ? 1 : -1);
        ExpectPlain(x, 5e-324 * (f64(random.Below(40)) - 20), random.Below(20000));
        ExpectPlain(0x1p-1022 - x, 5e-324 * (f64(random.Below(40)) - 20), random.Below(20000));
    }
}

const struct {
    const char* shows;
    f64 x, step;
    u64 times;
    f64 sum;
} kSums[] = {
    {"no time at all", 1, 2, 0, 1},
    {"once", 1, 2, 1, 3},
    {"a step of nothing", 7, 0, u64(1) << 60, 7},
    {"whole numbers", -5, 3, 4000000000u, 11999999995.0},
    {"halves", 0.25, 0.5, u64(1) << 50, 0x1p49 + 0.25},
    {"a step too small to see", 0x1p60, 1, u64(1) << 62, 0x1p60},
    {"up to where a step is too small", 0, 1, u64(1) << 60, 0x1p53},
    {"through zero and as far down", 0x1p40, -1, u64(1) << 41, -0x1p40},
    {"into infinity", 1e308, 1e307, 1000, kInfinity},
    {"from infinity", kInfinity, -1, u64(1) << 60, kInfinity},
    {"the smallest step", 0, 5e-324, u64(1) << 52, 0x1p-1022},
};

TEST(AddRepeatedly, ByHand)
{
    for (const auto& row : kSums) {
        SCOPE(row.shows);
        EXPECT_EQ(AddRepeatedly(row.x, row.step, row.times), row.sum);
    }
    EXPECT_TRUE(std::isnan(AddRepeatedly(kInfinity, -kInfinity, u64(1) << 60)));
}

// What it says yes to is even; and it does not say no too often.
TEST(AreEvenSums, SaysTheTruth)
{
    zlvtest::Random random(4);
    u32 even = 0;
    for (u32 i = 0; i < 4000; ++i) {
        const f64 ulp = i % 2 ? 1 : std::exp2(f64(random.Below(40)) - 60);
        const f64 x = (0x1p52 + random.Below(3000)) * ulp * (i % 3 ? 1 : -1);
        const f64 step = (i32(random.Below(41)) - 20) * ulp / (1 + random.Below(3));
        const u64 times = random.Below(400);
        SCOPE(std::hexfloat, x, step, times);
        if (!AreEvenSums(x, step, times)) continue;
        ++even;
        const f64 move = x + step - x;
        for (u64 k = 0; k <= times; ++k) ASSERT_EQ(PlainSum(x, step, k), x + f64(k) * move);
    }
    EXPECT_GT(even, 1500u);
    EXPECT_LT(even, 3900u);
    EXPECT_TRUE(AreEvenSums(7.5, 0, u64(1) << 60));
    EXPECT_FALSE(AreEvenSums(1, 1, 1));
}

}  // namespace
}  // namespace zlv
