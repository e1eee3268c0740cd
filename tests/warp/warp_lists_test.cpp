// The warp list: the order of the walk through it, its end, threads, extent. The client's own function is its steps.
#include "warp/user_function.h"

#include "support/progress_recorder.h"
#include "support/test_hooks.h"

#include <limits>
#include <thread>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(UserTransform, EachPixelGoesThroughTheWholeListInOrder)
{
    const WarpList list;
    std::vector<std::string> calls;
    const auto noting = [&](const char* name) {
        return [&calls, name](double x, double y, double*, double*) {
            calls.push_back(Join(name, x, y));
            return true;
        };
    };
    Function first = noting("first"), second = noting("second");
    ASSERT_EQ(Add(first) & Add(second), 1u);
    Bytes src(4), dst(4);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 2, 2, 2, dst.data(), 2, 1, 0, 0), 1u);
    const std::vector<std::string> wanted = {"first 0 0 ", "second 0 0 ", "first 1 0 ", "second 1 0 ",
                                             "first 0 1 ", "second 0 1 ", "first 1 1 ", "second 1 1 "};
    EXPECT_EQ(calls, wanted);
}

TEST(UserTransform, StepsBehindARefusalAreNotAsked)
{
    const WarpList list;
    int calls = 0;
    Function nowhere = Nowhere;
    Function counting = [&](double, double, double*, double*) { return ++calls > 0; };
    ASSERT_EQ(Add(nowhere) & Add(counting), 1u);
    Bytes src(4), dst(4);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 2, 2, 2, dst.data(), 2, 1, 0, 0), 1u);
    EXPECT_EQ(calls, 0);
    double unused;
    EXPECT_EQ(ZLV40_GetTransformDimensions(2, 2, &unused, &unused, &unused, &unused), 1u);
    EXPECT_EQ(calls, 4) << "the extent asks them all the same";
}

TEST(UserTransform, BothCoordinatesAreTakenEvenFromARefusal)
{
    const WarpList list;
    Function refusing = [](double x, double y, double* outX, double* outY) {
        *outX = x + 5;
        *outY = y + 7;
        return false;
    };
    ASSERT_EQ(Add(refusing), 1u);
    double minX, minY, maxX, maxY;
    EXPECT_EQ(ZLV40_GetTransformDimensions(3, 20, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(3, 7, 7, 7));
}

TEST(UserTransform, ItsOutputsHoldThePoint)
{
    const WarpList list;
    bool held = true;
    Function looking = [&](double x, double y, double* outX, double* outY) {
        held = held && *outX == x && *outY == y;
        return true;
    };
    ASSERT_EQ(Add(looking), 1u);
    ExpectListEqualsPlain({13, 7, 3}, {Stay}, 1);
    EXPECT_TRUE(held);
}

TEST(UserTransform, ItMayClearTheList)
{
    Function clearing = [](double, double, double*, double*) {
        ZLV40_ClearAllTransforms();
        return true;
    };
    Function unreached = Nowhere;
    const WarpList list;
    ASSERT_EQ(Add(clearing) & Add(unreached), 1u);
    Bytes dst(12);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
    EXPECT_EQ(dst, kRamp);
}

TEST(UserTransform, ItMayAddToTheList)
{
    Function shift = [](double x, double y, double* outX, double* outY) {
        *outX = x - 1;
        *outY = y;
        return true;
    };
    bool added = false;
    Function adding = [&](double, double, double*, double*) {
        if (!added) {
            for (int i = 0; i < 100; ++i) EXPECT_EQ(ZLV40_AddOffsetTransform(4, 3, 0, 0, 0), 1u);
            EXPECT_EQ(Add(shift), 1u);
        }
        return added = true;
    };
    const WarpList list;
    ASSERT_EQ(Add(adding), 1u);
    Bytes dst(12);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 1), 1u);
    EXPECT_EQ(dst, (Bytes{1, 0, 10, 20, 1, 40, 50, 60, 1, 80, 90, 110}));
}

TEST(UserTransform, TheProgressCallbackMayClearTheList)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_X), 1u);
    ProgressRecorder recorder;
    recorder.atReport = [] { ZLV40_ClearAllTransforms(); };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Bytes dst(12);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(dst, (Bytes{30, 0, 10, 20, 40, 50, 60, 70, 80, 90, 110, 130}));
}

TEST(UserTransform, ItMayWarpAnotherPicture)
{
    const WarpList list;
    Bytes inner(12);
    int depth = 0;
    Function warping = [&](double, double, double*, double*) {
        if (depth++ == 0) {
            EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, inner.data(), 4, 1, 0, 0), 1u);
        }
        return true;
    };
    ASSERT_EQ(Add(warping), 1u);
    Bytes dst(12);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
    EXPECT_EQ(dst, kRamp);
    EXPECT_EQ(inner, kRamp);
}

TEST(UserTransform, WithoutAFunctionItIsRefused)
{
    const WarpList list;
    EXPECT_EQ(ZLV40_AddUserTransform(4, 3, nullptr, nullptr), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
}

void GrowWithoutMemory()
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_X), 1u);
    // There is room for eight steps; the ninth takes a larger list as well.
    for (std::uint32_t steps = 1; steps < 9; ++steps) {
        for (std::uint32_t succeeding = 0; succeeding < (steps == 8 ? 2u : 1u); ++succeeding) {
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_X), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
        }
        Bytes dst(12);
        EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
        EXPECT_EQ(dst[0], kRamp[(4 - steps % 4) % 4]) << steps << " steps";
        ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_X), 1u);
    }
}

// On a thread whose list has never been larger.
TEST(WarpLists, WithoutMemoryTheyStayAsTheyWere) { std::thread(GrowWithoutMemory).join(); }

TEST(WarpLists, ClearingEmptiesThemAndClearsTheError)
{
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_X), 1u);
    EXPECT_EQ(ZLV40_AddUserTransform(4, 3, nullptr, nullptr), 0u);
    ZLV40_ClearAllTransforms();
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    Bytes dst(12);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
    EXPECT_EQ(dst, kRamp);
}

TEST(WarpLists, BelongToTheirThreads)
{
    const auto shiftOften = [](double shift, std::uint8_t wanted) {
        const WarpList list;
        ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, shift, 0, ZLV40_WRAP_X), 1u);
        for (int i = 0; i < 200; ++i) {
            Bytes dst(12);
            ASSERT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 0), 1u);
            ASSERT_EQ(dst[0], wanted);
        }
    };
    std::thread one(shiftOften, 1, 30), two(shiftOften, 2, 20);
    one.join();
    two.join();
}

TEST(TransformDimensions, TheSecondMaximumFollowsX)
{
    const WarpList list;
    double minX, minY, maxX, maxY;
    EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(0, 0, 12, 12)) << "an empty list";
    ASSERT_EQ(ZLV40_AddOffsetTransform(13, 7, 3, 2, ZLV40_WRAP_NONE), 1u);
    EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(-3, -2, 9, 9));
}

TEST(TransformDimensions, MinimaStartFromTheSizeAndMaximaFromZero)
{
    const WarpList list;
    double minX, minY, maxX, maxY;
    ASSERT_EQ(ZLV40_AddOffsetTransform(13, 7, -100, -200, ZLV40_WRAP_NONE), 1u);
    EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(13, 7, 112, 112));
    ASSERT_EQ(ZLV40_AddOffsetTransform(13, 7, 1000, 0, ZLV40_WRAP_NONE), 1u);
    EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(-900, 7, 0, 0));
    EXPECT_EQ(ZLV40_GetTransformDimensions(0, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(0, 7, 0, 0));
}

TEST(TransformDimensions, WhatIsNoNumberChangesNothing)
{
    const WarpList list;
    Function function = To(kNaN, kNaN);
    ASSERT_EQ(Add(function), 1u);
    double minX, minY, maxX, maxY;
    EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, &minX, &minY, &maxX, &maxY), 1u);
    EXPECT_EQ(Join(minX, minY, maxX, maxY), Join(13, 7, 0, 0));
}

TEST(TransformDimensions, NullPointersAreRefused)
{
    double numbers[4] = {1, 2, 3, 4};
    for (int missing = 0; missing < 4; ++missing) {
        double* pointers[4];
        for (int i = 0; i < 4; ++i) pointers[i] = i == missing ? nullptr : numbers + i;
        EXPECT_EQ(ZLV40_GetTransformDimensions(13, 7, pointers[0], pointers[1], pointers[2], pointers[3]), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    EXPECT_EQ(Join(numbers[0], numbers[1], numbers[2], numbers[3]), Join(1, 2, 3, 4));
}

}  // namespace
}  // namespace zlvtest
