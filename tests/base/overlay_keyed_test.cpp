#include "base/overlay.h"

#include "base/overlay_support.h"

#include <cmath>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Rows;

constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kOpacities[] = {1, 0.5, 0.3, 0.7, 0.123, 0, -3, 2};

f64 Limited(f64 opacity) { return std::clamp(opacity, 0.0, 1.0); }

// Few colours, so that some are the transparent one and many are near it.
void Coarsen(GuardedLayer<u8>& layer)
{
    for (size_t i = 0; i < layer.Size(); ++i) layer.Data()[i] = u8(layer.Data()[i] % 3 * 5 + 100);
}

TEST(OverlayRGBTrans, EqualsPlainOnAllShapesAndFlags)
{
    for (u32 flags = 0; flags < 16; ++flags) {
        for (const f64 opacity : kOpacities) {
            for (const u32 tolerance : {0u, 1u, 25u, 50u, 75u, 0xFFFFFFFFu}) {
                for (const Placement& place : kPlacements) {
                    SCOPE(flags, opacity, tolerance, place.shows);
                    const u32 color = 0x64696E;  // 110, 105, 100
                    GuardedLayer<u8> base(place.baseWidth, place.baseHeight, flags & 4 ? 4 : 3, 2, flags);
                    GuardedLayer<u8> overlay(place.overlayWidth, place.overlayHeight, flags & 8 ? 4 : 3, 1, flags + 50);
                    Coarsen(overlay);
                    const u32 key = flags & 2 ? 0x6E6964 : color;
                    std::vector<u8> wanted = base.Copy();
                    PlainVisible(base.PlainOver(wanted), overlay.Plain(), place.x, place.y, 1000,
                                 [&](u8* to, const u8* from) {
                                     if (PlainIsHidden(from, key, tolerance)) return;
                                     for (int c = 0; c < 3; ++c)
                                         to[c] = PlainMix(to[c], from[c], Limited(opacity), flags & 1);
                                 });
                    ASSERT_EQ(MV40_OverlayRGBTrans(base.Data(), base.Width(), base.Height(), base.Stride(),
                                                   overlay.Data(), overlay.Width(), overlay.Height(), overlay.Stride(),
                                                   place.x, place.y, opacity, color, tolerance, flags),
                              1u);
                    ASSERT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
                }
            }
        }
    }
}

// One pixel of 10, 20, 30 onto one of 1, 2, 3.
const struct {
    const char* shows;
    u32 color, tolerance, flags;
    bool isDrawn;
} kKeys[] = {
    {"the colour itself is transparent", 0x1E140A, 0, 0, false},
    {"its top byte does not count", 0xFF1E140A, 0, 0, false},
    {"the colour the other way round is not", 0x0A141E, 0, 0, true},
    {"unless it is exchanged", 0x0A141E, 0, kKeyedSwapColor, false},
    {"one step away is drawn without tolerance", 0x1E140B, 0, 0, true},
    {"one step away is a distance of 1", 0x1E140B, 1, 0, false},
    {"steps of 3, 4 and 5 are a distance of 50", 0x230F0D - 0x000000 + 0x000100, 50, 0, false},
    {"which is above 49", 0x230F0D + 0x000100, 49, 0, true},
};

TEST(OverlayRGBTrans, TheToleranceIsASquaredDistance)
{
    for (const auto& row : kKeys) {
        SCOPE(row.shows);
        Bytes base = {1, 2, 3};
        const Bytes overlay = {10, 20, 30};
        EXPECT_EQ(MV40_OverlayRGBTrans(base.data(), 1, 1, 3, overlay.data(), 1, 1, 3, 0, 0, 1, row.color, row.tolerance,
                                       row.flags),
                  1u);
        EXPECT_EQ(base, row.isDrawn ? overlay : (Bytes{1, 2, 3}));
    }
}

TEST(OverlayRGBTrans, ANullOverlayIsRefusedOnlyWhereItWouldBeRead)
{
    Bytes base = {1, 2, 3};
    EXPECT_EQ(MV40_OverlayRGBTrans(base.data(), 1, 1, 3, nullptr, 1, 1, 3, 1, 0, 1, 0, 0, 0), 1u);
    EXPECT_EQ(MV40_OverlayRGBTrans(base.data(), 1, 1, 3, nullptr, 1, 1, 3, 0, 0, 1, 0, 0, 0), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    EXPECT_EQ(base, (Bytes{1, 2, 3}));
}

TEST(Overlay8BitToRGB, EqualsPlainOnAllShapesAndFlags)
{
    const Bytes palette = zlvtest::RandomBytes(1024, 1);
    for (u32 flags = 0; flags < 8; ++flags) {
        for (const f64 opacity : kOpacities) {
            for (const Placement& place : kPlacements) {
                for (const u32 transparent : {2u, 258u}) {
                    SCOPE(flags, opacity, place.shows, transparent);
                    GuardedLayer<u8> base(place.baseWidth, place.baseHeight, 3, 2, flags);
                    GuardedLayer<u8> overlay(place.overlayWidth, place.overlayHeight, 1, 1, flags + 50);
                    for (size_t i = 0; i < overlay.Size(); i += 3) overlay.Data()[i] = 2;
                    std::vector<u8> wanted = base.Copy();
                    PlainVisible(
                        base.PlainOver(wanted), overlay.Plain(), place.x, place.y, 1000, [&](u8* to, const u8* from) {
                            if ((flags & 4) && *from == transparent) return;
                            for (int c = 0; c < 3; ++c) {
                                const int entryByte = flags & 2 ? c : 2 - c;
                                to[c] =
                                    PlainMix(to[c], palette[*from * 4u + u32(entryByte)], Limited(opacity), flags & 1);
                            }
                        });
                    ASSERT_EQ(MV40_Overlay8BitToRGB(base.Data(), base.Width(), base.Height(), base.Stride(),
                                                    overlay.Data(), overlay.Width(), overlay.Height(), overlay.Stride(),
                                                    palette.data(), place.x, place.y, opacity, transparent, flags),
                              1u);
                    ASSERT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
                }
            }
        }
    }
}

TEST(Overlay8BitToRGB, TheIndexIsTransparentAndNotItsColour)
{
    Bytes palette(1024, 0);
    palette[4] = palette[8] = 9;  // entries 1 and 2 have one colour
    Bytes base = {1, 2, 3, 1, 2, 3};
    const Bytes overlay = {1, 2};
    EXPECT_EQ(MV40_Overlay8BitToRGB(base.data(), 2, 1, 6, overlay.data(), 2, 1, 2, palette.data(), 0, 0, 1, 1,
                                    kIndexedTransparent | kIndexedSameOrder),
              1u);
    EXPECT_EQ(base, (Bytes{1, 2, 3, 9, 0, 0}));
}

TEST(KeyedOverlays, TruncatedSharesLoseAUnitThatTheirSumKeeps)
{
    const Bytes palette(1024, 3), overlay = {3, 3, 3};
    for (const u32 flags : {0u, 1u}) {
        const Bytes wanted(3, flags ? 2 : 3);
        Bytes keyed(3, 3), indexed(3, 3);
        EXPECT_EQ(MV40_OverlayRGBTrans(keyed.data(), 1, 1, 3, overlay.data(), 1, 1, 3, 0, 0, 0.5, 0, 0, flags), 1u);
        EXPECT_EQ(MV40_Overlay8BitToRGB(indexed.data(), 1, 1, 3, overlay.data(), 1, 1, 1, palette.data(), 0, 0, 0.5, 0,
                                        flags),
                  1u);
        EXPECT_EQ(keyed, wanted);
        EXPECT_EQ(indexed, wanted);
    }
}

// Each call answers 1, or 0 with its code, and writes nothing.
const EdgeCall kCalls[] = {
    {"keyed onto null", [](u8* p) { return MV40_OverlayRGBTrans(nullptr, 1, 1, 3, p, 1, 1, 3, 0, 0, 1, 0, 0, 0); }, 0,
     Error::BadArgument},
    {"keyed onto itself", [](u8* p) { return MV40_OverlayRGBTrans(p, 1, 1, 3, p, 1, 1, 3, 0, 0, 1, 0, 0, 0); }, 0,
     Error::BadArgument},
    {"keyed at an opacity that is no number",
     [](u8* p) { return MV40_OverlayRGBTrans(p, 1, 1, 3, p + 8, 1, 1, 3, 0, 0, kNaN, 0, 0, 0); }, 0,
     Error::BadArgument},
    {"keyed outside, at an opacity that is no number",
     [](u8* p) { return MV40_OverlayRGBTrans(p, 1, 1, 3, p + 8, 1, 1, 3, 0, -1, kNaN, 0, 0, 0); }, 1, Error::None},
    {"indexed onto null", [](u8* p) { return MV40_Overlay8BitToRGB(nullptr, 1, 1, 3, p, 1, 1, 1, p, 0, 0, 1, 0, 0); },
     0, Error::BadArgument},
    {"indexed from null", [](u8* p) { return MV40_Overlay8BitToRGB(p, 1, 1, 3, nullptr, 1, 1, 1, p, 5, 0, 1, 0, 0); },
     0, Error::BadArgument},
    {"indexed onto itself", [](u8* p) { return MV40_Overlay8BitToRGB(p, 1, 1, 3, p, 1, 1, 1, p, 0, 0, 1, 0, 0); }, 0,
     Error::BadArgument},
    {"indexed without a palette",
     [](u8* p) { return MV40_Overlay8BitToRGB(p, 1, 1, 3, p + 8, 1, 1, 1, nullptr, 0, 0, 1, 0, 0); }, 0,
     Error::BadArgument},
    {"indexed outside, without a palette",
     [](u8* p) { return MV40_Overlay8BitToRGB(p, 1, 1, 3, p + 8, 1, 1, 1, nullptr, 1, 0, 1, 0, 0); }, 1, Error::None},
    {"indexed at an opacity that is no number",
     [](u8* p) { return MV40_Overlay8BitToRGB(p, 1, 1, 3, p + 8, 1, 1, 1, p, 0, 0, kNaN, 0, 0); }, 0,
     Error::BadArgument},
};

TEST(KeyedOverlays, EdgesTouchNothingAndReportNothing)
{
    for (const EdgeCall& call : kCalls) ExpectUntouched(call, 1024);
}

TEST(KeyedOverlays, ACancelKeepsTheRowsDone)
{
    const Bytes palette(1024, 77), overlay(60, 5);
    for (const u32 cancelAt : {0u, 1u, 3u, 4u}) {
        for (const bool isKeyed : {true, false}) {
            SCOPE(cancelAt, isKeyed);
            Bytes base(60, 1);
            const zlvtest::Recording recording(cancelAt);
            const u32 result =
                isKeyed ? MV40_OverlayRGBTrans(base.data(), 4, 5, 12, overlay.data(), 4, 5, 12, 0, 1, 1, 0, 0, 0)
                        : MV40_Overlay8BitToRGB(base.data(), 4, 5, 12, overlay.data(), 4, 5, 12, palette.data(), 0, 1,
                                                1, 0, 0);
            const u32 rowsDone = cancelAt ? cancelAt : 4;
            EXPECT_EQ(result, cancelAt ? 0u : 1u);
            EXPECT_EQ(MV40_GetLastError(), u32(cancelAt ? Error::Cancelled : Error::None));
            EXPECT_EQ(recording.recorder.reports, Rows(rowsDone, 4));
            Bytes wanted(60, 1);
            std::fill_n(wanted.begin() + 12, rowsDone * 12, isKeyed ? 5 : 77);
            EXPECT_EQ(base, wanted);
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

}  // namespace
}  // namespace zlv
