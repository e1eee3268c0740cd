#include "runtime/contexts.h"

#include "runtime/base_call.h"
#include "support/test_hooks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace zlv {
namespace {

using zlvtest::FailingCalls;

template <class Work>
void OnFreshThread(Work work)
{
    std::thread(work).join();
}

TEST(Contexts, AFreshThreadHasNone)
{
    OnFreshThread([] {
        EXPECT_EQ(exportedContexts.Find(), nullptr);
        EXPECT_EQ(baseContexts.Find(), nullptr);
    });
}

TEST(Contexts, AskingForTheLastErrorMakesTheExportedOne)
{
    OnFreshThread([] {
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_NE(exportedContexts.Find(), nullptr);
        EXPECT_EQ(baseContexts.Find(), nullptr);
    });
}

TEST(Contexts, EveryFieldStartsAtZero)
{
    OnFreshThread([] {
        const ZLVThreadContext& exported = *exportedContexts.Get();
        EXPECT_EQ(exported.callback, nullptr);
        EXPECT_EQ(exported.nestCount, 0u);
        EXPECT_EQ(exported.callbackData, 0u);
        EXPECT_EQ(exported.callDepth, 0u);
        EXPECT_EQ(exported.lastError, Error::None);
        EXPECT_EQ(exported.transforms.GetCount(), 0u);
        const MVThreadContext& base = *baseContexts.Get();
        EXPECT_EQ(base.callback, nullptr);
        EXPECT_EQ(base.nestCount, 0u);
        EXPECT_EQ(base.callbackData, 0u);
        EXPECT_EQ(base.lastError, Error::None);
        EXPECT_EQ(base.reportHold, 0);
        EXPECT_EQ(base.errorLog.GetCount(), 0u);
    });
}

TEST(Contexts, StayTheSameForAThread)
{
    OnFreshThread([] {
        const ZLVThreadContext* const first = exportedContexts.Get();
        EXPECT_EQ(exportedContexts.Get(), first);
        EXPECT_EQ(exportedContexts.Find(), first);
        std::thread([&] { EXPECT_NE(exportedContexts.Get(), first); }).join();
    });
}

TEST(Contexts, TheExportedOneGoesWithItsThread)
{
    const u32 before = exportedContexts.CountRecords();
    for (int i = 0; i < 20; ++i) OnFreshThread([] { (void)exportedContexts.Get(); });
    EXPECT_EQ(exportedContexts.CountRecords(), before);
}

TEST(Contexts, TheBaseOneStaysAndServesTheNextThreadReset)
{
    OnFreshThread([] { (void)baseContexts.Get(); });  // from here on one is idle
    const u32 before = baseContexts.CountRecords();
    for (int i = 0; i < 20; ++i) {
        OnFreshThread([] {
            MVThreadContext& context = *baseContexts.Get();
            EXPECT_EQ(context.lastError, Error::None);
            EXPECT_EQ(context.errorLog.GetCount(), 0u);
            EXPECT_EQ(context.randomState, 1u);
            context.nestCount = 7;
            context.randomState = 99;
            MVReportError(5, "Somebody", nullptr);
        });
    }
    EXPECT_EQ(baseContexts.CountRecords(), before);
}

TEST(Contexts, ManyShortThreadsDoNotGrowTheLists)
{
    const auto eightAtOnce = [] {
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([] {
                (void)exportedContexts.Get();
                (void)baseContexts.Get();
            });
        }
        for (std::thread& thread : threads) thread.join();
    };
    eightAtOnce();
    const u32 before = baseContexts.CountRecords();
    for (int i = 0; i < 50; ++i) eightAtOnce();
    EXPECT_LE(baseContexts.CountRecords(), before + 8);
}

TEST(Contexts, OutOfMemoryGivesNullAndLeavesNothingBehind)
{
    for (const auto function : {FailingCalls::Of::Allocate, FailingCalls::Of::SetSlot}) {
        OnFreshThread([=] {
            const u32 before = exportedContexts.CountRecords();
            {
                const FailingCalls failing(function, 0);
                EXPECT_EQ(exportedContexts.Get(), nullptr);
                EXPECT_GE(failing.Failed(), 1u);
            }
            EXPECT_EQ(exportedContexts.CountRecords(), before);
            EXPECT_NE(exportedContexts.Get(), nullptr) << "the next call may have it";
        });
    }
}

TEST(Contexts, AnIdleRecordThatCannotBeGivenOutStaysIdle)
{
    OnFreshThread([] { (void)baseContexts.Get(); });
    const u32 before = baseContexts.CountRecords();
    OnFreshThread([] {
        {
            const FailingCalls failing(FailingCalls::Of::SetSlot, 0);
            EXPECT_EQ(baseContexts.Get(), nullptr);
        }
        EXPECT_NE(baseContexts.Get(), nullptr);
    });
    EXPECT_EQ(baseContexts.CountRecords(), before);
}

TEST(Contexts, ARecordStaysWhenTheSlotCannotBeEmptied)
{
    OnFreshThread([] {
        const ZLVThreadContext* const context = exportedContexts.Get();
        {
            const FailingCalls failing(FailingCalls::Of::SetSlot, 0);
            exportedContexts.Release();
        }
        EXPECT_EQ(exportedContexts.Find(), context);
        exportedContexts.Release();
        EXPECT_EQ(exportedContexts.Find(), nullptr);
    });
}

TEST(Contexts, CallsWithoutARecordReturnNothingAndDoNothing)
{
    OnFreshThread([] {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        u8 sample = 1;
        u64 data = 5;
        EXPECT_EQ(ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0), 0u);
        EXPECT_EQ(sample, 1);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
        ZLV40_SetCallback(nullptr, 3);
        EXPECT_EQ(ZLV40_GetCallback(&data), nullptr);
        EXPECT_EQ(data, 0u);
        ZLV40_ThreadExit();
        ZLV40_Exit();
        EXPECT_EQ(exportedContexts.Find(), nullptr);
    });
}

TEST(Contexts, WithoutABaseRecordAnEffectFailsAsOutOfMemory)
{
    OnFreshThread([] {
        ASSERT_NE(exportedContexts.Get(), nullptr);
        const FailingCalls failing(FailingCalls::Of::SetSlot, 0);
        u8 sample = 1;
        EXPECT_EQ(ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0), 0u);
        EXPECT_EQ(sample, 1);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
        EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
    });
}

// A slot of the test's own: teardown frees the records of threads that live on.
ThreadContextSlot<ZLVThreadContext> torn;

TEST(Contexts, TeardownFreesTheRecordsOfLivingThreads)
{
    torn.Initialize([](void* value) {
        torn.Restore(value);
        torn.Release();
    });
    std::atomic<int> ready = 0;
    std::atomic<bool> isTorn = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            EXPECT_NE(torn.Get(), nullptr);
            ++ready;
            while (!isTorn) std::this_thread::yield();
        });
    }
    while (ready < 3) std::this_thread::yield();
    EXPECT_EQ(torn.CountRecords(), 3u);
    torn.TearDown();
    isTorn = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(torn.Get(), nullptr) << "a torn slot gives nothing";
    EXPECT_EQ(torn.Find(), nullptr);
}

}  // namespace
}  // namespace zlv
