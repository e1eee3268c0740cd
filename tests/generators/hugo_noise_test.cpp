#include "plain/plain_hugo_noise.h"
#include "runtime/math.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();
constexpr u32 kShuffleDraws = 7;

// The tick count that the latest call began with, from what it has left in the generator: draws can be taken back.
u32 SeedOfLatestCall()
{
    u32 inverse = 1;  // of the multiplier, by Newton's iteration
    for (i32 i = 0; i < 5; ++i) inverse *= 2 - kRandomMultiplier * inverse;
    u32 state = baseContexts.Get()->randomState;
    for (u32 i = 0; i < kShuffleDraws; ++i) state = (state - kRandomIncrement) * inverse;
    return state;
}

Bytes Plainly(u32 width, u32 height, u32 stride, i32 octaves, f64 persistence, f64 scale, u8 fill)
{
    const PlainHugoNoise noise(SeedOfLatestCall(), octaves, persistence, {Cos, Pow});
    EXPECT_EQ(noise.stateAfter, baseContexts.Get()->randomState);
    Bytes image(size_t(stride) * (height - 1) + width, fill);
    for (u32 y = 0; y < height; ++y) {
        for (u32 x = 0; x < width; ++x) image[size_t(y) * stride + x] = noise.Pixel(x, y, scale);
    }
    return image;
}

const struct {
    const char* shows;
    i32 octaves;
    f64 persistence, scale;
} kNoises[] = {
    {"four octaves", 4, 0.5, 0.05},
    {"one octave", 2, 0.5, 0.3},
    {"seven octaves", 8, 0.9, 0.02},
    {"nine are eight", 9, 0.7, 0.11},
    {"very many are eight", 2147483647, 0.7, 0.11},
    {"persistence above 1 saturates", 5, 3, 0.2},
    {"negative persistence", 5, -0.6, 0.2},
    {"persistence 0", 5, 0, 0.2},
    {"a lattice point a pixel", 4, 0.5, 1},
    {"several lattice points a pixel", 4, 0.5, 3.7},
    {"many lattice points a pixel", 4, 0.5, 1234.5},
    {"to the left", 4, 0.5, -0.3},
    {"no scale", 4, 0.5, 0},
    {"beyond 32 bits", 4, 0.5, 1e8},
    {"no number for persistence", 4, kNaN, 0.2},
    {"infinite persistence", 4, kInfinity, 0.2},
    {"no number for scale", 4, 0.5, kNaN},
    {"infinite scale", 4, 0.5, kInfinity},
    {"largest scale", 8, 0.5, 1e308},
};

TEST(HugoNoise, EveryTargetEqualsPlain)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const auto& noise : kNoises) {
            for (const u32 width : {1u, 5u, 31u, 300u}) {
                SCOPE(zlvtest::NameOf(target), noise.shows, width);
                const u32 height = width > 100 ? 3 : 17, stride = width + 3;
                Bytes image(size_t(stride) * (height - 1) + width, 0xC3);
                ASSERT_EQ(ZLV40_GenerateHugoNoise(image.data(), width, height, stride, noise.octaves, noise.persistence,
                                                  noise.scale),
                          1u);
                const Bytes wanted =
                    Plainly(width, height, stride, noise.octaves, noise.persistence, noise.scale, 0xC3);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), image.data(), image.size()), "");
            }
        }
    }
}

TEST(HugoNoise, OneOctaveOrFewerIsAnEven127)
{
    for (const i32 octaves : {1, 0, -1, -2147483647 - 1}) {
        SCOPE(octaves);
        Bytes image(40, 3);
        EXPECT_EQ(ZLV40_GenerateHugoNoise(image.data(), 8, 5, 8, octaves, 0.5, 0.1), 1u);
        EXPECT_EQ(image, Bytes(40, 127));
    }
}

TEST(HugoNoise, AboveEightThereAreSevenThatContribute)
{
    Bytes image(400);
    EXPECT_EQ(ZLV40_GenerateHugoNoise(image.data(), 20, 20, 20, 100, 0.8, 0.1), 1u);
    EXPECT_EQ(image, Plainly(20, 20, 20, 8, 0.8, 0.1, 0));
    EXPECT_NE(image, Plainly(20, 20, 20, 7, 0.8, 0.1, 0));
}

TEST(HugoNoise, TwoCallsAtTheSameTickGiveTheSame)
{
    bool haveSame = false;
    for (i32 i = 0; i < 100000 && !haveSame; ++i) {
        Bytes first(64), second(64);
        EXPECT_EQ(ZLV40_GenerateHugoNoise(first.data(), 8, 8, 8, 4, 0.5, 0.4), 1u);
        const u32 tick = SeedOfLatestCall();
        EXPECT_EQ(ZLV40_GenerateHugoNoise(second.data(), 8, 8, 8, 4, 0.5, 0.4), 1u);
        haveSame = tick == SeedOfLatestCall();
        if (haveSame) {
            EXPECT_EQ(first, second);
        }
    }
    EXPECT_TRUE(haveSame);
}

TEST(HugoNoise, RefusesBeforeItSeeds)
{
    Bytes image(4, 9);
    const struct {
        u8* dst;
        u32 width, height;
    } rows[] = {{nullptr, 2, 2}, {image.data(), 0, 2}, {image.data(), 2, 0}};
    for (const auto& row : rows) {
        SeedRandom(*baseContexts.Get(), 5);
        EXPECT_EQ(ZLV40_GenerateHugoNoise(row.dst, row.width, row.height, 2, 4, 0.5, 0.1), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(baseContexts.Get()->randomState, 5u);
    }
    EXPECT_EQ(image, Bytes(4, 9));
}

TEST(HugoNoise, StaysInsideItsBuffer)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        for (const u32 width : {1u, 7u, 257u}) {
            zlvtest::GuardedBuffer buffer(size_t(width) * 3, flush);
            EXPECT_EQ(ZLV40_GenerateHugoNoise(buffer.Data(), width, 3, width, 4, 0.5, 0.1), 1u);
        }
    }
}

TEST(HugoNoise, ReportsEveryRowAndACancelKeepsTheRowsDone)
{
    for (u32 cancelAt = 0; cancelAt <= 5; ++cancelAt) {
        SCOPE(cancelAt);
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        Bytes image(100, 0xA5);
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(ZLV40_GenerateHugoNoise(image.data(), 20, 5, 20, 4, 0.5, 0.1), cancelAt ? 0u : 1u);
        EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
        ZLV40_SetCallback(nullptr, 0);
        const u32 done = cancelAt ? cancelAt : 5;
        EXPECT_EQ(recorder.reports, zlvtest::Rows(done, 5));
        Bytes wanted = Plainly(20, 5, 20, 4, 0.5, 0.1, 0);
        std::fill(wanted.begin() + done * 20, wanted.end(), u8(0xA5));
        EXPECT_EQ(image, wanted);
    }
}

TEST(HugoNoise, EveryAllocationThatFailsIsCode1)
{
    zlvtest::ExpectCodeOneWithoutMemory(
        Bytes(100, 9), [](Bytes& image) { return ZLV40_GenerateHugoNoise(image.data(), 20, 5, 20, 4, 0.5, 0.1); });
}

}  // namespace
}  // namespace zlv
