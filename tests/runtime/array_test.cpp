#include "runtime/array.h"

#include "support/test_hooks.h"

#include <gtest/gtest.h>

namespace zlv {
namespace {

using zlvtest::FailingCalls;

TEST(Array, StartsEmpty)
{
    const ZLVArray<u8> array;
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(Array, ThePresentSizeKeepsTheContents)
{
    ZLVArray<u8> array;
    ASSERT_TRUE(array.Resize(100));
    array.Fill(0x5A);
    const u8* const data = array.GetData();
    EXPECT_TRUE(array.Resize(100));
    EXPECT_EQ(array.GetData(), data);
    EXPECT_EQ(array[0], 0x5A);
    EXPECT_EQ(array[99], 0x5A);
}

TEST(Array, AnyOtherSizeIsANewAllocation)
{
    ZLVArray<i32> array;
    ASSERT_TRUE(array.Resize(10));
    // The old block goes first: with no memory for the new one the array is empty, not what it was.
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_FALSE(array.Resize(11));
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_EQ(failing.Failed(), 1u);
}

const struct {
    const char* shows;
    i32 count;
} kEmptySizes[] = {{"zero", 0}, {"minus one", -1}, {"the most negative", INT32_MIN}};

TEST(Array, ASizeOfZeroOrLessIsAFailedAllocation)
{
    for (const auto& row : kEmptySizes) {
        SCOPED_TRACE(row.shows);
        ZLVArray<f64> array;
        ASSERT_TRUE(array.Resize(3));
        const FailingCalls watching(FailingCalls::Of::Allocate, 0);
        EXPECT_FALSE(array.Resize(row.count));
        EXPECT_EQ(array.GetData(), nullptr);
        EXPECT_EQ(array.GetCount(), 0);
        EXPECT_EQ(watching.Failed(), 0u) << "nothing is asked of the allocator";
    }
}

TEST(Array, FillOfAnEmptyArrayDoesNothing)
{
    ZLVArray<u8> array;
    array.Fill(1);
    EXPECT_EQ(array.GetCount(), 0);
}

TEST(Array, OfArraysConstructsAndDestroysEach)
{
    ZLVArray<ZLVArray<u8>> arrays;
    ASSERT_TRUE(arrays.Resize(5));
    for (i32 i = 0; i < 5; ++i) {
        EXPECT_EQ(arrays[size_t(i)].GetCount(), 0);
        ASSERT_TRUE(arrays[size_t(i)].Resize(1000));
    }
    EXPECT_FALSE(arrays.Resize(0));  // the leak checker sees an element that is not destroyed
}

TEST(Array, TheLargestCountFailsCleanly)
{
    ZLVArray<f64> array;
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_FALSE(array.Resize(INT32_MAX));
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(Buffer, CountsInSixtyFourBits)
{
    MVBuffer<u32> buffer;
    EXPECT_TRUE(buffer.Resize(7));
    EXPECT_EQ(buffer.GetCount(), 7u);
    EXPECT_FALSE(buffer.Resize(0));
    EXPECT_EQ(buffer.GetData(), nullptr);
}

TEST(Buffer, AnImpossibleSizeIsNotAskedFor)
{
    MVBuffer<f64> buffer;
    const FailingCalls watching(FailingCalls::Of::Allocate, 0);
    for (const u64 count : {u64{1} << 61, (u64{1} << 61) + 1, ~u64{0}}) {
        EXPECT_FALSE(buffer.Resize(count)) << count;
        EXPECT_EQ(buffer.GetCount(), 0u);
    }
    EXPECT_EQ(watching.Failed(), 0u);
}

TEST(AlignedArray, StartsAtAMultipleOfTheAlignment)
{
    for (const u64 alignment : {1u, 16u, 64u, 4096u}) {
        MVAlignedArray<f32> array;
        ASSERT_TRUE(array.Resize(13, alignment));
        EXPECT_EQ(reinterpret_cast<u64>(array.GetData()) % alignment, 0u) << alignment;
        EXPECT_EQ(array.GetCount(), 13u);
        array.GetData()[12] = 1;
    }
}

TEST(AlignedArray, ThePresentSizeAndAlignmentKeepTheContents)
{
    MVAlignedArray<f64> array;
    ASSERT_TRUE(array.Resize(4, 16));
    array.GetData()[3] = 2.5;
    EXPECT_TRUE(array.Resize(4, 16));
    EXPECT_EQ(array.GetData()[3], 2.5);
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_FALSE(array.Resize(4, 32)) << "another alignment is another block";
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.GetCount(), 0u);
}

TEST(AlignedArray, RefusesAnEmptyOrImpossibleSize)
{
    MVAlignedArray<f64> array;
    EXPECT_FALSE(array.Resize(0, 16));
    EXPECT_FALSE(array.Resize(~u64{0}, 16));
    EXPECT_EQ(array.GetData(), nullptr);
}

struct Counted {
    explicit Counted(int& theCount) : count(theCount) { ++count; }
    ~Counted() { --count; }
    int& count;
};

TEST(PtrVector, OwnsAndDeletesWhatItHolds)
{
    int alive = 0;
    {
        MVPtrVector<Counted> vector;
        for (int i = 0; i < 100; ++i) ASSERT_TRUE(vector.Append(new Counted(alive)));
        EXPECT_EQ(vector.GetCount(), 100u);
        EXPECT_EQ(alive, 100);
        vector.Clear();
        EXPECT_EQ(alive, 0);
        EXPECT_EQ(vector.GetCount(), 0u);
        ASSERT_TRUE(vector.Append(new Counted(alive)));
    }
    EXPECT_EQ(alive, 0);
}

TEST(PtrVector, AFailedAppendLeavesTheObjectToTheCaller)
{
    int alive = 0;
    MVPtrVector<Counted> vector;
    Counted* const object = new Counted(alive);
    {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        EXPECT_FALSE(vector.Append(object));
    }
    EXPECT_EQ(vector.GetCount(), 0u);
    EXPECT_EQ(alive, 1);
    delete object;
}

}  // namespace
}  // namespace zlv
