#include "support/test_hooks.h"

#include "platform/platform.h"
#include "support/thread_start.h"

#include <atomic>

using zlv::platform::Event;
using zlv::platform::OwnedMutex;
using zlv::platform::SlotIndex;
using zlv::platform::Thread;
using zlv::platform::ThreadFunction;
using zlv::platform::TimeOfDay;

#ifdef _WIN32
#define SIZE_CODE "y"
#else
#define SIZE_CODE "m"
#endif

// The linker's --wrap leads calls of `name` to __wrap_name, and calls of __real_name to the function itself.
void* RealAllocate(std::size_t) __asm__("__real__ZN3zlv8platform8AllocateE" SIZE_CODE);
void* WrapAllocate(std::size_t) __asm__("__wrap__ZN3zlv8platform8AllocateE" SIZE_CODE);
void RealFree(void*) __asm__("__real__ZN3zlv8platform4FreeEPv");
void WrapFree(void*) __asm__("__wrap__ZN3zlv8platform4FreeEPv");
void RealFreeClientBlock(void*) __asm__("__real__ZN3zlv8platform15FreeClientBlockEPv");
void WrapFreeClientBlock(void*) __asm__("__wrap__ZN3zlv8platform15FreeClientBlockEPv");
void* RealAllocateClientBlock(std::size_t) __asm__("__real__ZN3zlv8platform19AllocateClientBlockE" SIZE_CODE);
void* WrapAllocateClientBlock(std::size_t) __asm__("__wrap__ZN3zlv8platform19AllocateClientBlockE" SIZE_CODE);
Thread* RealStart(ThreadFunction, void*) __asm__("__real__ZN3zlv8platform20StartSuspendedThreadEPFvPvES1_");
Thread* WrapStart(ThreadFunction, void*) __asm__("__wrap__ZN3zlv8platform20StartSuspendedThreadEPFvPvES1_");
bool RealSetSlot(SlotIndex, void*) __asm__("__real__ZN3zlv8platform7SetSlotEjPv");
bool WrapSetSlot(SlotIndex, void*) __asm__("__wrap__ZN3zlv8platform7SetSlotEjPv");
Event* RealCreateEvent() __asm__("__real__ZN3zlv8platform17CreateManualEventEv");
Event* WrapCreateEvent() __asm__("__wrap__ZN3zlv8platform17CreateManualEventEv");
OwnedMutex* RealCreateMutex() __asm__("__real__ZN3zlv8platform16CreateOwnedMutexEv");
OwnedMutex* WrapCreateMutex() __asm__("__wrap__ZN3zlv8platform16CreateOwnedMutexEv");
TimeOfDay RealLocalTime() __asm__("__real__ZN3zlv8platform9LocalTimeEv");
TimeOfDay WrapLocalTime() __asm__("__wrap__ZN3zlv8platform9LocalTimeEv");
std::uint32_t RealSeconds() __asm__("__real__ZN3zlv8platform16SecondsSince1970Ev");
std::uint32_t WrapSeconds() __asm__("__wrap__ZN3zlv8platform16SecondsSince1970Ev");

namespace zlvtest {

namespace {

thread_local const TimeOfDay* fixedTime = nullptr;
thread_local TimeOfDay fixedTimeValue;
thread_local const std::uint32_t* fixedSeconds = nullptr;
thread_local std::uint32_t fixedSecondsValue;

struct Order {
    bool isGiven = false;
    std::uint32_t succeeding = 0;
    std::uint32_t failing = 0;
    std::uint32_t failed = 0;
};

thread_local Order orders[6];

std::atomic<std::int64_t> liveBlocks = 0, liveClientBlocks = 0;

bool FailsNow(FailingCalls::Of function)
{
    Order& order = orders[int(function)];
    if (!order.isGiven) return false;
    if (order.succeeding > 0) {
        --order.succeeding;
        return false;
    }
    if (order.failed == order.failing) return false;
    ++order.failed;
    return true;
}

}  // namespace

FailingCalls::FailingCalls(Of function, std::uint32_t succeeding, std::uint32_t failing) : function_(function)
{
    orders[int(function)] = {true, succeeding, failing, 0};
}

FailingCalls::~FailingCalls() { orders[int(function_)] = {}; }

std::uint32_t FailingCalls::Failed() const { return orders[int(function_)].failed; }

std::int64_t LiveBlocks() { return liveBlocks; }
std::int64_t LiveClientBlocks() { return liveClientBlocks; }

FixedTime::FixedTime(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds)
{
    fixedTimeValue = {hours, minutes, seconds};
    fixedTime = &fixedTimeValue;
}

FixedTime::~FixedTime() { fixedTime = nullptr; }

FixedSeconds::FixedSeconds(std::uint32_t since1970)
{
    fixedSecondsValue = since1970;
    fixedSeconds = &fixedSecondsValue;
}

FixedSeconds::~FixedSeconds() { fixedSeconds = nullptr; }

}  // namespace zlvtest

using zlvtest::FailingCalls;
using zlvtest::FailsNow;

namespace {

// What `allocate` gives, counted, or null when it is to fail.
void* AllocateCounted(FailingCalls::Of function, void* (*allocate)(std::size_t), std::size_t bytes,
                      std::atomic<std::int64_t>& live)
{
    void* const block = FailsNow(function) ? nullptr : allocate(bytes);
    live += block != nullptr;
    return block;
}

}  // namespace

void* WrapAllocate(std::size_t bytes)
{
    return AllocateCounted(FailingCalls::Of::Allocate, RealAllocate, bytes, zlvtest::liveBlocks);
}

void WrapFree(void* block)
{
    zlvtest::liveBlocks -= block != nullptr;
    RealFree(block);
}

void* WrapAllocateClientBlock(std::size_t bytes)
{
    return AllocateCounted(FailingCalls::Of::AllocateClientBlock, RealAllocateClientBlock, bytes,
                           zlvtest::liveClientBlocks);
}

void WrapFreeClientBlock(void* block)
{
    zlvtest::liveClientBlocks -= block != nullptr;
    RealFreeClientBlock(block);
}

// What `make` makes, counted, or null when it is to fail.
template <class Make>
auto MakeHandle(FailingCalls::Of function, Make make)
{
    const auto handle = FailsNow(function) ? nullptr : make();
    zlvtest::CountHandle(handle != nullptr);
    return handle;
}

Thread* WrapStart(ThreadFunction function, void* argument)
{
    return MakeHandle(FailingCalls::Of::StartThread,
                      [=] { return zlvtest::StartOrdered(RealStart, function, argument); });
}

Event* WrapCreateEvent() { return MakeHandle(FailingCalls::Of::CreateEvent, RealCreateEvent); }
OwnedMutex* WrapCreateMutex() { return MakeHandle(FailingCalls::Of::CreateMutex, RealCreateMutex); }

bool WrapSetSlot(SlotIndex slot, void* value)
{
    return FailsNow(FailingCalls::Of::SetSlot) ? false : RealSetSlot(slot, value);
}

TimeOfDay WrapLocalTime() { return zlvtest::fixedTime ? *zlvtest::fixedTime : RealLocalTime(); }

std::uint32_t WrapSeconds() { return zlvtest::fixedSeconds ? *zlvtest::fixedSeconds : RealSeconds(); }
