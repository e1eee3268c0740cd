// How calls of the seam carver go: refusals, progress, cancels, failures. Whatever fails leaves the destination alone.
#include "seam/seam_carve_cases.h"

#include "runtime/base_call.h"
#include "support/base_watch.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"
#include "support/thread_hooks.h"

namespace zlv {
namespace {

using zlvtest::BaseWatch;
using zlvtest::FailingCalls;
using zlvtest::ProgressRecorder;
using zlvtest::ThreadOrders;

constexpr u32 kForms[] = {ZLV40_ONE_THREAD, 0};
constexpr u32 kEnergyThreads = 4;

const char* NameOf(u32 flags) { return flags & ZLV40_ONE_THREAD ? "one thread" : "two threads"; }

// ---- Refusals ---------------------------------------------------------------------------------------------------

struct ArgumentRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 8, height = 5, channels = 3;
    i32 seams = -2;
    u32 srcStride = 32;
    u32 error = ZLV40_ERROR_BAD_ARGUMENT;
};
const ArgumentRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "no source and no seams", .hasSrc = false, .seams = 0},
    {.shows = "no destination and no seams", .hasDst = false, .seams = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "two channels", .channels = 2},
    {.shows = "five channels", .channels = 5},
    {.shows = "two channels and no seams", .channels = 2, .seams = 0},
    {.shows = "no width", .width = 0, .seams = 9},
    {.shows = "a width of 2", .width = 2, .seams = 9},
    {.shows = "a width of 2 and no seams", .width = 2, .seams = 0},
    {.shows = "no height", .height = 0},
    {.shows = "a height of 2", .height = 2},
    {.shows = "a height of 2 and no seams", .height = 2, .seams = 0},
    {.shows = "a result of 3 columns", .seams = -5},
    {.shows = "a result of 3 columns from 4", .width = 4, .seams = -1},
    {.shows = "a result of no columns", .seams = -8},
    {.shows = "more seams than columns", .seams = -9},
    {.shows = "the lowest number of seams", .seams = INT32_MIN},
    {.shows = "a source whose rows overlap", .srcStride = 23},
    {.shows = "a source without rows", .srcStride = 0},
    {.shows = "the highest number of seams", .seams = INT32_MAX, .error = ZLV40_ERROR_OUT_OF_MEMORY},
    {.shows = "more columns than memory",
     .width = 0x40000000,
     .srcStride = 0xC0000000,
     .error = ZLV40_ERROR_OUT_OF_MEMORY},
    {.shows = "more rows than memory", .height = 0x40000000, .error = ZLV40_ERROR_OUT_OF_MEMORY},
    {.shows = "the lowest number of seams of as many columns",
     .width = 0x80000004,
     .seams = INT32_MIN,
     .srcStride = 0x80000004,
     .error = ZLV40_ERROR_BAD_ARGUMENT},
    {.shows = "more pixels than an array counts",
     .width = 0x10000,
     .height = 0x10000,
     .srcStride = 0x30000,
     .error = ZLV40_ERROR_OUT_OF_MEMORY},
};

TEST(SeamCarve, RefusesWithNothingWritten)
{
    for (const ArgumentRow& row : kRefused) {
        for (const u32 flags : kForms) {
            SCOPE(row.shows, NameOf(flags));
            const Bytes src = zlvtest::RandomBytes(160, 1);
            Bytes dst(200, kFill);
            SetRandomState(3);
            EXPECT_EQ(
                ZLV40_SeamCarve(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.channels, row.srcStride,
                                nullptr, 0, row.hasDst ? dst.data() : nullptr, 40, row.seams, 100, flags),
                0u);
            EXPECT_EQ(ZLV40_GetLastError(), row.error);
            EXPECT_EQ(dst, Bytes(200, kFill));
            EXPECT_EQ(RandomState(), 3u);
        }
    }
}

// The result is at least 4 columns wide.
TEST(SeamCarve, AcceptsWhatIsJustLargeEnough)
{
    for (const u32 flags : kForms) {
        ExpectPlainCarving({.width = 5, .height = 3, .seams = -1, .flags = flags});
        ExpectPlainCarving({.width = 3, .height = 3, .seams = 1, .flags = flags});
        ExpectPlainCarving({.width = 8, .height = 3, .seams = -4, .flags = flags});
    }
}

// ---- Progress and cancels ---------------------------------------------------------------------------------------

struct Outcome {
    Bytes dst;
    u32 result, error;
};

Outcome RunCase(const CarveCase& c)
{
    Outcome run = {Bytes(c.DstBytes(), kFill), 0, 0};
    const Bytes src = c.Source(), mask = c.Mask();
    SetRandomState(c.seed);
    run.result = Carve(c, src.data(), c.hasMask ? mask.data() : nullptr, run.dst.data());
    run.error = ZLV40_GetLastError();
    return run;
}

void ExpectUntouched(const CarveCase& c, const Outcome& run, u32 error)
{
    EXPECT_EQ(run.result, 0u);
    EXPECT_EQ(run.error, error);
    EXPECT_EQ(run.dst, Bytes(c.DstBytes(), kFill));
}

void ExpectDone(const CarveCase& c, const Outcome& run)
{
    EXPECT_EQ(run.result, 1u);
    EXPECT_EQ(run.error, 0u);
    EXPECT_EQ(run.dst, PlainCarve(c, c.Source(), c.Mask()).dst);
}

TEST(SeamCarve, ReportsSeams)
{
    for (const u32 flags : kForms) {
        for (const i32 seams : {-3, 5, 0}) {
            SCOPE(NameOf(flags), seams);
            const CarveCase c = {.seams = seams, .flags = flags};
            ProgressRecorder recorder;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            const Outcome run = RunCase(c);
            ZLV40_SetCallback(nullptr, 0);
            ExpectDone(c, run);
            EXPECT_EQ(recorder.reports, zlvtest::Rows(u32(std::abs(seams)), u32(std::abs(seams))));
        }
    }
}

// At the last report too: nothing has been written yet.
TEST(SeamCarve, ACancelAtAnySeamWritesNothing)
{
    for (const u32 flags : kForms) {
        for (const i32 seams : {-4, 4}) {
            for (size_t at = 1; at <= 4; ++at) {
                SCOPE(NameOf(flags), seams, at);
                const CarveCase c = {.seams = seams, .flags = flags, .hasMask = true};
                const std::int64_t handles = zlvtest::OpenHandles();
                ProgressRecorder recorder;
                recorder.cancelAt = at;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                const Outcome run = RunCase(c);
                ZLV40_SetCallback(nullptr, 0);
                ExpectUntouched(c, run, ZLV40_ERROR_CANCELLED);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(u32(at), 4));
                EXPECT_EQ(zlvtest::OpenHandles(), handles);
            }
        }
    }
}

TEST(SeamCarve, ACallbackThatIsTakenAwayIsNotCalledAgain)
{
    const CarveCase c = {.seams = -4};
    ProgressRecorder recorder;
    recorder.atReport = [] { ZLV40_SetCallback(nullptr, 0); };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    ExpectDone(c, RunCase(c));
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports.size(), 1u);
}

// Its own failures are not those of the call that it interrupts.
TEST(SeamCarve, TheCallbackMayCallTheLibrary)
{
    const CarveCase c = {.seams = -4, .flags = 0};
    const CarveCase inner = {.width = 7, .height = 5, .seams = -2, .levels = 1};
    ProgressRecorder recorder;
    recorder.atReport = [&] {
        const u32 state = RandomState();
        EXPECT_EQ(RunCase(inner).result, 1u);
        EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
        SetRandomState(state);
    };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    const Outcome run = RunCase(c);
    ZLV40_SetCallback(nullptr, 0);
    ExpectDone(c, run);
    EXPECT_EQ(recorder.reports.size(), 4u) << "calls from the callback report nothing";
}

TEST(SeamCarve, LeavesCountersAndBaseCallbackAsTheyWere)
{
    BaseWatch base;
    for (const u32 flags : kForms) {
        for (const i32 seams : {0, -2, 2, -8}) {
            RunCase({.seams = seams, .flags = flags, .dstPadding = 3});
            base.ExpectUntouched();
        }
    }
}

// ---- Failures ---------------------------------------------------------------------------------------------------

TEST(SeamCarve, EveryAllocationThatFailsIsCodeOne)
{
    for (const u32 flags : kForms) {
        for (const bool hasMask : {false, true}) {
            const CarveCase c = {.seams = hasMask ? 3 : -3, .flags = flags, .hasMask = hasMask};
            RunCase(c);  // makes the thread's records
            SCOPE(NameOf(flags), hasMask);
            const std::int64_t handles = zlvtest::OpenHandles();
            const u32 allocations = zlvtest::WithEachFailing(
                FailingCalls::Of::Allocate, [&] { return RunCase(c); },
                [&](const Outcome& run, u32 failed, u32) {
                    if (failed) ExpectUntouched(c, run, ZLV40_ERROR_OUT_OF_MEMORY);
                    else ExpectDone(c, run);
                    EXPECT_EQ(zlvtest::OpenHandles(), handles);
                });
            EXPECT_EQ(allocations, hasMask ? 7u : 6u) << "four or five images, the seam and two lists of mutexes";
        }
    }
}

TEST(SeamCarve, EveryMutexOrEventThatCannotBeMadeIsCodeOne)
{
    for (const auto what : {FailingCalls::Of::CreateMutex, FailingCalls::Of::CreateEvent}) {
        for (const u32 flags : kForms) {
            const CarveCase c = {.seams = -2, .flags = flags};
            const bool isMutex = what == FailingCalls::Of::CreateMutex, hasThreads = flags == 0;
            const u32 needed = isMutex ? 2 * c.height : hasThreads ? 4 * 2 : 0;
            for (u32 succeeding = 0; succeeding <= needed; ++succeeding) {
                SCOPE(isMutex ? "mutex" : "event", NameOf(flags), succeeding);
                const std::int64_t handles = zlvtest::OpenHandles();
                const FailingCalls failing(what, succeeding);
                const Outcome run = RunCase(c);
                EXPECT_EQ(failing.Failed(), succeeding < needed ? 1u : 0u);
                if (succeeding < needed) ExpectUntouched(c, run, ZLV40_ERROR_OUT_OF_MEMORY);
                else ExpectDone(c, run);
                EXPECT_EQ(zlvtest::OpenHandles(), handles);
            }
        }
    }
}

TEST(SeamCarve, AWorkerThatCannotStartIsCode17)
{
    const CarveCase c = {.seams = -3, .flags = 0};
    for (u32 worker = 0; worker < 6; ++worker) {
        SCOPE("worker", worker);
        const std::int64_t handles = zlvtest::OpenHandles();
        const FailingCalls failing(FailingCalls::Of::StartThread, kEnergyThreads + worker);
        ExpectUntouched(c, RunCase(c), ZLV40_ERROR_COULD_NOT_RUN);
        EXPECT_EQ(zlvtest::OpenHandles(), handles);
    }
    const FailingCalls failing(FailingCalls::Of::StartThread, kEnergyThreads + 6);
    ExpectDone(c, RunCase(c));
}

// The edge filter says nothing then. Seams run over flat energies, and two runs still agree.
TEST(SeamCarve, WithoutTheEnergysThreadsEveryPixelCountsAlike)
{
    const CarveCase c = {.width = 20, .height = 10, .seams = -5};
    Outcome runs[2];
    for (Outcome& run : runs) {
        const FailingCalls failing(FailingCalls::Of::StartThread, 0);
        run = RunCase(c);
        EXPECT_EQ(run.result, 1u);
        EXPECT_EQ(failing.Failed(), 1u);
    }
    EXPECT_EQ(runs[0].dst, runs[1].dst);
    const Outcome threaded = [&] {
        const FailingCalls failing(FailingCalls::Of::StartThread, 0);
        return RunCase({.width = 20, .height = 10, .seams = -5, .flags = 0});
    }();
    EXPECT_EQ(threaded.error, u32(ZLV40_ERROR_COULD_NOT_RUN));
}

TEST(SeamCarve, ATimeOutInAnySeamIsItsCode)
{
    const CarveCase c = {.seams = -3, .flags = 0};
    for (const int worker : {0, 1, 4, 5}) {
        SCOPE("worker", worker);
        const std::int64_t handles = zlvtest::OpenHandles();
        ThreadOrders orders;
        orders.TimeOut(int(kEnergyThreads) + worker, ThreadOrders::Wait::Event, 0);
        ExpectUntouched(c, RunCase(c), ZLV40_ERROR_TIME_OUT);
        EXPECT_EQ(orders.TimedOut(), 1u);
        EXPECT_EQ(zlvtest::OpenHandles(), handles);
    }
    ExpectDone(c, RunCase(c));
}

TEST(SeamCarve, StartsTwoThreadsForEverySeam)
{
    for (const u32 flags : kForms) {
        const ThreadOrders orders;
        RunCase({.seams = -3, .flags = flags});
        EXPECT_EQ(orders.Started(), kEnergyThreads + (flags ? 0 : 6));
    }
}

}  // namespace
}  // namespace zlv
