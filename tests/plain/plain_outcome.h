// How a call ends, and whom it tells of its progress.
#pragma once

#include <cstdint>
#include <functional>

struct PlainOutcome {
    std::uint32_t result, code;

    bool operator==(const PlainOutcome&) const = default;

    // That of a step of the base layer: its code is the effect's.
    static PlainOutcome OfCode(std::uint32_t code) { return {code == 0 ? 1u : 0u, code}; }
};

inline constexpr PlainOutcome kPlainDone = {1, 0};
inline constexpr std::uint32_t kPlainOutOfMemory = 1, kPlainBadArgument = 5, kPlainCancelled = 14;

// Called with (current, total); false cancels.
using PlainReport = std::function<bool(std::uint32_t, std::uint32_t)>;

inline bool PlainSilence(std::uint32_t, std::uint32_t) { return true; }
