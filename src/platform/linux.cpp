// The platform floor on Linux: POSIX threads and clocks.
#include "platform/platform.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <new>

#include <fcntl.h>
#include <pthread.h>
#include <sys/uio.h>
#include <unistd.h>

namespace zlv::platform {

namespace {

class KeepHostError {
public:
    KeepHostError() : error_(errno) {}
    ~KeepHostError() { errno = error_; }
    KeepHostError(const KeepHostError&) = delete;
    KeepHostError& operator=(const KeepHostError&) = delete;

private:
    int error_;
};

// A mutex and a condition on the monotonic clock: setting the wall clock does not stretch a time-out.
class Monitor {
public:
    Monitor()
    {
        pthread_mutex_init(&mutex_, nullptr);
        pthread_condattr_t attributes;
        pthread_condattr_init(&attributes);
        pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
        pthread_cond_init(&changed_, &attributes);
        pthread_condattr_destroy(&attributes);
    }
    ~Monitor()
    {
        pthread_cond_destroy(&changed_);
        pthread_mutex_destroy(&mutex_);
    }
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    void Lock() { pthread_mutex_lock(&mutex_); }
    void Unlock() { pthread_mutex_unlock(&mutex_); }
    void TellAll() { pthread_cond_broadcast(&changed_); }

    // Waits, locked, until the condition holds or the time is over; says whether it holds.
    template <class Condition>
    bool Wait(u32 milliseconds, Condition holds)
    {
        if (milliseconds == kWaitForever) {
            while (!holds()) pthread_cond_wait(&changed_, &mutex_);
            return true;
        }
        const timespec deadline = After(milliseconds);
        while (!holds()) {
            if (pthread_cond_timedwait(&changed_, &mutex_, &deadline) == ETIMEDOUT) return holds();
        }
        return true;
    }

private:
    static timespec After(u32 milliseconds)
    {
        constexpr long kNanosecondsASecond = 1'000'000'000;
        timespec time;
        clock_gettime(CLOCK_MONOTONIC, &time);
        time.tv_sec += milliseconds / 1000;
        time.tv_nsec += long(milliseconds % 1000) * 1'000'000;
        if (time.tv_nsec >= kNanosecondsASecond) {
            time.tv_nsec -= kNanosecondsASecond;
            ++time.tv_sec;
        }
        return time;
    }

    pthread_mutex_t mutex_;
    pthread_cond_t changed_;
};

class MonitorLock {
public:
    explicit MonitorLock(Monitor& monitor) : monitor_(monitor) { monitor_.Lock(); }
    ~MonitorLock() { monitor_.Unlock(); }
    MonitorLock(const MonitorLock&) = delete;
    MonitorLock& operator=(const MonitorLock&) = delete;

private:
    Monitor& monitor_;
};

template <class T, class... Arguments>
T* Make(Arguments... arguments)
{
    void* const memory = Allocate(sizeof(T));
    return memory ? new (memory) T(arguments...) : nullptr;
}

template <class T>
void Destroy(T* object)
{
    object->~T();
    Free(object);
}

pthread_mutex_t* Native(unsigned char* storage)
{
    static_assert(sizeof(pthread_mutex_t) <= 40);
    return reinterpret_cast<pthread_mutex_t*>(storage);
}

}  // namespace

// ---- Memory ---------------------------------------------------------------------------------------------------

void* Allocate(size_t bytes)
{
    const KeepHostError keep;
    return std::malloc(bytes ? bytes : 1);
}

void Free(void* block) { std::free(block); }

void* AllocateClientBlock(size_t bytes)
{
    const KeepHostError keep;
    return std::calloc(bytes ? bytes : 1, 1);
}

void FreeClientBlock(void* block) { std::free(block); }

namespace {

// The kernel checks the source address of a write, also in a sandbox that forbids process_vm_readv.
bool ReadThroughPipe(const char* from, char* to, size_t bytes)
{
    constexpr size_t kStep = 4096;  // a pipe takes this much at once
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    bool isGood = true;
    for (size_t done = 0; isGood && done < bytes;) {
        const size_t step = bytes - done < kStep ? bytes - done : kStep;
        const ssize_t written = write(ends[1], from + done, step);
        isGood = written > 0 && read(ends[0], to + done, size_t(written)) == written;
        if (isGood) done += size_t(written);
    }
    close(ends[0]);
    close(ends[1]);
    return isGood;
}

}  // namespace

bool ReadForeignMemory(const void* from, void* to, size_t bytes)
{
    const KeepHostError keep;
    iovec local = {to, bytes};
    iovec remote = {const_cast<void*>(from), bytes};
    const ssize_t read = process_vm_readv(getpid(), &local, 1, &remote, 1, 0);
    if (read < 0 && (errno == EPERM || errno == ENOSYS)) {
        return ReadThroughPipe(static_cast<const char*>(from), static_cast<char*>(to), bytes);
    }
    return read >= 0 && size_t(read) == bytes;
}

// ---- Thread slots ---------------------------------------------------------------------------------------------

SlotIndex AllocateSlot(SlotEndHook atThreadEnd)
{
    static_assert(sizeof(pthread_key_t) == sizeof(SlotIndex));
    pthread_key_t key;
    return pthread_key_create(&key, atThreadEnd) == 0 ? key : kNoSlot;
}

void FreeSlot(SlotIndex slot) { pthread_key_delete(slot); }
void* GetSlot(SlotIndex slot) { return pthread_getspecific(slot); }
bool SetSlot(SlotIndex slot, void* value) { return pthread_setspecific(slot, value) == 0; }

// ---- Locks ----------------------------------------------------------------------------------------------------

void CriticalSection::Initialize()
{
    // The same thread may enter again, as on Windows.
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(Native(storage_), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void CriticalSection::Enter() { pthread_mutex_lock(Native(storage_)); }
void CriticalSection::Leave() { pthread_mutex_unlock(Native(storage_)); }
void CriticalSection::Delete() { pthread_mutex_destroy(Native(storage_)); }

// ---- Threads and what they wait for ---------------------------------------------------------------------------

struct Thread {
    Thread(ThreadFunction theFunction, void* theArgument) : function(theFunction), argument(theArgument) {}

    enum class Order : u8 { Wait, Run, Leave };

    Monitor monitor;
    pthread_t native = {};
    ThreadFunction function;
    void* argument;
    Order order = Order::Wait;
    bool hasEnded = false;
    bool isJoined = false;
    bool isAbandoned = false;  // its handle was closed while it ran: it cleans up after itself
};

namespace {

void* RunThread(void* parameter)
{
    Thread* const thread = static_cast<Thread*>(parameter);
    thread->monitor.Lock();
    (void)thread->monitor.Wait(kWaitForever, [&] { return thread->order != Thread::Order::Wait; });
    const bool runs = thread->order == Thread::Order::Run;
    thread->monitor.Unlock();

    if (runs) thread->function(thread->argument);

    thread->monitor.Lock();
    thread->hasEnded = true;
    const bool isAbandoned = thread->isAbandoned;
    thread->monitor.TellAll();
    thread->monitor.Unlock();
    if (isAbandoned) Destroy(thread);
    return nullptr;
}

// Joined, and not merely told that the function is over: the thread's last steps, the end of its contexts among them,
// are code of the library too, and the host may unload it as soon as the call returns.
void Join(Thread* thread)
{
    pthread_join(thread->native, nullptr);
    thread->isJoined = true;
}

void Give(Thread* thread, Thread::Order order)
{
    const MonitorLock lock(thread->monitor);
    thread->order = order;
    thread->monitor.TellAll();
}

// True when the thread still ran and now owns itself.
bool Abandon(Thread* thread)
{
    const MonitorLock lock(thread->monitor);
    if (thread->hasEnded) return false;
    pthread_detach(thread->native);
    thread->isAbandoned = true;
    return true;
}

}  // namespace

Thread* StartSuspendedThread(ThreadFunction function, void* argument)
{
    const KeepHostError keep;
    Thread* const thread = Make<Thread>(function, argument);
    if (!thread) return nullptr;
    if (pthread_create(&thread->native, nullptr, RunThread, thread) == 0) return thread;
    Destroy(thread);
    return nullptr;
}

void ResumeThread(Thread* thread) { Give(thread, Thread::Order::Run); }

bool WaitForThread(Thread* thread, u32 milliseconds)
{
    if (thread->isJoined) return true;
    thread->monitor.Lock();
    const bool hasEnded = thread->monitor.Wait(milliseconds, [&] { return thread->hasEnded; });
    thread->monitor.Unlock();
    if (hasEnded) Join(thread);
    return hasEnded;
}

void CloseThread(Thread* thread)
{
    if (!thread) return;
    if (!thread->isJoined) {
        const bool wasResumed = thread->order == Thread::Order::Run;
        if (!wasResumed) Give(thread, Thread::Order::Leave);
        if (wasResumed && Abandon(thread)) return;
        Join(thread);
    }
    Destroy(thread);
}

namespace {

#if defined(__x86_64__) && !defined(ZLV_PORTABLE)
void PauseProcessor() { asm volatile("pause"); }
#else
void PauseProcessor() {}
#endif

// A partner on another processor is often there within a microsecond: to sleep and to be woken takes many. Looks a
// while at what it waits for, and says whether that has come.
template <class Condition>
bool Spin(Condition holds)
{
    constexpr int kLooks = 200;
    for (int i = 0; i < kLooks; ++i) {
        if (holds()) return true;
        PauseProcessor();
    }
    return false;
}

}  // namespace

struct Event {
    Monitor monitor;
    std::atomic<bool> isSet = false;
};

Event* CreateManualEvent() { return Make<Event>(); }

void SetManualEvent(Event* event)
{
    const MonitorLock lock(event->monitor);
    event->isSet = true;
    event->monitor.TellAll();
}

bool WaitForEvent(Event* event, u32 milliseconds)
{
    const auto isSet = [&] { return event->isSet.load(); };
    if (milliseconds > 0) (void)Spin(isSet);
    // The lock is taken even so: the event may be closed as soon as this returns, and its setter must be gone then.
    const MonitorLock lock(event->monitor);
    return event->monitor.Wait(milliseconds, isSet);
}

void CloseEvent(Event* event)
{
    if (event) Destroy(event);
}

// Taken and released without the monitor unless somebody sleeps. Either the one who goes to sleep sees that it is free,
// or the one who releases it sees the sleeper: both write first and then look. Closed when no call on it goes on.
struct OwnedMutex {
    static constexpr pthread_t kNobody = 0;

    Monitor monitor;
    std::atomic<pthread_t> owner = kNobody;
    std::atomic<u32> sleepers = 0;
    u32 depth = 0;  // the owner's

    bool IsMine() const { return owner.load(std::memory_order_relaxed) == pthread_self(); }
    bool TryTake()
    {
        pthread_t expected = kNobody;
        return owner.load() == kNobody && owner.compare_exchange_strong(expected, pthread_self());
    }
};

OwnedMutex* CreateOwnedMutex() { return Make<OwnedMutex>(); }

bool AcquireMutex(OwnedMutex* mutex, u32 milliseconds)
{
    const auto take = [&] { return mutex->TryTake(); };
    if (!mutex->IsMine() && !take()) {
        if (milliseconds == 0) return false;
        if (!Spin(take)) {
            const MonitorLock lock(mutex->monitor);
            ++mutex->sleepers;
            const bool isTaken = mutex->monitor.Wait(milliseconds, take);
            --mutex->sleepers;
            if (!isTaken) return false;
        }
    }
    ++mutex->depth;
    return true;
}

bool ReleaseMutex(OwnedMutex* mutex)
{
    if (!mutex->IsMine()) return false;
    if (--mutex->depth > 0) return true;
    mutex->owner.store(OwnedMutex::kNobody);
    if (mutex->sleepers.load() > 0) {
        const MonitorLock lock(mutex->monitor);
        mutex->monitor.TellAll();
    }
    return true;
}

void CloseMutex(OwnedMutex* mutex)
{
    if (mutex) Destroy(mutex);
}

// ---- Clocks ---------------------------------------------------------------------------------------------------

u32 TickCount()
{
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return u32(u64(time.tv_sec) * 1000 + u64(time.tv_nsec) / 1'000'000);
}

TimeOfDay LocalTime()
{
    const KeepHostError keep;
    const time_t now = time(nullptr);
    tm local = {};
    localtime_r(&now, &local);
    return {u32(local.tm_hour), u32(local.tm_min), u32(local.tm_sec)};
}

u32 SecondsSince1970() { return u32(time(nullptr)); }

// ---- The entry point ------------------------------------------------------------------------------------------

namespace {

[[gnu::constructor]] void EnterLibrary() { OnLibraryLoad(); }
// The loader calls this for an unloading and for the end of the process alike, and does not tell which.
[[gnu::destructor]] void LeaveLibrary() { OnLibraryUnload(false); }

}  // namespace

}  // namespace zlv::platform
