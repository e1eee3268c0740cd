#include "plain/plain_fourier.h"
#include "support/test_hooks.h"

#include <gtest/gtest.h>

#include "zlv40.h"

namespace zlv {
namespace {

TEST(NextPowerOfTwo, IsStrictlyAboveAndAtLeastFour)
{
    const struct {
        std::uint32_t value, power;
    } rows[] = {{0, 4},
                {1, 4},
                {2, 4},
                {3, 4},
                {4, 8},
                {5, 8},
                {7, 8},
                {8, 16},
                {1023, 1024},
                {1024, 2048},
                {1u << 30, 1u << 31},
                {(1u << 31) - 1, 1u << 31}};
    for (const auto& row : rows) EXPECT_EQ(ZLV40_NextPowerOfTwo(row.value), row.power) << row.value;
    for (std::uint32_t value = 0; value < 70000; ++value) {
        ASSERT_EQ(ZLV40_NextPowerOfTwo(value), PlainNextPowerOfTwo(value)) << value;
    }
}

TEST(NextPowerOfTwo, IsZeroWhereNoPowerFits)
{
    EXPECT_EQ(ZLV40_NextPowerOfTwo(1u << 31), 0u);
    EXPECT_EQ(ZLV40_NextPowerOfTwo(UINT32_MAX), 0u);
}

TEST(NextPowerOfTwo, LeavesTheLastErrorAlone)
{
    EXPECT_EQ(ZLV40_AllocFFTGrid(2, 2), nullptr);
    EXPECT_EQ(ZLV40_NextPowerOfTwo(0), 4u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
}

const struct {
    const char* shows;
    std::uint32_t width, height;
    bool isAccepted;
} kSizes[] = {
    {"two by two is too small", 2, 2, false},
    {"four by four is the smallest", 4, 4, true},
    {"sides may differ", 4, 64, true},
    {"a width of 0 is refused", 0, 4, false},
    {"a height of 0 is refused", 4, 0, false},
    {"nothing at all is refused", 0, 0, false},
    {"a width of 1 is refused", 1, 4, false},
    {"a height of 2 is refused", 4, 2, false},
    {"a width of 3 is refused", 3, 4, false},
    {"a height that is no power of two is refused", 4, 12, false},
    {"one above a power of two is refused", 257, 256, false},
    {"one below a power of two is refused", 256, 255, false},
    {"the largest number is refused", 4, UINT32_MAX, false},
    {"one above the largest power is refused", (1u << 31) + 1, 4, false},
};

TEST(AllocFFTGrid, TakesPowersOfTwoFromFourUp)
{
    for (const auto& row : kSizes) {
        SCOPED_TRACE(row.shows);
        double* const grid = ZLV40_AllocFFTGrid(row.width, row.height);
        EXPECT_EQ(grid != nullptr, row.isAccepted);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(row.isAccepted ? 0 : ZLV40_ERROR_BAD_ARGUMENT));
        ZLV40_FreeBlock(grid);
    }
}

TEST(AllocFFTGrid, IsTwoZerosAValue)
{
    double* const grid = ZLV40_AllocFFTGrid(16, 8);
    ASSERT_NE(grid, nullptr);
    for (std::size_t i = 0; i < 2 * 16 * 8; ++i) {
        EXPECT_EQ(grid[i], 0.0);
        grid[i] = 1;  // all of it is the caller's
    }
    ZLV40_FreeBlock(grid);
}

TEST(AllocFFTGrid, WithoutMemoryIsCodeOne)
{
    ZLV40_GetLastError();  // makes the thread's records
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::AllocateClientBlock, 0);
        EXPECT_EQ(ZLV40_AllocFFTGrid(4, 4), nullptr);
        EXPECT_EQ(failing.Failed(), 1u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
}

TEST(AllocFFTGrid, BytesThatNoAddressRangeHoldsAreCodeOne)
{
    EXPECT_EQ(ZLV40_AllocFFTGrid(1u << 31, 1u << 31), nullptr);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(ZLV40_AllocFFTGrid(1u << 30, 1u << 30), nullptr);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
}

}  // namespace
}  // namespace zlv
