#include "base/overlay.h"

#include "base/overlay_modes.kernels.h"
#include "base/overlay_support.h"
#include "base/sample.h"
#include "support/targets.h"

#include <cmath>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForTargetsAndWidths;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

// A parameter that each mode can use; results of the biased modes below 0 are left to a test of their own.
f64 ParameterOf(u32 mode, f64 top)
{
    if (mode == 13) return 1.3;
    if (mode == 15) return -top / 8;
    if (mode == 16) return top + 0.7;
    return top / 3 + 0.5;
}

TEST(OverlayImage, EveryModeEqualsPlainOnAllShapes)
{
    ForTargetsAndWidths([]<class T>() {
        for (u32 mode = 0; mode < kOverlayModes; ++mode) {
            for (const f64 opacity : {1.0, 0.5, 0.3, 0.0}) {
                for (const Placement& place : kPlacements) {
                    for (const u32 channels : {1u, 3u, 4u, 5u}) {
                        const u32 padding = channels % 3;
                        SCOPE(mode, opacity, place.shows, channels);
                        GuardedLayer<T> base(place.baseWidth, place.baseHeight, channels, padding, mode);
                        GuardedLayer<T> overlay(place.overlayWidth, place.overlayHeight, channels, padding * 2,
                                                mode + 100);
                        const PlainBlend blend = {opacity, ParameterOf(mode, kTop<T>), mode};
                        std::vector<T> wanted = base.Copy();
                        PlainOverlay<T>(base.PlainOver(wanted), overlay.Plain(), place.x, place.y, blend, 1000);
                        ASSERT_EQ(CallOverlay(base, overlay, place.x, place.y, blend), 1u);
                        ASSERT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
                    }
                }
            }
        }
    });
}

// Every pair of bytes is a pixel of a base 256 wide whose row is d and column is s.
struct AllPairs {
    AllPairs() : base(65536), overlay(65536)
    {
        for (u32 i = 0; i < 65536; ++i) {
            base[i] = u8(i >> 8);
            overlay[i] = u8(i);
        }
    }
    Bytes base, overlay;
};

TEST(OverlayImage, EveryPairOfBytesInEveryModeEqualsPlain)
{
    const f64 opacities[] = {1, 0.5, 0.25, 0.1, 0.3, 0.32, 0.35, 0.55, 0.7, 75 / 255.0, 0.123456789, 1e-18, 1 - 1e-16};
    for (u32 mode = 0; mode < kOverlayModes; ++mode) {
        for (const f64 opacity : opacities) {
            const PlainBlend blend = {opacity, ParameterOf(mode, 255), mode};
            AllPairs wanted;
            for (u32 i = 0; i < 65536; ++i) {
                wanted.base[i] = PlainBlendSample<u8>(wanted.base[i], wanted.overlay[i], blend);
            }
            for (const Target target : zlvtest::RunnableTargets()) {
                const zlvtest::ScopedTarget scoped(target);
                SCOPE(mode, opacity, zlvtest::NameOf(target));
                AllPairs got;
                ASSERT_EQ(MV40_OverlayImage(got.base.data(), 256, 256, 1, 256, got.overlay.data(), 256, 256, 256, 0, 0,
                                            opacity, blend.parameter, mode, 0),
                          1u);
                ASSERT_EQ(zlvtest::Difference(wanted.base.data(), got.base.data(), 65536), "");
            }
        }
    }
}

TEST(OverlayImage, MixesByEveryKindOfShareEqualPlain)
{
    zlvtest::Random random(7);
    for (u32 i = 1; i < 500; ++i) {
        const f64 opacity = i < 256 ? i / 256.0 : i < 356 ? (i - 256) / 100.0 : random.Next() / 4294967296.0;
        for (const u32 mode : {0u, 1u}) {
            SCOPE(opacity, mode);
            AllPairs pairs;
            ASSERT_EQ(MV40_OverlayImage(pairs.base.data(), 256, 256, 1, 256, pairs.overlay.data(), 256, 256, 256, 0, 0,
                                        opacity, 0, mode, 0),
                      1u);
            u32 differing = 0;
            for (u32 k = 0; k < 65536; ++k) {
                differing += pairs.base[k] != PlainBlendSample<u8>(u8(k >> 8), u8(k), {opacity, 0, mode});
            }
            ASSERT_EQ(differing, 0u);
        }
    }
}

TEST(OverlayImage, WordsAtTheEndsOfTheirRangeEqualPlain)
{
    const u16 values[] = {0, 1, 2, 3, 255, 256, 32766, 32767, 32768, 32769, 40000, 65532, 65533, 65534, 65535};
    std::vector<u16> first, second;
    for (const u16 d : values) {
        for (const u16 s : values) {
            first.push_back(d);
            second.push_back(s);
        }
    }
    const u32 count = u32(first.size());
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 mode = 0; mode < kOverlayModes; ++mode) {
            for (const f64 opacity : {1.0, 0.5, 0.7}) {
                SCOPE(zlvtest::NameOf(target), mode, opacity);
                const PlainBlend blend = {opacity, ParameterOf(mode, 65535), mode};
                std::vector<u16> wanted = first, got = first;
                for (u32 i = 0; i < count; ++i) wanted[i] = PlainBlendSample<u16>(first[i], second[i], blend);
                ASSERT_EQ(MV40_OverlayImage(got.data(), count, 1, 1, count, second.data(), count, 1, count, 0, 0,
                                            opacity, blend.parameter, mode, kOverlaySixteenBit),
                          1u);
                ASSERT_EQ(zlvtest::Difference(wanted.data(), got.data(), count), "");
            }
        }
    }
}

TEST(OverlayImage, DivisionsByTheLargestSampleAreExactForEveryProduct)
{
    // Of bytes, all pairs are tried above. Of words: each factor with the multiples where a quotient changes.
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        std::vector<u16> wanted(65536), got(65536), factor(65536);
        for (const u32 s : {1u, 2u, 3u, 254u, 255u, 257u, 32767u, 32768u, 65533u, 65534u, 65535u}) {
            for (u32 d = 0; d < 65536; ++d) {
                got[d] = u16(d);
                factor[d] = u16(s);
                wanted[d] = u16(u64(d) * s / 65535);
            }
            ASSERT_EQ(MV40_OverlayImage(got.data(), 65536, 1, 1, 65536, factor.data(), 65536, 1, 65536, 0, 0, 1, 0, 12,
                                        kOverlaySixteenBit),
                      1u);
            ASSERT_EQ(zlvtest::Difference(wanted.data(), got.data(), 65536), "") << s;
        }
    }
}

TEST(OverlayImage, ASplitReciprocalGivesEveryQuotient)
{
    for (u32 d = 0; d < 256; ++d) ASSERT_EQ(d * kByteReciprocal.head + d * kByteReciprocal.tail, d / 255.0) << d;
    for (u32 d = 0; d < 65536; ++d) ASSERT_EQ(d * kWordReciprocal.head + d * kWordReciprocal.tail, d / 65535.0) << d;
}

// One sample, by hand: M is 255, H is 128.
const struct {
    const char* shows;
    u32 mode;
    f64 opacity, parameter;
    u8 d, s, result;
} kSamples[] = {
    {"replacing by byte tables loses a unit where both are odd", 0, 0.5, 0, 3, 3, 2},
    {"replacing by double tables does not", 1, 0.5, 0, 3, 3, 3},
    {"an opacity above 1 is 1", 0, 7, 0, 3, 200, 200},
    {"an opacity below 0 is 0", 5, -7, 0, 3, 200, 3},
    {"above the threshold is replaced", 9, 1, 100.9, 1, 101, 101},
    {"the threshold itself is not above it", 9, 1, 100.9, 1, 100, 1},
    {"what is not above the threshold stays at any opacity", 9, 0.5, 100, 7, 100, 7},
    {"what is above the threshold is mixed", 9, 0.5, 100, 7, 101, 53},  // 3 + 50
    {"below the threshold is replaced", 10, 1, 100.9, 1, 99, 99},
    {"the threshold itself is not below it", 10, 1, 100.9, 1, 100, 1},
    {"what is not below the threshold stays at any opacity", 10, 0.5, 100, 7, 100, 7},
    {"what is below the threshold is mixed", 10, 0.5, 100, 7, 99, 52},  // 3 + 49
    {"a threshold of -1 is truncated from -1.9", 9, 1, -1.9, 9, 0, 0},
    {"no sample is above an endless threshold", 9, 1, kInfinity, 9, 255, 9},
    {"every sample is below an endless threshold", 10, 1, kInfinity, 9, 255, 255},
    {"no sample is below a threshold of 0", 10, 1, 0, 9, 0, 9},
    {"a biased sum is limited above", 15, 1, -1, 254, 1, 255},
    {"a biased sum below 0 keeps its low bits", 15, 1, 127, 50, 60, 239},    // -17
    {"a huge bias keeps its low bits, too", 15, 1, 0x10000 + 3, 1, 1, 255},  // -1 - 0x10000
    {"a huge bias the other way is limited", 15, 1, -1e300, 1, 1, 255},
    {"a biased difference below 0 keeps its low bits", 16, 1, 5, 50, 60, 251},  // -5
    {"a biased difference is limited above", 16, 1, 1e9, 0, 255, 255},
    {"a biased sum below 0 is 0 below full opacity", 15, 0.5, 127, 50, 60, 25},
    {"a scaled product is truncated", 13, 1, 1.5, 100, 77, 45},  // 77 * 1.5 * 100 / 255 = 45.29
    {"a scaled product is limited below", 13, 1, -1.5, 100, 77, 0},
    {"an endless factor takes products to the top", 13, 1, kInfinity, 1, 1, 255},
    {"an endless factor leaves nothing at nothing", 13, 1, kInfinity, 0, 255, 0},
    {"a scaled product of the largest double", 13, 1, 1.7e308, 0, 255, 0},
    {"dodging by the top is the top", 20, 1, 0, 0, 255, 255},
    {"dodging nothing", 20, 1, 0, 0, 254, 0},
    {"burning by nothing is nothing", 21, 1, 0, 255, 0, 0},
    {"burning the top", 21, 1, 0, 255, 1, 255},
    {"a soft dodge on the line of d + s = M", 22, 1, 0, 100, 155, 128},  // 100 * 128 / 100
    {"a soft dodge above it", 22, 1, 0, 100, 156, 129},                  // 255 - 99 * 128 / 100 = 255 - 126
    {"a soft burn of the top by nothing", 23, 1, 0, 255, 0, 255},
    {"an overlay below the half", 24, 1, 0, 127, 255, 253},  // 32385 / 128
    {"an overlay at the half", 24, 1, 0, 128, 0, 2},         // 255 - 32385 / 128
    {"soft light", 25, 1, 0, 100, 200, 134},                 // c = 78, e = 255 - 33: 78 + 144 * 100 / 255
    {"reflecting the top", 27, 1, 0, 0, 255, 255},
    {"glow of the top", 28, 1, 0, 255, 0, 255},
    {"freezing with nothing", 29, 1, 0, 255, 0, 0},
    {"heat of nothing", 30, 1, 0, 0, 255, 0},
};

TEST(OverlayImage, ByHand)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& row : kSamples) {
            SCOPE(row.shows);
            Bytes base(67, row.d);
            const Bytes overlay(67, row.s);
            EXPECT_EQ(MV40_OverlayImage(base.data(), 67, 1, 1, 67, overlay.data(), 67, 1, 67, 0, 0, row.opacity,
                                        row.parameter, row.mode, 0),
                      1u);
            EXPECT_EQ(base, Bytes(67, row.result));
        }
    });
}

TEST(OverlayImage, AWordDodgeFromTwoToThePowerOf31PassesUnlimited)
{
    zlvtest::OnEveryTarget([&] {
        // Divided by 1: 32768 * 65535 is below 2^31, 32769 * 65535 is above, and its low bits are 65536 - 32769.
        std::vector<u16> base = {32768, 32769, 65535, 65535, 65535};
        const std::vector<u16> overlay = {65534, 65534, 65534, 65533, 65535};
        EXPECT_EQ(
            MV40_OverlayImage(base.data(), 5, 1, 1, 5, overlay.data(), 5, 1, 5, 0, 0, 1, 0, 20, kOverlaySixteenBit),
            1u);
        EXPECT_EQ(base, (std::vector<u16>{65535, 32767, 1, 65535, 65535}));
    });
}

TEST(OverlayImage, AFlippedCopyReadsRowsUpwardsAndFromTheirFirstPixel)
{
    ForTargetsAndWidths([]<class T>() {
        for (const u32 mode : {0u, 1u}) {
            for (const Placement& place : kPlacements) {
                SCOPE(mode, place.shows);
                GuardedLayer<T> base(place.baseWidth, place.baseHeight, 3, 1, mode);
                GuardedLayer<T> overlay(place.overlayWidth, place.overlayHeight, 3, 2, 9);
                std::vector<T> wanted = base.Copy();
                PlainFlippedCopy<T>(base.PlainOver(wanted), overlay.Plain(), place.x, place.y);
                EXPECT_EQ(CallOverlay(base, overlay, place.x, place.y, {1, 0, mode}, kOverlayFlipped), 1u);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
            }
        }
    });
}

TEST(OverlayImage, FlippingIsForCopiesAlone)
{
    for (u32 mode = 0; mode < kOverlayModes; ++mode) {
        const f64 opacity = mode < 2 ? 0.5 : 1;
        SCOPE(mode);
        GuardedLayer<u8> flipped(9, 4, 3, 0, 1), upright(9, 4, 3, 0, 1), overlay(9, 4, 3, 0, 2);
        EXPECT_EQ(CallOverlay(flipped, overlay, 0, 0, {opacity, 1, mode}, kOverlayFlipped), 1u);
        EXPECT_EQ(CallOverlay(upright, overlay, 0, 0, {opacity, 1, mode}), 1u);
        EXPECT_EQ(flipped.Copy(), upright.Copy());
    }
}

}  // namespace
}  // namespace zlv
