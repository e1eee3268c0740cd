// The special cases of the C standard, and results that a double holds: they come out exact.
#include "math_arguments.h"

#include <gtest/gtest.h>

#include <limits>

namespace zlvtest {
namespace {

constexpr f64 kInf = std::numeric_limits<f64>::infinity();
constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kSmallest = 0x1p-1074;
constexpr f64 kLargest = std::numeric_limits<f64>::max();
constexpr f64 kHalfPiTest = kTestPi / 2;
constexpr f64 kQuarterPiTest = kTestPi / 4;
constexpr f64 kThreeQuarterPi = 0x1.2d97c7f3321d2p+1;

void ExpectSameBits(f64 got, f64 want, const char* shows, f64 x, f64 y)
{
    EXPECT_EQ(std::bit_cast<u64>(got), std::bit_cast<u64>(want))
        << shows << std::hexfloat << ": (" << x << ", " << y << ") gave " << got << ", not " << want;
}

const struct {
    const char* shows;
    f64 x, want;
} kExpCases[] = {
    {"zero", 0, 1},
    {"minus zero", -0.0, 1},
    {"too small to matter", kSmallest, 1},
    {"too small to matter, below zero", -0x1p-60, 1},
    {"infinity", kInf, kInf},
    {"minus infinity", -kInf, 0},
    {"not a number", kNan, kNan},
    {"not a number of another sign", -kNan, kNan},
    {"the largest argument overflows", kLargest, kInf},
    {"the lowest argument underflows", -kLargest, 0},
    {"the first double whose result overflows", 0x1.62e42fefa39f0p+9, kInf},
    {"just below half the smallest number", -0x1.74910d52d3052p+9, 0},
    {"just above half the smallest number", -0x1.74910d52d3051p+9, kSmallest},
};

TEST(MathSpecial, Exp)
{
    for (const auto& [shows, x, want] : kExpCases) ExpectSameBits(Exp(x), want, shows, x, 0);
    EXPECT_LT(Exp(0x1.62e42fefa39efp+9), kInf);
}

const struct {
    const char* shows;
    f64 x, want;
} kLogCases[] = {
    {"one is plus zero", 1, 0},
    {"zero", 0, -kInf},
    {"minus zero", -0.0, -kInf},
    {"below zero", -1, kNan},
    {"just below zero", -kSmallest, kNan},
    {"minus infinity", -kInf, kNan},
    {"infinity", kInf, kInf},
    {"not a number", kNan, kNan},
    {"just above one", 1 + 0x1p-52, 0x1p-52 - 0x1p-105},
    {"just below one", 1 - 0x1p-53, -0x1p-53},
};

TEST(MathSpecial, Log)
{
    for (const auto& [shows, x, want] : kLogCases) ExpectSameBits(Log(x), want, shows, x, 0);
}

const struct {
    const char* shows;
    f64 x, y, want;
} kPowCases[] = {
    {"anything to the power 0", kNan, 0, 1},
    {"infinity to the power minus 0", kInf, -0.0, 1},
    {"0 to the power 0", 0, 0, 1},
    {"1 to any power", 1, kNan, 1},
    {"1 to infinity", 1, kInf, 1},
    {"1 to a huge power", 1, -kLargest, 1},
    {"not a number in the base", kNan, 1, kNan},
    {"not a number in the exponent", 2, kNan, kNan},
    {"0 and not a number", 0, kNan, kNan},
    {"-1 to infinity", -1, kInf, 1},
    {"-1 to minus infinity", -1, -kInf, 1},
    {"above 1 to infinity", 1.5, kInf, kInf},
    {"above 1 to minus infinity", 1.5, -kInf, 0},
    {"below 1 to infinity", -0.5, kInf, 0},
    {"below 1 to minus infinity", 0.5, -kInf, kInf},
    {"0 to infinity", 0, kInf, 0},
    {"0 to minus infinity", 0, -kInf, kInf},
    {"0 to a positive power", 0, 0.5, 0},
    {"-0 to an odd power", -0.0, 3, -0.0},
    {"-0 to an even power", -0.0, 2, 0},
    {"-0 to a fraction", -0.0, 0.5, 0},
    {"0 to a negative power", 0, -0.5, kInf},
    {"-0 to a negative odd power", -0.0, -3, -kInf},
    {"-0 to a negative even power", -0.0, -4, kInf},
    {"infinity to a power", kInf, 0.5, kInf},
    {"infinity to a negative power", kInf, -0.5, 0},
    {"minus infinity to an odd power", -kInf, 3, -kInf},
    {"minus infinity to an even power", -kInf, 2, kInf},
    {"minus infinity to a fraction", -kInf, 0.5, kInf},
    {"minus infinity to a negative odd power", -kInf, -3, -0.0},
    {"minus infinity to a negative even power", -kInf, -2, 0},
    {"a negative base and a fraction", -8, 1.0 / 3, kNan},
    {"a negative base and an odd power", -3, 3, -27},
    {"a negative base and an even power", -3, 4, 81},
    {"a negative base and a negative odd power", -2, -3, -0.125},
    {"-1 to the largest odd number", -1, 0x1p53 - 1, -1},
    {"-1 to an even number above it", -1, 0x1p53, 1},
    {"overflow", 10, 309, kInf},
    {"overflow below zero", -10, 309, -kInf},
    {"underflow", 10, -324, 0},
    {"underflow below zero", -10, -325, -0.0},
    {"a huge exponent overflows", 1 + 0x1p-52, 0x1p1000, kInf},
    {"a huge exponent underflows", 1 - 0x1p-53, kLargest, 0},
    {"a huge negative exponent underflows", 2, -kLargest, 0},
    {"a tiny exponent", 10, kSmallest, 1},
    {"a tiny exponent of the largest base", kLargest, -0x1p-1000, 1},
    {"itself", 0x1.23456789abcdep-3, 1, 0x1.23456789abcdep-3},
    {"the smallest number itself", kSmallest, 1, kSmallest},
    {"the largest number itself", kLargest, 1, kLargest},
    {"a square root", 4, 0.5, 2},
    {"a square root of a subnormal number", kSmallest, 0.5, 0x1p-537},
    {"the power 1.5", 2.25, 1.5, 3.375},
    {"a negative square root", 16, -0.5, 0.25},
    {"a fourth root", 50625, 0.25, 15},
    {"the inverse of the smallest power of two with one", 0x1p-1023, -1, 0x1p1023},
    {"a square that is subnormal", 0x1p-537, 2, kSmallest},
    {"half the smallest number, a tie", 2, -1075, 0},
};

TEST(MathSpecial, Pow)
{
    for (const auto& [shows, x, y, want] : kPowCases) ExpectSameBits(Pow(x, y), want, shows, x, y);
}

const struct {
    const char* shows;
    f64 x, sine, cosine;
} kAngleCases[] = {
    {"zero", 0, 0, 1},
    {"minus zero", -0.0, -0.0, 1},
    {"the smallest angle", kSmallest, kSmallest, 1},
    {"a tiny angle", -0x1.8p-30, -0x1.8p-30, 1},
    {"infinity", kInf, kNan, kNan},
    {"minus infinity", -kInf, kNan, kNan},
    {"not a number", kNan, kNan, kNan},
    // What the double next to pi leaves of pi is the sine, to all its digits: pi =
    // 0x1.921fb54442d18469898cc51701b839a25...p+1.
    {"the double next to pi", kTestPi, 0x1.1a62633145c07p-53, -1},
    {"the double next to pi/2", kHalfPiTest, 1, 0x1.1a62633145c07p-54},
    {"the double next to 2 pi", 2 * kTestPi, -0x1.1a62633145c07p-52, 1},
};

TEST(MathSpecial, SinAndCos)
{
    for (const auto& [shows, x, sine, cosine] : kAngleCases) {
        ExpectSameBits(Sin(x), sine, shows, x, 0);
        ExpectSameBits(Cos(x), cosine, shows, x, 0);
    }
}

const struct {
    const char* shows;
    f64 x, want;
} kAtanCases[] = {
    {"zero", 0, 0},
    {"minus zero", -0.0, -0.0},
    {"the smallest number", -kSmallest, -kSmallest},
    {"one", 1, kQuarterPiTest},
    {"minus one", -1, -kQuarterPiTest},
    {"infinity", kInf, kHalfPiTest},
    {"minus infinity", -kInf, -kHalfPiTest},
    {"the largest number", kLargest, kHalfPiTest},
    {"not a number", kNan, kNan},
};

TEST(MathSpecial, Atan)
{
    for (const auto& [shows, x, want] : kAtanCases) ExpectSameBits(Atan(x), want, shows, x, 0);
}

const struct {
    const char* shows;
    f64 y, x, want;
} kAtan2Cases[] = {
    {"both zero", 0, 0, 0},
    {"minus zero above zero", -0.0, 0, -0.0},
    {"zero above minus zero", 0, -0.0, kTestPi},
    {"both minus zero", -0.0, -0.0, -kTestPi},
    {"to the right", 0, 3, 0},
    {"to the right, minus", -0.0, 3, -0.0},
    {"to the left", 0, -3, kTestPi},
    {"to the left, minus", -0.0, -3, -kTestPi},
    {"upwards", 3, 0, kHalfPiTest},
    {"upwards, minus zero", 3, -0.0, kHalfPiTest},
    {"downwards", -3, 0, -kHalfPiTest},
    {"the smallest upwards", kSmallest, 0, kHalfPiTest},
    {"infinitely far right", 1, kInf, 0},
    {"infinitely far right, below", -1, kInf, -0.0},
    {"infinitely far left", 1, -kInf, kTestPi},
    {"infinitely far left, below", -1, -kInf, -kTestPi},
    {"infinitely far up", kInf, -5, kHalfPiTest},
    {"infinitely far down", -kInf, 5, -kHalfPiTest},
    {"both infinite", kInf, kInf, kQuarterPiTest},
    {"both infinite, left", kInf, -kInf, kThreeQuarterPi},
    {"both minus infinite", -kInf, -kInf, -kThreeQuarterPi},
    {"both infinite, down", -kInf, kInf, -kQuarterPiTest},
    {"diagonal", 7, 7, kQuarterPiTest},
    {"diagonal, left", 7, -7, kThreeQuarterPi},
    {"diagonal of the smallest numbers", kSmallest, kSmallest, kQuarterPiTest},
    {"diagonal of the largest numbers", -kLargest, kLargest, -kQuarterPiTest},
    {"a quotient that underflows", kSmallest, 4, 0},
    {"a quotient that underflows, below", -kSmallest, kLargest, -0.0},
    {"a subnormal quotient", 0x1p-1000, 0x1p60, 0x1p-1060},
    {"a quotient that overflows", kLargest, kSmallest, kHalfPiTest},
    {"next to the left axis", kSmallest, -1, kTestPi},
    {"not a number above", kNan, 1, kNan},
    {"not a number beside", 1, kNan, kNan},
    {"not a number and infinity", kInf, kNan, kNan},
};

TEST(MathSpecial, Atan2)
{
    for (const auto& [shows, y, x, want] : kAtan2Cases) ExpectSameBits(Atan2(y, x), want, shows, y, x);
}

const struct {
    const char* shows;
    f64 x, y, want;
} kHypotCases[] = {
    {"both zero", 0, -0.0, 0},
    {"one zero", -3, 0, 3},
    {"infinity", kInf, 1, kInf},
    {"minus infinity", 1, -kInf, kInf},
    {"infinity beside not a number", kNan, -kInf, kInf},
    {"not a number", kNan, 1, kNan},
    {"not a number beside zero", 0, kNan, kNan},
    {"3 and 4", 3, 4, 5},
    {"signs do not matter", -3, -4, 5},
    {"far apart", 0x1p60, 1, 0x1p60},
    {"the smallest numbers", 3 * kSmallest, 4 * kSmallest, 5 * kSmallest},
    {"the smallest number twice", kSmallest, kSmallest, kSmallest},
    {"the largest that do not overflow", 0x1.8p1022, 0x1p1023, 0x1.4p1023},
    {"overflow", kLargest, kLargest, kInf},
    {"no overflow on the way", kLargest, 1, kLargest},
};

TEST(MathSpecial, Hypot)
{
    for (const auto& [shows, x, y, want] : kHypotCases) ExpectSameBits(Hypot(x, y), want, shows, x, y);
}

TEST(MathExact, PowersOfTwo)
{
    for (i32 n = -1074; n <= 1023; ++n) {
        const f64 want =
            n >= -1022 ? std::bit_cast<f64>(u64(n + 1023) << 52) : std::bit_cast<f64>(u64(1) << (n + 1074));
        ExpectSameBits(Pow(2, n), want, "2 to an integer", 2, n);
        ExpectSameBits(Pow(0.5, -n), want, "1/2 to an integer", 0.5, -n);
        if (n % 2 == 0) ExpectSameBits(Pow(4, n / 2), want, "4 to an integer", 4, n / 2);
        if (n % 3 == 0) ExpectSameBits(Pow(want, 1.0), want, "a power of two to the power 1", want, 1);
    }
}

TEST(MathExact, PowersOfIntegers)
{
    u32 tried = 0;
    for (u64 base = 2; base <= 2000; ++base) {
        u64 want = base;
        for (u32 n = 1; want < u64(1) << 53; ++n, want *= base, ++tried) {
            ExpectSameBits(Pow(f64(base), n), f64(want), "an integer power", f64(base), n);
            ExpectSameBits(Pow(-f64(base), n), n % 2 ? -f64(want) : f64(want), "of a negative base", -f64(base), n);
        }
    }
    EXPECT_GT(tried, 10'000u);
}

TEST(MathExact, RootsOfSquares)
{
    MathRandom random(7);
    for (u32 i = 0; i < 100'000; ++i) {
        const f64 root = f64(random.Below(1 << 17) + 1) / f64(1 << random.Below(10));
        ExpectSameBits(Pow(root * root, 0.5), root, "a square root", root * root, 0.5);
        ExpectSameBits(Pow(root * root, 1.5), root * root * root, "the power 1.5", root * root, 1.5);
    }
}

TEST(MathExact, EveryNumberToThePowerOneIsItself)
{
    MathRandom random(8);
    for (u32 i = 0; i < 200'000; ++i) {
        const f64 x = i % 4 ? random.PositiveBits() : random.Subnormal();
        if (x == 0) continue;
        ExpectSameBits(Pow(x, 1), x, "to the power 1", x, 1);
        ExpectSameBits(Pow(-x, 1), -x, "to the power 1", -x, 1);
    }
}

// Pythagorean triples m^2 - n^2, 2 m n, m^2 + n^2, scaled over the whole range.
TEST(MathExact, LengthsThatAreIntegers)
{
    MathRandom random(9);
    for (u32 i = 0; i < 200'000; ++i) {
        const u64 m = random.Below(1 << 26) + 1;
        const u64 n = random.Below(m);
        const f64 scale = std::bit_cast<f64>((random.Below(1900) + 1) << 52) * 0x1p-52;
        const f64 x = f64((m - n) * (m + n)) * scale;
        const f64 y = f64(2 * m * n) * scale;
        if (scale >= 0x1p-1074) ExpectSameBits(Hypot(x, y), f64(m * m + n * n) * scale, "a triple", x, y);
    }
}

TEST(MathExact, SineIsOddAndCosineIsEven)
{
    MathRandom random(10);
    for (u32 i = 0; i < 200'000; ++i) {
        const f64 angle = DrawAngle(random).x;
        ExpectSameBits(Sin(-angle), -Sin(angle), "an odd function", angle, 0);
        ExpectSameBits(Cos(-angle), Cos(angle), "an even function", angle, 0);
    }
}

TEST(MathExact, AtanIsAtan2Above1)
{
    MathRandom random(11);
    for (u32 i = 0; i < 200'000; ++i) {
        const f64 x = DrawAtan(random).x;
        ExpectSameBits(Atan2(x, 1), Atan(x), "the same angle", x, 1);
    }
}

TEST(FloorCeil, ByHand)
{
    const struct {
        f64 x, floor, ceil;
    } rows[] = {{0.0, 0, 0},
                {0.5, 0, 1},
                {-0.5, -1, 0},
                {2.0, 2, 2},
                {-2.0, -2, -2},
                {2.999, 2, 3},
                {-2.001, -3, -2},
                {0x1p60, 0x1p60, 0x1p60},
                {0x1.fffffffffffffp51, 0x1.ffffffffffffep51, 0x1p52},
                {-0x1p300, -0x1p300, -0x1p300}};
    for (const auto& row : rows) {
        EXPECT_EQ(Floor(row.x), row.floor) << row.x;
        EXPECT_EQ(Ceil(row.x), row.ceil) << row.x;
    }
}

}  // namespace
}  // namespace zlvtest
