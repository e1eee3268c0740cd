// What the platform floor leaves of the host's last Win32 error: all of it.
#include "platform/platform.h"

#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace zlv::platform {
namespace {

const struct {
    const char* shows;
    void (*call)();
} kCalls[] = {
    {"memory", [] { Free(Allocate(100)); }},
    {"memory that can't be had", [] { EXPECT_EQ(Allocate(size_t{1} << 62), nullptr); }},
    {"a client's block", [] { FreeClientBlock(AllocateClientBlock(100)); }},
    {"a client's block that can't be had", [] { EXPECT_EQ(AllocateClientBlock(size_t{1} << 62), nullptr); }},
    {"a slot",
     [] {
         const SlotIndex slot = AllocateSlot(nullptr);
         EXPECT_TRUE(SetSlot(slot, reinterpret_cast<void*>(8)));
         EXPECT_NE(GetSlot(slot), nullptr);
         EXPECT_TRUE(SetSlot(slot, nullptr));
         FreeSlot(slot);
     }},
    {"a slot that is none", [] { EXPECT_FALSE(SetSlot(kNoSlot, nullptr)); }},
    {"a wild read",
     [] {
         char byte;
         EXPECT_FALSE(ReadForeignMemory(nullptr, &byte, 1));
     }},
    {"a thread",
     [] {
         Thread* const thread = StartSuspendedThread([](void*) { SetLastError(99); }, nullptr);
         ResumeThread(thread);
         EXPECT_TRUE(WaitForThread(thread, kWaitForever));
         CloseThread(thread);
     }},
    {"an event",
     [] {
         Event* const event = CreateManualEvent();
         EXPECT_FALSE(WaitForEvent(event, 1));
         SetManualEvent(event);
         CloseEvent(event);
     }},
    {"a mutex that is not ours",
     [] {
         OwnedMutex* const mutex = CreateOwnedMutex();
         EXPECT_FALSE(ReleaseMutex(mutex));
         CloseMutex(mutex);
     }},
};

TEST(HostError, EveryPlatformCallLeavesIt)
{
    for (const auto& row : kCalls) {
        row.call();  // the test hooks' own thread-local storage comes into being, and changes the error
        SetLastError(4711);
        row.call();
        EXPECT_EQ(GetLastError(), 4711u) << row.shows;
    }
}

}  // namespace
}  // namespace zlv::platform
