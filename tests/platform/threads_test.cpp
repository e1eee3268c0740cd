#include "platform/platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zlv::platform {
namespace {

void SetFlag(void* flag) { *static_cast<std::atomic<bool>*>(flag) = true; }

void Sleep(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

TEST(SuspendedThread, RunsWhenItIsResumed)
{
    std::atomic<bool> hasRun = false;
    Thread* const thread = StartSuspendedThread(SetFlag, &hasRun);
    ASSERT_NE(thread, nullptr);
    Sleep(20);
    EXPECT_FALSE(hasRun);
    EXPECT_FALSE(WaitForThread(thread, 0));
    ResumeThread(thread);
    EXPECT_TRUE(WaitForThread(thread, kWaitForever));
    EXPECT_TRUE(hasRun);
    EXPECT_TRUE(WaitForThread(thread, 0)) << "it may be asked again";
    CloseThread(thread);
}

TEST(SuspendedThread, ClosedUnresumedItNeverRuns)
{
    std::atomic<bool> hasRun = false;
    Thread* const thread = StartSuspendedThread(SetFlag, &hasRun);
    ASSERT_NE(thread, nullptr);
    CloseThread(thread);
    Sleep(20);
    EXPECT_FALSE(hasRun);
}

TEST(SuspendedThread, ClosedWhileItRunsItRunsOn)
{
    struct Meeting {
        std::atomic<bool> mayGo = false, isDone = false;
    } meeting;
    const auto wait = [](void* argument) {
        Meeting& the = *static_cast<Meeting*>(argument);
        while (!the.mayGo) std::this_thread::yield();
        the.isDone = true;
    };
    Thread* const thread = StartSuspendedThread(wait, &meeting);
    ASSERT_NE(thread, nullptr);
    ResumeThread(thread);
    EXPECT_FALSE(WaitForThread(thread, 10));
    CloseThread(thread);
    EXPECT_FALSE(meeting.isDone);
    meeting.mayGo = true;
    while (!meeting.isDone) std::this_thread::yield();
}

TEST(SuspendedThread, NullIsNothingToClose)
{
    CloseThread(nullptr);
    CloseEvent(nullptr);
    CloseMutex(nullptr);
    SUCCEED();
}

TEST(ManualEvent, StaysSet)
{
    Event* const event = CreateManualEvent();
    ASSERT_NE(event, nullptr);
    EXPECT_FALSE(WaitForEvent(event, 0));
    EXPECT_FALSE(WaitForEvent(event, 15));
    SetManualEvent(event);
    EXPECT_TRUE(WaitForEvent(event, 0));
    EXPECT_TRUE(WaitForEvent(event, kWaitForever));
    CloseEvent(event);
}

TEST(ManualEvent, WakesEverybodyWhoWaits)
{
    Event* const event = CreateManualEvent();
    ASSERT_NE(event, nullptr);
    std::atomic<int> woken = 0;
    const auto wait = [&] { woken += WaitForEvent(event, 20000); };
    std::thread first(wait), second(wait);
    Sleep(10);
    SetManualEvent(event);
    first.join();
    second.join();
    EXPECT_EQ(woken, 2);
    CloseEvent(event);
}

TEST(OwnedMutex, BelongsToAThread)
{
    OwnedMutex* const mutex = CreateOwnedMutex();
    ASSERT_NE(mutex, nullptr);
    EXPECT_TRUE(AcquireMutex(mutex, 0));
    EXPECT_TRUE(AcquireMutex(mutex, 0)) << "its owner may acquire it again";
    std::thread([&] {
        EXPECT_FALSE(AcquireMutex(mutex, 10));
        EXPECT_FALSE(ReleaseMutex(mutex)) << "only the owner releases";
    }).join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    std::thread([&] { EXPECT_FALSE(AcquireMutex(mutex, 0)) << "released once of twice"; }).join();
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_FALSE(ReleaseMutex(mutex)) << "it is free";
    std::thread([&] {
        EXPECT_TRUE(AcquireMutex(mutex, 0));
        EXPECT_TRUE(ReleaseMutex(mutex));
    }).join();
    CloseMutex(mutex);
}

TEST(OwnedMutex, IsHandedToAThreadThatWaits)
{
    OwnedMutex* const mutex = CreateOwnedMutex();
    ASSERT_NE(mutex, nullptr);
    ASSERT_TRUE(AcquireMutex(mutex, 0));
    std::atomic<bool> isTaken = false;
    std::thread other([&] {
        isTaken = AcquireMutex(mutex, 20000);
        ReleaseMutex(mutex);
    });
    Sleep(10);
    EXPECT_FALSE(isTaken);
    ReleaseMutex(mutex);
    other.join();
    EXPECT_TRUE(isTaken);
    CloseMutex(mutex);
}

}  // namespace
}  // namespace zlv::platform
