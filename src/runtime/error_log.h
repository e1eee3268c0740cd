// The failures of the base layer on one thread, oldest first. Kept for a debugger: nothing in the library reads it.
#pragma once

#include "runtime/array.h"
#include "runtime/error.h"

namespace zlv {

struct LogEntry {
    ZLVArray<char> text;  // ends with a null; empty if memory was out
    Error code = Error::None;
    u32 level = 0;
};

class ErrorLog {
public:
    // An append above this many entries drops the oldest first, so that one more entry is the most it holds.
    static constexpr u32 kKeptEntries = 50;

    void Append(const char* text, Error code, u32 level);

    u32 GetCount() const { return count_; }
    // Entry 0 is the oldest.
    const LogEntry& operator[](u32 i) const { return entries_[(first_ + i) % kCapacity]; }

private:
    static constexpr u32 kCapacity = kKeptEntries + 1;

    LogEntry entries_[kCapacity];
    u32 first_ = 0;
    u32 count_ = 0;
};

}  // namespace zlv
