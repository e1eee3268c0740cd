// The bytes that a fuzzer gives, read as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace zlvtest {

// The fuzzer's bytes, taken from the front; zeros when they are used up.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t count) : next_(bytes), end_(bytes + count) {}
    std::uint8_t Byte() { return next_ == end_ ? 0 : *next_++; }
    std::uint64_t Number(int bytes)
    {
        std::uint64_t number = 0;
        for (int i = 0; i < bytes; ++i) number = number << 8 | Byte();
        return number;
    }
    double Real()
    {
        const std::uint64_t bits = Number(8);
        double real;
        std::memcpy(&real, &bits, sizeof real);
        return real;
    }
    // Small sizes mostly, any value sometimes (the top bit of the kind byte).
    std::uint64_t Size(std::uint32_t small)
    {
        const std::uint8_t kind = Byte();
        return kind & 0x80 ? Number(4) : kind % small;
    }
    std::size_t Rest() const { return std::size_t(end_ - next_); }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

// What bytes of a buffer are before the input's are written, from ZLV_FUZZ_FILL: two runs with different values meet
// different memory.
inline int FuzzFill()
{
    const char* const text = std::getenv("ZLV_FUZZ_FILL");
    return text ? std::atoi(text) : 0;
}

// A buffer of exactly `size` bytes on the heap, whose ends the address sanitizer watches: the input's bytes, then the
// fill. The last byte of the input is left for others.
inline std::unique_ptr<std::uint8_t[]> FuzzBuffer(std::size_t size, Input& input)
{
    static const int fill = FuzzFill();
    auto buffer = std::make_unique<std::uint8_t[]>(size);
    std::memset(buffer.get(), fill, size);
    for (std::size_t k = 0; k < size && input.Rest() > 1; ++k) buffer[k] = input.Byte();
    return buffer;
}

// A call answers 1 without a code, or 0 with one.
inline void RequireResult(const char* function, std::uint32_t result, std::uint32_t error)
{
    if (result <= 1 && (result == 1) == (error == 0)) return;
    std::fprintf(stderr, "%s returned %u with error %u\n", function, result, error);
    std::abort();
}

}  // namespace zlvtest
