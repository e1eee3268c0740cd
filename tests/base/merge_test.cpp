#include "base/merge.h"

#include "base/merge.kernels.h"
#include "base/overlay_support.h"
#include "runtime/base_tables.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Rows;

constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

u32 CallMerge(GuardedLayer<u8>& base, GuardedLayer<u8>& overlay, i32 x, i32 y, f64 opacity, u32 mode)
{
    return MV40_MergeRGBA(base.Data(), base.Width(), base.Height(), base.Channels(), base.Stride(), overlay.Data(),
                          overlay.Width(), overlay.Height(), overlay.Stride(), x, y, opacity, mode);
}

TEST(MergeRGBA, EveryModeEqualsPlainOnAllShapes)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const u32 mode : {0u, 1u, 2u, 3u, 4u, 5u, 0xFFFFFFFFu}) {
            for (const u32 channels : {3u, 4u}) {
                if (mode == 4 && channels == 3) continue;
                for (const f64 opacity : {1.0, 0.5, 0.3, 0.0, 2.5, -0.7}) {
                    for (const Placement& place : kPlacements) {
                        SCOPE(zlvtest::NameOf(target), mode, channels, opacity, place.shows);
                        GuardedLayer<u8> base(place.baseWidth, place.baseHeight, channels, 3, mode);
                        GuardedLayer<u8> overlay(place.overlayWidth, place.overlayHeight, 4, 2, channels);
                        std::vector<u8> wanted = base.Copy();
                        PlainVisible(base.PlainOver(wanted), overlay.Plain(), place.x, place.y, 1000,
                                     [&](u8* to, const u8* from) {
                                         const u8 a = u8(int(from[3] * opacity));
                                         PlainMergePixel(to, from, a, mode, channels == 4);
                                     });
                        ASSERT_EQ(CallMerge(base, overlay, place.x, place.y, opacity, mode), 1u);
                        ASSERT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
                    }
                }
            }
        }
    }
}

// A row of one pixel for each pair of a coverage and a sample.
TEST(MergeRGBA, EveryCoverageOfEverySampleEqualsTheTable)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const u8 under : {u8(0), u8(75), u8(85), u8(255)}) {
            SCOPE(zlvtest::NameOf(target), u32(under));
            Bytes base(65536 * 4, under), overlay(65536 * 4);
            Bytes wanted = base;
            for (u32 i = 0; i < 65536; ++i) {
                for (u32 c = 0; c < 3; ++c) overlay[i * 4 + c] = u8(i + c * 85);
                overlay[i * 4 + 3] = u8(i >> 8);
                PlainMergePixel(&wanted[i * 4], &overlay[i * 4], overlay[i * 4 + 3], 0, true);
            }
            ASSERT_EQ(
                MV40_MergeRGBA(base.data(), 65536, 1, 4, 65536 * 4, overlay.data(), 65536, 1, 65536 * 4, 0, 0, 1, 0),
                1u);
            ASSERT_EQ(zlvtest::Difference(wanted.data(), base.data(), base.size()), "");
        }
    }
}

// The kernels rely on where the table of products is not the truncated quotient.
TEST(MergeRGBA, TheTableDeviatesInTwelvePlaces)
{
    u32 deviating = 0;
    for (u32 a = 0; a < 256; ++a) {
        for (u32 b = 0; b < 256; ++b) {
            ASSERT_EQ(baseTables.product[a][b], PlainProduct(int(a), int(b)));
            if (baseTables.product[a][b] == a * b / 255) continue;
            ++deviating;
            EXPECT_EQ(baseTables.product[a][b], a * b / 255 - 1);
            EXPECT_EQ(a * b % 255, 0u);
            EXPECT_TRUE(a >= 128 && a % 8 == 3) << a;
        }
    }
    EXPECT_EQ(deviating, 12u);
}

TEST(MergeRGBA, EveryPairOfAlphasIsCompositedExactly)
{
    zlvtest::OnEveryTarget([&] {
        Bytes base = zlvtest::RandomBytes(65536 * 4, 1), overlay = zlvtest::RandomBytes(65536 * 4, 2);
        for (u32 i = 0; i < 65536; ++i) {
            base[i * 4 + 3] = u8(i);
            overlay[i * 4 + 3] = u8(i >> 8);
        }
        Bytes wanted = base;
        for (u32 i = 0; i < 65536; ++i) PlainMergePixel(&wanted[i * 4], &overlay[i * 4], overlay[i * 4 + 3], 4, true);
        EXPECT_EQ(MV40_MergeRGBA(base.data(), 256, 256, 4, 1024, overlay.data(), 256, 256, 1024, 0, 0, 1, 4), 1u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), base.data(), base.size()), "");
    });
}

// One pixel by hand; the overlay is 200, 100, 50 with its alpha.
const struct {
    const char* shows;
    u32 mode;
    f64 opacity;
    u8 alpha;
    Bytes base, result;
} kMerges[] = {
    {"nothing over nothing keeps the colour", 4, 1, 0, {10, 20, 30, 0}, {10, 20, 30, 0}},
    {"an opaque pixel over nothing", 4, 1, 255, {10, 20, 30, 0}, {200, 100, 50, 255}},
    // t = 127 * 100 / 255 = 49, A = 177, r = 128 * 255 / 177 = 184, (71 * 10 + 184 * 200) / 255 = 147.1, ...
    {"half over something", 4, 1, 128, {10, 20, 30, 100}, {147, 77, 44, 177}},
    {"an alpha of 0 leaves all alone", 1, 1, 0, {10, 20, 30, 40}, {10, 20, 30, 40}},
    // 128 / 255 of 200, 100, 50: 100, 50, 25; 127 / 255 of 10, 20, 30: 4, 9, 14
    {"the alpha stays", 0, 1, 128, {10, 20, 30, 40}, {104, 59, 39, 40}},
    {"the alpha is replaced", 1, 1, 128, {10, 20, 30, 40}, {104, 59, 39, 128}},
    {"the larger alpha, the new one", 2, 1, 128, {10, 20, 30, 40}, {104, 59, 39, 128}},
    {"the larger alpha, the old one", 2, 1, 128, {10, 20, 30, 140}, {104, 59, 39, 140}},
    {"alphas are added", 3, 1, 128, {10, 20, 30, 40}, {104, 59, 39, 168}},
    {"up to 255", 3, 1, 128, {10, 20, 30, 140}, {104, 59, 39, 255}},
    {"three bytes a pixel", 1, 1, 128, {10, 20, 30}, {104, 59, 39}},
    {"an opacity of a half", 1, 0.5, 255, {10, 20, 30, 40}, {104, 59, 39, 127}},  // 127: 99 + 5, 49 + 10, 24 + 15
    {"an opacity of 2 wraps", 1, 2, 192, {10, 20, 30, 40}, {104, 59, 39, 128}},
    {"an opacity below 0 wraps", 1, -0.5, 255, {10, 20, 30, 40}, {105, 59, 39, 129}},  // -127: 129
};

TEST(MergeRGBA, ByHand)
{
    for (const auto& row : kMerges) {
        SCOPE(row.shows);
        Bytes base = row.base;
        const Bytes overlay = {200, 100, 50, row.alpha};
        EXPECT_EQ(MV40_MergeRGBA(base.data(), 1, 1, u32(base.size()), 4, overlay.data(), 1, 1, 4, 0, 0, row.opacity,
                                 row.mode),
                  1u);
        EXPECT_EQ(base, row.result);
    }
}

TEST(MergeRGBA, AnyOtherNumberOfChannelsIsThree)
{
    for (const u32 channels : {0u, 1u, 2u, 5u, 0xFFFFFFFFu}) {
        Bytes base = {10, 20, 30};
        const Bytes overlay = {200, 100, 50, 128};
        EXPECT_EQ(MV40_MergeRGBA(base.data(), 1, 1, channels, 3, overlay.data(), 1, 1, 4, 0, 0, 1, 0), 1u);
        EXPECT_EQ(base, (Bytes{104, 59, 39}));
    }
}

u32 CallPaint(GuardedLayer<u8>& base, GuardedLayer<u8>& mask, i32 x, i32 y, u32 color, u32 flags)
{
    return MV40_AlphaBlendColor(base.Data(), base.Width(), base.Height(), base.Channels(), base.Stride(), mask.Data(),
                                mask.Width(), mask.Height(), mask.Stride(), color, x, y, flags);
}

// The rule of the highest flag.
int RuleOfFlags(u32 flags)
{
    for (int rule = 5; rule > 0; --rule) {
        if (flags >> rule & 1) return rule;
    }
    return 0;
}

TEST(AlphaBlendColor, EveryRuleEqualsPlainOnAllShapes)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 flags = 0; flags < 128; flags += flags < 16 ? 1 : 5) {
            for (const u32 channels : {3u, 4u}) {
                for (const Placement& place : kPlacements) {
                    SCOPE(zlvtest::NameOf(target), flags, channels, place.shows);
                    GuardedLayer<u8> base(place.baseWidth, place.baseHeight, channels, 3, flags);
                    GuardedLayer<u8> mask(place.overlayWidth, place.overlayHeight, 1, 2, channels);
                    for (size_t i = 0; i < mask.Size(); i += 3) mask.Data()[i] = 0;
                    for (size_t i = 3; i < base.Size(); i += 8) base.Data()[i] = 0;
                    const u8 color[4] = {u8(flags & 1 ? 33 : 11), 22, u8(flags & 1 ? 11 : 33), 44};
                    std::vector<u8> wanted = base.Copy();
                    PlainVisible(base.PlainOver(wanted), mask.Plain(), place.x, place.y, 1000,
                                 [&](u8* to, const u8* from) {
                                     PlainPaintPixel(to, *from, color, RuleOfFlags(flags), int(channels));
                                 });
                    ASSERT_EQ(CallPaint(base, mask, place.x, place.y, 11 | 22 << 8 | 33 << 16 | 44 << 24, flags), 1u);
                    ASSERT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
                }
            }
        }
    }
}

// One pixel by hand; the colour is 200, 100, 50, 250. Half of the mask: 100, 50, 25 and 4, 9, 14 as above.
const struct {
    const char* shows;
    u32 flags;
    u8 mask;
    Bytes base, result;
} kPaints[] = {
    {"three bytes", 0, 128, {10, 20, 30}, {104, 59, 39}},
    {"three bytes have no rule", kColorReplace, 128, {10, 20, 30}, {104, 59, 39}},
    {"three bytes, nothing masked", kColorReplace, 0, {10, 20, 30}, {10, 20, 30}},
    {"the alpha stays", 0, 128, {10, 20, 30, 40}, {104, 59, 39, 40}},
    {"the alpha is blended", kColorBlendAlpha, 128, {10, 20, 30, 40}, {104, 59, 39, 144}},  // 125 + 19
    {"the alpha is the colour's", kColorSetAlpha, 128, {10, 20, 30, 40}, {104, 59, 39, 250}},
    {"the alpha is the colour's only under the mask", kColorSetAlpha, 0, {10, 20, 30, 40}, {10, 20, 30, 40}},
    {"the alpha is the mask", kColorMaskToAlpha, 128, {10, 20, 30, 40}, {104, 59, 39, 128}},
    {"the alpha is the mask only under it", kColorMaskToAlpha, 0, {10, 20, 30, 40}, {10, 20, 30, 40}},
    {"replacing writes the colour also where nothing is masked", kColorReplace, 0, {10, 20, 30, 40}, {200, 100, 50, 0}},
    {"over something", kColorOver, 128, {10, 20, 30, 100}, {147, 77, 44, 100}},
    {"over nothing", kColorOver, 128, {10, 20, 30, 0}, {10, 20, 30, 0}},
    {"the highest flag counts", kColorOver | kColorReplace | kColorSetAlpha, 128, {10, 20, 30, 0}, {10, 20, 30, 0}},
    {"a flag above them does not", 64 | kColorMaskToAlpha, 128, {10, 20, 30, 40}, {104, 59, 39, 128}},
    {"the first and the third byte exchanged", kColorSwapped | kColorReplace, 9, {1, 2, 3, 4}, {50, 100, 200, 9}},
};

TEST(AlphaBlendColor, ByHand)
{
    for (const auto& row : kPaints) {
        SCOPE(row.shows);
        Bytes base = row.base;
        EXPECT_EQ(MV40_AlphaBlendColor(base.data(), 1, 1, u32(base.size()), 4, &row.mask, 1, 1, 1, 0xFA3264C8, 0, 0,
                                       row.flags),
                  1u);
        EXPECT_EQ(base, row.result);
    }
}

TEST(AlphaBlendColor, OtherNumbersOfChannelsPaintNothing)
{
    for (const u32 channels : {0u, 1u, 2u, 5u, 0xFFFFFFFFu}) {
        for (const u32 flags : {0u, kColorReplace}) {
            Bytes base(40, 7);
            const Bytes mask(40, 200);
            const zlvtest::Recording recording;
            EXPECT_EQ(
                MV40_AlphaBlendColor(base.data(), 2, 3, channels, 10, mask.data(), 2, 3, 2, 0x01020304, 0, 0, flags),
                1u);
            EXPECT_EQ(base, Bytes(40, 7));
            EXPECT_EQ(recording.recorder.reports, Rows(3, 3));
        }
    }
}

TEST(AlphaBlendColor, AMaskInTheBaseItselfIsReadPixelAfterPixel)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 channels : {3u, 4u}) {
            Bytes base = zlvtest::RandomBytes(400, 8);
            Bytes wanted = base;
            const u8 color[4] = {200, 100, 50, 250};
            for (u32 x = 0; x < 100; ++x) PlainPaintPixel(&wanted[x * channels], wanted[x], color, 1, int(channels));
            EXPECT_EQ(MV40_AlphaBlendColor(base.data(), 100, 1, channels, 400, base.data(), 100, 1, 100, 0xFA3264C8, 0,
                                           0, kColorBlendAlpha),
                      1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), base.data(), 400), "");
        }
    });
}

// Each call answers 1, or 0 with its code, and writes nothing.
const EdgeCall kCalls[] = {
    {"merge onto null", [](u8* p) { return MV40_MergeRGBA(nullptr, 1, 1, 4, 4, p, 1, 1, 4, 0, 0, 1, 0); }, 0,
     Error::BadArgument},
    {"merge from null", [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 4, 4, nullptr, 1, 1, 4, 5, 0, 1, 0); }, 0,
     Error::BadArgument},
    {"merge onto itself", [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 4, 4, p, 1, 1, 4, 0, 0, 1, 0); }, 0,
     Error::BadArgument},
    {"merge at an opacity that is no number",
     [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 4, 4, p + 8, 1, 1, 4, 0, 0, kNaN, 0); }, 0, Error::BadArgument},
    {"merge at an endless opacity",
     [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 4, 4, p + 8, 1, 1, 4, 0, 0, kInfinity, 4); }, 0, Error::BadArgument},
    {"merge at an opacity that leaves 32 bits",
     [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 4, 4, p + 8, 1, 1, 4, 0, 0, -1e7, 4); }, 0, Error::BadArgument},
    {"composite onto three bytes", [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 3, 3, p + 8, 1, 1, 4, 0, 0, 1, 4); }, 0,
     Error::BadArgument},
    {"composite outside, onto three bytes",
     [](u8* p) { return MV40_MergeRGBA(p, 1, 1, 3, 3, p + 8, 1, 1, 4, 1, 0, kNaN, 4); }, 1, Error::None},
    {"paint onto null", [](u8* p) { return MV40_AlphaBlendColor(nullptr, 1, 1, 4, 4, p, 1, 1, 1, 0, 0, 0, 0); }, 0,
     Error::BadArgument},
    {"paint through null", [](u8* p) { return MV40_AlphaBlendColor(p, 1, 1, 4, 4, nullptr, 1, 1, 1, 0, 3, 0, 0); }, 0,
     Error::BadArgument},
    {"paint outside", [](u8* p) { return MV40_AlphaBlendColor(p, 1, 1, 4, 4, p, 1, 1, 1, 0, 0, 1, 16); }, 1,
     Error::None},
};

TEST(Merges, EdgesTouchNothingAndReportNothing)
{
    for (const EdgeCall& call : kCalls) ExpectUntouched(call, 64);
}

TEST(Merges, ACancelKeepsTheRowsDone)
{
    for (const u32 cancelAt : {0u, 1u, 3u, 4u}) {
        for (const bool isMerge : {true, false}) {
            SCOPE(cancelAt, isMerge);
            GuardedLayer<u8> base(9, 6, 4, 2, 1), overlay(9, 5, 4, 0, 2), mask(9, 5, 1, 0, 2);
            const u8 color[4] = {4, 3, 2, 1};
            std::vector<u8> wanted = base.Copy();
            const u32 rowsDone = cancelAt ? cancelAt : 4;
            if (isMerge) {
                PlainVisible(base.PlainOver(wanted), overlay.Plain(), -1, 2, rowsDone,
                             [&](u8* to, const u8* from) { PlainMergePixel(to, from, from[3], 3, true); });
            } else {
                PlainVisible(base.PlainOver(wanted), mask.Plain(), -1, 2, rowsDone,
                             [&](u8* to, const u8* from) { PlainPaintPixel(to, *from, color, 5, 4); });
            }
            const zlvtest::Recording recording(cancelAt);
            EXPECT_EQ(
                isMerge ? CallMerge(base, overlay, -1, 2, 1, 3) : CallPaint(base, mask, -1, 2, 0x01020304, kColorOver),
                cancelAt ? 0u : 1u);
            EXPECT_EQ(MV40_GetLastError(), u32(cancelAt ? Error::Cancelled : Error::None));
            EXPECT_EQ(recording.recorder.reports, Rows(rowsDone, 4));
            EXPECT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(Merges, NeedNoMemory)
{
    (void)MV40_GetLastError();  // makes the thread's record
    GuardedLayer<u8> base(9, 6, 3, 2, 1), overlay(9, 5, 4, 0, 2), mask(9, 5, 1, 0, 2);
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(CallMerge(base, overlay, 0, 0, 0.5, 0), 1u);
    EXPECT_EQ(CallPaint(base, mask, 0, 0, 1, 0), 1u);
}

}  // namespace
}  // namespace zlv
