// Threads that come late, waits that time out and handles that are counted, to order.
#pragma once

#include <cstdint>

namespace zlvtest {

// While it lives, what happens to the threads that this thread starts, in the order of their start. One at a time.
class ThreadOrders {
public:
    static constexpr int kClient = -1;  // the thread that gives the orders
    enum class Wait { Event, Mutex };   // with a time-out above 0

    ThreadOrders();
    ~ThreadOrders();
    ThreadOrders(const ThreadOrders&) = delete;
    ThreadOrders& operator=(const ThreadOrders&) = delete;

    // That thread sleeps before it runs its function.
    void Delay(int thread, std::uint32_t milliseconds);
    // That thread sleeps before it releases a mutex for the (`succeeding` + 1)th time.
    void DelayRelease(int thread, std::uint32_t succeeding, std::uint32_t milliseconds);
    // On that thread such a wait ends at once, as if its time were over, after `succeeding` more of them.
    void TimeOut(int thread, Wait wait, std::uint32_t succeeding);

    std::uint32_t Started() const;
    // Of the waits that were made to time out, and whether every wait with a limit had this one.
    std::uint32_t TimedOut() const;
    bool WereAllLimits(std::uint32_t milliseconds) const;
};

// Threads, events and mutexes that the platform has handed out and not yet been given back.
std::int64_t OpenHandles();

}  // namespace zlvtest
