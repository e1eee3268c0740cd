// The array forms give the bits of the scalar functions, on every instruction set, and stay inside
// their arrays.
#include "math_arguments.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

namespace zlvtest {
namespace {

struct ArrayForm {
    const char* name;
    f64 (*scalar)(f64 x, f64 y);
    void (*array)(const f64* x, const f64* y, f64* out, size_t count);
    Arguments (*draw)(MathRandom& random);
    bool sharesSecond;  // y[0] is used for all
};

const ArrayForm kForms[] = {
    {"ExpArray", [](f64 x, f64) { return Exp(x); },
     [](const f64* x, const f64*, f64* out, size_t n) { ExpArray(x, out, n); }, DrawExp, false},
    {"LogArray", [](f64 x, f64) { return Log(x); },
     [](const f64* x, const f64*, f64* out, size_t n) { LogArray(x, out, n); }, DrawLog, false},
    {"SinArray", [](f64 x, f64) { return Sin(x); },
     [](const f64* x, const f64*, f64* out, size_t n) { SinArray(x, out, n); }, DrawAngle, false},
    {"CosArray", [](f64 x, f64) { return Cos(x); },
     [](const f64* x, const f64*, f64* out, size_t n) { CosArray(x, out, n); }, DrawAngle, false},
    {"PowArray", Pow, [](const f64* x, const f64* y, f64* out, size_t n) { PowArray(x, y, out, n); }, DrawPow, false},
    {"PowArray of one exponent", Pow,
     [](const f64* x, const f64* y, f64* out, size_t n) { PowArray(x, n ? *y : 0, out, n); }, DrawPow, true},
    {"Atan2Array", Atan2, [](const f64* y, const f64* x, f64* out, size_t n) { Atan2Array(y, x, out, n); }, DrawPoint,
     false},
};

const f64 kAwkward[] = {0.0,
                        -0.0,
                        1.0,
                        -1.0,
                        std::numeric_limits<f64>::infinity(),
                        -std::numeric_limits<f64>::infinity(),
                        std::numeric_limits<f64>::quiet_NaN(),
                        0x1p-1074,
                        0x1p1023,
                        -0x1p-1040,
                        700.5,
                        -744.0,
                        12800.0,
                        0x1p-1022};

// Mostly ordinary arguments, which stay in vectors, and now and then one that leaves them.
std::vector<Arguments> Draw(const ArrayForm& form, size_t count, u64 seed)
{
    MathRandom random(seed);
    std::vector<Arguments> drawn(count);
    for (Arguments& arguments : drawn) {
        arguments = random.Below(4) ? Arguments{random.Between(0.1, 3), random.Between(-4, 4)} : form.draw(random);
        if (random.Below(16) == 0) arguments.x = kAwkward[random.Below(std::size(kAwkward))];
        if (random.Below(16) == 0) arguments.y = kAwkward[random.Below(std::size(kAwkward))];
        if (form.sharesSecond) arguments.y = drawn[0].y;
    }
    return drawn;
}

size_t Differences(const ArrayForm& form, const std::vector<Arguments>& drawn, const f64* got)
{
    size_t differing = 0;
    for (size_t i = 0; i < drawn.size(); ++i) {
        const f64 want = form.scalar(drawn[i].x, drawn[i].y);
        if (std::memcmp(&want, got + i, sizeof want) == 0) continue;
        if (++differing == 1)
            ADD_FAILURE() << form.name << std::hexfloat << " at " << i << ": (" << drawn[i].x << ", " << drawn[i].y
                          << ") gave " << got[i] << ", not " << want;
    }
    return differing;
}

f64* Numbers(GuardedBuffer& buffer) { return reinterpret_cast<f64*>(buffer.Data()); }

// Guard pages on either side of all three arrays; separate arrays, then the output over each of the
// inputs.
void Check(const ArrayForm& form, size_t count, Flush flush, u64 seed)
{
    const std::vector<Arguments> drawn = Draw(form, count, seed);
    GuardedBuffer x(count * sizeof(f64), flush), y(count * sizeof(f64), flush), out(count * sizeof(f64), flush, 0xD5);
    const auto fill = [&] {
        for (size_t i = 0; i < count; ++i) {
            Numbers(x)[i] = drawn[i].x;
            Numbers(y)[i] = drawn[i].y;
        }
    };
    fill();
    form.array(Numbers(x), Numbers(y), Numbers(out), count);
    EXPECT_EQ(Differences(form, drawn, Numbers(out)), 0u);
    form.array(Numbers(x), Numbers(y), Numbers(x), count);
    EXPECT_EQ(Differences(form, drawn, Numbers(x)), 0u) << "over the first input";
    fill();
    form.array(Numbers(x), Numbers(y), Numbers(y), count);
    EXPECT_EQ(Differences(form, drawn, Numbers(y)), 0u) << "over the second input";
}

TEST(MathArrays, EveryTargetEqualsScalar)
{
    for (const Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        for (const ArrayForm& form : kForms)
            for (const size_t count : {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 65, 111})
                for (u64 seed = 0; seed < 20; ++seed)
                    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                        SCOPED_TRACE(NameOf(target));
                        Check(form, count, flush, seed * 1000 + count);
                    }
    }
}

TEST(MathArrays, LongArraysEqualScalar)
{
    for (const Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        for (const ArrayForm& form : kForms) {
            SCOPED_TRACE(NameOf(target));
            Check(form, 100'003, Flush::ToEnd, 77);
        }
    }
}

}  // namespace
}  // namespace zlvtest
