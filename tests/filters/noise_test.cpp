#include "plain/plain_noise.h"
#include "runtime/math.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr PlainNoiseMath kMath = {Log, Sin, Cos};
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

struct Image {
    u32 width, height, channels, padding = 0;
    u32 Stride() const { return width * channels + padding; }
    size_t Size() const { return size_t(Stride()) * (height - 1) + size_t(width) * channels; }
};

struct Parameters {
    f64 variance = 400;
    f64 mean = 0;
    i32 monochrome = 0;
    u32 mask = 255;
};

// One of the four, and what it is plainly.
struct Adder {
    const char* name;
    PlainNoise::Kind kind;
    u32 drawsPerValue;
    bool hasMean;
    u32 (*add)(u8* image, u32 width, u32 height, u32 channels, u32 stride, const Parameters& p);
};

constexpr Adder kAdders[] = {
    {"Gaussian", PlainNoise::Kind::Gaussian, 2, true,
     [](u8* image, u32 width, u32 height, u32 channels, u32 stride, const Parameters& p) {
         return ZLV40_AddGaussianNoise(image, width, height, channels, stride, p.variance, p.mean, p.monochrome,
                                       p.mask);
     }},
    {"uniform", PlainNoise::Kind::Uniform, 1, true,
     [](u8* image, u32 width, u32 height, u32 channels, u32 stride, const Parameters& p) {
         return ZLV40_AddUniformNoise(image, width, height, channels, stride, p.variance, p.mean, p.monochrome, p.mask);
     }},
    {"negative exponential", PlainNoise::Kind::NegativeExponential, 2, false,
     [](u8* image, u32 width, u32 height, u32 channels, u32 stride, const Parameters& p) {
         return ZLV40_AddNegativeExpNoise(image, width, height, channels, stride, p.variance, p.monochrome, p.mask);
     }},
    {"Rayleigh", PlainNoise::Kind::Rayleigh, 1, false,
     [](u8* image, u32 width, u32 height, u32 channels, u32 stride, const Parameters& p) {
         return ZLV40_AddRayleighNoise(image, width, height, channels, stride, p.variance, p.monochrome, p.mask);
     }},
};

u32 RandomState() { return baseContexts.Get()->randomState; }
void SetRandomState(u32 state) { SeedRandom(*baseContexts.Get(), state); }

// The image after the plain adder; `state` goes on.
Bytes Plainly(const Adder& adder, const Image& image, const Bytes& before, const Parameters& p, u32& state)
{
    Bytes after = before;
    PlainGenerator generator = {state};
    PlainAddNoise({after.data(), image.width, image.height, image.channels, image.Stride()},
                  {adder.kind, p.variance, p.mean, kMath}, p.monochrome != 0, p.mask, generator);
    state = generator.state;
    return after;
}

u32 Call(const Adder& adder, const Image& image, Bytes& bytes, const Parameters& p)
{
    return adder.add(bytes.data(), image.width, image.height, image.channels, image.Stride(), p);
}

// The same bytes and the same state of the generator.
void ExpectPlain(const Adder& adder, const Image& image, const Parameters& p, u32 seed)
{
    Bytes got = zlvtest::RandomBytes(image.Size(), seed);
    u32 state = seed;
    const Bytes wanted = Plainly(adder, image, got, p, state);
    SetRandomState(seed);
    EXPECT_EQ(Call(adder, image, got, p), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(RandomState(), state);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

template <class Test>
void OnAFreshThread(Test test)
{
    std::thread(test).join();
}

TEST(Noise, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const u32 channels : {1u, 2u, 3u, 4u, 7u, 8u}) {
                for (const u32 width : {1u, 5u, 32u, 86u, 257u, 530u}) {
                    for (const u32 padding : {0u, 3u}) {
                        for (const i32 monochrome : {0, 1}) {
                            SCOPE(adder.name, channels, width, padding, monochrome);
                            ExpectPlain(adder, {width, 3, channels, padding}, {400, 2.25, monochrome, 255}, width);
                        }
                    }
                }
            }
        }
    });
}

TEST(Noise, EveryMaskEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const u32 channels : {1u, 3u, 4u, 8u}) {
                for (u32 mask = 0; mask < (2u << channels); mask += channels == 8 ? 37 : 1) {
                    for (const i32 monochrome : {0, -1}) {
                        SCOPE(adder.name, channels, mask, monochrome);
                        ExpectPlain(adder, {90, 2, channels, 1}, {900, -3, monochrome, mask}, mask + 1);
                    }
                }
            }
        }
    });
}

// From those whose levels are always in doubt to those that a double hardly holds.
TEST(Noise, EveryVarianceAndMeanEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const f64 variance : {0.0, -0.0, 5e-324, 1e-300, 1e-40, 1e-12, 1e-6, 0.01, 1.0, 400.0, 1e4, 1e7, 1e8,
                                       1e9, 1e12, 1e75, 1e78, 1e300, 1e307}) {
                for (const f64 mean : {0.0,
                                       -0.0,
                                       1e-20,
                                       -1e-20,
                                       -0x1p-46,
                                       -0x1p-53,
                                       0.5,
                                       1.0,
                                       -1.0,
                                       -0.25,
                                       0.9999999999999999,
                                       2.9999999999999996,
                                       127.0,
                                       -254.99999999999997,
                                       300.0,
                                       1e5,
                                       -1e6,
                                       1e38,
                                       1e300,
                                       -1e308}) {
                    if (!adder.hasMean && mean != 0) continue;
                    SCOPE(adder.name, variance, mean);
                    ExpectPlain(adder, {50, 2, 3}, {variance, mean, 0, 7}, 11);
                }
            }
        }
    });
}

TEST(Noise, ManyDrawsEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const f64 variance : {0.7, 100.0, 3000.0}) {
                SCOPE(adder.name, variance);
                ExpectPlain(adder, {700, 300, 1}, {variance, 0.3, 0, 1}, u32(variance));
            }
        }
    });
}

// Parameters that put the first value right next to a whole number, where the last bits of the formula decide.
TEST(Noise, ValuesNextToALevelEqualPlain)
{
    constexpr u32 kState = 1;
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const f64 level : {1.0, 2.0, 3.0, 7.0, 100.0, 255.0}) {
                PlainGenerator generator = {kState};
                const f64 value = PlainNoise{adder.kind, 1, 0, kMath}.Value(generator);
                // Noise grows with the deviation.
                const f64 variance = (level / value) * (level / value);
                for (i32 nudge = -3; nudge <= 3; ++nudge) {
                    SCOPE(adder.name, level, nudge);
                    const f64 nudged = variance * (1 + nudge * 0x1p-52);
                    PlainGenerator again = {kState};
                    const f64 near = PlainNoise{adder.kind, nudged, 0, kMath}.Value(again);
                    EXPECT_NEAR(std::abs(near), level, 1e-12) << "the test is not where it wants to be";
                    ExpectPlain(adder, {20, 1, 1}, {nudged, 0, 0, 1}, kState);
                }
            }
        }
    });
}

// From state 1 the draws are 41, 18467, 6334, 26500.
TEST(Noise, TheFirstValuesByHand)
{
    // Uniform, s = 10: 41 * 0.001057192 - 17.320508 = -17.27716..., 18467 * 0.001057192 - 17.320508 = 2.20265...,
    // 6334 * 0.001057192 - 17.320508 = -10.62425..., 26500 * 0.001057192 - 17.320508 = 10.69508...
    OnAFreshThread([] {
        Bytes image = {100, 100, 100, 100};
        EXPECT_EQ(ZLV40_AddUniformNoise(image.data(), 4, 1, 1, 4, 100, 0, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{82, 102, 89, 110}));
    });
    // Rayleigh, variance 100: -2 * 2.3299 * 100 = -465.98. ln(1 - 41 / 32767.1) = -0.0012520..., its root 0.76382...;
    // ln(1 - 18467 / 32767.1) = -0.82915..., its root 19.6563...
    OnAFreshThread([] {
        Bytes image = {100, 100};
        EXPECT_EQ(ZLV40_AddRayleighNoise(image.data(), 2, 1, 1, 2, 100, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{100, 119}));
    });
    // Gaussian, variance 100: r = sqrt(0.0012520... * 200) = 0.50040..., t = 18467 * 0.00019175345 - pi = 0.39951...,
    // cos(t) r = 0.46099...; then ln(1 - 6334 / 32767.1) = -0.21480..., r = 6.5545..., t = 26500 * 0.00019175345 - pi
    // = 1.93987..., cos(t) = -0.36075..., and -2.36457...
    OnAFreshThread([] {
        Bytes image = {100, 100};
        EXPECT_EQ(ZLV40_AddGaussianNoise(image.data(), 2, 1, 1, 2, 100, 0, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{100, 97}));
    });
    // Negative exponential, variance 200: s = 10, r squared = 0.0012520... * 20 = 0.02504..., then 0.21480... * 20 =
    // 4.2961...
    OnAFreshThread([] {
        Bytes image = {100, 100};
        EXPECT_EQ(ZLV40_AddNegativeExpNoise(image.data(), 2, 1, 1, 2, 200, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{100, 104}));
    });
}

TEST(Noise, VarianceZeroAddsTheMeanOnly)
{
    for (const f64 variance : {0.0, -0.0}) {
        Bytes image = {0, 1, 100, 250, 255};
        EXPECT_EQ(ZLV40_AddGaussianNoise(image.data(), 5, 1, 1, 5, variance, 7.75, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{7, 8, 107, 255, 255}));
        EXPECT_EQ(ZLV40_AddUniformNoise(image.data(), 5, 1, 1, 5, variance, -7.25, 0, 1), 1u);
        EXPECT_EQ(image, (Bytes{0, 0, 99, 247, 247}));
    }
}

TEST(Noise, VarianceZeroAddsNothing)
{
    for (const f64 variance : {0.0, -0.0}) {
        const Bytes before = zlvtest::RandomBytes(300, 3);
        Bytes image = before;
        EXPECT_EQ(ZLV40_AddRayleighNoise(image.data(), 100, 1, 3, 300, variance, 0, 7), 1u);
        EXPECT_EQ(image, before);
        EXPECT_EQ(ZLV40_AddNegativeExpNoise(image.data(), 100, 1, 3, 300, variance, 0, 7), 1u);
        EXPECT_EQ(image, before);
    }
}

TEST(Noise, WithoutAChannelMonochromeStillDraws)
{
    for (const Adder& adder : kAdders) {
        for (const u32 mask : {0u, 8u, 0xFFFFFF00u}) {
            SCOPE(adder.name, mask);
            const Image shape = {70, 5, 3};
            const Bytes before = zlvtest::RandomBytes(shape.Size(), 1);
            Bytes image = before;
            SetRandomState(99);
            EXPECT_EQ(Call(adder, shape, image, {400, 5, 1, mask}), 1u);
            EXPECT_EQ(image, before);
            u32 state = 99;
            for (u32 i = 0; i < 70 * 5 * adder.drawsPerValue; ++i) state = state * 214013 + 2531011;
            EXPECT_EQ(RandomState(), state);
        }
    }
}

TEST(Noise, WithoutAChannelNothingIsDrawnOtherwise)
{
    for (const Adder& adder : kAdders) {
        SCOPE(adder.name);
        const Image shape = {70, 5, 3};
        const Bytes before = zlvtest::RandomBytes(shape.Size(), 1);
        Bytes image = before;
        SetRandomState(99);
        EXPECT_EQ(Call(adder, shape, image, {400, 5, 0, 0}), 1u);
        EXPECT_EQ(image, before);
        EXPECT_EQ(RandomState(), 99u);
    }
}

TEST(Noise, TwoCallsOnAFreshThreadGiveTheSameAsOnAnother)
{
    for (const Adder& adder : kAdders) {
        SCOPE(adder.name);
        const Image shape = {61, 9, 3};
        Bytes first[2], second[2];
        for (int i = 0; i < 2; ++i) {
            OnAFreshThread([&] {
                Bytes image(shape.Size(), 128);
                EXPECT_EQ(Call(adder, shape, image, {}), 1u);
                first[i] = image;
                EXPECT_EQ(Call(adder, shape, image, {}), 1u);
                second[i] = image;
            });
        }
        EXPECT_EQ(first[0], first[1]);
        EXPECT_EQ(second[0], second[1]);
        EXPECT_NE(first[0], second[0]);
    }
}

TEST(Noise, ThreadsSideBySideDoNotDisturbEachOther)
{
    const Image shape = {200, 100, 3};
    std::vector<Bytes> images(6, Bytes(shape.Size(), 100));
    std::vector<std::thread> threads;
    for (Bytes& image : images) {
        threads.emplace_back([&] {
            for (const Adder& adder : kAdders) EXPECT_EQ(Call(adder, shape, image, {}), 1u);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Bytes& image : images) EXPECT_EQ(image, images[0]);
}

TEST(Noise, MonochromeAddsOneValueToAllSelectedChannels)
{
    for (const Adder& adder : kAdders) {
        SCOPE(adder.name);
        const Image shape = {50, 6, 4};
        Bytes image(shape.Size(), 128);
        SetRandomState(5);
        EXPECT_EQ(Call(adder, shape, image, {400, 0, 1, 7}), 1u);
        bool hasNoise = false;
        for (size_t i = 0; i < image.size(); i += 4) {
            EXPECT_EQ(image[i], image[i + 1]);
            EXPECT_EQ(image[i], image[i + 2]);
            EXPECT_EQ(image[i + 3], 128);
            hasNoise = hasNoise || image[i] != 128;
        }
        EXPECT_TRUE(hasNoise);
    }
}

TEST(Noise, SamplesStayBetween0And255)
{
    Bytes image(4000, 0);
    std::fill_n(image.begin(), 2000, u8(255));
    EXPECT_EQ(ZLV40_AddGaussianNoise(image.data(), 4000, 1, 1, 4000, 100, 0, 0, 1), 1u);
    for (size_t i = 0; i < 2000; ++i) EXPECT_GE(image[i], 200) << i;
    for (size_t i = 2000; i < 4000; ++i) EXPECT_LE(image[i], 55) << i;
    EXPECT_GT(std::count(image.begin(), image.begin() + 2000, 255), 900);
    EXPECT_GT(std::count(image.begin() + 2000, image.end(), 0), 900);
}

TEST(Noise, HasItsMeanAndVariance)
{
    for (const Adder& adder : kAdders) {
        if (!adder.hasMean) continue;
        SCOPE(adder.name);
        const Image shape = {500, 400, 1};
        Bytes image(shape.Size(), 100);
        SetRandomState(1);
        EXPECT_EQ(Call(adder, shape, image, {225, 20, 0, 1}), 1u);
        f64 sum = 0, squares = 0;
        for (const u8 sample : image) {
            sum += sample;
            squares += f64(sample) * sample;
        }
        const f64 mean = sum / f64(image.size()), variance = squares / f64(image.size()) - mean * mean;
        EXPECT_NEAR(mean, 119.5, 0.2);  // truncated
        EXPECT_NEAR(variance, 225, 4);
    }
}

// Rows that share memory get noise one after the other.
TEST(Noise, AnyStrideWorks)
{
    for (const Adder& adder : kAdders) {
        for (const u32 stride : {0u, 1u, 20u, 59u}) {
            SCOPE(adder.name, stride);
            const size_t size = size_t(stride) * 6 + 60;
            Bytes wanted = zlvtest::RandomBytes(size, stride), got = wanted;
            PlainGenerator generator = {3};
            PlainAddNoise({wanted.data(), 20, 7, 3, stride}, {adder.kind, 50, 0, kMath}, false, 7, generator);
            SetRandomState(3);
            EXPECT_EQ(adder.add(got.data(), 20, 7, 3, stride, {50, 0, 0, 7}), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), size), "");
        }
    }
}

TEST(Noise, StaysInsideItsBuffer)
{
    zlvtest::OnEveryTarget([&] {
        for (const Adder& adder : kAdders) {
            for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
                for (const u32 width : {1u, 33u, 86u}) {
                    for (const u32 mask : {7u, 5u}) {
                        SCOPE(adder.name, int(flush), width, mask);
                        zlvtest::GuardedBuffer buffer(size_t(width) * 3 * 2, flush, 128);
                        EXPECT_EQ(adder.add(buffer.Data(), width, 2, 3, width * 3, {400, 0, 0, mask}), 1u);
                    }
                }
            }
        }
    });
}

TEST(Noise, ReportsEveryRow)
{
    for (const Adder& adder : kAdders) {
        for (const u32 mask : {7u, 2u, 0u}) {
            for (const i32 monochrome : {0, 1}) {
                SCOPE(adder.name, mask, monochrome);
                const Image shape = {10, 6, 3, 2};
                Bytes image = zlvtest::RandomBytes(shape.Size(), 1);
                ProgressRecorder recorder;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(Call(adder, shape, image, {400, 0, monochrome, mask}), 1u);
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(6, 6));
            }
        }
    }
}

TEST(Noise, ACancelKeepsTheRowsDoneAndTheirDraws)
{
    for (const Adder& adder : kAdders) {
        for (const i32 monochrome : {0, 1}) {
            for (u32 cancelAt = 1; cancelAt <= 5; ++cancelAt) {
                SCOPE(adder.name, monochrome, cancelAt);
                const Image shape = {30, 5, 3, 1}, done = {30, cancelAt, 3, 1};
                const Parameters p = {400, 0, monochrome, 7};
                Bytes got = zlvtest::RandomBytes(shape.Size(), 4);
                u32 state = 7;
                const Bytes wanted = Plainly(adder, done, got, p, state);
                SetRandomState(7);
                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(Call(adder, shape, got, p), 0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(cancelAt, 5));
                EXPECT_EQ(got, wanted);
                EXPECT_EQ(RandomState(), state);
                EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
            }
        }
    }
}

// A callback that draws takes its draws out of the sequence.
TEST(Noise, GoesOnWhereTheCallbackLeavesTheGenerator)
{
    const Image shape = {8, 3, 1}, row = {8, 1, 1};
    const Bytes before = zlvtest::RandomBytes(shape.Size(), 4);
    Bytes wanted;
    u32 state = 7;
    for (u32 y = 0; y < 3; ++y) {
        const Bytes rowBefore(before.begin() + y * 8, before.begin() + (y + 1) * 8);
        const Bytes rowAfter = Plainly(kAdders[0], row, rowBefore, {400, 0, 0, 1}, state);
        wanted.insert(wanted.end(), rowAfter.begin(), rowAfter.end());
        state = state * 214013 + 2531011;  // the callback's draw
    }
    Bytes got = before;
    SetRandomState(7);
    ProgressRecorder recorder;
    recorder.atReport = [] { (void)DrawRandom(*baseContexts.Get()); };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(Call(kAdders[0], shape, got, {400, 0, 0, 1}), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(got, wanted);
    EXPECT_EQ(RandomState(), state);
}

const struct {
    const char* shows;
    bool hasImage;
    u32 width, height, channels;
    f64 variance, mean;
    bool isRefused;  // by those without a mean, too
} kArguments[] = {
    {"a null image is refused", false, 2, 2, 3, 1, 0, true},
    {"a null image is refused before its size is looked at", false, 0, 0, 0, 1, 0, true},
    {"a width of 0 is refused", true, 0, 2, 3, 1, 0, true},
    {"a height of 0 is refused", true, 2, 0, 3, 1, 0, true},
    {"no channels are refused", true, 2, 2, 0, 1, 0, true},
    {"nine channels are refused", true, 2, 2, 9, 1, 0, true},
    {"the largest channel count is refused", true, 2, 2, 0xFFFFFFFF, 1, 0, true},
    {"eight channels are the most", true, 1, 1, 8, 1, 0, false},
    {"a negative variance has no root", true, 2, 2, 3, -1, 0, true},
    {"the smallest negative variance has none either", true, 2, 2, 3, -5e-324, 0, true},
    {"a variance that is not a number is refused", true, 2, 2, 3, kNaN, 0, true},
    {"an infinite variance is refused", true, 2, 2, 3, kInfinity, 0, true},
    {"a variance whose factors overflow is refused", true, 2, 2, 3, 1.1e307, 0, true},
    {"the largest variance is accepted", true, 2, 2, 3, 1e307, 0, false},
};

TEST(Noise, RefusesWithNothingWritten)
{
    for (const Adder& adder : kAdders) {
        for (const auto& row : kArguments) {
            SCOPE(adder.name, row.shows);
            const Bytes before = zlvtest::RandomBytes(64, 4);
            Bytes image = before;
            SetRandomState(12);
            EXPECT_EQ(adder.add(row.hasImage ? image.data() : nullptr, row.width, row.height, row.channels, 24,
                                {row.variance, row.mean, 0, 255}),
                      row.isRefused ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), row.isRefused ? u32(ZLV40_ERROR_BAD_ARGUMENT) : 0u);
            if (!row.isRefused) continue;
            EXPECT_EQ(image, before);
            EXPECT_EQ(RandomState(), 12u);
        }
    }
}

TEST(Noise, AMeanThatIsNotFiniteIsRefused)
{
    for (const Adder& adder : kAdders) {
        if (!adder.hasMean) continue;
        for (const f64 mean : {kNaN, kInfinity, -kInfinity}) {
            SCOPE(adder.name, mean);
            Bytes image = {1, 2, 3};
            EXPECT_EQ(adder.add(image.data(), 3, 1, 1, 3, {1, mean, 0, 1}), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(image, (Bytes{1, 2, 3}));
        }
    }
}

}  // namespace
}  // namespace zlv
