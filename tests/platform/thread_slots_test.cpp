#include "platform/platform.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zlv::platform {
namespace {

std::atomic<int> endsSeen;
std::atomic<void*> lastValue;

void NoteEnd(void* value)
{
    ++endsSeen;
    lastValue = value;
}

TEST(ThreadSlot, HoldsAValueAThread)
{
    const SlotIndex slot = AllocateSlot(nullptr);
    ASSERT_NE(slot, kNoSlot);
    int mine = 0, theirs = 0;
    EXPECT_EQ(GetSlot(slot), nullptr);
    EXPECT_TRUE(SetSlot(slot, &mine));
    std::thread([&] {
        EXPECT_EQ(GetSlot(slot), nullptr);
        EXPECT_TRUE(SetSlot(slot, &theirs));
        EXPECT_EQ(GetSlot(slot), &theirs);
        EXPECT_TRUE(SetSlot(slot, nullptr));
    }).join();
    EXPECT_EQ(GetSlot(slot), &mine);
    EXPECT_TRUE(SetSlot(slot, nullptr));
    FreeSlot(slot);
}

TEST(ThreadSlot, TellsTheHookOfAnEndingThreadThatHoldsAValue)
{
    endsSeen = 0;
    const SlotIndex slot = AllocateSlot(NoteEnd);
    ASSERT_NE(slot, kNoSlot);
    int value = 0;
    std::thread([&] { EXPECT_TRUE(SetSlot(slot, &value)); }).join();
    EXPECT_EQ(endsSeen, 1);
    EXPECT_EQ(lastValue, &value);
    std::thread([&] {
        EXPECT_TRUE(SetSlot(slot, &value));
        EXPECT_TRUE(SetSlot(slot, nullptr));
    }).join();
    EXPECT_EQ(endsSeen, 1) << "a thread whose slot is empty";
    FreeSlot(slot);
    endsSeen = 0;
}

TEST(ThreadSlot, AFreedSlotHasNoHookAnyMore)
{
    endsSeen = 0;
    const SlotIndex slot = AllocateSlot(NoteEnd);
    int value = 0;
    std::atomic<bool> isSet = false, isFreed = false;
    std::thread other([&] {
        EXPECT_TRUE(SetSlot(slot, &value));
        isSet = true;
        while (!isFreed) std::this_thread::yield();
    });
    while (!isSet) std::this_thread::yield();
    FreeSlot(slot);
    isFreed = true;
    other.join();
    EXPECT_EQ(endsSeen, 0);
}

TEST(ThreadSlot, SlotsCanBeMadeAndFreedForEver)
{
    for (int i = 0; i < 5000; ++i) {
        const SlotIndex slot = AllocateSlot(NoteEnd);
        ASSERT_NE(slot, kNoSlot) << i;
        FreeSlot(slot);
    }
}

TEST(CriticalSection, LetsOneThreadInAtATimeAndTheSameOneAgain)
{
    static CriticalSection section;
    section.Initialize();
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 20000; ++i) {
            const CriticalSectionLock lock(section);
            const CriticalSectionLock again(section);
            ++counter;
        }
    };
    std::thread first(count), second(count);
    first.join();
    second.join();
    EXPECT_EQ(counter, 40000);
    section.Delete();
}

}  // namespace
}  // namespace zlv::platform
