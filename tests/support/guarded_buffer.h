// A buffer between two pages that fault: a read or write outside it ends the test program.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zlvtest {

enum class Flush { ToStart, ToEnd };  // which of its ends touches a guard page

class GuardedBuffer {
public:
    GuardedBuffer(std::size_t size, Flush flush, std::uint8_t fill = 0);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    std::uint8_t* Data() { return data_; }
    std::size_t Size() const { return size_; }

private:
    std::size_t size_;
    std::size_t mappedSize_;
    std::uint8_t* mapping_;
    std::uint8_t* data_;
};

}  // namespace zlvtest
