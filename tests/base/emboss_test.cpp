#include "base/emboss.h"

#include "plain/plain_emboss.h"
#include "runtime/math.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Report;

constexpr f64 kPi = 3.14159265358979323846;

struct Scene {
    u32 width, height;
    f64 azimuth = 0.7, elevation = 0.5;
    u32 depth = 8;
    bool hasTexture = false, hasMask = false;
    u32 flags = 0;

    u32 BumpStride() const { return width + 1; }
    u32 TextureStride() const { return width * 3 + 2; }
    u32 OutStride() const { return width * 3 + 3; }
    u32 MaskStride() const { return width + 4; }
};

PlainLight LightOf(const Scene& scene)
{
    return {Cos(scene.azimuth), Sin(scene.azimuth), Cos(scene.elevation), Sin(scene.elevation), scene.depth};
}

void ExpectPlain(const Scene& scene)
{
    const Bytes bump = zlvtest::RandomBytes(size_t(scene.BumpStride()) * scene.height, scene.width);
    const Bytes texture = zlvtest::RandomBytes(size_t(scene.TextureStride()) * scene.height, 2);
    Bytes mask = zlvtest::RandomBytes(size_t(scene.MaskStride()) * scene.height, 3);
    for (u8& byte : mask) byte = byte % 3 ? byte : u8(0);
    Bytes wanted(size_t(scene.OutStride()) * scene.height, 77);
    Bytes got = wanted;
    const u8* const textureData = scene.hasTexture ? texture.data() : nullptr;
    const u8* const maskData = scene.hasMask ? mask.data() : nullptr;
    PlainEmboss({bump.data(), scene.BumpStride()}, int(scene.width), int(scene.height), LightOf(scene),
                {textureData, scene.TextureStride()}, {maskData, scene.MaskStride()},
                (scene.flags & kEmbossBrightTexture) != 0, (scene.flags & kEmbossWholeImage) != 0, wanted.data(),
                scene.OutStride());
    EXPECT_EQ(MV40_EmbossRGB(bump.data(), scene.width, scene.height, scene.BumpStride(), scene.azimuth, scene.elevation,
                             scene.depth, textureData, scene.TextureStride(), got.data(), scene.OutStride(), maskData,
                             scene.MaskStride(), scene.flags),
              1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(Emboss, EqualsPlain)
{
    for (const auto& [width, height] : {std::pair{4u, 4u}, {5u, 4u}, {4u, 9u}, {40u, 33u}}) {
        for (u32 kind = 0; kind < 16; ++kind) {
            SCOPE(width, height, kind);
            Scene scene = {width, height};
            scene.hasTexture = kind & 1;
            scene.hasMask = kind & 2;
            scene.flags = (kind & 4 ? kEmbossBrightTexture : 0) | (kind & 8 ? kEmbossWholeImage : 0);
            ExpectPlain(scene);
        }
    }
}

// Rows are done in blocks of 128 and 256 pixels.
TEST(Emboss, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {4u, 19u, 129u, 130u, 131u, 257u, 258u, 259u, 400u}) {
            for (const bool hasTexture : {false, true}) {
                SCOPE(width, hasTexture);
                Scene scene = {width, 5};
                scene.hasTexture = hasTexture;
                ExpectPlain(scene);
                scene.elevation = -0.6;  // negative shades
                ExpectPlain(scene);
            }
        }
    });
}

TEST(Emboss, EveryLightEqualsPlain)
{
    for (const f64 azimuth : {0.0, 0.5, kPi / 2, 3.0, -2.0, 100.0}) {
        for (const f64 elevation : {0.0, 0.4, kPi / 4, kPi / 2, -0.6}) {
            for (const u32 depth : {1u, 2u, 7u, 1530u, 1531u, 0x80000000u, 0xFFFFFFFFu}) {
                SCOPE(azimuth, elevation, depth);
                Scene scene = {20, 12};
                scene.azimuth = azimuth;
                scene.elevation = elevation;
                scene.depth = depth;
                ExpectPlain(scene);
                scene.hasTexture = true;
                ExpectPlain(scene);
                scene.flags = kEmbossBrightTexture;
                ExpectPlain(scene);
            }
        }
    }
}

TEST(Emboss, AFlatBumpMapIsTheBackground)
{
    const Bytes bump(36, 50);
    Bytes out(36 * 3, 77);
    EXPECT_EQ(
        MV40_EmbossRGB(bump.data(), 6, 6, 6, 1, kPi / 2, 4, nullptr, 0, out.data(), 18, nullptr, 0, kEmbossWholeImage),
        1u);
    EXPECT_EQ(out, Bytes(36 * 3, 255));  // sin = 1: the truncation of 255.9
}

TEST(Emboss, TheLargestDepthIsAllSlope)
{
    const Bytes bump = zlvtest::RandomBytes(64, 1);
    Bytes shallow(64 * 3), deep(64 * 3);
    for (const auto& [depth, out] : {std::pair{1531u, &shallow}, {0xFFFFFFFFu, &deep}}) {
        EXPECT_EQ(MV40_EmbossRGB(bump.data(), 8, 8, 8, 1, 0.5, depth, nullptr, 0, out->data(), 24, nullptr, 0, 2), 1u);
    }
    EXPECT_EQ(shallow, deep);  // 1530 / depth is 0 for both
}

TEST(Emboss, ByHand)
{
    // Light from the right, level: azimuth 0, elevation 0: L = (255, 0, 0). A slope that falls by 10 a column:
    // Nx = 3 * 20 = 60, Ny = 0, Nz = 1530 / 25 = 61: 60 * 255 / sqrt(3600 + 3721) = 15300 / 85.56 = 178.8.
    Bytes bump(16), out(48, 77);
    for (u32 i = 0; i < 16; ++i) bump[i] = u8(200 - i % 4 * 10);
    EXPECT_EQ(MV40_EmbossRGB(bump.data(), 4, 4, 4, 0, 0, 25, nullptr, 0, out.data(), 12, nullptr, 0, 0), 1u);
    Bytes wanted(48, 77);
    for (const u32 pixel : {5u, 6u, 9u, 10u}) std::fill_n(wanted.begin() + pixel * 3, 3, u8(178));
    EXPECT_EQ(out, wanted);
    // A slope that rises towards the light is dark.
    for (u32 i = 0; i < 16; ++i) bump[i] = u8(100 + i % 4 * 10);
    EXPECT_EQ(MV40_EmbossRGB(bump.data(), 4, 4, 4, 0, 0, 25, nullptr, 0, out.data(), 12, nullptr, 0, 0), 1u);
    for (const u32 pixel : {5u, 6u, 9u, 10u}) std::fill_n(wanted.begin() + pixel * 3, 3, u8(0));
    EXPECT_EQ(out, wanted);
}

TEST(Emboss, ATextureIsShaded)
{
    const Bytes bump(16, 50), texture(48, 100), mask = {1, 1, 1, 1, 1, 0, 9, 1, 1, 255, 0, 1, 1, 1, 1, 1};
    // The background of elevation 90 degrees is 255: 100 * 255 / 256 = 99.6, 100 * 255 / 128 = 199.2.
    for (const auto& [flags, shaded] : {std::pair{0u, u8(99)}, {kEmbossBrightTexture, u8(199)}}) {
        SCOPE(flags);
        Bytes out(48, 77), wanted(48, 77);
        for (const u32 pixel : {5u, 10u}) std::fill_n(wanted.begin() + pixel * 3, 3, u8(100));
        for (const u32 pixel : {6u, 9u}) std::fill_n(wanted.begin() + pixel * 3, 3, shaded);
        EXPECT_EQ(MV40_EmbossRGB(bump.data(), 4, 4, 4, 0, kPi / 2, 25, texture.data(), 12, out.data(), 12, mask.data(),
                                 4, flags),
                  1u);
        EXPECT_EQ(out, wanted);
    }
}

TEST(Emboss, StaysInsideItsBuffers)
{
    using zlvtest::Flush;
    using zlvtest::GuardedBuffer;
    for (const u32 flags : {0u, kEmbossWholeImage}) {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            SCOPE(flags, int(flush));
            GuardedBuffer bump(5 * 4, flush, 9), texture(60, flush), mask(20, flush, 1), out(60, flush);
            EXPECT_EQ(MV40_EmbossRGB(bump.Data(), 5, 4, 5, 1, 1, 3, texture.Data(), 15, out.Data(), 15, mask.Data(), 5,
                                     flags),
                      1u);
        }
    }
}

TEST(Emboss, ReportsTheRowsThatItWrites)
{
    const Bytes bump(36, 50);
    const struct {
        u32 flags;
        std::vector<Report> reports;
    } rows[] = {
        {0, {{1, 6}, {2, 6}, {3, 6}, {4, 6}}},
        {kEmbossWholeImage, {{0, 6}, {1, 6}, {2, 6}, {3, 6}, {4, 6}, {5, 6}}},
    };
    for (const auto& row : rows) {
        SCOPE(row.flags);
        Bytes out(108, 77);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_EmbossRGB(bump.data(), 6, 6, 6, 1, 1, 3, nullptr, 0, out.data(), 18, nullptr, 0, row.flags), 1u);
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, row.reports);
    }
}

TEST(Emboss, ACancelKeepsTheRowsDoneAndLeavesTheRest)
{
    const Bytes bump(36, 50);
    Bytes out(108, 77);
    ProgressRecorder recorder;
    recorder.cancelAt = 2;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(
        MV40_EmbossRGB(bump.data(), 6, 6, 6, 1, kPi / 2, 3, nullptr, 0, out.data(), 18, nullptr, 0, kEmbossWholeImage),
        0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, zlvtest::Rows(2, 6));
    Bytes wanted(108, 77);
    std::fill_n(wanted.begin(), 36, u8(255));
    EXPECT_EQ(out, wanted);
    EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
}

const struct {
    const char* shows;
    bool hasBump, hasOut;
    u32 width, height, depth;
    f64 azimuth, elevation;
} kRefusals[] = {
    {"a null bump map", false, true, 4, 4, 1, 0, 0},
    {"a null destination", true, false, 4, 4, 1, 0, 0},
    {"a depth of 0", true, true, 4, 4, 0, 0, 0},
    {"a width of 3", true, true, 3, 4, 1, 0, 0},
    {"a height of 3", true, true, 4, 3, 1, 0, 0},
    {"an empty image", true, true, 0, 0, 1, 0, 0},
    {"an azimuth that is no number", true, true, 4, 4, 1, std::numeric_limits<f64>::quiet_NaN(), 0},
    {"an infinite elevation", true, true, 4, 4, 1, 0, std::numeric_limits<f64>::infinity()},
};

TEST(Emboss, RefusalsWriteNothing)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        const Bytes bump(16, 50);
        Bytes out(48, 77);
        EXPECT_EQ(
            MV40_EmbossRGB(row.hasBump ? bump.data() : nullptr, row.width, row.height, 4, row.azimuth, row.elevation,
                           row.depth, nullptr, 0, row.hasOut ? out.data() : nullptr, 12, nullptr, 0, kEmbossWholeImage),
            0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(out, Bytes(48, 77));
    }
}

}  // namespace
}  // namespace zlv
