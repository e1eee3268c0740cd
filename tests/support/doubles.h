// Doubles for tests: random ones, and comparisons of their bits.
#pragma once

#include "support/bytes.h"

#include <cstring>

namespace zlvtest {

using Doubles = std::vector<double>;

// From -1 to 1, with zeros of both signs among them.
inline Doubles RandomDoubles(std::size_t count, std::uint64_t seed)
{
    Random random(seed);
    Doubles doubles(count);
    for (double& value : doubles) {
        const std::uint32_t draw = random.Next();
        value = (double(draw) - 0x1p31) / 0x1p31;
        if (draw % 16 == 0) value = draw % 32 ? 0.0 : -0.0;
    }
    return doubles;
}

// The same bits; any NaN is like any other.
inline bool IsSameDouble(double a, double b) { return (a != a && b != b) || std::memcmp(&a, &b, sizeof a) == 0; }

// How many differ, and the first of them; empty when none does.
inline std::string DifferenceOfDoubles(const double* wanted, const double* got, std::size_t count)
{
    std::size_t first = count, differing = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!IsSameDouble(wanted[i], got[i]) && ++differing == 1) first = i;
    }
    if (differing == 0) return {};
    std::ostringstream text;
    text.precision(17);
    text << differing << " of " << count << " differ, first at " << first << ": wanted " << wanted[first] << ", got "
         << got[first];
    return text.str();
}

inline std::string DifferenceOfDoubles(const Doubles& wanted, const Doubles& got)
{
    if (wanted.size() != got.size()) return Join("wanted", wanted.size(), "doubles, got", got.size());
    return DifferenceOfDoubles(wanted.data(), got.data(), wanted.size());
}

}  // namespace zlvtest
