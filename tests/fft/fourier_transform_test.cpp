#include "plain/plain_fourier.h"
#include "support/doubles.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <limits>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Doubles;
using zlvtest::Flush;

// Shapes of every kind: lines shorter than the widest vector, fewer lines than lanes, odd and even numbers of stages,
// lines that leave the cached blocks, columns that go in blocks of fewer the longer they are.
const struct {
    std::uint32_t width, height;
} kShapes[] = {{2, 2},   {2, 4},   {4, 2},   {4, 4},    {8, 4},    {4, 16},    {16, 16},   {8, 64},   {64, 8},
               {2, 256}, {256, 2}, {32, 32}, {128, 64}, {512, 16}, {16, 1024}, {64, 2048}, {8192, 4}, {4, 8192}};

// A grid whose memory is fenced at one end.
class FencedGrid {
public:
    FencedGrid(const Doubles& values, Flush flush) : memory_(values.size() * sizeof(double), flush)
    {
        std::memcpy(memory_.Data(), values.data(), memory_.Size());
    }
    double* Values() { return reinterpret_cast<double*>(memory_.Data()); }

private:
    zlvtest::GuardedBuffer memory_;
};

TEST(DoFFT, EveryTargetEqualsPlainOnBytes)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& [width, height] : kShapes) {
            for (const std::uint32_t padding : {0u, 5u}) {
                SCOPE(width, height, padding);
                const std::uint32_t stride = width + padding;
                const Bytes source = zlvtest::RandomBytes((height - 1) * stride + width, width + height);
                Doubles wanted(2 * std::size_t(width) * height, 7);
                FencedGrid got(wanted, padding ? Flush::ToStart : Flush::ToEnd);
                EXPECT_EQ(PlainFourierOfPicture(source.data(), width, height, stride, wanted.data()), 0u);
                EXPECT_EQ(ZLV40_DoFFT(source.data(), nullptr, width, height, stride, got.Values()), 1u);
                EXPECT_EQ(ZLV40_GetLastError(), 0u);
                EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.data(), got.Values(), wanted.size()), "");
            }
        }
    });
}

TEST(DoFFT, EveryTargetEqualsPlainOnDoubles)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& [width, height] : kShapes) {
            SCOPE(width, height);
            const std::uint32_t stride = width + 3;
            const Doubles source = zlvtest::RandomDoubles((height - 1) * stride + width, width + height);
            Doubles wanted(2 * std::size_t(width) * height, 7);
            FencedGrid got(wanted, Flush::ToEnd);
            EXPECT_EQ(PlainFourierOfPicture(source.data(), width, height, stride, wanted.data()), 0u);
            EXPECT_EQ(ZLV40_DoFFT(nullptr, source.data(), width, height, stride, got.Values()), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
            EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.data(), got.Values(), wanted.size()), "");
        }
    });
}

// Zeros of both signs are among the values: a factor of 1 that were skipped would show in their signs.
TEST(DoFFTInverse, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& [width, height] : kShapes) {
            for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                SCOPE(width, height, int(flush));
                Doubles wanted = zlvtest::RandomDoubles(2 * std::size_t(width) * height, width * 3 + height);
                FencedGrid got(wanted, flush);
                EXPECT_TRUE(PlainFourierGrid(false, width, height, wanted.data()).isDone);
                EXPECT_EQ(ZLV40_DoFFTInverse(width, height, got.Values()), 1u);
                EXPECT_EQ(ZLV40_GetLastError(), 0u);
                EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted.data(), got.Values(), wanted.size()), "");
            }
        }
    });
}

TEST(DoFFTInverse, CarriesWhatIsNoNumberThrough)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    zlvtest::OnEveryTarget([&] {
        for (const double wild : {std::numeric_limits<double>::quiet_NaN(), kInfinity, -kInfinity, 1e308, 5e-324}) {
            SCOPE(wild);
            Doubles wanted = zlvtest::RandomDoubles(2 * 32 * 16, 3);
            wanted[77] = wild;
            Doubles got = wanted;
            PlainFourierGrid(false, 32, 16, wanted.data());
            EXPECT_EQ(ZLV40_DoFFTInverse(32, 16, got.data()), 1u);
            EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted, got), "");
        }
    });
}

// Of samples up to 255 that go there and back. The recurrence takes the sine of its step from 1 - cos, about
// 20 / length^2, of which rounding leaves one part in length^2 / 20 * 2^-53 in doubt; over half a turn of steps the
// angle of a factor drifts by pi times that. Everything else is far smaller, but for short lines.
double LargestError(std::uint32_t length) { return 1e-11 + 255 * 0x1p-53 * length * double(length) / 6; }

TEST(DoFFT, ThenTheInverseGivesThePictureLessItsMean)
{
    for (const auto& [width, height] : kShapes) {
        SCOPE(width, height);
        const std::size_t count = std::size_t(width) * height;
        const Bytes source = zlvtest::RandomBytes(count, width);
        double mean = 0;
        for (const std::uint8_t sample : source) mean += sample / double(count);
        Doubles grid(2 * count);
        EXPECT_EQ(ZLV40_DoFFT(source.data(), nullptr, width, height, width, grid.data()), 1u);
        EXPECT_NEAR(grid[0], 0, 1e-12) << "the mean is gone";
        EXPECT_EQ(ZLV40_DoFFTInverse(width, height, grid.data()), 1u);
        const double tolerance = LargestError(std::max(width, height));
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_NEAR(grid[2 * i], source[i] - mean, tolerance) << i;
            ASSERT_NEAR(grid[2 * i + 1], 0, tolerance) << i;
        }
    }
}

// A wave of 3 periods across and 1 down stands at column 3, row 1 and at its mirror; half its height at each.
TEST(DoFFT, AWaveIsTwoFrequencies)
{
    constexpr std::uint32_t kSide = 16;
    const double turn = 2 * std::acos(-1.0) / kSide;
    Doubles source(kSide * kSide), grid(2 * kSide * kSide);
    for (std::uint32_t y = 0; y < kSide; ++y) {
        for (std::uint32_t x = 0; x < kSide; ++x) source[y * kSide + x] = 8 * std::cos(turn * (3 * x + y));
    }
    EXPECT_EQ(ZLV40_DoFFT(nullptr, source.data(), kSide, kSide, kSide, grid.data()), 1u);
    for (std::uint32_t y = 0; y < kSide; ++y) {
        for (std::uint32_t x = 0; x < kSide; ++x) {
            const bool isWave = (x == 3 && y == 1) || (x == 13 && y == 15);
            EXPECT_NEAR(grid[2 * (y * kSide + x)], isWave ? 4 : 0, 1e-12) << x << ' ' << y;
            EXPECT_NEAR(grid[2 * (y * kSide + x) + 1], 0, 1e-12) << x << ' ' << y;
        }
    }
}

TEST(DoFFT, WithoutAGridIsFiveAndNoError)
{
    const std::uint8_t bytes[16] = {};
    EXPECT_EQ(ZLV40_AllocFFTGrid(1, 1), nullptr);  // leaves a code
    EXPECT_EQ(ZLV40_DoFFT(bytes, nullptr, 4, 4, 4, nullptr), 5u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(ZLV40_DoFFT(nullptr, nullptr, 4, 4, 4, nullptr), 5u) << "the grid comes before the source";
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(DoFFTInverse, WithoutAGridIsFiveAndNoError)
{
    EXPECT_EQ(ZLV40_AllocFFTGrid(1, 1), nullptr);
    EXPECT_EQ(ZLV40_DoFFTInverse(4, 4, nullptr), 5u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(ZLV40_DoFFTInverse(0, 3, nullptr), 5u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(DoFFT, TakesOneSourceAndNotTwo)
{
    const Bytes bytes(16);
    const Doubles doubles(16), before(32, 7);
    Doubles grid = before;
    EXPECT_EQ(ZLV40_DoFFT(bytes.data(), doubles.data(), 4, 4, 4, grid.data()), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(ZLV40_DoFFT(nullptr, nullptr, 4, 4, 4, grid.data()), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(grid, before);
}

const struct {
    const char* shows;
    std::uint32_t width, height, error;
} kBadSizes[] = {
    {"a width of 0 has no line buffers in the first pass", 0, 4, ZLV40_ERROR_BAD_ARGUMENT},
    {"nothing at all fails in the first pass", 0, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"a width of 1 is too short", 1, 4, ZLV40_ERROR_BAD_ARGUMENT},
    {"a width of 3 is no power of two", 3, 4, ZLV40_ERROR_BAD_ARGUMENT},
    {"a width of 12 is no power of two", 12, 4, ZLV40_ERROR_BAD_ARGUMENT},
    {"a height of 0 has no line buffers in the second pass", 4, 0, ZLV40_ERROR_OUT_OF_MEMORY},
    {"a height of 1 is too short, with its row transformed", 8, 1, ZLV40_ERROR_BAD_ARGUMENT},
    {"a height of 3 is no power of two, with its rows transformed", 8, 3, ZLV40_ERROR_BAD_ARGUMENT},
    {"rows are transformed in blocks and ones, however many there are", 16, 21, ZLV40_ERROR_BAD_ARGUMENT},
};

TEST(DoFFT, AFailingTransformShowsInTheLastErrorAlone)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& row : kBadSizes) {
            SCOPE(row.shows);
            const Bytes source = zlvtest::RandomBytes(16 * 21, 1);
            Doubles wanted(2 * row.width * row.height + 2, 7), got = wanted;
            EXPECT_EQ(PlainFourierOfPicture(source.data(), row.width, row.height, 16, wanted.data()), row.error);
            EXPECT_EQ(ZLV40_DoFFT(source.data(), nullptr, row.width, row.height, 16, got.data()), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), row.error);
            EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted, got), "");
        }
    });
}

// Walking through the rows would take seconds.
TEST(DoFFT, BillionsOfRowsWithoutColumnsAreNoWork)
{
    const double real = 0;
    const std::uint8_t byte = 0;
    Doubles grid(2, 7);
    EXPECT_EQ(ZLV40_DoFFT(&byte, nullptr, 0, 0x80000000, 0, grid.data()), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(ZLV40_DoFFT(nullptr, &real, 0, 0xFFFFFFFF, 0, grid.data()), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(grid, Doubles(2, 7));
}

TEST(DoFFTInverse, FailsWithSizesThatAreNoPowersOfTwo)
{
    zlvtest::OnEveryTarget([&] {
        for (const auto& row : kBadSizes) {
            SCOPE(row.shows);
            Doubles wanted = zlvtest::RandomDoubles(2 * row.width * row.height + 2, 2), got = wanted;
            EXPECT_EQ(PlainFourierGrid(false, row.width, row.height, wanted.data()).error, row.error);
            EXPECT_EQ(ZLV40_DoFFTInverse(row.width, row.height, got.data()), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), row.error);
            EXPECT_EQ(zlvtest::DifferenceOfDoubles(wanted, got), "");
        }
    });
}

// Memory of the first pass is code 5, of the second code 1. A pass over lines of the same length needs nothing new.
TEST(DoFFTInverse, MemoryOfTheTwoPassesHasTwoCodes)
{
    ZLV40_GetLastError();  // makes the thread's records
    for (const std::uint32_t height : {8u, 16u}) {
        bool isDone = false;
        for (std::uint32_t succeeding = 0; !isDone; ++succeeding) {
            SCOPE(height, succeeding);
            ASSERT_LT(succeeding, 10u);
            const Doubles before = zlvtest::RandomDoubles(2 * 8 * height, 5);
            Doubles grid = before, rowsDone = before;
            for (std::uint32_t y = 0; y < height; ++y) PlainFourierGrid(false, 8, 1, rowsDone.data() + y * 16);
            std::uint32_t failed = 0, result = 0;
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                result = ZLV40_DoFFTInverse(8, height, grid.data());
                failed = failing.Failed();
            }
            isDone = failed == 0;
            const bool isFirstPass = succeeding < 3;
            EXPECT_EQ(result, isDone ? 1u : 0u);
            EXPECT_EQ(ZLV40_GetLastError(), isDone ? 0u : isFirstPass ? 5u : 1u);
            if (isDone) {
                EXPECT_EQ(succeeding, height == 8 ? 3u : 6u);
            } else {
                EXPECT_EQ(zlvtest::DifferenceOfDoubles(isFirstPass ? before : rowsDone, grid), "");
            }
        }
    }
}

TEST(DoFFT, WithoutMemoryLeavesThePictureLessItsMean)
{
    const Bytes source = {0, 0, 0, 0, 8, 8, 8, 8};  // the mean is 4
    Doubles grid(16, 7);
    ZLV40_GetLastError();
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(ZLV40_DoFFT(source.data(), nullptr, 4, 2, 4, grid.data()), 1u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(grid, (Doubles{-4, 0, -4, 0, -4, 0, -4, 0, 4, 0, 4, 0, 4, 0, 4, 0}));
}

TEST(DoFFT, NeitherReportsNorCancels)
{
    zlvtest::ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    const Bytes source(64);
    Doubles grid(128);
    EXPECT_EQ(ZLV40_DoFFT(source.data(), nullptr, 8, 8, 8, grid.data()), 1u);
    EXPECT_EQ(ZLV40_DoFFTInverse(8, 8, grid.data()), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

}  // namespace
}  // namespace zlv
