#include "platform/platform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace zlv::platform {
namespace {

TEST(TickCount, CountsMilliseconds)
{
    const u32 before = TickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    const u32 passed = TickCount() - before;
    EXPECT_GE(passed, 40u);  // Windows ticks every 16 ms
    EXPECT_LT(passed, 30000u);
}

TEST(LocalTime, IsTheTimeOfDayHere)
{
    const auto secondsOf = [](u32 hours, u32 minutes, u32 seconds) {
        return i64(hours) * 3600 + minutes * 60 + seconds;
    };
    const std::time_t now = std::time(nullptr);
    const std::tm* const local = std::localtime(&now);
    const i64 wanted = secondsOf(u32(local->tm_hour), u32(local->tm_min), u32(local->tm_sec));
    const TimeOfDay time = LocalTime();
    const i64 late = (secondsOf(time.hours, time.minutes, time.seconds) - wanted + 86400) % 86400;
    EXPECT_LE(late, 5);
}

TEST(SecondsSince1970, AreThoseOfTheCalendar)
{
    const u32 wanted = u32(std::time(nullptr));
    EXPECT_LE(SecondsSince1970() - wanted, 5u);
}

}  // namespace
}  // namespace zlv::platform
