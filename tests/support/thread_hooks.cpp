#include "support/thread_hooks.h"

#include "support/thread_start.h"

#include <atomic>
#include <chrono>
#include <deque>
#include <mutex>
#include <thread>

using namespace zlv::platform;

bool RealWaitForEvent(Event*, std::uint32_t) __asm__("__real__ZN3zlv8platform12WaitForEventEPNS0_5EventEj");
bool WrapWaitForEvent(Event*, std::uint32_t) __asm__("__wrap__ZN3zlv8platform12WaitForEventEPNS0_5EventEj");
bool RealAcquire(OwnedMutex*, std::uint32_t) __asm__("__real__ZN3zlv8platform12AcquireMutexEPNS0_10OwnedMutexEj");
bool WrapAcquire(OwnedMutex*, std::uint32_t) __asm__("__wrap__ZN3zlv8platform12AcquireMutexEPNS0_10OwnedMutexEj");
bool RealRelease(OwnedMutex*) __asm__("__real__ZN3zlv8platform12ReleaseMutexEPNS0_10OwnedMutexE");
bool WrapRelease(OwnedMutex*) __asm__("__wrap__ZN3zlv8platform12ReleaseMutexEPNS0_10OwnedMutexE");
void RealCloseThread(Thread*) __asm__("__real__ZN3zlv8platform11CloseThreadEPNS0_6ThreadE");
void WrapCloseThread(Thread*) __asm__("__wrap__ZN3zlv8platform11CloseThreadEPNS0_6ThreadE");
void RealCloseEvent(Event*) __asm__("__real__ZN3zlv8platform10CloseEventEPNS0_5EventE");
void WrapCloseEvent(Event*) __asm__("__wrap__ZN3zlv8platform10CloseEventEPNS0_5EventE");
void RealCloseMutex(OwnedMutex*) __asm__("__real__ZN3zlv8platform10CloseMutexEPNS0_10OwnedMutexE");
void WrapCloseMutex(OwnedMutex*) __asm__("__wrap__ZN3zlv8platform10CloseMutexEPNS0_10OwnedMutexE");

namespace zlvtest {

namespace {

using Milliseconds = std::chrono::milliseconds;

// What one thread is told. Written before it starts, read and counted down by it alone.
struct Orders {
    std::uint32_t startDelay = 0;
    bool delaysRelease = false;
    std::uint32_t releasesBefore = 0, releaseDelay = 0;
    bool timesOut[2] = {};
    std::uint32_t waitsBefore[2] = {};
};

constexpr int kMostThreads = 64;

struct Stage {
    Orders client, threads[kMostThreads];
    std::atomic<std::uint32_t> started = 0, timedOut = 0;
    std::atomic<std::uint32_t> shortestLimit = kWaitForever, longestLimit = 0;
    struct Start {
        ThreadFunction function;
        void* argument;
        Orders* orders;
    };
    std::mutex lock;
    std::deque<Start> starts;  // keeps what threads still need
};

Stage* stage = nullptr;  // of the one ThreadOrders there is
thread_local Orders* myOrders = nullptr;
std::atomic<std::int64_t> openHandles = 0;

Orders& OrdersFor(int thread) { return thread == ThreadOrders::kClient ? stage->client : stage->threads[thread]; }

void RunOrdered(void* argument)
{
    const auto& start = *static_cast<const Stage::Start*>(argument);
    myOrders = start.orders;
    if (start.orders->startDelay) std::this_thread::sleep_for(Milliseconds(start.orders->startDelay));
    start.function(start.argument);
}

void NoteLimit(std::uint32_t milliseconds)
{
    for (auto seen = stage->shortestLimit.load();
         milliseconds < seen && !stage->shortestLimit.compare_exchange_weak(seen, milliseconds);) {
    }
    for (auto seen = stage->longestLimit.load();
         milliseconds > seen && !stage->longestLimit.compare_exchange_weak(seen, milliseconds);) {
    }
}

// Whether a wait of this thread is to time out.
bool TimesOut(ThreadOrders::Wait wait, std::uint32_t milliseconds)
{
    if (!myOrders || milliseconds == 0 || milliseconds == kWaitForever) return false;
    NoteLimit(milliseconds);
    const int kind = int(wait);
    if (!myOrders->timesOut[kind]) return false;
    if (myOrders->waitsBefore[kind] > 0) {
        --myOrders->waitsBefore[kind];
        return false;
    }
    ++stage->timedOut;
    return true;
}

}  // namespace

ThreadOrders::ThreadOrders()
{
    stage = new Stage;
    myOrders = &stage->client;
}

ThreadOrders::~ThreadOrders()
{
    myOrders = nullptr;
    delete stage;
    stage = nullptr;
}

void ThreadOrders::Delay(int thread, std::uint32_t milliseconds) { OrdersFor(thread).startDelay = milliseconds; }

void ThreadOrders::DelayRelease(int thread, std::uint32_t succeeding, std::uint32_t milliseconds)
{
    Orders& orders = OrdersFor(thread);
    orders.delaysRelease = true;
    orders.releasesBefore = succeeding;
    orders.releaseDelay = milliseconds;
}

void ThreadOrders::TimeOut(int thread, Wait wait, std::uint32_t succeeding)
{
    OrdersFor(thread).timesOut[int(wait)] = true;
    OrdersFor(thread).waitsBefore[int(wait)] = succeeding;
}

std::uint32_t ThreadOrders::Started() const { return stage->started; }
std::uint32_t ThreadOrders::TimedOut() const { return stage->timedOut; }
bool ThreadOrders::WereAllLimits(std::uint32_t milliseconds) const
{
    return stage->shortestLimit == milliseconds && stage->longestLimit == milliseconds;
}

std::int64_t OpenHandles() { return openHandles; }
void CountHandle(bool isMade) { openHandles += isMade; }

Thread* StartOrdered(Thread* (*start)(ThreadFunction, void*), ThreadFunction function, void* argument)
{
    // Only threads of the one who gives the orders are ordered.
    if (!stage || myOrders != &stage->client) return start(function, argument);
    const std::uint32_t index = stage->started++;
    if (index >= kMostThreads) return start(function, argument);
    const std::lock_guard lock(stage->lock);
    stage->starts.push_back({function, argument, &stage->threads[index]});
    return start(RunOrdered, &stage->starts.back());
}

}  // namespace zlvtest

using zlvtest::ThreadOrders;

bool WrapWaitForEvent(Event* event, std::uint32_t milliseconds)
{
    return zlvtest::TimesOut(ThreadOrders::Wait::Event, milliseconds) ? false : RealWaitForEvent(event, milliseconds);
}

bool WrapAcquire(OwnedMutex* mutex, std::uint32_t milliseconds)
{
    return zlvtest::TimesOut(ThreadOrders::Wait::Mutex, milliseconds) ? false : RealAcquire(mutex, milliseconds);
}

bool WrapRelease(OwnedMutex* mutex)
{
    zlvtest::Orders* const orders = zlvtest::myOrders;
    if (orders && orders->delaysRelease && orders->releasesBefore-- == 0) {
        std::this_thread::sleep_for(zlvtest::Milliseconds(orders->releaseDelay));
    }
    return RealRelease(mutex);
}

void WrapCloseThread(Thread* thread)
{
    zlvtest::openHandles -= thread != nullptr;
    RealCloseThread(thread);
}

void WrapCloseEvent(Event* event)
{
    zlvtest::openHandles -= event != nullptr;
    RealCloseEvent(event);
}

void WrapCloseMutex(OwnedMutex* mutex)
{
    zlvtest::openHandles -= mutex != nullptr;
    RealCloseMutex(mutex);
}
