// The bilateral filter as a call: progress, threads, memory.
#include "filters/bilateral_cases.h"
#include "runtime/base_call.h"
#include "support/base_watch.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"

#include <thread>

namespace zlv {
namespace {

using zlvtest::BaseWatch;
using zlvtest::Bytes;
using zlvtest::FailingCalls;
using zlvtest::ProgressRecorder;
using zlvtest::Report;

// ---- Progress -----------------------------------------------------------------------------------------------------

TEST(Bilateral, ReportsRowsForEachChannelOrChannels)
{
    const BilateralShape shape = {9, 5, 3};
    const Bytes src = zlvtest::RandomBytes(135, 7);
    const struct {
        u32 flags;
        std::vector<Report> reports;
    } rows[] = {
        {2 | 4 | kBilateralSquare, {{0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}, {0, 5}, {1, 5}, {2, 5}, {3, 5}, {4, 5}}},
        {1 | 4 | kBilateralSeparable, {{0, 3}, {2, 3}}},
        {7 | kBilateralThreads, {}},
        {7 | kBilateralThreads | kBilateralSeparable, {}},
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
    const BilateralShape shape = {20, 6, 2};
    const Bytes src = zlvtest::RandomBytes(240, 7);
    for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
        for (size_t at = 1; at <= (flags ? 2u : 12u); ++at) {
            SCOPE(flags, at);
            const BilateralSettings filter = {5, 0, 20, 3 | flags};
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
    for (const u32 flags : {kBilateralSquare, kBilateralSeparable, kBilateralThreads}) {
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
    const BilateralShape shape = {40, 20, 4};
    const Bytes src = zlvtest::RandomBytes(3200, 7), before = zlvtest::RandomBytes(3200, 8);
    for (const u32 form : {kBilateralSquare, kBilateralSeparable}) {
        Bytes wanted = before, got = before;
        EXPECT_EQ(Smooth(shape, src.data(), wanted.data(), {5, 0, 20, 7 | form}), 1u);
        EXPECT_EQ(Smooth(shape, src.data(), got.data(), {5, 0, 20, 7 | form | kBilateralThreads}), 1u);
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
        EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, 7 | kBilateralThreads}), 1u);
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
    EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, kBilateralThreads}), 1u);
    EXPECT_EQ(Smooth({10, 10, 3}, src.data(), dst.data(), {3, 0, 20, kBilateralThreads | 8 | 128}), 1u)
        << "channels it has not";
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
            for (int i = 0; i < 10; ++i) Smooth({40, 20, 3}, src.data(), dst.data(), {5, 0, 20, 7 | kBilateralThreads});
        });
    }
    for (std::thread& client : clients) client.join();
    for (const Bytes& dst : got) EXPECT_EQ(dst, wanted);
}

// ---- Memory -------------------------------------------------------------------------------------------------------

TEST(Bilateral, EveryFailedAllocationIsCodeOne)
{
    const Bytes src = zlvtest::RandomBytes(81, 7), before = zlvtest::RandomBytes(81, 8);
    for (const u32 flags : {kBilateralSquare, kBilateralSeparable}) {
        ZLV40_GetLastError();  // makes the thread's records
        SCOPE(flags);
        zlvtest::ExpectCodeOneWithoutMemory(before, [&](Bytes& dst) {
            return Smooth({9, 9}, src.data(), dst.data(), {3, 0, 20, 1 | flags});
        });
    }
}

TEST(Bilateral, NoMemoryForTheRecordsOfThreadsIsCodeOne)
{
    const Bytes src = zlvtest::RandomBytes(81, 7), before = zlvtest::RandomBytes(81, 8);
    Bytes dst = before;
    ZLV40_GetLastError();
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(Smooth({9, 9}, src.data(), dst.data(), {3, 0, 20, 1 | kBilateralThreads}), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(dst, before);
}

}  // namespace
}  // namespace zlv
