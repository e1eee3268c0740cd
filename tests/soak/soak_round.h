// One round of the soak: a topic with random bytes, whose callbacks call the library in their turn.
#pragma once

#include "fuzz/topics.h"

#include <cstdint>
#include <string>

namespace zlvsoak {

// Everything that is random about a round comes from these.
struct RoundName {
    std::uint64_t seed;
    std::uint32_t client, round;

    std::string Text() const;
};

struct Outcome {
    std::string topic;
    std::uint64_t digest;       // of every answer and every buffer
    bool mayDiffer;             // the same round may end otherwise
    std::uint32_t nestedCalls;  // topics that ran within a progress callback
};

// Runs the round on the calling thread.
Outcome RunRound(const RoundName& name);

// The round that the calling thread is in; empty when there is none.
const char* CurrentRound();

}  // namespace zlvsoak
