// How calls of the medians go: refusals, progress, cancels, memory.
#include "filters/median_cases.h"

#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/test_hooks.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kNoNumber = std::numeric_limits<f64>::quiet_NaN();

// ---- Refusals ----

struct RunningArguments {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 4, height = 3, channels = 2;
    i32 filterSize = 3;
    u32 threshold = 0;
    f64 amount = 1.0;
};

const RunningArguments kRefusedRunning[] = {
    {.shows = "a null source", .hasSrc = false},
    {.shows = "a null destination", .hasDst = false},
    {.shows = "no columns", .width = 0},
    {.shows = "no rows", .height = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "nine channels", .channels = 9},
    {.shows = "all bits of channels", .channels = 0xFFFFFFFF},
    {.shows = "a window whose square is no signed number of 32 bits", .filterSize = 46341},
    {.shows = "an even window that grows to it", .filterSize = 46340},
    {.shows = "the largest window", .filterSize = INT32_MAX},
    {.shows = "an amount that is no number", .threshold = 1, .amount = kNoNumber},
};

TEST(RunningMedianCalls, RefuseWithNothingWritten)
{
    for (const RunningArguments& row : kRefusedRunning) {
        for (const u32 mask : {0u, 3u}) {
            SCOPE(row.shows, mask);
            const Bytes src = RandomBytes(64, 9);
            Bytes dst(64, 77);
            EXPECT_EQ(ZLV40_DustAndScratches(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                             row.hasDst ? dst.data() : nullptr, row.channels, 8, 8, row.filterSize,
                                             row.threshold, row.amount, mask),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            if (row.threshold == 0) {
                EXPECT_EQ(ZLV40_MedianFilterImage(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                  row.hasDst ? dst.data() : nullptr, row.channels, 8, 8, row.filterSize,
                                                  mask),
                          0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            }
            EXPECT_EQ(dst, Bytes(64, 77));
        }
    }
}

struct O1Arguments {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 5, height = 6, channels = 2;
    u32 srcStride = 10, dstStride = 10;
    i32 filterSize = 3;
    u32 threshold = 0;
    f64 amount = 1.0;
};

const O1Arguments kRefusedO1[] = {
    {.shows = "a null source", .hasSrc = false},
    {.shows = "a null destination", .hasDst = false},
    {.shows = "no columns", .width = 0},
    {.shows = "no rows", .height = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "five channels", .channels = 5},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "a window of 2, which has no radius", .filterSize = 2},
    {.shows = "a window of 1", .filterSize = 1},
    {.shows = "a window of 0", .filterSize = 0},
    {.shows = "a negative window", .filterSize = -1},
    {.shows = "the most negative window", .filterSize = INT32_MIN},
    {.shows = "a window wider than the image", .filterSize = 7},
    {.shows = "a window higher than the image", .height = 4, .filterSize = 5},
    {.shows = "the largest window", .filterSize = INT32_MAX},
    {.shows = "an amount that is no number", .threshold = 1, .amount = kNoNumber},
};

TEST(ConstantTimeMedianCalls, RefuseWithNothingWritten)
{
    for (const O1Arguments& row : kRefusedO1) {
        for (const u32 pads : {0u, 3u}) {
            SCOPE(row.shows, pads);
            const Bytes src = RandomBytes(64, 9);
            Bytes dst(64, 77);
            EXPECT_EQ(ZLV40_DustAndScratches_O1(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                row.hasDst ? dst.data() : nullptr, row.channels, row.srcStride,
                                                row.dstStride, row.filterSize, row.threshold, row.amount, pads),
                      0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            if (row.threshold == 0) {
                EXPECT_EQ(ZLV40_MedianFilterImage_O1(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                     row.hasDst ? dst.data() : nullptr, row.channels, row.srcStride,
                                                     row.dstStride, row.filterSize, pads),
                          0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            }
            EXPECT_EQ(dst, Bytes(64, 77));
        }
    }
}

TEST(ConstantTimeMedianCalls, TheLargestRadiusIs127)
{
    const Bytes src(257 * 257, 9);
    for (const i32 size : {255, 256, 257}) {
        SCOPE(size);
        Bytes dst(src.size(), 77);
        const bool isTaken = size < 257;
        EXPECT_EQ(ZLV40_MedianFilterImage_O1(src.data(), 257, 257, dst.data(), 1, 257, 257, size, 3),
                  isTaken ? 1u : 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(isTaken ? ZLV40_ERROR_NONE : ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(src.size(), isTaken ? 9 : 77));
    }
}

struct BitArguments {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 9, height = 3, filterSize = 3;
};

const BitArguments kRefusedBits[] = {
    {.shows = "a null source", .hasSrc = false},
    {.shows = "a null destination", .hasDst = false},
    {.shows = "no columns", .width = 0},
    {.shows = "no rows", .height = 0},
    {.shows = "a window whose square is no signed number of 32 bits", .filterSize = 46341},
    {.shows = "an even window that grows to it", .filterSize = 46340},
    {.shows = "all bits of a window", .filterSize = 0xFFFFFFFF},
};

TEST(MedianFilter1BitCalls, RefuseWithNothingWritten)
{
    for (const BitArguments& row : kRefusedBits) {
        SCOPE(row.shows);
        const Bytes src = RandomBytes(6, 9);
        Bytes dst(6, 77);
        EXPECT_EQ(ZLV40_MedianFilter1Bit(row.hasSrc ? src.data() : nullptr, row.width, row.height, 2,
                                         row.hasDst ? dst.data() : nullptr, 2, row.filterSize),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(6, 77));
    }
}

// ---- All of them ----

struct MedianExport {
    const char* name;
    i32 filterSize;
    u32 (*apply)(const u8* src, u8* dst, i32 filterSize);
};

// On a picture of 13 x 11 pixels with three channels in rows of 40 bytes; the 1-bit median sees 300 x 11 pixels.
constexpr u32 kRows = 11, kStride = 40;
constexpr size_t kSize = kRows * kStride;

u32 ApplyMedian(const u8* src, u8* dst, i32 size)
{
    return ZLV40_MedianFilterImage(src, 13, kRows, dst, 3, kStride, kStride, size, 5);
}
u32 ApplyDust(const u8* src, u8* dst, i32 size)
{
    return ZLV40_DustAndScratches(src, 13, kRows, dst, 3, kStride, kStride, size, 9, 0.5, 5);
}
u32 ApplyMedianO1(const u8* src, u8* dst, i32 size)
{
    return ZLV40_MedianFilterImage_O1(src, 13, kRows, dst, 3, kStride, kStride, size, 3);
}
u32 ApplyDustO1(const u8* src, u8* dst, i32 size)
{
    return ZLV40_DustAndScratches_O1(src, 13, kRows, dst, 3, kStride, kStride, size, 9, 0.5, 3);
}
u32 ApplyBits(const u8* src, u8* dst, i32 size)
{
    return ZLV40_MedianFilter1Bit(src, 300, kRows, kStride, dst, kStride, u32(size));
}

const MedianExport kExports[] = {
    {"median", 1, ApplyMedian},      {"median", 3, ApplyMedian},  {"median", 9, ApplyMedian},
    {"dust", 3, ApplyDust},          {"dust", 9, ApplyDust},      {"median O1", 3, ApplyMedianO1},
    {"median O1", 9, ApplyMedianO1}, {"dust O1", 5, ApplyDustO1}, {"dust O1", 9, ApplyDustO1},
    {"bits", 1, ApplyBits},          {"bits", 3, ApplyBits},      {"bits", 9, ApplyBits},
};

TEST(MedianCalls, RefuseOneImageForBoth)
{
    for (const MedianExport& median : kExports) {
        SCOPE(median.name, median.filterSize);
        const Bytes before = RandomBytes(kSize, 3);
        Bytes image = before;
        EXPECT_EQ(median.apply(image.data(), image.data(), median.filterSize), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(image, before);
    }
}

TEST(MedianCalls, WithoutMemoryAreCodeOneAndWriteNothing)
{
    (void)ZLV40_GetLastError();
    (void)MV40_GetLastError();  // make the thread's records
    const Bytes src = RandomBytes(kSize, 1);
    u32 failures = 0;
    for (const MedianExport& median : kExports) {
        for (const bool mayReport : {false, true}) {
            for (u32 succeeding = 0;; ++succeeding) {
                SCOPE(median.name, median.filterSize, mayReport, succeeding);
                Bytes dst(kSize, 77);
                ProgressRecorder recorder;
                if (mayReport) ZLV40_SetCallback(recorder.Function, recorder.Data());
                u32 result = 0, failed = 0;
                {
                    const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
                    result = median.apply(src.data(), dst.data(), median.filterSize);
                    failed = failing.Failed();
                }
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(result, failed ? 0u : 1u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(failed ? ZLV40_ERROR_OUT_OF_MEMORY : ZLV40_ERROR_NONE));
                EXPECT_EQ(dst == Bytes(kSize, 77), failed != 0);
                failures += failed;
                if (!failed) break;
                EXPECT_TRUE(recorder.reports.empty());
            }
        }
    }
    EXPECT_GT(failures, 20u);
}

TEST(MedianCalls, ClearTheErrorOfTheCallBefore)
{
    for (const MedianExport& median : kExports) {
        SCOPE(median.name, median.filterSize);
        const Bytes src = RandomBytes(kSize, 1);
        Bytes dst(kSize);
        EXPECT_EQ(median.apply(nullptr, dst.data(), median.filterSize), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(median.apply(src.data(), dst.data(), median.filterSize), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_NONE));
    }
}

TEST(MedianCalls, LeaveTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    for (const MedianExport& median : kExports) {
        SCOPE(median.name, median.filterSize);
        const Bytes src = RandomBytes(kSize, 1);
        Bytes dst(kSize);
        for (const u8* image : {src.data(), static_cast<const u8*>(nullptr)}) {
            median.apply(image, dst.data(), median.filterSize);
            base.ExpectUntouched();
        }
    }
}

// ---- Progress ----

TEST(RunningMedianCalls, ReportEachSelectedChannel)
{
    for (const u32 mask : {0u, 0x1Au, 0x3Fu, 0xFFFFFFC2u}) {
        for (const i32 size : {1, 3, 5, 9}) {
            SCOPE(mask, size);
            std::vector<Report> wanted;
            for (u32 c = 0; c < 6; ++c) {
                if (mask >> c & 1) wanted.push_back({c, 6});
            }
            const MedianCall call{
                .width = 7, .height = 5, .channels = 6, .filterSize = size, .mask = mask, .kind = Kind::NearTop};
            const ClientProgress client;
            call.ExpectRunning();
            EXPECT_EQ(client.recorder.reports, wanted);
        }
    }
}

TEST(RunningMedianCalls, ACancelKeepsTheChannelsDone)
{
    for (const size_t cancelAt : {1u, 2u, 3u}) {
        for (const i32 size : {1, 3, 5, 9}) {
            SCOPE(cancelAt, size);
            const u32 doneMasks[] = {0x02, 0x0A, 0x1A};
            const MedianCall call{
                .width = 7, .height = 5, .channels = 6, .filterSize = size, .mask = 0x1A, .blend = {6, 0.7}};
            const Bytes src = call.Source();
            Bytes wanted = call.Target(), got = wanted;
            PlainDustAndScratches(call.Plain(src, wanted), call.blend, doneMasks[cancelAt - 1]);
            const ClientProgress client(cancelAt);
            EXPECT_EQ(call.RunRunning(src, got), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports.size(), cancelAt);
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
            EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(ConstantTimeMedianCalls, NeitherReportNorCancel)
{
    for (const i32 size : {3, 5, 7}) {
        for (const u32 threshold : {0u, 9u}) {
            SCOPE(size, threshold);
            const ClientProgress client(1);
            MedianCall{.width = 9, .height = 8, .channels = 3, .filterSize = size, .blend = {threshold, 0.5}}
                .ExpectO1();
            EXPECT_TRUE(client.recorder.reports.empty());
        }
    }
}

TEST(MedianFilter1BitCalls, ReportEachRow)
{
    for (const i32 size : {1, 3, 5, 9}) {
        SCOPE(size);
        const Bytes src = RandomBytes(kSize, 2);
        Bytes told(kSize, 77), untold(kSize, 77);
        EXPECT_EQ(ApplyBits(src.data(), untold.data(), size), 1u);
        const ClientProgress client;
        EXPECT_EQ(ApplyBits(src.data(), told.data(), size), 1u);
        EXPECT_EQ(client.recorder.reports, Rows(kRows, kRows));
        EXPECT_EQ(told, untold);
    }
}

TEST(MedianFilter1BitCalls, ACancelKeepsTheRowsDone)
{
    for (size_t cancelAt = 1; cancelAt <= kRows; ++cancelAt) {
        for (const i32 size : {1, 3, 5, 9}) {
            SCOPE(cancelAt, size);
            const Bytes src = RandomBytes(kSize, 2);
            Bytes wanted(kSize, 77), got(kSize, 77);
            EXPECT_EQ(ApplyBits(src.data(), wanted.data(), size), 1u);
            std::fill(wanted.begin() + std::ptrdiff_t(cancelAt * kStride), wanted.end(), u8(77));
            const ClientProgress client(cancelAt);
            EXPECT_EQ(ApplyBits(src.data(), got.data(), size), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports, Rows(u32(cancelAt), kRows));
            EXPECT_EQ(got, wanted);
        }
    }
}

// A call inside a callback is one level deeper: it reports nothing and cannot be cancelled.
TEST(MedianCalls, InsideACallbackReportNothing)
{
    for (const MedianExport& median : kExports) {
        SCOPE(median.name, median.filterSize);
        const Bytes src = RandomBytes(kSize, 2);
        Bytes wanted(kSize, 77), got(kSize, 77), outer(kSize);
        EXPECT_EQ(median.apply(src.data(), wanted.data(), median.filterSize), 1u);
        ClientProgress client;
        client.recorder.atReport = [&] { EXPECT_EQ(median.apply(src.data(), got.data(), median.filterSize), 1u); };
        EXPECT_EQ(ApplyMedian(src.data(), outer.data(), 3), 1u);
        EXPECT_EQ(client.recorder.reports, (std::vector<Report>{{0, 3}, {2, 3}}));
        EXPECT_EQ(got, wanted);
    }
}

}  // namespace
}  // namespace zlv
