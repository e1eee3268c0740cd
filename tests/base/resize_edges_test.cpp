// Resizing: what surprises and stays, by hand; what is refused; what happens without memory.
#include "base/resize_filters.h"
#include "base/resize_support.h"
#include "support/test_hooks.h"

#include <numeric>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForBothWidths;
using zlvtest::Picture;
using zlvtest::Recording;
using zlvtest::ResizeCase;

constexpr u32 Number(ResizeMode mode) { return u32(mode); }

template <class T>
std::vector<T> CountUp(size_t count)
{
    std::vector<T> samples(count);
    std::iota(samples.begin(), samples.end(), T(1));
    return samples;
}

// One row of samples becomes another.
const struct {
    const char* shows;
    ResizeMode mode;
    Bytes before, after;
} kByHand[] = {
    // Positions 0, 0.5, 1, 1.5: 0 and 1 lie on pixels, and 1.5 has the last pixel and its mirror image on both sides.
    {"a triangle weighs its two neighbours", ResizeMode::Triangle, {0, 100}, {0, 50, 100, 100}},
    {"a triangle truncates", ResizeMode::Triangle, {0, 1}, {0, 0, 1, 1}},
    // At 0.5 both pixels are within the window, but the filter is 1 on its right end only, at a distance of 0.5.
    {"a box is open on the left", ResizeMode::Box, {10, 20}, {10, 10, 20, 20}},
    // Positions 0 and 2; the window of 3 pixels on either side weighs 1/4, 1/2, 1/4 and is mirrored without its edge on
    // the left: (0 * 2 + 1 * 100 + 1 * 100) / 4, and (100 + 2 * 40 + 40) / 4.
    {"a shrinking triangle grows its window", ResizeMode::Triangle, {0, 100, 40, 40}, {50, 55}},
    // rx = 1.5: pixels 0 and half of 1, then the other half and pixel 2.
    {"an area counts parts of pixels", ResizeMode::AreaAverage, {90, 30, 60}, {70, 50}},
    {"an area truncates", ResizeMode::AreaAverage, {1, 1, 2, 0, 0}, {1, 0}},
    // step = (2 - 2 / 4) / 4 = 0.375: positions 0, 0.375, 0.75 and 1.125.
    {"a growing bilinear step stops short of the end", ResizeMode::Bilinear, {0, 100}, {0, 37, 75, 100}},
    {"a shrinking bilinear step samples", ResizeMode::Bilinear, {10, 20, 30, 40, 50, 60}, {10, 30, 50}},
    {"shrinking to one pixel takes the first", ResizeMode::Bilinear, {7, 200, 200, 200}, {7}},
    {"the nearest pixel is never the next one", ResizeMode::Nearest, {1, 2, 3}, {1, 1, 2, 2, 3}},
    {"the nearest pixel of a larger one", ResizeMode::Nearest, {1, 2, 3, 4, 5, 6, 7}, {1, 3, 5}},
    // Halfway between pixels the weights are -1/8, 5/8, 5/8, and 1/8 to be subtracted. Of three pixels, the taps at 0.5
    // are 0 0 1 1, at 1.5 0 1 1 1: (-20 + 5 * 20 + 5 * 100 - 100) / 8 and (-20 + 5 * 100 + 5 * 100 - 100) / 8.
    {"the last bicubic taps fall together early", ResizeMode::Bicubic, {20, 100, 200}, {20, 60, 100, 110, 200, 200}},
    // At 0.5 (-255 + 5 * 255 + 5 * 255 - 0) / 8 is above 255, at 1.5 there is half of it, at 2.5 -255 / 8 is below 0.
    {"a bicubic is limited to the range",
     ResizeMode::Bicubic,
     {255, 255, 0, 0, 0},
     {255, 255, 255, 127, 0, 0, 0, 0, 0, 0}},
    // Positions of blocks are sums of 4/3: the seventh is a little less than 8.
    {"positions of blocks grow by addition",
     ResizeMode::BlockAverage,
     {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
     {1, 2, 3, 5, 6, 7, 8, 10, 11}},
    {"a block is as large as its smaller ratio", ResizeMode::BlockAverage, {10, 90, 20, 90}, {10, 20}},
};

TEST(ResizeEdges, ResultsByHand)
{
    for (const auto& row : kByHand) {
        SCOPE(row.shows);
        const u32 from = u32(row.before.size()), to = u32(row.after.size());
        Bytes got(to);
        EXPECT_EQ(MV40_ResizeImage(row.before.data(), from, 1, from, got.data(), to, 1, to, 1, Number(row.mode), 0),
                  1u);
        EXPECT_EQ(got, row.after);
    }
}

// Between the passes stand 8 bits: 0.5 and 1.5 become 0 and 1, and their mean 0. At once it would be 1.
TEST(ResizeEdges, AFilterTruncatesTwice)
{
    const Bytes before = {0, 1, 1, 2};
    Bytes after(16);
    EXPECT_EQ(MV40_ResizeImage(before.data(), 2, 2, 2, after.data(), 4, 4, 4, 1, Number(ResizeMode::Triangle), 0), 1u);
    EXPECT_EQ(after, (Bytes{0, 0, 1, 1, 0, 0, 1, 1, 1, 1, 2, 2, 1, 1, 2, 2}));
}

TEST(ResizeEdges, AFlatImageStaysFlatUnderEveryFilter)
{
    for (u32 mode = 0; mode < zlvtest::kResizeFilters; ++mode) {
        for (const ResizeCase& c : {ResizeCase{50, 30, 33, 19, 3}, ResizeCase{20, 11, 47, 31, 1}}) {
            for (const u8 level : {u8(1), u8(3), u8(128), u8(255)}) {
                SCOPE(mode, c, int(level));
                const Bytes source(c.SourceCount(), level);
                EXPECT_EQ(zlvtest::ResizeSilently<u8>(c, mode, source).destination, Bytes(c.DestCount(), level));
            }
        }
    }
}

// A filter of the test's own: next to each other, weights are opposite.
void WeighAlternately(const f64* distances, f64* weights, size_t count)
{
    for (size_t i = 0; i < count; ++i) weights[i] = i64(distances[i] * 2 + 100) % 4 < 2 ? 1 : -1;
}

TEST(ResizeEdges, WeightsThatAddUpToZeroStayAsTheyAre)
{
    const ResizeFilter filter = {1, WeighAlternately};
    ResizeContribTable table(filter, 40, 80);  // between two pixels, a window holds these two
    ASSERT_TRUE(table.Resize(1));
    table.Build(9, 1);
    ASSERT_EQ(table[0].count, 2u);
    EXPECT_EQ(table[0].taps[0].sourceIndex, 4u);
    EXPECT_EQ(table[0].taps[1].sourceIndex, 5u);
    EXPECT_EQ(table[0].taps[0].weight + table[0].taps[1].weight, 0);
    EXPECT_EQ(table[0].taps[0].weight * table[0].taps[0].weight, 1);
}

// Where they add up to 0, taps of one value still give that value.
TEST(ResizeEdges, EqualSamplesWinOverWeightsThatAddUpToZero)
{
    const ResizeContributor taps[] = {{0, 1, 1}, {1, -1, -1}};
    const ResizeContribList list = {taps, 2, 1e-4f, false};
    std::vector<f32> lines(2 * 64 + kResizeLineRoom);
    for (size_t i = 0; i < 64; ++i) {
        lines[i] = f32(i);
        lines[64 + i] = f32(i % 2 ? i : 10);  // odd samples are equal
    }
    Bytes out(64);
    Kernels<ResizeLineKernels>().weigh(list, {lines.data(), 64, 0}, 64, out.data());
    for (size_t i = 0; i < 64; ++i) EXPECT_EQ(out[i], i % 2 || i == 10 ? i : i > 10 ? i - 10 : 0) << i;
}

// The filters that weigh one pixel, and areas, give the source back; with their full arithmetic, as the reports show.
TEST(ResizeEdges, TheSameSizeGivesTheSourceBack)
{
    const ResizeCase c = {21, 17, 21, 17, 3, 2, 2};
    ForBothWidths([&]<class T>() {
        for (const ResizeMode mode : {ResizeMode::Box, ResizeMode::Triangle, ResizeMode::AreaAverage}) {
            if (!zlvtest::TakesMode<T>(Number(mode))) continue;
            SCOPE(Number(mode));
            const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
            const auto got = zlvtest::ResizeReporting<T>(c, Number(mode), source);
            const bool isCopy = sizeof(T) == 1 && mode == ResizeMode::AreaAverage;
            const u32 grain = isCopy ? 0 : mode == ResizeMode::AreaAverage ? c.destHeight : c.destWidth;
            EXPECT_EQ(got.reports, zlvtest::Rows(grain, grain));
            for (size_t i = 0; i < got.destination.size(); ++i) {
                const bool isPixel = i % c.DestStride() < c.destWidth * c.channels;
                EXPECT_EQ(got.destination[i], isPixel || isCopy ? source[i] : T(0xA5A5)) << i;
            }
        }
    });
}

TEST(ResizeEdges, TheSameLayoutIsCopiedWithItsPadding)
{
    const ResizeCase c = {13, 7, 13, 7, 3, 5, 5};
    ForBothWidths([&]<class T>() {
        for (const ResizeMode mode :
             {ResizeMode::BlockAverage, ResizeMode::Bilinear, ResizeMode::Bicubic, ResizeMode::Nearest}) {
            SCOPE(Number(mode));
            const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
            const auto got = zlvtest::ResizeReporting<T>(c, Number(mode), source);
            EXPECT_EQ(got.result, 1u);
            EXPECT_EQ(got.destination, source);
            EXPECT_TRUE(got.reports.empty());
        }
    });
}

TEST(ResizeEdges, BlocksOfTheSameSizeCopyTheSmallerStride)
{
    ForBothWidths([]<class T>() {
        for (const auto& [sourcePadding, destPadding] : {std::pair{1u, 4u}, {4u, 1u}}) {
            SCOPE(sourcePadding, destPadding);
            const ResizeCase c = {5, 3, 5, 3, 2, sourcePadding, destPadding};
            const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
            const auto got = zlvtest::ResizeReporting<T>(c, Number(ResizeMode::BlockAverage), source);
            EXPECT_TRUE(got.reports.empty());
            for (size_t i = 0; i < got.destination.size(); ++i) {
                const size_t y = i / c.DestStride(), x = i % c.DestStride();
                EXPECT_EQ(got.destination[i], x < 11 ? source[y * c.SourceStride() + x] : T(0xA5A5)) << i;
            }
        }
    });
}

TEST(ResizeEdges, TheSameSizeWithOtherStridesRunsInFull)
{
    const ResizeCase c = {13, 7, 13, 7, 3, 1, 4};
    ForBothWidths([&]<class T>() {
        for (const ResizeMode mode : {ResizeMode::Bilinear, ResizeMode::Bicubic, ResizeMode::Nearest}) {
            SCOPE(Number(mode));
            zlvtest::ExpectPlainResize<T>(c, Number(mode), Picture::Noise);
            const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
            const auto got = zlvtest::ResizeReporting<T>(c, Number(mode), source);
            EXPECT_EQ(got.reports.size(), mode == ResizeMode::Nearest ? c.channels : c.destHeight);
        }
    });
}

// Both ratios are whole: a square of the smaller one, not the area. 16-bit images have no such shortcut.
TEST(ResizeEdges, AnEvenDivisionAveragesSquares)
{
    const ResizeCase c = {100, 100, 50, 25, 1};
    ForBothWidths([&]<class T>() {
        const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
        const auto area = zlvtest::ResizeSilently<T>(c, Number(ResizeMode::AreaAverage), source);
        const auto squares = zlvtest::ResizeSilently<T>(c, Number(ResizeMode::BlockAverage), source);
        EXPECT_EQ(area.destination == squares.destination, sizeof(T) == 1);
        u32 square = 0, all = 0;
        for (size_t y = 0; y < 4; ++y) {
            for (size_t x = 0; x < 2; ++x) {
                all += source[y * 100 + x];
                if (y < 2) square += source[y * 100 + x];
            }
        }
        EXPECT_EQ(squares.destination[0], T(square / 4));
        EXPECT_EQ(area.destination[0], sizeof(T) == 1 ? T(square / 4) : T(all / 8));
    });
}

// The largest block whose sum fits 32 bits. Rows of a source that stand on each other need little memory.
const struct {
    const char* shows;
    u32 flags, width, height;
    u32 result;
} kBlocks[] = {
    {"bytes: the largest block", 0, 65537, 257, 1},
    {"bytes: one column more", 0, 65538, 257, 0},
    {"words: the largest block", kResizeSixteenBit, 65537, 1, 1},
    {"words: one column more", kResizeSixteenBit, 65538, 1, 0},
};

TEST(ResizeEdges, BlocksHaveALimit)
{
    const std::vector<u16> source(65538, 0xFFFF);
    for (const auto& row : kBlocks) {
        SCOPE(row.shows);
        u16 got = 0x1234;
        EXPECT_EQ(MV40_ResizeImage(source.data(), row.width, row.height, 0, &got, 1, 1, 1, 1,
                                   Number(ResizeMode::BlockAverage), row.flags),
                  row.result);
        EXPECT_EQ(MV40_GetLastError(), u32(row.result ? Error::None : Error::BadArgument));
        EXPECT_EQ(got, row.result == 0 ? 0x1234 : row.flags ? 0xFFFF : 0x12FF);
    }
}

// The sum of a block as large as they come: all of it counts.
TEST(ResizeEdges, ALargeBlockIsSummedWithoutOverflow)
{
    std::vector<u8> source(4104 * 4104, 255);
    u8 got = 0;
    EXPECT_EQ(MV40_ResizeImage(source.data(), 4104, 4104, 4104, &got, 1, 1, 1, 1, Number(ResizeMode::BlockAverage), 0),
              1u);
    EXPECT_EQ(got, 255);
}

// Products of indexes wrap at 32 bits: 42950 * 100000 is the first beyond.
TEST(ResizeEdges, NearestProductsWrap)
{
    const ResizeCase c = {100000, 1, 50000, 1, 1};
    ForBothWidths([&]<class T>() {
        const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
        zlvtest::ExpectPlainResize<T>(c, Number(ResizeMode::Nearest), Picture::Noise);
        const auto got = zlvtest::ResizeSilently<T>(c, Number(ResizeMode::Nearest), source);
        EXPECT_EQ(got.destination[42949], source[85898]);
        EXPECT_EQ(got.destination[42950], source[(4295000000u - 4294967296u) / 50000]);
    });
}

// Rows that overlap keep what is written to them last: filters go column by column, the others row by row.
TEST(ResizeEdges, OverlappingRowsOfTheDestinationEqualPlain)
{
    const std::vector<u8> source = zlvtest::RandomBytes(20 * 16 * 3, 3);
    for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
        if (mode == Number(ResizeMode::Bilinear) || mode == Number(ResizeMode::Nearest)) continue;
        for (const u32 stride : {0u, 1u, 3u, 29u}) {
            SCOPE(mode, stride);
            Bytes wanted(10 * 3 + 7 * stride, 0x5A);
            Bytes got = wanted;
            PlainResizer<u8> plain({source.data(), 20, 16, 60}, {wanted.data(), 10, 8, stride}, 3, zlvtest::kResizeMath,
                                   [](u32, u32) { return true; });
            EXPECT_EQ(plain.Run(mode), 0u);
            EXPECT_EQ(MV40_ResizeImage(source.data(), 20, 16, 60, got.data(), 10, 8, stride, 3, mode, 0), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(ResizeEdges, OtherFlagsChangeNothing)
{
    const ResizeCase c = {20, 16, 25, 19, 3};
    const Bytes source = zlvtest::MakePicture<u8>(Picture::Noise, c, 2);
    for (const ResizeMode mode : {ResizeMode::Lanczos3, ResizeMode::Bilinear, ResizeMode::Nearest}) {
        const auto wanted = zlvtest::ResizeSilently<u8>(c, Number(mode), source);
        for (const u32 flags : {128u, 2u, 0xFFFFFFFEu}) {
            SCOPE(Number(mode), flags);
            Bytes got = zlvtest::DestinationBefore<u8>(c);
            EXPECT_EQ(MV40_ResizeImage(source.data(), c.sourceWidth, c.sourceHeight, c.SourceStride(), got.data(),
                                       c.destWidth, c.destHeight, c.DestStride(), c.channels, Number(mode), flags),
                      1u);
            EXPECT_EQ(got, wanted.destination);
        }
    }
}

TEST(ResizeEdges, ATargetSmallerThanTheFilterIsCode68)
{
    const u32 needs[zlvtest::kResizeFilters] = {1, 1, 1, 2, 2, 2, 1, 2, 3, 2, 4, 1, 1, 2};
    const Bytes source(20 * 20, 50);
    for (u32 mode = 0; mode < zlvtest::kResizeFilters; ++mode) {
        for (u32 width = 1; width <= 5; ++width) {
            for (u32 height = 1; height <= 5; ++height) {
                SCOPE(mode, width, height);
                const bool fits = width >= needs[mode] && height >= needs[mode];
                Bytes got(25, 9);
                EXPECT_EQ(MV40_ResizeImage(source.data(), 20, 20, 20, got.data(), width, height, 5, 1, mode, 0), fits);
                EXPECT_EQ(MV40_GetLastError(), u32(fits ? Error::None : Error::TargetTooSmall));
                if (!fits) {
                    EXPECT_EQ(got, Bytes(25, 9));
                }
            }
        }
    }
}

// The arguments of a call that is good for every mode but for what a row changes.
struct Arguments {
    bool hasSource = true, hasDestination = true;
    u32 sourceWidth = 12, sourceHeight = 10, sourceStride = 36;
    u32 destWidth = 6, destHeight = 5, destStride = 18;
    u32 channels = 3;
    bool isInPlace = false;
};

constexpr u32 kAll = (1u << zlvtest::kResizeModes) - 1;
constexpr u32 Bit(ResizeMode mode) { return 1u << u32(mode); }
constexpr u32 kStrideCheckers = Bit(ResizeMode::Bilinear) | Bit(ResizeMode::Nearest);
constexpr u32 kAverages = Bit(ResizeMode::BlockAverage) | Bit(ResizeMode::AreaAverage);
constexpr u32 kChannelless = Bit(ResizeMode::BlockAverage) | Bit(ResizeMode::Bicubic);

const struct {
    const char* shows;
    u32 refusing;  // a bit for each mode that answers with code 5; the others succeed
    Arguments arguments;
} kRefused[] = {
    {"a good call", 0, {}},
    {"no source", kAll, {.hasSource = false}},
    {"no destination", kAll, {.hasDestination = false}},
    {"a source without columns", kAll, {.sourceWidth = 0}},
    {"a source without rows", kAll, {.sourceHeight = 0}},
    {"a target without columns", kAll, {.destWidth = 0}},
    {"a target without rows", kAll, {.destHeight = 0}},
    {"nothing at all", kAll, {.sourceWidth = 0, .sourceHeight = 0, .destWidth = 0, .destHeight = 0}},
    {"no channels", kAll & ~kChannelless, {.channels = 0}},
    {"a source stride below a row", kStrideCheckers, {.sourceStride = 35}},
    {"a destination stride below a row", kStrideCheckers, {.destStride = 17}},
    {"a wider target", kAverages, {.sourceWidth = 5}},
    {"a higher target", kAverages, {.sourceHeight = 4}},
    {"the source as destination", Bit(ResizeMode::Bicubic), {.isInPlace = true}},
    {"as many channels as there are numbers", kStrideCheckers, {.sourceWidth = 1u << 31, .channels = 2}},
};

TEST(ResizeEdges, BadArgumentsAreRefused)
{
    for (const u32 flags : {0u, kResizeSixteenBit}) {
        for (const auto& row : kRefused) {
            for (u32 mode = flags ? zlvtest::kResizeFilters : 0; mode < zlvtest::kResizeModes; ++mode) {
                const bool isRefused = (row.refusing >> mode) & 1;
                const Arguments& a = row.arguments;
                if (!isRefused && a.sourceWidth > 100) continue;  // there is no such image
                SCOPE(row.shows, mode, flags);
                const Bytes before = zlvtest::RandomBytes(1000, 1);
                Bytes source = before, destination = before;
                u8* const to = a.isInPlace ? source.data() : destination.data();
                EXPECT_EQ(MV40_ResizeImage(a.hasSource ? source.data() : nullptr, a.sourceWidth, a.sourceHeight,
                                           a.sourceStride, a.hasDestination ? to : nullptr, a.destWidth, a.destHeight,
                                           a.destStride, a.channels, mode, flags),
                          !isRefused);
                EXPECT_EQ(MV40_GetLastError(), u32(isRefused ? Error::BadArgument : Error::None));
                const bool writes = !isRefused && a.channels > 0;
                EXPECT_EQ(source == before, !(writes && a.isInPlace));
                EXPECT_EQ(destination == before, !(writes && !a.isInPlace));
            }
        }
    }
}

TEST(ResizeEdges, UnknownModesAreRefused)
{
    const auto refuses = [](u32 mode, u32 flags) {
        const Bytes source(200, 3);
        Bytes destination(50, 7);
        EXPECT_EQ(MV40_ResizeImage(source.data(), 10, 10, 10, destination.data(), 5, 5, 5, 1, mode, flags), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
        EXPECT_EQ(destination, Bytes(50, 7));
    };
    for (const u32 mode : {19u, 20u, 255u, 0x80000000u, 0xFFFFFFFFu}) {
        for (const u32 flags : {0u, kResizeSixteenBit}) {
            SCOPE(mode, flags);
            refuses(mode, flags);
        }
    }
    for (u32 mode = 0; mode < zlvtest::kResizeFilters; ++mode) {
        SCOPE("16 bits a sample", mode);
        refuses(mode, kResizeSixteenBit);
    }
}

TEST(ResizeEdges, WithoutChannelsRowsAreReportedAllTheSame)
{
    for (const ResizeMode mode : {ResizeMode::BlockAverage, ResizeMode::Bicubic}) {
        SCOPE(Number(mode));
        const Recording recording;
        const u8 source = 1;
        u8 destination = 2;
        EXPECT_EQ(MV40_ResizeImage(&source, 8, 8, 0, &destination, 4, 3, 1, 0, Number(mode), 0), 1u);
        EXPECT_EQ(recording.recorder.reports, zlvtest::Rows(3, 3));
        EXPECT_EQ(destination, 2);
    }
}

// As many allocations succeed as it takes; until then it is code 1, and nothing is written or reported.
TEST(ResizeEdges, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const ResizeCase c = {15, 11, 10, 7, 3};
    ForBothWidths([&]<class T>() {
        for (u32 mode = 0; mode < zlvtest::kResizeModes; ++mode) {
            if (!zlvtest::TakesMode<T>(mode)) continue;
            const std::vector<T> source = zlvtest::MakePicture<T>(Picture::Noise, c, 1);
            const std::vector<T> before = zlvtest::DestinationBefore<T>(c);
            const Recording recording;
            std::vector<T> got = before;
            u32 succeeding = 0, result = 0;
            while (result == 0) {
                SCOPE(mode, succeeding);
                {
                    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding++);
                    result = zlvtest::CallResize(c, mode, source.data(), got.data());
                }
                ASSERT_LT(succeeding, 30u);
                EXPECT_EQ(MV40_GetLastError(), u32(result ? Error::None : Error::OutOfMemory));
                if (result == 1) continue;
                EXPECT_EQ(got, before);
                EXPECT_TRUE(recording.recorder.reports.empty());
                EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
            }
            EXPECT_GT(succeeding, 1u) << mode;
        }
    });
}

// A row of more samples than memory has addresses for.
TEST(ResizeEdges, ARowThatNoMemoryHoldsIsCodeOne)
{
    constexpr u32 kHuge = 0xFFFFFFFE;
    const u8 source = 3;
    for (const u32 flags : {0u, kResizeSixteenBit}) {
        u16 destination = 7;
        EXPECT_EQ(MV40_ResizeImage(&source, kHuge, 2, 0, &destination, kHuge / 2, 1, 0, kHuge,
                                   Number(ResizeMode::BlockAverage), flags),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(destination, 7);
    }
}

}  // namespace
}  // namespace zlv
