#include "plain/plain_motion_blur.h"
#include "runtime/contexts.h"
#include "runtime/math.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include "zlv40.h"

#include <algorithm>
#include <limits>

#ifndef _WIN32
#include <sys/mman.h>
#endif

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr PlainMotionMath kMath = {Sin, Cos, Atan2};
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kPi = 3.14159265358979323846;
constexpr u8 kFill = 0x2A;

struct Image {
    i32 width, height;
    u32 channels;
    u32 srcPadding = 0, dstPadding = 0;
    u32 Row() const { return u32(width) * channels; }
    u32 SrcStride() const { return Row() + srcPadding; }
    u32 DstStride() const { return Row() + dstPadding; }
    size_t Size(u32 stride) const { return size_t(stride) * (u32(height) - 1) + Row(); }
};

struct Motion {
    f64 angle = 0, amount = 1;
    i32 steps = 15, mode = 0;
};

u32 Call(const Image& image, const Bytes& src, Bytes& dst, const Motion& motion)
{
    return ZLV40_MotionBlur(src.data(), image.width, image.height, image.SrcStride(), dst.data(), image.DstStride(),
                            image.channels, motion.angle, motion.amount, motion.steps, motion.mode);
}

Bytes Plainly(const Image& image, const Bytes& src, const Motion& motion)
{
    Bytes dst(image.Size(image.DstStride()), kFill);
    PlainMotionBlur({src.data(), image.width, image.height, image.SrcStride(), image.channels}, dst.data(),
                    image.DstStride(), {motion.angle, motion.amount, motion.steps, motion.mode, kMath});
    return dst;
}

// Padding keeps its fill; the source is not written.
void ExpectPlain(const Image& image, const Motion& motion)
{
    const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), u64(image.width) * 1000 + u64(image.height));
    const Bytes before = src;
    Bytes dst(image.Size(image.DstStride()), kFill);
    EXPECT_EQ(Call(image, src, dst, motion), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    const Bytes wanted = Plainly(image, src, motion);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), dst.data(), dst.size()), "");
    EXPECT_EQ(src, before);
}

constexpr Image kShapes[] = {
    {1, 1, 3},  {1, 9, 1, 2, 0}, {9, 1, 3, 0, 3}, {2, 2, 4},         {13, 7, 3, 1, 5},  {7, 20, 2, 0, 1},
    {64, 5, 1}, {65, 6, 3},      {40, 9, 5},      {130, 4, 4, 3, 3}, {11, 8, 17, 2, 2}, {66, 3, 40},
};

TEST(MotionBlur, EveryTargetEqualsPlainOnLines)
{
    zlvtest::OnEveryTarget([] {
        for (const Image& image : kShapes) {
            for (const f64 angle : {0.0, 30.0, 45.0, 90.0, 135.0, 180.0, 200.0, 270.0, 300.0, 360.0, -45.0, 1e5}) {
                for (const f64 amount : {1.0, 0.3, 2.5, -1.0}) {
                    SCOPE(image.width, image.height, image.channels, angle, amount);
                    ExpectPlain(image, {angle, amount, 15, 0});
                }
            }
        }
    });
}

TEST(MotionBlur, EveryTargetEqualsPlainOnArcsAndRays)
{
    zlvtest::OnEveryTarget([] {
        for (const Image& image : kShapes) {
            for (const i32 mode : {1, 2}) {
                for (const f64 amount : {1.0, 0.2, -3.0, 14.0, 77.5}) {
                    for (const i32 steps : {2, 3, 15, 16}) {
                        SCOPE(image.width, image.height, image.channels, mode, amount, steps);
                        ExpectPlain(image, {0, amount, steps, mode});
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
            ExpectPlain({1500, 6, 3, 5, 0}, {80, 1.7, 20, mode});
            ExpectPlain({2200, 3, 1}, {91, 1, 300, mode});
            ExpectPlain({5, 700, 4}, {1, 1, 300, mode});
        }
    });
}

// Lines from pixel to pixel: windows that slide, shorter and longer than the image and than what 16 bits sum.
TEST(MotionBlur, LongLinesAlongAnAxisEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const Image& image : {Image{300, 9, 1}, Image{290, 5, 3, 2, 1}, Image{70, 4, 4}, Image{40, 5, 11, 0, 7},
                                   Image{9, 300, 1}, Image{5, 290, 3, 1, 2}, Image{530, 2, 3}, Image{1, 1, 1}}) {
            for (const Motion& motion :
                 {Motion{0, 1, 40}, Motion{90, 1, 40}, Motion{180, 1, 40}, Motion{-90, 1, 40}, Motion{0, -1, 33},
                  Motion{90, -1, 33}, Motion{0, 1, 257}, Motion{90, 1, 258}, Motion{90, 1, 1000}, Motion{180, 1, 1000},
                  Motion{0, 0.25, 160}, Motion{90, 0.25, 160}, Motion{90, 0.25, 161}, Motion{90, 2, 40},
                  Motion{270, 1, 40}, Motion{360, 1, 40}, Motion{45, 1, 40}}) {
                SCOPE(image.width, image.height, image.channels, motion.angle, motion.amount, motion.steps);
                ExpectPlain(image, motion);
            }
        }
    });
}

// A slower way needs no memory.
TEST(MotionBlur, WithoutMemoryItIsTheSame)
{
    const Image image = {40, 60, 3};
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
        const Image image = {640, 480, 1};
        const Motion motion = {0, amount, 15, 1};
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
        PlainMotionBlur({src, kWidth, 3, kStride, 3}, wanted.data(), kWidth * 3, {40, 0.8, 12, mode, kMath});
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
                    ExpectPlain({9, 8, 3}, {40, amount, steps, mode});
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
                const Image image = {4, 4, 1};
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
            const Image image = {300, steps, 1};
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
                ExpectPlain({13, 7, 3, 1, 5}, {45, 1, steps, mode});
            }
        }
    });
}

TEST(MotionBlur, OneStepCopiesThroughTheWalk)
{
    for (const i32 mode : {0, 1, 2}) {
        SCOPE(mode);
        const Image image = {13, 7, 3};
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
            const Image image = {13, 7, 3};
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
    const Image image = {5, 1, 1};
    const Bytes src = {0, 10, 30, 60, 90};
    Bytes dst(5);
    EXPECT_EQ(Call(image, src, dst, {90, 1, 3, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{13, 33, 60, 75, 90}));
}

TEST(MotionBlur, AngleZeroRunsStraightDown)
{
    const Image image = {2, 3, 1};
    const Bytes src = {10, 100, 20, 120, 40, 200};
    Bytes dst(6);
    EXPECT_EQ(Call(image, src, dst, {0, 1, 2, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{15, 110, 30, 160, 40, 200}));
}

TEST(MotionBlur, AngleNinetyRunsToTheRight)
{
    const Image image = {3, 2, 1};
    const Bytes src = {10, 20, 40, 100, 120, 200};
    Bytes dst(6);
    EXPECT_EQ(Call(image, src, dst, {90, 1, 2, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{15, 30, 40, 110, 160, 200}));
}

// Half a pixel to the left of column 0 is still column 0.
TEST(MotionBlur, PositionsAreTruncatedTowardsZero)
{
    const Image image = {3, 1, 1};
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
                ExpectPlain({150, 70, 1}, {angle, amount, 9, 0});
                ExpectPlain({20, 600, 1}, {angle, amount, 3, 0});
                ExpectPlain({600, 20, 3}, {angle, amount, 3, 0});
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
                    ExpectPlain({300, 2, 1}, {90, amount, 2, 0});
                    ExpectPlain({2, 300, 1}, {0, amount, 2, 0});
                }
            }
        }
    });
}

TEST(MotionBlur, WalksToTheEdgeMayHaveAnyLength)
{
    for (const f64 angle : {0.0, 60.0, 90.0, 225.0}) {
        SCOPE(angle);
        const Image image = {40, 30, 3};
        const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
        Bytes dst(src.size());
        EXPECT_EQ(Call(image, src, dst, {angle, 1, INT32_MAX, 0}), 1u);
        EXPECT_EQ(dst, Plainly(image, src, {angle, 1, 1000, 0}));
    }
}

// Steps of a billionth: about a billion samples of each of the first two columns, and 147,483,647 of the third.
TEST(MotionBlur, BillionsOfStepsAreSummed)
{
    const Image image = {4, 1, 1};
    const Bytes src = {100, 200, 50, 7};
    Bytes dst(4);
    EXPECT_EQ(Call(image, src, dst, {90, 1e-9, INT32_MAX, 0}), 1u);
    // (100e9 + 200e9 + 50 * 147483647) / 2147483647 = 143.1...; (200e9 + 50e9 + 7 * 147483647) / 2147483647 = 116.8...;
    // 57e9 / 2e9 = 28.5, as the walk of the third column leaves after two; column 3 leaves after one.
    EXPECT_EQ(dst, (Bytes{143, 116, 28, 7}));
}

TEST(MotionBlur, AMillionStepsEqualPlain)
{
    ExpectPlain({3, 2, 1}, {50, 2e-6, 1000000, 0});
    ExpectPlain({3, 2, 1}, {50, 2e-5, 100000, 2});
    ExpectPlain({3, 2, 1}, {50, 2e-5, 10000, 1});
}

// The arc's others lie on both sides of the pixel, and walk the whole way from one to the other.
TEST(MotionBlur, ASpinOfThreeStepsByHand)
{
    // A step is a quarter of a turn: amount / pi / 10 = pi / 2. Step 0 is the pixel, step 1 is not turned, because
    // steps / 2 is 1, and step 2 is a quarter turn on: (dx, dy) from the centre goes to (-dy, dx). Truncation may cost
    // either coordinate a pixel; far from the edges of a wedge that does not show.
    const Image image = {21, 21, 1};
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
    const Image image = {9, 1, 1};
    const Bytes src = {10, 20, 30, 40, 50, 60, 70, 80, 90};
    Bytes dst(9);
    EXPECT_EQ(Call(image, src, dst, {0, 50, 3, 2}), 1u);
    // Column 0: 0, 2, 4; column 1: 1, 2.5, 4; column 7: 7, 5.5, 4; ...
    EXPECT_EQ(dst, (Bytes{30, 33, 40, 43, 50, 53, 60, 63, 70}));
}

TEST(MotionBlur, OtherModesAreLinear)
{
    const Image image = {13, 7, 3};
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
            for (const Image& image : {Image{70, 41, 1}, Image{41, 70, 3}, Image{64, 64, 1}, Image{130, 3, 1}}) {
                SCOPE(amount, image.width, image.height);
                ExpectPlain(image, {0, amount, 6, 1});
                ExpectPlain(image, {0, amount, 3, 1});
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
                    ExpectPlain({40, 33, 3}, {angle, amount, 12, mode});
                }
            }
        }
    });
}

TEST(MotionBlur, AnyStrideOfTheSourceWorks)
{
    for (const u32 stride : {0u, 1u, 20u, 100u}) {
        for (const i32 mode : {0, 1, 2}) {
            SCOPE(stride, mode);
            const Bytes src = zlvtest::RandomBytes(stride * 6 + 60, stride);
            Bytes wanted(60 * 7), got(60 * 7);
            PlainMotionBlur({src.data(), 20, 7, stride, 3}, wanted.data(), 60, {30, 1, 9, mode, kMath});
            EXPECT_EQ(ZLV40_MotionBlur(src.data(), 20, 7, stride, got.data(), 60, 3, 30, 1, 9, mode), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

// Rows of the result that share memory are written one after the other.
TEST(MotionBlur, AnyStrideOfTheResultWorks)
{
    for (const u32 stride : {0u, 1u, 20u}) {
        for (const i32 mode : {0, 1, 2}) {
            SCOPE(stride, mode);
            const Bytes src = zlvtest::RandomBytes(60 * 7, stride);
            Bytes wanted(stride * 6 + 60), got = wanted;
            PlainMotionBlur({src.data(), 20, 7, 60, 3}, wanted.data(), stride, {30, 1, 9, mode, kMath});
            EXPECT_EQ(ZLV40_MotionBlur(src.data(), 20, 7, 60, got.data(), stride, 3, 30, 1, 9, mode), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(MotionBlur, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 channels : {1u, 3u, 4u, 5u}) {
                for (const i32 width : {1, 33, 65}) {
                    for (const i32 mode : {0, 1, 2}) {
                        for (const f64 angle : {45.0, 225.0}) {
                            SCOPE(int(flush), channels, width, mode, angle);
                            const u32 row = u32(width) * channels;
                            zlvtest::GuardedBuffer src(size_t(row) * 9, flush, 200), dst(size_t(row) * 9, flush);
                            EXPECT_EQ(ZLV40_MotionBlur(src.Data(), width, 9, row, dst.Data(), row, channels, angle, 1.3,
                                                       12, mode),
                                      1u);
                            EXPECT_EQ(std::count(dst.Data(), dst.Data() + dst.Size(), 200), std::ptrdiff_t(dst.Size()));
                        }
                    }
                }
            }
        }
    });
}

TEST(MotionBlur, ReportsEveryRow)
{
    for (const i32 mode : {0, 1, 2}) {
        for (const i32 steps : {-5, 0, 1, 15, 300}) {
            SCOPE(mode, steps);
            const Image image = {10, 6, 3};
            const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
            Bytes dst(src.size());
            ProgressRecorder recorder;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(Call(image, src, dst, {45, 1, steps, mode}), 1u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(recorder.reports, zlvtest::Rows(6, 6));
            EXPECT_EQ(dst, Plainly(image, src, {45, 1, steps, mode}));
        }
    }
}

TEST(MotionBlur, ACancelKeepsTheRowsDone)
{
    for (const i32 mode : {0, 1, 2}) {
        for (const i32 steps : {0, 15}) {
            for (u32 cancelAt = 1; cancelAt <= 5; ++cancelAt) {
                SCOPE(mode, steps, cancelAt);
                const Image image = {30, 5, 3, 0, 2};
                const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 4);
                Bytes wanted = Plainly(image, src, {30, 1, steps, mode});
                const size_t written = size_t(image.DstStride()) * (cancelAt - 1) + image.Row();
                std::fill(wanted.begin() + std::ptrdiff_t(written), wanted.end(), kFill);
                Bytes dst(wanted.size(), kFill);
                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(Call(image, src, dst, {30, 1, steps, mode}), 0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(cancelAt, 5));
                EXPECT_EQ(dst, wanted);
                EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
            }
        }
    }
}

const struct {
    const char* shows;
    bool hasSrc, hasDst;
    i32 width, height;
    u32 channels;
    Motion motion;
    bool isRefused;
} kArguments[] = {
    {"a null source is refused", false, true, 2, 2, 3, {}, true},
    {"a null destination is refused", true, false, 2, 2, 3, {}, true},
    {"a width of 0 is refused", true, true, 0, 2, 3, {}, true},
    {"a height of 0 is refused", true, true, 2, 0, 3, {}, true},
    {"a negative width is refused", true, true, -1, 2, 3, {}, true},
    {"a negative height is refused", true, true, 2, INT32_MIN, 3, {}, true},
    {"no channels are refused", true, true, 2, 2, 0, {}, true},
    {"no channels are refused without steps, too", true, true, 2, 2, 0, {0, 1, 0, 0}, true},
    {"an angle that is not a number is refused", true, true, 2, 2, 3, {kNaN, 1, 2, 0}, true},
    {"an infinite angle is refused", true, true, 2, 2, 3, {-kInfinity, 1, 2, 0}, true},
    {"an amount that is not a number is refused", true, true, 2, 2, 3, {0, kNaN, 2, 0}, true},
    {"an infinite amount is refused", true, true, 2, 2, 3, {0, kInfinity, 2, 0}, true},
    {"so it is on an arc", true, true, 2, 2, 3, {0, -kInfinity, 2, 1}, true},
    {"and on a ray", true, true, 2, 2, 3, {0, kNaN, 2, 2}, true},
    {"an arc has no angle to look at", true, true, 2, 2, 3, {kNaN, 1, 2, 1}, false},
    {"a ray has none either", true, true, 2, 2, 3, {kInfinity, 1, 2, 2}, false},
    {"one step looks at nothing", true, true, 2, 2, 3, {kNaN, kNaN, 1, 0}, false},
    {"no step looks at nothing", true, true, 2, 2, 3, {kNaN, kNaN, 0, 1}, false},
    {"an arc of more steps than their sum can hold is refused", true, true, 2, 2, 3, {0, 0, 8421505, 1}, true},
    {"a ray of so many is refused", true, true, 2, 2, 3, {0, 0, INT32_MAX, 2}, true},
    {"an arc of as many steps as their sum can hold", true, true, 1, 1, 1, {0, 0, 8421504, 1}, false},
    {"a ray of as many steps", true, true, 1, 1, 1, {0, 0, 8421504, 2}, false},
};

TEST(MotionBlur, RefusesWithNothingWritten)
{
    for (const auto& row : kArguments) {
        SCOPE(row.shows);
        const Bytes src = zlvtest::RandomBytes(12, 4);
        Bytes dst(12, kFill);
        EXPECT_EQ(ZLV40_MotionBlur(row.hasSrc ? src.data() : nullptr, row.width, row.height, 6,
                                   row.hasDst ? dst.data() : nullptr, 6, row.channels, row.motion.angle,
                                   row.motion.amount, row.motion.steps, row.motion.mode),
                  row.isRefused ? 0u : 1u);
        EXPECT_EQ(ZLV40_GetLastError(), row.isRefused ? u32(ZLV40_ERROR_BAD_ARGUMENT) : 0u);
        if (row.isRefused) {
            EXPECT_EQ(dst, Bytes(12, kFill));
        }
    }
}

}  // namespace
}  // namespace zlv
