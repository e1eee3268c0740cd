#include "warp/warp_cases.h"

namespace zlvtest {
namespace {

TEST(EllipsePoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (const std::int32_t mode : {0, 1, 2, -1, -2147483647 - 1}) {
        cases.push_back(Ellipse(6, 4, 0, 0, mode));
        cases.push_back(Ellipse(-6, 100, 2, -1, mode));
        cases.push_back(Ellipse(1e-200, 1e200, 0, 0, mode));
        cases.push_back(Ellipse(kNaN, 5, 0, 0, mode));
        cases.push_back(Ellipse(5, kInfinity, 1, 1, mode));
        cases.push_back(Ellipse(1e6, 1e6, 2147483647, 0, mode));
    }
    ExpectEachEqualsPlain(cases);
}

std::uint32_t AddedWith(double semiAxisX, double semiAxisY, std::int32_t mode)
{
    const WarpList list;
    const std::uint32_t added = ZLV40_AddEllipticalTransform(5, 5, semiAxisX, semiAxisY, 0, 0, mode);
    EXPECT_EQ(ZLV40_GetLastError(), added ? 0u : std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    return added;
}

TEST(EllipsePoints, Arguments)
{
    const struct {
        const char* shows;
        double semiAxisX, semiAxisY;
        std::int32_t mode;
        std::uint32_t wanted;
    } rows[] = {
        {"an ellipse", 3, 2, 0, 1},
        {"no width", 0, 2, 0, 0},
        {"no height", 3, 0, 0, 0},
        {"a negative 0 is 0", 3, -0.0, 0, 0},
        {"signs do not matter", -3, -2, 0, 1},
        {"the last mode", 3, 2, 2, 1},
        {"a mode above it", 3, 2, 3, 0},
        {"the largest mode", 3, 2, 2147483647, 0},
        {"a negative mode is one", 3, 2, -1, 1},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        EXPECT_EQ(AddedWith(row.semiAxisX, row.semiAxisY, row.mode), row.wanted);
    }
}

// 5 x 5, a circle of radius 2: the middle row is stretched from 0..4 to 0..5, the outer ones have no width.
TEST(EllipsePoints, TheWholeWidthComesFromWithin)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddEllipticalTransform(5, 5, 2, 2, 0, 0, ZLV40_SQUEEZE_HORIZONTAL), 1u);
    Bytes src(25), dst(25);
    for (std::size_t i = 0; i < 25; ++i) src[i] = std::uint8_t(i);
    ASSERT_EQ(ZLV40_TransformProcess(src.data(), 5, 5, 5, dst.data(), 5, 1, 0, 99), 1u);
    EXPECT_EQ(Bytes(dst.begin() + 10, dst.begin() + 15), (Bytes{10, 12, 13, 14, 14})) << "0, 1.25, 2.5, 3.75, 5";
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 5), Bytes(5, 99));
    EXPECT_EQ(Bytes(dst.begin() + 20, dst.end()), Bytes(5, 99));
}

TEST(EllipsePoints, ANegativeModeKeepsTheFrame)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddEllipticalTransform(4, 1, 1, 1, 2, 0, -1), 1u);
    const Bytes src = {1, 2, 3, 4};
    Bytes dst(4);
    ASSERT_EQ(ZLV40_TransformProcess(src.data(), 4, 1, 4, dst.data(), 4, 1, 0, 9), 1u);
    EXPECT_EQ(dst, (Bytes{9, 9, 3, 4}));
}

// In the corner column, ex^2 / a2 is 1/4 and the column has a height; in the row there, ey^2 / b2 is above 1.
TEST(EllipsePoints, BothKeepTheYThatWasFound)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddEllipticalTransform(5, 9, 4, 3, 0, 0, ZLV40_SQUEEZE_BOTH), 1u);
    double minX, minY, maxX, maxY;
    ASSERT_EQ(ZLV40_GetTransformDimensions(1, 1, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(minX, 0) << "x is the pixel's";
    const double half = std::sqrt(0.75 * 9);
    EXPECT_NEAR(minY, (0 - (4 - half)) / (2 * half) * 9, 1e-12) << "y is squeezed";
    EXPECT_LT(minY, 0);
}

// An empty frame holds the offset's position alone, and that stays.
TEST(EllipsePoints, EmptySizesAreTaken)
{
    for (const std::int32_t mode : {-1, 0, 1, 2}) {
        SCOPE(mode);
        const WarpList list;
        ASSERT_EQ(ZLV40_AddEllipticalTransform(0, 4, 3, 3, 0, 0, mode), 1u);
        ExpectListEqualsPlain({4, 3, 1}, {PlainEllipse(0, 4, 3, 3, 0, 0, mode)}, 0);
        const Bytes src = {1, 2, 3, 4};
        Bytes dst(4);
        ASSERT_EQ(ZLV40_TransformProcess(src.data(), 4, 1, 4, dst.data(), 4, 1, 0, 9), 1u);
        EXPECT_EQ(dst, (Bytes{1, 9, 9, 9}));
    }
}

TEST(EllipsePoints, WithoutMemoryTheListStaysAsItWas)
{
    const WarpList list;
    {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(Ellipse(3, 3, 0, 0, 0).add(5, 5), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
    }
    ExpectListEqualsPlain({5, 5, 1}, {}, 0);
}

}  // namespace
}  // namespace zlvtest
