#include "runtime/error_log.h"

#include <algorithm>
#include <cstring>

namespace zlv {

void ErrorLog::Append(const char* text, Error code, u32 level)
{
    if (count_ > kKeptEntries) {
        first_ = (first_ + 1) % kCapacity;
        --count_;
    }
    LogEntry& entry = entries_[(first_ + count_) % kCapacity];
    ++count_;
    entry.code = code;
    entry.level = level;
    const size_t length = std::strlen(text) + 1;
    entry.text.Clear();
    if (entry.text.Resize(i32(length))) std::copy_n(text, length, entry.text.GetData());
}

}  // namespace zlv
