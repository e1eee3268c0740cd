#include "warp/warp_cases.h"

namespace zlvtest {
namespace {

TEST(OffsetPoints, EveryTargetEqualsPlain)
{
    std::vector<WarpCase> cases;
    for (std::uint32_t wrap = 0; wrap < 5; ++wrap) {
        for (const double shift : {0.0, 1.0, -1.0, 2.5, -0.3, 12.0, 1000.0})
            cases.push_back(Offset(shift, -shift, wrap));
    }
    cases.push_back(Offset(kNaN, 1, 1));
    cases.push_back(Offset(1, kInfinity, 1));
    ExpectEachEqualsPlain(cases);
}

// The gray pixels 1, 2, 3 through the list; 9 is what is outside.
Bytes ListedRow()
{
    const Bytes src = {1, 2, 3};
    Bytes dst(3);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 3, 1, 3, dst.data(), 3, 1, 0, 9), 1u);
    return dst;
}

TEST(OffsetPoints, APositiveShiftMovesThePictureRight)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(3, 1, 1, 0, ZLV40_WRAP_NONE), 1u);
    EXPECT_EQ(ListedRow(), (Bytes{9, 1, 2}));
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
    EXPECT_EQ(ListedRow(), (Bytes{9, 9, 9}));
}

// Nothing is stored for an empty picture: adding a size of 0 changes nothing.
TEST(OffsetPoints, EmptySizesAreTaken)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(0, 3, 1, 0, ZLV40_WRAP_BOTH), 1u);
    EXPECT_EQ(ListedRow(), (Bytes{9, 1, 2}));
}

}  // namespace
}  // namespace zlvtest
