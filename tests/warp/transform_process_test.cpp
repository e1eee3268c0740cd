// A picture through the warp list: sampling, what is outside, progress. A function of the client stands for every warp.
#include "warp/user_function.h"

#include "support/progress_recorder.h"

#include <chrono>
#include <limits>

namespace zlvtest {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

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

// There may be any number of them in no memory. (With somebody listening, billions of reports would take their time.)
TEST(TransformProcess, PixelsThatNobodySeesTakeNoTime)
{
    constexpr std::uint32_t kMany = 0xFFFFFFFFu;
    const struct {
        const char* shows;
        std::uint32_t width;
        std::int32_t channels;
        std::uint32_t flags;
    } rows[] = {
        {"rows without pixels", 0, 1, 0},
        {"pixels without channels", 4, 0, 0},
        {"pixels that are not sampled", 4, 1, 3},
        {"long rows without channels", kMany, 0, 0},
        {"long rows that are not sampled", kMany, 1, 3},
    };
    const WarpList list;
    ASSERT_EQ(ZLV40_AddSpinTransform(4, 3, 2, 90, 0, 0), 1u);
    Bytes dst(12, 7);
    const auto began = std::chrono::steady_clock::now();
    for (const auto& row : rows) {
        SCOPE(row.shows);
        EXPECT_EQ(
            ZLV40_TransformProcess(kRamp.data(), row.width, kMany, 4, dst.data(), 4, row.channels, row.flags, 100), 1u);
        EXPECT_EQ(dst, Bytes(12, 7));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(5));
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

}  // namespace
}  // namespace zlvtest
