// The bytes that a topic lives on, read as numbers and buffers, and the program that it runs in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace zlvtest {

// A program that runs topics, and what it wants to know of them. A fuzzer wants to know nothing.
class Host {
public:
    virtual ~Host() = default;
    // Within a progress callback of an exported function, which reports `total` times or so.
    virtual void AtReport(std::uint32_t /*total*/) {}
    // What a call answered, or what stands in a buffer when it is given up.
    virtual void Note(const std::uint8_t*, std::size_t) {}
    // A clock, the memory or the processor's time took part: another run may end otherwise.
    virtual void MayDiffer() {}
    // Whether the topic runs within a progress callback of another one.
    virtual bool IsNested() const { return false; }
};

// Bytes taken from the front; zeros when they are used up.
class Input {
public:
    // `fill` is what buffers hold before bytes are written over it: runs with different ones meet different memory.
    Input(const std::uint8_t* bytes, std::size_t count, std::uint8_t fill, Host& host)
        : next_(bytes), end_(bytes + count), fill_(fill), host_(host)
    {
    }
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
    // Between -limit and limit mostly, any number sometimes.
    double Measure(double limit)
    {
        if (Byte() % 8 == 7) return Real();
        return std::int16_t(std::uint16_t(Number(2))) / 32768.0 * limit;
    }
    std::size_t Rest() const { return std::size_t(end_ - next_); }
    std::uint8_t Fill() const { return fill_; }
    Host& GetHost() const { return host_; }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
    const std::uint8_t fill_;
    Host& host_;
};

// `size` bytes whose ends are watched: the input's bytes, then its fill. The last byte of the input is left for others.
class Buffer {
public:
    Buffer();
    Buffer(std::size_t size, Input& input);
    Buffer(Buffer&&) noexcept;
    Buffer& operator=(Buffer&&) noexcept;
    ~Buffer();

    std::uint8_t* get() const { return data_; }
    std::uint8_t& operator[](std::size_t i) const { return data_[i]; }
    explicit operator bool() const { return data_ != nullptr; }

private:
    struct Memory;
    std::unique_ptr<Memory> memory_;
    std::uint8_t* data_ = nullptr;
};

// A topic ends the program where something does not hold.
void Require(bool holds);

// A call answers 1 without a code, or 0 with one.
void RequireResult(Input& input, const char* function, std::uint32_t result, std::uint32_t error);

// Tells the host what a call answered.
void NoteResult(Input& input, std::uint32_t result, std::uint32_t error);

}  // namespace zlvtest
