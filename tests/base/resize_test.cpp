// Resizing beside its twin: modes, sizes, pictures, channels, strides, instruction sets, reports and cancels.
#include "base/resize.h"

#include "base/resize_support.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

namespace zlv {
namespace {

using zlvtest::ForBothWidths;
using zlvtest::Picture;
using zlvtest::ResizeCase;

struct Sizes {
    const char* shows;
    u32 sourceWidth, sourceHeight, destWidth, destHeight;
};

constexpr Sizes kSizes[] = {
    {"a half", 66, 40, 33, 20},
    {"a half, with odd sizes", 67, 41, 33, 20},
    {"two thirds", 60, 36, 40, 24},
    {"a quarter one way, a third the other", 80, 33, 20, 11},
    {"a little less", 53, 47, 52, 45},
    {"much less", 211, 97, 7, 5},
    {"the smallest that every filter makes", 50, 45, 4, 4},
    {"the same", 37, 21, 37, 21},
    {"narrower only", 90, 19, 31, 19},
    {"lower only", 19, 90, 19, 31},
    {"half again", 40, 24, 60, 36},
    {"twice", 33, 20, 66, 40},
    {"a little more", 52, 45, 53, 47},
    {"much more", 7, 5, 150, 70},
    {"wider and lower", 31, 60, 70, 23},
    {"narrower and higher", 70, 23, 31, 60},
    {"from one pixel", 1, 1, 9, 6},
    {"from a column", 1, 30, 8, 11},
    {"from a row", 30, 1, 11, 8},
    {"from fewer pixels than any window", 2, 3, 6, 4},
    {"wider than a block of columns", 300, 17, 401, 9},
    {"higher than a tile of rows", 9, 300, 5, 210},
};

bool IsGrowing(const ResizeCase& c) { return c.sourceWidth < c.destWidth || c.sourceHeight < c.destHeight; }

TEST(Resize, EveryModeAndSizeEqualsPlainOnEveryTarget)
{
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            if (!zlvtest::TakesMode<T>(mode)) continue;
            for (const auto& row : kSizes) {
                for (const u32 channels : {1u, 3u}) {
                    const ResizeCase c = {
                        row.sourceWidth, row.sourceHeight, row.destWidth, row.destHeight, channels, 2, 3};
                    if (zlvtest::ShrinksOnly(mode) && IsGrowing(c)) continue;
                    SCOPE(mode, row.shows, c);
                    zlvtest::ExpectPlainResize<T>(c, mode, Picture::Noise);
                }
            }
        }
    });
}

// Equal samples, sums that are whole numbers, results beyond the range: what decides between fast paths.
TEST(Resize, EveryKindOfPictureEqualsPlainOnEveryTarget)
{
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            if (!zlvtest::TakesMode<T>(mode)) continue;
            for (u32 kind = 0; kind < u32(Picture::Kinds); ++kind) {
                SCOPE(mode, kind);
                const u64 seed = kind + mode;
                zlvtest::ExpectPlainResize<T>({80, 60, 40, 30, 3}, mode, Picture(kind), seed);
                zlvtest::ExpectPlainResize<T>({61, 50, 37, 20, 3}, mode, Picture(kind), seed);
                if (zlvtest::ShrinksOnly(mode)) continue;
                zlvtest::ExpectPlainResize<T>({40, 30, 60, 45, 3}, mode, Picture(kind), seed);
                zlvtest::ExpectPlainResize<T>({23, 19, 64, 64, 1}, mode, Picture(kind), seed);
            }
        }
    });
}

constexpr Sizes kLargeAreas[] = {
    {"whole columns", 160, 131, 10, 8},
    {"whole rows", 163, 128, 10, 8},
    {"parts of columns and of rows", 163, 131, 9, 7},
    {"one column wide", 7, 200, 7, 3},
    {"one row high", 200, 7, 3, 7},
    {"next to one column wide", 41, 170, 40, 3},
    {"one area", 83, 61, 1, 1},
    {"the smallest of them", 90, 51, 17, 9},
};

// Flat areas are whole numbers, which no estimate decides: here for some samples, there for all of several rows.
TEST(Resize, LargeAreasEqualPlainOnEveryTarget)
{
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        for (const auto& row : kLargeAreas) {
            for (const u32 channels : {1u, 2u, 3u, 4u}) {
                const ResizeCase c = {row.sourceWidth, row.sourceHeight, row.destWidth, row.destHeight, channels, 2, 3};
                for (const Picture picture :
                     {Picture::Noise, Picture::Flat, Picture::Ramp, Picture::Extremes, Picture::Patches}) {
                    SCOPE(row.shows, c, "picture", u32(picture));
                    zlvtest::ExpectPlainResize<T>(c, u32(ResizeMode::AreaAverage), picture);
                }
            }
        }
    });
}

TEST(Resize, AreasOfFlatAndOfNoisyPartsEqualPlainOnEveryTarget)
{
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        const ResizeCase c = {205, 610, 20, 60, 3};
        for (const u32 flatColumns : {8u, 30u, 205u}) {
            SCOPE("flat columns", flatColumns);
            auto source = zlvtest::MakePicture<T>(Picture::Noise, c, flatColumns);
            for (size_t i = 0; i < source.size(); ++i) {
                const size_t x = i % c.SourceStride() / c.channels, y = i / c.SourceStride();
                if (x < flatColumns && y / 100 % 2 == 0) source[i] = T(40 + 60 * (i % c.channels));
            }
            const u32 mode = u32(ResizeMode::AreaAverage);
            zlvtest::ExpectSame(zlvtest::ResizePlainly<T>(c, mode, source),
                                zlvtest::ResizeSilently<T>(c, mode, source));
        }
    });
}

TEST(Resize, EveryChannelCountEqualsPlainOnEveryTarget)
{
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            if (!zlvtest::TakesMode<T>(mode)) continue;
            for (const u32 channels : {2u, 4u, 5u, 6u, 8u, 33u, 100u}) {
                SCOPE(mode, channels);
                zlvtest::ExpectPlainResize<T>({18, 14, 9, 7, channels, 1, 2}, mode, Picture::Noise);
                zlvtest::ExpectPlainResize<T>({18, 14, 12, 5, channels, 2, 1}, mode, Picture::Patches);
                if (zlvtest::ShrinksOnly(mode)) continue;
                zlvtest::ExpectPlainResize<T>({6, 7, 13, 9, channels, 0, 1}, mode, Picture::Noise);
            }
        }
    });
}

TEST(Resize, ManyRandomSizesEqualPlain)
{
    zlvtest::Random random(5);
    ForBothWidths([&]<class T>() {
        for (u32 i = 0; i < 1500; ++i) {
            const u32 mode = random.Below(zlvtest::kResizeModes);
            if (!zlvtest::TakesMode<T>(mode)) continue;
            ResizeCase c = {1 + random.Below(60), 1 + random.Below(50), 4 + random.Below(60), 4 + random.Below(50),
                            1 + random.Below(4),  random.Below(4),      random.Below(4)};
            if (zlvtest::ShrinksOnly(mode)) {
                c.destWidth = 1 + random.Below(c.sourceWidth);
                c.destHeight = 1 + random.Below(c.sourceHeight);
            }
            SCOPE(mode, c, i);
            zlvtest::ExpectPlainResize<T>(c, mode, Picture(random.Below(u32(Picture::Kinds))), i);
        }
    });
}

// Guard pages touch both ends of both images.
TEST(Resize, StaysInsideItsBuffersOnEveryTarget)
{
    const ResizeCase sizes[] = {{66, 40, 33, 20, 3}, {41, 21, 23, 11, 1}, {30, 20, 45, 30, 3}, {2, 2, 40, 37, 4},
                                {1, 1, 5, 5, 2},     {97, 3, 4, 4, 3},    {35, 35, 35, 35, 3}, {83, 67, 5, 4, 3}};
    zlvtest::ForTargetsAndWidths([&]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            for (const ResizeCase& c : sizes) {
                for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
                    if (!zlvtest::TakesMode<T>(mode) || (zlvtest::ShrinksOnly(mode) && IsGrowing(c))) continue;
                    SCOPE(mode, c, int(flush));
                    zlvtest::GuardedBuffer source(c.SourceCount() * sizeof(T), flush, 200);
                    zlvtest::GuardedBuffer destination(c.DestCount() * sizeof(T), flush, 1);
                    EXPECT_EQ(CallResize(c, mode, reinterpret_cast<const T*>(source.Data()),
                                         reinterpret_cast<T*>(destination.Data())),
                              1u);
                }
            }
        }
    });
}

// A cancel at every report there is: the twin stops there too.
TEST(Resize, ACancelKeepsWhatIsDone)
{
    ForBothWidths([]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            if (!zlvtest::TakesMode<T>(mode)) continue;
            for (const ResizeCase& c : {ResizeCase{80, 30, 40, 15, 3, 1, 2}, ResizeCase{21, 13, 19, 6, 2}}) {
                const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, mode);
                const size_t count = zlvtest::ResizePlainly<T>(c, mode, source).reports.size();
                ASSERT_GT(count, 1u);
                for (size_t cancelAt = 1; cancelAt <= count; ++cancelAt) {
                    SCOPE(mode, c, cancelAt);
                    const auto wanted = zlvtest::ResizePlainly<T>(c, mode, source, cancelAt);
                    EXPECT_EQ(wanted.error, u32(Error::Cancelled));
                    const auto got = zlvtest::ResizeReporting<T>(c, mode, source, cancelAt);
                    zlvtest::ExpectSame(wanted, got);
                    EXPECT_EQ(got.reports, wanted.reports);
                    EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
