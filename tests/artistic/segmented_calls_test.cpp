// How calls of the segmented colourise go: refusals, progress, cancels, failures of steps, memory.
#include "artistic/segmented_cases.h"

#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"

namespace zlv {
namespace {

using namespace zlvtest;

constexpr u32 kBad = ZLV40_ERROR_BAD_ARGUMENT, kMemory = ZLV40_ERROR_OUT_OF_MEMORY;
constexpr u32 kModes = 4;

// ---- Refusals ----

struct Arguments {
    const char* shows;
    u32 error;
    bool hasSource = true, hasDestination = true;
    u32 width = 6, height = 4, colors = 3, mode = 0;
    i32 stride = 8;
};

const Arguments kRefused[] = {
    {.shows = "a null source", .error = kBad, .hasSource = false},
    {.shows = "a null destination", .error = kBad, .hasDestination = false},
    {.shows = "a mode above the last", .error = kBad, .mode = 4},
    {.shows = "the largest mode", .error = kBad, .mode = 0xFFFFFFFF},
    {.shows = "no colours", .error = kBad, .colors = 0},
    {.shows = "no columns", .error = kMemory, .width = 0},
    {.shows = "no rows", .error = kMemory, .height = 0},
    {.shows = "no columns and a bad mode", .error = kBad, .width = 0, .mode = 4},
    {.shows = "more pixels than a plane has", .error = kMemory, .width = 65536, .height = 32768, .stride = 65536},
    {.shows = "a row of more pixels than that", .error = kMemory, .width = 0xFFFFFFFF, .height = 1},
    {.shows = "as many pixels as wrap to a few",
     .error = kMemory,
     .width = 0x10000,
     .height = 0x10001,
     .stride = 65536},
    {.shows = "a stride below the width", .error = kBad, .stride = 5},
    {.shows = "a stride of 0", .error = kBad, .stride = 0},
    {.shows = "rows that go up", .error = kBad, .stride = -8},
    {.shows = "the most negative stride", .error = kBad, .stride = INT32_MIN},
    {.shows = "a width that no stride can have", .error = kBad, .width = 0x80000000, .height = 2, .stride = INT32_MAX},
};

TEST(SegmentedColorizeCalls, RefusalsWriteNothing)
{
    const Bytes source = RandomBytes(6 * 4 * 3, 1);
    for (const Arguments& row : kRefused) {
        SCOPE(row.shows);
        Bytes image(32, 77), palette(1024, 78);
        const u8* const from = row.hasSource ? source.data() : nullptr;
        u8* const to = row.hasDestination ? image.data() : nullptr;
        EXPECT_EQ(ZLV40_SegmentedColorizeRGBImage(from, row.width, row.height, 18, to, row.stride, palette.data(),
                                                  row.colors, row.mode, 3, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        if (row.mode == 0) {
            for (const i32 useMedian : {0, 1}) {
                EXPECT_EQ(ZLV40_SegmentedColorizeRGB(from, row.width, row.height, 18, to, row.stride, palette.data(),
                                                     row.colors, 3, useMedian),
                          0u);
                EXPECT_EQ(ZLV40_GetLastError(), row.error);
            }
        }
        EXPECT_EQ(image, Bytes(32, 77));
        EXPECT_EQ(palette, Bytes(1024, 78));
    }
}

TEST(SegmentedColorizeCalls, ABadModeIsRefusedBeforeAnyAllocation)
{
    ZLV40_GetLastError();  // makes the thread's records
    const SegmentCase c{6, 4, 3, 4, 3};
    SegmentResult result(c);
    const Bytes source = c.Source();
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(Apply(c, source, result), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), kBad);
    EXPECT_EQ(failing.Failed(), 0u);
}

TEST(SegmentedColorizeCalls, OneRowNeedsNoStride)
{
    for (const i32 stride : {0, -1, 3, INT32_MIN}) {
        SCOPE(stride);
        const SegmentCase c{30, 1, 3, ZLV40_SEGMENT_CLOSE, 1, 0};
        const Bytes source = c.Source();
        SegmentResult wanted(c), got(c);
        PlainSegmentedColorize(PlainCallOf(c, source, wanted));
        EXPECT_EQ(ZLV40_SegmentedColorizeRGBImage(source.data(), 30, 1, 90, got.image.data(), stride,
                                                  got.palette.data(), 3, c.mode, 1, 0),
                  1u);
        ExpectSame(wanted, got);
    }
}

// ---- Progress ----

// Each colour is a report, also one that no pixel has; filters and base functions are silent.
TEST(SegmentedColorizeCalls, ReportEachColorAndStopAtACancel)
{
    for (u32 mode = 0; mode < kModes; ++mode) {
        for (const u32 colors : {1u, 5u, 16u}) {
            for (u32 cancelAt = 0; cancelAt <= colors; ++cancelAt) {
                SCOPE(mode, colors, cancelAt);
                const SegmentCase c{45, 19, colors, mode, 3};
                const Bytes source = c.Source();
                SegmentResult wanted(c), got(c);
                PlainSegmentCall plain = PlainCallOf(c, source, wanted);
                const u32 painted = cancelAt ? cancelAt : colors;
                plain.painted = painted;
                PlainSegmentedColorize(plain);

                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                const u32 result = Apply(c, source, got);
                const u32 error = ZLV40_GetLastError();
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(result, cancelAt ? 0u : 1u);
                EXPECT_EQ(error, cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
                EXPECT_EQ(recorder.reports, Rows(painted, colors));
                ExpectSame(wanted, got);
            }
        }
    }
}

TEST(SegmentedColorizeCalls, TheShorterEntryReportsAndStopsAlike)
{
    for (const i32 useMedian : {0, 1}) {
        for (u32 cancelAt = 0; cancelAt <= 4; ++cancelAt) {
            SCOPE(useMedian, cancelAt);
            const Bytes source = PatchedPicture(20, 9, 1);
            Bytes image(180), palette(1024);
            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(
                ZLV40_SegmentedColorizeRGB(source.data(), 20, 9, 60, image.data(), 20, palette.data(), 4, 3, useMedian),
                cancelAt ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(recorder.reports, Rows(cancelAt ? cancelAt : 4, 4));
        }
    }
}

TEST(SegmentedColorizeCalls, ColorsBeyond256AreNotReported)
{
    const SegmentCase c{20, 9, 1000, ZLV40_SEGMENT_CLOSE, 3};
    const Bytes source = c.Source();
    SegmentResult result(c);
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(Apply(c, source, result), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, Rows(256, 256));
}

TEST(SegmentedColorizeCalls, LeaveTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    for (const u32 mode : {0u, 1u, 4u}) {
        const SegmentCase c{20, 9, 4, mode, 3};
        SegmentResult result(c);
        Apply(c, c.Source(), result);
        base.ExpectUntouched();
    }
}

// ---- Steps that fail ----

TEST(SegmentedColorizeCalls, AMedianThatIsTooLargePaintsNothingAndLeavesItsCode)
{
    for (const u32 size : {46341u, 0xFFFFFFFFu}) {
        SCOPE(size);
        const SegmentCase c{20, 9, 4, ZLV40_SEGMENT_MEDIAN, size};
        const Bytes source = c.Source();
        SegmentResult wanted(c), got(c);
        PlainSegmentCall plain = PlainCallOf(c, source, wanted);
        plain.firstMissingFilter = 0;
        PlainSegmentedColorize(plain);
        EXPECT_EQ(Apply(c, source, got), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), kBad);
        ExpectSame(wanted, got);
    }
}

// The quantiser refuses; what follows takes every pixel for index 0.
TEST(SegmentedColorizeCalls, WithoutAPaletteEveryPixelCountsAsIndex0)
{
    const Bytes source = PatchedPicture(20, 9, 1);
    for (const u32 colors : {1u, 2u, 9u}) {
        SCOPE(colors);
        Bytes image(180, 77);
        EXPECT_EQ(ZLV40_SegmentedColorizeRGBImage(source.data(), 20, 9, 0, image.data(), 20, nullptr, colors,
                                                  ZLV40_SEGMENT_MEDIAN, 3, 0),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(image, Bytes(180, 0));
    }
}

// ---- Memory ----

// How far a call can come when memory runs out on its way, from the earliest end to none.
std::vector<PlainSegmentCall> EndsOf(const PlainSegmentCall& call)
{
    std::vector<PlainSegmentCall> ends(2, call);
    ends[0].isTreeMissing = true;
    for (PlainSegmentCall& end : ends) {
        end.isMappingMissing = true;
        end.firstMissingFilter = 0;
    }
    for (std::size_t filter = 0; filter <= call.colors; ++filter) {
        ends.push_back(call);
        ends.back().firstMissingFilter = filter;
    }
    return ends;
}

// The effect's own memory comes first: without it nothing is written. Later steps fail and are not looked at.
TEST(SegmentedColorizeCalls, EveryAllocationThatFailsEndsAsPrescribed)
{
    constexpr u32 kOwn = 3;
    ZLV40_GetLastError();  // makes the thread's records
    u32 endsSeen = 0;
    for (u32 mode = 0; mode < kModes; ++mode) {
        for (const u32 size : {1u, 3u, 9u}) {
            const SegmentCase c{45, 19, 5, mode, size};
            const Bytes source = c.Source();
            SegmentResult result(c);
            const std::vector<PlainSegmentCall> ends = EndsOf(PlainCallOf(c, source, result));
            std::size_t end = 0;
            SCOPE(mode, size);
            const auto wantedOf = [&](PlainSegmentCall plain) {
                SegmentResult wanted(c);
                plain.destination = wanted.image.data();
                plain.palette = wanted.palette.data();
                PlainSegmentedColorize(plain);
                return wanted;
            };
            SegmentResult got(c);
            zlvtest::WithEachFailing(
                FailingCalls::Of::Allocate,
                [&] {
                    got = SegmentResult(c);
                    return Apply(c, source, got);
                },
                [&](u32 returned, u32 failed, u32 succeeding) {
                    EXPECT_EQ(ZLV40_GetLastError(), failed ? kMemory : 0u);
                    EXPECT_EQ(returned, succeeding < kOwn ? 0u : 1u);
                    if (succeeding < kOwn) {
                        EXPECT_EQ(got, SegmentResult(c));
                        return;
                    }
                    // With more memory a call comes as far, or farther.
                    const std::size_t before = end;
                    while (end < ends.size() && wantedOf(ends[end]) != got) ++end;
                    ASSERT_LT(end, ends.size()) << "an end that is not prescribed";
                    endsSeen += end != before;
                    EXPECT_TRUE(failed || got == wantedOf(ends.back()));
                });
        }
    }
    EXPECT_GT(endsSeen, 3 * kModes) << "filters that fail would not show";
}

}  // namespace
}  // namespace zlv
