#include "generators/perlin.kernels.h"

#include "plain/plain_perlin.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/targets.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace zlv {
namespace {

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

PerlinNoise BuiltFrom(u32 seed)
{
    SeedRandom(*baseContexts.Get(), seed);
    PerlinNoise noise;
    noise.Build();
    return noise;
}

PlainPerlin PlainFrom(u32 seed)
{
    PlainGenerator generator = {seed};
    return PlainPerlin(generator);
}

bool IsSame(f64 a, f64 b) { return a == b || (std::isnan(a) && std::isnan(b)); }

TEST(Perlin, TablesAreThoseOfTheDrawsInOrder)
{
    for (const u32 seed : {1u, 2u, 77u, 0xFFFFFFFFu}) {
        SCOPE(seed);
        const PerlinNoise noise = BuiltFrom(seed);
        const u32 stateAfter = baseContexts.Get()->randomState;
        PlainGenerator generator = {seed};
        const PlainPerlin plain(generator);
        EXPECT_EQ(stateAfter, generator.state);
        EXPECT_EQ(std::memcmp(noise.p, plain.p, sizeof noise.p), 0);
        EXPECT_EQ(std::memcmp(noise.g1, plain.g1, sizeof noise.g1), 0);
        EXPECT_EQ(std::memcmp(noise.g2, plain.g2, sizeof noise.g2), 0);
        EXPECT_EQ(std::memcmp(noise.g3, plain.g3, sizeof noise.g3), 0);
        EXPECT_EQ(noise.start, 0);
        EXPECT_TRUE(noise.IsBuilt());
    }
}

// The first draws of a fresh thread are 41, 18467, 6334, 26500, 19169, 15724.
TEST(Perlin, TheFirstGradientsByHand)
{
    const PerlinNoise noise = BuiltFrom(1);
    EXPECT_EQ(noise.g1[0], (41 - 256) / 256.0);
    const f64 x = (18467 % 512 - 256) / 256.0, y = (6334 % 512 - 256) / 256.0;
    EXPECT_EQ(noise.g2[0][0], x / std::sqrt(x * x + y * y));
    EXPECT_EQ(noise.g2[0][1], y / std::sqrt(x * x + y * y));
    EXPECT_NEAR(std::hypot(noise.g3[0][0], noise.g3[0][1], noise.g3[0][2]), 1, 1e-15);
    EXPECT_EQ(noise.g3[256][2], noise.g3[0][2]);
    EXPECT_EQ(noise.p[513], noise.p[1]);
}

TEST(Perlin, RecordHasNoPointersAndAKnownSize)
{
    static_assert(std::is_trivially_copyable_v<PerlinNoise>);
    EXPECT_EQ(offsetof(PerlinNoise, g3), 514u * 4);
    EXPECT_EQ(offsetof(PerlinNoise, g2), 514u * 4 + 514 * 24);
    EXPECT_EQ(offsetof(PerlinNoise, g1), 514u * 4 + 514 * 40);
    EXPECT_EQ(offsetof(PerlinNoise, start), 514u * 4 + 514 * 48);
}

TEST(Perlin, EveryDimensionEqualsPlain)
{
    PerlinNoise noise = BuiltFrom(5);
    const PlainPerlin plain = PlainFrom(5);
    const f64 coordinates[] = {0,         -0.0,  0.25,     -0.25,   1.5,       255.75,     256.5,
                               -4095.5,   -4096, -4096.25, -5000.5, 1e6,       1e9 + 0.5,  -1e9,
                               3e9 + 0.5, 1e15,  -1e19,    1e300,   kInfinity, -kInfinity, kNaN};
    for (const f64 x : coordinates) {
        EXPECT_TRUE(IsSame(noise.Noise1(x), plain.Noise1(x))) << x;
        for (const f64 y : coordinates) {
            const f64 point[2] = {x, y};
            EXPECT_TRUE(IsSame(noise.Noise2(x, y), plain.Noise2(x, y))) << x << " " << y;
            EXPECT_TRUE(IsSame(noise.Noise2(point), plain.Noise2(x, y))) << x << " " << y;
            for (const f64 z : {0.5, -7.25, x}) {
                const f64 v[3] = {x, y, z};
                EXPECT_TRUE(IsSame(noise.Noise3(v), plain.Noise3(x, y, z))) << x << " " << y << " " << z;
            }
        }
    }
}

// Rows of the plane: from many points a cell to many cells between two points, over the seam and over the last cell.
TEST(Perlin, EveryTargetsLevelsEqualPlain)
{
    PerlinNoise noise = BuiltFrom(7);
    const PlainPerlin plain = PlainFrom(7);
    const struct {
        const char* shows;
        f64 first, step;
    } rows[] = {
        {"wide cells", -1.3, 0.01},
        {"cells of a few points", 250.1, 0.13},
        {"a cell a point", 3.5, 1.01},
        {"many cells between two points", 0.25, 17.3},
        {"to the left", 20.5, -0.03},
        {"to the left in steps", 20.5, -1.7},
        {"over the seam", -4100, 0.05},
        {"one point again and again", 4.6, 0},
        {"beyond all whole numbers", 1e17, 3e15},
        {"infinite", kInfinity, 0},
        {"no number", kNaN, 0},
    };
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget forced(target);
        for (const auto& row : rows) {
            for (const f64 y : {0.5, -3.25, 255.9, -4096.5, 1e19, kInfinity}) {
                for (const size_t count : {1u, 2u, 17u, 255u, 258u, 600u}) {
                    SCOPE(row.shows, u32(target), y, count);
                    std::vector<f64> x(count), found(count + 1, 99.0);
                    for (size_t i = 0; i < count; ++i) x[i] = row.first + row.step * f64(i);
                    Kernels<PerlinKernels>().level(noise, x.data(), y, found.data(), count);
                    for (size_t i = 0; i < count; ++i) ASSERT_TRUE(IsSame(found[i], plain.Noise2(x[i], y))) << i;
                    ASSERT_EQ(found[count], 99.0);
                }
            }
        }
    }
}

TEST(Perlin, LatticePointsHaveNoNoise)
{
    PerlinNoise noise = BuiltFrom(9);
    for (i32 i = -300; i <= 300; i += 7) {
        const f64 v[3] = {f64(i), f64(-i), f64(3 * i)};
        EXPECT_EQ(noise.Noise1(i), 0);
        EXPECT_EQ(noise.Noise2(v), 0);
        EXPECT_EQ(noise.Noise3(v), 0);
    }
}

// Just below -4096 truncation goes towards the lattice point above.
TEST(Perlin, BelowMinus4096ThereIsASeam)
{
    PerlinNoise noise = BuiltFrom(9);
    bool isTorn = false;
    for (i32 i = 0; i < 20; ++i) isTorn = isTorn || std::abs(noise.Noise1(-4096.5 - i) - noise.Noise1(-4.5 - i)) > 0.1;
    EXPECT_TRUE(isTorn);
    for (i32 i = 0; i < 20; ++i) EXPECT_NEAR(noise.Noise1(-4095.5 + 256 + i), noise.Noise1(0.5 + 256 * 3 + i), 1e-9);
}

TEST(Perlin, DimensionsAreDispatched)
{
    PerlinNoise noise = BuiltFrom(3);
    const f64 v[3] = {0.3, 0.6, 0.2};
    EXPECT_EQ(noise.Noise(v, 0), 0);
    EXPECT_EQ(noise.Noise(v, 1), noise.Noise1(0.3));
    EXPECT_EQ(noise.Noise(v, 2), noise.Noise2(0.3, 0.6));
    for (const i32 n : {3, 4, 100, -1}) EXPECT_EQ(noise.Noise(v, n), noise.Noise3(v)) << n;
    EXPECT_NE(noise.Noise3(v), 0);
}

TEST(Perlin, LooksUpAnUnbuiltFieldByBuildingIt)
{
    const f64 v[3] = {0.3, 0.6, 0.2};
    const PlainPerlin plain = PlainFrom(21);
    for (const i32 n : {1, 2, 3}) {
        SeedRandom(*baseContexts.Get(), 21);
        PerlinNoise noise;
        EXPECT_EQ(noise.start, 1);
        EXPECT_EQ(noise.Noise(v, n), n == 1   ? plain.Noise1(0.3)
                                     : n == 2 ? plain.Noise2(0.3, 0.6)
                                              : plain.Noise3(0.3, 0.6, 0.2));
        EXPECT_EQ(noise.start, 0);
    }
    SeedRandom(*baseContexts.Get(), 21);
    PerlinNoise noise;
    EXPECT_EQ(noise.Noise(v, 0), 0);
    EXPECT_EQ(noise.start, 1);
    EXPECT_EQ(baseContexts.Get()->randomState, 21u);
}

// A seed that draws a zero vector for a gradient: found by trying, and NaN goes as far as the cells around it.
TEST(Perlin, AZeroVectorIsNaN)
{
    for (u32 seed = 1; seed < 200000; ++seed) {
        PlainGenerator generator = {seed};
        const PlainPerlin plain(generator);
        bool hasNaN = false;
        for (i32 i = 0; i < 256; ++i) hasNaN = hasNaN || std::isnan(plain.g2[i][0]);
        if (!hasNaN) continue;
        PerlinNoise noise = BuiltFrom(seed);
        EXPECT_TRUE(noise.IsBuilt());
        size_t count = 0;
        for (i32 y = 0; y < 256; ++y) {
            for (i32 x = 0; x < 256; ++x) {
                const f64 value = noise.Noise2(x + 0.5, y + 0.5);
                EXPECT_TRUE(IsSame(value, plain.Noise2(x + 0.5, y + 0.5)));
                count += std::isnan(value);
            }
        }
        EXPECT_GE(count, 4u);
        return;
    }
    FAIL() << "no such seed";
}

const struct {
    const char* shows;
    void (*spoil)(PerlinNoise& noise);
} kSpoiledFields[] = {
    {"tables still to be built", [](PerlinNoise& noise) { noise.start = 1; }},
    {"an entry below 0", [](PerlinNoise& noise) { noise.p[0] = -1; }},
    {"an entry above 255", [](PerlinNoise& noise) { noise.p[255] = 256; }},
    {"an entry twice", [](PerlinNoise& noise) { noise.p[7] = noise.p[8]; }},
    {"a repeated entry that differs", [](PerlinNoise& noise) { noise.p[513] ^= 1; }},
    {"a repeated gradient that differs", [](PerlinNoise& noise) { noise.g3[513][2] += 1; }},
    {"a repeated gradient of the plane that differs", [](PerlinNoise& noise) { noise.g2[256][0] += 1; }},
    {"a repeated gradient of the line that differs", [](PerlinNoise& noise) { noise.g1[300] += 1; }},
    {"nothing but zeros", [](PerlinNoise& noise) { std::memset(static_cast<void*>(&noise), 0, sizeof noise); }},
    {"nothing but ones", [](PerlinNoise& noise) { std::memset(static_cast<void*>(&noise), 255, sizeof noise); }},
};

TEST(Perlin, AFieldWithOtherTablesIsNone)
{
    for (const auto& row : kSpoiledFields) {
        PerlinNoise noise = BuiltFrom(4);
        EXPECT_TRUE(noise.IsBuilt());
        row.spoil(noise);
        EXPECT_FALSE(noise.IsBuilt()) << row.shows;
    }
}

}  // namespace
}  // namespace zlv
