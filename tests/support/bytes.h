// Bytes for tests: random ones of our own making, and comparisons that tell where two buffers part.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace zlvtest {

using Bytes = std::vector<std::uint8_t>;

// The same numbers everywhere: the standard distributions differ between libraries. (A 64-bit LCG, upper bits.)
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x2545F4914F6CDD1Du) { Next(); }

    std::uint32_t Next()
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return std::uint32_t(state_ >> 32);
    }
    // 0 to limit - 1.
    std::uint32_t Below(std::uint32_t limit) { return std::uint32_t((std::uint64_t(Next()) * limit) >> 32); }
    std::uint8_t Byte() { return std::uint8_t(Next() >> 24); }

private:
    std::uint64_t state_;
};

inline Bytes RandomBytes(std::size_t count, std::uint64_t seed)
{
    Random random(seed);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) byte = random.Byte();
    return bytes;
}

// How many elements differ, and the first of them; empty when none does.
template <class T>
std::string Difference(const T* wanted, const T* got, std::size_t count)
{
    std::size_t first = count;
    std::size_t differing = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (wanted[i] == got[i]) continue;
        if (++differing == 1) first = i;
    }
    if (differing == 0) return {};
    std::ostringstream text;
    text << differing << " of " << count << " differ, first at " << first << ": wanted " << +wanted[first] << ", got "
         << +got[first];
    return text.str();
}

// FNV-1a, 64 bits.
inline std::uint64_t Checksum(const std::uint8_t* bytes, std::size_t count)
{
    std::uint64_t sum = 0xCBF29CE484222325u;
    for (std::size_t i = 0; i < count; ++i) sum = (sum ^ bytes[i]) * 0x100000001B3u;
    return sum;
}

// Values printed with any failure below it.
template <class... Values>
std::string Join(const Values&... values)
{
    std::ostringstream text;
    ((text << values << ' '), ...);
    return text.str();
}

}  // namespace zlvtest

#define SCOPE(...) SCOPED_TRACE(::zlvtest::Join(__VA_ARGS__))
