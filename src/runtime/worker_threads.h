// Threads that a call starts for itself, and waits for.
#pragma once

#include "platform/platform.h"

namespace zlv {

inline constexpr u32 kMaxWorkers = 8;

// Runs function(&records[i]) for each of at most kMaxWorkers records, every one on a thread of its own, and returns
// when all have ended. When a thread can't be created no function is run: false.
template <class Record>
bool RunOnThreads(platform::ThreadFunction function, Record* records, u32 count)
{
    platform::Thread* threads[kMaxWorkers] = {};
    u32 created = 0;
    while (created < count) {
        threads[created] = platform::StartSuspendedThread(function, &records[created]);
        if (!threads[created]) break;
        ++created;
    }
    const bool isComplete = created == count;
    for (u32 i = 0; i < created && isComplete; ++i) platform::ResumeThread(threads[i]);
    for (u32 i = 0; i < created && isComplete; ++i) (void)platform::WaitForThread(threads[i], platform::kWaitForever);
    for (u32 i = 0; i < created; ++i) platform::CloseThread(threads[i]);
    return isComplete;
}

}  // namespace zlv
