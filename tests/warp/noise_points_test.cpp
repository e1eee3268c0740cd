// The warps by fields of noise: displacement, marble and glass blocks.
#include "plain/plain_noise_points.h"
#include "runtime/math.h"
#include "runtime/random.h"
#include "support/progress_recorder.h"
#include "support/test_hooks.h"
#include "warp/mapped_point.h"

#include <limits>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint32_t kSeed = 77;

void Seed() { zlv::SeedRandom(*zlv::baseContexts.Get(), kSeed); }
std::uint32_t RandomState() { return zlv::baseContexts.Get()->randomState; }

// add(width, height) and plain(width, height, generator) with the same draws.
template <class Add, class Plain>
WarpCase Seeded(std::string name, Add add, Plain plain)
{
    return {std::move(name),
            [=](std::uint32_t width, std::uint32_t height) {
                Seed();
                return add(width, height);
            },
            [=](std::uint32_t width, std::uint32_t height) {
                PlainGenerator generator{kSeed};
                return plain(width, height, generator);
            }};
}

WarpCase Perlin(double strength, double scaleX, double scaleY)
{
    return Seeded(
        Join("perlin", strength, scaleX, scaleY),
        [=](std::uint32_t width, std::uint32_t height) {
            return ZLV40_AddPerlinDisplacementTransform(width, height, strength, scaleX, scaleY);
        },
        [=](std::uint32_t, std::uint32_t, PlainGenerator& generator) {
            return PlainPerlinDisplacement(strength, scaleX, scaleY, generator);
        });
}

WarpCase Marble(double cycles, double scaleX, double scaleY)
{
    return Seeded(
        Join("marble", cycles, scaleX, scaleY),
        [=](std::uint32_t width, std::uint32_t height) {
            return ZLV40_AddMarbleTransform(width, height, cycles, scaleX, scaleY);
        },
        [=](std::uint32_t, std::uint32_t, PlainGenerator& generator) {
            return PlainMarble(cycles, scaleX, scaleY, {zlv::Sin, zlv::Cos}, generator);
        });
}

std::uint32_t AddGlass(std::uint32_t width, std::uint32_t height, const PlainGlass& glass)
{
    return ZLV40_AddGlassBlockTransform(width, height, glass.tileWidth, glass.tileHeight, glass.bevelWidth,
                                        glass.bevelStrength, glass.flatBevel ? 256 : 0, glass.zoom, glass.noiseScale,
                                        glass.bumpStrength);
}

WarpCase Glass(const PlainGlass& glass)
{
    return Seeded(
        Join("glass", glass.tileWidth, glass.tileHeight, glass.bevelWidth, glass.bevelStrength, glass.flatBevel,
             glass.zoom, glass.noiseScale, glass.bumpStrength),
        [=](std::uint32_t width, std::uint32_t height) { return AddGlass(width, height, glass); },
        [=](std::uint32_t width, std::uint32_t height, PlainGenerator& generator) {
            return PlainGlassBlocks(glass, width, height, generator);
        });
}

WarpCase Shift(double x, double y)
{
    return {Join("shift", x, y),
            [=](std::uint32_t width, std::uint32_t height) {
                return ZLV40_AddOffsetTransform(width, height, x, y, ZLV40_WRAP_NONE);
            },
            [=](std::uint32_t, std::uint32_t) {
                return [=](double fromX, double fromY, double* outX, double* outY) {
                    *outX = fromX - x;
                    *outY = fromY - y;
                    return true;
                };
            }};
}

constexpr PlainGlass kGlass = {6, 5, 2, 3, false, 0.7, 0.3, 0.02};

TEST(PerlinPoints, EveryTargetEqualsPlain)
{
    ExpectEachEqualsPlain({Perlin(5, 10, 7), Perlin(-3.5, 0.3, -4), Perlin(0, 5, 5), Perlin(1e6, 3, 3),
                           Perlin(kNaN, 3, 3), Perlin(2, kInfinity, 3), Perlin(2, 3, kNaN), Perlin(2, 1e-300, 3),
                           Perlin(5, 40, 30), Perlin(5, -70, 30)});
}

TEST(MarblePoints, EveryTargetEqualsPlain)
{
    ExpectEachEqualsPlain({Marble(1, 10, 7), Marble(-3.5, 0.3, -4), Marble(0, 5, 5), Marble(1e6, 3, 30),
                           Marble(kNaN, 3, 3), Marble(2, kInfinity, 3), Marble(2, 3, kNaN), Marble(2, 1e-300, 3),
                           Marble(2, 40, 30), Marble(2, -70, 30)});
}

TEST(GlassBlock, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases = {Glass(kGlass)};
    const auto with = [&](auto change) {
        PlainGlass glass = kGlass;
        change(glass);
        cases.push_back(Glass(glass));
    };
    with([](PlainGlass& glass) { glass.flatBevel = true; });
    with([](PlainGlass& glass) { glass.bevelWidth = 0; });
    with([](PlainGlass& glass) { glass.bevelWidth = 100; });
    with([](PlainGlass& glass) { glass.bevelStrength = 0; });
    with([](PlainGlass& glass) { glass.zoom = 1; });
    with([](PlainGlass& glass) { glass.zoom = -2.5; });
    with([](PlainGlass& glass) { glass.zoom = kNaN; });
    with([](PlainGlass& glass) { glass.bumpStrength = -1; });
    with([](PlainGlass& glass) { glass.bumpStrength = kInfinity; });
    with([](PlainGlass& glass) { glass.noiseScale = kNaN; });
    with([](PlainGlass& glass) { glass.tileWidth = glass.tileHeight = 100; });
    with([](PlainGlass& glass) { glass.tileWidth = 1; });
    ExpectEachEqualsPlain(cases);
}

// What comes from another warp is a row of pixels no more, or one between the pixels.
TEST(NoisePoints, RowsOfAnotherWarpEqualPlain)
{
    OnEveryTarget([] {
        for (const WarpCase& warp : {Perlin(3, 40, 5), Marble(2, 40, 5)}) {
            for (const WarpCase& first :
                 {Shift(0.25, 7.5), Shift(0.1, 0), Shift(-3, 1), Shift(1e17, 0), Marble(2, 9, 0.3)}) {
                SCOPE(first.name, warp.name);
                ExpectChainEqualsPlain({first, warp}, {270, 5, 3});
            }
        }
    });
}

// Beyond the picture, beyond the noise's seam, beyond all integers.
TEST(NoisePoints, PointsFromAnywhereEqualPlain)
{
    for (const double away : {0.5, -7.25, 40.0, -40.0, 1e5, -1e5, 1e18, -1e19, 1e300, kNaN, kInfinity, -kInfinity}) {
        for (const WarpCase& warp : {Perlin(3, 4, 5), Marble(2, 4, 5), Glass(kGlass)}) {
            ExpectChainEqualsPlain({Shift(away, 0), warp}, {20, 9, 3});
            ExpectChainEqualsPlain({Shift(0.5, away), warp}, {20, 9, 3});
        }
    }
}

TEST(NoisePoints, ChainsEqualPlain)
{
    for (const WarpImage& image : kWarpImages) {
        ExpectChainEqualsPlain({Perlin(3, 4, 5), Marble(2, 4, 5), Glass(kGlass)}, image);
    }
}

// Points of the lattice have no noise: entry trunc(127) of the tables, whose angle is almost half a turn.
TEST(MarblePoints, NoNoiseIsTheMiddleOfTheTables)
{
    const MappedPoint to = MapThrough(10, 20, [] { return ZLV40_AddMarbleTransform(9, 9, 1, 5, 10); });
    const double angle = 2 * std::acos(-1.0) * 127 / 256;
    EXPECT_NEAR(to.x, 10 - 10 * std::sin(angle), 1e-9);
    EXPECT_NEAR(to.y, 20 + 10 * std::cos(angle), 1e-9);
}

TEST(MarblePoints, PointsMoveByTheScaleDownwards)
{
    for (double x = 0; x < 50; x += 0.7) {
        const MappedPoint to = MapThrough(x, 3 * x, [] { return ZLV40_AddMarbleTransform(9, 9, 3, 5, 10); });
        EXPECT_NEAR(std::hypot(to.x - x, to.y - 3 * x), 10, 1e-9);
    }
}

// Left of -4096 times the scale noise goes beyond -1 and 1; no entry beside the tables is read.
TEST(MarblePoints, StrongNoiseBeyondTheSeamIsLimited)
{
    for (double x = 0; x < 30; x += 0.37) {
        const double at = -50000 - x;
        const MappedPoint to = MapThrough(at, at, [] { return ZLV40_AddMarbleTransform(9, 9, 3, 5, 10); });
        EXPECT_NEAR(std::hypot(to.x - at, to.y - at), 10, 1e-9);
    }
}

TEST(PerlinPoints, PointsOfTheLatticeSwirlByTheirNeighbours)
{
    // With a scale of 1 all neighbours of a whole point are points of the lattice: without noise.
    const MappedPoint to = MapThrough(10, 20, [] { return ZLV40_AddPerlinDisplacementTransform(9, 9, 100, 1, 1); });
    EXPECT_EQ(to.x, 10);
    EXPECT_EQ(to.y, 20);
}

TEST(GlassBlock, TheExtraTilesBehindTheEdgeAreThere)
{
    // The picture is a whole number of blocks wide and high; the point is behind its last column and row.
    ExpectChainEqualsPlain({Shift(-6, -5), Glass({6, 5, 0, 0, false, 1, 0.4, 0.01})}, {12, 10, 1});
}

TEST(GlassBlock, PointsStayWithinThePicture)
{
    const auto add = [] { return AddGlass(12, 10, {6, 5, 2, 200, false, 0.5, 0.3, 1}); };
    for (double x = -20; x < 40; x += 1.5) {
        const MappedPoint to = MapThrough(x, x / 2, add);
        EXPECT_TRUE(to.x >= 0 && to.x <= 11 && to.y >= 0 && to.y <= 9) << to.x << ' ' << to.y;
    }
}

TEST(GlassBlock, EachBlockShowsThePictureAroundItsPlace)
{
    // Without edges and ripples: half of the position within the block's 10 pixels times 2 * spread, and half of x.
    const auto add = [] { return AddGlass(100, 100, {10, 10, 0, 0, false, 0.5, 0.3, 0}); };
    EXPECT_NEAR(MapThrough(20, 0, add).x, 10, 1e-9);
    EXPECT_NEAR(MapThrough(25, 0, add).x, 0.5 * 50 + 12.5, 1e-9);
    EXPECT_NEAR(MapThrough(0, 25, add).y, 0.5 * 50 + 12.5, 1e-9);
}

TEST(GlassBlock, EdgesDisplaceMoreTheNearerTheyAre)
{
    const auto add = [] { return AddGlass(100, 100, {20, 20, 4, 8, true, 1, 0.3, 1000}); };
    EXPECT_EQ(MapThrough(20, 30, add).x, 28) << "the edge itself: by the strength";
    EXPECT_EQ(MapThrough(23, 30, add).x, 25) << "a quarter of it";
    EXPECT_EQ(MapThrough(39, 30, add).x, 33) << "from the other side three quarters";
    EXPECT_EQ(MapThrough(20, 30, add).y, 30);
    EXPECT_EQ(MapThrough(30, 20, add).y, 28);
}

TEST(GlassBlock, FillingItsTilesReportsNothing)
{
    const WarpList list;
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(AddGlass(20, 20, kGlass), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(NoisePoints, EveryFieldIsAnotherOne)
{
    const auto add = [] { return ZLV40_AddPerlinDisplacementTransform(9, 9, 50, 7, 7); };
    const MappedPoint one = MapThrough(3, 3, add), two = MapThrough(3, 3, add);
    EXPECT_NE(one.x, two.x);
}

TEST(NoisePoints, BadArgumentsAreRefusedWithTheirCodesAndDrawNothing)
{
    const WarpList list;
    const struct {
        const char* shows;
        std::function<std::uint32_t()> add;
        std::uint32_t error;
    } rows[] = {
        {"no scale is the code of no memory", [] { return ZLV40_AddPerlinDisplacementTransform(9, 9, 1, 0, 1); },
         ZLV40_ERROR_OUT_OF_MEMORY},
        {"nor downwards", [] { return ZLV40_AddPerlinDisplacementTransform(9, 9, 1, 1, -0.0); },
         ZLV40_ERROR_OUT_OF_MEMORY},
        {"marble: the same", [] { return ZLV40_AddMarbleTransform(9, 9, 1, 0, 1); }, ZLV40_ERROR_OUT_OF_MEMORY},
        {"and downwards", [] { return ZLV40_AddMarbleTransform(9, 9, 1, 1, 0); }, ZLV40_ERROR_OUT_OF_MEMORY},
        {"which is looked at before sizes", [] { return ZLV40_AddMarbleTransform(0, 0, 1, 0, 0); },
         ZLV40_ERROR_OUT_OF_MEMORY},
        {"marble without columns", [] { return ZLV40_AddMarbleTransform(0, 9, 1, 1, 1); }, ZLV40_ERROR_BAD_ARGUMENT},
        {"marble without rows", [] { return ZLV40_AddMarbleTransform(9, 0, 1, 1, 1); }, ZLV40_ERROR_BAD_ARGUMENT},
        {"blocks without columns",
         [] {
             return AddGlass(9, 9, {0, 5, 1, 1, false, 1, 1, 1});
         },
         ZLV40_ERROR_BAD_ARGUMENT},
        {"blocks without rows",
         [] {
             return AddGlass(9, 9, {5, 0, 1, 1, false, 1, 1, 1});
         },
         ZLV40_ERROR_BAD_ARGUMENT},
        {"blocks larger than an array",
         [] {
             return AddGlass(9, 9, {65536, 65536, 1, 1, false, 1, 1, 1});
         },
         ZLV40_ERROR_OUT_OF_MEMORY},
        {"more blocks than an array has",
         [] {
             return AddGlass(1u << 31, 9, {1, 1, 1, 1, false, 1, 1, 1});
         },
         ZLV40_ERROR_OUT_OF_MEMORY},
        {"more of them in both directions",
         [] {
             return AddGlass(1u << 30, 1u << 30, {1, 1, 1, 1, false, 1, 1, 1});
         },
         ZLV40_ERROR_OUT_OF_MEMORY},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        Seed();
        EXPECT_EQ(row.add(), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        EXPECT_EQ(RandomState(), kSeed);
    }
    double numbers[4];
    EXPECT_EQ(ZLV40_GetTransformDimensions(5, 5, numbers, numbers + 1, numbers + 2, numbers + 3), 1u);
    EXPECT_EQ(Join(numbers[0], numbers[1], numbers[2]), Join(0, 0, 4)) << "the list is empty";
}

TEST(NoisePoints, EmptySizesThatAreTakenDoNoHarm)
{
    for (const double x : {0.0, -5.0, 1e300}) {
        const MappedPoint swirled =
            MapThrough(x, x, [] { return ZLV40_AddPerlinDisplacementTransform(0, 9, 0, 1, 1); });
        EXPECT_EQ(swirled.x, x);
        const MappedPoint seen = MapThrough(x, x, [] { return AddGlass(9, 0, kGlass); });
        EXPECT_EQ(seen.x, x);
        EXPECT_EQ(seen.y, x);
    }
}

// The object, the array of tiles, and each of its four tiles.
TEST(NoisePoints, WithoutMemoryTheListStays)
{
    const WarpList list;
    const struct {
        std::function<std::uint32_t()> add;
        std::uint32_t allocations;
    } rows[] = {
        {[] { return ZLV40_AddPerlinDisplacementTransform(9, 9, 1, 1, 1); }, 1},
        {[] { return ZLV40_AddMarbleTransform(9, 9, 1, 1, 1); }, 1},
        {[] { return AddGlass(9, 9, kGlass); }, 6},
    };
    for (const auto& row : rows) {
        for (std::uint32_t succeeding = 0; succeeding < row.allocations; ++succeeding) {
            SCOPE(row.allocations, succeeding);
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(row.add(), 0u);
            EXPECT_EQ(failing.Failed(), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        }
    }
    double numbers[4];
    EXPECT_EQ(ZLV40_GetTransformDimensions(5, 5, numbers, numbers + 1, numbers + 2, numbers + 3), 1u);
    EXPECT_EQ(Join(numbers[0], numbers[1], numbers[2]), Join(0, 0, 4)) << "the list is empty";
}

}  // namespace
}  // namespace zlvtest
