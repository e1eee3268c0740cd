// Failures and times to order. Links between the library's objects and the platform's functions lead through here.
#pragma once

#include <cstdint>

namespace zlvtest {

// While it lives, the platform function fails on this thread after `succeeding` more calls: `failing` times, or always.
class FailingCalls {
public:
    enum class Of { Allocate, AllocateClientBlock, StartThread, SetSlot, CreateEvent, CreateMutex };

    static constexpr std::uint32_t kAlways = 0xFFFFFFFF;

    FailingCalls(Of function, std::uint32_t succeeding, std::uint32_t failing = kAlways);
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;

    // How many calls have failed so far.
    std::uint32_t Failed() const;

private:
    Of function_;
};

// Blocks of the library's own memory, and blocks made for clients, that were allocated and not freed by the library.
std::int64_t LiveBlocks();
std::int64_t LiveClientBlocks();

// While it lives, the platform's clock stands still at this time of day.
class FixedTime {
public:
    FixedTime(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds);
    ~FixedTime();
    FixedTime(const FixedTime&) = delete;
    FixedTime& operator=(const FixedTime&) = delete;
};

// While it lives, the platform's calendar shows this second.
class FixedSeconds {
public:
    explicit FixedSeconds(std::uint32_t since1970);
    ~FixedSeconds();
    FixedSeconds(const FixedSeconds&) = delete;
    FixedSeconds& operator=(const FixedSeconds&) = delete;
};

}  // namespace zlvtest
