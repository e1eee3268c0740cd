// The cost matrix on two threads: what they compute, and what happens when they come late or not at all.
#include "seam/seam_cost.h"
#include "seam/seam_support.h"
#include "support/test_hooks.h"
#include "support/thread_hooks.h"

#include <chrono>

namespace zlv {
namespace {

using zlvtest::FailingCalls;
using zlvtest::ThreadOrders;

// In the order in which they are started.
constexpr int kRight = 0, kLeft = 1, kClient = ThreadOrders::kClient;
constexpr u32 kPatience = 1000, kTooLong = 1400;

struct Pass {
    PlainSeamImage<u16> plainEnergy;
    PlainSeamImage<i32> plainBias, plainCost;
    CLImage<u16> energy;
    CLImage<i32> bias, cost;
    SeamContext context;

    Pass(int width, int height, int columns, bool hasBias)
        : plainEnergy(RandomPlain<u16>(width, height, 1, columns, u64(width), 500)),
          plainCost(RandomPlain<i32>(width, height, 1, columns, 3, 100))
    {
        if (hasBias) plainBias = RandomPlain<i32>(width, height, 1, columns, 2, 65025);
        CopyPlain(plainEnergy, energy);
        CopyPlain(plainBias, bias);
        CopyPlain(plainCost, cost);
        EXPECT_TRUE(context.rightRowDone.Create(u32(height)));
        EXPECT_TRUE(context.leftRowDone.Create(u32(height)));
    }

    Error Run() { return ComputeCostThreaded(context, energy, cost, bias); }

    void ExpectPlain()
    {
        EXPECT_EQ(Run(), Error::None);
        PlainCosts(plainEnergy, plainBias, plainCost, true);
        ExpectSameImage(plainCost, cost);
    }
};

// Three columns: the left half has one, and the column behind it is the right one's alone.
TEST(SeamCostThreads, EqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const int width : {3, 4, 5, 6, 7, 8, 15, 16, 17, 33, 64, 65, 100}) {
            for (const int height : {3, 4, 9}) {
                for (const bool hasBias : {false, true}) {
                    SCOPE(width, 'x', height, "bias", hasBias);
                    Pass(width, height, width + 2, hasBias).ExpectPlain();
                }
            }
        }
    });
}

// The mutexes of a pass serve the next one too: no row of the one before is left owned.
TEST(SeamCostThreads, PassesFollowEachOther)
{
    Pass pass(40, 50, 40, false);
    for (int i = 0; i < 20; ++i) {
        SCOPE(i);
        pass.ExpectPlain();
    }
}

TEST(SeamCostThreads, AListOfMutexesIsFilledOnce)
{
    RowMutexes rows;
    ASSERT_TRUE(rows.Create(3));
    const platform::OwnedMutex* const first = rows[0];
    ASSERT_TRUE(rows.Create(7));
    EXPECT_EQ(rows.GetCount(), 3u);
    EXPECT_EQ(rows[0], first);
}

TEST(SeamCostThreads, AListWithoutAllItsMutexesIsEmpty)
{
    const std::int64_t before = zlvtest::OpenHandles();
    for (u32 succeeding = 0; succeeding < 3; ++succeeding) {
        SCOPE(succeeding);
        RowMutexes rows;
        const FailingCalls failing(FailingCalls::Of::CreateMutex, succeeding);
        EXPECT_FALSE(rows.Create(3));
        EXPECT_EQ(rows.GetCount(), 0u);
        EXPECT_EQ(zlvtest::OpenHandles(), before);
    }
}

TEST(SeamCostThreads, KeepNoHandleBeyondTheirContext)
{
    const std::int64_t before = zlvtest::OpenHandles();
    {
        Pass pass(10, 5, 10, false);
        const std::int64_t withMutexes = zlvtest::OpenHandles();
        EXPECT_EQ(withMutexes, before + 10);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(pass.Run(), Error::None);
            EXPECT_EQ(zlvtest::OpenHandles(), withMutexes + 4) << "the latest four events";
        }
    }
    EXPECT_EQ(zlvtest::OpenHandles(), before);
}

TEST(SeamCostThreads, EveryWaitIsForASecond)
{
    Pass pass(10, 5, 10, false);
    const ThreadOrders orders;
    EXPECT_EQ(pass.Run(), Error::None);
    EXPECT_EQ(orders.Started(), 2u);
    EXPECT_TRUE(orders.WereAllLimits(kPatience));
}

// ---- What can go wrong ------------------------------------------------------------------------------------------

struct TimeOutRow {
    const char* shows;
    int thread;
    ThreadOrders::Wait wait;
    u32 succeeding;
};
const TimeOutRow kTimeOuts[] = {
    {"the left worker is not ready", kClient, ThreadOrders::Wait::Event, 0},
    {"the right worker is not ready", kClient, ThreadOrders::Wait::Event, 1},
    {"the left worker is not told to go", kLeft, ThreadOrders::Wait::Event, 0},
    {"the right worker is not told to go", kRight, ThreadOrders::Wait::Event, 0},
    {"the left worker's first row signal does not come", kLeft, ThreadOrders::Wait::Mutex, 0},
    {"the right worker's first row signal does not come", kRight, ThreadOrders::Wait::Mutex, 0},
    {"the left worker's last row signal does not come", kLeft, ThreadOrders::Wait::Mutex, 2},
    {"the right worker's last row signal does not come", kRight, ThreadOrders::Wait::Mutex, 2},
};

TEST(SeamCostThreads, ATimeOutIsItsCodeAndNoThreadIsLeft)
{
    for (const TimeOutRow& row : kTimeOuts) {
        SCOPE(row.shows);
        const std::int64_t before = zlvtest::OpenHandles();
        {
            Pass pass(12, 4, 12, false);
            ThreadOrders orders;
            orders.TimeOut(row.thread, row.wait, row.succeeding);
            EXPECT_EQ(pass.Run(), Error::TimeOut);
            EXPECT_EQ(orders.TimedOut(), 1u);
            EXPECT_EQ(orders.Started(), 2u);
        }
        EXPECT_EQ(zlvtest::OpenHandles(), before);
    }
}

TEST(SeamCostThreads, TheRightWorkersCodeGoesFirst)
{
    Pass pass(12, 4, 12, false);
    ThreadOrders orders;
    orders.TimeOut(kRight, ThreadOrders::Wait::Event, 0);
    EXPECT_EQ(pass.Run(), Error::TimeOut);
    EXPECT_EQ(pass.context.right.result, Error::TimeOut);
}

// For real: nothing is wrong but the time that it takes.
TEST(SeamCostThreads, AWorkerThatStartsLateIsATimeOut)
{
    for (const int thread : {kLeft, kRight}) {
        SCOPE(thread == kLeft ? "left" : "right");
        Pass pass(12, 4, 12, false);
        ThreadOrders orders;
        orders.Delay(thread, kTooLong);
        EXPECT_EQ(pass.Run(), Error::TimeOut);
        EXPECT_EQ(orders.TimedOut(), 0u);
    }
}

TEST(SeamCostThreads, AWorkerThatIsSlowInARowIsATimeOut)
{
    Pass pass(12, 4, 12, false);
    ThreadOrders orders;
    orders.DelayRelease(kRight, 2, kTooLong);
    EXPECT_EQ(pass.Run(), Error::TimeOut);
    EXPECT_EQ(pass.context.left.result, Error::TimeOut);
}

TEST(SeamCostThreads, AWorkerThatIsSlowWithinReasonIsWaitedFor)
{
    for (const int thread : {kLeft, kRight}) {
        SCOPE(thread == kLeft ? "left" : "right");
        Pass pass(12, 4, 12, false);
        ThreadOrders orders;
        orders.Delay(thread, 40);
        orders.DelayRelease(thread, 1, 60);
        pass.ExpectPlain();
    }
}

// Neither thread has begun: nothing waits for a partner that does not come.
TEST(SeamCostThreads, AThreadThatCannotStartIsCode17AtOnce)
{
    for (u32 succeeding = 0; succeeding < 2; ++succeeding) {
        SCOPE(succeeding);
        const std::int64_t before = zlvtest::OpenHandles();
        {
            Pass pass(12, 4, 12, false);
            const auto start = std::chrono::steady_clock::now();
            {
                const FailingCalls failing(FailingCalls::Of::StartThread, succeeding);
                EXPECT_EQ(pass.Run(), Error::CouldNotRun);
            }
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kPatience));
            pass.ExpectPlain();
        }
        EXPECT_EQ(zlvtest::OpenHandles(), before);
    }
}

TEST(SeamCostThreads, AnEventThatCannotBeMadeIsCodeOne)
{
    for (u32 succeeding = 0; succeeding < 4; ++succeeding) {
        SCOPE(succeeding);
        const std::int64_t before = zlvtest::OpenHandles();
        {
            Pass pass(12, 4, 12, false);
            {
                const FailingCalls failing(FailingCalls::Of::CreateEvent, succeeding);
                EXPECT_EQ(pass.Run(), Error::OutOfMemory);
            }
            pass.ExpectPlain();
        }
        EXPECT_EQ(zlvtest::OpenHandles(), before);
    }
}

}  // namespace
}  // namespace zlv
