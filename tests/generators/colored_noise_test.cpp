#include "plain/plain_colored_noise.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include "zlv40.h"

#include <algorithm>

namespace zlv {
namespace {

using zlvtest::Bytes;

constexpr u32 kSeed = 17;

// The plane that a kind makes, by the generators' exports, which have twins of their own.
Bytes PlaneOf(u32 kind, u32 width, u32 height, u32 amount)
{
    amount = std::min(amount, 100u);
    const f64 scale = 1.0 - (amount / 100.0) * 0.99, variance = amount * 100.0;
    Bytes plane(size_t(width) * height, 128);
    switch (kind) {
    case 0: ZLV40_GeneratePerlinNoise(plane.data(), width, height, i32(width), scale); break;
    case 1: ZLV40_GenerateHugoNoise(plane.data(), width, height, width, 4, 0.5, scale); break;
    case 2: ZLV40_AddGaussianNoise(plane.data(), width, height, 1, width, variance, 0, 0, 1); break;
    case 3: ZLV40_AddNegativeExpNoise(plane.data(), width, height, 1, width, variance, 0, 1); break;
    case 4: ZLV40_AddRayleighNoise(plane.data(), width, height, 1, width, variance, 0, 1); break;
    default: ZLV40_AddUniformNoise(plane.data(), width, height, 1, width, variance, 0, 0, 1); break;
    }
    return plane;
}

constexpr u32 kColors[] = {0x000000, 0xFFFFFF, 0x808080, 0x0000FF, 0x00FF00, 0xFF0000,   0x00FFFF,
                           0xFF00FF, 0xFFFF00, 0x123456, 0x654321, 0x31A0C4, 0xFF9900C4, 0x010203};

Bytes Painted(const Bytes& plane, u32 color, u32 width, u32 height, u32 stride, u8 fill)
{
    Bytes image(size_t(stride) * (height - 1) + size_t(width) * 3, fill);
    for (u32 y = 0; y < height; ++y) {
        for (u32 x = 0; x < width; ++x) {
            PlainColorOfValue(color, plane[size_t(y) * width + x], &image[size_t(y) * stride + size_t(x) * 3]);
        }
    }
    return image;
}

TEST(ColoredNoise, PaintsThePlaneOfEachKind)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 kind = 0; kind <= 5; ++kind) {
            for (const u32 color : kColors) {
                for (const u32 amount : {0u, 37u, 100u, 101u, 0xFFFFFFFFu}) {
                    SCOPE(zlvtest::NameOf(target), kind, color, amount);
                    const u32 width = 37, height = 6, stride = 115;
                    Bytes got(stride * (height - 1) + width * 3, 0x77);
                    bool isSameTick = false;
                    Bytes wanted;
                    for (i32 i = 0; i < 1000 && !isSameTick; ++i) {  // until the clock stands still between the two
                        SeedRandom(*baseContexts.Get(), kSeed);
                        ASSERT_EQ(ZLV40_GenerateColoredNoise(got.data(), width, height, stride, color, amount, kind),
                                  1u);
                        const u32 state = baseContexts.Get()->randomState;
                        SeedRandom(*baseContexts.Get(), kSeed);
                        wanted = Painted(PlaneOf(kind, width, height, amount), color, width, height, stride, 0x77);
                        isSameTick = state == baseContexts.Get()->randomState;
                    }
                    ASSERT_TRUE(isSameTick);
                    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
                }
            }
        }
    }
}

// Pure blue at value 128.
TEST(ColoredNoise, GaussianWithoutAmountIsTheColourAtValue128)
{
    Bytes image(12);
    EXPECT_EQ(ZLV40_GenerateColoredNoise(image.data(), 2, 2, 6, 0xC80000, 0, ZLV40_NOISE_GAUSSIAN), 1u);
    EXPECT_EQ(image, (Bytes{0, 0, 128, 0, 0, 128, 0, 0, 128, 0, 0, 128}));
}

TEST(ColoredNoise, AGrayColourPaintsThePlaneItself)
{
    for (const u32 gray : {0x000000u, 0x404040u, 0xFFFFFFu}) {
        SeedRandom(*baseContexts.Get(), kSeed);
        Bytes image(300), plane(100);
        EXPECT_EQ(ZLV40_GenerateColoredNoise(image.data(), 10, 10, 30, gray, 50, ZLV40_NOISE_UNIFORM), 1u);
        SeedRandom(*baseContexts.Get(), kSeed);
        plane = PlaneOf(5, 10, 10, 50);
        for (size_t i = 0; i < 300; ++i) ASSERT_EQ(image[i], plane[i / 3]);
    }
}

TEST(ColoredNoise, TheColoursOwnValuePlaysNoPart)
{
    Bytes dark(300), light(300);
    SeedRandom(*baseContexts.Get(), kSeed);
    EXPECT_EQ(ZLV40_GenerateColoredNoise(dark.data(), 10, 10, 30, 0x204060, 50, 0), 1u);
    SeedRandom(*baseContexts.Get(), kSeed);
    EXPECT_EQ(ZLV40_GenerateColoredNoise(light.data(), 10, 10, 30, 0x4080C0, 50, 0), 1u);
    EXPECT_EQ(dark, light);
}

TEST(ColoredNoise, IsSilentWhateverItsGeneratorsWouldReport)
{
    for (u32 kind = 0; kind <= 5; ++kind) {
        zlvtest::ProgressRecorder recorder;
        recorder.cancelAt = 1;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes image(300);
        EXPECT_EQ(ZLV40_GenerateColoredNoise(image.data(), 10, 10, 30, 0x4080C0, 50, kind), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_TRUE(recorder.reports.empty());
    }
}

const struct {
    const char* shows;
    bool hasImage;
    u32 width, height, kind;
} kRefusals[] = {
    {"a null image", false, 2, 2, 0},
    {"no width", true, 0, 2, 0},
    {"no height", true, 2, 0, 0},
    {"a kind above the last", true, 2, 2, 6},
    {"the largest kind", true, 2, 2, 0xFFFFFFFF},
};

TEST(ColoredNoise, RefusesWithNothingWritten)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        SeedRandom(*baseContexts.Get(), kSeed);
        Bytes image(12, 9);
        EXPECT_EQ(ZLV40_GenerateColoredNoise(row.hasImage ? image.data() : nullptr, row.width, row.height, 6, 255, 50,
                                             row.kind),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(image, Bytes(12, 9));
        EXPECT_EQ(baseContexts.Get()->randomState, kSeed);
    }
}

TEST(ColoredNoise, WithoutMemoryForThePlaneIsCode1)
{
    Bytes image(300, 9);
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(ZLV40_GenerateColoredNoise(image.data(), 10, 10, 30, 255, 50, 1), 0u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(image, Bytes(300, 9));
}

// What a generator answers is not looked at.
TEST(ColoredNoise, WithoutMemoryForItsGeneratorPaintsAnEvenPlane)
{
    Bytes image(300, 9);
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 1);
        EXPECT_EQ(ZLV40_GenerateColoredNoise(image.data(), 10, 10, 30, 0xFFFFFF, 50, ZLV40_NOISE_HUGO), 1u);
        EXPECT_GT(failing.Failed(), 0u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(image, Bytes(300, 128));
}

TEST(ColoredNoise, StaysInsideItsBuffer)
{
    for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        for (const u32 width : {1u, 2u, 257u}) {
            zlvtest::GuardedBuffer buffer(size_t(width) * 9, flush);
            EXPECT_EQ(ZLV40_GenerateColoredNoise(buffer.Data(), width, 3, width * 3, 0x3366CC, 50, 0), 1u);
        }
    }
}

}  // namespace
}  // namespace zlv
