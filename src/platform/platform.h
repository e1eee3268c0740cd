// What differs between operating systems, and nothing else. One implementation a system: windows.cpp, linux.cpp.
//
// No function here changes what the host can see of the system's own error state (GetLastError, errno): a host may
// call the library between a failing call of its own and the look at its reason.
#pragma once

#include "platform/types.h"

namespace zlv::platform {

// ---- Memory ---------------------------------------------------------------------------------------------------

// Memory of the library's own, aligned to 16 bytes, with undefined contents; null when it can't be had.
[[nodiscard]] void* Allocate(size_t bytes);
void Free(void* block);

// Blocks that are handed to the client, who frees them himself: zero-filled; null when they can't be had.
[[nodiscard]] void* AllocateClientBlock(size_t bytes);
void FreeClientBlock(void* block);

// Copies bytes from an address that may be stale or wild. False, with `to` undefined, when it can't be read.
[[nodiscard]] bool ReadForeignMemory(const void* from, void* to, size_t bytes);

// ---- Thread slots ---------------------------------------------------------------------------------------------

using SlotIndex = u32;
inline constexpr SlotIndex kNoSlot = 0xFFFFFFFF;

// Runs on a thread that ends, with the value that the thread's slot holds, if it is not null.
using SlotEndHook = void (*)(void* value);

// kNoSlot when the system has none left. At most kMaxSlots at a time.
inline constexpr u32 kMaxSlots = 4;
[[nodiscard]] SlotIndex AllocateSlot(SlotEndHook atThreadEnd);
void FreeSlot(SlotIndex slot);
[[nodiscard]] void* GetSlot(SlotIndex slot);
[[nodiscard]] bool SetSlot(SlotIndex slot, void* value);

// ---- Locks ----------------------------------------------------------------------------------------------------

// A critical section in static storage: it has no constructor, Initialize and Delete are called by its owner.
class CriticalSection {
public:
    void Initialize();
    void Enter();
    void Leave();
    void Delete();

private:
    alignas(8) unsigned char storage_[40] = {};
};

class CriticalSectionLock {
public:
    explicit CriticalSectionLock(CriticalSection& section) : section_(section) { section_.Enter(); }
    ~CriticalSectionLock() { section_.Leave(); }
    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

private:
    CriticalSection& section_;
};

// ---- Threads and what they wait for ---------------------------------------------------------------------------

inline constexpr u32 kWaitForever = 0xFFFFFFFF;

using ThreadFunction = void (*)(void* argument);

// Handles to objects of the system; null is no object. Close takes null too.
struct Thread;
struct Event;
struct OwnedMutex;

// A thread that waits for ResumeThread before it runs function(argument); null when it can't be started.
[[nodiscard]] Thread* StartSuspendedThread(ThreadFunction function, void* argument);
void ResumeThread(Thread* thread);
// True when the thread has ended in time.
[[nodiscard]] bool WaitForThread(Thread* thread, u32 milliseconds);
// Lets go of the handle; a running thread runs on. A thread that was never resumed ends without running its function.
void CloseThread(Thread* thread);

// Stays set once it is set. Starts unset.
[[nodiscard]] Event* CreateManualEvent();
void SetManualEvent(Event* event);
[[nodiscard]] bool WaitForEvent(Event* event, u32 milliseconds);
void CloseEvent(Event* event);

// Belongs to the thread that acquired it, which may acquire it again and must release it as often; starts free. Closed
// when no call on it is going on any more.
[[nodiscard]] OwnedMutex* CreateOwnedMutex();
[[nodiscard]] bool AcquireMutex(OwnedMutex* mutex, u32 milliseconds);
// False, with nothing done, on a thread that is not the owner.
bool ReleaseMutex(OwnedMutex* mutex);
void CloseMutex(OwnedMutex* mutex);

// ---- Clocks ---------------------------------------------------------------------------------------------------

// Milliseconds since some start; wraps after 49 days.
[[nodiscard]] u32 TickCount();

struct TimeOfDay {
    u32 hours, minutes, seconds;
};
[[nodiscard]] TimeOfDay LocalTime();

// The calendar's time; wraps in 2106.
[[nodiscard]] u32 SecondsSince1970();

// ---- The entry point ------------------------------------------------------------------------------------------

// Called by the system's loader through the entry point of each system; the runtime defines both.
void OnLibraryLoad();
void OnLibraryUnload(bool isProcessEnding);

}  // namespace zlv::platform
