#include "plain/plain_channels.h"
#include "plain/plain_contrast_mask.h"
#include "plain/plain_gaussian_blur.h"
#include "runtime/math.h"
#include "support/test_hooks.h"
#include "tone/contrast_mask.kernels.h"
#include "tone/tone_support.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Client;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;

constexpr PlainBlurMath kMath = {Exp, Sin, Cos, Pow};
constexpr f64 kNotANumber = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

// The blurred gray copy of the whole image, whatever part of it is blended afterwards.
Bytes PlainMask(const u8* image, const ImageShape& shape, f64 sigma)
{
    const size_t pixels = size_t(shape.width) * shape.height;
    Bytes gray(pixels), blurred(pixels);
    PlainGray(image, shape.width, shape.height, shape.channels, shape.Stride(), gray.data(), shape.width, false);
    PlainBlur<u8>({gray.data(), shape.width}, {shape.width, shape.height, 1}, {blurred.data(), shape.width}, sigma, 1,
                  kMath, [](u32, u32) { return true; });
    return blurred;
}

u32 Apply(u8* image, const ImageShape& s, u32 mode, f64 sigma)
{
    return ZLV40_ContrastMaskImage(image, s.width, s.height, s.channels, s.Stride(), mode, sigma);
}

InPlaceEffect Contrast(u32 mode, f64 sigma)
{
    return {[=](u8* image, const ImageShape& s) { return Apply(image, s, mode, sigma); },
            [=](u8* image, const ImageShape& s) {
                const Bytes mask = PlainMask(image, s, sigma);
                PlainContrastMask(image, s.width, s.height, s.channels, s.Stride(), mask.data(), mode);
            }};
}

TEST(ContrastMaskImage, EqualsPlain)
{
    for (const u32 channels : {3u, 4u}) {
        for (const u32 mode : {0u, 1u, 2u, 0xFFFFFFFFu}) {
            SCOPE("mode", mode);
            zlvtest::ExpectPlain(Contrast(mode, 2.0), channels);
        }
    }
}

// The engines of the blur, and none.
TEST(ContrastMaskImage, EveryKindOfSigmaEqualsPlain)
{
    const ImageShape shape = {37, 21, 4, 3};
    for (const f64 sigma : {-1.0, 0.0, 0.7, 0.99, 1.0, 4.49, 4.5, 30.0}) {
        for (const u32 mode : {0u, 1u}) {
            SCOPE(sigma, mode);
            Bytes wanted = zlvtest::RandomBytes(shape.Bytes(), 8);
            Bytes got = wanted;
            const InPlaceEffect effect = Contrast(mode, sigma);
            effect.plain(wanted.data(), shape);
            EXPECT_EQ(effect.apply(got.data(), shape), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(ContrastMaskKernels, EveryPairOfSampleAndMaskEqualsPlain)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        const auto& kernels = Kernels<ContrastMaskKernels>();
        for (const u32 mode : {0u, 1u}) {
            const auto blend = mode == 0 ? kernels.softLightRow : kernels.overlayRow;
            for (u32 sample = 0; sample < 256; ++sample) {
                Bytes mask(256), wanted(768), got(768, u8(sample));
                for (u32 g = 0; g < 256; ++g) {
                    mask[g] = u8(g);
                    for (u32 c = 0; c < 3; ++c) wanted[g * 3 + c] = PlainContrast(int(sample), int(g), mode);
                }
                blend(got.data(), mask.data(), 256, 3);
                ASSERT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "")
                    << zlvtest::NameOf(target) << ' ' << mode << ' ' << sample;
            }
        }
    }
}

TEST(ContrastMaskImage, AMiddleSampleUnderAMiddleMaskStays)
{
    // 255 - ((127 * 128) >> 7) = 128. A flat image unblurred is its own mask; its gray value is 128 too.
    Bytes image(4 * 4 * 3, 128);
    EXPECT_EQ(Apply(image.data(), {4, 4, 3}, ZLV40_CONTRAST_MASK_OVERLAY, 0), 1u);
    EXPECT_EQ(image, Bytes(4 * 4 * 3, 128));
}

TEST(ContrastMaskImage, OtherModesAllocateBlurAndReportAndChangeNothing)
{
    const ImageShape shape = {6, 5, 3};
    const Bytes before = zlvtest::RandomBytes(shape.Bytes(), 3);
    Bytes image = before;
    const Client client;
    EXPECT_EQ(Apply(image.data(), shape, 2, 1.5), 1u);
    EXPECT_EQ(client.recorder.reports, zlvtest::Rows(5, 5));
    EXPECT_EQ(image, before);
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(Apply(image.data(), shape, 2, 1.5), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
}

TEST(ContrastMaskImage, EveryAllocationThatFailsIsCodeOneAndNothingWritten)
{
    for (const f64 sigma : {0.5, 2.0, 8.0}) {
        u32 failures = 0;
        for (u32 succeeding = 0;; ++succeeding) {
            SCOPE(sigma, succeeding);
            const ImageShape shape = {20, 10, 3};
            const Bytes before = zlvtest::RandomBytes(shape.Bytes(), 3);
            Bytes image = before;
            u32 result = 0, failed = 0;
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                result = Apply(image.data(), shape, 0, sigma);
                failed = failing.Failed();
            }
            if (!failed) break;
            ++failures;
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
            EXPECT_EQ(image, before);
        }
        EXPECT_GE(failures, 2u) << "two planes at least";
    }
}

// The blur itself reports nothing: only the rows of the blending count, and a cancel comes after the first of them.
TEST(ContrastMaskImage, ReportsItsRowsAndCancels)
{
    for (const f64 sigma : {0.5, 2.0}) {
        const ImageShape shape = {9, 4, 3, 2};
        for (size_t cancelAt = 0; cancelAt <= shape.height; ++cancelAt) {
            SCOPE(sigma, "cancelled at", cancelAt);
            const Bytes before = zlvtest::RandomBytes(shape.Bytes(), 3);
            Bytes image = before, wanted = before;
            const u32 rows = cancelAt ? u32(cancelAt) : shape.height;
            const Bytes mask = PlainMask(before.data(), shape, sigma);
            PlainContrastMask(wanted.data(), shape.width, rows, 3, shape.Stride(), mask.data(), 0);
            const Client client(cancelAt);
            EXPECT_EQ(Apply(image.data(), shape, 0, sigma), cancelAt ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            EXPECT_EQ(client.recorder.reports, zlvtest::Rows(rows, 4));
            EXPECT_EQ(zlvtest::Difference(wanted.data(), image.data(), wanted.size()), "");
        }
    }
}

TEST(ContrastMaskImage, IsSilentAsAStep) { zlvtest::ExpectSilentAsStep(Contrast(0, 2.0), 3); }

TEST(ContrastMaskImage, KeepsTheFullFrame) { zlvtest::ExpectFrame(Contrast(0, 2.0), 4, true); }

TEST(ContrastMaskImage, RefusesWhatItCannotWorkOn)
{
    zlvtest::ExpectRefused(Contrast(0, 2.0), false, {2, 2, 3});
    for (const u32 channels : {0u, 1u, 2u, 5u, 0xFFFFFFFFu}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(Contrast(0, 2.0), true, {2, 2, channels});
    }
}

TEST(ContrastMaskImage, EmptyImagesAreOutOfMemory)
{
    zlvtest::ExpectRefused(Contrast(0, 2.0), true, {0, 2, 3}, ZLV40_ERROR_OUT_OF_MEMORY);
    zlvtest::ExpectRefused(Contrast(0, 2.0), true, {2, 0, 3}, ZLV40_ERROR_OUT_OF_MEMORY);
}

TEST(ContrastMaskImage, ARefusedArgumentComesBeforeAnEmptyImage)
{
    zlvtest::ExpectRefused(Contrast(0, 2.0), false, {0, 0, 3});
    zlvtest::ExpectRefused(Contrast(0, 2.0), true, {0, 0, 2});
}

TEST(ContrastMaskImage, ASigmaThatTheBlurRefusesIsRefused)
{
    for (const f64 sigma : {kNotANumber, kInfinity, -kInfinity, 1e39}) {
        SCOPE(sigma);
        zlvtest::ExpectRefused(Contrast(0, sigma), true, {4, 4, 3});
    }
}

}  // namespace
}  // namespace zlv
