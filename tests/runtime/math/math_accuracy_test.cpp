// How far the mathematical functions are from the true values, measured with MPFR at 128 bits.
//
// A short form by default. ZLV_MATH_ARGUMENTS=20000000 asks for that many arguments a function (the
// target math-report does); the worst case of each function is printed with its argument.
#include "math_arguments.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

namespace zlvtest {
namespace {

constexpr f64 kLargestError = 0.52;  // units in the last place
constexpr u64 kDefaultArguments = 200'000;
constexpr u64 kBlock = 10'000;  // arguments drawn from one seed

class Reference {
public:
    Reference() { mpfr_inits2(128, value, first, second, nullptr); }
    ~Reference() { mpfr_clears(value, first, second, nullptr); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    // The distance of a result from the true value, in units in the last place of the true value.
    f64 ErrorOf(u32 function, Arguments at, f64 result)
    {
        mpfr_set_d(first, at.x, MPFR_RNDN);
        mpfr_set_d(second, at.y, MPFR_RNDN);
        switch (function) {
        case 0: mpfr_exp(value, first, MPFR_RNDN); break;
        case 1: mpfr_log(value, first, MPFR_RNDN); break;
        case 2: mpfr_pow(value, first, second, MPFR_RNDN); break;
        case 3: mpfr_sin(value, first, MPFR_RNDN); break;
        case 4: mpfr_cos(value, first, MPFR_RNDN); break;
        case 5: mpfr_atan(value, first, MPFR_RNDN); break;
        case 6: mpfr_atan2(value, first, second, MPFR_RNDN); break;
        case 7: mpfr_hypot(value, first, second, MPFR_RNDN); break;
        }
        if (mpfr_nan_p(value) || mpfr_inf_p(value) || mpfr_zero_p(value)) {
            const f64 exact = mpfr_get_d(value, MPFR_RNDN);
            return std::bit_cast<u64>(exact) == std::bit_cast<u64>(result) ? 0 : HUGE_VAL;
        }
        if (std::isnan(result)) return HUGE_VAL;
        if (std::signbit(result) != (mpfr_signbit(value) != 0)) return HUGE_VAL;

        const mpfr_exp_t exponent = mpfr_get_exp(value);
        if (std::isinf(result) && exponent > 1024) return 0;
        if (std::isinf(result)) mpfr_set_si_2exp(first, result > 0 ? 1 : -1, 1024, MPFR_RNDN);
        else mpfr_set_d(first, result, MPFR_RNDN);
        mpfr_sub(second, first, value, MPFR_RNDN);
        mpfr_mul_2si(second, second, exponent > -1021 ? 53 - exponent : 1074, MPFR_RNDN);
        return std::fabs(mpfr_get_d(second, MPFR_RNDN));
    }

private:
    mpfr_t value, first, second;
};

struct Worst {
    u64 count = 0, notNearest = 0;
    f64 error = -1;
    Arguments at{};

    void Add(f64 newError, Arguments where)
    {
        ++count;
        notNearest += newError > 0.5;
        if (newError > error) error = newError, at = where;
    }

    void Merge(const Worst& other)
    {
        count += other.count;
        notNearest += other.notNearest;
        if (other.error > error) error = other.error, at = other.at;
    }
};

Worst Measure(u32 function, u64 arguments)
{
    Worst worst;
    std::mutex mutex;
    std::atomic<u64> next = 0;
    const auto work = [&] {
        Reference reference;
        Worst own;
        for (u64 block = next++; block * kBlock < arguments; block = next++) {
            MathRandom random(block * 1000 + function);
            for (u64 i = 0; i < kBlock; ++i) {
                const Arguments at = kMathFunctions[function].draw(random);
                own.Add(reference.ErrorOf(function, at, kMathFunctions[function].function(at.x, at.y)), at);
            }
        }
        mpfr_free_cache();
        const std::lock_guard<std::mutex> lock(mutex);
        worst.Merge(own);
    };
    std::vector<std::thread> threads;
    for (u32 i = 0; i < std::thread::hardware_concurrency(); ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
    return worst;
}

class MathAccuracy : public testing::TestWithParam<u32> {};

TEST_P(MathAccuracy, IsWithinTheBound)
{
    const char* wanted = std::getenv("ZLV_MATH_ARGUMENTS");
    const u64 arguments = wanted ? std::strtoull(wanted, nullptr, 10) : kDefaultArguments;
    const Worst worst = Measure(GetParam(), arguments);
    std::printf("%-6s %11llu arguments, worst %.5f ulp at (%a, %a), %.4f%% not the nearest double\n",
                kMathFunctions[GetParam()].name, static_cast<unsigned long long>(worst.count), worst.error, worst.at.x,
                worst.at.y, 100 * f64(worst.notNearest) / f64(worst.count));
    std::fflush(stdout);
    ASSERT_GE(worst.count, kBlock);
    EXPECT_LT(worst.error, kLargestError);
}

INSTANTIATE_TEST_SUITE_P(All, MathAccuracy, testing::Range(0u, u32(std::size(kMathFunctions))),
                         [](const auto& which) { return kMathFunctions[which.param].name; });

// Every double that comes nearest to a multiple of pi/2 in its exponent: the reduction has to bring
// out all its bits.
TEST(MathAccuracyOfSines, HoldsNextToMultiplesOfHalfPi)
{
    Reference reference;
    ASSERT_GT(std::size(kHardAngles), 2000u);
    for (const f64 angle : kHardAngles) {
        EXPECT_LT(reference.ErrorOf(3, {angle, 0}, Sin(angle)), kLargestError) << std::hexfloat << angle;
        EXPECT_LT(reference.ErrorOf(4, {angle, 0}, Cos(angle)), kLargestError) << std::hexfloat << angle;
    }
}

}  // namespace
}  // namespace zlvtest
