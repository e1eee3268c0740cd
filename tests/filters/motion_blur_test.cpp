#include "filters/motion_blur_cases.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <algorithm>

#ifndef _WIN32
#include <sys/mman.h>
#endif

namespace zlv {
namespace {

using zlvtest::Bytes;

constexpr f64 kPi = 3.14159265358979323846;
constexpr MotionImage kShapes[] = {
    {1, 1, 3},  {1, 9, 1, 2, 0}, {9, 1, 3, 0, 3}, {2, 2, 4},         {13, 7, 3, 1, 5},  {7, 20, 2, 0, 1},
    {64, 5, 1}, {65, 6, 3},      {40, 9, 5},      {130, 4, 4, 3, 3}, {11, 8, 17, 2, 2}, {66, 3, 40},
};

TEST(MotionBlur, EveryTargetEqualsPlainOnLines)
{
    zlvtest::OnEveryTarget([] {
        for (const MotionImage& image : kShapes) {
            for (const f64 angle : {0.0, 30.0, 45.0, 90.0, 135.0, 180.0, 200.0, 270.0, 300.0, 360.0, -45.0, 1e5}) {
                for (const f64 amount : {1.0, 0.3, 2.5, -1.0}) {
                    SCOPE(image.width, image.height, image.channels, angle, amount);
                    ExpectPlainMotion(image, {angle, amount, 15, 0});
                }
            }
        }
    });
}

TEST(MotionBlur, EveryTargetEqualsPlainOnArcsAndRays)
{
    zlvtest::OnEveryTarget([] {
        for (const MotionImage& image : kShapes) {
            for (const i32 mode : {1, 2}) {
                for (const f64 amount : {1.0, 0.2, -3.0, 14.0, 77.5}) {
                    for (const i32 steps : {2, 3, 15, 16}) {
                        SCOPE(image.width, image.height, image.channels, mode, amount, steps);
                        ExpectPlainMotion(image, {0, amount, steps, mode});
                    }
                }
            }
        }
    });
}

// More samples than walk together, and longer walks than are kept.
TEST(MotionBlur, WideImagesEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const i32 mode : {0, 1, 2}) {
            SCOPE(mode);
            ExpectPlainMotion({1500, 6, 3, 5, 0}, {80, 1.7, 20, mode});
            ExpectPlainMotion({2200, 3, 1}, {91, 1, 300, mode});
            ExpectPlainMotion({5, 700, 4}, {1, 1, 300, mode});
        }
    });
}

// Lines from pixel to pixel: windows that slide, shorter and longer than the image and than what 16 bits sum.
TEST(MotionBlur, LongLinesAlongAnAxisEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const MotionImage& image :
             {MotionImage{300, 9, 1}, MotionImage{290, 5, 3, 2, 1}, MotionImage{70, 4, 4}, MotionImage{40, 5, 11, 0, 7},
              MotionImage{9, 300, 1}, MotionImage{5, 290, 3, 1, 2}, MotionImage{530, 2, 3}, MotionImage{1, 1, 1}}) {
            for (const MotionSettings& motion :
                 {MotionSettings{0, 1, 40}, MotionSettings{90, 1, 40}, MotionSettings{180, 1, 40},
                  MotionSettings{-90, 1, 40}, MotionSettings{0, -1, 33}, MotionSettings{90, -1, 33},
                  MotionSettings{0, 1, 257}, MotionSettings{90, 1, 258}, MotionSettings{90, 1, 1000},
                  MotionSettings{180, 1, 1000}, MotionSettings{0, 0.25, 160}, MotionSettings{90, 0.25, 160},
                  MotionSettings{90, 0.25, 161}, MotionSettings{90, 2, 40}, MotionSettings{270, 1, 40},
                  MotionSettings{360, 1, 40}, MotionSettings{45, 1, 40}}) {
                SCOPE(image.width, image.height, image.channels, motion.angle, motion.amount, motion.steps);
                ExpectPlainMotion(image, motion);
            }
        }
    });
}

// A slower way needs no memory.
TEST(MotionBlur, WithoutMemoryItIsTheSame)
{
    const MotionImage image = {40, 60, 3};
    const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
    for (const f64 angle : {0.0, 90.0, 180.0}) {
        SCOPE(angle);
        Bytes dst(src.size());
        EXPECT_EQ(Call(image, src, dst, {angle, 1, 40, 0}), 1u);
        Bytes withoutMemory(src.size());
        {
            const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
            EXPECT_EQ(Call(image, src, withoutMemory, {angle, 1, 40, 0}), 1u);
            EXPECT_EQ(failing.Failed(), angle == 90 ? 0u : 1u);
        }
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(withoutMemory, dst);
    }
}

// Enough coordinates for some next to whole numbers, where fixed point and rotation cannot decide.
TEST(MotionBlur, ALargeSpinEqualsPlain)
{
    for (const f64 amount : {1.0, 0.37, -5.0}) {
        const MotionImage image = {640, 480, 1};
        const MotionSettings motion = {0, amount, 15, 1};
        const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
        const Bytes wanted = Plainly(image, src, motion);
        zlvtest::OnEveryTarget([&] {
            SCOPE(amount);
            Bytes dst(src.size());
            EXPECT_EQ(Call(image, src, dst, motion), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), dst.data(), dst.size()), "");
        });
    }
}

#ifndef _WIN32
// Three rows that stand 2^31 bytes apart: offsets leave 32 bits.
TEST(MotionBlur, ImagesOfMoreThanFourGigabytesEqualPlain)
{
    constexpr u32 kStride = 0x80000000u, kWidth = 70;
    const size_t bytes = size_t(kStride) * 2 + kWidth * 3;
    void* const memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    u8* const src = static_cast<u8*>(memory);
    for (size_t y = 0; y < 3; ++y) {
        const Bytes row = zlvtest::RandomBytes(kWidth * 3, y);
        std::copy(row.begin(), row.end(), src + y * kStride);
    }
    for (const i32 mode : {0, 1, 2}) {
        SCOPE(mode);
        Bytes wanted(size_t(kWidth) * 9), got = wanted;
        PlainMotionBlur({src, kWidth, 3, kStride, 3}, wanted.data(), kWidth * 3, {40, 0.8, 12, mode, kMotionMath});
        EXPECT_EQ(ZLV40_MotionBlur(src, kWidth, 3, kStride, got.data(), kWidth * 3, 3, 40, 0.8, 12, mode), 1u);
        EXPECT_EQ(got, wanted);
    }
    munmap(memory, bytes);
}
#endif

// Sums leave 16 bits behind 257 samples.
TEST(MotionBlur, LongWalksEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const i32 mode : {0, 1, 2}) {
            for (const i32 steps : {256, 257, 258, 400, 5000}) {
                for (const f64 amount : {1e-3, 0.01}) {
                    SCOPE(mode, steps, amount);
                    ExpectPlainMotion({9, 8, 3}, {40, amount, steps, mode});
                }
            }
        }
    });
}

// The largest sums.
TEST(MotionBlur, LongWalksOverWhiteStayWhite)
{
    zlvtest::OnEveryTarget([] {
        for (const i32 mode : {0, 1, 2}) {
            for (const i32 steps : {257, 258, 70000}) {
                SCOPE(mode, steps);
                const MotionImage image = {4, 4, 1};
                const Bytes src(16, 255);
                Bytes dst(16, 0);
                EXPECT_EQ(Call(image, src, dst, {45, 1e-6, steps, mode}), 1u);
                EXPECT_EQ(dst, src);
            }
        }
    });
}

// Sums from 1 on, and the same below the largest.
TEST(MotionBlur, EveryMeanIsTruncated)
{
    zlvtest::OnEveryTarget([] {
        for (i32 steps = 2; steps <= 300; ++steps) {
            SCOPE(steps);
            // Straight down through all rows. Row y is 1 from column y on: column x sums x + 1 ones, as far as there
            // are rows. The right half has as many ones less than white.
            const MotionImage image = {300, steps, 1};
            Bytes src(image.Size(image.SrcStride()));
            for (i32 y = 0; y < steps; ++y) {
                for (i32 x = 0; x < 300; ++x)
                    src[size_t(y * 300 + x)] = x < 150 ? u8(x >= y) : u8(255 - (x - 150 >= y));
            }
            Bytes dst(src.size());
            EXPECT_EQ(Call(image, src, dst, {0, 1, steps, 0}), 1u);
            for (i32 x = 0; x < 300; ++x) {
                const i32 ones = std::min(x % 150 + 1, steps), sum = x < 150 ? ones : 255 * steps - ones;
                EXPECT_EQ(dst[size_t(x)], sum / steps) << x;
            }
        }
    });
}

TEST(MotionBlur, NoStepsCopy)
{
    zlvtest::OnEveryTarget([] {
        for (const i32 mode : {0, 1, 2}) {
            for (const i32 steps : {0, -1, INT32_MIN}) {
                SCOPE(mode, steps);
                ExpectPlainMotion({13, 7, 3, 1, 5}, {45, 1, steps, mode});
            }
        }
    });
}

TEST(MotionBlur, OneStepCopiesThroughTheWalk)
{
    for (const i32 mode : {0, 1, 2}) {
        SCOPE(mode);
        const MotionImage image = {13, 7, 3};
        const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
        Bytes dst(src.size());
        EXPECT_EQ(Call(image, src, dst, {45, 7, 1, mode}), 1u);
        EXPECT_EQ(dst, src);
    }
}

TEST(MotionBlur, ALineWithoutAmountReturnsTheSample)
{
    for (const i32 steps : {1, 2, 15, 100, 300, 10000000, INT32_MAX}) {
        for (const f64 amount : {0.0, -0.0, 5e-324}) {
            SCOPE(steps, amount);
            const MotionImage image = {13, 7, 3};
            const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
            Bytes dst(src.size());
            EXPECT_EQ(Call(image, src, dst, {45, amount, steps, 0}), 1u);
            EXPECT_EQ(dst, src);
        }
    }
}

TEST(MotionBlur, EdgesAverageFewerSamplesAndRepeatNone)
{
    // To the right: 30 + 60 + 90 is one walk of three, 60 + 90 of two, 90 of one.
    const MotionImage image = {5, 1, 1};
    const Bytes src = {0, 10, 30, 60, 90};
    Bytes dst(5);
    EXPECT_EQ(Call(image, src, dst, {90, 1, 3, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{13, 33, 60, 75, 90}));
}

TEST(MotionBlur, AngleZeroRunsStraightDown)
{
    const MotionImage image = {2, 3, 1};
    const Bytes src = {10, 100, 20, 120, 40, 200};
    Bytes dst(6);
    EXPECT_EQ(Call(image, src, dst, {0, 1, 2, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{15, 110, 30, 160, 40, 200}));
}

TEST(MotionBlur, AngleNinetyRunsToTheRight)
{
    const MotionImage image = {3, 2, 1};
    const Bytes src = {10, 20, 40, 100, 120, 200};
    Bytes dst(6);
    EXPECT_EQ(Call(image, src, dst, {90, 1, 2, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{15, 30, 40, 110, 160, 200}));
}

// Half a pixel to the left of column 0 is still column 0.
TEST(MotionBlur, PositionsAreTruncatedTowardsZero)
{
    const MotionImage image = {3, 1, 1};
    const Bytes src = {100, 20, 60};
    Bytes dst(3);
    // Steps of half a pixel to the left. Column 0: 0, -0.5 (column 0), then -1 is outside: 100. Column 1: 1, 0.5, 0,
    // -0.5: (20 + 100 * 3) / 4 = 80. Column 2: 2, 1.5, 1, 0.5: (60 + 20 + 20 + 100) / 4 = 50.
    EXPECT_EQ(Call(image, src, dst, {90, -0.5, 4, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{100, 80, 50}));
}

// At 270 degrees the cosine is not quite 0: a step lies so little above its row that small coordinates fall into the
// row above, and larger ones are rounded back.
TEST(MotionBlur, OffsetsJustBelowAWholeNumberAreRoundedByTheSum)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 angle : {180.0, 270.0, 360.0, -90.0, 90.0, -270.0, 3600.0, 36000.0}) {
            for (const f64 amount : {1.0, 4.0, 100.0, 0x1p-3}) {
                SCOPE(angle, amount);
                ExpectPlainMotion({150, 70, 1}, {angle, amount, 9, 0});
                ExpectPlainMotion({20, 600, 1}, {angle, amount, 3, 0});
                ExpectPlainMotion({600, 20, 3}, {angle, amount, 3, 0});
            }
        }
    });
}

// The last step's offset is just below 2; the smaller a coordinate, the finer its sum with that.
TEST(MotionBlur, OffsetsAroundWholeNumbersEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 whole : {1.0, 2.0, -1.0, -3.0, -100.0, 0.0}) {
            for (const f64 aside : {0x1p-53, 0x1p-52, 0x1p-50, 0x1p-47, 0x1p-46, 0x1p-45, 0x1p-44, 0x1p-40}) {
                for (const f64 sign : {-1.0, 1.0}) {
                    SCOPE(whole, aside, sign);
                    const f64 amount = whole + sign * aside;
                    ExpectPlainMotion({300, 2, 1}, {90, amount, 2, 0});
                    ExpectPlainMotion({2, 300, 1}, {0, amount, 2, 0});
                }
            }
        }
    });
}

TEST(MotionBlur, WalksToTheEdgeMayHaveAnyLength)
{
    for (const f64 angle : {0.0, 60.0, 90.0, 225.0}) {
        SCOPE(angle);
        const MotionImage image = {40, 30, 3};
        const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
        Bytes dst(src.size());
        EXPECT_EQ(Call(image, src, dst, {angle, 1, INT32_MAX, 0}), 1u);
        EXPECT_EQ(dst, Plainly(image, src, {angle, 1, 1000, 0}));
    }
}

// Steps of a billionth: about a billion samples of each of the first two columns, and 147,483,647 of the third.
TEST(MotionBlur, BillionsOfStepsAreSummed)
{
    const MotionImage image = {4, 1, 1};
    const Bytes src = {100, 200, 50, 7};
    Bytes dst(4);
    EXPECT_EQ(Call(image, src, dst, {90, 1e-9, INT32_MAX, 0}), 1u);
    // (100e9 + 200e9 + 50 * 147483647) / 2147483647 = 143.1...; (200e9 + 50e9 + 7 * 147483647) / 2147483647 = 116.8...;
    // 57e9 / 2e9 = 28.5, as the walk of the third column leaves after two; column 3 leaves after one.
    EXPECT_EQ(dst, (Bytes{143, 116, 28, 7}));
}

TEST(MotionBlur, AMillionStepsEqualPlain)
{
    ExpectPlainMotion({3, 2, 1}, {50, 2e-6, 1000000, 0});
    ExpectPlainMotion({3, 2, 1}, {50, 2e-5, 100000, 2});
    ExpectPlainMotion({3, 2, 1}, {50, 2e-5, 10000, 1});
}

// The arc's others lie on both sides of the pixel, and walk the whole way from one to the other.
TEST(MotionBlur, ASpinOfThreeStepsByHand)
{
    // A step is a quarter of a turn: amount / pi / 10 = pi / 2. Step 0 is the pixel, step 1 is not turned, because
    // steps / 2 is 1, and step 2 is a quarter turn on: (dx, dy) from the centre goes to (-dy, dx). Truncation may cost
    // either coordinate a pixel; far from the edges of a wedge that does not show.
    const MotionImage image = {21, 21, 1};
    Bytes src(441, 10);
    for (i32 y = 0; y < 21; ++y) {
        for (i32 x = 0; x < 21; ++x) {
            if (x > 10 && std::abs(y - 10) < x - 10) src[size_t(y * 21 + x)] = 100;  // a wedge to the right
        }
    }
    Bytes dst(441);
    EXPECT_EQ(Call(image, src, dst, {0, kPi * kPi * 5, 3, 1}), 1u);
    EXPECT_EQ(dst[10 * 21 + 18], (100 + 100 + 10) / 3);  // right of the centre: the quarter turn leads below it
    EXPECT_EQ(dst[3 * 21 + 10], (10 + 10 + 100) / 3);    // above the centre: it leads to the right
    EXPECT_EQ(dst[18 * 21 + 10], 10);                    // below: to the left
}

TEST(MotionBlur, AZoomByHand)
{
    // 9 x 1, centre column 4. Half the distance is left after step 1 and none after step 2.
    const MotionImage image = {9, 1, 1};
    const Bytes src = {10, 20, 30, 40, 50, 60, 70, 80, 90};
    Bytes dst(9);
    EXPECT_EQ(Call(image, src, dst, {0, 50, 3, 2}), 1u);
    // Column 0: 0, 2, 4; column 1: 1, 2.5, 4; column 7: 7, 5.5, 4; ...
    EXPECT_EQ(dst, (Bytes{30, 33, 40, 43, 50, 53, 60, 63, 70}));
}

TEST(MotionBlur, OtherModesAreLinear)
{
    const MotionImage image = {13, 7, 3};
    const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
    const Bytes wanted = Plainly(image, src, {30, 1, 9, 0});
    for (const i32 mode : {0, 3, -1, 255, INT32_MAX, INT32_MIN}) {
        SCOPE(mode);
        Bytes dst(src.size());
        EXPECT_EQ(Call(image, src, dst, {30, 1, 9, mode}), 1u);
        EXPECT_EQ(dst, wanted);
    }
}

// Angles whose rotation is exact, or leads to whole coordinates for many pixels.
TEST(MotionBlur, TurnsToWholeCoordinatesEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        const f64 quarter = kPi * kPi * 5;
        for (const f64 amount : {quarter, quarter * 2, quarter * 4, quarter / 3, quarter * 2 / 3, quarter / 2, 0.0,
                                 -0.0, 1e-300, 1e-17, 1e-15, 1e-12, 1e-9}) {
            for (const MotionImage& image :
                 {MotionImage{70, 41, 1}, MotionImage{41, 70, 3}, MotionImage{64, 64, 1}, MotionImage{130, 3, 1}}) {
                SCOPE(amount, image.width, image.height);
                ExpectPlainMotion(image, {0, amount, 6, 1});
                ExpectPlainMotion(image, {0, amount, 3, 1});
            }
        }
    });
}

TEST(MotionBlur, HugeAmountsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 amount : {1e3, 1e6, 1e9, 1e12, 1e14, 1e16, 1e30, 1e300, 1.7e308, -1.7e308}) {
            for (const i32 mode : {0, 1, 2}) {
                for (const f64 angle : {0.0, 90.0, 45.0, 1e300}) {
                    if (mode != 0 && angle != 0) continue;
                    SCOPE(amount, mode, angle);
                    ExpectPlainMotion({40, 33, 3}, {angle, amount, 12, mode});
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
