#include "plain/plain_fourier.h"
#include "support/doubles.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <limits>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Doubles;
using zlvtest::Flush;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Both destinations, both parts, both scales, with rows that are padded.
void ExpectPlain(const Doubles& values, std::uint32_t width, std::uint32_t height, std::uint32_t padding)
{
    zlvtest::GuardedBuffer grid(values.size() * sizeof(double), padding ? Flush::ToStart : Flush::ToEnd);
    std::memcpy(grid.Data(), values.data(), grid.Size());
    const double* const from = reinterpret_cast<const double*>(grid.Data());
    const std::uint32_t stride = width + padding;
    const std::size_t size = height ? (height - 1) * stride + width : 0;
    for (int call = 0; call < 4; ++call) {
        const int isReal = call & 1, isScaled = call & 2;
        SCOPE(isReal ? "real parts" : "magnitudes", isScaled ? "scaled" : "not scaled");
        Bytes wantedBytes(size, 0x2A), bytes = wantedBytes;
        PlainGrayscaleOfGrid(wantedBytes.data(), nullptr, from, width, height, stride, isReal, isScaled);
        EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(bytes.data(), nullptr, from, width, height, stride, isReal, isScaled), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wantedBytes.data(), bytes.data(), size), "");

        Doubles wantedDoubles(size, 7), doubles = wantedDoubles;
        PlainGrayscaleOfGrid(nullptr, wantedDoubles.data(), from, width, height, stride, isReal, isScaled);
        EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(nullptr, doubles.data(), from, width, height, stride, isReal, isScaled),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::DifferenceOfDoubles(wantedDoubles, doubles), "");
    }
}

TEST(MakeGrayscaleFromFFT, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const std::uint32_t width : {1u, 2u, 3u, 7u, 8u, 16u, 33u, 64u}) {
            for (const std::uint32_t height : {1u, 2u, 5u}) {
                for (const std::uint32_t padding : {0u, 3u}) {
                    SCOPE(width, height, padding);
                    Doubles values = zlvtest::RandomDoubles(2 * std::size_t(width) * height, width + height);
                    ExpectPlain(values, width, height, padding);
                    for (double& value : values) value *= 400;  // beyond samples, on both sides
                    ExpectPlain(values, width, height, padding);
                }
            }
        }
    });
}

TEST(MakeGrayscaleFromFFT, WildValuesAreWhatTheyAre)
{
    zlvtest::OnEveryTarget([&] {
        for (const double wild : {kNotANumber, kInfinity, -kInfinity, 1e32, 2e32, -2e32, 1e200, 5e-324, -0.0}) {
            for (const std::size_t at : {0, 1, 30, 31, 66, 67}) {
                SCOPE(wild, at);
                Doubles values = zlvtest::RandomDoubles(2 * 34, 9);
                values[at] = wild;
                ExpectPlain(values, 17, 2, 1);
                ExpectPlain(Doubles(2 * 34, wild), 17, 2, 1);
            }
        }
    });
}

// Zeros that are the smallest or the largest value: the first of them tells the sign.
TEST(MakeGrayscaleFromFFT, ExtremesThatAreZeroKeepTheSignOfTheFirst)
{
    zlvtest::OnEveryTarget([&] {
        for (const double side : {3.0, -3.0}) {
            for (const double first : {0.0, -0.0}) {
                for (const std::size_t at : {0, 5, 20}) {
                    SCOPE(side, first, at);
                    Doubles values(2 * 40, side);
                    values[2 * at] = first;
                    values[2 * at + 2] = -first;
                    values[2 * at + 30] = -first;
                    ExpectPlain(values, 20, 2, 0);
                }
            }
        }
    });
}

TEST(MakeGrayscaleFromFFT, AConstantGridIsNear127)
{
    for (const double level : {0.0, 3.0, -1000.0}) {
        SCOPE(level);
        Doubles grid(32);
        for (std::size_t i = 0; i < 16; ++i) grid[2 * i] = level;
        Bytes picture(16);
        EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(picture.data(), nullptr, grid.data(), 4, 4, 4, 1, 1), 1u);
        for (const std::uint8_t sample : picture) EXPECT_NEAR(sample, 127, 1);
    }
}

TEST(MakeGrayscaleFromFFT, ScaledRealPartsRunFrom0To255)
{
    const Doubles grid = {-2, 9, 0, 9, 1, 9, 2, 9};
    Bytes picture(4);
    EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(picture.data(), nullptr, grid.data(), 4, 1, 4, 1, 1), 1u);
    EXPECT_EQ(picture, (Bytes{0, 127, 191, 255}));
}

TEST(MakeGrayscaleFromFFT, UnscaledRealPartsBeginAt0)
{
    const Doubles grid = {-2, 9, 0, 9, 1.75, 9, 400, 9};
    Bytes picture(4);
    EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(picture.data(), nullptr, grid.data(), 2, 2, 2, -1, 0), 1u);
    EXPECT_EQ(picture, (Bytes{0, 2, 3, 255}));
}

TEST(MakeGrayscaleFromFFT, MagnitudesRunUpTo255OrToTheLargestRealPart)
{
    const Doubles grid = {3, 4, 0, 0, -6, 8, 0, -5};  // magnitudes 5, 0, 10, 5
    Bytes picture(4);
    EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(picture.data(), nullptr, grid.data(), 4, 1, 4, 0, 1), 1u);
    EXPECT_EQ(picture, (Bytes{127, 0, 255, 127}));
    Doubles values(4);
    EXPECT_EQ(ZLV40_MakeGrayscaleFromFFT(nullptr, values.data(), grid.data(), 4, 1, 4, 0, 0), 1u);
    EXPECT_EQ(values, (Doubles{1.5, 0, 3, 1.5}));
}

const struct {
    const char* shows;
    bool hasBytes, hasDoubles, hasGrid;
    std::uint32_t width, height, result;
} kCalls[] = {
    {"two destinations are refused", true, true, true, 2, 2, 0},
    {"no destination is refused", false, false, true, 2, 2, 0},
    {"a null grid is refused", true, false, false, 2, 2, 0},
    {"a null grid is refused with doubles", false, true, false, 2, 2, 0},
    {"a null grid is refused with nothing to do too", true, false, false, 0, 0, 0},
    {"no columns are nothing to do", true, false, true, 0, 2, 1},
    {"no rows are nothing to do", false, true, true, 2, 0, 1},
};

TEST(MakeGrayscaleFromFFT, RefusesWithNothingWritten)
{
    for (const auto& row : kCalls) {
        SCOPE(row.shows);
        const Doubles grid(8, 1);
        Bytes bytes(4, 9);
        Doubles doubles(4, 9);
        EXPECT_EQ(
            ZLV40_MakeGrayscaleFromFFT(row.hasBytes ? bytes.data() : nullptr, row.hasDoubles ? doubles.data() : nullptr,
                                       row.hasGrid ? grid.data() : nullptr, row.width, row.height, 2, 1, 1),
            row.result);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(row.result ? 0 : ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(bytes, Bytes(4, 9));
        EXPECT_EQ(doubles, Doubles(4, 9));
    }
}

}  // namespace
}  // namespace zlv
