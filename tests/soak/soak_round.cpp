#include "soak/soak_round.h"

#include "fuzz/listener.h"
#include "support/bytes.h"

#include "zlv40.h"

#include <cstdio>

namespace zlvsoak {

namespace {

using zlvtest::Bytes;
using zlvtest::Host;
using zlvtest::Input;
using zlvtest::Random;
using zlvtest::Require;
using zlvtest::Topic;

thread_local char currentRound[200] = "";

// Modest numbers mostly: a set top bit asks for any.
Bytes DrawBytes(Random& random)
{
    Bytes bytes(random.Below(4) == 0 ? random.Below(4096) : random.Below(200));
    for (std::uint8_t& byte : bytes) byte = random.Below(16) == 0 ? random.Byte() : random.Byte() & 0x7F;
    return bytes;
}

// Topics that are written by hand call several functions: every other time it is one of them.
const Topic& DrawTopic(Random& random)
{
    const std::vector<Topic>& topics = zlvtest::Topics();
    const std::size_t byHand = topics.size() - zlvtest::DescribedEffects().size();
    return topics[random.Below(std::uint32_t(random.Below(2) == 0 ? byHand : topics.size()))];
}

std::uint32_t StopAtOnce(std::uint32_t, std::uint32_t, std::uint64_t) { return 0; }

class Witness : public Host {
public:
    void Note(const std::uint8_t* bytes, std::size_t count) override
    {
        digest_ = (digest_ ^ zlvtest::Checksum(bytes, count)) * 0x9E3779B97F4A7C15u + count;
    }
    void MayDiffer() override { mayDiffer_ = true; }

    std::uint64_t Digest() const { return digest_; }
    bool IsDifferent() const { return mayDiffer_; }

private:
    std::uint64_t digest_ = 0;
    bool mayDiffer_ = false;
};

// Of a topic within a callback: hears no more calls.
class NestedWitness : public Witness {
public:
    bool IsNested() const override { return true; }
};

// Of the round itself: at some reports the callback calls the library.
class RoundWitness : public Witness {
public:
    explicit RoundWitness(Random& random) : random_(random), callsLeft_(random.Below(2) == 0 ? 0 : kMostCalls) {}

    std::uint32_t NestedCalls() const { return nestedCalls_; }

    void AtReport(std::uint32_t total) override
    {
        if (callsLeft_ == 0 || random_.Below(4) != 0) return;
        --callsLeft_;
        switch (random_.Below(8)) {
        case 0: return ZLV40_ThreadExit();  // does nothing here
        case 1:
            // Billions of empty rows need somebody who ends them.
            if (total < kMostUnheard) ZLV40_SetCallback(nullptr, 0);
            return;
        case 2: return ZLV40_SetCallback(StopAtOnce, 0);
        case 3: return RefuseOnce();
        default: return RunNested();
        }
    }

private:
    static constexpr std::uint32_t kMostCalls = 3, kMostUnheard = 1 << 20;

    Random& random_;
    std::uint32_t callsLeft_;
    std::uint32_t nestedCalls_ = 0;

    // A call leaves its code, and some successes leave an older one standing: the callback clears what it caused.
    static void ClearError()
    {
        std::uint8_t byte = 0;
        Require(ZLV40_InvertBuffer(&byte, 1) == 1 && ZLV40_GetLastError() == 0);
    }

    static void RefuseOnce()
    {
        Require(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0) == 0);
        Require(ZLV40_GetLastError() == ZLV40_ERROR_BAD_ARGUMENT);
        ClearError();
    }

    void RunNested()
    {
        const Topic& topic = DrawTopic(random_);
        const Bytes bytes = DrawBytes(random_);
        if (!topic.isOfExports) return;
        NestedWitness witness;
        Input input(bytes.data(), bytes.size(), random_.Byte(), witness);
        topic.run(input);
        ClearError();
        const std::uint64_t digest = witness.Digest();
        Note(reinterpret_cast<const std::uint8_t*>(&digest), sizeof digest);
        if (witness.IsDifferent()) MayDiffer();
        ++nestedCalls_;
    }
};

}  // namespace

std::string RoundName::Text() const
{
    return "--seed " + std::to_string(seed) + " --only " + std::to_string(client) + ":" + std::to_string(round);
}

Outcome RunRound(const RoundName& name)
{
    Random random(name.seed * 1000003 + (std::uint64_t{name.client} << 32) + name.round);
    const Topic& topic = DrawTopic(random);
    const Bytes bytes = DrawBytes(random);
    std::snprintf(currentRound, sizeof currentRound, "in topic %s: zlv_soak %s\n", topic.name.c_str(),
                  name.Text().c_str());
    RoundWitness witness(random);
    {
        Input input(bytes.data(), bytes.size(), random.Byte(), witness);
        topic.run(input);
    }
    currentRound[0] = 0;
    return {topic.name, witness.Digest(), witness.IsDifferent(), witness.NestedCalls()};
}

const char* CurrentRound() { return currentRound; }

}  // namespace zlvsoak
