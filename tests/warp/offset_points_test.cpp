#include "warp/warp_support.h"

#include <limits>

namespace zlvtest {
namespace {

PlainStep PlainOffset(double shiftX, double shiftY, std::uint32_t wrap, std::uint32_t width, std::uint32_t height)
{
    return [=](double x, double y, double* outX, double* outY) {
        const auto corrected = [](double v, double n) {
            if (v < 0) v += n;
            if (v > n - 1) v -= n;
            return v;
        };
        *outX = x - shiftX;
        *outY = y - shiftY;
        if (wrap == 1 || wrap == 2) *outX = corrected(*outX, width);
        if (wrap == 1 || wrap == 3) *outY = corrected(*outY, height);
        return true;
    };
}

WarpCase Offset(double shiftX, double shiftY, std::uint32_t wrap)
{
    return {
        Join("offset", shiftX, shiftY, wrap),
        [=](std::uint32_t width, std::uint32_t height) {
            return ZLV40_AddOffsetTransform(width, height, shiftX, shiftY, wrap);
        },
        [=](std::uint32_t width, std::uint32_t height) { return PlainOffset(shiftX, shiftY, wrap, width, height); }};
}

TEST(OffsetPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t wrap = 0; wrap < 5; ++wrap) {
        for (const double shift : {0.0, 1.0, -1.0, 2.5, -0.3, 12.0, 1000.0})
            cases.push_back(Offset(shift, -shift, wrap));
    }
    cases.push_back(Offset(std::numeric_limits<double>::quiet_NaN(), 1, 1));
    cases.push_back(Offset(1, std::numeric_limits<double>::infinity(), 1));
    ExpectEachEqualsPlain(cases);
}

TEST(OffsetPoints, APositiveShiftMovesThePictureRight)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(3, 1, 1, 0, ZLV40_WRAP_NONE), 1u);
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, (Bytes{9, 1, 2}));
}

TEST(OffsetPoints, AFractionalShiftWrapsToAFraction)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 1, 1.5, 0, ZLV40_WRAP_X), 1u);
    double minX, minY, maxX, maxY;
    ASSERT_EQ(ZLV40_GetTransformDimensions(1, 1, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(maxX, 2.5) << "the first column comes from width - 1.5";
}

TEST(OffsetPoints, AShiftLargerThanThePictureStaysOutside)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(3, 1, 7, 0, ZLV40_WRAP_BOTH), 1u);
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, (Bytes{9, 9, 9}));
}

// Nothing is stored for an empty picture: adding a size of 0 changes nothing.
TEST(OffsetPoints, EmptySizesAreTaken)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(0, 3, 1, 0, ZLV40_WRAP_BOTH), 1u);
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    EXPECT_EQ(dst, (Bytes{9, 1, 2}));
}

}  // namespace
}  // namespace zlvtest
