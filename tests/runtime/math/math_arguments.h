// Arguments for the tests of the mathematical functions: ordinary ones and those that are hard.
//
// The generator is our own and uses exact operations only, so every build draws the same arguments.
#pragma once

#include "platform/types.h"
#include "runtime/math.h"

#include <bit>
#include <iterator>

namespace zlvtest {

using namespace zlv;  // the number types and the functions under test

struct Arguments {
    f64 x, y;
};

class MathRandom {
public:
    explicit MathRandom(u64 seed) : state(seed) {}

    // splitmix64: G. Steele, D. Lea, C. Flood, OOPSLA 2014.
    u64 Next()
    {
        state += 0x9E3779B97F4A7C15;
        u64 z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    u64 Below(u64 limit) { return Next() % limit; }
    f64 Unit() { return f64(Next() >> 11) * 0x1p-53; }
    f64 Between(f64 low, f64 high) { return low + Unit() * (high - low); }
    f64 Signed(f64 x) { return Next() & 1 ? x : -x; }

    // A random significand with an exponent in low..high.
    f64 WithExponent(i32 low, i32 high)
    {
        const u64 exponent = u64(low + i32(Below(u64(high - low + 1))) + 1023);
        return std::bit_cast<f64>(exponent << 52 | Next() >> 12);
    }

    // Any positive finite number, by its bits: subnormal ones too.
    f64 PositiveBits() { return std::bit_cast<f64>(Below(u64(0x7FF) << 52)); }
    f64 Subnormal() { return std::bit_cast<f64>(Next() >> 12 >> Below(52)); }

    // A few units in the last place beside x.
    f64 Beside(f64 x) { return std::bit_cast<f64>(std::bit_cast<u64>(x) + Below(9) - 4); }

private:
    u64 state;
};

inline constexpr f64 kHardAngles[] = {
#include "hard_angles_table.inc"
};

inline constexpr f64 kTestPi = 0x1.921fb54442d18p+1;
inline constexpr f64 kTestLn2 = 0x1.62e42fefa39efp-1;

inline Arguments DrawExp(MathRandom& random)
{
    switch (random.Below(8)) {
    case 0: return {random.Between(-745.2, 709.8), 0};
    case 1: return {random.Between(-1, 1), 0};
    case 2: return {random.Signed(random.WithExponent(-60, 9)), 0};
    case 3: return {random.Between(709.7, 709.79), 0};
    case 4: return {random.Between(-745.2, -708), 0};
    case 5: return {random.Beside((f64(random.Below(1000000)) - 500000 + 0.5) * (kTestLn2 / 256)), 0};
    case 6: return {random.Signed(random.PositiveBits()), 0};
    default: return {random.Between(-20, 20), 0};
    }
}

inline Arguments DrawLog(MathRandom& random)
{
    switch (random.Below(7)) {
    case 0: return {random.Between(0x1p-50, 10), 0};
    case 1: return {1 + random.Signed(random.WithExponent(-52, -2)), 0};
    case 2: return {random.PositiveBits(), 0};
    case 3: return {random.Subnormal(), 0};
    case 4: return {random.Beside(1 + f64(random.Below(512)) / 512), 0};
    case 5: return {random.Between(0.6, 1.5), 0};
    default: return {1 + random.Signed(random.Between(0, 0x1p-7)), 0};
    }
}

// An exponent that takes the base to about e^target.
inline f64 ExponentFor(f64 base, f64 target)
{
    const f64 log = Log(base);
    return log == 0 ? target : target / log;
}

inline Arguments DrawPow(MathRandom& random)
{
    f64 x = 0;
    switch (random.Below(11)) {
    case 0: return {random.Between(0x1p-60, 2), random.Between(-10, 10)};
    case 1: x = random.PositiveBits(); return {x, ExponentFor(x, random.Between(-745.2, 709.8))};
    case 2:
        x = 1 + random.Signed(random.WithExponent(-50, -2));
        return {x, ExponentFor(x, random.Between(-745.2, 709.8))};
    case 3:
        x = 1 + random.Signed(random.Between(0, 0x1p-8));
        return {x, ExponentFor(x, random.Signed(random.Between(600, 708)))};
    case 4: x = random.WithExponent(-40, 40); return {x, ExponentFor(x, random.Between(-745.2, -708))};
    case 5: x = random.WithExponent(-3, 3); return {x, ExponentFor(x, random.Between(709.7, 709.79))};
    case 6: x = random.Subnormal(); return {x, random.Between(-1.1, 1.1)};
    case 7: return {f64(random.Below(255) + 1) / 255, random.Between(0.05, 6)};
    case 8: return {-random.WithExponent(-10, 10), f64(random.Below(160)) - 80};
    case 9: x = random.Between(0.7, 1.4); return {x, ExponentFor(x, random.Signed(random.Between(600, 708)))};
    default: return {f64(random.Below(65536) + 1), 1 / f64(random.Below(12) + 1)};
    }
}

inline Arguments DrawAngle(MathRandom& random)
{
    switch (random.Below(9)) {
    case 0: return {random.Between(-10, 10), 0};
    case 1: return {random.Between(-13000, 13000), 0};
    case 2: return {random.Beside(f64(random.Below(1 << 14) + 1) * (kTestPi / 2)), 0};
    case 3: return {random.Beside(f64(random.Below(u64(1) << 40) + 1) * (kTestPi / 2)), 0};
    case 4: return {random.Signed(random.WithExponent(-1022, 1023)), 0};
    case 5: return {random.Signed(random.WithExponent(-40, 13)), 0};
    case 6: return {random.Beside((f64(random.Below(1 << 12)) + 0.5) * (kTestPi / 128)), 0};
    case 7: return {random.Beside(f64(random.Below(1 << 12) + 1) * (kTestPi / 128)), 0};
    default: return {random.Signed(kHardAngles[random.Below(std::size(kHardAngles))]), 0};
    }
}

inline Arguments DrawAtan(MathRandom& random)
{
    switch (random.Below(6)) {
    case 0: return {random.Between(-3, 3), 0};
    case 1: return {random.Signed(random.WithExponent(-30, 60)), 0};
    case 2: return {random.Signed(random.PositiveBits()), 0};
    case 3: return {random.Beside((f64(random.Below(128)) + 0.5) / 128), 0};
    case 4: return {random.Between(-0x1p-6, 0x1p-6), 0};
    default: return {random.Between(-100, 100), 0};
    }
}

inline Arguments DrawPoint(MathRandom& random)
{
    f64 x = 0;
    switch (random.Below(10)) {
    case 0: return {random.Between(-1, 1), random.Between(-1, 1)};
    case 1: return {random.Signed(random.PositiveBits()), random.Signed(random.PositiveBits())};
    case 2:
        x = random.Signed(random.WithExponent(-1000, 900));
        return {x, x * random.Signed(random.WithExponent(-70, 70))};
    case 3: return {f64(random.Below(4001)) - 2000, f64(random.Below(4001)) - 2000};
    case 4: x = random.Signed(random.WithExponent(-5, 5)); return {x, random.Signed(random.Beside(x))};
    case 5: return {random.Signed(random.Subnormal()), random.Signed(random.Subnormal())};
    case 6: return {random.Signed(random.WithExponent(-1022, -960)), random.Signed(random.WithExponent(0, 110))};
    case 7: return {random.Signed(random.WithExponent(950, 1023)), random.Signed(random.WithExponent(900, 1023))};
    case 8: return {random.Signed(random.WithExponent(-1022, -960)), random.Signed(random.WithExponent(-1022, -960))};
    default:
        x = random.WithExponent(-3, 3);
        return {random.Beside(x * f64(random.Below(256) + 1) / 256), random.Signed(x)};
    }
}

// Every function with its arguments, as a function of two numbers; those of one leave the second
// alone.
struct MathFunction {
    const char* name;
    u32 arity;
    f64 (*function)(f64 x, f64 y);
    Arguments (*draw)(MathRandom& random);
};

inline constexpr MathFunction kMathFunctions[] = {
    {"Exp", 1, [](f64 x, f64) { return Exp(x); }, DrawExp},
    {"Log", 1, [](f64 x, f64) { return Log(x); }, DrawLog},
    {"Pow", 2, Pow, DrawPow},
    {"Sin", 1, [](f64 x, f64) { return Sin(x); }, DrawAngle},
    {"Cos", 1, [](f64 x, f64) { return Cos(x); }, DrawAngle},
    {"Atan", 1, [](f64 x, f64) { return Atan(x); }, DrawAtan},
    {"Atan2", 2, Atan2, DrawPoint},
    {"Hypot", 2, Hypot, DrawPoint},
};

}  // namespace zlvtest
