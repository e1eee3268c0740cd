// Base layer: overlays and merges.
#include "base/merge.h"
#include "base/overlay.h"
#include "golden/golden.h"
#include "plain/plain_overlay.h"

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// The overlay sticks out of the picture on the left.
constexpr u32 kOverlayWidth = 40, kOverlayHeight = 20;
constexpr i32 kX = -5, kY = 4;
constexpr f64 kParameter = 100;

template <class T>
struct OverlayPicture {
    explicit OverlayPicture(u32 theChannels)
        : channels(theChannels), bytes(RandomBytes(size_t(kOverlayWidth) * kOverlayHeight * channels * sizeof(T), 99))
    {
    }
    u32 channels;
    Bytes bytes;

    const T* Samples() const { return reinterpret_cast<const T*>(bytes.data()); }
    u32 Stride() const { return kOverlayWidth * channels; }
    PlainLayer<const T> Plain() const { return {Samples(), kOverlayWidth, kOverlayHeight, channels, Stride()}; }
};

template <class T>
PlainLayer<T> Base(GoldenPicture& p)
{
    return {p.Image<T>(), kWidth, kHeight, p.channels, p.Stride<T>()};
}

// Every mode in turn, each a pixel further to the right and below.
template <class T>
GoldenRow OverlayRow(const char* name, f64 opacity, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                const OverlayPicture<T> overlay(3);
                u32 result = 1;
                for (u32 mode = 0; mode < kOverlayModes; ++mode) {
                    result &= MV40_OverlayImage(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), overlay.Samples(),
                                                kOverlayWidth, kOverlayHeight, overlay.Stride(), kX + i32(mode),
                                                kY + i32(mode), opacity, kParameter, mode,
                                                sizeof(T) == 2 ? kOverlaySixteenBit : 0);
                }
                return result;
            },
            [=](GoldenPicture& p) {
                const OverlayPicture<T> overlay(3);
                for (u32 mode = 0; mode < kOverlayModes; ++mode) {
                    PlainOverlay<T>(Base<T>(p), overlay.Plain(), kX + i32(mode), kY + i32(mode),
                                    {opacity, kParameter, mode}, kHeight);
                }
            },
            checksum};
}

GoldenRow FlippedRow(const char* name, u64 checksum)
{
    return {name,
            3,
            1,
            [](GoldenPicture& p) {
                const OverlayPicture<u8> overlay(3);
                return MV40_OverlayImage(p.image.data(), kWidth, kHeight, 3, p.stride, overlay.Samples(), kOverlayWidth,
                                         kOverlayHeight, overlay.Stride(), kX, kY, 1, 0, 0, kOverlayFlipped);
            },
            [](GoldenPicture& p) { PlainFlippedCopy(Base<u8>(p), OverlayPicture<u8>(3).Plain(), kX, kY); },
            checksum};
}

GoldenRow KeyedRow(const char* name, u64 checksum)
{
    constexpr u32 kColor = 0x808080, kTolerance = 9000;
    return {name,
            3,
            1,
            [](GoldenPicture& p) {
                const OverlayPicture<u8> overlay(3);
                return MV40_OverlayRGBTrans(p.image.data(), kWidth, kHeight, p.stride, overlay.Samples(), kOverlayWidth,
                                            kOverlayHeight, overlay.Stride(), kX, kY, 0.3, kColor, kTolerance, 0);
            },
            [](GoldenPicture& p) {
                PlainVisible(Base<u8>(p), OverlayPicture<u8>(3).Plain(), kX, kY, kHeight, [](u8* to, const u8* from) {
                    if (PlainIsHidden(from, kColor, kTolerance)) return;
                    for (int c = 0; c < 3; ++c) to[c] = PlainMix(to[c], from[c], 0.3, false);
                });
            },
            checksum};
}

GoldenRow IndexedRow(const char* name, u64 checksum)
{
    return {name,
            3,
            1,
            [](GoldenPicture& p) {
                const OverlayPicture<u8> overlay(1);
                return MV40_Overlay8BitToRGB(p.image.data(), kWidth, kHeight, p.stride, overlay.Samples(),
                                             kOverlayWidth, kOverlayHeight, overlay.Stride(),
                                             RandomBytes(1024, 7).data(), kX, kY, 0.7, 5,
                                             kIndexedTransparent | kIndexedByteShares);
            },
            [](GoldenPicture& p) {
                const Bytes palette = RandomBytes(1024, 7);
                PlainVisible(Base<u8>(p), OverlayPicture<u8>(1).Plain(), kX, kY, kHeight, [&](u8* to, const u8* from) {
                    if (*from == 5) return;
                    for (size_t c = 0; c < 3; ++c) to[c] = PlainMix(to[c], palette[*from * 4u + 2 - c], 0.7, true);
                });
            },
            checksum};
}

GoldenRow MergeRow(const char* name, MergeMode mode, f64 opacity, u64 checksum)
{
    return {name,
            4,
            1,
            [=](GoldenPicture& p) {
                const OverlayPicture<u8> overlay(4);
                return MV40_MergeRGBA(p.image.data(), kWidth, kHeight, 4, p.stride, overlay.Samples(), kOverlayWidth,
                                      kOverlayHeight, overlay.Stride(), kX, kY, opacity, u32(mode));
            },
            [=](GoldenPicture& p) {
                PlainVisible(Base<u8>(p), OverlayPicture<u8>(4).Plain(), kX, kY, kHeight, [&](u8* to, const u8* from) {
                    PlainMergePixel(to, from, u8(int(from[3] * opacity)), u32(mode), true);
                });
            },
            checksum};
}

// `rule` is what the plain twin calls the flag.
GoldenRow PaintRow(const char* name, u32 flags, int rule, u64 checksum)
{
    return {name,
            4,
            1,
            [=](GoldenPicture& p) {
                const OverlayPicture<u8> mask(1);
                return MV40_AlphaBlendColor(p.image.data(), kWidth, kHeight, 4, p.stride, mask.Samples(), kOverlayWidth,
                                            kOverlayHeight, mask.Stride(), 0x40302010, kX, kY, flags);
            },
            [=](GoldenPicture& p) {
                const u8 color[] = {0x10, 0x20, 0x30, 0x40};
                PlainVisible(Base<u8>(p), OverlayPicture<u8>(1).Plain(), kX, kY, kHeight,
                             [&](u8* to, const u8* m) { PlainPaintPixel(to, *m, color, rule, 4); });
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> OverlayGolden()
{
    return {
        OverlayRow<u8>("OverlayImage, bytes, all modes", 1, 0x7322F7CE8034F025),
        OverlayRow<u8>("OverlayImage, bytes, all modes at 0.3", 0.3, 0x76D4F70919292A98),
        OverlayRow<u16>("OverlayImage, words, all modes", 1, 0x585D1499B8DC72DB),
        OverlayRow<u16>("OverlayImage, words, all modes at 0.3", 0.3, 0x52FE078C80375543),
        FlippedRow("OverlayImage, flipped", 0x20BE3860900953B8),
        KeyedRow("OverlayRGBTrans", 0x8906BFF9D6DB3EC3),
        IndexedRow("Overlay8BitToRGB", 0xB4A696B947AE4733),
        MergeRow("MergeRGBA, keeping alpha", MergeMode::KeepAlpha, 1, 0x7A7F3D4FF481345F),
        MergeRow("MergeRGBA, replacing alpha at 0.3", MergeMode::ReplaceAlpha, 0.3, 0x6641A064A04B632E),
        MergeRow("MergeRGBA, the larger alpha", MergeMode::LargerAlpha, 1, 0x2C2B5DE95594AD7A),
        MergeRow("MergeRGBA, adding alpha", MergeMode::AddAlpha, 1, 0x7B392D1EB8603C8E),
        MergeRow("MergeRGBA, over", MergeMode::Over, 1, 0x6684829F7E3A53DE),
        PaintRow("AlphaBlendColor, keeping alpha", 0, 0, 0xBE2DF93E88478EF2),
        PaintRow("AlphaBlendColor, blending alpha", kColorBlendAlpha, 1, 0x419BC53AEDB47532),
        PaintRow("AlphaBlendColor, over", kColorOver, 5, 0x478C2DAF872C2461),
    };
}

}  // namespace zlvtest
