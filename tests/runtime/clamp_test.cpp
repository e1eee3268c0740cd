#include "runtime/clamp.h"

#include <gtest/gtest.h>

namespace zlv {
namespace {

const struct {
    const char* shows;
    i32 value, lower, upper, want;
} kInts[] = {
    {"inside", 5, 0, 255, 5},
    {"below", -1, 0, 255, 0},
    {"above", 256, 0, 255, 255},
    {"at the lower bound", 0, 0, 255, 0},
    {"at the upper bound", 255, 0, 255, 255},
    {"crossed bounds, below the lower one", 3, 10, 5, 10},
    {"crossed bounds, at the lower one", 10, 10, 5, 5},
    {"crossed bounds, above both", 11, 10, 5, 5},
    {"crossed bounds, between them", 7, 10, 5, 10},
    {"the extremes", INT32_MIN, -5, INT32_MAX, -5},
};

TEST(Clamp, Int)
{
    for (const auto& row : kInts) EXPECT_EQ(ClampInt(row.value, &row.lower, &row.upper), row.want) << row.shows;
}

TEST(Clamp, UIntComparesUnsigned)
{
    const u32 lower = 10, upper = 0x80000000u;
    EXPECT_EQ(ClampUInt(9, &lower, &upper), 10u);
    EXPECT_EQ(ClampUInt(0x7FFFFFFFu, &lower, &upper), 0x7FFFFFFFu);
    EXPECT_EQ(ClampUInt(0xFFFFFFFFu, &lower, &upper), 0x80000000u);
}

TEST(Clamp, Double)
{
    const f64 lower = -0.5, upper = 0.5;
    EXPECT_EQ(ClampDouble(-0.75, &lower, &upper), -0.5);
    EXPECT_EQ(ClampDouble(0.25, &lower, &upper), 0.25);
    EXPECT_EQ(ClampDouble(0.75, &lower, &upper), 0.5);
}

TEST(MaxMin, TakeTheirOperandsByPointer)
{
    const u32 small = 3, large = 0xF0000000u;
    EXPECT_EQ(Max(&small, &large), large);
    EXPECT_EQ(Min(&large, &small), small);
    const f64 minus = -1.5, plus = 1.5;
    EXPECT_EQ(Max(&minus, &plus), plus);
    EXPECT_EQ(Min(&minus, &plus), minus);
}

}  // namespace
}  // namespace zlv
