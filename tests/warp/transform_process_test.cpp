// The warp list: how points go through it, sampling, progress. The client's own function stands for every warp.
#include "warp/warp_support.h"

#include "support/progress_recorder.h"
#include "support/test_hooks.h"

#include <limits>
#include <thread>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Function = std::function<bool(double x, double y, double* outX, double* outY)>;

// Calls a Function that userData points to.
std::int32_t CallFunction(double x, double y, double* outX, double* outY, void* userData)
{
    return (*static_cast<Function*>(userData))(x, y, outX, outY) ? 1 : 0;
}

std::uint32_t Add(Function& function) { return ZLV40_AddUserTransform(0, 0, CallFunction, &function); }

// A function that sends everything to one place.
Function To(double x, double y)
{
    return [=](double, double, double* outX, double* outY) {
        *outX = x;
        *outY = y;
        return true;
    };
}

bool Nowhere(double, double, double*, double*) { return false; }
bool Stay(double, double, double*, double*) { return true; }

// One pixel of a gray picture of 4 x 3 that is read at (x, y).
std::uint32_t Sampled(double x, double y, std::uint32_t flags, const Bytes& src, std::uint32_t background = 100)
{
    const WarpList list;
    Function function = To(x, y);
    EXPECT_EQ(Add(function), 1u);
    Bytes dst(12, 7);
    EXPECT_EQ(ZLV40_TransformProcess(src.data(), 4, 3, 4, dst.data(), 4, 1, flags, background), 1u);
    EXPECT_EQ(dst, Bytes(12, dst[0]));
    return dst[0];
}

const Bytes kRamp = {0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 110, 130};

TEST(TransformProcess, AnEmptyListIsTheIdentity)
{
    OnEveryTarget([] {
        const WarpList list;
        for (const WarpImage& image : kWarpImages) {
            for (std::uint32_t flags = 0; flags < 16; ++flags) ExpectListEqualsPlain(image, {}, flags);
        }
    });
}

TEST(TransformProcess, AnEmptyListCopiesWithEverySampling)
{
    OnEveryTarget([] {
        const WarpList list;
        const Bytes src = RandomBytes(13 * 7 * 3, 1);
        for (const std::uint32_t flags : {0u, 1u, 2u, 4u, 8u}) {
            Bytes dst(src.size());
            EXPECT_EQ(ZLV40_TransformProcess(src.data(), 13, 7, 39, dst.data(), 39, 3, flags, 0xFFFFFFFFu), 1u);
            EXPECT_EQ(dst, src);
        }
    });
}

// The way of one point at a time: the last column and row have nothing to their right and below.
TEST(TransformProcess, SampledIdentityEqualsTheSource)
{
    OnEveryTarget([] {
        const WarpList list;
        // Not at home when it is mapped, and back there after the second step.
        Function away = [](double x, double y, double* outX, double* outY) {
            *outX = x + 0.5;
            *outY = y;
            return true;
        };
        Function back = [](double x, double y, double* outX, double* outY) {
            *outX = x - 0.5;
            *outY = y;
            return true;
        };
        ASSERT_EQ(Add(away) & Add(back), 1u);
        const Bytes src = RandomBytes(13 * 7 * 3, 1);
        for (const std::uint32_t flags : {0u, 1u, 2u}) {
            Bytes dst(src.size());
            EXPECT_EQ(ZLV40_TransformProcess(src.data(), 13, 7, 39, dst.data(), 39, 3, flags, 0xFFFFFFFFu), 1u);
            EXPECT_EQ(dst, src);
        }
    });
}

// Many places around every pixel and beyond all edges, with every sampling.
TEST(TransformProcess, EveryTargetEqualsPlainAtPlacesEverywhere)
{
    OnEveryTarget([] {
        for (const WarpImage& image : kWarpImages) {
            Function function = [&](double x, double y, double* outX, double* outY) {
                Random random(std::uint64_t(x) * 1000 + std::uint64_t(y));
                *outX = (random.Below(4000) / 1000.0 - 1.5) * image.width + random.Below(3) * 1e-12;
                *outY = (random.Below(4000) / 1000.0 - 1.5) * image.height;
                if (random.Below(3) == 0) *outX = std::floor(*outX);
                if (random.Below(3) == 0) *outY = std::floor(*outY);
                if (random.Below(3) == 0) *outX = x;
                if (random.Below(3) == 0) *outY = y;
                return random.Below(8) != 0;
            };
            const WarpList list;
            ASSERT_EQ(Add(function), 1u);
            for (std::uint32_t flags = 0; flags < 16; ++flags) ExpectListEqualsPlain(image, {function}, flags);
        }
    });
}

TEST(TransformProcess, NearestRoundsUpAnyFraction)
{
    OnEveryTarget([] {
        const struct {
            double x, y;
            std::uint32_t wanted;
            const char* why;
        } rows[] = {
            {1, 1, 50, "a pixel selects itself"},
            {1.0000000002, 1, 60, "a fraction above 1e-10 selects the next one"},
            {1.00000000005, 1, 50, "a smaller one does not"},
            {1, 1.3, 90, "downwards as well"},
            {4, 1, 70, "the width itself is inside: the last column"},
            {4.001, 1, 100, "what lies behind it is not"},
            {1, 3, 90, "the height itself is inside: the last row"},
            {1, 3.001, 100, "what lies below it is not"},
            {-1e-300, 1, 100, "no width of a margin on the left"},
            {1, -1e-300, 100, "nor above"},
            {-0.0, -0.0, 0, "a negative zero is inside"},
        };
        for (const auto& row : rows) {
            SCOPE(row.why);
            EXPECT_EQ(Sampled(row.x, row.y, 0, kRamp), row.wanted);
        }
    });
}

TEST(TransformProcess, BilinearFadesIntoTheFillOverOnePixel)
{
    OnEveryTarget([] {
        const struct {
            double x, y;
            std::uint32_t wanted;
            const char* why;
        } rows[] = {
            {1.5, 1, 55, "half and half"},
            {1.25, 0.5, 32, "12.5 and 52.5: 32.5 is truncated"},
            {-0.5, 1, 70, "the first column and the fill: (40 + 100) / 2"},
            {3.5, 1, 85, "the last column and the fill: (70 + 100) / 2"},
            {3, 2, 130, "the last pixel alone"},
            {1, -0.25, 32, "the first row and the fill: 10 * 3/4 + 100 / 4 = 32.5"},
            {1, 2.75, 97, "the last row and the fill: 90 / 4 + 100 * 3/4 = 97.5"},
            {-1, 1, 100, "a pixel away is outside"},
            {4, 1, 100, "on the other side, too"},
        };
        for (const auto& row : rows) {
            SCOPE(row.why);
            EXPECT_EQ(Sampled(row.x, row.y, 1, kRamp), row.wanted);
        }
    });
}

TEST(TransformProcess, BicubicTakesTheFillForTapsOutside)
{
    OnEveryTarget([] {
        // Rows all alike, so that only x matters in the middle row; half way the weights are -1/8, 5/8, 5/8, -1/8.
        const Bytes src = {0, 80, 160, 240, 0, 80, 160, 240, 0, 80, 160, 240};
        EXPECT_EQ(Sampled(1.5, 1, 2, src), 120u);
        // (fill * -1 + 0 * 5 + 80 * 5 - 160) / 8 with fill 100, rounded: 17.5 + 0.5.
        EXPECT_EQ(Sampled(0.5, 1, 2, src), 18u);
        // (160 * -1 + 240 * 5 + 100 * 5 - 100) / 8 = 180.
        EXPECT_EQ(Sampled(3.5, 1, 2, src), 180u);
        EXPECT_EQ(Sampled(-3, 1, 2, src), 100u);
    });
}

TEST(TransformProcess, BicubicIsLimited)
{
    const Bytes src = {255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255};
    const Bytes inverse = {0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0};
    OnEveryTarget([&] {
        EXPECT_EQ(Sampled(1.5, 1, 2, src), 0u);
        EXPECT_EQ(Sampled(1.5, 1, 2, inverse), 255u);
    });
}

// 2 - 2^-52 + 1 is 3 after rounding: the third tap would stand behind the picture.
TEST(TransformProcess, ATapThatRoundingPutsBehindTheEdgeIsOutside)
{
    OnEveryTarget([] {
        for (const std::uint32_t size : {1u, 2u, 3u, 4u, 5u}) {
            for (double place = -2; place <= size + 1; ++place) {
                for (const double aside : {-1.0, 1.0}) {
                    const double at = std::nextafter(place, aside * 1e9);
                    SCOPE(size, at);
                    Function across = To(at, 0), down = To(0, at);
                    for (Function* const function : {&across, &down}) {
                        const WarpList list;
                        ASSERT_EQ(Add(*function), 1u);
                        for (const std::uint32_t flags : {0u, 1u, 2u}) {
                            ExpectListEqualsPlain({size, size, 3}, {*function}, flags);
                        }
                    }
                }
            }
        }
    });
}

TEST(TransformProcess, CoordinatesThatAreNoNumbersAreOutside)
{
    OnEveryTarget([] {
        for (const std::uint32_t flags : {0u, 1u, 2u, 8u, 9u, 10u}) {
            SCOPE(flags);
            EXPECT_EQ(Sampled(kNaN, 1, flags, kRamp), 100u);
            EXPECT_EQ(Sampled(1, kNaN, flags, kRamp), 100u);
            EXPECT_EQ(Sampled(kNaN, kInfinity, flags, kRamp), 100u);
        }
    });
}

TEST(TransformProcess, InfiniteCoordinatesAreOutsideOrClamped)
{
    OnEveryTarget([] {
        for (const double far : {kInfinity, 1e300, 1e18, 1e10}) {
            for (const std::uint32_t sampling : {0u, 1u, 2u}) {
                SCOPE(far, sampling);
                EXPECT_EQ(Sampled(far, 1, sampling, kRamp), 100u);
                EXPECT_EQ(Sampled(-far, 1, sampling, kRamp), 100u);
                EXPECT_EQ(Sampled(1, far, sampling, kRamp), 100u);
                EXPECT_EQ(Sampled(1, -far, sampling, kRamp), 100u);
            }
            for (const std::uint32_t sampling : {0u, 1u}) {
                EXPECT_EQ(Sampled(far, 1, sampling | 8, kRamp), 70u);
                EXPECT_EQ(Sampled(-far, 1, sampling | 8, kRamp), 40u);
                EXPECT_EQ(Sampled(1, far, sampling | 8, kRamp), 90u);
                EXPECT_EQ(Sampled(1, -far, sampling | 8, kRamp), 10u);
            }
        }
    });
}

TEST(TransformProcess, ClampingDoesNotRepairWhatAWarpCallsOutside)
{
    OnEveryTarget([] {
        const WarpList list;
        Function nowhere = Nowhere;
        ASSERT_EQ(Add(nowhere), 1u);
        for (const std::uint32_t sampling : {0u, 1u, 2u}) {
            Bytes dst(12, 7);
            EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, sampling | 8, 100), 1u);
            EXPECT_EQ(dst, Bytes(12, 100));
        }
    });
}

TEST(TransformProcess, WhatIsOutsideMayKeepTheDestination)
{
    OnEveryTarget([] {
        const WarpList list;
        Function nowhere = Nowhere;
        ASSERT_EQ(Add(nowhere), 1u);
        for (const std::uint32_t sampling : {0u, 1u, 2u}) {
            const Bytes before = RandomBytes(12, 5);
            Bytes dst = before;
            EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, sampling | 4, 100), 1u);
            EXPECT_EQ(dst, before);
        }
    });
}

TEST(TransformProcess, TheBackgroundIsFourBytesAndThenZero)
{
    const WarpList list;
    Function nowhere = Nowhere;
    ASSERT_EQ(Add(nowhere), 1u);
    for (const std::uint32_t sampling : {0u, 2u}) {
        Bytes dst(6 * 2, 9);
        const Bytes src(6 * 2, 1);
        EXPECT_EQ(ZLV40_TransformProcess(src.data(), 2, 1, 12, dst.data(), 12, 6, sampling, 0x04030201), 1u);
        EXPECT_EQ(dst, (Bytes{1, 2, 3, 4, 0, 0, 1, 2, 3, 4, 0, 0}));
    }
}

TEST(TransformProcess, NoSamplingWritesNothingAndReports)
{
    const WarpList list;
    int calls = 0;
    Function counting = [&](double, double, double*, double*) { return ++calls > 0; };
    ASSERT_EQ(Add(counting), 1u);
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Bytes dst(12, 7);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 3, 100), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(dst, Bytes(12, 7));
    EXPECT_EQ(calls, 12);
    EXPECT_EQ(recorder.reports, Rows(3, 3));
}

TEST(TransformProcess, PixelsWithoutChannelsWriteNothing)
{
    Bytes dst(12, 7);
    EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 0, 0, 100), 1u);
    EXPECT_EQ(dst, Bytes(12, 7));
}

TEST(TransformProcess, BadArgumentsAreRefused)
{
    Bytes dst(12, 7);
    const struct {
        const std::uint8_t* src;
        std::uint8_t* dst;
        std::int32_t channels;
    } rows[] = {{nullptr, dst.data(), 1},
                {kRamp.data(), nullptr, 1},
                {kRamp.data(), dst.data(), -1},
                {kRamp.data(), dst.data(), INT32_MIN}};
    for (const auto& row : rows) {
        EXPECT_EQ(ZLV40_TransformProcess(row.src, 4, 3, 4, row.dst, 4, row.channels, 0, 100), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    EXPECT_EQ(dst, Bytes(12, 7));
}

TEST(TransformProcess, EveryRowIsReportedAndMayCancel)
{
    const WarpList list;
    ASSERT_EQ(ZLV40_AddOffsetTransform(4, 3, 1, 0, ZLV40_WRAP_BOTH), 1u);
    for (std::size_t at = 1; at <= 3; ++at) {
        ProgressRecorder recorder;
        recorder.cancelAt = at;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(12, 7);
        EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 100), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_CANCELLED));
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(std::uint32_t(at), 3));
        const Bytes whole = {30, 0, 10, 20, 70, 40, 50, 60, 130, 80, 90, 110};
        Bytes wanted(12, 7);
        std::copy_n(whole.begin(), at * 4, wanted.begin());
        EXPECT_EQ(dst, wanted);
        // The list is still there.
        EXPECT_EQ(ZLV40_TransformProcess(kRamp.data(), 4, 3, 4, dst.data(), 4, 1, 0, 100), 1u);
        EXPECT_EQ(dst, whole);
    }
}

TEST(TransformProcess, EmptyPicturesReportTheirRows)
{
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    std::uint8_t byte = 7;
    EXPECT_EQ(ZLV40_TransformProcess(&byte, 0, 2, 0, &byte, 0, 3, 0, 0), 1u);
    EXPECT_EQ(recorder.reports, Rows(2, 2));
    EXPECT_EQ(ZLV40_TransformProcess(&byte, 2, 0, 6, &byte, 6, 3, 0, 0), 1u);
    EXPECT_EQ(recorder.reports, Rows(2, 2));
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(byte, 7);
}

// ---- The order of the walk --------------------------------------------------------------------------------------

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

// ---- The list and its extent ------------------------------------------------------------------------------------

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
