// Blocks that a function hands to its caller, who frees them.
#pragma once

#include "platform/platform.h"

#include <utility>

namespace zlv {

// An array on its way to the caller: freed unless it is released.
template <class T>
class ClientBlock {
public:
    // Arrays of this many bytes or more are not asked for.
    static constexpr u64 kRefusedBytes = 2147348479;

    ClientBlock() = default;
    ~ClientBlock() { platform::FreeClientBlock(data_); }
    ClientBlock(const ClientBlock&) = delete;
    ClientBlock& operator=(const ClientBlock&) = delete;

    static constexpr bool IsTooLong(u64 count) { return count > (kRefusedBytes - 1) / sizeof(T); }

    // Zeros; false when they can't be had. Called once.
    [[nodiscard]] bool Allocate(u64 count) { return !IsTooLong(count) && AllocateAny(count); }

    // The same up to what memory holds.
    [[nodiscard]] bool AllocateAny(u64 count)
    {
        if (count > SIZE_MAX / sizeof(T)) return false;
        data_ = static_cast<T*>(platform::AllocateClientBlock(size_t(count) * sizeof(T)));
        return data_ != nullptr;
    }

    T& operator[](size_t i) { return data_[i]; }
    T* Release() { return std::exchange(data_, nullptr); }

private:
    T* data_ = nullptr;
};

}  // namespace zlv
