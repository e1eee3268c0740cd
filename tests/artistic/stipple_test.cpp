// Stipple: what it refuses, and what its steps do.
#include "artistic/artistic_cases.h"

namespace zlv {
namespace {

using namespace zlvtest;

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height;
} kRefused[] = {
    {"a null source", false, true, 2, 2}, {"a null destination", true, false, 2, 2}, {"no columns", true, true, 0, 2},
    {"no rows", true, true, 2, 0},        {"nothing at all", false, false, 0, 0},
};

TEST(Stipple, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        for (u32 filterKind = 0; filterKind <= 5; ++filterKind) {
            SCOPE(row.shows, filterKind);
            const Bytes source = RandomBytes(12, 4);
            Bytes destination(12, 77);
            EXPECT_EQ(ZLV40_Stipple(row.hasSource ? source.data() : nullptr, row.width, row.height, 6,
                                    row.hasDestination ? destination.data() : nullptr, 6, 50, filterKind, 0),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(destination, Bytes(12, 77));
        }
    }
}

Bytes MakeStipple(const Bytes& source, u32 width, u32 density, u32 filterKind, u8 flags)
{
    Bytes made(source.size(), 77);
    const u32 stride = width * 3;
    SeedArtisticNoise();
    EXPECT_EQ(ZLV40_Stipple(source.data(), width, u32(source.size() / stride), stride, made.data(), stride, density,
                            filterKind, flags),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return made;
}

// The levels of noise that all calls above get.
Bytes NoiseOf(u32 width, u32 height, f64 scale)
{
    PlainGenerator generator = {kArtisticSeed};
    return PlainPerlinBytes(PlainPerlin(generator), width, height, scale, 0);
}

TEST(Stipple, DensitiesAbove100AreLike100)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    for (const u8 flags : {0, 1}) {
        for (const u32 density : {101u, 0x80000000u, 0xFFFFFFFFu}) {
            EXPECT_EQ(MakeStipple(source, 20, density, 0, flags), MakeStipple(source, 20, 100, 0, flags));
        }
        EXPECT_NE(MakeStipple(source, 20, 99, 0, flags), MakeStipple(source, 20, 100, 0, flags));
    }
}

// A flat picture stays flat in the filter, so that the noise shows: at a density of 100 with a scale of 0.1.
TEST(Stipple, ANoiseOf128LeavesAPixelUnchanged)
{
    constexpr u32 kWidth = 60, kHeight = 40;
    const Bytes noise = NoiseOf(kWidth, kHeight, 1.0 - 100 / 100.0 * 0.9);
    const Bytes made = MakeStipple(Bytes(kWidth * kHeight * 3, 120), kWidth, 100, 0, 0);
    u32 unchanged = 0, changed = 0;
    for (size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(int(made[i]), std::clamp(120 + noise[i / 3] - 128, 0, 255)) << i;
        ++(noise[i / 3] == 128 ? unchanged : changed);
        if (noise[i / 3] == 128) {
            EXPECT_EQ(int(made[i]), 120);
        }
    }
    EXPECT_GT(unchanged, 0u);
    EXPECT_GT(changed, 0u);
}

// What one light pixel becomes in a filter of maxima is a square as large as the window.
TEST(Stipple, TheWindowGrowsWithTheDensity)
{
    constexpr u32 kSize = 15;
    const struct {
        u32 density, side;
    } kRows[] = {{0, 3}, {50, 3}, {51, 5}, {80, 5}, {81, 7}, {100, 7}, {101, 7}};
    for (const auto& row : kRows) {
        SCOPE(row.density);
        Bytes source(kSize * kSize * 3, 100);
        source[(7 * kSize + 7) * 3] = 150;
        const Bytes noise = NoiseOf(kSize, kSize, 1.0 - std::min(row.density, 100u) / 100.0 * 0.9);
        const Bytes made = MakeStipple(source, kSize, row.density, ZLV40_STIPPLE_MAXIMUM, 0);
        u32 light = 0;
        for (size_t i = 0; i < noise.size(); ++i) light += made[3 * i] == std::clamp(150 + noise[i] - 128, 0, 255);
        EXPECT_EQ(light, row.side * row.side);
    }
}

// A black picture is one of ones to the geometric mean when noise comes last, so that the noise is all there is.
TEST(Stipple, TheFilterNeverSees0WithNoiseLast)
{
    const Bytes black(30 * 20 * 3, 0), noise = NoiseOf(30, 20, 1.0 - 50 / 100.0 * 0.9);
    const Bytes made = MakeStipple(black, 30, 50, ZLV40_STIPPLE_GEOMETRIC, 0);
    for (size_t i = 0; i < made.size(); ++i) {
        EXPECT_EQ(int(made[i]), std::clamp(1 + noise[i / 3] - 128, 0, 255)) << i;
    }
    EXPECT_EQ(MakeStipple(black, 30, 50, ZLV40_STIPPLE_MINIMUM, 0), made);
}

TEST(Stipple, OtherFiltersLeaveTheDestinationAndReportAllTheSame)
{
    const Bytes source = RandomBytes(9 * 6 * 3, 1);
    for (const u32 filterKind : {5u, 0xFFFFFFFFu}) {
        for (const u8 flags : {0, 1}) {
            SCOPE(filterKind, u32(flags));
            ProgressRecorder client;
            ZLV40_SetCallback(client.Function, client.Data());
            EXPECT_EQ(MakeStipple(source, 9, 50, filterKind, flags), Bytes(source.size(), 77));
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(client.reports, Rows(6, 6));
        }
    }
}

TEST(Stipple, OnlyTheNoiseReports)
{
    const Bytes source = RandomBytes(9 * 6 * 3, 1);
    for (u32 filterKind = 0; filterKind <= 4; ++filterKind) {
        for (const u8 flags : {0, 1}) {
            SCOPE(filterKind, u32(flags));
            ProgressRecorder client;
            ZLV40_SetCallback(client.Function, client.Data());
            MakeStipple(source, 9, 50, filterKind, flags);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(client.reports, Rows(6, 6));
        }
    }
}

TEST(Stipple, ACancelLeavesTheRowsDoneWithNoiseLastAndNothingWithNoiseFirst)
{
    const Bytes source = RandomBytes(9 * 6 * 3, 1);
    for (const u8 flags : {0, 1}) {
        const Bytes whole = MakeStipple(source, 9, 50, 0, flags);
        for (u32 cancelAt = 1; cancelAt <= 6; ++cancelAt) {
            SCOPE(u32(flags), cancelAt);
            ProgressRecorder client;
            client.cancelAt = cancelAt;
            Bytes made(source.size(), 77);
            SeedArtisticNoise();
            ZLV40_SetCallback(client.Function, client.Data());
            EXPECT_EQ(ZLV40_Stipple(source.data(), 9, 6, 27, made.data(), 27, 50, 0, flags), 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            Bytes wanted(source.size(), 77);
            if (flags == 0) std::copy_n(whole.begin(), cancelAt * 27, wanted.begin());
            EXPECT_EQ(made, wanted);
        }
    }
}

// Rows of one level each, led through by larger and larger strides: behind the last row of the copy is that row again.
TEST(Stipple, NoRowIsReadOutsideThePackedCopy)
{
    constexpr u32 kWidth = 4, kHeight = 5;
    for (const u32 stride : {12u, 15u, 24u, 36u, 1000u}) {
        SCOPE(stride);
        GuardedBuffer source((kHeight - 1) * stride + kWidth * 3, Flush::ToEnd);
        std::memset(source.Data(), 0, source.Size());
        for (u32 y = 0; y < kHeight; ++y) std::memset(source.Data() + y * stride, int(40 * y + 40), kWidth * 3);
        Bytes packed(kWidth * kHeight * 3);
        for (u32 y = 0; y < kHeight; ++y) {
            for (u32 i = 0; i < kWidth * 3; ++i) {
                packed[y * kWidth * 3 + i] = u8((std::min(y * stride, 48u) + i) / 12 * 40 + 40);
            }
        }
        Bytes made(packed.size(), 77);
        SeedArtisticNoise();
        EXPECT_EQ(ZLV40_Stipple(source.Data(), kWidth, kHeight, stride, made.data(), kWidth * 3, 20, 2, 0), 1u);
        EXPECT_EQ(made, MakeStipple(packed, kWidth, 20, 2, 0));
    }
}

TEST(Stipple, TheDestinationMayBeTheSource)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    for (u32 filterKind = 0; filterKind <= 4; ++filterKind) {
        for (const u8 flags : {0, 1}) {
            Bytes image = source;
            SeedArtisticNoise();
            EXPECT_EQ(ZLV40_Stipple(image.data(), 20, 15, 60, image.data(), 60, 70, filterKind, flags), 1u);
            EXPECT_EQ(image, MakeStipple(source, 20, 70, filterKind, flags));
        }
    }
}

TEST(Stipple, DrawsOneFieldOfNoise)
{
    Bytes noise(12);
    SeedArtisticNoise();
    EXPECT_EQ(ZLV40_GeneratePerlinNoise(noise.data(), 4, 3, 4, 0.5), 1u);
    const u32 state = baseContexts.Get()->randomState;
    MakeStipple(Bytes(36, 100), 4, 50, 0, 0);
    EXPECT_EQ(baseContexts.Get()->randomState, state);
}

}  // namespace
}  // namespace zlv
