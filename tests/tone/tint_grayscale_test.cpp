#include "plain/plain_tone.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Client;
using zlvtest::Flush;
using zlvtest::GuardedBuffer;
using zlvtest::ImageShape;

constexpr u32 kColors[] = {0x5080C0, 0x0000FF, 0x00FFFF, 0x10F020, 0xF01080, 0x808080, 0x000000, 0xFFFFFFFF};

TEST(TintGrayscale, EqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 3u, 15u, 16u, 17u, 18u, 63u, 64u, 65u, 66u, 131u, 300u}) {
            for (const u32 channels : {3u, 4u, 5u, 8u}) {
                for (const u32 padding : {0u, 7u}) {
                    for (const u32 color : {kColors[0], kColors[3]}) {
                        for (const u8 flags : {u8(0), u8(ZLV40_BGR)}) {
                            SCOPE(width, channels, padding, color, int(flags));
                            const ImageShape from = {width, 3, 1, padding}, to = {width, 3, channels, padding + 1};
                            const Bytes gray = zlvtest::RandomBytes(from.Bytes(), width);
                            GuardedBuffer source(from.Bytes(), Flush::ToEnd), destination(to.Bytes(), Flush::ToEnd);
                            Bytes wanted = zlvtest::RandomBytes(to.Bytes(), 9);
                            std::memcpy(source.Data(), gray.data(), gray.size());
                            std::memcpy(destination.Data(), wanted.data(), wanted.size());
                            PlainTintGray(gray.data(), width, 3, from.Stride(), wanted.data(), channels, to.Stride(),
                                          color, flags != 0);
                            EXPECT_EQ(ZLV40_TintGrayscale(source.Data(), width, 3, from.Stride(), destination.Data(),
                                                          channels, to.Stride(), color, flags),
                                      1u);
                            EXPECT_EQ(zlvtest::Difference(wanted.data(), destination.Data(), wanted.size()), "");
                        }
                    }
                }
            }
        }
    });
}

TEST(TintGrayscale, EveryLevelOfEveryHueEqualsPlain)
{
    Bytes gray(256);
    for (u32 i = 0; i < 256; ++i) gray[i] = u8(i);
    for (const u32 color : kColors) {
        SCOPE(color);
        Bytes wanted(768), got(768);
        PlainTintGray(gray.data(), 256, 1, 256, wanted.data(), 3, 768, color, false);
        EXPECT_EQ(ZLV40_TintGrayscale(gray.data(), 256, 1, 256, got.data(), 3, 768, color, 0), 1u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    }
}

TEST(TintGrayscale, GraysAndBlackCopyTheSource)
{
    Bytes gray(256);
    for (u32 i = 0; i < 256; ++i) gray[i] = u8(i);
    for (const u32 color : {0x000000u, 0x010101u, 0x808080u, 0xFFFFFFu}) {
        Bytes image(768);
        EXPECT_EQ(ZLV40_TintGrayscale(gray.data(), 256, 1, 256, image.data(), 3, 768, color, 0), 1u);
        for (u32 i = 0; i < 768; ++i) ASSERT_EQ(image[i], i / 3) << color << ' ' << i;
    }
}

TEST(TintGrayscale, PureRedKeepsTheSourceInTheFirstByte)
{
    const Bytes gray = {0, 1, 128, 255};
    Bytes image(12, 7);
    EXPECT_EQ(ZLV40_TintGrayscale(gray.data(), 4, 1, 4, image.data(), 3, 12, 0x0000FF, 0), 1u);
    EXPECT_EQ(image, (Bytes{0, 0, 0, 1, 0, 0, 128, 0, 0, 255, 0, 0}));
}

// The colour's bytes are swapped, the destination's are not.
TEST(TintGrayscale, TheFlagSwapsTheColourAlone)
{
    const Bytes gray = {200};
    Bytes image(3, 7);
    EXPECT_EQ(ZLV40_TintGrayscale(gray.data(), 1, 1, 1, image.data(), 3, 3, 0xFF0000, ZLV40_BGR), 1u);
    EXPECT_EQ(image, (Bytes{200, 0, 0}));
}

TEST(TintGrayscale, NeitherReportsNorCancels)
{
    const Client client(1);
    const Bytes gray(4, 100);
    Bytes image(12);
    EXPECT_EQ(ZLV40_TintGrayscale(gray.data(), 1, 4, 1, image.data(), 3, 3, 0x0000FF, 0), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_TRUE(client.recorder.reports.empty());
    EXPECT_EQ(image[9], 100);
}

TEST(TintGrayscale, KeepsTheFullFrame)
{
    const Bytes gray(3 * 3 * 3, 50);
    zlvtest::ExpectFrame({[&](u8* image, const ImageShape& s) {
                              return ZLV40_TintGrayscale(gray.data(), s.width, s.height, s.width, image, s.channels,
                                                         s.Stride(), 5, 0);
                          },
                          nullptr},
                         3, false);
}

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height, channels;
} kRefused[] = {
    {"a null source", false, true, 2, 2, 3}, {"a null destination", true, false, 2, 2, 3},
    {"a width of 0", true, true, 0, 2, 3},   {"a height of 0", true, true, 2, 0, 3},
    {"no channels", true, true, 2, 2, 0},    {"one channel", true, true, 2, 2, 1},
    {"two channels", true, true, 2, 2, 2},
};

TEST(TintGrayscale, RefusesWhatItCannotWorkOn)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes gray(4, 9);
        Bytes image(12, 7);
        EXPECT_EQ(ZLV40_TintGrayscale(row.hasSource ? gray.data() : nullptr, row.width, row.height, 2,
                                      row.hasDestination ? image.data() : nullptr, row.channels, 6, 5, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(image, Bytes(12, 7));
    }
}

}  // namespace
}  // namespace zlv
