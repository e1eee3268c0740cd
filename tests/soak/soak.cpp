// The soak: eight threads call everything that the library exports, with random arguments on random pictures, under
// callbacks that cancel and call at random.
//
//     zlv_soak [--seconds 4] [--rounds 100000] [--seed 1] [--only CLIENT:ROUND]
//
// What must hold: every answer is a code that the function may give (the topics look at it), a thread's last error and
// callback are its own, nothing is touched beyond the buffers, and rounds that are repeated alone, on a fresh thread,
// give the same bytes as they gave among the crowd. A round is made of the seed and its name alone; `--only` runs one.
#include "soak/soak_round.h"
#include "support/bytes.h"

#include "zlv40.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#include <sanitizer/common_interface_defs.h>
#define ZLV_IS_SANITIZED
#endif
#endif

namespace {

using zlvsoak::Outcome;
using zlvsoak::RoundName;
using zlvtest::Bytes;
using zlvtest::Random;
using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kClients = 8;

struct Options {
    double seconds = 4;
    std::uint32_t rounds = 100000;
    std::uint64_t seed = 1;
    bool hasOnly = false;
    RoundName only = {};
};

// A field of noise that all clients read, and what it gives.
class SharedField {
public:
    SharedField() : field_(ZLV40_InitializePerlinNoise3D()), wanted_(Slice()) {}
    ~SharedField() { ZLV40_DestroyPerlinNoise3D(field_); }
    bool IsAsEver() const { return !wanted_.empty() && Slice() == wanted_; }

private:
    void* const field_;
    const Bytes wanted_;

    Bytes Slice() const
    {
        Bytes bytes(16 * 8);
        if (ZLV40_GetPerlinNoise3DSliceBYTE(field_, bytes.data(), 16, 8, 16, 0.3, 0.7) != 1) bytes.clear();
        return bytes;
    }
};

struct Crowd {
    const Options& options;
    const Clock::time_point end;
    SharedField field;
    std::atomic<std::uint32_t> mistakes = 0;
};

// What one client did.
struct Diary {
    std::vector<std::pair<RoundName, Outcome>> toRepeat;
    std::uint32_t rounds = 0, nestedCalls = 0;
    double slowest = 0;
    RoundName slowestRound = {};
};

class Client {
public:
    Client(Crowd& crowd, std::uint32_t number, Diary& diary)
        : crowd_(crowd), number_(number), diary_(diary), random_(crowd.options.seed * 31 + number)
    {
    }

    void Run()
    {
        Install();
        for (std::uint32_t round = 0; round < crowd_.options.rounds && Clock::now() < crowd_.end; ++round) {
            const RoundName name = {crowd_.options.seed, number_, round};
            const Clock::time_point began = Clock::now();
            const bool isFresh = random_.Below(4) == 0;
            const Outcome outcome = isFresh ? RunOnFreshThread(name) : zlvsoak::RunRound(name);
            Keep(name, outcome, isFresh, std::chrono::duration<double>(Clock::now() - began).count());
            CheckRecords(name);
            if (random_.Below(16) == 0) LeaveAndReturn(name);
        }
    }

    static Outcome RunOnFreshThread(const RoundName& name)
    {
        Outcome outcome;
        std::thread([&] { outcome = zlvsoak::RunRound(name); }).join();
        return outcome;
    }

private:
    static constexpr std::size_t kMostRepeats = 2000;

    Crowd& crowd_;
    const std::uint32_t number_;
    Diary& diary_;
    Random random_;

    static std::uint32_t GoOn(std::uint32_t, std::uint32_t, std::uint64_t) { return 1; }
    static std::uint32_t Stop(std::uint32_t, std::uint32_t, std::uint64_t) { return 0; }

    void Install() { ZLV40_SetCallback(GoOn, number_); }

    void Check(bool holds, const char* what, const RoundName& name)
    {
        if (holds) return;
        ++crowd_.mistakes;
        std::fprintf(stderr, "%s, after zlv_soak %s\n", what, name.Text().c_str());
    }

    void Keep(const RoundName& name, const Outcome& outcome, bool isFresh, double seconds)
    {
        ++diary_.rounds;
        diary_.nestedCalls += outcome.nestedCalls;
        if (isFresh && diary_.toRepeat.size() < kMostRepeats) diary_.toRepeat.push_back({name, outcome});
        if (seconds <= diary_.slowest) return;
        diary_.slowest = seconds;
        diary_.slowestRound = name;
    }

    // One of several codes, while the other clients leave theirs.
    void CheckRecords(const RoundName& name)
    {
        std::uint64_t data = 0;
        Check(ZLV40_GetCallback(&data) == GoOn && data == number_, "another callback", name);
        std::uint8_t pixel[3] = {1, 2, 3};
        const std::uint32_t kind = random_.Below(3);
        constexpr std::uint32_t kCodes[] = {ZLV40_ERROR_NONE, ZLV40_ERROR_BAD_ARGUMENT, ZLV40_ERROR_CANCELLED};
        if (kind == 2) ZLV40_SetCallback(Stop, 0);
        const std::uint32_t result = ZLV40_SolarizeImage(kind == 1 ? nullptr : pixel, 1, 1, 3, 3, 0);
        std::this_thread::yield();
        Check(result == (kind == 0) && ZLV40_GetLastError() == kCodes[kind], "another last error", name);
        Install();
        if (random_.Below(8) == 0) Check(crowd_.field.IsAsEver(), "another noise from a shared field", name);
    }

    void LeaveAndReturn(const RoundName& name)
    {
        ZLV40_ThreadExit();
        Check(ZLV40_GetLastError() == 0 && ZLV40_GetCallback(nullptr) == nullptr, "something left behind", name);
        Install();
    }
};

// Says no when one ended otherwise than among the crowd.
bool RepeatAlone(const std::vector<Diary>& diaries, Clock::time_point end, std::uint32_t& repeated)
{
    bool isGood = true;
    for (std::size_t i = 0, left = diaries.size(); left > 0; ++i) {  // a round of each client in turn
        left = 0;
        for (const Diary& diary : diaries) {
            if (i >= diary.toRepeat.size() || Clock::now() > end) continue;
            ++left;
            const auto& [name, before] = diary.toRepeat[i];
            if (before.mayDiffer) continue;
            const Outcome after = Client::RunOnFreshThread(name);
            if (after.mayDiffer) continue;
            ++repeated;
            if (after.digest == before.digest) continue;
            isGood = false;
            std::fprintf(stderr, "other bytes alone than in the crowd, in topic %s: zlv_soak %s\n",
                         before.topic.c_str(), name.Text().c_str());
        }
    }
    return isGood;
}

// The crowd's time, and up to half of it again for the repetitions.
int Soak(const Options& options)
{
    const auto duration = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.seconds));
    Crowd crowd = {options, Clock::now() + duration, {}};
    std::vector<Diary> diaries(kClients);
    std::vector<std::thread> threads;
    for (std::uint32_t i = 0; i < kClients; ++i) {
        threads.emplace_back([&crowd, &diaries, i] { Client(crowd, i, diaries[i]).Run(); });
    }
    for (std::thread& thread : threads) thread.join();

    std::uint32_t repeated = 0, rounds = 0, nestedCalls = 0;
    const bool isRepeatable = RepeatAlone(diaries, Clock::now() + duration / 2, repeated);
    const Diary* slowest = &diaries[0];
    for (const Diary& diary : diaries) {
        rounds += diary.rounds;
        nestedCalls += diary.nestedCalls;
        if (diary.slowest > slowest->slowest) slowest = &diary;
    }
    std::printf("%u rounds, %u topics within callbacks, %u rounds repeated alone; the slowest took %.2f s: %s\n",
                rounds, nestedCalls, repeated, slowest->slowest, slowest->slowestRound.Text().c_str());
    const bool hasWorked = rounds >= kClients && nestedCalls > 0 && repeated > 0;
    if (!hasWorked) std::fprintf(stderr, "too little was tried\n");
    return hasWorked && isRepeatable && crowd.mistakes == 0 ? 0 : 1;
}

int RunOnly(const RoundName& name)
{
    const Outcome first = Client::RunOnFreshThread(name), second = Client::RunOnFreshThread(name);
    std::printf("%s: %016llx, again %016llx\n", first.topic.c_str(), static_cast<unsigned long long>(first.digest),
                static_cast<unsigned long long>(second.digest));
    return first.digest == second.digest || first.mayDiffer || second.mayDiffer ? 0 : 1;
}

void TellRound() { std::fputs(zlvsoak::CurrentRound(), stderr); }

void TellRoundAndDie(int signal)
{
    TellRound();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Which round it was, with any end that is none of ours.
void TellRoundsAtEnds()
{
    std::signal(SIGABRT, TellRoundAndDie);
#ifdef ZLV_IS_SANITIZED
    __sanitizer_set_death_callback(TellRound);
#else
    std::signal(SIGSEGV, TellRoundAndDie);
#endif
}

bool Read(int count, char** arguments, Options& options)
{
    for (int i = 1; i + 1 < count; i += 2) {
        const char* const value = arguments[i + 1];
        const std::string option = arguments[i];
        unsigned client = 0, round = 0;
        if (option == "--seconds") options.seconds = std::atof(value);
        else if (option == "--rounds") options.rounds = std::uint32_t(std::atol(value));
        else if (option == "--seed") options.seed = std::strtoull(value, nullptr, 10);
        else if (option == "--only" && std::sscanf(value, "%u:%u", &client, &round) == 2) options.hasOnly = true;
        else return false;
        if (option == "--only") options.only = {0, client, round};
    }
    options.only.seed = options.seed;
    return count % 2 == 1;
}

}  // namespace

int main(int count, char** arguments)
{
    Options options;
    if (!Read(count, arguments, options)) {
        std::fputs("usage: zlv_soak [--seconds S] [--rounds N] [--seed N] [--only CLIENT:ROUND]\n", stderr);
        return 2;
    }
    std::printf("seed %llu\n", static_cast<unsigned long long>(options.seed));
    std::fflush(stdout);
    TellRoundsAtEnds();
    return options.hasOnly ? RunOnly(options.only) : Soak(options);
}
