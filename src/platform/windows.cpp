// The platform floor on Windows: Win32 functions of kernel32 alone.
#include "platform/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <new>

namespace zlv::platform {

namespace {

// Several Win32 functions set the thread's last error even when they succeed (TlsGetValue does).
class KeepHostError {
public:
    KeepHostError() : error_(::GetLastError()) {}
    ~KeepHostError() { ::SetLastError(error_); }
    KeepHostError(const KeepHostError&) = delete;
    KeepHostError& operator=(const KeepHostError&) = delete;

private:
    DWORD error_;
};

CRITICAL_SECTION* Native(unsigned char* storage)
{
    static_assert(sizeof(CRITICAL_SECTION) <= 40);
    return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

bool WaitFor(HANDLE handle, u32 milliseconds)
{
    const KeepHostError keep;
    const DWORD answer = ::WaitForSingleObject(handle, milliseconds);
    return answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
}

void Close(HANDLE handle)
{
    if (!handle) return;
    const KeepHostError keep;
    ::CloseHandle(handle);
}

}  // namespace

// ---- Memory ---------------------------------------------------------------------------------------------------

void* Allocate(size_t bytes)
{
    const KeepHostError keep;
    return ::HeapAlloc(::GetProcessHeap(), 0, bytes);
}

void Free(void* block)
{
    if (!block) return;
    const KeepHostError keep;
    ::HeapFree(::GetProcessHeap(), 0, block);
}

void* AllocateClientBlock(size_t bytes)
{
    const KeepHostError keep;
    return ::GlobalAlloc(GMEM_ZEROINIT, bytes);
}

void FreeClientBlock(void* block)
{
    if (!block) return;
    const KeepHostError keep;
    ::GlobalFree(block);
}

namespace {

// Whether every page of the range holds memory that may be read. (A guard page of some stack is none: reading it would
// use it up.)
bool IsReadable(const void* from, size_t bytes)
{
    constexpr DWORD kClosed = PAGE_NOACCESS | PAGE_GUARD;
    const u64 end = reinterpret_cast<u64>(from) + bytes;
    for (u64 next = reinterpret_cast<u64>(from); next < end;) {
        MEMORY_BASIC_INFORMATION pages;
        if (!::VirtualQuery(reinterpret_cast<const void*>(next), &pages, sizeof pages)) return false;
        if (pages.State != MEM_COMMIT || (pages.Protect & kClosed)) return false;
        next = reinterpret_cast<u64>(pages.BaseAddress) + pages.RegionSize;
    }
    return true;
}

}  // namespace

bool ReadForeignMemory(const void* from, void* to, size_t bytes)
{
    const KeepHostError keep;
    if (!IsReadable(from, bytes)) return false;
    SIZE_T read = 0;
    // Not a plain copy: another thread may free the pages at any time.
    return ::ReadProcessMemory(::GetCurrentProcess(), from, to, bytes, &read) && read == bytes;
}

// ---- Thread slots ---------------------------------------------------------------------------------------------

namespace {

struct SlotHook {
    SlotIndex slot = kNoSlot;
    SlotEndHook atThreadEnd = nullptr;
};

// Written only while the library loads and unloads.
constinit SlotHook slotHooks[kMaxSlots];

}  // namespace

SlotIndex AllocateSlot(SlotEndHook atThreadEnd)
{
    const KeepHostError keep;
    for (SlotHook& hook : slotHooks) {
        if (hook.slot != kNoSlot) continue;
        hook.slot = ::TlsAlloc();
        hook.atThreadEnd = atThreadEnd;
        return hook.slot;
    }
    return kNoSlot;
}

void FreeSlot(SlotIndex slot)
{
    const KeepHostError keep;
    for (SlotHook& hook : slotHooks) {
        if (hook.slot == slot) hook = {};
    }
    ::TlsFree(slot);
}

void* GetSlot(SlotIndex slot)
{
    const KeepHostError keep;
    return ::TlsGetValue(slot);
}

bool SetSlot(SlotIndex slot, void* value)
{
    const KeepHostError keep;
    return ::TlsSetValue(slot, value);
}

// ---- Locks ----------------------------------------------------------------------------------------------------

void CriticalSection::Initialize() { ::InitializeCriticalSection(Native(storage_)); }
void CriticalSection::Enter() { ::EnterCriticalSection(Native(storage_)); }
void CriticalSection::Leave() { ::LeaveCriticalSection(Native(storage_)); }
void CriticalSection::Delete() { ::DeleteCriticalSection(Native(storage_)); }

// ---- Threads and what they wait for ---------------------------------------------------------------------------

struct Thread {
    HANDLE handle;
    ThreadFunction function;
    void* argument;
    bool isResumed;
    LONG references;  // the handle's owner and the thread itself
};

namespace {

void Release(Thread* thread)
{
    if (::InterlockedDecrement(&thread->references) == 0) Free(thread);
}

DWORD WINAPI RunThread(void* parameter)
{
    Thread* const thread = static_cast<Thread*>(parameter);
    if (thread->isResumed) thread->function(thread->argument);
    Release(thread);
    return 0;
}

}  // namespace

Thread* StartSuspendedThread(ThreadFunction function, void* argument)
{
    const KeepHostError keep;
    void* const memory = Allocate(sizeof(Thread));
    if (!memory) return nullptr;
    Thread* const thread = new (memory) Thread{nullptr, function, argument, false, 2};
    thread->handle = ::CreateThread(nullptr, 0, RunThread, thread, CREATE_SUSPENDED, nullptr);
    if (thread->handle) return thread;
    Free(thread);
    return nullptr;
}

void ResumeThread(Thread* thread)
{
    const KeepHostError keep;
    thread->isResumed = true;
    ::ResumeThread(thread->handle);
}

bool WaitForThread(Thread* thread, u32 milliseconds) { return WaitFor(thread->handle, milliseconds); }

void CloseThread(Thread* thread)
{
    if (!thread) return;
    const KeepHostError keep;
    if (!thread->isResumed) ::ResumeThread(thread->handle);
    ::CloseHandle(thread->handle);
    Release(thread);
}

Event* CreateManualEvent()
{
    const KeepHostError keep;
    return static_cast<Event*>(::CreateEventA(nullptr, TRUE, FALSE, nullptr));
}

void SetManualEvent(Event* event)
{
    const KeepHostError keep;
    ::SetEvent(event);
}

bool WaitForEvent(Event* event, u32 milliseconds) { return WaitFor(event, milliseconds); }
void CloseEvent(Event* event) { Close(event); }

OwnedMutex* CreateOwnedMutex()
{
    const KeepHostError keep;
    return static_cast<OwnedMutex*>(::CreateMutexA(nullptr, FALSE, nullptr));
}

bool AcquireMutex(OwnedMutex* mutex, u32 milliseconds) { return WaitFor(mutex, milliseconds); }

bool ReleaseMutex(OwnedMutex* mutex)
{
    const KeepHostError keep;
    return ::ReleaseMutex(mutex);
}

void CloseMutex(OwnedMutex* mutex) { Close(mutex); }

// ---- Clocks ---------------------------------------------------------------------------------------------------

u32 TickCount() { return ::GetTickCount(); }

TimeOfDay LocalTime()
{
    SYSTEMTIME time;
    ::GetLocalTime(&time);
    return {time.wHour, time.wMinute, time.wSecond};
}

// Windows counts tenths of microseconds since 1601.
u32 SecondsSince1970()
{
    constexpr u64 kTicksInSecond = 10'000'000, kSecondsUpTo1970 = 11'644'473'600;
    FILETIME time;
    ::GetSystemTimeAsFileTime(&time);
    return u32((u64(time.dwHighDateTime) << 32 | time.dwLowDateTime) / kTicksInSecond - kSecondsUpTo1970);
}

// ---- The entry point ------------------------------------------------------------------------------------------

namespace {

void OnThreadEnd()
{
    for (const SlotHook& hook : slotHooks) {
        if (hook.slot == kNoSlot) continue;
        if (void* const value = GetSlot(hook.slot)) hook.atThreadEnd(value);
    }
}

}  // namespace

}  // namespace zlv::platform

extern "C" BOOL WINAPI ZlvDllEntry(HINSTANCE, DWORD reason, void* isProcessEnding);

// The library's entry point. The DLL has no C run-time start-up code: there is nothing here for it to start.
BOOL WINAPI ZlvDllEntry(HINSTANCE, DWORD reason, void* isProcessEnding)
{
    using namespace zlv::platform;
    const KeepHostError keep;
    switch (reason) {
    case DLL_PROCESS_ATTACH: OnLibraryLoad(); break;
    case DLL_THREAD_DETACH: OnThreadEnd(); break;
    case DLL_PROCESS_DETACH: OnLibraryUnload(isProcessEnding != nullptr); break;
    default: break;
    }
    return TRUE;
}
