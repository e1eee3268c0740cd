// A million results of each function, as a checksum: every build, compiler and instruction set
// gives the same.
//
// The constants were printed by the first build. They say nothing about the values being right,
// which is what the accuracy test proves; they hold all builds together, also those on which that
// test cannot run.
#include "math_arguments.h"

#include "support/targets.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace zlvtest {
namespace {

constexpr size_t kResults = 1'000'000;

using ArrayFunction = void (*)(const f64* x, const f64* y, f64* out, size_t count);

const struct {
    const char* name;
    u64 want;
    ArrayFunction array;
} kChecksums[] = {
    {"Exp", 0x29169438EB2E5493, [](const f64* x, const f64*, f64* out, size_t n) { ExpArray(x, out, n); }},
    {"Log", 0xB27CE2E8EB132F8B, [](const f64* x, const f64*, f64* out, size_t n) { LogArray(x, out, n); }},
    {"Pow", 0xACF0820B408A7FB2, [](const f64* x, const f64* y, f64* out, size_t n) { PowArray(x, y, out, n); }},
    {"Sin", 0x9890660FCD845E22, [](const f64* x, const f64*, f64* out, size_t n) { SinArray(x, out, n); }},
    {"Cos", 0x9C554E722E7BAB4C, [](const f64* x, const f64*, f64* out, size_t n) { CosArray(x, out, n); }},
    {"Atan", 0x272C5C5CDD8B7818, nullptr},
    {"Atan2", 0x3827C29CAC37982A, [](const f64* x, const f64* y, f64* out, size_t n) { Atan2Array(x, y, out, n); }},
    {"Hypot", 0x9DD63F053733E715, nullptr},
};

u64 ChecksumOf(const std::vector<f64>& values)
{
    u64 sum = 0xCBF29CE484222325;
    for (const f64 value : values) {
        sum = (sum ^ std::bit_cast<u64>(value)) * 0x100000001B3;
        sum ^= sum >> 29;
    }
    return sum;
}

class MathChecksum : public testing::TestWithParam<u32> {};

TEST_P(MathChecksum, IsTheSameOnEveryBuild)
{
    const MathFunction& function = kMathFunctions[GetParam()];
    const auto& [name, want, array] = kChecksums[GetParam()];
    ASSERT_STREQ(function.name, name);

    MathRandom random(GetParam());
    std::vector<f64> x(kResults), y(kResults), out(kResults);
    for (size_t i = 0; i < kResults; ++i) {
        const Arguments drawn = function.draw(random);
        x[i] = drawn.x;
        y[i] = drawn.y;
        out[i] = function.function(drawn.x, drawn.y);
    }
    const u64 sum = ChecksumOf(out);
    EXPECT_EQ(sum, want) << name << std::hex << " 0x" << sum;

    if (!array) return;
    for (const Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        std::memset(out.data(), 0xD5, kResults * sizeof(f64));
        array(x.data(), y.data(), out.data(), kResults);
        EXPECT_EQ(ChecksumOf(out), want) << name << " on " << NameOf(target);
    }
}

INSTANTIATE_TEST_SUITE_P(All, MathChecksum, testing::Range(0u, u32(std::size(kChecksums))),
                         [](const auto& which) { return kMathFunctions[which.param].name; });

}  // namespace
}  // namespace zlvtest
