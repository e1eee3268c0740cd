#include "plain/plain_hsv_match.h"
#include "support/test_hooks.h"
#include "tone/hsv_match.kernels.h"
#include "tone/tone_support.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Flush;
using zlvtest::GuardedBuffer;

constexpr f64 kNotANumber = std::numeric_limits<f64>::quiet_NaN();

struct Scene {
    u32 width, height;
    u32 rowPadding = 0, maskPadding = 0;
    u32 seedX = 0, seedY = 0;
    u32 matchMode = ZLV40_MATCH_SEED;
    PlainHsv border = {0, 0, 0}, tolerance = {0, 0, 0};
    u8 flags = 0;

    u32 RowStride() const { return width * 3 + rowPadding; }
    u32 MaskStride() const { return width + maskPadding; }
    size_t Doubles() const { return size_t(height - 1) * RowStride() + width * 3; }
    size_t MaskBytes() const { return size_t(height) * MaskStride(); }
};

// Few colours: regions of any shape. `open` of ten pixels have the first of them.
std::vector<f64> Picture(const Scene& scene, u64 seed, u32 open)
{
    zlvtest::Random random(seed);
    std::vector<f64> picture(scene.Doubles(), 5.0);
    for (u32 y = 0; y < scene.height; ++y) {
        for (u32 x = 0; x < scene.width; ++x) {
            f64* const pixel = &picture[size_t(y) * scene.RowStride() + size_t(x) * 3];
            const u32 which = random.Below(10) < open ? 0 : 1 + random.Below(3);
            pixel[0] = which * 90.0;
            pixel[1] = 0.25 * which;
            pixel[2] = 10.0 * which + (which ? random.Below(2) : 0);
        }
    }
    return picture;
}

u32 Call(const Scene& s, const f64* image, u8* mask)
{
    return ZLV40_GetHSVColorMatchMaskFromImage(image, s.width, s.height, s.RowStride(), mask, s.MaskStride(), s.seedX,
                                               s.seedY, s.border.h, s.border.s, s.border.v, s.matchMode, s.tolerance.h,
                                               s.tolerance.s, s.tolerance.v, s.flags);
}

Bytes PlainMaskOf(const Scene& s, const f64* image)
{
    Bytes mask(s.MaskBytes(), 99);
    PlainMatchMask(
        {image, s.width, s.height, s.RowStride(), s.seedX, s.seedY, s.border, s.matchMode, s.tolerance, s.flags},
        mask.data(), s.MaskStride());
    return mask;
}

Bytes MaskOf(const Scene& s, const std::vector<f64>& picture)
{
    GuardedBuffer image(picture.size() * sizeof(f64), Flush::ToEnd), mask(s.MaskBytes(), Flush::ToEnd, 0xA7);
    std::memcpy(image.Data(), picture.data(), picture.size() * sizeof(f64));
    EXPECT_EQ(Call(s, reinterpret_cast<const f64*>(image.Data()), mask.Data()), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return Bytes(mask.Data(), mask.Data() + mask.Size());
}

void ExpectPlain(const Scene& scene, const std::vector<f64>& picture)
{
    const Bytes wanted = PlainMaskOf(scene, picture.data()), got = MaskOf(scene, picture);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), wanted.size()), "");
}

// Sparse, winding and dense regions, from one pixel to several blocks of 64 a row.
TEST(HsvMatch, EqualsPlainOnEveryKindOfRegion)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 7u, 63u, 64u, 65u, 128u, 200u}) {
            for (const u32 height : {1u, 2u, 23u}) {
                for (const u32 open : {5u, 6u, 7u, 10u}) {
                    SCOPE(width, height, open);
                    Scene scene = {width, height, 3};
                    scene.seedX = width / 2, scene.seedY = height / 2;
                    ExpectPlain(scene, Picture(scene, width + open, open));
                    scene.tolerance = {90, 0.3, 11};
                    ExpectPlain(scene, Picture(scene, width + open, open));
                    scene.matchMode = ZLV40_MATCH_UP_TO_BORDER;
                    scene.border = {180, 0.5, 20};
                    ExpectPlain(scene, Picture(scene, width + open, open));
                    scene.tolerance = {0, 0, 0};
                    ExpectPlain(scene, Picture(scene, width + open, open));
                }
            }
        }
    });
}

// One pixel wide, to and fro over the whole picture: the flood comes back to a block many times.
TEST(HsvMatch, FollowsASerpentineToItsEnd)
{
    for (const bool isUpright : {false, true}) {
        Scene scene = {150, 40};
        std::vector<f64> picture(scene.Doubles(), 1.0);
        for (u32 y = 0; y < scene.height; ++y) {
            for (u32 x = 0; x < scene.width; ++x) {
                const u32 along = isUpright ? y : x, across = isUpright ? x : y;
                const u32 last = (isUpright ? scene.height : scene.width) - 1;
                const bool isWall = across % 2 == 1 && along != (across % 4 == 1 ? last : 0);
                picture[(size_t(y) * scene.width + x) * 3] = isWall ? 200 : 1;
            }
        }
        SCOPE(isUpright);
        ExpectPlain(scene, picture);
        const Bytes mask = MaskOf(scene, picture);
        EXPECT_EQ(mask[isUpright ? 148 : 38 * 150], 1) << "the last lane was reached";
    }
}

// Neighbours above and below are looked up one width away: it matters who comes first.
TEST(HsvMatch, PaddedMasksFollowTheQueue)
{
    u32 differing = 0;
    for (const u32 padding : {1u, 3u, 8u, 40u}) {
        for (const u32 width : {1u, 5u, 16u, 33u}) {
            for (const u32 open : {6u, 8u, 10u}) {
                SCOPE(width, padding, open);
                Scene scene = {width, 12, 1, padding};
                scene.seedX = width / 2, scene.seedY = 5;
                const std::vector<f64> picture = Picture(scene, padding * 7 + open, open);
                ExpectPlain(scene, picture);
                Scene packed = scene;
                packed.maskPadding = 0;
                const Bytes padded = MaskOf(scene, picture), whole = MaskOf(packed, picture);
                for (u32 y = 0; y < 12; ++y) {
                    differing += std::memcmp(&padded[y * scene.MaskStride()], &whole[y * width], width) != 0;
                }
            }
        }
    }
    EXPECT_GT(differing, 0u) << "some padded mask leaves a part out";
}

TEST(HsvMatch, ALargeFloodMakesTheQueueOfAPaddedMaskGrow)
{
    Scene scene = {300, 300, 0, 1};
    scene.seedX = scene.seedY = 150;
    ExpectPlain(scene, std::vector<f64>(scene.Doubles(), 3.0));
}

// One row, the seed first.
struct Line {
    const char* shows;
    std::vector<PlainHsv> pixels;
    u32 matchMode;
    PlainHsv border, tolerance;
    u8 flags;
    Bytes wanted;
};

const Line kLines[] = {
    {"exact matches alone join without tolerances",
     {{10, 0.5, 1}, {10, 0.5, 1}, {10, 0.5, 1.0000000000000002}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {0, 0, 0},
     0,
     {1, 1, 0}},
    {"each component has to match",
     {{10, 1, 1}, {11, 1, 1}, {10, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {0, 0, 0},
     0,
     {1, 0, 0}},
    {"any tolerance at all takes the others as they are",
     {{10, 1, 1}, {12, 1, 1}, {12, 1, 1.5}, {10, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {2, 0, 0},
     0,
     {1, 1, 0, 0}},
    {"a difference as large as the tolerance is within it",
     {{10, 1, 1}, {10, 1.25, 1}, {10, 0.75, 1}, {10, 1.5, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {0, 0.25, 0},
     0,
     {1, 1, 1, 0}},
    {"hues go round the circle: 359 and 1 differ by 2",
     {{359, 1, 1}, {1, 1, 1}, {1.5, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {2, 0, 0},
     0,
     {1, 1, 0}},
    {"and the other way round",
     {{1, 1, 1}, {359, 1, 1}, {358.5, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {2, 0, 0},
     0,
     {1, 1, 0}},
    {"180 degrees are not round the circle",
     {{0, 1, 1}, {180, 1, 1}, {181, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {179.5, 0, 0},
     0,
     {1, 0, 0}},
    {"nothing is within a tolerance below 0, not even the seed",
     {{10, 1, 1}, {10, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {-1, 1, 1},
     0,
     {0, 0}},
    {"a border stops the flood, whatever the seed's colour is",
     {{10, 1, 1}, {70, 0, 5}, {200, 0.3, 2}, {70, 0, 5}},
     ZLV40_MATCH_UP_TO_BORDER,
     {200, 0.3, 2},
     {0, 0, 0},
     0,
     {1, 1, 0, 0}},
    {"a seed of the border's colour leaves the mask empty",
     {{200, 0.3, 2}, {10, 1, 1}},
     ZLV40_MATCH_UP_TO_BORDER,
     {200, 0.3, 2},
     {0, 0, 0},
     0,
     {0, 0}},
    {"the border has its tolerances too",
     {{10, 1, 1}, {196, 0.3, 2}, {195, 0.3, 2}},
     ZLV40_MATCH_UP_TO_BORDER,
     {200, 0.3, 2},
     {4, 0.1, 0.1},
     0,
     {1, 0, 0}},
    {"any other mode looks at the border", {{10, 1, 1}, {11, 1, 1}}, 7, {11, 1, 1}, {0, 0, 0}, 0, {1, 0}},
    {"flag bit 1 marks with 255", {{10, 1, 1}, {11, 1, 1}}, ZLV40_MATCH_SEED, {0, 0, 0}, {0, 0, 0}, 2, {255, 0}},
    {"other flag bits are ignored", {{10, 1, 1}, {11, 1, 1}}, ZLV40_MATCH_SEED, {0, 0, 0}, {0, 0, 0}, 0xFD, {1, 0}},
    {"no number matches nothing",
     {{kNotANumber, 1, 1}, {kNotANumber, 1, 1}},
     ZLV40_MATCH_SEED,
     {0, 0, 0},
     {0, 0, 0},
     0,
     {0, 0}},
    {"and is no border",
     {{kNotANumber, 1, 1}, {10, 1, 1}, {11, 1, 1}},
     ZLV40_MATCH_UP_TO_BORDER,
     {11, 1, 1},
     {0, 0, 0},
     0,
     {1, 1, 0}},
};

TEST(HsvMatch, KnownLines)
{
    for (const Line& line : kLines) {
        SCOPE(line.shows);
        Scene scene = {u32(line.pixels.size()), 1};
        scene.matchMode = line.matchMode;
        scene.border = line.border;
        scene.tolerance = line.tolerance;
        scene.flags = line.flags;
        std::vector<f64> picture;
        for (const PlainHsv& pixel : line.pixels) picture.insert(picture.end(), {pixel.h, pixel.s, pixel.v});
        EXPECT_EQ(MaskOf(scene, picture), line.wanted);
        EXPECT_EQ(PlainMaskOf(scene, picture.data()), line.wanted) << "said plainly";
        scene.maskPadding = 2;  // the other way to fill, the same on a single row
        Bytes padded = line.wanted;
        padded.insert(padded.end(), 2, 0);
        EXPECT_EQ(MaskOf(scene, picture), padded);
    }
}

TEST(HsvMatch, CornersDoNotTouch)
{
    const std::vector<f64> picture = {1, 1, 1, 2, 2, 2, 2, 2, 2, 1, 1, 1};
    EXPECT_EQ(MaskOf({2, 2}, picture), (Bytes{1, 0, 0, 0}));
}

TEST(HsvMatchKernels, EveryTargetFindsTheSameBits)
{
    zlvtest::Random random(4);
    for (u32 round = 0; round < 200; ++round) {
        std::vector<f64> pixels(kMatchBlock * 3);
        for (f64& component : pixels) component = random.Below(round % 2 ? 4 : 720) - round % 3 * 90.0;
        HsvMatch match;
        match.reference = {pixels[0], pixels[1], pixels[2]};
        match.tolerance = {f64(random.Below(200)), f64(random.Below(400)), f64(random.Below(600))};
        match.isExact = round % 5 == 0;
        match.takesMismatches = round % 7 == 0;
        PlainMatch plain = {pixels.data(), 64, 1, 192, 0, 0, {}, 1, {}, 0};
        if (!match.isExact) plain.tolerance = {match.tolerance.h, match.tolerance.s, match.tolerance.v};
        for (const size_t count : {size_t(1), size_t(3), size_t(4), size_t(63), kMatchBlock}) {
            u64 wanted = 0;
            for (u32 k = 0; k < count; ++k) {
                const bool isLike = plain.IsLike(plain.ColorAt(k, 0), plain.ColorAt(0, 0));
                wanted |= u64(isLike != match.takesMismatches) << k;
            }
            for (const Target target : zlvtest::RunnableTargets()) {
                const zlvtest::ScopedTarget scoped(target);
                ASSERT_EQ(Kernels<HsvMatchKernels>().findMatches(pixels.data(), count, match), wanted)
                    << zlvtest::NameOf(target) << ' ' << round << ' ' << count;
            }
        }
    }
}

TEST(HsvMatchKernels, BitsAreSpreadToBytes)
{
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const u64 bits : {u64(0), ~u64(0), u64(0x8000000000000001), u64(0x0123456789ABCDEF)}) {
            for (size_t count = 1; count <= kMatchBlock; ++count) {
                GuardedBuffer bytes(count, Flush::ToEnd, 7);
                Kernels<HsvMatchKernels>().spreadBits(bits, count, 255, bytes.Data());
                for (size_t k = 0; k < count; ++k) ASSERT_EQ(bytes.Data()[k], (bits >> k) & 1 ? 255 : 0) << k;
            }
        }
    }
}

TEST(HsvMatch, NeitherReportsNorCancels)
{
    const zlvtest::Client client(1);
    const std::vector<f64> picture(5 * 5 * 3, 1.0);
    EXPECT_EQ(MaskOf({5, 5}, picture), Bytes(25, 1));
    EXPECT_TRUE(client.recorder.reports.empty());
}

TEST(HsvMatch, KeepsTheFullFrame)
{
    const std::vector<f64> picture(27, 1.0);
    zlvtest::ExpectFrame({[&](u8* mask, const zlvtest::ImageShape&) {
                              return Call({3, 3}, picture.data(), mask);
                          },
                          nullptr},
                         1, false);
}

// Nothing is written before all memory is there; with a padded mask the queue may fail on the way.
TEST(HsvMatch, EveryAllocationThatFailsIsCodeOne)
{
    for (const u32 maskPadding : {0u, 1u}) {
        u32 failures = 0;
        for (u32 succeeding = 0;; ++succeeding) {
            SCOPE(maskPadding, succeeding);
            Scene scene = {300, 300, 0, maskPadding};
            scene.seedX = scene.seedY = 150;
            const std::vector<f64> picture(scene.Doubles(), 1.0);
            Bytes mask(scene.MaskBytes(), 77);
            u32 result = 0, failed = 0;
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                result = Call(scene, picture.data(), mask.data());
                failed = failing.Failed();
            }
            if (!failed) break;
            ++failures;
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
            EXPECT_TRUE(maskPadding || mask == Bytes(scene.MaskBytes(), 77));
        }
        EXPECT_GE(failures, 2u);
    }
}

const struct {
    const char* shows;
    bool hasImage, hasMask;
    u32 width, height, maskStride, seedX, seedY;
} kRefused[] = {
    {"a null image", false, true, 3, 3, 3, 0, 0},
    {"a null mask", true, false, 3, 3, 3, 0, 0},
    {"a seed right of the image", true, true, 3, 3, 3, 3, 0},
    {"a seed below the image", true, true, 3, 3, 3, 0, 3},
    {"a seed far away", true, true, 3, 3, 3, 0xFFFFFFFF, 0xFFFFFFFF},
    {"a width of 0, where no seed is inside", true, true, 0, 3, 3, 0, 0},
    {"a height of 0", true, true, 3, 0, 3, 0, 0},
    {"rows of the mask that overlap", true, true, 3, 3, 2, 0, 0},
    {"no stride of the mask", true, true, 3, 3, 0, 0, 0},
};

TEST(HsvMatch, RefusesWhatItCannotWorkOn)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const std::vector<f64> picture(27, 1.0);
        Bytes mask(9, 7);
        EXPECT_EQ(ZLV40_GetHSVColorMatchMaskFromImage(row.hasImage ? picture.data() : nullptr, row.width, row.height, 9,
                                                      row.hasMask ? mask.data() : nullptr, row.maskStride, row.seedX,
                                                      row.seedY, 0, 0, 0, 1, 0, 0, 0, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(mask, Bytes(9, 7));
    }
}

}  // namespace
}  // namespace zlv
