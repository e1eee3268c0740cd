#include "filters/bilateral_average.h"
#include "plain/plain_bilateral.h"
#include "runtime/base_call.h"
#include "runtime/math.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <limits>
#include <thread>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::BaseWatch;
using zlvtest::Bytes;
using zlvtest::FailingCalls;
using zlvtest::ProgressRecorder;
using zlvtest::Report;

constexpr PlainBilateralMath kMath = {Exp, Cos};
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();
constexpr u32 kSquare = 0, kSeparable = ZLV40_SEPARABLE, kThreads = ZLV40_WORKER_THREADS;

struct Shape {
    u32 width, height, channels = 1, srcPadding = 0, dstPadding = 0;

    u32 SrcStride() const { return width * channels + srcPadding; }
    u32 DstStride() const { return width * channels + dstPadding; }
};

struct Filter {
    u32 size, kind;
    f64 sigma;
    u32 flags;
};

enum class Content { Noise, FewLevels, Extremes, Steps };

Bytes Picture(size_t count, Content content, u64 seed)
{
    zlvtest::Random random(seed);
    Bytes bytes(count);
    u8 level = 100;
    for (u8& byte : bytes) {
        switch (content) {
        case Content::Noise: byte = random.Byte(); break;
        case Content::FewLevels: byte = u8(random.Below(12)); break;
        case Content::Extremes: byte = random.Below(2) ? u8(255) : u8(0); break;
        case Content::Steps: byte = level = random.Below(9) ? level : random.Byte(); break;
        }
    }
    return bytes;
}

u32 Smooth(const Shape& shape, const u8* src, u8* dst, const Filter& filter)
{
    return ZLV40_BilateralFilterImage(src, shape.width, shape.height, shape.SrcStride(), shape.channels, dst,
                                      shape.DstStride(), filter.size, filter.kind, filter.sigma, filter.flags);
}

PlainBilateral Plain(const Shape& shape, const u8* src, u8* dst, const Filter& filter)
{
    return {{src, int(shape.width), int(shape.height), shape.SrcStride(), int(shape.channels), dst, shape.DstStride(),
             int(filter.size), filter.kind, filter.sigma, filter.flags},
            kMath};
}

void ExpectPlain(const Shape& shape, Content content, const Filter& filter)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "size", filter.size, "kind", filter.kind, "sigma",
          filter.sigma, "flags", filter.flags, "content", int(content));
    const Bytes src = Picture(size_t(shape.SrcStride()) * shape.height, content, shape.width + filter.size);
    Bytes wanted = zlvtest::RandomBytes(size_t(shape.DstStride()) * shape.height, 9), got = wanted;
    Plain(shape, src.data(), wanted.data(), filter).Run([](u32, u32) { return true; });
    EXPECT_EQ(Smooth(shape, src.data(), got.data(), filter), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(Bilateral, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 flags : {kSquare, kSeparable}) {
            for (const u32 kind : {0u, 1u, 2u, 3u, 4u, 0xFFFFFFFFu}) {
                for (const f64 sigma : {0.4, 3.0, 21.7, 400.0}) {
                    for (const u32 size : {1u, 2u, 5u, 12u}) {
                        const Content content = Content((size + kind) % 4);
                        ExpectPlain({37, 19, 1, 2, 3}, content, {size, kind, sigma, 1 | flags});
                    }
                }
            }
        }
    });
}

// Around whole groups of pixels, where the sides of the image fall on every place of them.
TEST(Bilateral, EveryWidthEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 width = 3; width <= 150; ++width) {
            for (const u32 flags : {kSquare, kSeparable})
                ExpectPlain({width, 4}, Content::Noise, {3, 0, 30, 1 | flags});
        }
        for (const u32 width : {63u, 64u, 65u, 127u, 128u, 129u, 193u}) {
            ExpectPlain({width, 63}, Content::Steps, {61, 0, 30, 1 | kSeparable});
        }
    });
}

TEST(Bilateral, EveryHeightEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 height = 7; height <= 40; ++height) {
            for (const u32 flags : {kSquare, kSeparable})
                ExpectPlain({9, height}, Content::Noise, {7, 0, 40, 1 | flags});
        }
    });
}

TEST(Bilateral, EveryChannelCountAndMaskEqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu}) {
            for (const u32 flags : {kSquare, kSeparable, kThreads, kThreads | kSeparable}) {
                ExpectPlain({11, 8, channels, 3, 1}, Content::Noise, {5, 0, 25, mask | flags});
            }
        }
    }
}

// Large windows, where errors of single precision add up most.
TEST(Bilateral, LargeWindowsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const Content content : {Content::Noise, Content::Extremes, Content::FewLevels}) {
            for (const u32 kind : {0u, 2u, 3u}) {
                ExpectPlain({47, 46}, content, {45, kind, 300, 1});
                ExpectPlain({151, 150}, content, {149, kind, 300, 1 | kSeparable});
            }
        }
    });
}

// With equal weights and small levels, averages stand exactly between two levels again and again: there the order and
// the precision of the sums decide.
TEST(Bilateral, AveragesBetweenTwoLevelsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const f64 sigma : {20.0, 300.0, 0.1 * 7000}) {
            for (const u32 size : {3u, 5u, 7u, 9u}) {
                for (const u32 flags : {kSquare, kSeparable}) {
                    ExpectPlain({200, 30}, Content::FewLevels, {size, 3, sigma, 1 | flags});
                    ExpectPlain({200, 30}, Content::FewLevels, {size, 0, 1e6, 1 | flags});
                }
            }
        }
    });
}

// Weights that single precision does not hold: all in double precision.
TEST(Bilateral, SigmasOfAnySizeEqualPlain)
{
    for (const f64 sigma : {1e-100, 1e-3, 1e100, 1e155, 1e160, 1e200, 1e308, kInfinity, -0.5, -30.0}) {
        for (const u32 kind : {0u, 1u, 2u, 3u}) {
            const bool isSmallBox = kind == 3 && sigma > 0 && sigma < 1e-50;
            for (const u32 flags : {kSquare, kSeparable}) {
                if (!isSmallBox) ExpectPlain({20, 9}, Content::Noise, {5, kind, sigma, 1 | flags});
            }
        }
    }
}

TEST(Bilateral, AWindowOfOneKeepsTheSource)
{
    const Bytes src = zlvtest::RandomBytes(70 * 3, 1);
    for (const u32 flags : {kSquare, kSeparable}) {
        for (const u32 kind : {0u, 1u, 2u, 3u}) {
            SCOPE(flags, kind);
            Bytes dst(src.size());
            EXPECT_EQ(Smooth({70, 3}, src.data(), dst.data(), {1, kind, 2.5, 1 | flags}), 1u);
            EXPECT_EQ(dst, src);
        }
    }
}

TEST(Bilateral, WithoutAnyWeightTheSourceStays)
{
    const Bytes src = zlvtest::RandomBytes(70 * 9, 2);
    for (const u32 flags : {kSquare, kSeparable}) {
        // A negative sigma has nothing in its reach, half a pixel only the sample itself, an infinite box weighs
        // nothing.
        for (const Filter& filter :
             {Filter{5, 1, -1, 1 | flags}, Filter{5, 2, -3, 1 | flags}, Filter{5, 3, -1, 1 | flags},
              Filter{5, 1, 0.5, 1 | flags}, Filter{5, 3, kInfinity, 1 | flags}}) {
            SCOPE(filter.kind, filter.sigma, filter.flags);
            Bytes dst(src.size());
            EXPECT_EQ(Smooth({70, 9}, src.data(), dst.data(), filter), 1u);
            EXPECT_EQ(dst, src);
        }
    }
}

// A window of 3 has two rows and two columns: those of the sample, and those before it. With equal weights the sample
// counts 20 times: 230 / (20 + 3) = 10.
TEST(Bilateral, TheSquareWindowLacksItsLastRowAndColumn)
{
    Bytes src(25, 0), dst(25, 77);
    src[2 * 5 + 2] = 230;
    EXPECT_EQ(Smooth({5, 5}, src.data(), dst.data(), {3, 3, 300, 1}), 1u);
    Bytes wanted(25, 0);
    wanted[2 * 5 + 2] = 200;  // 20 * 230 / 23
    wanted[2 * 5 + 3] = wanted[3 * 5 + 2] = wanted[3 * 5 + 3] = 10;
    EXPECT_EQ(dst, wanted);
}

// Here the window has all three: 220 / (20 + 2) = 10 beside it, 20 * 220 / 22 = 200 in its place; and again downwards:
// 10 / 22 rounds to 0 beside a 10, 200 / 22 to 9.
TEST(Bilateral, TheSeparableWindowIsWhole)
{
    Bytes src(25, 0), dst(25, 77);
    src[2 * 5 + 2] = 220;
    EXPECT_EQ(Smooth({5, 5}, src.data(), dst.data(), {3, 3, 300, 1 | kSeparable}), 1u);
    const Bytes wanted = {
        0, 0, 0,   0, 0,  //
        0, 0, 9,   0, 0,  //
        0, 9, 182, 9, 0,  // 20 * 10 / 22, 20 * 200 / 22
        0, 0, 9,   0, 0,  //
        0, 0, 0,   0, 0,
    };
    EXPECT_EQ(dst, wanted);
}

struct SizeRow {
    const char* shows;
    u32 width, height, size, result;
};
constexpr SizeRow kSizes[] = {
    {"a window as large as the image", 5, 5, 5, 1},
    {"an even window that grows to the image's size", 5, 5, 4, 1},
    {"a window wider than the image", 4, 9, 5, 0},
    {"a window higher than the image", 9, 4, 5, 0},
    {"an even window that grows beyond the image", 4, 4, 4, 0},
    {"the largest number", 9, 9, 0xFFFFFFFF, 0},
    {"the largest even number", 9, 9, 0xFFFFFFFE, 0},
};

TEST(Bilateral, AWindowLargerThanTheImageIsRefused)
{
    for (const SizeRow& row : kSizes) {
        for (const u32 flags : {kSquare, kSeparable, kThreads, kThreads | kSeparable}) {
            SCOPE(row.shows, flags);
            const Bytes src = zlvtest::RandomBytes(81, 3), before = zlvtest::RandomBytes(81, 4);
            Bytes dst = before;
            EXPECT_EQ(Smooth({row.width, row.height}, src.data(), dst.data(), {row.size, 0, 20, 1 | flags}),
                      row.result);
            EXPECT_EQ(ZLV40_GetLastError(), row.result ? 0u : u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(dst == before, row.result == 0);
        }
    }
}

struct ArgumentRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 9, height = 9, srcStride = 9, channels = 1, dstStride = 9, size = 3, kind = 0;
    f64 sigma = 20;
};
const ArgumentRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "no window", .size = 0},
    {.shows = "a sigma of 0", .sigma = 0.0},
    {.shows = "a sigma of -0", .sigma = -0.0},
    {.shows = "no destination", .hasDst = false},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "a sigma that is no number", .sigma = kNan},
    {.shows = "nor for weights of limited reach", .kind = 1, .sigma = kNan},
    {.shows = "a sigma whose square is 0", .sigma = 1e-200},
    {.shows = "a sigma whose inverse is infinite", .kind = 3, .sigma = 1e-310},
    {.shows = "a sigma whose weights overflow when multiplied", .kind = 3, .sigma = 1e-160},
};

TEST(Bilateral, RefusesWithNothingWritten)
{
    for (const ArgumentRow& row : kRefused) {
        for (const u32 flags : {kSquare, kSeparable, kThreads, kThreads | kSeparable}) {
            SCOPE(row.shows, flags);
            const Bytes src = zlvtest::RandomBytes(81, 3), before = zlvtest::RandomBytes(81, 4);
            Bytes dst = before;
            EXPECT_EQ(ZLV40_BilateralFilterImage(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                 row.srcStride, row.channels, row.hasDst ? dst.data() : nullptr,
                                                 row.dstStride, row.size, row.kind, row.sigma, 1 | flags),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(dst, before);
        }
    }
    u8 sample = 7;
    EXPECT_EQ(ZLV40_BilateralFilterImage(&sample, 1, 1, 1, 1, &sample, 1, 1, 0, 1, 1), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u) << "a success clears the code";
}

// Rows of a larger picture, filtered as if they were the whole of it.
TEST(Bilateral, RowsAboveAndBelowAreRead)
{
    constexpr u32 kWidth = 33, kRows = 30, kFirst = 10, kCount = 8;
    constexpr Filter kFilter = {9, 0, 25, 1};
    const Bytes picture = zlvtest::RandomBytes(kWidth * kRows, 5);
    Bytes whole(picture.size());
    EXPECT_EQ(Smooth({kWidth, kRows}, picture.data(), whole.data(), kFilter), 1u);
    zlvtest::OnEveryTarget([&] {
        for (const u32 outside :
             {0u, u32(ZLV40_ROWS_ABOVE), u32(ZLV40_ROWS_BELOW), u32(ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW)}) {
            SCOPE(outside);
            Filter filter = kFilter;
            filter.flags |= outside;
            Bytes wanted(kWidth * kCount), got(kWidth * kCount);
            // The window is 9 high: a part of 9 rows can have it.
            const Shape part = {kWidth, kCount + 1};
            wanted.resize(kWidth * (kCount + 1));
            got.resize(wanted.size());
            const u8* const src = picture.data() + kFirst * kWidth;
            Plain(part, src, wanted.data(), filter).Run([](u32, u32) { return true; });
            EXPECT_EQ(Smooth(part, src, got.data(), filter), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
            const bool isWhole = outside == (ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW);
            EXPECT_EQ(zlvtest::Difference(&whole[kFirst * kWidth], got.data(), got.size()).empty(), isWhole);
        }
    });
}

// 9 rows of a buffer that begins and ends with them: neither form reads the rows that the flags promise.
TEST(Bilateral, OnlyTheSquareFormWithoutThreadsLooksForRowsOutside)
{
    const u32 outside = ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW;
    for (const u32 flags : {kSeparable, kThreads, kThreads | kSeparable}) {
        SCOPE(flags);
        const Shape shape = {30, 9};
        zlvtest::GuardedBuffer src(30 * 9, zlvtest::Flush::ToStart);
        const Bytes bytes = zlvtest::RandomBytes(30 * 9, 8);
        std::copy(bytes.begin(), bytes.end(), src.Data());
        Bytes wanted(30 * 9), got(30 * 9);
        EXPECT_EQ(Smooth(shape, src.Data(), wanted.data(), {9, 0, 25, 1 | flags}), 1u);
        EXPECT_EQ(Smooth(shape, src.Data(), got.data(), {9, 0, 25, 1 | flags | outside}), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(Bilateral, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 flags : {kSquare, kSeparable, kThreads}) {
                const Shape shape = {70, 9, 3, 4, 2};
                zlvtest::GuardedBuffer src(shape.SrcStride() * 8 + 210, flush, 50);
                zlvtest::GuardedBuffer dst(shape.DstStride() * 8 + 210, flush, 0x5A);
                EXPECT_EQ(Smooth(shape, src.Data(), dst.Data(), {9, 0, 20, 7 | flags}), 1u);
                for (size_t i = 0; i < dst.Size(); ++i) {
                    ASSERT_EQ(dst.Data()[i], i % shape.DstStride() < 210 ? 50 : 0x5A) << i;
                }
            }
        }
    });
}

TEST(Bilateral, TheDestinationMayBeTheSource)
{
    const Shape shape = {80, 30, 3, 1, 1};
    const Bytes src = zlvtest::RandomBytes(size_t(shape.SrcStride()) * shape.height, 6);
    for (const u32 flags : {kSquare, kSeparable, kThreads, kThreads | kSeparable}) {
        SCOPE(flags);
        Bytes wanted = src, got = src;
        EXPECT_EQ(Smooth(shape, src.data(), wanted.data(), {7, 0, 30, 7 | flags}), 1u);
        EXPECT_EQ(Smooth(shape, got.data(), got.data(), {7, 0, 30, 7 | flags}), 1u);
        EXPECT_EQ(got, wanted);
    }
}

// ---- Progress -----------------------------------------------------------------------------------------------------

TEST(Bilateral, ReportsRowsForEachChannelOrChannels)
{
    const Shape shape = {9, 5, 3};
    const Bytes src = zlvtest::RandomBytes(135, 7);
    const struct {
        u32 flags;
        std::vector<Report> reports;
    } rows[] = {
        {2 | 4 | kSquare, {{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}}},
        {1 | 4 | kSeparable, {{0, 3}, {2, 3}}},
        {7 | kThreads, {}},
        {7 | kThreads | kSeparable, {}},
        {0, {}},
    };
    for (const auto& row : rows) {
        SCOPE(row.flags);
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst = src;
        EXPECT_EQ(Smooth(shape, src.data(), dst.data(), {3, 0, 20, row.flags}), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, row.reports);
    }
}

TEST(Bilateral, ACancelAtAnyReportKeepsWhatIsDone)
{
    const Shape shape = {20, 6, 2};
    const Bytes src = zlvtest::RandomBytes(240, 7);
    for (const u32 flags : {kSquare, kSeparable}) {
        for (size_t at = 1; at <= (flags ? 2u : 12u); ++at) {
            SCOPE(flags, at);
            const Filter filter = {5, 0, 20, 3 | flags};
            Bytes wanted(240, 1), got(240, 1);
            size_t plainReports = 0;
            EXPECT_FALSE(
                Plain(shape, src.data(), wanted.data(), filter).Run([&](u32, u32) { return ++plainReports != at; }));
            ProgressRecorder recorder;
            recorder.cancelAt = at;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(Smooth(shape, src.data(), got.data(), filter), 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(recorder.reports.size(), at);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(Bilateral, LeavesCountersAndBaseCallbackAsTheyWere)
{
    BaseWatch base;
    const Bytes src = zlvtest::RandomBytes(81, 7);
    for (const u32 flags : {kSquare, kSeparable, kThreads}) {
        for (const u32 size : {3u, 10u}) {
            Bytes dst(81);
            Smooth({9, 9}, src.data(), dst.data(), {size, 0, 20, 1 | flags});
            base.ExpectUntouched();
        }
    }
}

// ---- Threads ------------------------------------------------------------------------------------------------------

TEST(Bilateral, ThreeThreadsLeaveTheFourthChannelAlone)
{
    const Shape shape = {40, 20, 4};
    const Bytes src = zlvtest::RandomBytes(3200, 7), before = zlvtest::RandomBytes(3200, 8);
    for (const u32 form : {kSquare, kSeparable}) {
        Bytes wanted = before, got = before;
        EXPECT_EQ(Smooth(shape, src.data(), wanted.data(), {5, 0, 20, 7 | form}), 1u);
        EXPECT_EQ(Smooth(shape, src.data(), got.data(), {5, 0, 20, 7 | form | kThreads}), 1u);
        EXPECT_EQ(got, wanted);
        for (size_t i = 3; i < got.size(); i += 4) ASSERT_EQ(got[i], before[i]);
    }
}

TEST(Bilateral, AThreadThatCannotStartLeavesEverythingAndSucceeds)
{
    const Bytes src = zlvtest::RandomBytes(300, 7), before = zlvtest::RandomBytes(300, 8);
    for (u32 succeeding = 0; succeeding <= 3; ++succeeding) {
        SCOPE(succeeding);
        Bytes dst = before;
        const FailingCalls failing(FailingCalls::Of::StartThread, succeeding);
        EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, 7 | kThreads}), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(failing.Failed(), succeeding < 3 ? 1u : 0u) << "one thread a channel";
        EXPECT_EQ(dst == before, succeeding < 3);
    }
}

TEST(Bilateral, ThreadsWithoutAChannelAreNothingToDo)
{
    const Bytes src = zlvtest::RandomBytes(300, 7), before = zlvtest::RandomBytes(300, 8);
    Bytes dst = before;
    const FailingCalls failing(FailingCalls::Of::StartThread, 0);
    EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, kThreads}), 1u);
    EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, kThreads | 8 | 128}), 1u) << "channels it has not";
    EXPECT_EQ(failing.Failed(), 0u);
    EXPECT_EQ(dst, before);
}

TEST(Bilateral, ManyClientsStartThreadsAtOnce)
{
    const Bytes src = zlvtest::RandomBytes(40 * 20 * 3, 7);
    Bytes wanted(src.size());
    EXPECT_EQ(Smooth({40, 20, 3}, src.data(), wanted.data(), {5, 0, 20, 7}), 1u);
    std::vector<Bytes> got(4, Bytes(src.size()));
    std::vector<std::thread> clients;
    for (Bytes& dst : got) {
        clients.emplace_back([&] {
            for (int i = 0; i < 10; ++i) Smooth({40, 20, 3}, src.data(), dst.data(), {5, 0, 20, 7 | kThreads});
        });
    }
    for (std::thread& client : clients) client.join();
    for (const Bytes& dst : got) EXPECT_EQ(dst, wanted);
}

// ---- Memory -------------------------------------------------------------------------------------------------------

TEST(Bilateral, EveryFailedAllocationIsCodeOne)
{
    const Bytes src = zlvtest::RandomBytes(81, 7), before = zlvtest::RandomBytes(81, 8);
    for (const u32 flags : {kSquare, kSeparable}) {
        ZLV40_GetLastError();  // makes the thread's records
        for (u32 succeeding = 0;; ++succeeding) {
            SCOPE(flags, succeeding);
            ASSERT_LT(succeeding, 50u);
            Bytes dst = before;
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            const u32 result = Smooth({9, 9}, src.data(), dst.data(), {3, 0, 20, 1 | flags});
            EXPECT_EQ(result, failing.Failed() ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), failing.Failed() ? u32(ZLV40_ERROR_OUT_OF_MEMORY) : 0u);
            if (!failing.Failed()) break;
            EXPECT_EQ(dst, before);
        }
    }
}

TEST(Bilateral, NoMemoryForTheRecordsOfThreadsIsCodeOne)
{
    const Bytes src = zlvtest::RandomBytes(81, 7), before = zlvtest::RandomBytes(81, 8);
    Bytes dst = before;
    ZLV40_GetLastError();
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(Smooth({9, 9}, src.data(), dst.data(), {3, 0, 20, 1 | kThreads}), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(dst, before);
}

// ---- The weights --------------------------------------------------------------------------------------------------

const struct {
    const char* shows;
    u32 kind;
    f64 distance, sigma, wanted;
} kWeights[] = {
    {"linear in the middle", kLinearWeights, 0, 4, 1},
    {"linear on the way", kLinearWeights, 1, 4, 0.75},
    {"linear at sigma", kLinearWeights, 4, 4, 0},
    {"linear beyond", kLinearWeights, 4.5, 4, 0},
    {"cosine in the middle", kCosineWeights, 0, 4, 1},
    {"cosine at sigma", kCosineWeights, 4, 4, 6.123233995736766e-17},
    {"cosine beyond", kCosineWeights, 4.5, 4, 0},
    {"box in the middle", kBoxWeights, 0, 4, 0.25},
    {"box at sigma", kBoxWeights, 4, 4, 0.25},
    {"box beyond", kBoxWeights, 4.5, 4, 0},
    {"gaussian in the middle", 0, 0, 4, 1},
    {"gaussian of any other number", 77, 0, 4, 1},
    {"gaussian has no end", 0, 8, 4, 0.1353352832366127},
    {"gaussian with a negative sigma", 0, 8, -4, 0.1353352832366127},
};

TEST(Bilateral, WeightsByHand)
{
    for (const auto& row : kWeights) {
        SCOPE(row.shows);
        EXPECT_DOUBLE_EQ(BilateralWeight(row.distance, row.sigma, row.kind), row.wanted);
    }
}

}  // namespace
}  // namespace zlv
